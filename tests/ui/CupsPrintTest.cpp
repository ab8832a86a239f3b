// The print commands through a real CUPS server: the private one that the test set-up
// starts (tests/print/cups-queue.sh), whose queue TarvexPDF turns each job into a PDF file.
#include "ui/MainWindow.h"
#include "ui/MainWindowRun.h"

#include <QDateTime>
#include <QDir>
#include <QElapsedTimer>
#include <QFileInfo>
#include <QProcess>
#include <QRegularExpression>
#include <QSet>
#include <QStandardPaths>
#include <QTest>
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

using namespace tarvex;

namespace {

// Every client in this program talks to the private server only.
const bool kServerChosen = qputenv("CUPS_SERVER", TARVEX_CUPS_FOLDER "/cups.sock");

constexpr int kJobWaitMs = 90000;

QString Command(const QString& program, const QStringList& arguments) {
    QProcess process;
    process.start(program, arguments);
    process.waitForFinished(30000);
    return QString::fromLocal8Bit(process.readAllStandardOutput());
}

// Where cups-pdf puts the jobs of the user who prints: the PDF folder of the home folder
// that the user database names, whatever HOME says.
QString OutputFolder() {
    const passwd* user = getpwuid(getuid());
    return QDir(QString::fromLocal8Bit(user ? user->pw_dir : "/root")).filePath("PDF");
}

QSet<int> CompletedJobs(const QString& queue) {
    QSet<int> jobs;
    static const QRegularExpression line(QStringLiteral("^(\\S+)-(\\d+)\\s"),
                                         QRegularExpression::MultilineOption);
    const QString listing = Command("lpstat", {"-W", "completed", "-o", queue});
    for (auto it = line.globalMatch(listing); it.hasNext();) {
        const auto match = it.next();
        if (match.captured(1) == queue)
            jobs.insert(match.captured(2).toInt());
    }
    return jobs;
}

// Waits until the queue holds no job that is still to print.
void WaitUntilIdle(const QString& queue) {
    QElapsedTimer timer;
    timer.start();
    while (timer.elapsed() < kJobWaitMs && !Command("lpstat", {"-o", queue}).trimmed().isEmpty())
        QTest::qWait(200);
}

// The file of a job: the newest of that number, since another server's jobs (of an earlier
// run) may have had the same numbers; it must be no older than the run.
QString JobFile(int job, const QDateTime& since) {
    const QFileInfoList files =
        QDir(OutputFolder())
            .entryInfoList({QStringLiteral("*-job_%1.pdf").arg(job)}, QDir::Files, QDir::Time);
    if (files.isEmpty() || files.first().lastModified() < since)
        return QString();
    return files.first().filePath();
}

struct PdfPages {
    int count = 0;
    QString size; // "612 x 792 pts (letter)"
};

PdfPages PagesOf(const QString& file) {
    PdfPages pages;
    const QString info = Command("pdfinfo", {file});
    static const QRegularExpression countLine(QStringLiteral("^Pages:\\s+(\\d+)"),
                                              QRegularExpression::MultilineOption);
    static const QRegularExpression sizeLine(QStringLiteral("^Page size:\\s+(.+)$"),
                                             QRegularExpression::MultilineOption);
    pages.count = countLine.match(info).captured(1).toInt();
    pages.size = sizeLine.match(info).captured(1).trimmed();
    return pages;
}

// The program started with a 20-exercise program, printing on the queue.
struct CupsRun : tarvex::testing::MainWindowRun {
    CupsRun() {
        EXPECT_TRUE(kServerChosen);
        ChooseOkafor(20);
        window.Printer().setPrinterName(QStringLiteral("TarvexPDF"));
        WaitUntilIdle(QStringLiteral("TarvexPDF"));
        before = CompletedJobs(QStringLiteral("TarvexPDF"));
        started = QDateTime::currentDateTime().addSecs(-2);
    }
    ~CupsRun() {
        if (qEnvironmentVariableIsSet("TARVEX_KEEP_PRINTED"))
            return;
        for (const QString& file : printed)
            QFile::remove(file);
    }

