#include "ui/LibraryWindow.h"

#include "data/Sql.h"
#include "fakes/FakeControls.h"
#include "link/LinkWire.h"
#include "support/LinkServerThread.h"
#include "ui/ChoicePaneWidget.h"
#include "ui/ExerciseEditorDialog.h"
#include "ui/LoadPictureDialog.h"
#include "ui/MainWindowRun.h"
#include "ui/PaneDrag.h"
#include "ui/SlotPaneWidget.h"
#include "ui/WorkspaceWindow.h"

#include <QApplication>
#include <QComboBox>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QHeaderView>
#include <QImageReader>
#include <QLineEdit>
#include <QListWidget>
#include <QLocalSocket>
#include <QMessageBox>
#include <QProcess>
#include <QPushButton>
#include <QRadioButton>
#include <QTest>
#include <QThread>
#include <QTimer>
#include <QTreeView>
#include <csignal>
#include <gtest/gtest.h>

using namespace tarvex;
using tarvex::fakes::ScriptedPrompter;
using tarvex::testing::MainWindowRun;

namespace {

// The program with its pictures in a folder of the run, so that new pictures can go there.
struct LibraryRun : MainWindowRun {
    // The companion's link answers from a thread of the test's own, or, with false, from
    // nothing until the test starts the real companion.
    explicit LibraryRun(bool threadCompanion = true) {
        QDir(dir.path()).mkpath("PICTURE");
        state.Media.Picture = dir.filePath("PICTURE") + u'/';
        // The companion picture editor's link answers from a thread, on a socket of the
        // test's own.
        qputenv("TARVEX_LINK_DIR", dir.path().toUtf8());
        if (threadCompanion)
            companion = std::make_unique<tarvex::testing::LinkServerThread>(
                "Picture Bench", "MDIForm1", QStringList{"TVXSaveFName", "TVXOpenFName"},
                QStringList{"StatFileName", "TVXLinkStatus"});
    }
    ~LibraryRun() {
        state.Program.Modified = false;
        companion.reset();
        qunsetenv("TARVEX_LINK_DIR");
    }

    // The library window as the Tools menu makes it, with the boxes answered from a script.
    LibraryWindow* Open() {
        auto* library = new LibraryWindow(
            state, window.ShellLogic(), prompter,
            [this] { window.ReopenDatabasesAndReloadWorkspace(); }, &window);
        library->OnStartDetached = [this](const QString& program) {
            started << program;
            return true;
        };
        prompter.answers.push_back(Answer::Ok); // the companion is not beside the tests
        library->Open();
        library->show();
        return library;
    }
    // Exercise 100000, "Clinic exercise", with every column the workspace needs.
    void AddClinicExercise() {
        InsertRow(state.Dbs.LibraryDb, "ExerciseLibrary",
                  {{"ExerciseID", 100000},
                   {"code", "100000"},
                   {"Desc", "Clinic exercise"},
                   {"Reps", 10},
                   {"Hold", 0},
                   {"Sets", 1},
                   {"HasVideo", 0}});
    }
    int LibraryCount() {
        QSqlQuery q = OpenQuery(state.Dbs.LibraryDb, "SELECT COUNT(*) FROM ExerciseLibrary");
        return q.next() ? q.value(0).toInt() : -1;
    }
    QString PutPicture(const QString& name, QSize size) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(QColor(230, 230, 230));
        const QString path = state.Media.Picture + name;
        EXPECT_TRUE(image.save(path, "JPEG"));
        return path;
    }
    static void Shoot(QWidget* window, const QString& name) {
        QDir().mkpath(TARVEX_SCREENSHOT_DIR);
        window->grab().save(QStringLiteral(TARVEX_SCREENSHOT_DIR) + "/" + name + ".png");
    }
    static int RowOf(LibraryWindow* library, const QString& code) {
        for (int r = 0; r < library->Model().RowCount(); ++r)
            if (library->Model().Text(r, 0) == code)
                return r;
        return -1;
    }

    ScriptedPrompter prompter;
    std::unique_ptr<tarvex::testing::LinkServerThread> companion;
    QStringList started;
};

