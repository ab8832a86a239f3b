#pragma once

#include <QString>
#include <QStringList>
#include <cstdint>

namespace tarvex {

// The names of the files that a directory search for a path pattern yields
// ("/media/cd/PICTURE/*.*"), in the order the directory gives them. "*.*" matches every
// name, with or without a dot, as the search always did; hidden files are not listed.
QStringList DirectorySearch(const QString& pattern);

// The number of names the search for the pattern yields, as a 16-bit count: more than
// 32767 is an OverflowFault.
int16_t CountFiles(const QString& pattern);

// Copies a file over the target, replacing one that is there, through a temporary file
// beside the target and a rename: the target is the old file or the whole new one, never
// a part. The copy is the user's to read and write, whatever the source allowed (a CD's
// files are read-only). False when the copy failed; nothing is left behind then.
bool CopyFileReplacing(const QString& source, const QString& target);

// The name of the picture of an earlier version that used the BMP format for a file:
// the target path with its last three characters replaced by "BMP".
QString FormerBitmapName(const QString& target);

} // namespace tarvex
