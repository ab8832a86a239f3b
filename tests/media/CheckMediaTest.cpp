#include "MediaFakes.h"
#include "fakes/FakeControls.h"
#include "media/CheckMediaLogic.h"
#include "media/MediaCopy.h"
#include "shell/AppState.h"
#include "support/Fault.h"

#include <QFileInfo>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::testing;

namespace {

// A data folder, a "CD" with pictures and movies laid out as delivered, and the window's
// logic over fakes.
struct CheckForm {
    explicit CheckForm(const QString& dataName = "data") {
        state.AppFolder = dir.filePath(dataName);
        QDir().mkpath(state.AppFolder);
        cd = dir.filePath("cd");
        for (const char* name : {"385_1.JPG", "1_1.JPG", "1_2.JPG", "2_1.JPG", "NOEXT"})
            WriteFile(cd + "/PICTURE/" + name, QByteArray("picture ") + name);
        for (const char* name : {"1.AVI", "2.AVI"})
            WriteFile(cd + "/MOVIE/" + name, QByteArray("movie ") + name);
        empty = dir.filePath("empty");
        QDir().mkpath(empty);
        state.CDRomDrive = cd;
        state.DeliveredFolder = dir.filePath("no-delivered");
        state.Media = {"/data/ICON/", cd + "/MOVIE/", "/old/PICTURE/"};
        logic.Load();
        drives.drives = {{"Empty stick", empty}, {"CD", cd}};
        drives.chosen = 1;
    }
    QTemporaryDir dir;
    QString cd, empty;
    AppState state;
    FakeDriveList drives;
    fakes::FakeCommands buttons;
    FakeCheckMediaHost host;
    fakes::FakeProgressWindow progress;
    fakes::ScriptedPrompter prompter;
    CheckMediaLogic logic{state, {drives, buttons}, host, progress, prompter};
};

} // namespace

TEST(CheckMedia, LoadChoosesTheCDDriveOfTheSettings) {
    CheckForm f;
    f.drives.drives.clear();
    f.logic.Load();
    // The settings' drive is a folder here: the list offers it, and it is chosen.
    ASSERT_FALSE(f.drives.drives.isEmpty());
    EXPECT_EQ(QDir::cleanPath(f.drives.Drive()), QDir::cleanPath(f.cd));
}

TEST(CheckMedia, ADriveThatIsNotThereLeavesTheListAsItWas) {
    CheckForm f;
    f.drives.chosen = 0;
    f.state.CDRomDrive = "Q:";
    f.logic.cmdFindCD();
    EXPECT_EQ(f.drives.chosen, 0);
    EXPECT_TRUE(f.prompter.boxes.empty());
}

TEST(CheckMedia, ChoosingADriveWithoutTheCDShowsTheBoxAndLeavesAllPathsAlone) {
    CheckForm f;
    const MediaPaths before = f.state.Media;
    f.drives.chosen = 0;
    for (const char* tag : {"CD", "HardDrive"}) {
        f.prompter.answers.push_back(Answer::Ok);
        f.logic.cmdPictureLocation(tag);
    }
    ASSERT_EQ(f.prompter.boxes.size(), 2u);
    EXPECT_EQ(f.prompter.boxes[0].title, "Exercise Pictures Not Found");
    EXPECT_EQ(f.prompter.boxes[0].text,
              "Check the CD-ROM drive setting\nand that the CD is in the computer.");
    EXPECT_EQ(f.prompter.boxes[0].style, msg::Information);
    EXPECT_EQ(f.state.Media.Picture, before.Picture);
    EXPECT_EQ(f.state.Media.Movie, before.Movie);
    EXPECT_EQ(f.state.Media.Icon, before.Icon);
    EXPECT_TRUE(f.host.calls.isEmpty()); // the form stays
    EXPECT_FALSE(QFileInfo::exists(f.state.AppFolder + "/Picture"));
}

TEST(CheckMedia, CDWorksFromTheDriveAndLeavesTheIcons) {
    CheckForm f;
    f.logic.cmdPictureLocation("CD");
    EXPECT_EQ(f.state.Media.Picture, QDir::toNativeSeparators(f.cd + "/PICTURE/"));
    EXPECT_EQ(f.state.Media.Movie, QDir::toNativeSeparators(f.cd + "/MOVIE/"));
    EXPECT_EQ(f.state.Media.Icon, "/data/ICON/");
    EXPECT_EQ(f.host.calls, QStringList{"unload"});
}

