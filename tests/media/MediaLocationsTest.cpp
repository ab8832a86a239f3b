#include "MediaFakes.h"
#include "fakes/FakeControls.h"
#include "media/MediaLocationsLogic.h"
#include "shell/AppState.h"

#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::testing;

namespace {

struct MediaForm {
    MediaForm() {
        state.DeliveredFolder = dir.filePath("delivered");
        QDir().mkpath(state.DeliveredFolder + "/PICTURE");
        state.Media = {"/data/ICON/", "/cd/MOVIE/", "/cd/PICTURE/"};
        logic.Load();
    }
    QTemporaryDir dir;
    AppState state;
    fakes::FakeLabel icon, picture, movie;
    ScriptedOpenDialog dialog;
    MediaLocationsLogic logic{
        state, {{&icon, &picture, &movie}, {"Icon", "Picture", "Movie"}}, dialog};
};

} // namespace

TEST(MediaLocations, LoadShowsTheThreeFolders) {
    MediaForm f;
    EXPECT_EQ(f.icon.caption, "/data/ICON/");
    EXPECT_EQ(f.picture.caption, "/cd/PICTURE/");
    EXPECT_EQ(f.movie.caption, "/cd/MOVIE/");
}

TEST(MediaLocations, EachTagLooksForItsProbeFile) {
    EXPECT_EQ(MediaLocationsLogic::ProbeFile("Icon"), "1.JPG");
    EXPECT_EQ(MediaLocationsLogic::ProbeFile("Picture"), "1_1.JPG");
    EXPECT_EQ(MediaLocationsLogic::ProbeFile("Movie"), "1.AVI");
    EXPECT_EQ(MediaLocationsLogic::ProbeFile("Sound"), "");
}

TEST(MediaLocations, TheDialogListsOnlyTheProbeFileAndGivesItsFolder) {
    MediaForm f;
    f.dialog.answers.push_back(QString("/media/usb/TVX/PICTURE/1_1.JPG"));
    f.logic.cmdMedia(1);
    ASSERT_EQ(f.dialog.requests.size(), 1u);
    const OpenFileRequest& asked = f.dialog.requests.front();
    EXPECT_EQ(asked.Filter, "1_1.JPG|1_1.JPG");
    EXPECT_EQ(asked.FilterIndex, 1);
    EXPECT_EQ(asked.FileName, "1_1.JPG");
    EXPECT_EQ(asked.Flags, 4);
    // The program's own folder of that kind, found without regard to case.
    EXPECT_EQ(asked.InitDir, QDir::toNativeSeparators(f.state.DeliveredFolder + "/PICTURE/"));
    EXPECT_EQ(f.picture.caption, "/media/usb/TVX/PICTURE/");
    EXPECT_EQ(f.state.Media.Picture, "/cd/PICTURE/"); // nothing stored before OK
}

TEST(MediaLocations, CancelInTheFolderDialogLeavesTheCaptionAsItWas) {
    MediaForm f;
    f.dialog.answers.push_back(std::nullopt);
    f.logic.cmdMedia(2);
    EXPECT_EQ(f.dialog.requests.size(), 1u);
    EXPECT_EQ(f.movie.caption, "/cd/MOVIE/");
    EXPECT_EQ(f.logic.FindMediaPath("Movie", "1.AVI"), "");
}

TEST(MediaLocations, AButtonWithAnUnknownTagDoesNothing) {
    MediaForm f;
    fakes::FakeLabel a, b, c;
    MediaLocationsLogic odd(f.state, {{&a, &b, &c}, {"Icon", "Sound", "Movie"}}, f.dialog);
    odd.cmdMedia(1);
    odd.cmdMedia(7);
    EXPECT_TRUE(f.dialog.requests.empty());
    EXPECT_EQ(b.caption, "");
}

TEST(MediaLocations, OKStoresTheThreeFoldersAndCancelNothing) {
    MediaForm f;
    f.dialog.answers = {QString("/share/ICON/1.JPG"), QString("/share/PICTURE/1_1.JPG"),
                        QString("/share/MOVIE/1.AVI")};
    for (int i = 0; i < 3; ++i)
        f.logic.cmdMedia(i);
    EXPECT_TRUE(f.logic.cmdOKCancel("Cancel"));
    EXPECT_EQ(f.state.Media.Icon, "/data/ICON/");
    EXPECT_TRUE(f.logic.cmdOKCancel("OK"));
    EXPECT_EQ(f.state.Media.Icon, "/share/ICON/");
    EXPECT_EQ(f.state.Media.Picture, "/share/PICTURE/");
    EXPECT_EQ(f.state.Media.Movie, "/share/MOVIE/");
    EXPECT_FALSE(f.logic.cmdOKCancel("Apply"));
}

TEST(MediaLocations, AFolderWithSpacesUnicodeAndThreeHundredCharactersIsKeptWhole) {
    MediaForm f;
    QString folder = "/srv/Clinic Share/Übungen für Ärzte/";
    while (folder.size() < 290)
        folder += "Physiotherapie Bilder/";
    folder += "PICTURE/";
    f.dialog.answers.push_back(folder + "1_1.JPG");
    f.logic.cmdMedia(1);
    ASSERT_TRUE(f.logic.cmdOKCancel("OK"));
    EXPECT_EQ(f.state.Media.Picture, folder);
    EXPECT_GE(f.state.Media.Picture.size(), 300);
}