// Presses OK on the next message box and keeps its text.
void AcceptNextMessageBox(QString* text) {
    auto* timer = new QTimer;
    timer->setInterval(10);
    QObject::connect(timer, &QTimer::timeout, [timer, text] {
        auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget());
        if (!box)
            return;
        timer->stop();
        timer->deleteLater();
        *text = box->windowTitle() + ": " + box->text();
        box->accept();
    });
    timer->start();
}

} // namespace

TEST(LibraryWindow, OpensFromTheToolsMenuAndEscGivesTheCommandsBack) {
    LibraryRun r;
    QString box;
    AcceptNextMessageBox(&box);
    r.window.MenuCommands().Action("mnuLibrary")->trigger();
    EXPECT_EQ(box, "Picture Bench Not Found: Can't find TVX Picture Bench");
    auto* library = tarvex::testing::Opened<LibraryWindow>(r);
    ASSERT_NE(library, nullptr);
    EXPECT_TRUE(library->isVisible()) << "the window opens after the box";
    EXPECT_EQ(library->windowTitle(), "Exercise Library");
    EXPECT_EQ(library->Model().RowCount(), r.LibraryCount());
    EXPECT_EQ(library->ListView1->model()->headerData(4, Qt::Horizontal).toString(), "Type");
    EXPECT_EQ(r.window.ShellLogic().ToolbarMode(), ToolbarMode::HelpOnly);
    EXPECT_EQ(r.window.ShellLogic().MenuMode(), MenuMode::None);
    r.window.MenuCommands().Action("mnuLibrary")->trigger();
    EXPECT_EQ(r.window.findChildren<LibraryWindow*>().size(), 1);
    LibraryRun::Shoot(library, "library-list");

    QPointer<WorkspaceWindow> before = r.window.Workspace();
    const int opened = r.state.Dbs.OpenCount;
    QTest::keyClick(library->ListView1, Qt::Key_Escape);
    EXPECT_FALSE(library->isVisible());
    EXPECT_EQ(r.state.Dbs.OpenCount, opened + 1) << "Esc leaves as Exit does";
    EXPECT_NE(r.window.Workspace(), nullptr);
    EXPECT_TRUE(before.isNull()) << "the workspace is made anew";
    EXPECT_EQ(r.window.ShellLogic().ToolbarMode(), ToolbarMode::PatientOnly);
    EXPECT_EQ(r.window.ShellLogic().MenuMode(), MenuMode::All);
}

TEST(LibraryWindow, AClickOnAColumnSortsByTextAndTheSortStaysAfterARefill) {
    LibraryRun r;
    r.AddClinicExercise();
    LibraryWindow* library = r.Open();
    EXPECT_TRUE(r.started.isEmpty()) << "a companion that is not there is not started";
    library->ListView1->header()->sectionClicked(0);
    const int clinic = LibraryRun::RowOf(library, "100000");
    const int first = LibraryRun::RowOf(library, "385");
    ASSERT_GE(clinic, 0);
    ASSERT_GE(first, 0);
    EXPECT_LT(clinic, first) << "100000 sorts before 385 as text";
    EXPECT_EQ(library->Model().Text(0, 0), "001");
    library->Logic().cmdFillListBox_Click();
    EXPECT_EQ(library->Model().Text(0, 0), "001");
    EXPECT_EQ(LibraryRun::RowOf(library, "100000"), clinic);
    library->ListView1->header()->sectionClicked(1);
    QStringList descs;
    for (int row = 0; row < library->Model().RowCount(); ++row)
        descs << library->Model().Text(row, 1);
    QStringList sorted = descs;
    std::stable_sort(sorted.begin(), sorted.end(), SortsBefore);
    EXPECT_EQ(descs, sorted);
    library->close();
}

TEST(LibraryWindow, DeletingAnOriginalIsRefusedAndAClinicExerciseGoesAfterTheQuestion) {
    LibraryRun r;
    r.AddClinicExercise();
    LibraryWindow* library = r.Open();
    const int rows = library->Model().RowCount();
    library->Model().SetSelectedRow(LibraryRun::RowOf(library, "243"));
    r.prompter.answers = {Answer::Ok};
    library->Button("Delete")->click();
    EXPECT_EQ(r.prompter.boxes.back().title, "Error: Deleting original exercise");
    EXPECT_EQ(library->Model().RowCount(), rows);
    library->Model().SetSelectedRow(LibraryRun::RowOf(library, "100000"));
    r.prompter.answers = {Answer::Ok};
    library->Button("Delete")->click();
    EXPECT_EQ(r.prompter.boxes.back().text, "Delete: Clinic exercise");
    EXPECT_EQ(library->Model().RowCount(), rows - 1);
    EXPECT_EQ(LibraryRun::RowOf(library, "100000"), -1);
    library->close();
}

