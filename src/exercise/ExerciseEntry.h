#pragma once

#include <QString>
#include <cstdint>

namespace tarvex {

// One exercise with its parameters: a library row, a slot of the program or a row of a
// stored program or protocol. A plain value: copying copies every field.
struct ExerciseEntry {
    int32_t ExerciseID = 0;
    QString Code;
    QString Desc;
    QString AbbrevDesc;
    int16_t Reps = 0;
    int16_t Hold = 0; // seconds; 0 means no hold
    int16_t Sets = 0;
    QString Joint; // the three filter attributes exist only in library rows
    QString Motion;
    QString Type;
    QString Movie;
    QString Icon;
    QString Picture0;
    QString Picture1;
    QString Picture2;
    QString Instruct0;
    QString Instruct1;
    QString Instruct2;
    bool HasVideo = false;
    int16_t VideoReps = 0;
    int16_t VideoHold = 0;
    int16_t VideoSets = 0;

    friend bool operator==(const ExerciseEntry&, const ExerciseEntry&) = default;
};

} // namespace tarvex
