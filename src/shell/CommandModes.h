#pragma once

namespace tarvex {

// Which toolbar buttons may be used.
enum class ToolbarMode {
    HelpOnly = 0,    // "Help"
    PatientOnly = 1, // "Patient", "Programs", "Help": no patient chosen yet
    All = 2,
    PrintOnly = 3, // "Preview", "Print", "Help"
    None = 4,      // not even "Help"
};

// Which of the eight restricted menu entries may be used.
enum class MenuMode {
    None = 0,
    PrintOnly = 1, // print and preview
    All = 2,
};

} // namespace tarvex
