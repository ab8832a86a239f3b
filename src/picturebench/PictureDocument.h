#pragma once

#include "picturebench/PictureEdits.h"

#include <QImage>
#include <QObject>
#include <QString>
#include <QUndoStack>
#include <functional>

namespace tarvex {

// The picture being edited in Picture Bench, with the steps that can be undone. Every edit
// goes through Apply, which keeps the picture before and after it: undo and redo put back
// the exact pixels. Consecutive states share their pixels (implicit sharing), so a step
// costs one picture of memory.
class PictureDocument : public QObject {
    Q_OBJECT

public:
    // At most this many steps can be undone: a working picture of 1800x1350 is about
    // 10 MB a step.
    static constexpr int kUndoLimit = 20;
    // A picture is opened at no more than this on its longer side: ample for the saved
    // 900x675, and a phone photo of many megapixels stays small to edit and to undo.
    static constexpr int kWorkingSide = 1800;

    // A new document holds a blank picture (EmptyCanvas).
    explicit PictureDocument(QObject* parent = nullptr);

    // Opens the picture file (an empty path starts a blank picture) and forgets the steps
    // of the picture before. When the file cannot be opened the old picture and its steps
    // stay, and LastError() says why.
    bool Open(const QString& path);
    // Starts editing this picture, as if it had been opened from no file.
    void SetImage(QImage image);

    // Applies the edit to the picture as one step that can be undone, named by the action
    // text (the undo menu shows it). An edit that gives no picture, or the same pixels,
    // leaves no step.
    void Apply(const QString& actionText, const std::function<QImage(const QImage&)>& edit);

    // Saves the picture at the exercise picture size (SavePicture). On success the
    // document counts as unmodified. An empty text on success, else what went wrong.
    QString Save(const QString& target);

    const QImage& Image() const { return image_; }
    QUndoStack* UndoStack() { return &undo_; }
    // True when the picture has changed since it was opened or last saved.
    bool IsModified() const { return !undo_.isClean(); }
    QString SourcePath() const { return sourcePath_; }
    QString LastError() const { return lastError_; }

    // The edits of the bench, each one step.
    void Crop(const QRect& rect);
    void Rotate90(bool clockwise);
    void Flip(Qt::Orientation orientation);
    void Straighten(double degrees);
    void BrightnessContrast(int brightness, int contrast);
    void Greyscale();
    void DrawingLook(int strength);
    void Draw(const Mark& mark);

signals:
    // The picture has changed: opened, edited, undone or redone.
    void ImageChanged();

private:
    // Puts the picture in place (the steps' undo and redo come here) and tells it.
    void Show(QImage image);
    void StartOver(QImage image, const QString& sourcePath);

    QImage image_;
    QUndoStack undo_;
    QString sourcePath_;
    QString lastError_;
};

} // namespace tarvex
