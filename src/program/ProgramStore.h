#pragma once

#include <cstdint>
#include <optional>

namespace tarvex {

struct AppState;
class Shell;
class Prompter;

// Moves the one program between memory and the database: one Invoice row with its
// Exercise and Items rows. A stored program is never edited in place: it is kept beside
// a new one, or deleted and written again under a new InvoiceID.
class ProgramStore {
public:
    ProgramStore(AppState& state, Shell& shell, Prompter& prompter);

    // Saves a modified program of the current patient; with prompt set, asks first. The
    // delete of a replaced program and the writes of its successor form one transaction:
    // a failure leaves the old program in place and the memory as it was.
    void SaveProgram(bool prompt);

    // Loads a stored program into memory: the given one (its patient becomes current), or
    // with null the latest of the current patient. A patient without programs gets the
    // defaults from the clinic's record. The order lines are never read back. A load that
    // fails leaves the program in memory, the caption and the status line as they were.
    void LoadProgram(std::optional<int32_t> invoiceID);

private:
    void ReadProgram(std::optional<int32_t> invoiceID);
    void WriteRows();
    void ReadExercises(int32_t invoiceID);
    void FillDefaults();

    AppState& state_;
    Shell& shell_;
    Prompter& prompter_;
};

} // namespace tarvex
