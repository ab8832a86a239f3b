#pragma once

#include <QColor>
#include <QList>
#include <QMainWindow>
#include <QPointF>
#include <QString>
#include <functional>
#include <map>

class QAction;
class QActionGroup;
class QLabel;

namespace tarvex {

class AdjustDialog;
class BenchService;
class ElidedLabel;
class PictureCanvas;
class PictureDocument;

// The main window of Picture Bench, the companion picture editor: the picture fitted to
// the window, a toolbar and menus of its commands, and a status line that says where the
// pointer is, the picture's size, the zoom, whether the bench is linked to the exercise
// editor, where the picture came from and where it is saved to.
class PictureBenchWindow : public QMainWindow {
    Q_OBJECT
public:
    // The commands of the window, each an action of the toolbar and the menus.
    enum class Command {
        Open,
        Save,
        SaveAs,
        Quit,
        Undo,
        Redo,
        StopTool,
        Crop,
        ApplyCrop,
        RotateLeft,
        RotateRight,
        FlipHorizontal,
        FlipVertical,
        Straighten,
        BrightnessContrast,
        Greyscale,
        DrawingLook,
        Arrow,
        Line,
        Text,
        MarkColour,
        MarkWidth,
        ZoomIn,
        ZoomOut,
        ZoomFit,
        ZoomActual,
        HowToUse,
        About,
    };
    // The widths a mark is drawn with.
    enum class MarkWeight { Thin, Medium, Thick };

    // At most this many characters of text on a picture.
    static constexpr int kMaxTextLength = 40;
    // The window's size when it opens (smaller on a smaller screen).
    static constexpr int kDefaultWidth = 1200;
    static constexpr int kDefaultHeight = 720;

    PictureBenchWindow(PictureDocument& document, BenchService& service, QWidget* parent = nullptr);

    QAction* Action(Command command) const;
    // Every action of the window: the commands, and the choices of colour and width.
    QList<QAction*> AllActions() const;
    PictureCanvas* Canvas() const { return canvas_; }

    QColor MarkColour() const { return markColour_; }
    // Black, red, blue or green (the choices of the Draw menu); another colour is kept too.
    void SetMarkColour(const QColor& colour);
    MarkWeight MarkWidth() const { return markWeight_; }
    void SetMarkWidth(MarkWeight weight);

    // The parts of the status line, as shown.
    QString StatusMessage() const;
    QString PointerText() const;
    QString SizeText() const;
    QString ZoomText() const;
    QString LinkText() const;
    QString FilesText() const;

protected:
    void closeEvent(QCloseEvent* event) override;

private:
    // Building the window (PictureBenchWindow.cpp).
    QAction* AddAction(Command command, const QString& text, const QIcon& icon,
                       const QList<QKeySequence>& shortcuts, const QString& tip,
                       const std::function<void()>& run);
    void CreateActions();
    void CreateMarkChoices();
    void CreateMenus();
    void CreateToolBar();
    void CreateStatusLine();
    void ConnectModel();
    void FitToScreen();

    // What the window shows.
    void UpdateTitle();
    void UpdateStatus();
    void UpdateCommands();
    void ShowMessage(const QString& message);

    // The commands (PictureBenchCommands.cpp).
    void OpenPicture();
    bool Save();
    bool SaveAs();
    bool ConfirmDiscard();
    void ChooseTool(QAction* tool);
    void StopTool();
    void ApplyCrop();
    void DrawLine(QPointF from, QPointF to);
    void AddText(QPointF at);
    void StraightenPicture();
    void AdjustBrightnessContrast();
    void ApplyDrawingLook();
    bool RunAdjustment(AdjustDialog& dialog, const std::function<QImage(const QImage&)>& adjust,
                       bool withGrid = false);
    void OnSourceOpened(const QString& source, const QString& error);
    void OnSaved(const QString& target);
    void ShowHowToUse();
    void ShowAbout();

    PictureDocument& document_;
    BenchService& service_;
    PictureCanvas* canvas_ = nullptr;
    std::map<Command, QAction*> actions_;
    QActionGroup* tools_ = nullptr;
    QActionGroup* colours_ = nullptr;
    QActionGroup* widths_ = nullptr;
    QColor markColour_ = Qt::black;
    MarkWeight markWeight_ = MarkWeight::Medium;

    ElidedLabel* files_ = nullptr;
    QLabel* pointer_ = nullptr;
    QLabel* size_ = nullptr;
    QLabel* zoom_ = nullptr;
    ElidedLabel* link_ = nullptr;
};

} // namespace tarvex
