// The media windows, the tip, About, the system information and the help, driven as a
// clinician would through the program's menus and keys.
#include "media/MediaFakes.h"
#include "shell/AppFolder.h"
#include "shell/Options.h"
#include "support/HelpBook.h"
#include "ui/ClinicDialog.h"
#include "ui/HelpWindow.h"
#include "ui/MainWindowRun.h"
#include "ui/MediaDialogs.h"
#include "ui/PatientDialogs.h"
#include "ui/PicklistEditorDialog.h"
#include "ui/PreferencesDialog.h"
#include "ui/ProgramListDialog.h"
#include "ui/SupportDialogs.h"

#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QLineEdit>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QTabWidget>
#include <QTest>
#include <QTextBlock>
#include <QTextBrowser>
#include <QTextDocument>
#include <QTimer>
#include <QTreeWidget>
#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::testing;

namespace {

// A run whose options are set before the start, as a clinic's settings would be.
struct PresetRun {
    explicit PresetRun(const QHash<QString, QString>& options)
        : lock(dir.filePath("tarvex.lock")), window(state, store, lock, false) {
        state.AppFolder = dir.filePath("data");
        state.DeliveredFolder = DeliveredFolder();
        store.values["Options/ShowTips"] = "False";
        for (auto it = options.cbegin(); it != options.cend(); ++it)
            store.values["Options/" + it.key()] = it.value();
    }
    ~PresetRun() { window.close(); }
    QTemporaryDir dir;
    AppState state;
    fakes::FakeSettingsStore store;
    SingleInstanceLock lock;
    MainWindow window;
};

// The help window on show, whichever window it belongs to.
HelpWindow* OpenHelp() {
    for (QWidget* top : QApplication::allWidgets())
        if (auto* help = qobject_cast<HelpWindow*>(top); help && help->isVisible())
            return help;
    return nullptr;
}

} // namespace

