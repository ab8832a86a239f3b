// The commands of Picture Bench's window: files, tools, adjustments and help.

#include "ui/bench/PictureBenchWindow.h"

#include "picturebench/BenchService.h"
#include "picturebench/PictureDocument.h"
#include "ui/bench/AdjustDialog.h"
#include "ui/bench/BenchGuard.h"
#include "ui/bench/PictureCanvas.h"

#include <QAction>
#include <QActionGroup>
#include <QApplication>
#include <QCloseEvent>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFont>
#include <QFontMetricsF>
#include <QInputDialog>
#include <QLineEdit>
#include <QMessageBox>
#include <QStandardPaths>
#include <QStatusBar>
#include <QTimer>
#include <algorithm>
#include <cmath>

namespace tarvex {

namespace {

QString Native(const QString& path) {
    return QDir::toNativeSeparators(path);
}

// The smallest line the thin width draws, in pixels of the picture.
constexpr double kThinnest = 1.5;

// Where a text mark goes so that its box lies inside the picture: clicked near the right
// or the bottom edge, it moves in just enough. The box is measured as DrawMark writes
// it: bold sans of a twentieth of the picture's height, on a white box a quarter of that
// wider all round.
QPointF TextInside(QPointF at, const QString& text, QSize picture) {
    QFont font(QStringLiteral("Sans Serif"));
    font.setStyleHint(QFont::SansSerif);
    font.setBold(true);
    const int pixelSize = std::max(8, static_cast<int>(std::lround(picture.height() / 20.0)));
    font.setPixelSize(pixelSize);
    const double padding = pixelSize * 0.25;
    const QSizeF box =
        QFontMetricsF(font).boundingRect(QRectF(), Qt::AlignLeft | Qt::AlignTop, text).size() +
        QSizeF(2 * padding, 2 * padding);
    return {std::clamp(at.x(), 0.0, std::max(0.0, picture.width() - box.width())),
            std::clamp(at.y(), 0.0, std::max(0.0, picture.height() - box.height()))};
}

} // namespace

void PictureBenchWindow::closeEvent(QCloseEvent* event) {
    bool close = false;
    RunInBench(this, [&] { close = ConfirmDiscard(); });
    if (close)
        event->accept();
    else
        event->ignore();
}

bool PictureBenchWindow::ConfirmDiscard() {
    if (!document_.IsModified())
        return true;
    QMessageBox ask(QMessageBox::Warning, QStringLiteral("Picture Bench"),
                    QStringLiteral("The picture has changes that are not saved."),
                    QMessageBox::Save | QMessageBox::Discard | QMessageBox::Cancel, this);
    ask.setInformativeText(QStringLiteral("Save them first?"));
    ask.setDefaultButton(QMessageBox::Save);
    ask.setEscapeButton(QMessageBox::Cancel);
    switch (ask.exec()) {
    case QMessageBox::Save:
        return Save();
    case QMessageBox::Discard:
        return true;
    default:
        return false;
    }
}

void PictureBenchWindow::OpenPicture() {
    if (!ConfirmDiscard())
        return;
    QString folder = QFileInfo(document_.SourcePath()).absolutePath();
    if (document_.SourcePath().isEmpty())
        folder = QStandardPaths::writableLocation(QStandardPaths::PicturesLocation);
    const QString path = QFileDialog::getOpenFileName(
        this, QStringLiteral("Open Picture"), folder,
        QStringLiteral("Pictures (*.jpg *.jpeg *.png *.bmp);;All files (*)"));
    if (path.isEmpty())
        return;
    StopTool();
    if (!service_.OpenByUser(path)) {
        ShowMessage(QStringLiteral("%1 was not opened.").arg(Native(path)));
        QMessageBox::warning(this, QStringLiteral("Picture Not Opened"), document_.LastError());
        return;
    }
    canvas_->ZoomToFit();
    UpdateStatus();
    ShowMessage(QStringLiteral("Opened %1").arg(Native(path)));
}

bool PictureBenchWindow::Save() {
    if (service_.Target().isEmpty())
        return SaveAs();
    QString error;
    {
        QApplication::setOverrideCursor(Qt::WaitCursor);
        error = service_.Save();
        QApplication::restoreOverrideCursor();
    }
    if (!error.isEmpty()) {
        ShowMessage(QStringLiteral("The picture was not saved."));
        QMessageBox::warning(this, QStringLiteral("Picture Not Saved"), error);
        return false;
    }
    return true;
}

bool PictureBenchWindow::SaveAs() {
    QString suggested = service_.Target();
    if (suggested.isEmpty()) {
        const QString folder =
            document_.SourcePath().isEmpty()
                ? QStandardPaths::writableLocation(QStandardPaths::PicturesLocation)
                : QFileInfo(document_.SourcePath()).absolutePath();
        const QString name = document_.SourcePath().isEmpty()
                                 ? QStringLiteral("picture")
                                 : QFileInfo(document_.SourcePath()).completeBaseName();
        suggested = QDir(folder).filePath(name + QStringLiteral(".jpg"));
    }
    QString path = QFileDialog::getSaveFileName(this, QStringLiteral("Save Picture As"), suggested,
                                                QStringLiteral("JPEG pictures (*.jpg *.jpeg)"));
    if (path.isEmpty())
        return false;
    const QString suffix = QFileInfo(path).suffix().toLower();
    if (suffix != QLatin1String("jpg") && suffix != QLatin1String("jpeg"))
        path += QStringLiteral(".jpg");
    service_.SetTarget(path);
    return Save();
}

void PictureBenchWindow::OnSaved(const QString& target) {
    UpdateTitle();
    UpdateStatus();
    ShowMessage(QStringLiteral("Saved to %1").arg(Native(target)));
}

void PictureBenchWindow::OnSourceOpened(const QString& source, const QString& error) {
    StopTool();
    canvas_->ZoomToFit();
    UpdateTitle();
    UpdateStatus();
    // The exercise editor sent the picture: the bench comes forward to edit it.
    if (isMinimized())
        showNormal();
    raise();
    activateWindow();
    if (error.isEmpty()) {
        ShowMessage(source.isEmpty()
                        ? QStringLiteral("A new picture for the exercise editor")
                        : QStringLiteral("Opened %1 from the exercise editor").arg(Native(source)));
        return;
    }
    const QString name = QFileInfo(source).fileName();
    ShowMessage(
        QStringLiteral("%1 could not be opened: a blank picture was started.").arg(Native(source)));
    // Not a box that waits: the link that brought the picture goes on at once.
    auto* box = new QMessageBox(QMessageBox::Warning, QStringLiteral("Picture Not Opened"),
                                QStringLiteral("The picture \"%1\" could not be opened, so a "
                                               "blank picture was started.")
                                    .arg(name.isEmpty() ? Native(source) : name),
                                QMessageBox::Ok, this);
    box->setInformativeText(error);
    box->setAttribute(Qt::WA_DeleteOnClose);
    box->open();
}

void PictureBenchWindow::ChooseTool(QAction* tool) {
    using Tool = PictureCanvas::Tool;
    Tool chosen = Tool::None;
    QString hint;
    if (tool->isChecked()) {
        if (tool == Action(Command::Crop)) {
            chosen = Tool::Crop;
            hint = QStringLiteral("Drag the box or its corners, then press Return (or double-click "
                                  "the box) to crop. Esc puts the tool away.");
        } else if (tool == Action(Command::Arrow)) {
            chosen = Tool::Arrow;
            hint = QStringLiteral("Drag from the tail of the arrow to its head.");
        } else if (tool == Action(Command::Line)) {
            chosen = Tool::Line;
            hint = QStringLiteral("Drag from one end of the line to the other.");
        } else if (tool == Action(Command::Text)) {
            chosen = Tool::Text;
            hint = QStringLiteral("Click where the text goes.");
        }
    }
    canvas_->SetTool(chosen);
    canvas_->setFocus();
    UpdateCommands();
    if (hint.isEmpty())
        statusBar()->clearMessage();
    else
        statusBar()->showMessage(hint);
}

void PictureBenchWindow::StopTool() {
    for (QAction* tool : tools_->actions())
        tool->setChecked(false);
    if (canvas_->CurrentTool() != PictureCanvas::Tool::None)
        statusBar()->clearMessage();
    canvas_->SetTool(PictureCanvas::Tool::None);
    UpdateCommands();
}

void PictureBenchWindow::ApplyCrop() {
    if (canvas_->CurrentTool() != PictureCanvas::Tool::Crop)
        return;
    const QRect box = canvas_->CropBox();
    StopTool();
    document_.Crop(box);
    ShowMessage(
        QStringLiteral("Cropped to %1 \u00d7 %2 pixels").arg(box.width()).arg(box.height()));
}

void PictureBenchWindow::DrawLine(QPointF from, QPointF to) {
    Mark mark;
    mark.kind =
        canvas_->CurrentTool() == PictureCanvas::Tool::Line ? Mark::Kind::Line : Mark::Kind::Arrow;
    mark.from = from;
    mark.to = to;
    mark.colour = markColour_;
    // Medium is the width the picture's marks have by default (0); the others are half
    // and twice as wide.
    const double standard = std::max(2.0, document_.Image().width() / 150.0);
    switch (markWeight_) {
    case MarkWeight::Thin:
        mark.width = std::max(kThinnest, standard / 2);
        break;
    case MarkWeight::Medium:
        mark.width = 0;
        break;
    case MarkWeight::Thick:
        mark.width = standard * 2;
        break;
    }
    document_.Draw(mark);
}

void PictureBenchWindow::AddText(QPointF at) {
    QInputDialog ask(this);
    ask.setWindowTitle(QStringLiteral("Add Text"));
    ask.setLabelText(QStringLiteral("Text to write on the picture (at most %1 characters):")
                         .arg(kMaxTextLength));
    ask.setInputMode(QInputDialog::TextInput);
    ask.setTextValue(QString());
    if (auto* edit = ask.findChild<QLineEdit*>())
        edit->setMaxLength(kMaxTextLength);
    if (ask.exec() != QDialog::Accepted)
        return;
    const QString text = ask.textValue().simplified().left(kMaxTextLength);
    if (text.isEmpty())
        return;
    Mark mark;
    mark.kind = Mark::Kind::Text;
    mark.from = TextInside(at, text, document_.Image().size());
    mark.to = at;
    mark.text = text;
    mark.colour = markColour_;
    document_.Draw(mark);
}

bool PictureBenchWindow::RunAdjustment(AdjustDialog& dialog,
                                       const std::function<QImage(const QImage&)>& adjust,
                                       bool withGrid) {
    StopTool();
    // The preview is worked out on the picture at the size it is shown, so that it follows
    // the sliders at once; OK applies the adjustment to the whole picture.
    const QImage& image = document_.Image();
    const QSize shown = canvas_->PictureRect().size().toSize().expandedTo(QSize(1, 1));
    const QImage base = shown.width() < image.width()
                            ? image.scaled(shown, Qt::KeepAspectRatio, Qt::SmoothTransformation)
                            : image;
    QTimer preview;
    preview.setSingleShot(true);
    preview.setInterval(60);
    connect(&dialog, &AdjustDialog::ValuesChanged, &preview, qOverload<>(&QTimer::start));
    connect(&preview, &QTimer::timeout, this, BenchSlot(this, [this, &adjust, &base, withGrid] {
        canvas_->SetPreview(adjust(base), withGrid);
    }));
    // Beside the picture rather than over its middle.
    dialog.adjustSize();
    const QPoint corner = mapToGlobal(QPoint(width() - dialog.width() - 24, 90));
    dialog.move(corner);
    const bool accepted = dialog.exec() == QDialog::Accepted;
    preview.stop();
    canvas_->ClearPreview();
    return accepted;
}

void PictureBenchWindow::StraightenPicture() {
    AdjustDialog dialog(QStringLiteral("Straighten"),
                        QStringLiteral("Turn the picture until what should stand upright does. "
                                       "The picture is cut a little, so that no empty corner "
                                       "shows."),
                        this);
    const int angle =
        dialog.AddRow(QStringLiteral("&Angle:"), -15, 15, 0.5, 0, QStringLiteral("\u00b0"));
    const auto adjust = [&dialog, angle](const QImage& image) {
        const double degrees = dialog.Value(angle);
        return degrees == 0 ? image : Straighten(image, degrees);
    };
    if (RunAdjustment(dialog, adjust, true) && dialog.Value(angle) != 0)
        document_.Straighten(dialog.Value(angle));
}

void PictureBenchWindow::AdjustBrightnessContrast() {
    AdjustDialog dialog(QStringLiteral("Brightness and Contrast"),
                        QStringLiteral("Make the picture lighter or darker, and its contrast "
                                       "stronger or softer."),
                        this);
    const int brightness = dialog.AddRow(QStringLiteral("&Brightness:"), -100, 100, 1, 0);
    const int contrast = dialog.AddRow(QStringLiteral("&Contrast:"), -100, 100, 1, 0);
    const auto value = [&dialog](int row) { return static_cast<int>(dialog.Value(row)); };
    const auto adjust = [&value, brightness, contrast](const QImage& image) {
        return tarvex::AdjustBrightnessContrast(image, value(brightness), value(contrast));
    };
    if (RunAdjustment(dialog, adjust))
        document_.BrightnessContrast(value(brightness), value(contrast));
}

void PictureBenchWindow::ApplyDrawingLook() {
    AdjustDialog dialog(QStringLiteral("Drawing Look"),
                        QStringLiteral("Make the photo look like a line drawing, so that it "
                                       "prints well beside the drawings of the library. The "
                                       "strength sets how dark its lines are."),
                        this);
    const int strength = dialog.AddRow(QStringLiteral("&Strength:"), 1, 100, 1, 50);
    const auto adjust = [&dialog, strength](const QImage& image) {
        return DrawingLook(image, static_cast<int>(dialog.Value(strength)));
    };
    if (RunAdjustment(dialog, adjust))
        document_.DrawingLook(static_cast<int>(dialog.Value(strength)));
}

void PictureBenchWindow::ShowHowToUse() {
    QMessageBox::information(
        this, QStringLiteral("How to Use Picture Bench"),
        QStringLiteral(
            "<p><b>Picture Bench</b> prepares the picture of an exercise. Double-click the "
            "picture in the exercise editor and it opens here; <b>Save</b> (Ctrl+S) puts it "
            "back in the exercise.</p>"
            "<ul>"
            "<li><b>Crop</b> (C): drag the 4:3 box or its corners, then press Return.</li>"
            "<li><b>Rotate</b> (Ctrl+L, Ctrl+R), <b>Flip</b> and <b>Straighten</b> turn the "
            "picture.</li>"
            "<li><b>Brightness and Contrast</b>, <b>Greyscale</b> and <b>Drawing Look</b> make "
            "it print well.</li>"
            "<li><b>Arrow</b> (A) and <b>Line</b> (L): drag on the picture. <b>Text</b> (T): "
            "click where the label goes. Choose the colour and the width in the Draw menu.</li>"
            "<li>Ctrl and the mouse wheel, or Ctrl+ and Ctrl-, zoom; Ctrl+0 fits the picture "
            "to the window.</li>"
            "<li>Every change can be undone (Ctrl+Z). Esc puts a tool away.</li>"
            "</ul>"
            "<p>Pictures are saved as JPEG files of %1 \u00d7 %2 pixels.</p>")
            .arg(kPictureWidth)
            .arg(kPictureHeight));
}

void PictureBenchWindow::ShowAbout() {
    QMessageBox::about(
        this, QStringLiteral("About Picture Bench"),
        QStringLiteral("<p><b>Picture Bench</b></p>"
                       "<p>The picture editor of TVX Regimenter: it crops, turns, lightens and "
                       "marks the pictures of exercises, and saves them for the exercise "
                       "editor.</p>"));
}

} // namespace tarvex
