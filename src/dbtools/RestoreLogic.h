#pragma once

#include "dbtools/ZipArchive.h"

#include <QDateTime>
#include <QString>
#include <functional>
#include <vector>

namespace tarvex {

class IMaintenanceHost;
class IOpenFileDialog;
class Prompter;

// Database > Restore: puts the three databases of a backup archive in the place of the
// present ones. The archive is chosen and tested, what it holds is shown and the user is
// asked; its files are taken out beside the databases and checked before anything is
// closed. Then the databases are closed, each present file keeps a second name ("<name>
// (before restore <date time>).<ext>"), the archive's file takes its place in one rename,
// and the databases are opened again, the upgrade walk included. A failure at any step
// puts the present files back. Only the three databases are ever taken out, under names
// the program makes: the names in the archive are never used as paths.
class RestoreLogic {
public:
    RestoreLogic(IMaintenanceHost& host, Prompter& prompts, IOpenFileDialog& dialog);

    void RestoreDatabases();

    std::function<QDateTime()> Now = [] { return QDateTime::currentDateTime(); };
    // Where the chooser opens first.
    QString StartFolder;

private:
    struct Entry {
        QString FileName;  // "Tarvex.MDB" and the others, as the folder has them
        QString Target;    // the present file
        QString Extracted; // the archive's file, taken out
        QString Kept;      // the present file's second name
        bool Replaced = false;
    };

    bool Choose(QString& archive, QString& password);
    bool Holds(const QString& archive, const std::vector<ZipEntryInfo>& files);
    bool Confirm(const QString& archive, const std::vector<ZipEntryInfo>& files);
    void Extract(const QString& archive, const QString& password,
                 const std::vector<ZipEntryInfo>& files);
    void SwapIn();
    void PutBack();
    void RemoveExtracted();
    void Fail(const QString& text);

    IMaintenanceHost& host_;
    Prompter& prompts_;
    IOpenFileDialog& dialog_;
    std::vector<Entry> entries_;
};

// The title of the restore's boxes.
inline constexpr const char* kRestoreTitle = "Restore Databases";

// The restore's first steps: the chooser, opened in startFolder on "Tarvex Backup.ZIP", and
// for an archive with encrypted files the box that asks for its password. False when the
// user cancelled either; an archive that cannot be read is a Fault.
bool ChooseBackupArchive(IOpenFileDialog& dialog, Prompter& prompts, const QString& startFolder,
                         QString& archive, QString& password);

} // namespace tarvex
