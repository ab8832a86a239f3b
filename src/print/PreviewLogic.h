#pragma once

#include "print/PageSurface.h"
#include "shell/AppState.h"

#include <QImage>
#include <QRect>
#include <QString>
#include <cstdint>
#include <functional>
#include <memory>
#include <vector>

namespace tarvex {

class PainterSurface;

// A scroll bar of the preview, in twips. The value is the negative of the page's offset.
struct PreviewScrollBar {
    int Left = 0;
    int Top = 0;
    int Width = 255;
    int Height = 255;
    int Min = 0;
    int Max = 0;
    int Value = 0;
    int SmallChange = 1;
    int LargeChange = 1;
    bool Visible = true;
};

// One page picture of the preview: the image and where it lies in the viewport (twips).
struct PreviewPage {
    QImage Image;
    int Top = 0;
    int Left = 0;
    int Width = 0;  // twips
    int Height = 0; // twips
    bool Visible = false;
};

// What the window is to do after a key or a toolbar button.
enum class PreviewAction { None, Print, Close };

// Who received a key: the scroll bars and the viewport only close on Esc; the page also
// scrolls.
enum class PreviewKeyTarget { ScrollBar, Frame, Page };

// Key codes as the preview understands them.
inline constexpr int kKeyEscape = 27;
inline constexpr int kKeyLeft = 37;
inline constexpr int kKeyUp = 38;
inline constexpr int kKeyRight = 39;
inline constexpr int kKeyDown = 40;

// The print preview, frmPrintPreview, without its window: the page pictures, the zoom,
// paging, the two scroll bars and the keys. All lengths are twips; twipsPerPixel converts
// them to the pixels of the page pictures and of the window.
class PreviewLogic {
public:
    static constexpr double kStartScale = 0.75;
    static constexpr double kMinScale = 0.25;
    static constexpr double kMaxScale = 2.0;
    static constexpr double kScaleStep = 0.25;
    static constexpr int kScrollStep = 300;
    static constexpr int kScrollStart = -150;
    // The page area's place in the form, in twips: its inset from the form's left, what the
    // form's width and height have beyond it, and the room each scroll bar has at its edge.
    static constexpr int kFrameInset = 60;
    static constexpr int kWidthAllowance = 120;
    static constexpr int kHeightAllowance = 1155;
    static constexpr int kScrollBarRoom = 315;

    // printer: the printer whose orientation each drawing run sets for the job.
    PreviewLogic(AppState& state, PageSurface& printer, double twipsPerPixel = 15.0);
    ~PreviewLogic();
    PreviewLogic(const PreviewLogic&) = delete;
    PreviewLogic& operator=(const PreviewLogic&) = delete;

    // Form load: places the form for a screen of the given size (twips), sets up the
    // scroll bars and the zoom, and draws the job. Returns the form's rectangle in twips.
    QRect Load(int screenWidth, int screenHeight);

    // Draws every page of the job in PrintJobKind again, at the current PrintScale.
    void DoPrintPreview();
    // Shows or hides the scroll bars for the page on show and sets their ranges.
    void RecalcSizes();
    // Arrow keys scroll by 300 twips; other keys do nothing.
    void ScrollByKey(int keyCode);
    // The next page picture for a sheet in the preview.
    PageSurface* NewPage();

    // The form changed its size (twips, outer frame included).
    void Resize(int formWidth, int formHeight);
    // The scroll bars moved: a change is ignored while the sizes are applied, a live
    // scroll never.
    void VScrollChanged(int value);
    void VScrollScrolled(int value);
    void HScrollChanged(int value);
    void HScrollScrolled(int value);
    // A key pressed on one of the controls.
    PreviewAction KeyDown(PreviewKeyTarget target, int keyCode);
    // A toolbar button by its key. "Print" and "OK" are left to the window.
    PreviewAction Toolbar(const QString& key);

    // Prints the job on the printer, at scale 1.0, the cover sheet first when it goes with
    // the job. The preview stays as it is.
    void PrintFromPreview(PageSurface& printer, const std::function<bool()>& printDialog);

    void GoToPage(int direction); // 0 previous, 1 next
    void ZoomBy(int direction);   // 0 in, 1 out

    int16_t CurrentPage() const { return m_currentPage; }
    int16_t LastPage() const { return m_lastPage; }
    bool Loading() const { return m_loading; }
    bool ApplyingSizes() const { return m_applyingSizes; }
    double Scale() const { return m_state.Print.PrintScale; }
    const QString& PageStatus() const { return m_status; }
    bool PrevEnabled() const { return m_prevEnabled; }
    bool NextEnabled() const { return m_nextEnabled; }
    bool PatchVisible() const { return m_patchVisible; }
    int PatchTop() const { return m_patchTop; }
    int PatchLeft() const { return m_patchLeft; }
    int FrameWidth() const { return m_frameWidth; }
    int FrameHeight() const { return m_frameHeight; }
    void SetFrameSize(int width, int height);
    const PreviewScrollBar& VScroll() const { return m_vscroll; }
    const PreviewScrollBar& HScroll() const { return m_hscroll; }
    void SetScrollBarThickness(int twips);
    int PageCount() const { return static_cast<int>(m_pages.size()); }
    const PreviewPage& Page(int index) const { return *m_pages.at(static_cast<size_t>(index)); }
    double TwipsPerPixel() const { return m_twipsPerPixel; }

    // Called after anything that the window shows has changed.
    std::function<void()> Changed;

private:
    PreviewPage& Current() { return *m_pages.at(static_cast<size_t>(m_currentPage)); }
    void SizePage(PreviewPage& page, bool clear);
    PageSurface* StartSurface(PreviewPage& page);
    void UpdatePageStatus();
    void SetVValue(int value);
    void SetHValue(int value);
    void Notify();

    AppState& m_state;
    PageSurface& m_printer;
    double m_twipsPerPixel;
    int16_t m_currentPage = 0;
    int16_t m_lastPage = 0;
    bool m_loading = false;
    bool m_applyingSizes = false;
    std::vector<std::unique_ptr<PreviewPage>> m_pages;
    std::vector<std::unique_ptr<PainterSurface>> m_surfaces; // only during a drawing run
    PreviewScrollBar m_vscroll;
    PreviewScrollBar m_hscroll;
    int m_frameWidth = 0;
    int m_frameHeight = 0;
    bool m_patchVisible = true;
    int m_patchTop = 0;
    int m_patchLeft = 0;
    bool m_prevEnabled = false;
    bool m_nextEnabled = false;
    QString m_status;
};

} // namespace tarvex
