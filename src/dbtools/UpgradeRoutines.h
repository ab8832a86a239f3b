#pragma once

#include <QSqlDatabase>
#include <QString>
#include <cstdint>

namespace tarvex {

// The routines of the database upgrade. Each works on an open database (and, for the two
// that copy from a companion file, the folder that holds it); a failure is a fault.

// Whether the database has at least the version: the stored text and the asked one are
// compared as 32-bit floats ("3.10" reads as 3.1). A database without the table, without
// a row or with a text that is no number counts as lower than every version.
bool DatabaseHasVersion(QSqlDatabase& db, const QString& version);

// Replaces the table Version by a new one that holds the text.
void SetDatabaseVersion(QSqlDatabase& db, const QString& version);

// AddVideoFields, then CopyVideoData.
void AddVideoColumns(QSqlDatabase& db, const QString& folder, const QString& table);
void AddVideoFields(QSqlDatabase& db, const QString& table);
// Every row takes the four video columns of "Video.MDB" for its exercise, or of the row
// that the last search left current when there is none for it.
void CopyVideoData(QSqlDatabase& db, const QString& folder, const QString& table);

// The media names of the delivered exercises (numbers 1 to 9999) end in "JPG".
void ChangePicturesToJPG(QSqlDatabase& db, const QString& table);

// RankOnTape becomes a required long integer with an index, keeping its values.
void RebuildRankOnTape(QSqlDatabase& db, const QString& table);

// Instruct0 to Instruct2 become texts of 75 characters.
void ResizeInstructions(QSqlDatabase& db, const QString& table);
void ResizeTextColumn(QSqlDatabase& db, const QString& table, const QString& column, int16_t width);
// As ResizeTextColumn, with the values cut to the width before the copy back writes them
// whole again (the engine takes a longer text into the column as it is).
void CutTextColumn(QSqlDatabase& db, const QString& table, const QString& column, int16_t width);

// Every row takes its texts, media names, default parameters and video columns from the
// library of "TVX Exercise Library.MDB".
void UpdateExerciseText(QSqlDatabase& db, const QString& folder, const QString& table);

// ProtocolExercise.Instruct0 takes the empty string.
void AllowEmptyInstruct0(QSqlDatabase& db);

// Picture3 and Instruct3 go; a table without them is left as it is.
void DropFourthPicture(QSqlDatabase& db, const QString& table);

// The companion files, in the application folder.
inline constexpr const char* kVideoDbFile = "Video.MDB";
inline constexpr const char* kOldLibraryDbFile = "TVX Exercise Library.MDB";

} // namespace tarvex
