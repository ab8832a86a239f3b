#include "data/Databases.h"
#include "data/Sql.h"
#include "exercise/LibraryCache.h"
#include "fakes/FakeControls.h"
#include "print/PainterSurface.h"
#include "print/PrintJob.h"
#include "print/PrinterModule.h"
#include "print/SheetData.h"
#include "program/ProgramStore.h"
#include "shell/AppFolder.h"
#include "shell/CommandLine.h"
#include "shell/ShellHarness.h"
#include "support/TestFolder.h"
#include <QProcessEnvironment>

#include <QDir>
#include <QFile>
#include <QImage>
#include <QPageLayout>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QProcess>
#include <QSqlQuery>
#include <QTemporaryDir>
#include <cmath>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

// A picture with a frame and its name, so that each box shows which file filled it.
void WritePicture(const QString& path, const QString& label) {
    QImage picture(300, 225, QImage::Format_RGB32);
    picture.fill(QColor(230, 240, 255));
    QPainter painter(&picture);
    painter.setPen(QPen(Qt::darkBlue, 6));
    painter.drawRect(picture.rect().adjusted(3, 3, -3, -3));
    painter.drawEllipse(QPoint(150, 90), 40, 40);
    painter.drawText(picture.rect(), Qt::AlignBottom | Qt::AlignHCenter, label);
    painter.end();
    ASSERT_TRUE(picture.save(path, "JPG"));
}

void FillProgram(AppState& state, const QString& pictures, int count) {
    tarvex::testing::SetSheetHeader(state, "Harbor Physical Therapy");
    state.Media.Picture = pictures + "/";
    for (int i = 0; i < count; ++i) {
        ExerciseEntry& e = state.Program.Exercise(i);
        e.Code = QString::number(300 + i);
        e.Desc = QStringLiteral("Straight leg raise %1").arg(i + 1);
        e.Reps = 10;
        e.Hold = static_cast<int16_t>(i % 2 ? 5 : 0);
        e.Sets = 2;
        e.Picture0 = QStringLiteral("%1_1.JPG").arg(e.Code);
        e.Picture1 = QStringLiteral("%1_2.JPG").arg(e.Code);
        e.Picture2 = i % 3 ? QStringLiteral("%1_3.JPG").arg(e.Code) : QString();
        e.Instruct0 = "Lie on your back with one knee bent and the other leg straight.";
        e.Instruct1 = "Tighten the thigh muscle and lift the leg a foot off the floor.";
        e.Instruct2 = "Lower slowly.";
        for (int v = 1; v <= 3; ++v)
            WritePicture(QDir(pictures).filePath(QStringLiteral("%1_%2.JPG").arg(e.Code).arg(v)),
                         QStringLiteral("%1 view %2").arg(e.Code).arg(v));
    }
    state.Program.NumExercises = static_cast<int16_t>(count);
}

void WriteJobPdf(AppState& state, JobKind job, const QString& file) {
    QPdfWriter writer(file);
    writer.setResolution(1200);
    writer.setPageLayout(
        QPageLayout(QPageSize(QPageSize::Letter), QPageLayout::Portrait, QMarginsF(0, 0, 0, 0)));
    PainterSurface surface(writer);
    state.Print.PrintJobKind = job;
    ASSERT_TRUE(DrawPrintJob(surface, state));
    surface.EndDoc();
}

QString RunTool(const QString& program, const QStringList& args, int* exitCode,
                QString* errors = nullptr) {
    QProcess process;
    process.start(program, args);
    EXPECT_TRUE(process.waitForFinished(60000));
    *exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    if (errors)
        *errors = QString::fromLocal8Bit(process.readAllStandardError());
    return QString::fromLocal8Bit(process.readAllStandardOutput());
}

} // namespace

TEST(PdfPages, TextOfTheSheetsIsInThePdf) {
    QTemporaryDir dir;
    AppState state;
    FillProgram(state, dir.path(), 5);
    const QString file = dir.filePath("ex2.pdf");
    WriteJobPdf(state, kJobExercises2, file);
    int code = 0;
    const QString text = RunTool("pdftotext", {"-layout", file, "-"}, &code);
    ASSERT_EQ(code, 0);
    EXPECT_TRUE(text.contains("Harbor Physical Therapy, 555-0100"));
    EXPECT_TRUE(text.contains("Site #: 4711"));
    EXPECT_TRUE(text.contains("(304) Straight leg raise 5: 10 reps, 2 sets"));
    EXPECT_TRUE(text.contains("Call Tarvex, Inc. toll free at 1-888-555-0147"));
    EXPECT_TRUE(text.contains(MakerNotice()));
    // Three pages: pdftotext separates them with form feeds.
    EXPECT_EQ(text.count(QChar('\f')), 3);
}

