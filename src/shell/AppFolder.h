#pragma once

#include <QString>

namespace tarvex {

struct AppState;

// A file beside the program's data: the application folder, a separator and the name.
// A "\" in the name separates folders.
QString AppPathAndFName(const AppState& state, const QString& name);

// The existing file of a folder whose name equals the given one without regard to case,
// or the plain joined path when there is none.
QString FindFileNoCase(const QString& folder, const QString& name);

// The per-user data folder of the program.
QString DefaultAppFolder();

// The folder of the delivered files installed with the program: "templates" holds the
// databases and texts, the rest is the delivered media laid out as on the CD.
QString DefaultDeliveredFolder();

// The folder of the delivered databases and texts.
QString TemplatesFolder(const AppState& state);

// The folder of the help pages and the user manual: "Help" in the application folder when
// the clinic keeps its own there, else the help installed with the program.
QString HelpFolder(const AppState& state);

// The files that a first start copies into the application folder.
QStringList DeliveredFileNames();

// Creates the application folder if needed and makes it and its files private to the
// user (madePrivate tells whether an existing folder had to be tightened). At the first
// start, when none of the three databases is there, copies in every delivered file that
// is not there yet; files already there are never touched. Later, a missing database ends
// the start with a message that names it and the folder, and nothing is created. Returns
// an error text, or an empty text on success.
QString PrepareAppFolder(const QString& appFolder, const QString& templatesFolder,
                         bool* madePrivate = nullptr);

// The message of a database that is missing from a data folder that has the others.
QString MissingDatabaseText(const QString& fileName, const QString& appFolder);

} // namespace tarvex
