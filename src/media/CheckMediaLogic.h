#pragma once

#include "media/MediaDrives.h"
#include "support/Controls.h"
#include "support/Progress.h"
#include "support/Prompter.h"

#include <QString>
#include <cstdint>

namespace tarvex {

struct AppState;

// The drive list: places that may hold the delivered media, each shown by name.
class IDriveList {
public:
    virtual ~IDriveList() = default;
    virtual void SetDrives(const QList<MediaDrive>& drives) = 0;
    // The root of the chosen place; empty when none is chosen.
    virtual QString Drive() const = 0;
    // Chooses the place with this root; false when the list has none.
    virtual bool SetDrive(const QString& root) = 0;
};

// What the window does for the logic around the copy.
class ICheckMediaHost {
public:
    virtual ~ICheckMediaHost() = default;
    // The hourglass on (true) or back to the default pointer.
    virtual void SetBusy(bool busy) = 0;
    // Lets pending events run, between two files of the copy.
    virtual void DoEvents() = 0;
    // Unloads the form.
    virtual void UnloadForm() = 0;
};

// The logic of "Exericse Pictures Not Found": the pictures either stay on the CD (or any
// place in the drive list) or are copied to the hard drive, into the data folder.
class CheckMediaLogic {
public:
    struct Controls {
        IDriveList& Drive1;
        ICommands& cmdPictureLocation; // the buttons by tag: "CD", "HardDrive", "Cancel"
    };

    CheckMediaLogic(AppState& state, Controls controls, ICheckMediaHost& host,
                    IProgressWindow& progress, Prompter& prompter);

    // On load: the drive list, set to the CD drive of the settings (a failure is ignored).
    void Load();
    // Sets the drive list to the CD drive of the settings again, for a drive that was not
    // ready the first time.
    void cmdFindCD();
    // The three buttons by tag. While a copy runs, a click does nothing.
    void cmdPictureLocation(const QString& tag);

    // True when the chosen drive's picture folder holds "385_1.JPG"; otherwise says so in a
    // box and returns false.
    bool CDHasPictures();
    // Copies the media folder of the word ("Picture" or "Movie") from the chosen drive into
    // the data folder, file by file, with the progress window; returns the copy's folder.
    QString CopyMediaFolder(const QString& folderWord);

    // True while the copy runs.
    bool Copying() const { return copying_; }
    // The files the last "Hard Drive" copy could not copy.
    int FailedFiles() const { return failed_; }

    static const QString kMissingTitle;
    static const QString kMissingText;

private:
    void UseDrive();
    void CopyToHardDrive();

    AppState& state_;
    Controls c_;
    ICheckMediaHost& host_;
    IProgressWindow& progress_;
    Prompter& prompter_;
    bool copying_ = false;
    int failed_ = 0;
};

// The note after a copy that could not copy every file.
QString CopyFailuresText(int failed);

} // namespace tarvex
