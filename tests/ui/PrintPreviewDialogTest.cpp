#include "ui/PrintPreviewDialog.h"
#include "data/Sql.h"
#include "exercise/LibraryCache.h"
#include "fakes/FakeSettingsStore.h"
#include "print/PrintJob.h"
#include "shell/SingleInstance.h"
#include "support/TestFolder.h"
#include "ui/MainWindow.h"
#include "ui/MainWindowRun.h"

#include <QAction>
#include <QApplication>
#include <QDir>
#include <QFileInfo>
#include <QLabel>
#include <QPageSize>
#include <QPrinter>
#include <QProcess>
#include <QScrollBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

struct PreviewRun : tarvex::testing::MainWindowRun {
    explicit PreviewRun(int exercises = 5) {
        ChooseOkafor(exercises);
        PrintToPdf();
    }
    std::unique_ptr<PrintPreviewDialog> Open(JobKind job) {
        state.Print.PrintJobKind = job;
        auto dialog = std::make_unique<PrintPreviewDialog>(
            state, window.Printer(), [] { return true; }, &window);
        dialog->show();
        QApplication::processEvents();
        return dialog;
    }
};

// Closes the modal window that the next command opens, and notes what it showed.
struct ModalWatch {
    QString title;
    QString pageText;
    int pages = 0;
    void Arm() {
        QTimer::singleShot(0, [this] {
            auto* dialog = qobject_cast<PrintPreviewDialog*>(QApplication::activeModalWidget());
            if (!dialog)
                return;
            title = dialog->windowTitle();
            pageText = dialog->PageText->text();
            pages = dialog->Logic().LastPage() + 1;
            dialog->close();
        });
    }
};

} // namespace

TEST(PrintPreviewWindow, EveryPreviewEntryOpensTheWindowModallyWithItsJob) {
    PreviewRun r(10);
    const std::pair<const char*, JobKind> entries[] = {
        {"mnuPreviewEx4", kJobExercises4},
        {"mnuPreviewEx2", kJobExercises2},
        {"mnuPreviewPatientRecord", kJobPatientRecord},
        {"mnuPreviewVideo", kJobVideoOrder},
        {"mnuPreviewCover", kJobCoverSheet},
    };
    for (const auto& [key, job] : entries) {
        ModalWatch watch;
        watch.Arm();
        r.window.MenuCommands().Action(key)->trigger();
        EXPECT_EQ(watch.title, "Print Preview") << key;
        EXPECT_EQ(r.state.Print.PrintJobKind, job) << key;
        EXPECT_TRUE(r.state.Print.IsPreview) << key;
        EXPECT_DOUBLE_EQ(r.state.Print.PrintScale, 0.75) << key;
        if (job == kJobExercises4) {
            EXPECT_EQ(watch.pageText, "Page: 1 of 3");
        }
        if (job == kJobExercises2) {
            EXPECT_EQ(watch.pageText, "Page: 1 of 5");
        }
    }
    // The toolbar's button is the four-a-page preview.
    ModalWatch watch;
    watch.Arm();
    r.window.ToolbarCommands().Action("Preview")->trigger();
    EXPECT_EQ(watch.pageText, "Page: 1 of 3");
    EXPECT_EQ(r.state.Print.PrintJobKind, kJobExercises4);
}

TEST(PrintPreviewWindow, ToolbarPagesZoomsAndKeysScroll) {
    PreviewRun r(10);
    auto dialog = r.Open(kJobExercises4);
    EXPECT_EQ(dialog->objectName(), "frmPrintPreview");
    EXPECT_EQ(dialog->PageText->text(), "Page: 1 of 3");
    EXPECT_FALSE(dialog->Button("Prev")->isEnabled());
    EXPECT_TRUE(dialog->Button("Next")->isEnabled());
    dialog->Button("Next")->trigger();
    dialog->Button("Next")->trigger();
    EXPECT_EQ(dialog->PageText->text(), "Page: 3 of 3");
    EXPECT_FALSE(dialog->Button("Next")->isEnabled());
    EXPECT_TRUE(dialog->PageWidget(2)->isVisible());
    EXPECT_FALSE(dialog->PageWidget(0)->isVisible());
    const int width = dialog->PageWidget(2)->width();
    dialog->Button("ZoomIn")->trigger();
    EXPECT_EQ(dialog->PageText->text(), "Page: 3 of 3");
    EXPECT_GT(dialog->PageWidget(2)->width(), width);
    EXPECT_DOUBLE_EQ(r.state.Print.PrintScale, 1.0);

    ASSERT_TRUE(dialog->VScroll1->isVisible());
    const int top = dialog->PageWidget(2)->y();
    dialog->PageWidget(2)->setFocus();
    QTest::keyClick(dialog->PageWidget(2), Qt::Key_Down);
    EXPECT_EQ(dialog->VScroll1->value(), dialog->Logic().VScroll().Value);
    EXPECT_EQ(dialog->PageWidget(2)->y(), top - 20); // 300 twips
    QTest::keyClick(dialog->PageWidget(2), Qt::Key_Escape);
    EXPECT_FALSE(dialog->isVisible());
}

