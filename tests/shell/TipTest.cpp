#include "fakes/FakeControls.h"
#include "shell/AppState.h"
#include "shell/TipLogic.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

struct TipForm {
    TipForm() { state.AppFolder = dir.path(); }
    void WriteTips(const QByteArray& bytes) {
        QFile file(dir.filePath("TIPOFDAY.TXT"));
        file.open(QIODevice::WriteOnly);
        file.write(bytes);
    }
    // Loads the form with the random numbers given, in turn.
    void Load(std::vector<double> numbers = {0.0}) {
        randoms = std::move(numbers);
        logic.Load();
    }
    QTemporaryDir dir;
    AppState state;
    fakes::FakeLabel text;
    fakes::FakeCheckBox box;
    fakes::FakeDesktop desktop;
    std::vector<double> randoms;
    size_t next = 0;
    TipLogic logic{state, {text, box}, desktop, [this] {
                       return randoms.empty() ? 0.0 : randoms[next++ % randoms.size()];
                   }};
};

} // namespace

TEST(Tip, AMissingFileSaysSoAndTheBoxIsTicked) {
    TipForm f;
    f.box.value = 0;
    f.Load();
    EXPECT_EQ(f.text.caption,
              "That the TIPOFDAY.TXT file was not found? \n\nCreate a text file named "
              "TIPOFDAY.TXT using NotePad with 1 tip per line. Then place it in the same "
              "directory as the application. ");
    EXPECT_EQ(f.box.value, 1);
    EXPECT_FALSE(f.logic.LoadTips(""));
    // Next Tip does nothing visible then.
    f.logic.cmdNextTip();
    EXPECT_TRUE(f.text.caption.startsWith("That the TIPOFDAY.TXT"));
}

TEST(Tip, AFolderOfThatNameCountsAsNoFile) {
    TipForm f;
    QDir(f.dir.path()).mkdir("TIPOFDAY.TXT");
    f.Load();
    EXPECT_TRUE(f.text.caption.startsWith("That the TIPOFDAY.TXT file was not found?"));
    EXPECT_TRUE(f.logic.Tips.isEmpty());
}

TEST(Tip, AnEmptyFileLoadsNoTipAndShowsNothing) {
    TipForm f;
    f.WriteTips("");
    f.Load();
    EXPECT_TRUE(f.logic.LoadTips(f.dir.filePath("TIPOFDAY.TXT")));
    EXPECT_TRUE(f.logic.Tips.isEmpty());
    EXPECT_EQ(f.text.caption, "");
}

TEST(Tip, AFileOfOneLineAlwaysShowsThatLine) {
    TipForm f;
    f.WriteTips("Press F1 for help.\r\n");
    f.Load({0.0, 0.5, 0.999999});
    EXPECT_EQ(f.text.caption, "Press F1 for help.");
    for (int i = 0; i < 3; ++i) {
        f.logic.cmdNextTip();
        EXPECT_EQ(f.text.caption, "Press F1 for help.");
    }
    EXPECT_EQ(f.logic.Tips.size(), 1);
}

TEST(Tip, TheTipIsTheIntegerPartOfTheRandomTimesTheCountPlusOne) {
    TipForm f;
    f.WriteTips("one\ntwo\nthree\nfour");
    f.Load({0.5, 0.74, 0.25, 0.0});
    EXPECT_EQ(f.logic.CurrentTip, 3);
    EXPECT_EQ(f.text.caption, "three");
    f.logic.cmdNextTip();
    EXPECT_EQ(f.text.caption, "three"); // the same may come twice in a row
    f.logic.cmdNextTip();
    EXPECT_EQ(f.text.caption, "two");
    f.logic.cmdNextTip();
    EXPECT_EQ(f.text.caption, "one");
}

TEST(Tip, AnEmptyLineIsATipLikeAnyOther) {
    TipForm f;
    f.WriteTips("first\n\nthird\n");
    f.Load({0.4});
    EXPECT_EQ(f.logic.Tips.size(), 3);
    EXPECT_EQ(f.logic.CurrentTip, 2);
    EXPECT_EQ(f.text.caption, "");
}

TEST(Tip, AFileThatIsNotUtf8IsReadAsTheOldCodePageAndLosesNoTip) {
    TipForm f;
    f.WriteTips("Caf\xe9 tip\nR\xfc"
                "ckenschule\n");
    f.Load({0.0});
    ASSERT_EQ(f.logic.Tips.size(), 2);
    EXPECT_EQ(f.logic.Tips[0], QString::fromUtf8("Café tip"));
    EXPECT_EQ(f.logic.Tips[1], QString::fromUtf8("Rückenschule"));
}

TEST(Tip, AMegabyteFileLoadsEveryLine) {
    TipForm f;
    QByteArray bytes;
    int lines = 0;
    while (bytes.size() < 1024 * 1024) {
        bytes += "Tip number " + QByteArray::number(++lines) + " about the program.\n";
    }
    f.WriteTips(bytes);
    f.Load({0.999999});
    EXPECT_EQ(f.logic.Tips.size(), lines);
    EXPECT_EQ(f.text.caption, QString("Tip number %1 about the program.").arg(lines));
}

TEST(Tip, UntickingTheBoxAndOKTurnsTheTipsOff) {
    TipForm f;
    f.WriteTips("a tip");
    f.Load();
    f.state.Prefs.ShowTips = true;
    f.box.value = 0;
    f.logic.cmdOK();
    EXPECT_FALSE(f.state.Prefs.ShowTips);
    f.box.value = 1;
    f.logic.cmdOK();
    EXPECT_TRUE(f.state.Prefs.ShowTips);
}

TEST(Tip, EditTipsOpensTheFileOfTheDataFolderAndKeepsTheTipOnShow) {
    TipForm f;
    f.WriteTips("a tip");
    f.Load();
    f.desktop.result = true;
    EXPECT_TRUE(f.logic.cmdEditTip());
    EXPECT_EQ(f.desktop.opened, QStringList{QDir(f.dir.path()).filePath("TIPOFDAY.TXT")});
    EXPECT_EQ(f.text.caption, "a tip");
}
