#include "shell/Options.h"
#include "fakes/FakeSettingsStore.h"
#include "shell/AppState.h"
#include "shell/SettingsStore.h"
#include "support/Fault.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace tarvex;
using tarvex::fakes::FakeSettingsStore;

namespace {

QString Sep() {
    return QString(QDir::separator());
}

void WriteFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(bytes);
}

} // namespace

TEST(LoadOptions, OnAFirstRunTheDefaultsApply) {
    AppState state;
    state.AppFolder = "/home/pt/.local/share/Tarvex";
    state.DeliveredFolder = "/opt/tarvex/share";
    FakeSettingsStore store;
    LoadOptions(state, store);
    EXPECT_TRUE(state.Prefs.ShowTips);
    EXPECT_TRUE(state.Prefs.PrintPatientCover);
    EXPECT_FALSE(state.Prefs.PrintCallTVX);
    EXPECT_EQ(state.Prefs.Provider, "");
    EXPECT_EQ(state.Print.BaseFontSize, 10);
    EXPECT_EQ(state.CDRomDrive, QDir::toNativeSeparators("/opt/tarvex/share"));
    EXPECT_EQ(state.Media.Icon, QDir::toNativeSeparators(state.AppFolder) + Sep() + "ICON" + Sep());
    EXPECT_EQ(state.Media.Picture, state.CDRomDrive + Sep() + "PICTURE" + Sep());
    EXPECT_EQ(state.Media.Movie, state.CDRomDrive + Sep() + "MOVIE" + Sep());
}

TEST(LoadOptions, ADriveOfOneCharacterStaysAsItIs) {
    AppState state;
    FakeSettingsStore store;
    store.values["Options/CDRom Drive"] = "E";
    LoadOptions(state, store);
    EXPECT_EQ(state.CDRomDrive, "E");
    EXPECT_EQ(state.Media.Picture, "E" + Sep() + "PICTURE" + Sep());
}

TEST(LoadOptions, ALongerDriveNameIsCutToTwoCharacters) {
    AppState state;
    FakeSettingsStore store;
    store.values["Options/CDRom Drive"] = "F:\\CDROM";
    LoadOptions(state, store);
    EXPECT_EQ(state.CDRomDrive, "F:");
    EXPECT_EQ(state.Media.Movie, "F:" + Sep() + "MOVIE" + Sep());
}

TEST(LoadOptions, StoredValuesWin) {
    AppState state;
    FakeSettingsStore store;
    store.values["Options/Picture"] = "/media/pictures/";
    store.values["Options/ShowTips"] = "False";
    store.values["Options/PrintCallTVX"] = "True";
    store.values["Options/Provider"] = "Dr. O'Hara";
    LoadOptions(state, store);
    EXPECT_EQ(state.Media.Picture, "/media/pictures/");
    EXPECT_FALSE(state.Prefs.ShowTips);
    EXPECT_TRUE(state.Prefs.PrintCallTVX);
    EXPECT_EQ(state.Prefs.Provider, "Dr. O'Hara");
}

TEST(LoadOptions, AStoredBooleanThatIsNoBooleanIsAFault) {
    AppState state;
    FakeSettingsStore store;
    store.values["Options/ShowTips"] = "sometimes";
    EXPECT_THROW(LoadOptions(state, store), TypeFault);
}

TEST(LoadOptions, ReadsTheSiteNumberSetByTheAdministrator) {
    AppState state;
    FakeSettingsStore store;
    store.values["Site/SiteNumber"] = "1000";
    LoadOptions(state, store);
    EXPECT_EQ(state.SiteNumber, 1000);
    store.values["Site/SiteNumber"] = "123456789"; // nine digits: not a site number
    LoadOptions(state, store);
    EXPECT_EQ(state.SiteNumber, 0);
    store.values["Site/SiteNumber"] = "garbage";
    LoadOptions(state, store);
    EXPECT_EQ(state.SiteNumber, 0);
}

TEST(SaveOptions, WritesTheKeysInTheirOrderAndNeverTheDrive) {
    AppState state;
    state.Media = {"/i/", "/m/", "/p/"};
    state.Prefs.PrintCallTVX = true;
    state.Prefs.ShowTips = false;
    state.Prefs.Provider = "Mark Lee, PTA";
    FakeSettingsStore store;
    SaveOptions(state, store);
    EXPECT_EQ(store.writes, QStringList({"Movie", "Icon", "Picture", "PrintPatientCover",
                                         "PrintCallTVX", "ShowTips", "Provider"}));
    EXPECT_EQ(store.values["Options/Movie"], "/m/");
    EXPECT_EQ(store.values["Options/PrintPatientCover"], "True");
    EXPECT_EQ(store.values["Options/ShowTips"], "False");
    EXPECT_FALSE(store.values.contains("Options/CDRom Drive"));
}

