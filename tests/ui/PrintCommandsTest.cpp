#include "data/Sql.h"
#include "exercise/LibraryCache.h"
#include "fakes/FakeSettingsStore.h"
#include "shell/SingleInstance.h"
#include "support/TestFolder.h"
#include "ui/MainWindow.h"
#include "ui/MainWindowRun.h"

#include <QApplication>
#include <QFileInfo>
#include <QImage>
#include <QPrintDialog>
#include <QProcess>
#include <QTemporaryDir>
#include <QTimer>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

struct PrintRun : tarvex::testing::MainWindowRun {
    PrintRun() {
        ChooseOkafor(5);
        PrintToPdf();
    }
};

} // namespace

TEST(PrintCommands, TheToolbarPrintsTheCoverSheetThenFourExercisesAPageWithoutTheDialog) {
    PrintRun r;
    r.window.ToolbarCommands().Action("Print")->trigger();
    ASSERT_TRUE(QFileInfo(r.dir.filePath("printed.pdf")).size() > 0);
    const QString text = r.PrintedText();
    EXPECT_TRUE(text.contains("Okafor, Chidi"));
    EXPECT_TRUE(text.contains("(" + r.state.Library.Entries[4].Code + ")"))
        << text.left(600).toStdString();
    EXPECT_EQ(text.count(QChar('\f')), 3); // cover sheet, then the five exercises on two pages
    EXPECT_FALSE(r.state.SkipPrintDialog);
    EXPECT_EQ(r.window.StatusPanels().PanelText(0), "Status: Ready");
}

TEST(PrintCommands, WithoutTheCoverSheetOnlyTheExercisesPrint) {
    PrintRun r;
    r.state.Prefs.PrintPatientCover = false;
    r.window.ToolbarCommands().Action("Print")->trigger();
    EXPECT_EQ(r.PrintedText().count(QChar('\f')), 2);
}

TEST(PrintCommands, ThePatientRecordAndTheOrderFormPrintFromTheMenu) {
    PrintRun r;
    r.state.SkipPrintDialog = true; // the menu would show the printer dialog
    r.window.MenuCommands().Action("mnuPrintPatientRecord")->trigger();
    EXPECT_TRUE(r.PrintedText().contains("Okafor, Chidi"));
    r.state.SkipPrintDialog = true;
    r.window.MenuCommands().Action("mnuPrintVideo")->trigger();
    EXPECT_TRUE(r.PrintedText().contains("TAPE CONTENT"));
}

TEST(PrintCommands, ThePrintersPicturesKeepThePixelsOfThePictureFiles) {
    // The program's printer draws in 96 dots an inch but prints at its own resolution:
    // pictures of 900 x 675, the size of the delivered ones, go to it whole in their 2 x 1.5
    // inch boxes.
    PrintRun r;
    r.state.Prefs.PrintPatientCover = false;
    ASSERT_EQ(r.window.Printer().logicalDpiX(), 96);
    QTemporaryDir pictures;
    r.state.Media.Picture = pictures.path() + "/";
    QImage picture(900, 675, QImage::Format_RGB32);
    picture.fill(QColor(200, 220, 240));
    int written = 0;
    for (int i = 0; i < r.state.Program.NumExercises; ++i) {
        const ExerciseEntry& e = r.state.Program.Exercise(i);
        for (const QString& name : {e.Picture0, e.Picture1, e.Picture2}) {
            if (name.isEmpty())
                continue;
            ASSERT_TRUE(picture.save(pictures.filePath(name), "JPG"));
            ++written;
        }
    }
    r.window.ToolbarCommands().Action("Print")->trigger();
    QProcess pdfimages;
    pdfimages.start("pdfimages", {"-list", r.dir.filePath("printed.pdf")});
    ASSERT_TRUE(pdfimages.waitForFinished(30000));
    // Two heading lines, then one line an image: page, number, type, width, height, ...
    const QStringList lines =
        QString::fromLocal8Bit(pdfimages.readAllStandardOutput()).split('\n').mid(2);
    QStringList sizes;
    for (const QString& line : lines) {
        const QStringList fields = line.simplified().split(' ');
        if (fields.size() > 4)
            sizes << fields[3] + 'x' + fields[4];
    }
    EXPECT_GE(written, 10); // five exercises of two or three views
    EXPECT_EQ(sizes.size(), written);
    EXPECT_EQ(sizes.count("900x675"), sizes.size()) << sizes.join(' ').toStdString();
}

namespace {

// Answers the next printer dialog: records whether it offers a page range or a
// selection, then cancels or accepts it.
struct PrintDialogAnswer {
    explicit PrintDialogAnswer(bool accept) {
        timer.setInterval(20);
        QObject::connect(&timer, &QTimer::timeout, [this, accept] {
            QPrintDialog* dialog = nullptr;
            for (QWidget* w : QApplication::topLevelWidgets())
                if (auto* d = qobject_cast<QPrintDialog*>(w); d && d->isVisible())
                    dialog = d;
            if (!dialog)
                return;
            timer.stop();
            shown = true;
            offersPages = dialog->testOption(QAbstractPrintDialog::PrintPageRange) ||
                          dialog->testOption(QAbstractPrintDialog::PrintSelection) ||
                          dialog->testOption(QAbstractPrintDialog::PrintCurrentPage);
            accept ? dialog->accept() : dialog->reject();
        });
        timer.start();
    }
    QTimer timer;
    bool shown = false;
    bool offersPages = true;
};

} // namespace

TEST(PrintCommands, CancellingTheCoverSheetsDialogStillPrintsTheExercises) {
    PrintRun r;
    ASSERT_TRUE(r.state.Prefs.PrintPatientCover);
    PrintDialogAnswer cancel(false);
    r.window.MenuCommands().Action("mnuPrintEx4")->trigger();
    EXPECT_TRUE(cancel.shown);
    ASSERT_TRUE(QFileInfo(r.dir.filePath("printed.pdf")).size() > 0);
    const QString text = r.PrintedText();
    EXPECT_EQ(text.count(QChar('\f')), 2); // the five exercises, without the cover sheet
    EXPECT_TRUE(text.contains("(" + r.state.Library.Entries[4].Code + ")"));
    EXPECT_EQ(r.window.StatusPanels().PanelText(0), "Status: Ready");
}

TEST(PrintCommands, ThePrinterDialogOffersNoPageRangeAndNoSelection) {
    PrintRun r;
    r.state.Prefs.PrintPatientCover = false;
    PrintDialogAnswer accept(true);
    r.window.MenuCommands().Action("mnuPrintEx2")->trigger();
    ASSERT_TRUE(accept.shown);
    EXPECT_FALSE(accept.offersPages);
}
