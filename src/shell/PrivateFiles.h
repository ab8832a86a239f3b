#pragma once

#include <QString>

namespace tarvex {

// Patient and clinic data are the user's alone: the data folder is readable by its owner
// only (0700) and the files in it, and the settings file, are 0600.

// From here on every file and folder the program creates is its user's alone.
void RestrictNewFilesToOwner();

// Takes the rights of the group and of others from a folder and from the files directly
// in it. Returns true when anything had to be taken away.
bool MakeFolderPrivate(const QString& folder);

// The same for one file; true when anything had to be taken away.
bool MakeFilePrivate(const QString& path);

} // namespace tarvex
