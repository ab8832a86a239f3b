#pragma once

#include <QString>

namespace tarvex {

// The small platform part of writing files that must survive a crash: what is written is
// on the disk before it takes a real name, and the new name is on the disk too.

// Writes the file's data to the disk. False when the file cannot be opened or synced.
bool SyncFile(const QString& path);

// Writes a folder's entries (names made, renamed or removed) to the disk.
bool SyncFolder(const QString& folder);

// Gives a finished file the target's name in one step, replacing a file of that name,
// and makes the new name last. The file is synced first. A failure is a Fault naming both
// files; the target is then as it was.
void ReplaceFileDurably(const QString& finished, const QString& target);

// A second name for a file, made in one step (a hard link), or a copy through a temporary
// file where the file system has no links. A failure is a Fault.
void KeepSecondName(const QString& path, const QString& secondName);

} // namespace tarvex
