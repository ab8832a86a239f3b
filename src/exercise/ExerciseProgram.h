#pragma once

#include "exercise/ExerciseEntry.h"
#include "support/Currency.h"

#include <QDateTime>
#include <array>
#include <optional>

namespace tarvex {

// One line of the video order.
struct OrderItem {
    QString PartNumber;
    QString Description;
    int16_t Qty = 0;
    Currency Price;
};

// The one program in memory: the current patient, the selected exercises and the order.
struct ExerciseProgram {
    static constexpr int kMaxExercises = 20;
    static constexpr int kMaxItems = 3;

    int16_t NumExercises = 0;
    int16_t NumItems = 0;
    std::optional<int32_t> InvoiceID; // the stored row this program came from or went to
    bool IsNew = false;               // saving adds a row rather than replacing InvoiceID
    bool Modified = false;
    std::optional<int32_t> PatientID; // the current patient
    QString FullName;
    QDateTime Date;
    QString Provider;
    QString Usage;
    QString BillAddr;
    QString PayMethod;
    QString CardNum;
    QDateTime CardDate;
    QString NameOnCard;
    int16_t Tax = 0;
    QString ShipAddr;
    QString ShipPhone;
    QString ShipMethod;
    std::array<ExerciseEntry, kMaxExercises> Exercises;
    std::array<OrderItem, kMaxItems> Items;

    // Checked access to the slots: an index outside 0 to 19 is a BoundsFault.
    ExerciseEntry& Exercise(int index);
    const ExerciseEntry& Exercise(int index) const;
    // Checked access to the order lines: 0 to 2.
    OrderItem& Item(int index);
    const OrderItem& Item(int index) const;
};

} // namespace tarvex
