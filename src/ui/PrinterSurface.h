#pragma once

#include "print/PainterSurface.h"

class QPrinter;

namespace tarvex {

// The page surface of the program's printer. On a machine without any printer Qt makes
// the printer a PDF writer without a file; starting a document there fails and leaves the
// printer unusable for good, so such a job ends before it starts.
class PrinterSurface : public PainterSurface {
public:
    explicit PrinterSurface(QPrinter& printer);

    static bool CanStart(const QPrinter& printer);

protected:
    bool DeviceReady() const override;

private:
    QPrinter& m_printer;
};

} // namespace tarvex
