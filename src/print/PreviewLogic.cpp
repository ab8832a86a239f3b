#include "print/PreviewLogic.h"

#include "print/OrderForm.h"
#include "print/PainterSurface.h"
#include "print/PrintJob.h"
#include "print/PrinterModule.h"

#include <algorithm>
#include <cmath>

namespace tarvex {

PreviewLogic::PreviewLogic(AppState& state, PageSurface& printer, double twipsPerPixel)
    : m_state(state), m_printer(printer),
      m_twipsPerPixel(twipsPerPixel > 0.0 ? twipsPerPixel : 15.0) {
    m_pages.push_back(std::make_unique<PreviewPage>());
    m_pages.front()->Visible = true;
}

PreviewLogic::~PreviewLogic() = default;

void PreviewLogic::SetFrameSize(int width, int height) {
    m_frameWidth = width;
    m_frameHeight = height;
}

void PreviewLogic::SetScrollBarThickness(int twips) {
    m_vscroll.Width = twips;
    m_hscroll.Height = twips;
}

void PreviewLogic::Notify() {
    if (Changed)
        Changed();
}

QRect PreviewLogic::Load(int screenWidth, int screenHeight) {
    m_loading = true;
    m_currentPage = 0;
    const double p = m_twipsPerPixel;
    const QRect form(static_cast<int>(8 * p), static_cast<int>(4 * p),
                     static_cast<int>(std::min(660 * p, 0.96 * screenWidth)),
                     static_cast<int>(std::min(770 * p, 0.98 * screenHeight)));
    for (PreviewScrollBar* bar : {&m_vscroll, &m_hscroll}) {
        bar->SmallChange = kScrollStep;
        bar->Min = kScrollStart;
        bar->Max = std::max(bar->Max, kScrollStart);
        bar->Value = kScrollStart;
    }
    m_pages.front()->Top = -kScrollStart;
    m_pages.front()->Left = -kScrollStart;
    m_state.Print.PrintScale = kStartScale;
    m_loading = false;
    DoPrintPreview();
    return form;
}

void PreviewLogic::SizePage(PreviewPage& page, bool clear) {
    const double scale = m_state.Print.PrintScale;
    // The page is the printer's paper at the zoom; the sheets are laid out on the page size
    // of their orientation, which is the paper when the printer's paper is not known.
    const QSizeF paper = m_printer.PaperInches();
    const double width = paper.isEmpty() ? m_state.Print.PageWidthInches : paper.width();
    const double height = paper.isEmpty() ? m_state.Print.PageHeightInches : paper.height();
    page.Width = static_cast<int>(std::lround(width * 1440.0 * scale));
    page.Height = static_cast<int>(std::lround(height * 1440.0 * scale));
    const QSize pixels(std::max(1, static_cast<int>(std::lround(page.Width / m_twipsPerPixel))),
                       std::max(1, static_cast<int>(std::lround(page.Height / m_twipsPerPixel))));
    if (page.Image.size() != pixels) {
        page.Image = QImage(pixels, QImage::Format_RGB32);
        clear = true;
    }
    if (clear)
        page.Image.fill(Qt::white);
}

PageSurface* PreviewLogic::StartSurface(PreviewPage& page) {
    m_surfaces.push_back(std::make_unique<PainterSurface>(page.Image, 1440.0 / m_twipsPerPixel));
    return m_surfaces.back().get();
}

void PreviewLogic::DoPrintPreview() {
    PrintState& print = m_state.Print;
    SetPageOrientation(m_printer, print, JobOrientation(print.PrintJobKind));
    m_lastPage = 0;
    SizePage(*m_pages.front(), true);
    print.IsPreview = true;
    PageSurface* first = StartSurface(*m_pages.front());
    try {
        DrawPrintJob(*first, m_state, PrintVideoOrderForm, [this] { return NewPage(); });
    } catch (...) {
        // The routine ends; what was drawn so far stays on show.
    }
    m_surfaces.clear(); // ends the painters: the pictures are complete
    m_prevEnabled = true;
    m_nextEnabled = m_pages.size() > 1;
    UpdatePageStatus();
    Notify();
}

PageSurface* PreviewLogic::NewPage() {
    ++m_lastPage;
    if (m_lastPage == static_cast<int>(m_pages.size())) {
        auto page = std::make_unique<PreviewPage>();
        // A new element takes the place of the first one; it stays hidden until shown.
        page->Top = m_pages.front()->Top;
        page->Left = m_pages.front()->Left;
        m_pages.push_back(std::move(page));
    }
    PreviewPage& page = *m_pages.at(static_cast<size_t>(m_lastPage));
    SizePage(page, true);
    PageSurface* surface = StartSurface(page);
    surface->Cls();
    return surface;
}

void PreviewLogic::UpdatePageStatus() {
    if (m_currentPage == 0) {
        m_prevEnabled = false;
        m_nextEnabled = true;
    } else if (m_currentPage == m_lastPage) {
        m_prevEnabled = true;
        m_nextEnabled = false;
    } else {
        m_prevEnabled = true;
        m_nextEnabled = true;
    }
    m_status = QStringLiteral("Page: %1 of %2").arg(m_currentPage + 1).arg(m_lastPage + 1);
}

void PreviewLogic::GoToPage(int direction) {
    const int16_t shown = m_currentPage;
    m_currentPage = static_cast<int16_t>(m_currentPage + (direction == 0 ? -1 : 1));
    if (m_currentPage < 0) {
        m_currentPage = 0;
        return;
    }
    if (m_currentPage > m_lastPage) {
        m_currentPage = m_lastPage;
        return;
    }
    PreviewPage& old = *m_pages.at(static_cast<size_t>(shown));
    PreviewPage& page = Current();
    page.Top = old.Top;
    page.Left = old.Left;
    old.Visible = false;
    SizePage(page, false);
    page.Visible = true;
    UpdatePageStatus();
    Notify();
}

void PreviewLogic::ZoomBy(int direction) {
    double& scale = m_state.Print.PrintScale;
    if (direction == 0) {
        if (scale >= kMaxScale)
            return;
        scale = std::min(kMaxScale, scale + kScaleStep);
    } else {
        if (scale <= kMinScale)
            return;
        scale -= kScaleStep;
        if (scale < kMinScale)
            scale = 0.252;
    }
    DoPrintPreview();
    RecalcSizes();
}

void PreviewLogic::RecalcSizes() {
    PreviewPage& page = Current();
    bool hidden = false;
    int v = page.Height - m_frameHeight + m_hscroll.Height;
    if (v >= -100) {
        m_vscroll.Visible = true;
    } else {
        page.Top = 50;
        m_vscroll.Visible = false;
        hidden = true;
    }
    m_applyingSizes = true;
    if (v < 1)
        v = 1;
    m_vscroll.Max = v + 150;
    SetVValue(m_vscroll.Value); // a lower maximum pulls the value back
    m_vscroll.LargeChange = v < m_frameHeight ? v : m_frameHeight;
    const int h = page.Width - m_frameWidth + m_vscroll.Width + 230;
    m_hscroll.Max = h + 150;
    SetHValue(m_hscroll.Value);
    if (h >= 1) {
        m_hscroll.LargeChange = h < m_frameWidth ? h : m_frameWidth;
        m_hscroll.Visible = true;
    } else {
        page.Left = 50;
        m_hscroll.LargeChange = 1;
        m_hscroll.Visible = false;
        hidden = true;
    }
    m_applyingSizes = false;
    m_patchVisible = !hidden;
    Notify();
}

void PreviewLogic::SetVValue(int value) {
    const int clamped = std::clamp(value, m_vscroll.Min, std::max(m_vscroll.Min, m_vscroll.Max));
    if (clamped == m_vscroll.Value)
        return;
    m_vscroll.Value = clamped;
    VScrollChanged(clamped);
}

void PreviewLogic::SetHValue(int value) {
    const int clamped = std::clamp(value, m_hscroll.Min, std::max(m_hscroll.Min, m_hscroll.Max));
    if (clamped == m_hscroll.Value)
        return;
    m_hscroll.Value = clamped;
    HScrollChanged(clamped);
}

void PreviewLogic::VScrollChanged(int value) {
    m_vscroll.Value = value;
    if (m_applyingSizes)
        return;
    Current().Top = -value;
    Notify();
}

void PreviewLogic::VScrollScrolled(int value) {
    m_vscroll.Value = value;
    Current().Top = -value;
    Notify();
}

void PreviewLogic::HScrollChanged(int value) {
    m_hscroll.Value = value;
    if (m_applyingSizes)
        return;
    Current().Left = -value;
    Notify();
}

void PreviewLogic::HScrollScrolled(int value) {
    m_hscroll.Value = value;
    Current().Left = -value;
    Notify();
}

void PreviewLogic::Resize(int formWidth, int formHeight) {
    if (m_loading)
        return;
    m_frameWidth = formWidth - kWidthAllowance;
    m_vscroll.Left = m_frameWidth - kScrollBarRoom;
    m_hscroll.Width = m_vscroll.Left;
    m_frameHeight = formHeight - kHeightAllowance;
    m_hscroll.Top = m_frameHeight - kScrollBarRoom;
    m_vscroll.Height = m_hscroll.Top;
    m_patchTop = m_hscroll.Top;
    m_patchLeft = m_vscroll.Left;
    RecalcSizes();
}

void PreviewLogic::ScrollByKey(int keyCode) {
    switch (keyCode) {
    case kKeyDown:
        SetVValue(m_vscroll.Value + kScrollStep);
        break;
    case kKeyUp:
        SetVValue(m_vscroll.Value - kScrollStep);
        break;
    case kKeyRight:
        SetHValue(m_hscroll.Value + kScrollStep);
        break;
    case kKeyLeft:
        SetHValue(m_hscroll.Value - kScrollStep);
        break;
    default:
        break;
    }
}

PreviewAction PreviewLogic::KeyDown(PreviewKeyTarget target, int keyCode) {
    if (keyCode == kKeyEscape)
        return PreviewAction::Close;
    if (target == PreviewKeyTarget::Page)
        ScrollByKey(keyCode);
    return PreviewAction::None;
}

PreviewAction PreviewLogic::Toolbar(const QString& key) {
    if (key == QLatin1String("Print"))
        return PreviewAction::Print;
    if (key == QLatin1String("ZoomIn"))
        ZoomBy(0);
    else if (key == QLatin1String("ZoomOut"))
        ZoomBy(1);
    else if (key == QLatin1String("Prev"))
        GoToPage(0);
    else if (key == QLatin1String("Next"))
        GoToPage(1);
    else if (key == QLatin1String("OK"))
        return PreviewAction::Close;
    return PreviewAction::None;
}

void PreviewLogic::PrintFromPreview(PageSurface& printer,
                                    const std::function<bool()>& printDialog) {
    PrintState& print = m_state.Print;
    const JobKind job = print.PrintJobKind;
    if (m_state.Prefs.PrintPatientCover && (job == kJobExercises2 || job == kJobExercises4)) {
        print.PrintJobKind = kJobCoverSheet;
        RunPrintJob(m_state, printer, printDialog, PrintVideoOrderForm);
        print.PrintJobKind = job;
    }
    RunPrintJob(m_state, printer, printDialog, PrintVideoOrderForm);
}

} // namespace tarvex
