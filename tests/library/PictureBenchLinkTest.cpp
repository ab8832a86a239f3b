// The exercise editor's link to the companion picture editor: the labels linked at load,
// the double click that sends a picture, and the notice of a saved picture.

#include "library/EditorHarness.h"

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::fakes;
using namespace tarvex::testing;

namespace {

template <typename Condition> bool WaitFor(Condition condition) {
    const QDeadlineTimer deadline(3000);
    while (!condition() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    return condition();
}

// What the companion does when the user saves: the picture at the target, then the source
// it came from, then a new status.
void CompanionSaves(Editor& e, const QString& source, QColor colour, int saveNumber) {
    const QString target = e.companion->Value("TVXSaveFName");
    QImage picture(900, 675, QImage::Format_RGB32);
    picture.fill(colour);
    ASSERT_TRUE(picture.save(target, "JPEG"));
    e.companion->SetValue("StatFileName", source);
    e.companion->SetValue("TVXLinkStatus", QStringLiteral("Saved %1").arg(saveNumber));
}

} // namespace

TEST(PictureBenchLink, TheFourLabelsAreLinkedAtLoadWithTheirItemsAndModes) {
    Editor e;
    e.Add();
    EXPECT_TRUE(e.prompter.boxes.empty());
    const struct {
        LinkLabel& label;
        const char* item;
        LinkMode mode;
    } expected[] = {{e.lblPictSaveFName, "TVXSaveFName", LinkMode::Manual},
                    {e.lblPictOpenFName, "TVXOpenFName", LinkMode::Manual},
                    {e.lblSrcPicture, "StatFileName", LinkMode::Automatic},
                    {e.lblLinkStatus, "TVXLinkStatus", LinkMode::Notify}};
    for (const auto& link : expected) {
        EXPECT_EQ(link.label.LinkTopic(), "Picture Bench|MDIForm1");
        EXPECT_EQ(link.label.LinkItem(), link.item);
        EXPECT_EQ(link.label.Mode(), link.mode);
    }
    EXPECT_EQ(e.companion->Connections(), 1);
}

TEST(PictureBenchLink, WithTheCompanionMissingOneBoxAtLoadAndTheNotRunningBoxOnADoubleClick) {
    Editor e(false);
    e.prompter.answers = {Answer::Ok, Answer::Ok};
    e.Add();
    ASSERT_EQ(e.prompter.boxes.size(), 1u);
    EXPECT_EQ(e.prompter.boxes[0].text, "Can't find TVX Picture Bench");
    EXPECT_EQ(e.prompter.boxes[0].title, "Error Calling Picture Bench");
    EXPECT_EQ(e.prompter.boxes[0].style, msg::Exclamation);
    // The trap ended the whole operation: no label is linked.
    for (const LinkLabel* label :
         {&e.lblPictSaveFName, &e.lblPictOpenFName, &e.lblSrcPicture, &e.lblLinkStatus})
        EXPECT_EQ(label->Mode(), LinkMode::None);
    // The form works all the same.
    EXPECT_EQ(e.logic.ExerciseID(), 100000);

    e.logic.imgPicture_DblClick(1);
    ASSERT_EQ(e.prompter.boxes.size(), 2u);
    EXPECT_EQ(e.prompter.boxes[1].text,
              "Picture Bench is not running.\nYou must exit and restart the exercise library "
              "editor.");
    EXPECT_EQ(e.prompter.boxes[1].title, "Error: Can't Edit Image.");
    EXPECT_EQ(e.prompter.boxes[1].style, msg::Information);
    EXPECT_EQ(e.lblPictSaveFName.Caption(), QString()) << "the handler ended at the first poke";
    EXPECT_EQ(e.folder.state.PictureNumber, 2);
}

TEST(PictureBenchLink, ANewExercisePokesTheEmptySourceFirstAndThenTheTarget) {
    Editor e;
    e.Add();
    e.logic.imgPicture_DblClick(1);
    const auto pokes = e.companion->Pokes();
    ASSERT_EQ(pokes.size(), 2);
    EXPECT_EQ(pokes[0].first, "TVXOpenFName");
    EXPECT_EQ(pokes[0].second, QString());
    EXPECT_EQ(pokes[1].first, "TVXSaveFName");
    EXPECT_EQ(pokes[1].second, e.folder.state.Media.Picture + "100000_2.JPG");
    EXPECT_EQ(e.logic.PictureIndex(), 1);
    EXPECT_EQ(e.folder.state.PictureNumber, 2);
    EXPECT_EQ(e.lblPictOpenFName.Caption(), QString());
    EXPECT_EQ(e.lblPictSaveFName.Caption(), e.folder.state.Media.Picture + "100000_2.JPG");
}

TEST(PictureBenchLink, AnExistingExerciseSendsItsStoredSource) {
    Editor e;
    e.AddExercise(100004);
    QSqlQuery update(e.Db());
    ASSERT_TRUE(update.exec("UPDATE ExerciseLibrary SET Picture2Src = '/photos/knee side.jpg' "
                            "WHERE ExerciseID = 100004"));
    e.Edit(100004);
    e.logic.imgPicture_DblClick(2);
    const auto pokes = e.companion->Pokes();
    ASSERT_EQ(pokes.size(), 2);
    EXPECT_EQ(pokes[0].second, "/photos/knee side.jpg");
    EXPECT_EQ(pokes[1].second, e.folder.state.Media.Picture + "100004_3.JPG");
}

TEST(PictureBenchLink, TwoPicturesEditedInTurnEachGetTheirSourceAndPicture) {
    Editor e;
    e.Add();
    e.logic.imgPicture_DblClick(0);
    CompanionSaves(e, "/photos/start.jpg", Qt::blue, 1);
    ASSERT_TRUE(WaitFor([&] { return e.lblLinkStatus.Caption() == "Saved 1"; }));
    EXPECT_EQ(e.logic.PictureSource()[0], "/photos/start.jpg");
    EXPECT_EQ(e.lblSrcPicture.Caption(), "/photos/start.jpg");
    EXPECT_TRUE(e.imgPicture[0].loaded);
    EXPECT_EQ(e.imgPicture[0].loads.last(), e.folder.state.Media.Picture + "100000_1.JPG");

    e.logic.imgPicture_DblClick(2);
    CompanionSaves(e, "/photos/end.jpg", Qt::red, 2);
    ASSERT_TRUE(WaitFor([&] { return e.lblLinkStatus.Caption() == "Saved 2"; }));
    EXPECT_EQ(e.logic.PictureSource()[0], "/photos/start.jpg");
    EXPECT_EQ(e.logic.PictureSource()[1], QString());
    EXPECT_EQ(e.logic.PictureSource()[2], "/photos/end.jpg");
    EXPECT_TRUE(e.imgPicture[2].loaded);
    EXPECT_FALSE(e.imgPicture[1].loaded);

    // At OK the sources go to their columns.
    ASSERT_TRUE(e.logic.cmdOKCancel_Click("OK"));
    const QSqlRecord row = e.Row(100000);
    EXPECT_EQ(row.value("Picture0Src").toString(), "/photos/start.jpg");
    EXPECT_EQ(row.value("Picture1Src").toString(), QString());
    EXPECT_EQ(row.value("Picture2Src").toString(), "/photos/end.jpg");
}

TEST(PictureBenchLink, ANoticeWithoutADoubleClickGoesToTheFirstPicture) {
    Editor e;
    e.AddExercise(100007);
    e.Edit(100007);
    e.folder.state.PictureNumber = 1;
    e.companion->SetValue("StatFileName", "/photos/unasked.jpg");
    e.companion->SetValue("TVXLinkStatus", "Saved");
    ASSERT_TRUE(WaitFor([&] { return e.lblLinkStatus.Caption() == "Saved"; }));
    EXPECT_EQ(e.logic.PictureSource()[0], "/photos/unasked.jpg");
    EXPECT_EQ(e.logic.PictureIndex(), 0);
}

TEST(PictureBenchLink, APictureTheCompanionDidNotSaveLeavesTheFormsPictureAsItWas) {
    Editor e;
    e.AddExercise(100008);
    e.PutPicture(100008, 2);
    e.Edit(100008);
    ASSERT_TRUE(e.imgPicture[1].loaded);
    e.logic.imgPicture_DblClick(1);
    QFile::remove(e.folder.state.Media.Picture + "100008_2.JPG");
    const qsizetype loadsBefore = e.imgPicture[1].loads.size();
    e.companion->SetValue("StatFileName", "/photos/lost.jpg");
    e.companion->SetValue("TVXLinkStatus", "Saved");
    ASSERT_TRUE(WaitFor([&] { return e.lblLinkStatus.Caption() == "Saved"; }));
    EXPECT_TRUE(e.imgPicture[1].loaded);
    EXPECT_EQ(e.imgPicture[1].loads.size(), loadsBefore);
    EXPECT_EQ(e.logic.PictureSource()[1], "/photos/lost.jpg");
}

TEST(PictureBenchLink, ASecondLoadLeavesLinkedLabelsAloneAndANewFormLinksAgain) {
    Editor e;
    e.Add();
    e.logic.OpenPictureBenchLinks();
    EXPECT_TRUE(e.prompter.boxes.empty());
    EXPECT_EQ(e.companion->Connections(), 1);

    // A second form beside it, with labels of its own.
    LinkChannels channels;
    LinkLabel save(channels), open(channels), source(channels), status(channels);
    FakeTitle title{"frmEditExercise"};
    ExerciseEditorLogic second(e.folder.state, e.prompter,
                               {title,
                                e.txtDescription,
                                e.txtAbbrevDesc,
                                e.txtRepsDef,
                                e.txtHoldDef,
                                e.txtSetsDef,
                                e.cboPattern,
                                e.cboType,
                                e.lstJoint,
                                {&e.txtPicture[0], &e.txtPicture[1], &e.txtPicture[2]},
                                {&e.imgPicture[0], &e.imgPicture[1], &e.imgPicture[2]},
                                {&e.optExIcon[0], &e.optExIcon[1], &e.optExIcon[2]},
                                {save, open, source, status}},
                               e.host);
    second.OpenPictureBenchLinks();
    EXPECT_TRUE(e.prompter.boxes.empty());
    EXPECT_EQ(status.Mode(), LinkMode::Notify);
    EXPECT_EQ(e.companion->Connections(), 2);
}

TEST(PictureBenchLink, TheCompanionClosedWhileTheEditorIsOpenGivesTheNotRunningBox) {
    Editor e;
    e.Add();
    e.companion->Stop();
    e.prompter.answers = {Answer::Ok};
    e.logic.imgPicture_DblClick(0);
    ASSERT_EQ(e.prompter.boxes.size(), 1u);
    EXPECT_EQ(e.prompter.boxes[0].title, "Error: Can't Edit Image.");
}

TEST(PictureBenchLink, AnotherFaultAtLoadIsShownWithItsNumberAndDescription) {
    Editor e(false);
    // A companion that knows only the two poked items: the advise loop is refused.
    tarvex::testing::LinkServerThread partial("Picture Bench", "MDIForm1",
                                              {"TVXSaveFName", "TVXOpenFName"}, {});
    e.prompter.answers = {Answer::Ok};
    e.Add();
    ASSERT_EQ(e.prompter.boxes.size(), 1u);
    EXPECT_TRUE(e.prompter.boxes[0].text.startsWith("Error285 "))
        << e.prompter.boxes[0].text.toStdString();
    EXPECT_TRUE(e.prompter.boxes[0].text.contains("StatFileName"));
    EXPECT_EQ(e.prompter.boxes[0].title, "Error Calling Picture Bench");
    EXPECT_EQ(e.lblPictSaveFName.Mode(), LinkMode::Manual);
    EXPECT_EQ(e.lblPictOpenFName.Mode(), LinkMode::Manual);
    EXPECT_EQ(e.lblSrcPicture.Mode(), LinkMode::None);
    EXPECT_EQ(e.lblLinkStatus.Mode(), LinkMode::None);
}
