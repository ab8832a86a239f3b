// Every window fits a clinic's screen (1366x768 or 1280x720) with all its controls on it, and
// the windows that show more when they are bigger (the workspace, the preview) do. Run on a
// virtual X display with a window manager; each window's screenshot is kept for a look.
#include "ui/ClinicDialog.h"
#include "ui/ExerciseEditorDialog.h"
#include "ui/HelpWindow.h"
#include "ui/ItemsDialog.h"
#include "ui/LibraryWindow.h"
#include "ui/LoadPictureDialog.h"
#include "ui/MainWindowRun.h"
#include "ui/MediaDialogs.h"
#include "ui/PatientDialogs.h"
#include "ui/PicklistEditorDialog.h"
#include "ui/PreferencesDialog.h"
#include "ui/PrintPreviewDialog.h"
#include "ui/ProgramListDialog.h"
#include "ui/ProtocolWindows.h"
#include "ui/SupportDialogs.h"
#include "ui/WorkspaceWindow.h"
#include <QPushButton>

#include "exercise/SelectionWorkspace.h"
#include "ui/ChoicePaneWidget.h"

#include <QAbstractButton>
#include <QAction>
#include <QApplication>
#include <QComboBox>
#include <QDir>
#include <QLineEdit>
#include <QMessageBox>
#include <QPointer>
#include <QScreen>
#include <QScrollBar>
#include <QStatusBar>
#include <QTest>
#include <QTimer>
#include <QWindow>
#include <functional>
#include <gtest/gtest.h>
#include <iostream>

using namespace tarvex;

namespace {

using Window = tarvex::testing::MainWindowRun;
using tarvex::testing::Opened;

QString ScreenName() {
    const QSize size = QGuiApplication::primaryScreen()->size();
    return QStringLiteral("%1x%2").arg(size.width()).arg(size.height());
}

void SaveScreen(const QString& name) {
    QDir().mkpath(TARVEX_SCREENSHOT_DIR);
    const QString path =
        QStringLiteral(TARVEX_SCREENSHOT_DIR "/screen-%1-%2.png").arg(ScreenName(), name);
    const QPixmap shot = QGuiApplication::primaryScreen()->grabWindow(0);
    if (shot.save(path))
        std::cout << "[ info ] screenshot " << path.toStdString() << "\n";
}

// The help's picture of a window, cut from the screen with its frame, when the run is
// asked for them (scripts/help-screenshots sets TARVEX_HELP_SHOTS to the folder).
void SaveHelpShot(QWidget* window, const QString& name) {
    static const QHash<QString, QString> pictures = {{"main", "main-window"},
                                                     {"clinic", "clinic-info"},
                                                     {"preferences", "preferences"},
                                                     {"select-patient", "select-patient"},
                                                     {"patient-information", "edit-patient"},
                                                     {"programs", "program-list"},
                                                     {"video", "order-details"},
                                                     {"protocol-editor", "protocol-editor"},
                                                     {"picklist-editor", "picklist-editor"},
                                                     {"exercise-library", "library"},
                                                     {"exercise-editor", "exercise-editor"},
                                                     {"workspace", "workspace"},
                                                     {"preview", "print-preview"},
                                                     {"media", "media-locations"},
                                                     {"check-media", "copy-pictures"},
                                                     {"tip", "tip-of-the-day"},
                                                     {"about", "about"},
                                                     {"system-info", "system-info"},
                                                     {"help", "help-window"}};
    const QString folder = qEnvironmentVariable("TARVEX_HELP_SHOTS");
    if (folder.isEmpty() || !pictures.contains(name) || ScreenName() != QLatin1String("1366x768"))
        return;
    const QRect frame = window->frameGeometry().intersected(window->screen()->geometry());
    const QPixmap shot = QGuiApplication::primaryScreen()->grabWindow(
        0, frame.x(), frame.y(), frame.width(), frame.height());
    const QString path = QDir(folder).filePath(pictures.value(name) + ".png");
    if (shot.save(path))
        std::cout << "[ info ] help picture " << path.toStdString() << "\n";
}

// Waits until the window manager has framed the window and it has settled.
void Settle(QWidget* window) {
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window));
    QTest::qWait(400);
}

