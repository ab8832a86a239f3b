#pragma once

#include <QString>
#include <optional>

namespace tarvex {

// What the open-file dialog is asked to show: a start folder, a filter of description
// and pattern pairs ("1.JPG|1.JPG"), the filter in force (from 1), a preset file name and
// the classic flags (4 hides the read-only box).
struct OpenFileRequest {
    QString Filter;
    int FilterIndex = 1;
    QString InitDir;
    QString FileName;
    int Flags = 0;
};

// The open-file dialog: the full name of the chosen file, or nothing when it was cancelled.
class IOpenFileDialog {
public:
    virtual ~IOpenFileDialog() = default;
    virtual std::optional<QString> ShowOpen(const OpenFileRequest& request) = 0;
};

} // namespace tarvex