    // Waits for the jobs that came after the start of the run (or the last wait) to end,
    // and returns their files in the order of the jobs.
    QStringList WaitForJobs(int count) {
        QElapsedTimer timer;
        timer.start();
        QList<int> jobs;
        while (timer.elapsed() < kJobWaitMs) {
            jobs = (CompletedJobs(QStringLiteral("TarvexPDF")) - before).values();
            if (jobs.size() >= count)
                break;
            QTest::qWait(200);
        }
        std::sort(jobs.begin(), jobs.end());
        QStringList files;
        for (int job : jobs) {
            before.insert(job);
            const QString file = JobFile(job, started);
            EXPECT_FALSE(file.isEmpty())
                << "job " << job << " ended without a file in " << OutputFolder().toStdString();
            if (!file.isEmpty())
                files << file;
        }
        printed << files;
        EXPECT_EQ(jobs.size(), count) << "jobs that ended within " << kJobWaitMs << " ms";
        return files;
    }

    // The page count of the same job written by the PDF writer.
    int PdfWriterPages(const std::function<void()>& print) {
        PrintToPdf();
        print();
        const int pages = PagesOf(dir.filePath("printed.pdf")).count;
        window.Printer().setOutputFormat(QPrinter::NativeFormat);
        window.Printer().setOutputFileName(QString());
        window.Printer().setPrinterName(QStringLiteral("TarvexPDF"));
        return pages;
    }

    void Menu(const char* name) {
        state.SkipPrintDialog = true; // the menu would show the printer dialog
        window.MenuCommands().Action(name)->trigger();
    }

    QSet<int> before;
    QDateTime started;
    QStringList printed;
};

const QString kLetterPortrait = QStringLiteral("612 x 792 pts (letter)");

} // namespace

TEST(CupsPrinting, TheToolbarPrintsTheCoverSheetAndFourExercisesAPageAsOneJob) {
    CupsRun r;
    ASSERT_EQ(r.window.Printer().printerName(), "TarvexPDF");
    r.window.ToolbarCommands().Action("Print")->trigger();
    const QStringList files = r.WaitForJobs(1);
    ASSERT_EQ(files.size(), 1);
    const PdfPages pages = PagesOf(files[0]);
    EXPECT_EQ(pages.count, 6); // the cover sheet, then 20 exercises on 5 pages
    EXPECT_EQ(pages.size, kLetterPortrait);
    EXPECT_EQ(r.window.StatusPanels().PanelText(0), "Status: Ready");
}

// The queue turns the landscape pages on the paper, which stays 8.5 by 11 inches.
TEST(CupsPrinting, TwoExercisesAPageComeOutOnTenLetterPages) {
    CupsRun r;
    r.state.Prefs.PrintPatientCover = false;
    r.Menu("mnuPrintEx2");
    const QStringList files = r.WaitForJobs(1);
    ASSERT_EQ(files.size(), 1);
    const PdfPages pages = PagesOf(files[0]);
    EXPECT_EQ(pages.count, 10);
    EXPECT_EQ(pages.size, kLetterPortrait);
}

TEST(CupsPrinting, TheRecordAndTheOrderFormHaveThePagesOfThePdfWriter) {
    CupsRun r;
    const int recordPages = r.PdfWriterPages([&] { r.Menu("mnuPrintPatientRecord"); });
    const int orderPages = r.PdfWriterPages([&] { r.Menu("mnuPrintVideo"); });
    ASSERT_GE(recordPages, 1);
    EXPECT_EQ(orderPages, 1);

    r.Menu("mnuPrintPatientRecord");
    r.Menu("mnuPrintVideo");
    const QStringList files = r.WaitForJobs(2);
    ASSERT_EQ(files.size(), 2);
    EXPECT_EQ(PagesOf(files[0]).count, recordPages);
    EXPECT_EQ(PagesOf(files[1]).count, orderPages);
    EXPECT_EQ(PagesOf(files[0]).size, kLetterPortrait);
    EXPECT_EQ(PagesOf(files[1]).size, kLetterPortrait);
}

