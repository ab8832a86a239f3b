#pragma once

#include "print/PageSurface.h"

#include <QList>

namespace tarvex {

// One operation that a RecordingSurface saw.
struct RecordedOp {
    enum class Kind { Text, Line, Box, FillBox, Picture, Cls, NewPage, EndDoc, Orientation };
    Kind kind = Kind::Text;
    int page = 0;              // 0-based page the operation belongs to
    double x = 0.0, y = 0.0;   // text: top left; lines and boxes: first corner; pictures: box
    double x2 = 0.0, y2 = 0.0; // lines and boxes: second corner; pictures: width and height
    QString text;
    SurfaceFont font;
    QColor color;
    int orientation = 0;
};

// A surface that draws nothing and records every operation, for tests. Its metrics are
// fixed and independent of any installed font:
//   width of a text  = number of characters x 0.5 x font size x 20 twips
//   height of a text = 1.2 x font size x 20 twips (whatever the text)
// so that a 12 point character is 120 twips wide and a 12 point line 288 twips high.
class RecordingSurface : public PageSurface {
public:
    static double CharWidth(double points) { return 0.5 * points * 20.0; }
    static double LineHeight(double points) { return 1.2 * points * 20.0; }

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

    const QList<RecordedOp>& Ops() const { return m_ops; }
    // Operations of one kind, in order.
    QList<RecordedOp> OpsOf(RecordedOp::Kind kind) const;
    // Texts in drawing order (all pages, or one page).
    QList<RecordedOp> Texts() const { return OpsOf(RecordedOp::Kind::Text); }
    QList<RecordedOp> TextsOnPage(int page) const;
    // The first text op whose text equals the given one; nullptr if none.
    const RecordedOp* FindText(const QString& text) const;
    // Number of pages drawn on so far (1 + number of NewPage calls).
    int PageCount() const { return m_page + 1; }
    void Clear();

protected:
    double MeasureWidth(const SurfaceFont& font, const QString& text) const override;
    double MeasureHeight(const SurfaceFont& font, const QString& text) const override;
    void DrawText(double x, double y, const SurfaceFont& font, const QString& text) override;

private:
    void Add(RecordedOp op);

    QList<RecordedOp> m_ops;
    int m_page = 0;
    int m_orientation = kPortrait;
};

} // namespace tarvex
