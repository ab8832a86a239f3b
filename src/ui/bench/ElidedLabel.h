#pragma once

#include <QFrame>
#include <QString>

namespace tarvex {

// A one-line text of the status line that gives way when the window is narrow: what does
// not fit is left out in the middle (a path keeps its start and its file name), and the
// whole text is in the tool tip.
class ElidedLabel : public QFrame {
    Q_OBJECT
public:
    explicit ElidedLabel(QWidget* parent = nullptr);

    void SetText(const QString& text);
    QString Text() const { return text_; }
    // At most this wide (the status line shares its room); 0 for no limit.
    void SetMaximumTextWidth(int width);

    QSize sizeHint() const override;
    QSize minimumSizeHint() const override;

protected:
    void paintEvent(QPaintEvent* event) override;

private:
    QString text_;
    int maximumTextWidth_ = 0;
};

} // namespace tarvex
