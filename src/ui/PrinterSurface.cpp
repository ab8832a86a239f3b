#include "ui/PrinterSurface.h"

#include <QPrinter>

namespace tarvex {

PrinterSurface::PrinterSurface(QPrinter& printer) : PainterSurface(printer), m_printer(printer) {}

bool PrinterSurface::CanStart(const QPrinter& printer) {
    return printer.outputFormat() != QPrinter::PdfFormat || !printer.outputFileName().isEmpty();
}

bool PrinterSurface::DeviceReady() const {
    return CanStart(m_printer);
}

} // namespace tarvex