TEST(LibraryWindow, AnExerciseAddedWithAPictureIsInTheWorkspaceUnderItsJointAndPrints) {
    LibraryRun r;
    LibraryWindow* library = r.Open();
    const int rows = library->Model().RowCount();
    library->Button("Add")->click();
    ExerciseEditorDialog* editor = library->Editor();
    ASSERT_NE(editor, nullptr);
    EXPECT_TRUE(editor->isVisible());
    EXPECT_EQ(editor->windowTitle(), "Exercise Number: 100000");
    EXPECT_EQ(editor->txtRepsDef->text(), "10");
    EXPECT_EQ(editor->txtHoldDef->text(), "0");
    EXPECT_EQ(editor->txtSetsDef->text(), "1");
    // A further Add only brings the editor forward.
    library->Button("Add")->click();
    EXPECT_EQ(library->Editor(), editor);

    QTest::keyClicks(editor->txtDescription, "Jaw opening against the fist's gentle push");
    QTest::keyClicks(editor->txtAbbrevDesc, "Jaw opening and more than fifteen");
    EXPECT_EQ(editor->txtAbbrevDesc->text(), "Jaw opening and") << "at most 15 characters";
    editor->txtRepsDef->setText("12");
    editor->txtHoldDef->setText("3");
    r.prompter.inputs = {QString("Jaw")};
    editor->findChild<QPushButton*>("cmdNewJoint")->click();
    for (const char* joint : {"Jaw", "Neck"}) {
        const auto found = editor->lstJoint->findItems(joint, Qt::MatchExactly);
        ASSERT_FALSE(found.isEmpty()) << joint;
        found.first()->setSelected(true);
    }
    editor->cboPattern->setEditText("Opening");
    editor->cboType->setEditText("Strengthening");
    QTest::keyClicks(editor->txtPicture[0], "Sit tall, fist under the chin.");
    QTest::keyClicks(editor->txtPicture[1], "Open the mouth slowly against the fist.");
    QTest::keyClicks(editor->txtPicture[2], QString(80, u'z'));
    EXPECT_EQ(editor->txtPicture[2]->toPlainText().size(), 75) << "at most 75 characters";
    editor->txtPicture[2]->setPlainText("Hold, then relax.");
    r.PutPicture("100000_1.JPG", {900, 675});
    editor->optExIcon[0]->setChecked(true);
    LibraryRun::Shoot(editor, "exercise-editor");
    editor->Button("OK")->click();
    EXPECT_TRUE(library->Editor() == nullptr || !library->Editor()->isVisible());

    const QString icon = r.state.Media.Icon + "100000.JPG";
    EXPECT_EQ(QImageReader(icon).size().width(), 61);
    EXPECT_EQ(library->Model().RowCount(), rows + 1) << "the list is filled again";
    const int row = LibraryRun::RowOf(library, "100000");
    ASSERT_GE(row, 0);
    EXPECT_EQ(library->Model().Text(row, 2), "Jaw,Neck");

    library->Button("Exit")->click();
    EXPECT_FALSE(library->isVisible());
    // The workspace shows the new exercise under its joint.
    r.ChooseOkafor(0);
    r.window.ToolbarCommands().Action("Exercises")->trigger();
    WorkspaceWindow& w = *r.window.Workspace();
    ASSERT_TRUE(w.isVisible());
    QListWidget* joints = w.ViewList(0);
    const auto jaw = joints->findItems("Jaw", Qt::MatchExactly);
    ASSERT_FALSE(jaw.isEmpty()) << "the new joint is in the filter list";
    joints->clearSelection();
    jaw.first()->setSelected(true);
    ASSERT_EQ(r.state.Library.NumChoices, 1);
    EXPECT_EQ(r.state.Library.Entries[0].ExerciseID, 100000);
    SlotPaneWidget* lower = w.SlotPane();
    std::unique_ptr<QMimeData> data(PaneDragData({DragKind::SrcIm, 0}));
    lower->DropAt(lower->SlotPictureRect(0).center(), data.get());
    EXPECT_EQ(r.state.Program.NumExercises, 1);
    w.Button("cmdOK")->click();

    r.PrintToPdf();
    r.window.ToolbarCommands().Action("Print")->trigger();
    const QString text = r.PrintedText();
    EXPECT_TRUE(text.contains("Sit tall, fist under the chin.")) << text.toStdString();
    // The second line wraps in its column.
    EXPECT_TRUE(text.contains("Open the mouth slowly")) << text.toStdString();
    EXPECT_TRUE(text.contains("against the fist."));
    EXPECT_TRUE(text.contains("Hold, then relax."));
    EXPECT_TRUE(text.contains("12 reps, 3 sec hold, 1 set"));
    EXPECT_TRUE(text.contains("Jaw opening")) << text.toStdString();
}

