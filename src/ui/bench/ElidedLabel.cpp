#include "ui/bench/ElidedLabel.h"

#include <QFontMetrics>
#include <QFontMetricsF>
#include <QPainter>
#include <algorithm>
#include <cmath>

namespace tarvex {

namespace {

constexpr int kPadding = 4;

} // namespace

ElidedLabel::ElidedLabel(QWidget* parent) : QFrame(parent) {
    setSizePolicy(QSizePolicy::Preferred, QSizePolicy::Fixed);
}

void ElidedLabel::SetText(const QString& text) {
    if (text == text_)
        return;
    text_ = text;
    setToolTip(text);
    setAccessibleName(text);
    updateGeometry();
    update();
}

void ElidedLabel::SetMaximumTextWidth(int width) {
    maximumTextWidth_ = width;
    updateGeometry();
}

QSize ElidedLabel::sizeHint() const {
    const QFontMetrics metrics(font());
    // (A pixel to spare: a text exactly as wide as its room may be elided all the same.)
    int width = static_cast<int>(std::ceil(QFontMetricsF(font()).horizontalAdvance(text_))) +
                2 * kPadding + 2;
    if (maximumTextWidth_ > 0)
        width = std::min(width, maximumTextWidth_);
    return {width, metrics.height() + 2};
}

QSize ElidedLabel::minimumSizeHint() const {
    const QFontMetrics metrics(font());
    return {std::min(sizeHint().width(), metrics.horizontalAdvance(QStringLiteral("M")) * 6),
            metrics.height() + 2};
}

void ElidedLabel::paintEvent(QPaintEvent* event) {
    QFrame::paintEvent(event);
    QPainter painter(this);
    const QRect room = contentsRect().adjusted(kPadding, 0, -kPadding, 0);
    const QString shown = fontMetrics().elidedText(text_, Qt::ElideMiddle, room.width());
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(room, Qt::AlignVCenter | Qt::AlignLeft, shown);
}

} // namespace tarvex