TEST(CheckMedia, CancelChangesNothing) {
    CheckForm f;
    const MediaPaths before = f.state.Media;
    f.logic.cmdPictureLocation("Cancel");
    EXPECT_EQ(f.state.Media.Picture, before.Picture);
    EXPECT_EQ(f.state.Media.Movie, before.Movie);
    EXPECT_EQ(f.host.calls, QStringList{"unload"});
}

TEST(CheckMedia, HardDriveCopiesBothFoldersIntoTheDataFolderAndSwitchesToThem) {
    CheckForm f;
    f.logic.cmdPictureLocation("HardDrive");
    const QString pictures = QDir::toNativeSeparators(f.state.AppFolder + "/Picture/");
    EXPECT_EQ(f.state.Media.Picture, pictures);
    EXPECT_EQ(f.state.Media.Movie, QDir::toNativeSeparators(f.state.AppFolder + "/Movie/"));
    EXPECT_EQ(f.state.Media.Icon, "/data/ICON/");
    // The next start's check finds its picture there.
    QFile probe(pictures + "385_1.JPG");
    ASSERT_TRUE(probe.open(QIODevice::ReadOnly));
    EXPECT_EQ(probe.readAll(), "picture 385_1.JPG");
    EXPECT_TRUE(QFileInfo::exists(pictures + "NOEXT"));
    EXPECT_TRUE(QFileInfo::exists(f.state.Media.Movie + "2.AVI"));
    // Buttons off and the hourglass for the copy, both given back, then the form goes.
    EXPECT_EQ(f.host.calls, (QStringList{"busy", "ready", "unload"}));
    EXPECT_TRUE(f.buttons.IsEnabled("CD"));
    EXPECT_EQ(f.logic.FailedFiles(), 0);
    EXPECT_TRUE(f.prompter.boxes.empty());
    EXPECT_EQ(f.host.events, 7); // one turn of the events after each file
}

TEST(CheckMedia, TheProgressWindowCountsEveryFileOfEachFolder) {
    CheckForm f;
    f.logic.cmdPictureLocation("HardDrive");
    const QStringList expected = {"load",    "caption Copying Pictures From CD To Hard Drive",
                                  "show",    "max 5",
                                  "value 1", "value 2",
                                  "value 3", "value 4",
                                  "value 5", "unload",
                                  "load",    "caption Copying Movies From CD To Hard Drive",
                                  "show",    "max 2",
                                  "value 1", "value 2",
                                  "unload"};
    EXPECT_EQ(f.progress.calls, expected);
}

TEST(CheckMedia, AnOldBitmapOfTheSameNameIsGoneAfterTheCopy) {
    CheckForm f;
    WriteFile(f.state.AppFolder + "/Picture/1_1.BMP", "old bitmap");
    WriteFile(f.state.AppFolder + "/Picture/9_1.BMP", "no namesake on the CD");
    f.logic.cmdPictureLocation("HardDrive");
    EXPECT_FALSE(QFileInfo::exists(f.state.AppFolder + "/Picture/1_1.BMP"));
    EXPECT_TRUE(QFileInfo::exists(f.state.AppFolder + "/Picture/1_1.JPG"));
    EXPECT_TRUE(QFileInfo::exists(f.state.AppFolder + "/Picture/9_1.BMP"));
}

TEST(CheckMedia, AFileThatCannotBeWrittenIsSkippedAndCountedAndTheFoldersStillSwitch) {
    CheckForm f;
    // A folder where a picture should go: it can never be replaced by a file.
    QDir().mkpath(f.state.AppFolder + "/Picture/2_1.JPG/inside");
    f.prompter.answers.push_back(Answer::Ok);
    f.logic.cmdPictureLocation("HardDrive");
    EXPECT_EQ(f.logic.FailedFiles(), 1);
    EXPECT_TRUE(QFileInfo::exists(f.state.AppFolder + "/Picture/385_1.JPG"));
    EXPECT_TRUE(QFileInfo::exists(f.state.AppFolder + "/Movie/2.AVI"));
    ASSERT_EQ(f.prompter.boxes.size(), 1u);
    EXPECT_TRUE(f.prompter.boxes[0].text.startsWith("1 of the files could not be copied"));
    EXPECT_EQ(f.state.Media.Picture, QDir::toNativeSeparators(f.state.AppFolder + "/Picture/"));
    EXPECT_FALSE(QFileInfo::exists(f.state.AppFolder + "/Picture/2_1.JPG.partial"));
    EXPECT_EQ(f.host.calls.last(), "unload");
}