TEST(PdfPages, ChineseJapaneseAndKoreanNamesPrintWithAFontThatHasTheirGlyphs) {
    QTemporaryDir dir;
    AppState state;
    FillProgram(state, dir.path(), 2);
    tarvex::testing::SetSheetHeader(state, QStringLiteral("서울 물리치료"));
    state.Program.FullName = QStringLiteral("陈伟华");
    state.Program.Exercise(0).Desc = QStringLiteral("膝の伸展");
    const QString file = dir.filePath("cjk.pdf");
    WriteJobPdf(state, kJobExercises4, file);
    int code = 0;
    const QString fonts = RunTool("pdffonts", {file}, &code);
    ASSERT_EQ(code, 0);
    EXPECT_TRUE(fonts.contains("CJK")) << fonts.toStdString();
    const QString text = RunTool("pdftotext", {"-layout", file, "-"}, &code);
    ASSERT_EQ(code, 0);
    EXPECT_TRUE(text.contains(QStringLiteral("陈伟华"))) << text.left(600).toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("膝の伸展"))) << text.left(600).toStdString();
    EXPECT_TRUE(text.contains(QStringLiteral("서울 물리치료"))) << text.left(600).toStdString();
}

TEST(PdfPages, TwentyExercisesAtTwoAndFourAPage) {
    // Kept in the build folder so that the pages can be looked at.
    const QString out = QDir(TARVEX_PAGES_DIR).absolutePath();
    QDir().mkpath(out);
    QTemporaryDir pictures;
    for (const auto& [job, name] :
         {std::pair{kJobExercises2, "ex2"}, std::pair{kJobExercises4, "ex4"},
          std::pair{kJobPatientRecord, "record"}, std::pair{kJobCoverSheet, "cover"}}) {
        AppState state;
        FillProgram(state, pictures.path(), 20);
        state.CoverText = "Welcome to Harbor Physical Therapy.\r\n\r\nDo your exercises daily.\r\n";
        const QString file = QDir(out).filePath(QStringLiteral("%1-20.pdf").arg(name));
        WriteJobPdf(state, job, file);
        int code = 0;
        const QString text = RunTool("pdftotext", {file, "-"}, &code);
        ASSERT_EQ(code, 0);
        const int pages = job == kJobExercises2 ? 10 : job == kJobExercises4 ? 5 : 1;
        EXPECT_EQ(text.count(QChar('\f')), pages) << name;
    }
}

TEST(PrintTool, BadJobNameEndsWithAMessageAndNonZeroExit) {
    int code = 0;
    QString errors;
    RunTool(TARVEX_PRINT_TOOL, {"--job", "ex3", "--invoice", "1", "--out", "/tmp/x.pdf"}, &code,
            &errors);
    EXPECT_NE(code, 0);
    EXPECT_TRUE(errors.contains("unknown job \"ex3\"")) << errors.toStdString();
}