// The window with its frame lies on the screen, and every control it shows lies inside it.
// A maximised window may have its frame's border laid just outside the screen by the
// window manager; its own area must lie on the screen.
void ExpectFits(QWidget* window, const QString& name) {
    Settle(window);
    const QRect screen = window->screen()->availableGeometry();
    const bool maximised = window->isMaximized();
    const auto placed = [&] { return maximised ? window->geometry() : window->frameGeometry(); };
    // A window being maximised passes through the window manager's steps; on a loaded
    // machine (the sanitizer tests running beside) the last one may come seconds after the
    // settling time.
    const bool settled = QTest::qWaitFor([&] { return screen.contains(placed()); }, 10000);
    if (!settled)
        SaveScreen(name + "-unsettled");
    const QRect frame = placed();
    EXPECT_TRUE(settled && screen.contains(frame))
        << name.toStdString() << ": the window " << frame.width() << "x" << frame.height() << "+"
        << frame.x() << "+" << frame.y() << " leaves the screen " << screen.width() << "x"
        << screen.height() << (maximised ? " (maximised, without its frame)" : "");
    const QRect inside = window->rect();
    int controls = 0;
    for (QWidget* child : window->findChildren<QWidget*>()) {
        if (!child->isVisibleTo(window) || child->isWindow())
            continue;
        if (!qobject_cast<QAbstractButton*>(child) && !qobject_cast<QComboBox*>(child) &&
            !qobject_cast<QLineEdit*>(child) && !qobject_cast<QScrollBar*>(child))
            continue;
        ++controls;
        const QRect place(child->mapTo(window, QPoint(0, 0)), child->size());
        EXPECT_TRUE(inside.contains(place))
            << name.toStdString() << ": " << child->objectName().toStdString() << " at "
            << place.x() << "," << place.y() << " " << place.width() << "x" << place.height()
            << " is cut off by the window's " << inside.width() << "x" << inside.height();
    }
    EXPECT_GT(controls, 0) << name.toStdString();
    SaveScreen(name);
    SaveHelpShot(window, name);
}

class ScreenFit : public ::testing::Test {
protected:
    void SetUp() override {
        if (QGuiApplication::platformName() == QLatin1String("offscreen"))
            GTEST_SKIP() << "needs a display with a window manager";
    }
};

} // namespace

TEST_F(ScreenFit, TheMainWindowAndItsDialogs) {
    Window w;
    // Started and shown by the run, as the program starts.
    ExpectFits(&w.window, "main");
    if (ScreenName() == QLatin1String("1366x768")) {
        EXPECT_EQ(w.window.frameGeometry().topLeft(), QPoint(1, 1)); // the frame, at the top left
    }

    w.window.MenuCommands().Action("mnuClinic")->trigger();
    QPointer<QDialog> dialog = Opened<ClinicDialog>(w);
    ASSERT_FALSE(dialog.isNull());
    dialog->show();
    ExpectFits(dialog, "clinic");
    dialog->close();

    w.window.MenuCommands().Action("mnuPreferences")->trigger();
    dialog = Opened<PreferencesDialog>(w);
    ASSERT_FALSE(dialog.isNull());
    dialog->show();
    ExpectFits(dialog, "preferences");
    dialog->close();

    w.AddPatient("Okafor", "Chidi", "MRN-1001");
    w.window.ToolbarCommands().Action("Patient")->trigger();
    auto* select = Opened<SelectPatientDialog>(w);
    ASSERT_NE(select, nullptr);
    select->show();
    ExpectFits(select, "select-patient");
    QTest::mouseClick(select->Button("New"), Qt::LeftButton);
    dialog = Opened<EditPatientDialog>(w);
    ASSERT_FALSE(dialog.isNull());
    dialog->show();
    ExpectFits(dialog, "patient-information");
    dialog->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
}

TEST_F(ScreenFit, TheProgramListAndTheVideoOrder) {
    Window w;
    w.window.show();
    w.ChooseOkafor(6);
    w.window.ToolbarCommands().Action("Programs")->trigger();
    QPointer<QDialog> dialog = Opened<ProgramListDialog>(w);
    ASSERT_FALSE(dialog.isNull());
    dialog->show();
    ExpectFits(dialog, "programs");
    dialog->close();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);

    w.window.ToolbarCommands().Action("Video")->trigger();
    dialog = Opened<ItemsDialog>(w);
    ASSERT_FALSE(dialog.isNull());
    dialog->show();
    ExpectFits(dialog, "video");
    dialog->close();
}