TEST(CheckMedia, AMediumTakenOutDuringTheCopyEndsEveryRemainingFileAsNotCopied) {
    CheckForm f;
    f.host.onEvents = [&f](int events) {
        if (events == 2)
            QDir(f.cd).removeRecursively();
    };
    f.prompter.answers.push_back(Answer::Ok);
    f.logic.cmdPictureLocation("HardDrive");
    // Two pictures made it, three did not; the movies went with the medium, so none was
    // there to copy.
    EXPECT_EQ(f.logic.FailedFiles(), 3);
    EXPECT_EQ(QDir(f.state.AppFolder + "/Picture").entryList(QDir::Files).size(), 2);
    ASSERT_EQ(f.prompter.boxes.size(), 1u);
    EXPECT_TRUE(f.prompter.boxes[0].text.startsWith("3 of the files"));
    EXPECT_EQ(f.host.calls.last(), "unload");
}

TEST(CheckMedia, AClickDuringTheCopyDoesNotStartAnother) {
    CheckForm f;
    f.host.onEvents = [&f](int) {
        EXPECT_TRUE(f.logic.Copying());
        EXPECT_FALSE(f.buttons.IsEnabled("HardDrive"));
        f.logic.cmdPictureLocation("HardDrive");
        f.logic.cmdPictureLocation("Cancel");
    };
    f.logic.cmdPictureLocation("HardDrive");
    EXPECT_EQ(f.host.calls, (QStringList{"busy", "ready", "unload"}));
    EXPECT_EQ(f.progress.loads, 2);
    EXPECT_FALSE(f.logic.Copying());
}

TEST(CheckMedia, TheCopyGoesToADataFolderWithSpacesUnicodeAndALongPath) {
    QString name = "Praxis Müller – Übungen";
    while (name.size() < 200)
        name += " Physiotherapie";
    CheckForm f(name);
    f.logic.cmdPictureLocation("HardDrive");
    EXPECT_TRUE(QFileInfo::exists(f.state.Media.Picture + "385_1.JPG"));
    EXPECT_GE(f.state.Media.Picture.size(), 200);
}

TEST(MediaCopy, CountFilesCountsEveryNameOfTheSearchButHiddenOnes) {
    QTemporaryDir dir;
    WriteFile(dir.filePath("a.JPG"));
    WriteFile(dir.filePath("b"));
    WriteFile(dir.filePath(".hidden"));
    QDir().mkpath(dir.filePath("sub.dir"));
    EXPECT_EQ(CountFiles(dir.filePath("*.*")), 2);
    EXPECT_EQ(CountFiles(dir.filePath("*.JPG")), 1);
    EXPECT_EQ(CountFiles(dir.filePath("missing/*.*")), 0);
}

TEST(MediaCopy, TheCopyIsTheUsersToWriteEvenFromAReadOnlySource) {
    QTemporaryDir dir;
    WriteFile(dir.filePath("cd.JPG"), "from the CD");
    QFile::setPermissions(dir.filePath("cd.JPG"), QFile::ReadOwner);
    WriteFile(dir.filePath("old.JPG"), "old");
    ASSERT_TRUE(CopyFileReplacing(dir.filePath("cd.JPG"), dir.filePath("old.JPG")));
    QFile copy(dir.filePath("old.JPG"));
    ASSERT_TRUE(copy.open(QIODevice::ReadWrite));
    EXPECT_EQ(copy.readAll(), "from the CD");
    EXPECT_FALSE(CopyFileReplacing(dir.filePath("gone.JPG"), dir.filePath("new.JPG")));
    EXPECT_FALSE(QFileInfo::exists(dir.filePath("new.JPG.partial")));
    EXPECT_EQ(FormerBitmapName("/d/Picture/1_1.JPG"), "/d/Picture/1_1.BMP");
}

TEST(MediaDrives, ADriveLetterKeepsTwoCharactersAndAFolderStaysWhole) {
    EXPECT_EQ(DriveRoot("D:\\"), "D:");
    EXPECT_EQ(DriveRoot("E"), "E");
    EXPECT_EQ(DriveRoot("/media/clinic/TVX CD"), "/media/clinic/TVX CD");
}
