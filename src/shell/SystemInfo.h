#pragma once

#include <QList>
#include <QString>
#include <QStringList>

namespace tarvex {

struct AppState;

// One line of the system information: the section it stands in, what it names, its value.
struct SystemInfoItem {
    QString Section;
    QString Item;
    QString Value;
};

// What a support call needs to know about this workstation: the program, the operating
// system, Qt and SQLite, the data folder, each database file with its version and size,
// the three media folders and whether their probe files are there, and the printers
// (which only the windowing side can list; the first one named is the default).
QList<SystemInfoItem> GatherSystemInfo(const AppState& state, const QStringList& printers,
                                       const QString& settingsFile);

// The same as plain text, a section heading and then its lines indented, to paste into an
// e-mail.
QString SystemInfoText(const QList<SystemInfoItem>& items);

// The size of a file for people: "812 KB", "158.3 MB".
QString FileSizeText(qint64 bytes);

} // namespace tarvex