TEST(SaveOptions, WhatIsWrittenReadsBackTheSame) {
    QTemporaryDir dir;
    const QString ini = dir.filePath("Tarvex.conf");
    AppState before;
    before.Media = {"/i/", "/m/", "/p/"};
    before.Prefs = {false, true, false, QString::fromUtf8("Zoë, \"PT\"; 50%")};
    {
        QtSettingsStore store(ini);
        SaveOptions(before, store);
    }
    AppState after;
    QtSettingsStore store(ini);
    LoadOptions(after, store);
    EXPECT_EQ(after.Media.Movie, "/m/");
    EXPECT_EQ(after.Media.Icon, "/i/");
    EXPECT_EQ(after.Media.Picture, "/p/");
    EXPECT_EQ(after.Prefs.PrintPatientCover, false);
    EXPECT_EQ(after.Prefs.PrintCallTVX, true);
    EXPECT_EQ(after.Prefs.ShowTips, false);
    EXPECT_EQ(after.Prefs.Provider, before.Prefs.Provider);
}

TEST(SaveOptions, AGarbageSettingsFileGivesAClearFaultNotACrash) {
    QTemporaryDir dir;
    const QString ini = dir.filePath("Tarvex.conf");
    WriteFile(ini, "[Options]\nShowTips=\x01\x02\xff\nPrintCallTVX\n==\n[[[\n\x00\x00garbage");
    AppState state;
    QtSettingsStore store(ini);
    try {
        LoadOptions(state, store);
        EXPECT_TRUE(state.Prefs.ShowTips); // an unreadable line counts as absent
    } catch (const TypeFault& fault) {
        EXPECT_TRUE(fault.Message().contains("not a boolean"));
    }
}

class CoverText : public ::testing::Test {
protected:
    void SetUp() override { state.AppFolder = dir.path(); }
    QTemporaryDir dir;
    AppState state;
};

TEST_F(CoverText, AFileWithoutAFinalLineBreakReadsWithOne) {
    WriteFile(dir.filePath("cover.txt"), "Do your exercises daily.\nCall us with questions.");
    EXPECT_EQ(LoadCoverText(state), "Do your exercises daily.\r\nCall us with questions.\r\n");
}

TEST_F(CoverText, AnEmptyFileGivesTheEmptyText) {
    WriteFile(dir.filePath("cover.txt"), "");
    EXPECT_EQ(LoadCoverText(state), "");
}

TEST_F(CoverText, AMissingFileGivesTheEmptyText) {
    EXPECT_EQ(LoadCoverText(state), "");
}

TEST_F(CoverText, IsFoundWithoutRegardToCase) {
    WriteFile(dir.filePath("Cover.Txt"), "Hello\r\n");
    EXPECT_EQ(LoadCoverText(state), "Hello\r\n");
}

TEST_F(CoverText, ABinaryOrHugeFileIsReadWithoutHarm) {
    QByteArray binary;
    for (int i = 0; i < 4096; ++i)
        binary.append(static_cast<char>(i % 256));
    WriteFile(dir.filePath("cover.txt"), binary);
    EXPECT_FALSE(LoadCoverText(state).isEmpty());

    WriteFile(dir.filePath("cover.txt"), QByteArray(8 << 20, 'x') + "\n");
    const QString huge = LoadCoverText(state);
    EXPECT_LE(huge.size(), (1 << 20) + 2); // read no further than a megabyte
    EXPECT_TRUE(huge.endsWith("\r\n"));
}

TEST(QtSettingsStore, TheSettingsFileIsPrivateToTheUser) {
    QTemporaryDir dir;
    const QString path = dir.filePath("Tarvex.conf");
    {
        QtSettingsStore store(path);
        store.Set("Options", "Provider", "Dr. Amara Nwosu");
    }
    ASSERT_TRUE(QFile::exists(path));
    const auto others = QFile::ReadGroup | QFile::WriteGroup | QFile::ReadOther | QFile::WriteOther;
    EXPECT_EQ(QFile::permissions(path) & others, 0);
    EXPECT_TRUE(QFile::permissions(path) & QFile::ReadOwner);
}
