#include "print/PageSurface.h"

namespace tarvex {

void PageSurface::Print(const QString& text) {
    if (!text.isEmpty())
        DrawText(m_x, m_y, m_font, text);
    m_x += MeasureWidth(m_font, text);
}

void PageSurface::PrintLine(const QString& text) {
    Print(text);
    EndLine();
}

void PageSurface::EndLine() {
    m_y += MeasureHeight(m_font, QStringLiteral("X"));
    m_x = 0.0;
}

} // namespace tarvex