TEST_F(ScreenFit, TheProtocolWindowsAndThePicklistEditor) {
    Window w;
    w.window.show();
    w.window.MenuCommands().Action("mnuProtocolEditor")->trigger();
    QPointer<QDialog> dialog = Opened<ProtocolEditorDialog>(w);
    ASSERT_FALSE(dialog.isNull());
    dialog->show();
    ExpectFits(dialog, "protocol-editor");
    QTest::keyClick(dialog, Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(dialog.isNull());

    w.window.MenuCommands().Action("mnuEditPicklist")->trigger();
    dialog = Opened<PicklistEditorDialog>(w);
    ASSERT_FALSE(dialog.isNull());
    dialog->show();
    ExpectFits(dialog, "picklist-editor");
    QTest::keyClick(dialog, Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(dialog.isNull());

    w.ChooseOkafor(4);
    QTest::qWait(800);
    w.window.ToolbarCommands().Action("Exercises")->trigger();
    WorkspaceWindow* workspace = w.window.Workspace();
    ASSERT_NE(workspace, nullptr);
    QTest::mouseClick(workspace->Button("cmdProtocol"), Qt::LeftButton);
    dialog = qobject_cast<QDialog*>(workspace->ProtocolSelection());
    ASSERT_FALSE(dialog.isNull());
    ExpectFits(dialog, "protocol-selection");
    QTest::keyClick(dialog, Qt::Key_Escape);
    EXPECT_TRUE(workspace->isVisible());
    QTest::mouseClick(workspace->Button("cmdCancel"), Qt::LeftButton);
    w.state.Program.Modified = false;
}

TEST_F(ScreenFit, TheLibraryTheExerciseEditorAndThePictureBrowser) {
    Window w;
    w.window.show();
    // The companion picture editor is not beside the tests: its boxes (one from the list,
    // one from the editor's link) are answered.
    QTimer answer;
    answer.setInterval(20);
    QObject::connect(&answer, &QTimer::timeout, [] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget()))
            box->accept();
    });
    answer.start();
    w.window.MenuCommands().Action("mnuLibrary")->trigger();
    QPointer<LibraryWindow> library = Opened<LibraryWindow>(w);
    ASSERT_FALSE(library.isNull());
    ExpectFits(library, "exercise-library");
    const int row = [&] {
        for (int r = 0; r < library->Model().RowCount(); ++r)
            if (library->Model().Text(r, 0) == QLatin1String("012"))
                return r;
        return 0;
    }();
    library->Model().SetSelectedRow(row);
    // Return on the chosen row edits it.
    library->ListView1->setFocus();
    QTest::keyClick(library->ListView1, Qt::Key_Return);
    QPointer<ExerciseEditorDialog> editor = library->Editor();
    ASSERT_FALSE(editor.isNull());
    ExpectFits(editor, "exercise-editor");
    QTest::keyClick(editor, Qt::Key_Escape);
    EXPECT_FALSE(editor->isVisible());

    auto* browser = new LoadPictureDialog(w.state, w.window.Prompts(), library);
    browser->setAttribute(Qt::WA_DeleteOnClose);
    browser->show();
    ExpectFits(browser, "picture-browser");
    QTest::keyClick(browser, Qt::Key_Escape);

    QTest::keyClick(library, Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(library.isNull());
}

TEST_F(ScreenFit, TheWorkspaceFitsAndShowsMoreColumnsWhenMaximised) {
    Window w;
    w.window.show();
    w.ChooseOkafor(8);
    // The start shows and hides the workspace once; the window manager finishes with that
    // first map before the clinician's click, as it would in use.
    QTest::qWait(800);
    w.window.ToolbarCommands().Action("Exercises")->trigger();
    WorkspaceWindow* workspace = w.window.Workspace();
    ASSERT_NE(workspace, nullptr);
    ASSERT_TRUE(workspace->isVisible());
    ExpectFits(workspace, "workspace");
    auto* pane = workspace->findChild<ChoicePaneWidget*>();
    ASSERT_NE(pane, nullptr);
    SelectionPanes& panes = workspace->Logic().Panes();
    const int columnsBefore = panes.Columns();
    const auto loaded = [&] {
        int count = 0;
        for (int i = 0; i < w.state.Library.NumChoices; ++i)
            count += panes.PictLoaded(i) ? 1 : 0;
        return count;
    };
    const int loadedBefore = loaded();

    workspace->showMaximized();
    QTest::qWait(600);
    ExpectFits(workspace, "workspace-maximised");
    // The library pane takes the room: more pictures across and more rows in sight.
    EXPECT_GT(panes.Columns(), columnsBefore);
    EXPECT_GT(panes.RowsInSight(), 2);
    EXPECT_GT(pane->width(), 2 * 449);
    EXPECT_GE(loaded(), panes.Columns() * panes.RowsInSight());
    EXPECT_GT(loaded(), loadedBefore);
    // The last library picture's row can still be scrolled into sight.
    EXPECT_EQ(pane->VScroll1()->maximum(), panes.ScrollMax());

    workspace->showNormal();
    QTest::qWait(400);
    QTest::mouseClick(workspace->Button("cmdCancel"), Qt::LeftButton);
    EXPECT_FALSE(workspace->isVisible());
}