TEST(LibraryWindow, CancelInTheEditorLeavesNoRowAndTheListIsFilledAgain) {
    LibraryRun r;
    LibraryWindow* library = r.Open();
    const int rows = r.LibraryCount();
    library->Button("Add")->click();
    ExerciseEditorDialog* editor = library->Editor();
    ASSERT_NE(editor, nullptr);
    QTest::keyClicks(editor->txtDescription, "Never saved");
    QTest::keyClick(editor->txtDescription, Qt::Key_Escape);
    EXPECT_EQ(r.LibraryCount(), rows);
    EXPECT_EQ(library->Model().RowCount(), rows);
    library->close();
}

TEST(LibraryWindow, LettersInANumberBoxAreReportedAndTheEditorStaysOpenWithItsTexts) {
    LibraryRun r;
    LibraryWindow* library = r.Open();
    const int rows = r.LibraryCount();
    library->Button("Add")->click();
    ExerciseEditorDialog* editor = library->Editor();
    ASSERT_NE(editor, nullptr);
    editor->txtDescription->setText("Step-ups");
    editor->txtSetsDef->setText("two");
    QString box;
    AcceptNextMessageBox(&box);
    editor->Button("OK")->click();
    EXPECT_TRUE(box.contains("Data type conversion error.")) << box.toStdString();
    EXPECT_TRUE(editor->isVisible());
    EXPECT_EQ(editor->txtDescription->text(), "Step-ups");
    EXPECT_EQ(r.LibraryCount(), rows);
    editor->txtSetsDef->setText("2");
    editor->Button("OK")->click();
    EXPECT_EQ(r.LibraryCount(), rows + 1);
    library->close();
}

TEST(LibraryWindow, LeavingIsHeldWhileTheEditorHoldsAnExercise) {
    LibraryRun r;
    LibraryWindow* library = r.Open();
    library->Button("Add")->click();
    ASSERT_NE(library->Editor(), nullptr);
    r.prompter.answers = {Answer::Ok};
    library->Button("Exit")->click();
    EXPECT_TRUE(library->isVisible());
    EXPECT_EQ(r.prompter.boxes.back().text.left(33), "The exercise editor is still open");
    library->Editor()->Button("Cancel")->click();
    library->Button("Exit")->click();
    EXPECT_FALSE(library->isVisible());
}

TEST(LibraryWindow, EditingFromTheListShowsTheExerciseAndADoubleClickEditsToo) {
    LibraryRun r;
    LibraryWindow* library = r.Open();
    const int row = LibraryRun::RowOf(library, "007");
    ASSERT_GE(row, 0);
    const QModelIndex index = library->Model().index(row, 1);
    library->ListView1->scrollTo(index);
    const QPoint at = library->ListView1->visualRect(index).center();
    QTest::mouseClick(library->ListView1->viewport(), Qt::LeftButton, {}, at);
    QTest::mouseDClick(library->ListView1->viewport(), Qt::LeftButton, {}, at);
    ExerciseEditorDialog* editor = library->Editor();
    ASSERT_NE(editor, nullptr);
    EXPECT_EQ(editor->windowTitle(), "Exercise Number: 007");
    EXPECT_EQ(editor->txtDescription->text(), library->Model().Text(row, 1));
    EXPECT_FALSE(editor->lstJoint->selectedItems().isEmpty());
    editor->Button("Cancel")->click();
    library->close();
}

