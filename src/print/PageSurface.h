#pragma once

#include <QColor>
#include <QImage>
#include <QSizeF>
#include <QString>

namespace tarvex {

// The font of the text that a surface draws next.
struct SurfaceFont {
    QString Name = QStringLiteral("Arial");
    double Size = 12.0; // points, already multiplied by the print scale
    bool Bold = false;
};

// Page orientations, as the sheets pass them.
inline constexpr int kPortrait = 1;
inline constexpr int kLandscape = 2;

// The one drawing target of all printed output: paper, a PDF file or a page picture of
// the preview. Every length is in twips (1440 an inch), measured from the top left corner
// of the page. The sheets keep the drawing position and the font here, the way a printer
// object does; the implementations only measure and draw.
class PageSurface {
public:
    virtual ~PageSurface() = default;

    // Drawing position: the top left corner of the next text.
    double CurrentX() const { return m_x; }
    double CurrentY() const { return m_y; }
    void SetCurrentX(double x) { m_x = x; }
    void SetCurrentY(double y) { m_y = y; }

    const QString& FontName() const { return m_font.Name; }
    double FontSize() const { return m_font.Size; }
    bool FontBold() const { return m_font.Bold; }
    void SetFontName(const QString& name) { m_font.Name = name; }
    void SetFontSize(double points) { m_font.Size = points; }
    void SetFontBold(bool bold) { m_font.Bold = bold; }
    const SurfaceFont& Font() const { return m_font; }

    // Measured in the current font.
    double TextWidth(const QString& text) const { return MeasureWidth(m_font, text); }
    double TextHeight(const QString& text) const { return MeasureHeight(m_font, text); }

    // Prints at the drawing position and stays on the line: CurrentX moves to the end of
    // the text, CurrentY stays.
    void Print(const QString& text);
    // Prints and ends the line: CurrentY moves down by the line height of the current
    // font and CurrentX goes back to the left edge (0). With no text it only ends the line.
    void PrintLine(const QString& text = QString());
    void EndLine();

    // A straight line in the foreground colour (black).
    virtual void Line(double x1, double y1, double x2, double y2) = 0;
    // An outlined box between two corners.
    virtual void Box(double x1, double y1, double x2, double y2) = 0;
    // A box between two corners filled with a colour, without outline.
    virtual void FillBox(double x1, double y1, double x2, double y2, const QColor& color) = 0;
    // Draws a loaded picture scaled into the box.
    virtual void PaintPicture(const QImage& picture, double x, double y, double width,
                              double height) = 0;

    // Preview page only: clears the page to white.
    virtual void Cls() = 0;
    // Ends the page; what follows goes on a fresh one.
    virtual void NewPage() = 0;
    // Ends the document.
    virtual void EndDoc() = 0;
    // kPortrait or kLandscape; applies to the page that is drawn next.
    virtual void SetOrientation(int orientation) = 0;
    virtual int Orientation() const = 0;
    // The paper in inches as it lies in the current orientation, when the surface knows
    // its paper (a printer or a PDF file); empty otherwise.
    virtual QSizeF PaperInches() const { return {}; }
    // Device pixels to a twip, at which pictures are decoded; unknown, a printer's 600 dpi.
    virtual double PixelsPerTwip() const { return 600.0 / 1440.0; }

protected:
    virtual double MeasureWidth(const SurfaceFont& font, const QString& text) const = 0;
    virtual double MeasureHeight(const SurfaceFont& font, const QString& text) const = 0;
    // Draws text with its top left corner at (x, y).
    virtual void DrawText(double x, double y, const SurfaceFont& font, const QString& text) = 0;

private:
    double m_x = 0.0;
    double m_y = 0.0;
    SurfaceFont m_font;
};

} // namespace tarvex