TEST_F(ScreenFit, ThePreviewFitsAndItsPagesStayClearOfItsScrollBars) {
    Window w;
    w.window.show();
    w.ChooseOkafor(12);
    bool checked = false;
    QTimer::singleShot(0, [&] {
        auto* preview = qobject_cast<PrintPreviewDialog*>(QApplication::activeModalWidget());
        if (!preview)
            return;
        ExpectFits(preview, "preview");
        for (const char* zoom : {"ZoomIn", "ZoomIn"}) {
            preview->Button(zoom)->trigger();
            QTest::qWait(300);
        }
        ExpectFits(preview, "preview-zoomed");
        // Where a scroll bar shows, no page is drawn over it.
        for (QScrollBar* bar : {preview->VScroll1, preview->HScroll1}) {
            if (!bar->isVisible())
                continue;
            const QRect barPlace(bar->mapTo(preview, QPoint(0, 0)), bar->size());
            const QPoint middle = barPlace.center();
            EXPECT_EQ(preview->childAt(preview->mapFrom(preview, middle)), bar)
                << bar->objectName().toStdString() << " is covered";
            EXPECT_TRUE(preview->rect().contains(barPlace)) << bar->objectName().toStdString();
        }
        EXPECT_TRUE(preview->VScroll1->isVisible() || preview->HScroll1->isVisible());
        // The page area ends at the far edge of its scroll bars, above the status bar.
        const QRect area(preview->OuterFrame->mapTo(preview, QPoint(0, 0)),
                         preview->OuterFrame->size());
        EXPECT_LE(area.bottom(), preview->StatusBar1->geometry().top());
        if (preview->VScroll1->isVisible()) {
            EXPECT_EQ(preview->VScroll1->geometry().right(), preview->OuterFrame->width() - 1);
        }
        if (preview->HScroll1->isVisible()) {
            EXPECT_EQ(preview->HScroll1->geometry().bottom(), preview->OuterFrame->height() - 1);
        }
        // Maximised, the page area takes the room.
        const int widthBefore = preview->OuterFrame->width();
        preview->showMaximized();
        QTest::qWait(500);
        EXPECT_GT(preview->OuterFrame->width(), widthBefore);
        EXPECT_LE(preview->OuterFrame->geometry().bottom(), preview->StatusBar1->geometry().top());
        SaveScreen("preview-maximised");
        checked = true;
        preview->close();
    });
    w.window.MenuCommands().Action("mnuPreviewEx4")->trigger();
    EXPECT_TRUE(checked);
}

TEST_F(ScreenFit, TheMediaWindowsTheTipAboutTheSystemInformationAndTheHelp) {
    Window w;
    w.window.show();
    w.window.MenuCommands().Action("mnuSetMedia")->trigger();
    QPointer<QDialog> dialog = Opened<MediaDialog>(w);
    ASSERT_FALSE(dialog.isNull());
    ExpectFits(dialog, "media");
    QTest::keyClick(dialog, Qt::Key_Escape);

    w.window.MenuCommands().Action("mnuCopyPictures")->trigger();
    dialog = Opened<CheckMediaDialog>(w);
    ASSERT_FALSE(dialog.isNull());
    ExpectFits(dialog, "check-media");
    QTest::keyClick(dialog, Qt::Key_Escape);

    auto* tip = new TipDialog(w.state, &w.window);
    tip->setAttribute(Qt::WA_DeleteOnClose);
    w.window.PlaceDialog(tip);
    tip->show();
    ExpectFits(tip, "tip");
    QTest::keyClick(tip, Qt::Key_Escape);

    w.window.MenuCommands().Action("mnuAbout")->trigger();
    QPointer<AboutDialog> about = Opened<AboutDialog>(w);
    ASSERT_FALSE(about.isNull());
    ExpectFits(about, "about");
    QTest::mouseClick(about->cmdSysInfo, Qt::LeftButton);
    QPointer<SystemInfoDialog> info = about->findChild<SystemInfoDialog*>();
    ASSERT_FALSE(info.isNull());
    ExpectFits(info, "system-info");
    QTest::keyClick(info, Qt::Key_Escape);
    QTest::keyClick(about, Qt::Key_Escape);

    w.window.MenuCommands().Action("mnuContents")->trigger();
    QPointer<HelpWindow> help = w.window.findChild<HelpWindow*>();
    ASSERT_FALSE(help.isNull());
    help->ShowPage("first-program.html");
    ExpectFits(help, "help");
    QTest::keyClick(help, Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(about.isNull());
}