TEST(PictureBrowser, LoadsWithNothingChosenAndRefusesAMediaFolderStoredWithoutItsSeparator) {
    LibraryRun r;
    LoadPictureDialog browser(r.state, r.prompter, &r.window);
    EXPECT_EQ(browser.windowTitle(), "Select Picture");
    EXPECT_TRUE(browser.LEAD1->pixmap().isNull());
    browser.show();
    EXPECT_FALSE(browser.FilePath().isEmpty());
    r.PutPicture("photo.jpg", {640, 480});
    r.state.Media.Picture = r.dir.filePath("PICTURE");
    r.prompter.answers = {Answer::Ok};
    const QString before = browser.FilePath();
    browser.Dir1_Change(r.dir.filePath("PICTURE"));
    ASSERT_EQ(r.prompter.boxes.size(), 1u);
    EXPECT_EQ(r.prompter.boxes[0].text, "Can't select pictures already in the browser");
    EXPECT_EQ(r.prompter.boxes[0].title, "Error: Picture source");
    EXPECT_EQ(browser.FilePath(), before);
    browser.Dir1_Change(r.dir.path());
    browser.File1_Click("PICTURE/photo.jpg");
    EXPECT_FALSE(browser.LEAD1->pixmap().isNull());
    EXPECT_EQ(browser.StatusPanel->text(), "Ready");
    browser.close();
}

// The real companion program, run with a script of edits in place of a user.
class ScriptedCompanion {
public:
    explicit ScriptedCompanion(const QString& scriptPath) : script_(scriptPath) {}
    ~ScriptedCompanion() { Kill(); }
    ScriptedCompanion(const ScriptedCompanion&) = delete;
    ScriptedCompanion& operator=(const ScriptedCompanion&) = delete;

    // Starts it as the library window would, detached; the program named must be the
    // companion's.
    bool Start(const QString& program) {
        if (!program.endsWith("tarvex-picture-bench"))
            return false;
        return QProcess::startDetached(QStringLiteral(TARVEX_PICTURE_BENCH), {"--script", script_},
                                       {}, &pid_);
    }
    // Waits until it offers its service, at most ten seconds.
    bool WaitUntilServing() {
        const QDeadlineTimer deadline(10000);
        while (!deadline.hasExpired()) {
            QLocalSocket probe;
            probe.connectToServer(LinkSocketPath("Picture Bench"));
            if (probe.waitForConnected(200))
                return true;
            QThread::msleep(50);
        }
        return false;
    }
    // Ends it as a crash would, and waits until its socket no longer answers.
    void Kill() {
        if (pid_ <= 0)
            return;
        ::kill(static_cast<pid_t>(pid_), SIGKILL);
        pid_ = 0;
        const QDeadlineTimer deadline(10000);
        while (!deadline.hasExpired()) {
            QLocalSocket probe;
            probe.connectToServer(LinkSocketPath("Picture Bench"));
            if (!probe.waitForConnected(200))
                return;
            probe.abort();
            QThread::msleep(50);
        }
    }

private:
    QString script_;
    qint64 pid_ = 0;
};

