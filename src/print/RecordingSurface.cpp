#include "print/RecordingSurface.h"

namespace tarvex {

void RecordingSurface::Add(RecordedOp op) {
    op.page = m_page;
    op.font = Font();
    m_ops.append(op);
}

void RecordingSurface::Line(double x1, double y1, double x2, double y2) {
    RecordedOp op;
    op.kind = RecordedOp::Kind::Line;
    op.x = x1, op.y = y1, op.x2 = x2, op.y2 = y2;
    Add(op);
}

void RecordingSurface::Box(double x1, double y1, double x2, double y2) {
    RecordedOp op;
    op.kind = RecordedOp::Kind::Box;
    op.x = x1, op.y = y1, op.x2 = x2, op.y2 = y2;
    Add(op);
}

void RecordingSurface::FillBox(double x1, double y1, double x2, double y2, const QColor& color) {
    RecordedOp op;
    op.kind = RecordedOp::Kind::FillBox;
    op.x = x1, op.y = y1, op.x2 = x2, op.y2 = y2;
    op.color = color;
    Add(op);
}

void RecordingSurface::PaintPicture(const QImage& picture, double x, double y, double width,
                                    double height) {
    RecordedOp op;
    op.kind = RecordedOp::Kind::Picture;
    op.x = x, op.y = y, op.x2 = width, op.y2 = height;
    op.text = QStringLiteral("%1x%2").arg(picture.width()).arg(picture.height());
    Add(op);
}

void RecordingSurface::Cls() {
    RecordedOp op;
    op.kind = RecordedOp::Kind::Cls;
    Add(op);
}

void RecordingSurface::NewPage() {
    RecordedOp op;
    op.kind = RecordedOp::Kind::NewPage;
    Add(op);
    ++m_page;
    SetCurrentX(0.0);
    SetCurrentY(0.0);
}

void RecordingSurface::EndDoc() {
    RecordedOp op;
    op.kind = RecordedOp::Kind::EndDoc;
    Add(op);
}

void RecordingSurface::SetOrientation(int orientation) {
    m_orientation = orientation;
    RecordedOp op;
    op.kind = RecordedOp::Kind::Orientation;
    op.orientation = orientation;
    Add(op);
}

QList<RecordedOp> RecordingSurface::OpsOf(RecordedOp::Kind kind) const {
    QList<RecordedOp> result;
    for (const RecordedOp& op : m_ops) {
        if (op.kind == kind)
            result.append(op);
    }
    return result;
}

QList<RecordedOp> RecordingSurface::TextsOnPage(int page) const {
    QList<RecordedOp> result;
    for (const RecordedOp& op : m_ops) {
        if (op.kind == RecordedOp::Kind::Text && op.page == page)
            result.append(op);
    }
    return result;
}

const RecordedOp* RecordingSurface::FindText(const QString& text) const {
    for (const RecordedOp& op : m_ops) {
        if (op.kind == RecordedOp::Kind::Text && op.text == text)
            return &op;
    }
    return nullptr;
}

void RecordingSurface::Clear() {
    m_ops.clear();
    m_page = 0;
}

double RecordingSurface::MeasureWidth(const SurfaceFont& font, const QString& text) const {
    return text.size() * CharWidth(font.Size);
}

double RecordingSurface::MeasureHeight(const SurfaceFont& font, const QString&) const {
    return LineHeight(font.Size);
}

void RecordingSurface::DrawText(double x, double y, const SurfaceFont& font, const QString& text) {
    RecordedOp op;
    op.kind = RecordedOp::Kind::Text;
    op.x = x, op.y = y;
    op.text = text;
    Add(op);
    m_ops.last().font = font;
}

} // namespace tarvex
