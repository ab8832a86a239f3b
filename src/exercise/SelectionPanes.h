#pragma once

#include <QPoint>
#include <QString>
#include <functional>
#include <vector>

namespace tarvex {

struct AppState;

// How a picture load of a pane cell ended: shown, no such file (the cell stays blank
// without a word), or another failure with its description.
struct PictureLoad {
    enum Result { Loaded, Missing, Failed } result = Loaded;
    int errorNumber = 0;
    QString description;
};

// The upper pane as the logic sees it: cells of picture and caption on a surface that
// scrolls by rows in a viewport.
class IChoicePaneView {
public:
    virtual ~IChoicePaneView() = default;
    virtual int CellCount() const = 0;      // cells made so far
    virtual void CreateCell(int index) = 0; // a new picture and caption
    virtual void PlaceCell(int index, QPoint picture, QPoint caption) = 0;
    virtual QPoint PicturePos(int index) const = 0;
    virtual QPoint CaptionPos(int index) const = 0;
    virtual void ShowCell(int index, bool visible) = 0;
    virtual PictureLoad LoadCellPicture(int index, const QString& path) = 0;
    virtual void SetCellCaption(int index, const QString& text, bool blue) = 0;
    virtual void SetSurfaceHeight(int height) = 0;
    virtual void SetSurfaceTop(int top) = 0;
    virtual int SurfaceTop() const = 0;
    // The row scroll bar: setting the maximum pulls the value down to it when needed.
    virtual void SetScrollMax(int maximum) = 0;
    virtual int ScrollValue() const = 0;
    virtual void HideSelectedRect() = 0;
};

// The progress window, as the panes use it while they make their cells.
class IProgressSink {
public:
    virtual ~IProgressSink() = default;
    virtual void Init(int maximum, const QString& title) = 0;
    virtual void Update(int value) = 0;
    virtual void Destroy() = 0;
};

// The grid arithmetic of the two panes (five pictures across in the design, more in a wider
// window), the scrolling by rows and the loading of only the pictures in sight, each at
// most once for a view.
class SelectionPanes {
public:
    // The design of the upper pane, in pixels.
    static constexpr int kColumns = 5;
    static constexpr int kViewportWidth = 449, kViewportHeight = 141;
    static constexpr double kPictureLeft = 18, kPictureTop = 4, kPictureWidth = 70,
                            kPictureHeight = 53;
    static constexpr double kCaptionLeft = 16, kCaptionTop = 56, kCaptionWidth = 77,
                            kCaptionHeight = 21.6;
    static constexpr int kSurfaceWidth = 463;
    // The lower pane: 20 slots in 4 rows; its scroll bar counts pixels.
    static constexpr int kSlotRows = 4;
    static constexpr int kLowerViewportHeight = 163;
    static constexpr int kScroll2Min = 2, kScroll2Max = 162, kScroll2Small = 80,
                         kScroll2Large = 160;

    SelectionPanes(AppState& state, IChoicePaneView& view);

    // Makes the cells of the whole library once, behind the progress window.
    void CreateExChoiceControls(IProgressSink& progress);
    // After the library view changed: marks every picture stale, sizes the surface and the
    // scroll range, shows the cells in use.
    void SizeSourcePane();
    // Loads the pictures and captions of the two rows in sight that are not loaded yet.
    // Returns the indices it loaded. A failure other than a missing file is reported
    // through the handler and the loading goes on.
    std::vector<int> LoadPictsInSight();
    // The row scroll bar settled on a value: the surface follows and the pictures load.
    void Scroll1Settled(int value);
    // The thumb is being dragged: the surface follows, nothing loads.
    void Scroll1Dragged(int value);
    // The upper pane was resized to hold this many columns and rows (at least the design's
    // five and two): a change of columns lays the cells out again and sizes the surface;
    // then the pictures newly in sight load.
    void SetGrid(int columns, int rowsInSight);
    // The columns and rows a viewport of this design size holds.
    static int ColumnsFor(double viewportWidth);
    static int RowsFor(double viewportHeight);

    int ChoiceRowHeight() const { return choiceRowHeight_; }
    int ColumnWidth() const { return colWidth_; }
    int Columns() const { return columns_; }
    int RowsInSight() const { return rowsInSight_; }
    bool PictLoaded(int index) const;
    int SurfaceHeight() const { return surfaceHeight_; }
    int ScrollMax() const { return scrollMax_; }

    // The grid positions of the lower pane's slot i (0 to 19).
    static QPoint SlotPicturePos(int slot);
    static QPoint SlotCaptionPos(int slot);
    static QPoint SlotNumberPos(int slot);

    // Shown for a failure other than a missing file while loading pictures.
    std::function<void(const QString& text, const QString& title)> OnLoadError;

private:
    AppState& state_;
    IChoicePaneView& view_;
    int choiceRowHeight_ = 0;
    int colWidth_ = 0;
    int imLeft_ = 0, lbLeft_ = 0, imTop_ = 0, lbTop_ = 0;
    int surfaceHeight_ = 0;
    int scrollMax_ = 0;
    int columns_ = kColumns;
    int rowsInSight_ = 2;
    bool made_ = false; // the cells of the library exist
    std::vector<bool> pictLoaded_;
};

} // namespace tarvex