TEST(CupsPrinting, TheCoverSheetAloneIsAPageBeforeTheExercises) {
    CupsRun r;
    r.Menu("mnuPrintEx4");
    r.state.Prefs.PrintPatientCover = false;
    r.Menu("mnuPrintEx4");
    const QStringList files = r.WaitForJobs(2);
    ASSERT_EQ(files.size(), 2);
    EXPECT_EQ(PagesOf(files[0]).count, 6);
    EXPECT_EQ(PagesOf(files[1]).count, 5);
}

TEST(CupsPrinting, AQueueThatRejectsTheJobEndsItWithoutAWord) {
    CupsRun r;
    r.window.Printer().setPrinterName(QStringLiteral("TarvexReject"));
    r.window.ToolbarCommands().Action("Print")->trigger();
    EXPECT_EQ(r.window.StatusPanels().PanelText(0), "Status: Ready");
    EXPECT_TRUE(CompletedJobs(QStringLiteral("TarvexReject")).isEmpty());
    // The program goes on: the next job on the good queue prints.
    r.window.Printer().setPrinterName(QStringLiteral("TarvexPDF"));
    r.Menu("mnuPrintVideo");
    EXPECT_EQ(r.WaitForJobs(1).size(), 1);
}

TEST(CupsPrinting, APrinterRemovedAfterItWasChosenEndsTheJobWithoutAWord) {
    CupsRun r;
    const QString ppd = "/usr/share/ppd/cups-pdf/CUPS-PDF_opt.ppd";
    Command("lpadmin", {"-p", "TarvexGone", "-v", "cups-pdf:/", "-E", "-P", ppd});
    r.window.Printer().setPrinterName(QStringLiteral("TarvexGone"));
    ASSERT_EQ(r.window.Printer().printerName(), "TarvexGone");
    Command("lpadmin", {"-x", "TarvexGone"});
    r.window.ToolbarCommands().Action("Print")->trigger();
    r.Menu("mnuPrintPatientRecord");
    EXPECT_EQ(r.window.StatusPanels().PanelText(0), "Status: Ready");
    WaitUntilIdle(QStringLiteral("TarvexPDF"));
    EXPECT_TRUE((CompletedJobs(QStringLiteral("TarvexPDF")) - r.before).isEmpty());
}

TEST(CupsPrinting, CoverPagePrintsThePatientInstructionsThroughLibreOffice) {
    ASSERT_FALSE(QStandardPaths::findExecutable("soffice").isEmpty())
        << "LibreOffice is needed for this test (apt-get install libreoffice-writer)";
    CupsRun r;
    ASSERT_TRUE(QFileInfo::exists(r.dir.filePath("data/Patient Instructions.Doc")));
    // LibreOffice keeps its profile in the home folder: give it one of the run's own.
    const QByteArray home = qgetenv("HOME");
    QDir(r.dir.path()).mkpath("home");
    qputenv("HOME", r.dir.filePath("home").toLocal8Bit());
    r.window.MenuCommands().Action("mnuPrintCover")->trigger();
    qputenv("HOME", home);
    const QStringList files = r.WaitForJobs(1);
    ASSERT_EQ(files.size(), 1);
    EXPECT_EQ(PagesOf(files[0]).count, 1);
}

TEST(CupsPrinting, CoverPageWithoutLibreOfficePrintsNothingAndSaysWhy) {
    CupsRun r;
    const QByteArray path = qgetenv("PATH");
    qputenv("PATH", r.dir.path().toLocal8Bit()); // no soffice there
    r.window.MenuCommands().Action("mnuPrintCover")->trigger();
    qputenv("PATH", path);
    QTest::qWait(1000);
    EXPECT_TRUE((CompletedJobs(QStringLiteral("TarvexPDF")) - r.before).isEmpty());
    EXPECT_EQ(r.window.StatusPanels().PanelText(0).toStdString(),
              "The patient instructions were not printed: LibreOffice is not installed.");
}
