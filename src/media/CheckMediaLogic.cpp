#include "media/CheckMediaLogic.h"

#include "media/MediaCopy.h"
#include "shell/AppFolder.h"
#include "shell/AppState.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>

namespace tarvex {

const QString CheckMediaLogic::kMissingTitle = QStringLiteral("Exercise Pictures Not Found");
const QString CheckMediaLogic::kMissingText =
    QStringLiteral("Check the CD-ROM drive setting\nand that the CD is in the computer.");

QString CopyFailuresText(int failed) {
    return QStringLiteral("%1 of the files could not be copied to the hard drive (the disk may "
                          "be full, or the CD was taken out).\n\nThe program uses the files "
                          "that were copied. Make room and choose File > Copy Pictures again.")
        .arg(failed);
}

CheckMediaLogic::CheckMediaLogic(AppState& state, Controls controls, ICheckMediaHost& host,
                                 IProgressWindow& progress, Prompter& prompter)
    : state_(state), c_(controls), host_(host), progress_(progress), prompter_(prompter) {}

void CheckMediaLogic::Load() {
    c_.Drive1.SetDrives(ListMediaDrives(state_));
    cmdFindCD();
}

void CheckMediaLogic::cmdFindCD() {
    // A drive that is not in the list (not ready) leaves the list as it is.
    c_.Drive1.SetDrive(DriveRoot(state_.CDRomDrive));
}

bool CheckMediaLogic::CDHasPictures() {
    const QString drive = c_.Drive1.Drive();
    const QString probe = FindFileNoCase(DriveMediaFolder(drive, QStringLiteral("Picture")),
                                         QStringLiteral("385_1.JPG"));
    if (!drive.isEmpty() && QFileInfo(probe).isFile())
        return true;
    prompter_.MsgBox(kMissingText, msg::Information, kMissingTitle);
    return false;
}

void CheckMediaLogic::cmdPictureLocation(const QString& tag) {
    if (copying_)
        return;
    if (tag == QLatin1String("Cancel"))
        return host_.UnloadForm();
    if (tag == QLatin1String("CD")) {
        if (!CDHasPictures())
            return;
        UseDrive();
        return host_.UnloadForm();
    }
    if (tag == QLatin1String("HardDrive")) {
        if (!CDHasPictures())
            return;
        CopyToHardDrive();
        if (failed_ > 0)
            prompter_.MsgBox(CopyFailuresText(failed_), msg::Exclamation,
                             QStringLiteral("Copy Pictures"));
        host_.UnloadForm();
    }
}

void CheckMediaLogic::UseDrive() {
    const QString drive = c_.Drive1.Drive();
    state_.Media.Picture = DriveMediaFolder(drive, QStringLiteral("Picture"));
    state_.Media.Movie = DriveMediaFolder(drive, QStringLiteral("Movie"));
}

namespace {

// The buttons off, the hourglass on and the copy marked as running, for as long as it
// lives: a fault that ends the copy gives all three back.
class CopyingState {
public:
    CopyingState(bool& copying, ICommands& buttons, ICheckMediaHost& host)
        : copying_(copying), buttons_(buttons), host_(host) {
        copying_ = true;
        SetButtons(false);
        host_.SetBusy(true);
    }
    ~CopyingState() {
        host_.SetBusy(false);
        SetButtons(true);
        copying_ = false;
    }
    CopyingState(const CopyingState&) = delete;
    CopyingState& operator=(const CopyingState&) = delete;

private:
    void SetButtons(bool enabled) {
        for (const char* tag : {"CD", "HardDrive", "Cancel"})
            buttons_.SetEnabled(QLatin1String(tag), enabled);
    }
    bool& copying_;
    ICommands& buttons_;
    ICheckMediaHost& host_;
};

} // namespace

void CheckMediaLogic::CopyToHardDrive() {
    const CopyingState running(copying_, c_.cmdPictureLocation, host_);
    failed_ = 0;
    state_.Media.Picture = CopyMediaFolder(QStringLiteral("Picture"));
    state_.Media.Movie = CopyMediaFolder(QStringLiteral("Movie"));
}

QString CheckMediaLogic::CopyMediaFolder(const QString& folderWord) {
    const QString source = DriveMediaFolder(c_.Drive1.Drive(), folderWord);
    QString target = QDir::toNativeSeparators(FindFileNoCase(state_.AppFolder, folderWord));
    target += QDir::separator();
    ProgressLogic progress(progress_);
    progress.SetCaption(folderWord == QLatin1String("Picture")
                            ? QStringLiteral("Copying Pictures From CD To Hard Drive")
                            : QStringLiteral("Copying Movies From CD To Hard Drive"));
    const QString pattern = source + QStringLiteral("*.*");
    progress.InitProgress(CountFiles(pattern));

    // From here on a failure is skipped: the copy goes on with the next file.
    QDir().mkpath(target);
    int32_t count = 0;
    for (const QString& name : DirectorySearch(pattern)) {
        const QString copy = target + name;
        // A picture of an earlier version, of the same name in the BMP format, goes.
        QFile::remove(FormerBitmapName(copy));
        if (!CopyFileReplacing(source + name, copy))
            ++failed_;
        ++count;
        try {
            progress.UpdateProgress(count);
        } catch (const ProgressValueFault&) {
            // A file that came after the count moves the bar past its end; the copy goes on.
        }
        host_.DoEvents();
    }
    progress.DestroyProgress();
    return target;
}

} // namespace tarvex