TEST(PrintPreviewWindow, PrintingFromThePreviewPrintsTheCoverSheetAndTheSheets) {
    PreviewRun r(5);
    auto dialog = r.Open(kJobExercises4);
    dialog->Button("ZoomIn")->trigger();
    dialog->Button("Print")->trigger();
    ASSERT_GT(QFileInfo(r.dir.filePath("printed.pdf")).size(), 0);
    const QString text = r.PrintedText();
    EXPECT_TRUE(text.contains("Okafor, Chidi"));
    EXPECT_EQ(text.count(QChar('\f')), 3); // cover sheet, then two pages of sheets
    EXPECT_TRUE(dialog->isVisible());
    EXPECT_DOUBLE_EQ(r.state.Print.PrintScale, 1.0); // the zoom stays
    EXPECT_EQ(dialog->PageText->text(), "Page: 1 of 2");
}

TEST(PrintPreviewWindow, PrintingThePatientRecordFromThePreviewPrintsItAlone) {
    PreviewRun r(5);
    r.state.Prefs.PrintPatientCover = true;
    r.state.CoverText = "Read this before your first visit.";
    auto dialog = r.Open(kJobPatientRecord);
    dialog->Button("Print")->trigger();
    const QString text = r.PrintedText();
    EXPECT_TRUE(text.contains("Okafor, Chidi"));
    EXPECT_FALSE(text.contains("Read this before your first visit."));
    EXPECT_TRUE(dialog->isVisible());
}

TEST(PrintPreviewWindow, Screenshot) {
    PreviewRun r(20);
    auto dialog = r.Open(kJobExercises4);
    EXPECT_EQ(dialog->PageText->text(), "Page: 1 of 5");
    QDir().mkpath(TARVEX_SCREENSHOT_DIR);
    ASSERT_TRUE(dialog->grab().save(QStringLiteral(TARVEX_SCREENSHOT_DIR) + "/print-preview.png"));
    dialog->Button("Next")->trigger();
    dialog->Button("ZoomOut")->trigger();
    ASSERT_TRUE(
        dialog->grab().save(QStringLiteral(TARVEX_SCREENSHOT_DIR) + "/print-preview-page2.png"));
}

TEST(PrintPreviewWindow, TheOrderFormAfterAPrintIsLaidOutAtThePreviewsInch) {
    PreviewRun r(20);
    r.state.SkipPrintDialog = true;
    r.window.MenuCommands().Action("mnuPrintPatientRecord")->trigger();
    ASSERT_EQ(r.state.Print.InchTwips, 1440); // what the print left
    auto dialog = r.Open(kJobVideoOrder);
    EXPECT_EQ(r.state.Print.InchTwips, 1080); // the preview opens at 0.75
    EXPECT_EQ(r.state.Print.MarginTwips, 1080);
    QDir().mkpath(TARVEX_SCREENSHOT_DIR);
    ASSERT_TRUE(
        dialog->grab().save(QStringLiteral(TARVEX_SCREENSHOT_DIR) + "/print-preview-order.png"));
}

TEST(PrintPreviewWindow, ThePageIsThePrintersPaperAtTheZoom) {
    PreviewRun r(5);
    const struct {
        QPageSize::PageSizeId paper;
        JobKind job;
        double width, height; // inches as the page lies
    } cases[] = {
        {QPageSize::A4, kJobExercises4, 210 / 25.4, 297 / 25.4},
        {QPageSize::Letter, kJobExercises4, 8.5, 11.0},
        {QPageSize::Legal, kJobExercises2, 14.0, 8.5}, // two a page lie across
        {QPageSize::A4, kJobVideoOrder, 210 / 25.4, 297 / 25.4},
    };
    for (const auto& c : cases) {
        r.window.Printer().setPageSize(QPageSize(c.paper));
        auto dialog = r.Open(c.job);
        const double pixelsPerInch = 1440.0 / dialog->Logic().TwipsPerPixel();
        const QImage& page = dialog->Logic().Page(0).Image;
        const double scale = r.state.Print.PrintScale;
        EXPECT_NEAR(page.width(), c.width * scale * pixelsPerInch, 1.5) << c.paper;
        EXPECT_NEAR(page.height(), c.height * scale * pixelsPerInch, 1.5) << c.paper;
        EXPECT_EQ(dialog->PageWidget(0)->size(), page.size());
        dialog->close();
    }
    r.window.Printer().setPageSize(QPageSize(QPageSize::Letter));
}