TEST(PrintTool, WritesEveryJobOfAStoredProgramFromTheUsersDataFolder) {
    // A user of our own: the tool reads the data folder and settings of $HOME.
    QTemporaryDir home;
    const QString appFolder = home.filePath("data/Tarvex");
    int32_t invoice = 0;
    {
        AppState state;
        state.AppFolder = appFolder;
        state.DeliveredFolder = tarvex::testing::DeliveredFolder();
        ASSERT_EQ(PrepareAppFolder(appFolder, TemplatesFolder(state)), "");
        OpenDatabases(state);
        LoadLibraryCache(state);
        tarvex::testing::ShellHarness shell(state);
        fakes::ScriptedPrompter prompter;
        ProgramStore store(state, shell.shell, prompter);
        ExerciseProgram& p = state.Program;
        p.PatientID = static_cast<int32_t>(InsertRow(
            state.Dbs.ProgramDb, "Patient",
            {{"LastName", "Okafor"}, {"FirstName", "Chidi"}, {"FullName", "Okafor, Chidi"}}));
        p.FullName = "Okafor, Chidi";
        p.IsNew = true;
        for (int i = 0; i < 20; ++i)
            p.Exercise(i) = state.Library.Entries[static_cast<size_t>(i)];
        p.NumExercises = 20;
        p.NumItems = 1;
        p.Item(0) = {"TVX-20", "Custom video tape", 1, Currency::FromDouble(49.95)};
        p.Provider = "Dr. Jane Smith, PT";
        p.Modified = true;
        store.SaveProgram(false);
        invoice = *p.InvoiceID;
        CloseDatabases(state);
    }
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("HOME", home.path());
    env.insert("XDG_DATA_HOME", home.filePath("data"));
    env.insert("XDG_CONFIG_HOME", home.filePath("config"));
    for (const char* job : {"ex2", "ex4", "record", "cover", "order"}) {
        const QString out = home.filePath(QString::fromLatin1(job) + ".pdf");
        QProcess tool;
        tool.setProcessEnvironment(env);
        tool.start(TARVEX_PRINT_TOOL,
                   {"--job", job, "--invoice", QString::number(invoice), "--out", out});
        ASSERT_TRUE(tool.waitForFinished(60000));
        EXPECT_EQ(tool.exitCode(), 0) << job << ": " << tool.readAllStandardError().toStdString();
        int code = 0;
        const QString text = RunTool("pdftotext", {"-layout", out, "-"}, &code);
        ASSERT_EQ(code, 0) << job;
        EXPECT_FALSE(text.trimmed().isEmpty()) << job;
        if (QByteArray(job) != "cover" && QByteArray(job) != "order") {
            EXPECT_TRUE(text.contains("Okafor, Chidi")) << job << text.left(400).toStdString();
        }
    }
    QProcess missing;
    missing.setProcessEnvironment(env);
    missing.start(TARVEX_PRINT_TOOL,
                  {"--job", "order", "--invoice", "999999", "--out", home.filePath("m.pdf")});
    ASSERT_TRUE(missing.waitForFinished(60000));
    EXPECT_NE(missing.exitCode(), 0);
    EXPECT_FALSE(missing.readAllStandardError().isEmpty());
    EXPECT_FALSE(QFile::exists(home.filePath("m.pdf"))); // no empty file left behind

    // A job that fails leaves a file of the same name as it was.
    const QString kept = home.filePath("kept.pdf");
    {
        QFile file(kept);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write("the sheet of yesterday");
    }
    QProcess again;
    again.setProcessEnvironment(env);
    again.start(TARVEX_PRINT_TOOL, {"--job", "order", "--invoice", "999999", "--out", kept});
    ASSERT_TRUE(again.waitForFinished(60000));
    EXPECT_NE(again.exitCode(), 0);
    QFile file(kept);
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_EQ(file.readAll(), QByteArray("the sheet of yesterday"));
}

TEST(PrintTool, AFaultAtStartNamesThePlaceOnItsErrorOutput) {
    QTemporaryDir home;
    const QString appFolder = home.filePath("data/Tarvex");
    {
        AppState state;
        state.AppFolder = appFolder;
        state.DeliveredFolder = tarvex::testing::DeliveredFolder();
        ASSERT_EQ(PrepareAppFolder(appFolder, TemplatesFolder(state)), "");
        OpenDatabases(state);
        // A clinic row saved without its card date.
        InsertRow(state.Dbs.ProgramDb, "Clinic", {{"Name", "Harbor Physical Therapy"}});
        CloseDatabases(state);
    }
    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("HOME", home.path());
    env.insert("XDG_DATA_HOME", home.filePath("data"));
    env.insert("XDG_CONFIG_HOME", home.filePath("config"));
    QProcess tool;
    tool.setProcessEnvironment(env);
    tool.start(TARVEX_PRINT_TOOL,
               {"--job", "order", "--invoice", "1", "--out", home.filePath("order.pdf")});
    ASSERT_TRUE(tool.waitForFinished(60000));
    EXPECT_NE(tool.exitCode(), 0);
    const QString errors = QString::fromLocal8Bit(tool.readAllStandardError());
    EXPECT_TRUE(errors.contains("Type mismatch")) << errors.toStdString();
    EXPECT_TRUE(errors.contains(QDir::toNativeSeparators(appFolder + "/Tarvex.MDB")))
        << errors.toStdString();
    EXPECT_TRUE(errors.contains("table Clinic, column CardDate, value Null"))
        << errors.toStdString();
}

