#include "print/PainterSurface.h"

#include "print/PrinterModule.h"
#include "support/Fault.h"

#include <QFontMetricsF>
#include <QPageLayout>
#include <QPagedPaintDevice>
#include <algorithm>

namespace tarvex {

namespace {

constexpr double kTwipsPerInch = 1440.0;

} // namespace

PainterSurface::PainterSurface(QPaintDevice& device, double dotsPerInch)
    : m_device(device), m_paged(dynamic_cast<QPagedPaintDevice*>(&device)),
      m_dpi(dotsPerInch > 0.0 ? dotsPerInch : device.logicalDpiX()) {}

PainterSurface::~PainterSurface() {
    if (m_painter && m_painter->isActive())
        m_painter->end();
}

QPainter& PainterSurface::Painter() {
    if (!m_painter) {
        auto painter = std::make_unique<QPainter>();
        // A printer that is not there, or a file that cannot be written, ends the job.
        if (!DeviceReady() || !painter->begin(&m_device))
            throw Fault(QStringLiteral("The document could not be started on the printer."));
        m_painter = std::move(painter);
    } else if (m_pendingPage && m_paged) {
        m_paged->newPage();
    }
    m_pendingPage = false;
    m_painter->setRenderHint(QPainter::Antialiasing);
    m_painter->setRenderHint(QPainter::TextAntialiasing);
    m_painter->setRenderHint(QPainter::SmoothPixmapTransform);
    m_painter->resetTransform();
    const double scale = m_dpi / kTwipsPerInch;
    m_painter->scale(scale, scale);
    return *m_painter;
}

QFont PainterSurface::QtFont(const SurfaceFont& font) const {
    QFont qfont;
    if (font.Name.compare(QString::fromLatin1(kSymbolFont), Qt::CaseInsensitive) == 0)
        qfont.setFamily(QStringLiteral("DejaVu Sans"));
    else if (font.Name.compare(QStringLiteral("Arial"), Qt::CaseInsensitive) == 0)
        qfont.setFamilies({QStringLiteral("Liberation Sans"), QStringLiteral("Arial")});
    else
        qfont.setFamily(font.Name);
    // One point is 20 twips; the painter draws in twips, so the font is sized to that many
    // device pixels before the painter's scale.
    const double pixels = font.Size * 20.0;
    qfont.setPointSizeF(std::max(0.01, pixels * 72.0 / m_device.logicalDpiY()));
    qfont.setBold(font.Bold);
    qfont.setHintingPreference(QFont::PreferNoHinting);
    return qfont;
}

QString PainterSurface::DrawnText(const SurfaceFont& font, const QString& text) {
    if (font.Name.compare(QString::fromLatin1(kSymbolFont), Qt::CaseInsensitive) != 0)
        return text;
    QString drawn;
    for (const QChar c : text) {
        switch (c.unicode()) {
        case kTickedBoxCode:
            drawn.append(QChar(0x2611));
            break;
        case kEmptyBoxCode:
            drawn.append(QChar(0x2610));
            break;
        case kArrowCode:
            drawn.append(QChar(0x2794));
            break;
        default:
            drawn.append(c);
            break;
        }
    }
    return drawn;
}

double PainterSurface::MeasureWidth(const SurfaceFont& font, const QString& text) const {
    return QFontMetricsF(QtFont(font), &m_device).horizontalAdvance(DrawnText(font, text));
}

double PainterSurface::MeasureHeight(const SurfaceFont& font, const QString&) const {
    return QFontMetricsF(QtFont(font), &m_device).height();
}

void PainterSurface::DrawText(double x, double y, const SurfaceFont& font, const QString& text) {
    QPainter& painter = Painter();
    const QFont qfont = QtFont(font);
    painter.setFont(qfont);
    painter.setPen(Qt::black);
    const QFontMetricsF metrics(qfont, &m_device);
    painter.drawText(QPointF(x, y + metrics.ascent()), DrawnText(font, text));
}

void PainterSurface::Line(double x1, double y1, double x2, double y2) {
    QPainter& painter = Painter();
    painter.setPen(QPen(Qt::black, 15.0));
    painter.drawLine(QPointF(x1, y1), QPointF(x2, y2));
}

void PainterSurface::Box(double x1, double y1, double x2, double y2) {
    QPainter& painter = Painter();
    painter.setPen(QPen(Qt::black, 15.0));
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRectF(QPointF(x1, y1), QPointF(x2, y2)).normalized());
}

void PainterSurface::FillBox(double x1, double y1, double x2, double y2, const QColor& color) {
    QPainter& painter = Painter();
    painter.fillRect(QRectF(QPointF(x1, y1), QPointF(x2, y2)).normalized(), color);
}

void PainterSurface::PaintPicture(const QImage& picture, double x, double y, double width,
                                  double height) {
    QPainter& painter = Painter();
    painter.drawImage(QRectF(x, y, width, height), picture);
}

double PainterSurface::PixelsPerTwip() const {
    // A printer or a PDF file takes the picture as it is and lays it over its own dots: a
    // printer in screen resolution draws in 96 logical dots an inch but prints at its
    // physical resolution, so the picture is read for the latter.
    const double dpi =
        m_paged ? std::max(m_dpi, static_cast<double>(m_device.physicalDpiX())) : m_dpi;
    return dpi / kTwipsPerInch;
}

void PainterSurface::Cls() {
    QPainter& painter = Painter();
    painter.save();
    painter.resetTransform();
    painter.fillRect(QRect(0, 0, m_device.width(), m_device.height()), Qt::white);
    painter.restore();
    SetCurrentX(0.0);
    SetCurrentY(0.0);
}

void PainterSurface::NewPage() {
    if (!m_painter) {
        // Nothing drawn yet: the first page is still blank, keep it as a page of its own.
        Painter();
    }
    m_pendingPage = true;
    SetCurrentX(0.0);
    SetCurrentY(0.0);
}

void PainterSurface::EndDoc() {
    if (m_painter && m_painter->isActive())
        m_painter->end();
    m_painter.reset();
    m_pendingPage = false;
}

void PainterSurface::SetOrientation(int orientation) {
    m_orientation = orientation == kPortrait ? kPortrait : kLandscape;
    if (m_paged) {
        m_paged->setPageOrientation(m_orientation == kPortrait ? QPageLayout::Portrait
                                                               : QPageLayout::Landscape);
    }
}

QSizeF PainterSurface::PaperInches() const {
    if (!m_paged)
        return {};
    return m_paged->pageLayout().fullRect(QPageLayout::Inch).size();
}

} // namespace tarvex