TEST(MediaWindows, AStartWithThePicturesMissingOpensTheCheckWindow) {
    PresetRun run({{"Picture", "/nowhere/PICTURE/"}});
    ASSERT_TRUE(run.window.Start());
    auto* check = run.window.findChild<CheckMediaDialog*>();
    ASSERT_NE(check, nullptr);
    EXPECT_TRUE(check->isVisible());
    EXPECT_FALSE(check->isModal());
    EXPECT_EQ(check->windowTitle(), "Exericse Pictures Not Found");
    // The settings' CD (the delivered media here) is chosen in the drive list.
    EXPECT_EQ(QDir::cleanPath(check->Drive1->currentData().toString()),
              QDir::cleanPath(run.state.CDRomDrive));
    // Copy Pictures brings the same window forward rather than a second one.
    run.window.MenuCommands().Action("mnuCopyPictures")->trigger();
    EXPECT_EQ(run.window.findChildren<CheckMediaDialog*>().size(), 1);
    QTest::keyClick(check, Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(run.state.Media.Picture, "/nowhere/PICTURE/");
}

TEST(MediaWindows, HardDriveCopiesTheDeliveredMediaAndTheNextStartFindsThem) {
    PresetRun run({{"Picture", "/nowhere/PICTURE/"}});
    ASSERT_TRUE(run.window.Start());
    QPointer<CheckMediaDialog> check = run.window.findChild<CheckMediaDialog*>();
    ASSERT_FALSE(check.isNull());
    WriteFile(run.state.AppFolder + "/Picture/12_1.BMP", "an old picture");
    // What the bar showed while the files went across, and whether the window could be
    // closed meanwhile.
    int highest = 0, maximum = -1;
    QTimer watch;
    watch.setInterval(0);
    QObject::connect(&watch, &QTimer::timeout, [&] {
        if (ProgressWindow* bar = check ? check->Progress().Window() : nullptr) {
            highest = std::max(highest, bar->ProgressBar1->value());
            if (bar->windowTitle() == "Copying Pictures From CD To Hard Drive")
                maximum = bar->ProgressBar1->maximum();
            if (check)
                check->reject(); // Esc during the copy: ignored
        }
    });
    watch.start();
    QTest::mouseClick(check->cmdHardDrive, Qt::LeftButton);
    watch.stop();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_TRUE(check.isNull());
    const QString pictures = QDir::toNativeSeparators(run.state.AppFolder + "/Picture/");
    EXPECT_EQ(run.state.Media.Picture, pictures);
    EXPECT_TRUE(QFileInfo::exists(pictures + "385_1.JPG"));
    EXPECT_FALSE(QFileInfo::exists(pictures + "12_1.BMP"));
    EXPECT_EQ(maximum, QDir(DeliveredFolder() + "/PICTURE").entryList(QDir::Files).size());
    EXPECT_GE(highest, maximum);
    // The next start reads the copy's folders from the options and finds its picture.
    run.window.close();
    AppState next;
    next.AppFolder = run.state.AppFolder;
    next.DeliveredFolder = DeliveredFolder();
    LoadOptions(next, run.store);
    EXPECT_EQ(next.Media.Picture, pictures);
    EXPECT_TRUE(QFileInfo::exists(next.Media.Picture + "385_1.JPG"));
}

TEST(MediaWindows, MediaLocationsChangesTheThreeFoldersForTheNextStart) {
    MainWindowRun run;
    const QString share = run.dir.filePath("Clinic Share/Übungen");
    ScriptedOpenDialog dialog;
    dialog.answers = {share + "/ICON/1.JPG", share + "/PICTURE/1_1.JPG", share + "/MOVIE/1.AVI"};
    auto* media = new MediaDialog(run.state, &run.window, &dialog);
    media->show();
    for (QPushButton* button : media->cmdMedia)
        QTest::mouseClick(button, Qt::LeftButton);
    EXPECT_EQ(media->lblMedia[1]->text(), QDir::toNativeSeparators(share + "/PICTURE/"));
    EXPECT_EQ(media->lblMedia[1]->toolTip(), media->lblMedia[1]->text());
    QTest::mouseClick(media->cmdOK, Qt::LeftButton);
    run.window.close();
    AppState next;
    next.AppFolder = run.state.AppFolder;
    LoadOptions(next, run.store);
    EXPECT_EQ(next.Media.Icon, QDir::toNativeSeparators(share + "/ICON/"));
    EXPECT_EQ(next.Media.Picture, QDir::toNativeSeparators(share + "/PICTURE/"));
    EXPECT_EQ(next.Media.Movie, QDir::toNativeSeparators(share + "/MOVIE/"));
}

TEST(MediaWindows, EscAndTheCloseBoxOfMediaLocationsStoreNothing) {
    MainWindowRun run;
    const MediaPaths before = run.state.Media;
    for (bool esc : {true, false}) {
        ScriptedOpenDialog dialog;
        dialog.answers = {QString("/elsewhere/PICTURE/1_1.JPG")};
        auto* media = new MediaDialog(run.state, &run.window, &dialog);
        media->show();
        QTest::mouseClick(media->cmdMedia[1], Qt::LeftButton);
        if (esc)
            QTest::keyClick(media, Qt::Key_Escape);
        else
            media->close();
        QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
        EXPECT_EQ(run.state.Media.Picture, before.Picture);
    }
}

TEST(TipWindow, ShowsATipAtStartAndOKWithTheBoxClearedTurnsTipsOff) {
    PresetRun run({{"ShowTips", "True"}});
    QString shown, caption;
    // The tip comes up modal in the middle of the start: answered once it is there.
    QTimer answer;
    answer.setInterval(10);
    QObject::connect(&answer, &QTimer::timeout, [&] {
        auto* tip = qobject_cast<TipDialog*>(QApplication::activeModalWidget());
        if (!tip)
            return;
        answer.stop();
        caption = tip->windowTitle();
        shown = tip->lblTipText->toPlainText();
        QTest::mouseClick(tip->cmdNextTip, Qt::LeftButton);
        tip->chkLoadTipsAtStartup->setChecked(false);
        QTest::mouseClick(tip->cmdOK, Qt::LeftButton);
    });
    answer.start();
    ASSERT_TRUE(run.window.Start());
    EXPECT_EQ(caption, "Tip of the Day");
    QFile delivered(run.state.AppFolder + "/TIPOFDAY.TXT");
    ASSERT_TRUE(delivered.open(QIODevice::ReadOnly));
    EXPECT_TRUE(QString::fromUtf8(delivered.readAll()).split('\n').contains(shown))
        << shown.toStdString();
    EXPECT_FALSE(shown.isEmpty());
    EXPECT_FALSE(run.state.Prefs.ShowTips);
}

TEST(TipWindow, EscLeavesTheTipsOnWhateverTheBoxSays) {
    MainWindowRun run;
    run.state.Prefs.ShowTips = true;
    TipDialog tip(run.state, &run.window);
    tip.show();
    EXPECT_TRUE(tip.chkLoadTipsAtStartup->isChecked());
    tip.chkLoadTipsAtStartup->setChecked(false);
    QTest::keyClick(&tip, Qt::Key_Escape);
    EXPECT_TRUE(run.state.Prefs.ShowTips);
}

TEST(AboutWindow, ShowsTheProgramAndOpensTheSystemInformation) {
    MainWindowRun run;
    run.window.MenuCommands().Action("mnuAbout")->trigger();
    auto* about = Opened<AboutDialog>(run);
    ASSERT_NE(about, nullptr);
    EXPECT_EQ(about->windowTitle(), "About TVX Regimenter");
    EXPECT_EQ(about->lblVersion->text(), "Version 3.6.0");
    EXPECT_FALSE(about->Image1->pixmap().isNull());
    QTest::mouseClick(about->cmdSysInfo, Qt::LeftButton);
    auto* info = about->findChild<SystemInfoDialog*>();
    ASSERT_NE(info, nullptr);
    EXPECT_TRUE(info->isVisible());
    EXPECT_GT(info->Items->topLevelItemCount(), 5);
    QTest::mouseClick(info->cmdCopy, Qt::LeftButton);
    const QString copied = QApplication::clipboard()->text();
    EXPECT_TRUE(copied.contains("Tarvex.MDB: version ")) << copied.toStdString();
    EXPECT_TRUE(copied.contains(QDir::toNativeSeparators(run.state.AppFolder)));
    QTest::keyClick(info, Qt::Key_Escape);
    QTest::keyClick(about, Qt::Key_Escape);
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
    EXPECT_EQ(Opened<AboutDialog>(run), nullptr);
}

TEST(AboutWindow, WithoutSystemInformationTheBoxSaysSoAndTheWindowStays) {
    MainWindowRun run;
    AboutDialog about(run.state, run.window.Prompts(), &run.window);
    about.SystemInfo = [] { return false; };
    about.show();
    QString text;
    QTimer::singleShot(0, [&] {
        if (auto* box = qobject_cast<QMessageBox*>(QApplication::activeModalWidget())) {
            text = box->text();
            box->accept();
        }
    });
    QTest::mouseClick(about.cmdSysInfo, Qt::LeftButton);
    EXPECT_EQ(text, "System Information Is Unavailable At This Time");
    EXPECT_TRUE(about.isVisible());
}

TEST(HelpWindow, ContentsAndTheToolbarsHelpOpenTheFirstPage) {
    MainWindowRun run;
    run.window.ToolbarCommands().Action("Help")->trigger();
    HelpWindow* help = OpenHelp();
    ASSERT_NE(help, nullptr);
    EXPECT_EQ(help->CurrentPage(), "index.html");
    EXPECT_TRUE(help->Tabs->isEnabled());
    EXPECT_GE(help->Contents->topLevelItemCount(), 1);
    // The contents follow the page on show.
    ASSERT_TRUE(help->ShowPage("printing.html"));
    ASSERT_NE(help->Contents->currentItem(), nullptr);
    EXPECT_EQ(help->Contents->currentItem()->data(0, Qt::UserRole).toString(), "printing.html");
    EXPECT_TRUE(help->Contents->currentItem()->isSelected());
    // The index finds a term as it is typed; Return opens its page.
    help->Tabs->setCurrentIndex(1);
    QTest::keyClicks(help->IndexLine, "pri");
    ASSERT_NE(help->IndexList->currentItem(), nullptr);
    EXPECT_TRUE(help->IndexList->currentItem()->text(0).startsWith("pri", Qt::CaseInsensitive));
    QTest::keyClick(help->IndexLine, Qt::Key_Return);
    EXPECT_NE(help->CurrentPage(), "index.html");
    // The search lists the pages with every word.
    QTest::keyClicks(help->SearchLine, "hold time");
    QTest::keyClick(help->SearchLine, Qt::Key_Return);
    EXPECT_GE(help->SearchResults->count(), 1);
    run.window.MenuCommands().Action("mnuContents")->trigger();
    EXPECT_EQ(OpenHelp(), help); // one help window
    EXPECT_EQ(help->CurrentPage(), "index.html");
    QTest::keyClick(help, Qt::Key_Escape);
    EXPECT_FALSE(help->isVisible());
}

TEST(HelpWindow, FOneOpensThePageOfTheWindowItIsPressedIn) {
    MainWindowRun run;
    run.AddPatient("Okafor", "Chidi");
    const auto expectPage = [&](QWidget* window, const char* page) {
        ASSERT_NE(window, nullptr) << page;
        QTest::keyClick(window, Qt::Key_F1);
        HelpWindow* help = OpenHelp();
        ASSERT_NE(help, nullptr) << page;
        EXPECT_EQ(help->CurrentPage(), page) << window->objectName().toStdString();
        EXPECT_EQ(HelpPageFor(window->objectName()), page);
        help->close();
    };
    expectPage(&run.window, "main-window.html");
    const struct {
        const char* command;
        const char* page;
    } menus[] = {{"mnuClinic", "clinic-info.html"},
                 {"mnuPreferences", "preferences.html"},
                 {"mnuSetMedia", "media-locations.html"},
                 {"mnuCopyPictures", "copy-pictures.html"},
                 {"mnuAbout", "about.html"},
                 {"mnuEditPicklist", "picklist-editor.html"}};
    for (const auto& menu : menus) {
        run.window.MenuCommands().Action(menu.command)->trigger();
        QWidget* opened = QApplication::activeWindow();
        for (QDialog* dialog : run.window.findChildren<QDialog*>())
            if (dialog->isVisible() && HelpPageFor(dialog->objectName()) == menu.page)
                opened = dialog;
        expectPage(opened, menu.page);
        if (auto* dialog = qobject_cast<QDialog*>(opened))
            dialog->reject();
    }
    run.window.ToolbarCommands().Action("Patient")->trigger();
    expectPage(Opened<SelectPatientDialog>(run), "select-patient.html");
    Opened<SelectPatientDialog>(run)->reject();
}

TEST(HelpWindow, WithoutItsFilesTheWindowSaysSo) {
    QTemporaryDir dir;
    HelpWindow help(dir.filePath("Help"));
    help.show();
    EXPECT_FALSE(help.Tabs->isEnabled());
    EXPECT_TRUE(help.Page->toPlainText().startsWith("The help files were not found in "));
    EXPECT_FALSE(help.ShowPage("index.html"));
}

TEST(HelpWindow, EveryLinkOfTheHelpOpensAPage) {
    MainWindowRun run;
    HelpWindow help(HelpFolder(run.state));
    const HelpBook& book = help.Book();
    ASSERT_FALSE(book.Contents().isEmpty());
    int links = 0;
    for (const HelpTopic& topic : book.Contents()) {
        ASSERT_TRUE(help.ShowPage(topic.File));
        EXPECT_FALSE(help.Page->toPlainText().trimmed().isEmpty()) << topic.File.toStdString();
        const QTextDocument* page = help.Page->document();
        for (QTextBlock block = page->begin(); block != page->end(); block = block.next()) {
            for (auto it = block.begin(); !it.atEnd(); ++it) {
                const QString href = it.fragment().charFormat().anchorHref();
                if (href.isEmpty() || href.contains(':'))
                    continue;
                ++links;
                EXPECT_TRUE(help.ShowPage(href))
                    << topic.File.toStdString() << " -> " << href.toStdString();
                help.ShowPage(topic.File);
            }
        }
    }
    EXPECT_GT(links, 60);
}
