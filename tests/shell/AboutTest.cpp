#include "fakes/FakeControls.h"
#include "shell/AboutLogic.h"
#include "shell/SystemInfo.h"
#include "support/TestFolder.h"

#include <QRegularExpression>
#include <gtest/gtest.h>
#include <stdexcept>

using namespace tarvex;

namespace {

class FakeSystemInfoHost : public ISystemInfoHost {
public:
    bool ShowSystemInfo() override {
        ++calls;
        if (fails)
            throw std::runtime_error("no window");
        return shown;
    }
    int calls = 0;
    bool shown = true;
    bool fails = false;
};

struct AboutForm {
    AboutForm() { logic.Load(); }
    fakes::FakeTitle caption{"frmAbout"};
    fakes::FakeLabel title, version, description, maker, headings, values, disclaimer;
    FakeSystemInfoHost host;
    fakes::ScriptedPrompter prompter;
    AboutLogic logic{
        {caption, title, version, description, {&maker, &headings, &values}, disclaimer},
        host,
        prompter};
};

} // namespace

TEST(About, LoadSetsTheCaptionVersionAndTheMakersLines) {
    AboutForm f;
    EXPECT_EQ(f.caption.title, "About TVX Regimenter");
    EXPECT_EQ(f.title.caption, "TVX Regimenter");
    EXPECT_EQ(f.version.caption, "Version 3.6.0");
    EXPECT_EQ(f.description.caption, "Build custom exercise programs for your patients.");
    EXPECT_TRUE(f.maker.caption.startsWith("Tarvex\n"));
    EXPECT_EQ(f.headings.caption, "Phone:\nFAX:\nHome:\ne-mail:");
    EXPECT_EQ(f.values.caption.split('\n').mid(0, 2),
              (QStringList{"(555) 555-0153", "(555) 555-0154"}));
    EXPECT_EQ(f.values.caption.count('\n'), 3);     // one value for each heading
    EXPECT_EQ(f.disclaimer.caption.count('\n'), 1); // two lines
}

TEST(About, SystemInfoOpensTheWindowWithoutABox) {
    AboutForm f;
    f.logic.cmdSysInfo();
    EXPECT_EQ(f.host.calls, 1);
    EXPECT_TRUE(f.prompter.boxes.empty());
}

TEST(About, WithoutTheSystemInformationTheBoxSaysItIsUnavailable) {
    for (const bool fails : {false, true}) {
        AboutForm f;
        f.host.shown = false;
        f.host.fails = fails;
        f.prompter.answers.push_back(Answer::Ok);
        f.logic.cmdSysInfo();
        ASSERT_EQ(f.prompter.boxes.size(), 1u);
        EXPECT_EQ(f.prompter.boxes[0].text, "System Information Is Unavailable At This Time");
    }
}

TEST(SystemInfo, NamesTheDatabasesWithVersionAndSizeTheMediaAndThePrinters) {
    tarvex::testing::TestFolder folder;
    AppState& state = folder.state;
    state.Media.Picture = folder.Path() + "/";
    state.Media.Icon = folder.Path() + "/ICON/";
    state.Media.Movie = "/nowhere/MOVIE/";
    const QList<SystemInfoItem> items =
        GatherSystemInfo(state, {"Front desk laser", "PDF"}, "/home/x/.config/Tarvex/Tarvex.conf");
    const QString text = SystemInfoText(items);
    EXPECT_TRUE(text.contains("  Tarvex.MDB: version 3.8, ")) << text.toStdString();
    EXPECT_TRUE(text.contains("  Exercise Library.MDB: version ")) << text.toStdString();
    // The picklist store has no Version table: it says so rather than a version.
    EXPECT_TRUE(text.contains("  Picklist.MDB: no version, ")) << text.toStdString();
    EXPECT_TRUE(text.contains("  Qt: " + QString(qVersion())));
    EXPECT_TRUE(text.contains(QRegularExpression("  SQLite: 3\\.\\d+\\.\\d+")));
    EXPECT_TRUE(text.contains("  Default: Front desk laser\n  Printer: PDF\n"));
    EXPECT_TRUE(text.contains("1.AVI not found"));
    EXPECT_TRUE(text.contains("  Settings: /home/x/.config/Tarvex/Tarvex.conf"));
    EXPECT_TRUE(text.startsWith("Program\n  Name: TVX Regimenter\n  Version: 3.6.0\n"));
    EXPECT_TRUE(GatherSystemInfo(state, {}, {}).constLast().Value == "none installed");
}

TEST(SystemInfo, SizesReadAsPeopleSayThem) {
    EXPECT_EQ(FileSizeText(512), "512 bytes");
    EXPECT_EQ(FileSizeText(812 * 1024), "812 KB");
    EXPECT_EQ(FileSizeText(166 * 1024 * 1024 + 300 * 1024), "166.3 MB");
}
