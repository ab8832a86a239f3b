#include "picturebench/PictureDocument.h"

#include <QUndoCommand>
#include <memory>
#include <utility>

namespace tarvex {

namespace {

// One edit as a step of the undo stack: the picture before and after it. Undo and redo
// hand one of them back to the document.
class PictureStep : public QUndoCommand {
public:
    PictureStep(const QString& text, QImage before, QImage after,
                std::function<void(const QImage&)> show)
        : QUndoCommand(text), before_(std::move(before)), after_(std::move(after)),
          show_(std::move(show)) {}

    void undo() override { show_(before_); }
    void redo() override { show_(after_); }

private:
    QImage before_;
    QImage after_;
    std::function<void(const QImage&)> show_;
};

} // namespace

PictureDocument::PictureDocument(QObject* parent) : QObject(parent), image_(EmptyCanvas()) {
    undo_.setUndoLimit(kUndoLimit); // (only possible while the stack is empty)
}

bool PictureDocument::Open(const QString& path) {
    if (path.isEmpty()) {
        StartOver(EmptyCanvas(), {});
        return true;
    }
    OpenedPicture opened = OpenPicture(path, kWorkingSide);
    if (!opened.error.isEmpty()) {
        lastError_ = opened.error;
        return false;
    }
    StartOver(std::move(opened.image), path);
    return true;
}

void PictureDocument::SetImage(QImage image) {
    StartOver(std::move(image), {});
}

void PictureDocument::StartOver(QImage image, const QString& sourcePath) {
    undo_.clear();
    sourcePath_ = sourcePath;
    lastError_.clear();
    Show(std::move(image));
}

void PictureDocument::Show(QImage image) {
    image_ = std::move(image);
    emit ImageChanged();
}

void PictureDocument::Apply(const QString& actionText,
                            const std::function<QImage(const QImage&)>& edit) {
    if (!edit)
        return;
    QImage after = edit(image_);
    if (after.isNull() || after == image_)
        return;
    // The stack owns its steps; pushing does the step's redo, which shows the picture.
    undo_.push(std::make_unique<PictureStep>(actionText, image_, std::move(after),
                                             [this](const QImage& image) { Show(image); })
                   .release());
}

QString PictureDocument::Save(const QString& target) {
    lastError_ = SavePicture(image_, target);
    if (lastError_.isEmpty())
        undo_.setClean();
    return lastError_;
}

void PictureDocument::Crop(const QRect& rect) {
    Apply(QStringLiteral("Crop"),
          [rect](const QImage& image) { return tarvex::Crop(image, rect); });
}

void PictureDocument::Rotate90(bool clockwise) {
    Apply(clockwise ? QStringLiteral("Rotate Right") : QStringLiteral("Rotate Left"),
          [clockwise](const QImage& image) { return tarvex::Rotate90(image, clockwise); });
}

void PictureDocument::Flip(Qt::Orientation orientation) {
    Apply(orientation == Qt::Horizontal ? QStringLiteral("Flip Horizontally")
                                        : QStringLiteral("Flip Vertically"),
          [orientation](const QImage& image) { return tarvex::Flip(image, orientation); });
}

void PictureDocument::Straighten(double degrees) {
    Apply(QStringLiteral("Straighten"),
          [degrees](const QImage& image) { return tarvex::Straighten(image, degrees); });
}

void PictureDocument::BrightnessContrast(int brightness, int contrast) {
    Apply(QStringLiteral("Brightness and Contrast"), [brightness, contrast](const QImage& image) {
        return AdjustBrightnessContrast(image, brightness, contrast);
    });
}

void PictureDocument::Greyscale() {
    Apply(QStringLiteral("Greyscale"),
          [](const QImage& image) { return tarvex::Greyscale(image); });
}

void PictureDocument::DrawingLook(int strength) {
    Apply(QStringLiteral("Drawing Look"),
          [strength](const QImage& image) { return tarvex::DrawingLook(image, strength); });
}

void PictureDocument::Draw(const Mark& mark) {
    QString text;
    switch (mark.kind) {
    case Mark::Kind::Arrow:
        text = QStringLiteral("Draw Arrow");
        break;
    case Mark::Kind::Line:
        text = QStringLiteral("Draw Line");
        break;
    case Mark::Kind::Text:
        text = QStringLiteral("Add Text");
        break;
    }
    Apply(text, [mark](const QImage& image) { return DrawMark(image, mark); });
}

} // namespace tarvex
