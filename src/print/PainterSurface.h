#pragma once

#include "print/PageSurface.h"

#include <QPainter>
#include <memory>

class QPaintDevice;
class QPagedPaintDevice;

namespace tarvex {

// A page surface that draws with QPainter on any paint device: a QPdfWriter, a page
// picture (QImage) of the preview, or a printer. Twip 0,0 is the top left corner of the
// device; a paged device should have no margins. "Arial" is drawn in Liberation Sans, and
// the three "Wingdings" characters as the ballot boxes and the arrow of DejaVu Sans.
//
// Page breaks and orientation work on paged devices (QPdfWriter, QPrinter) only. A new
// page begins at the first drawing after NewPage, so that an orientation set in between
// applies to it.
class PainterSurface : public PageSurface {
public:
    // dotsPerInch: device pixels of one page inch; 0 takes the device's logical DPI.
    explicit PainterSurface(QPaintDevice& device, double dotsPerInch = 0.0);
    ~PainterSurface() override;

    void Line(double x1, double y1, double x2, double y2) override;
    void Box(double x1, double y1, double x2, double y2) override;
    void FillBox(double x1, double y1, double x2, double y2, const QColor& color) override;
    void PaintPicture(const QImage& picture, double x, double y, double width,
                      double height) override;
    void Cls() override;
    void NewPage() override;
    void EndDoc() override;
    void SetOrientation(int orientation) override;
    int Orientation() const override { return m_orientation; }
    QSizeF PaperInches() const override;
    double PixelsPerTwip() const override;

    // The Qt font that draws a surface font, with its size in twips.
    QFont QtFont(const SurfaceFont& font) const;
    // The text as drawn: the symbol font's codes become their Unicode characters.
    static QString DrawnText(const SurfaceFont& font, const QString& text);

protected:
    // Whether the device can start a document now; a device that cannot ends the job
    // before any drawing, as one whose start fails.
    virtual bool DeviceReady() const { return true; }

    double MeasureWidth(const SurfaceFont& font, const QString& text) const override;
    double MeasureHeight(const SurfaceFont& font, const QString& text) const override;
    void DrawText(double x, double y, const SurfaceFont& font, const QString& text) override;

private:
    QPainter& Painter();

    QPaintDevice& m_device;
    QPagedPaintDevice* m_paged = nullptr;
    double m_dpi = 0.0;
    std::unique_ptr<QPainter> m_painter;
    bool m_pendingPage = false;
    int m_orientation = kPortrait;
};

} // namespace tarvex
