#pragma once

#include "support/Controls.h"

#include <QString>

namespace tarvex {

struct AppState;
class Shell;
class Prompter;

// What the library list needs of the program around it.
class ILibraryListHost {
public:
    virtual ~ILibraryListHost() = default;
    // Shows the exercise editor, or brings it forward when it is open already.
    virtual void ShowExerciseEditor() = 0;
    // The companion picture editor's program file, beside the program's own.
    virtual QString PictureBenchProgram() const = 0;
    // Starts a program without waiting for it.
    virtual void StartDetached(const QString& program) = 0;
    // Closes and opens the databases again and rebuilds the selection workspace from the
    // library as it now is.
    virtual void ReopenDatabasesAndRebuildWorkspace() = 0;
};

// The logic of "Exercise Library": every exercise of the library in a report list of five
// columns, from which exercises are added, edited and deleted. The delivered exercises
// (numbers below 244) can be edited but never deleted.
class LibraryListLogic {
public:
    static constexpr const char* kCaption = "Exercise Library";
    static constexpr int kFirstDeletable = 244;

    LibraryListLogic(AppState& state, Shell& shell, Prompter& prompter, IReportList& listView1,
                     ILibraryListHost& host);

    // Opening: the main window's commands restricted, the list filled, the picture editor
    // started (a missing one is said in a box and the window opens all the same).
    void Load();
    // Rebuilds the list from the library.
    void cmdFillListBox_Click();
    void cmdAdd_Click();
    // Also the list's double click. With no row chosen it is a fault.
    void cmdEdit_Click();
    void cmdDelete_Click();
    void cmdCleanText_Click();
    // Leaving: the databases opened again and the workspace rebuilt. The window then unloads.
    void cmdExit_Click();
    // A click on a column header (from 0): the list sorts by that column's text.
    void ListView1_ColumnClick(int column);
    // Whatever ends the window: the main window's commands come back, with no patient.
    void Unload();

    // The text with each carriage return made one blank and each line feed dropped.
    static QString CleanText(const QString& text);
    // The number as the list's first column shows it: three digits at least.
    static QString FormatCode(qint64 exerciseID);

private:
    // The chosen row, or a fault when none is.
    int SelectedRow() const;

    AppState& state_;
    Shell& shell_;
    Prompter& prompter_;
    IReportList& list_;
    ILibraryListHost& host_;
};

} // namespace tarvex