TEST(PrintTool, UnwritableFileEndsWithAMessage) {
    int code = 0;
    QString errors;
    RunTool(TARVEX_PRINT_TOOL,
            {"--job", "ex4", "--invoice", "1", "--out", "/nonexistent/folder/x.pdf"}, &code,
            &errors);
    EXPECT_NE(code, 0);
    EXPECT_TRUE(errors.contains("cannot write")) << errors.toStdString();
}

TEST(PrintTool, AWrongCommandLineEndsWithStatusTwoAndTheVersionIsAnswered) {
    int code = 0;
    QString errors;
    RunTool(TARVEX_PRINT_TOOL, {"--frobnicate"}, &code, &errors);
    EXPECT_EQ(code, 2);
    EXPECT_TRUE(errors.contains("tarvex-print: unknown option \"frobnicate\""))
        << errors.toStdString();
    RunTool(TARVEX_PRINT_TOOL, {"--invoice", "1"}, &code, &errors);
    EXPECT_EQ(code, 2);
    EXPECT_TRUE(errors.contains("--job is needed")) << errors.toStdString();
    const QString version = RunTool(TARVEX_PRINT_TOOL, {"--version"}, &code);
    EXPECT_EQ(code, 0);
    EXPECT_EQ(version.trimmed(), "tarvex-print (TVX Regimenter) " + ProgramVersion());
}

TEST(PrintTool, HelpListsTheJobs) {
    int code = 0;
    const QString help = RunTool(TARVEX_PRINT_TOOL, {"--help"}, &code);
    EXPECT_EQ(code, 0);
    EXPECT_TRUE(help.contains("ex2") && help.contains("record") && help.contains("cover"));
}

namespace {

// How many printed lines an instruction line takes when the sheet's own routine wraps it
// in a column of the given width, in Liberation Sans ("Arial") at the sheets' 11 points.
int WrappedLineCount(PainterSurface& surface, const QString& text, double width) {
    surface.SetFontName(QStringLiteral("Arial"));
    surface.SetFontSize(11);
    surface.SetFontBold(false);
    const double step = surface.TextHeight(QStringLiteral("X"));
    surface.SetCurrentY(1440);
    PrintWrappedText(surface, text, 720, width);
    return static_cast<int>(std::lround((surface.CurrentY() - 1440) / step)) + 1;
}

} // namespace

TEST(DeliveredInstructions, EveryLineFitsTheTwoLinesOfBothSheetLayouts) {
    tarvex::testing::TestFolder folder;
    OpenDatabases(folder.state);
    QTemporaryDir dir;
    QPdfWriter writer(dir.filePath("measure.pdf"));
    writer.setResolution(1200);
    PainterSurface surface(writer);
    QSqlQuery rows =
        OpenQuery(folder.state.Dbs.LibraryDb, "SELECT ExerciseID, Instruct0, Instruct1, Instruct2 "
                                              "FROM ExerciseLibrary ORDER BY ExerciseID");
    int lines = 0;
    QStringList tooLong;
    while (rows.next()) {
        for (int view = 1; view <= 3; ++view) {
            const QString text = rows.value(view).toString();
            if (text.isEmpty())
                continue;
            ++lines;
            // Four a page: 2-inch columns; two a page: 3-inch columns.
            for (const double inches : {2.0, 3.0}) {
                const int count = WrappedLineCount(surface, text, inches * 1440);
                if (count > 2)
                    tooLong << QStringLiteral("%1/%2 at %3 in: %4 lines: %5")
                                   .arg(rows.value(0).toInt())
                                   .arg(view - 1)
                                   .arg(inches)
                                   .arg(count)
                                   .arg(text);
            }
        }
    }
    surface.EndDoc();
    EXPECT_GT(lines, 400);
    EXPECT_TRUE(tooLong.isEmpty()) << tooLong.size() << " lines need more than two:\n"
                                   << tooLong.join('\n').toStdString();
}