TEST(PictureBenchEndToEnd, ADoubleClickedPictureIsCroppedMarkedAndSavedByTheCompanion) {
    LibraryRun r(false);
    r.AddClinicExercise();
    // A photo of two halves, red and blue, as the picture's source.
    QImage photo(1600, 1200, QImage::Format_RGB32);
    photo.fill(Qt::red);
    for (int y = 0; y < photo.height(); ++y)
        for (int x = photo.width() / 2; x < photo.width(); ++x)
            photo.setPixel(x, y, qRgb(0, 0, 255));
    const QString source = r.dir.filePath("knee photo.jpg");
    ASSERT_TRUE(photo.save(source, "JPEG", 95));
    // The row holds an older source; the picture sent is the one stored.
    QSqlQuery update(r.state.Dbs.LibraryDb);
    ASSERT_TRUE(update.exec("UPDATE ExerciseLibrary SET Picture1Src = '" + source +
                            "' WHERE ExerciseID = 100000"));
    // The user's edits: the middle of the photo, an arrow across it, saved.
    const QString script = r.dir.filePath("edits.txt");
    QFile scriptFile(script);
    ASSERT_TRUE(scriptFile.open(QIODevice::WriteOnly));
    scriptFile.write("crop 0.25 0.25 0.5 0.5\narrow 0.1 0.9 0.9 0.9\nsave\n");
    scriptFile.close();

    ScriptedCompanion companion(script);
    auto* library = new LibraryWindow(
        r.state, r.window.ShellLogic(), r.prompter,
        [&r] { r.window.ReopenDatabasesAndReloadWorkspace(); }, &r.window);
    library->SetPictureBenchProgram(TARVEX_PICTURE_BENCH);
    library->OnStartDetached = [&](const QString& program) { return companion.Start(program); };
    library->Open();
    library->show();
    ASSERT_TRUE(companion.WaitUntilServing());

    library->Model().SetSelectedRow(LibraryRun::RowOf(library, "100000"));
    library->Button("Edit")->click();
    ExerciseEditorDialog* editor = library->Editor();
    ASSERT_NE(editor, nullptr);
    EXPECT_TRUE(r.prompter.boxes.empty()) << "the link opened without a box";
    EXPECT_TRUE(editor->imgPicture[1]->pixmap().isNull());

    QTest::mouseDClick(editor->imgPicture[1], Qt::LeftButton);
    const QString target = r.state.Media.Picture + "100000_2.JPG";
    EXPECT_EQ(editor->lblPictOpenFName->text(), source);
    EXPECT_EQ(editor->lblPictSaveFName->text(), target);
    EXPECT_EQ(r.state.PictureNumber, 2);
    // The companion edits and saves; the editor hears of it and shows the new picture.
    const QDeadlineTimer deadline(15000);
    while (!editor->lblLinkStatus->text().startsWith("Saved") && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 50);
    EXPECT_EQ(editor->Logic().PictureSource()[1], source);
    EXPECT_EQ(editor->lblSrcPicture->text(), source);
    EXPECT_TRUE(editor->lblLinkStatus->text().startsWith("Saved 1"))
        << editor->lblLinkStatus->text().toStdString();
    EXPECT_FALSE(editor->imgPicture[1]->pixmap().isNull());
    const QImage saved(target);
    ASSERT_EQ(saved.size(), QSize(900, 675));
    // The middle of the photo: red on the left, blue on the right, the arrow at the foot.
    EXPECT_GT(qRed(saved.pixel(100, 300)), 200);
    EXPECT_LT(qBlue(saved.pixel(100, 300)), 60);
    EXPECT_GT(qBlue(saved.pixel(800, 300)), 200);
    EXPECT_LT(qRed(saved.pixel(800, 300)), 60);
    EXPECT_LT(qGray(saved.pixel(450, 607)), 60) << "the arrow's line";
    LibraryRun::Shoot(editor, "exercise-editor-linked");

    // OK stores the source and makes the icon from the new picture.
    editor->optExIcon[1]->setChecked(true);
    editor->Button("OK")->click();
    QSqlQuery row = OpenQuery(r.state.Dbs.LibraryDb,
                              "SELECT Picture1Src FROM ExerciseLibrary WHERE ExerciseID = 100000");
    ASSERT_TRUE(row.next());
    EXPECT_EQ(row.value(0).toString(), source);
    const QImage icon(r.state.Media.Icon + "100000.JPG");
    EXPECT_EQ(icon.width(), 61);

    // The companion closed while an editor is open: the next double click says so.
    library->Model().SetSelectedRow(LibraryRun::RowOf(library, "100000"));
    library->Button("Edit")->click();
    editor = library->Editor();
    ASSERT_NE(editor, nullptr);
    companion.Kill();
    r.prompter.answers = {Answer::Ok};
    QTest::mouseDClick(editor->imgPicture[0], Qt::LeftButton);
    ASSERT_FALSE(r.prompter.boxes.empty());
    EXPECT_EQ(r.prompter.boxes.back().title, "Error: Can't Edit Image.");
    editor->Button("Cancel")->click();
    library->close();
}
