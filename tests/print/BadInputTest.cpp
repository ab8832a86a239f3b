// Printing with bad input: pictures that are missing or broken, descriptions and
// instructions far longer than the sheets have room for, an empty program, a cover text of
// hundreds of lines and lengths that do not fit a 16-bit position. Each job either comes out
// as its routine lays it out or ends silently; none of them crashes.

#include "data/Databases.h"
#include "data/Sql.h"
#include "exercise/LibraryCache.h"
#include "fakes/FakeControls.h"
#include "print/ExerciseSheets.h"
#include "print/OrderForm.h"
#include "print/PainterSurface.h"
#include "print/PrintJob.h"
#include "print/PrinterModule.h"
#include "print/RecordingSurface.h"
#include "print/SheetData.h"
#include "program/ProgramStore.h"
#include "shell/AppFolder.h"
#include "shell/ShellHarness.h"
#include "support/Fault.h"
#include "support/TestFolder.h"

#include <QBuffer>
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QImage>
#include <QImageWriter>
#include <QPageLayout>
#include <QPageSize>
#include <QPdfWriter>
#include <QProcess>
#include <QProcessEnvironment>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <algorithm>
#include <array>
#include <gtest/gtest.h>
#include <vector>

using namespace tarvex;

namespace {

using Kind = RecordedOp::Kind;

// Page sizes in twips.
constexpr double kPortraitWidth = 8.5 * 1440;
constexpr double kPortraitHeight = 11.0 * 1440;
constexpr double kLandscapeWidth = 11.0 * 1440;
constexpr double kLandscapeHeight = 8.5 * 1440;

// The geometry of the sheets at paper scale: the left edge of each picture column, the width
// and height of a picture box and the step from one exercise heading to the next (heading
// line, 0.05 inch, the picture, two lines of 11 points).
struct SheetGeometry {
    std::array<double, 3> Columns;
    double PictureWidth;
    double PictureHeight;
    double Step;
    double PageWidth;
    double PageHeight;
};
constexpr double kFirstHeadingY = 1836;
constexpr SheetGeometry kTwoAPage{
    .Columns = {720, 5400, 10080},
    .PictureWidth = 4320,
    .PictureHeight = 3240,
    .Step = 288 + 72 + 3240 + 2 * 264,
    .PageWidth = kLandscapeWidth,
    .PageHeight = kLandscapeHeight,
};
constexpr SheetGeometry kFourAPage{
    .Columns = {720, 4320, 7920},
    .PictureWidth = 2880,
    .PictureHeight = 2160,
    .Step = 288 + 72 + 2160 + 2 * 264,
    .PageWidth = kPortraitWidth,
    .PageHeight = kPortraitHeight,
};

const SheetGeometry& GeometryOf(JobKind job) {
    return job == kJobExercises2 ? kTwoAPage : kFourAPage;
}
// The pages of a job: the sheets hold 2 or 4 exercises a page, the other jobs are one page.
int PagesFor(JobKind job, int exercises) {
    if (job != kJobExercises2 && job != kJobExercises4)
        return 1;
    const int perPage = job == kJobExercises2 ? 2 : 4;
    return std::max(1, (exercises + perPage - 1) / perPage);
}

// --- The program -------------------------------------------------------------------------

QString Code(int i) {
    return QString::number(300 + i);
}

QString PictureName(int i, int view) {
    return QStringLiteral("%1_%2.JPG").arg(Code(i)).arg(view);
}

// A description of exactly 200 characters that starts with its exercise's number.
QString LongDesc(int i) {
    QString desc = QStringLiteral("Long description %1 ").arg(i + 1, 2, 10, QLatin1Char('0'));
    while (desc.size() < 200)
        desc += QStringLiteral("and more ");
    return desc.left(200);
}

// An instruction of some 600 characters in words of at most ten characters.
QString LongInstruction(int i, int view) {
    QString text = QStringLiteral("Step%1v%2 ").arg(i + 1).arg(view);
    while (text.size() < 600)
        text += QStringLiteral("keep the knee straight and lift the leg slowly, then lower it. ");
    return text.trimmed();
}

void SetPatient(AppState& state) {
    tarvex::testing::SetSheetHeader(state);
    state.TollFreeOrder = QString::fromLatin1(kTollFreeOrder);
    state.TollFreeFax = QString::fromLatin1(kTollFreeFax);
}

// The first count slots of the program: three pictures each by name, three short
// instructions and a tape.
void FillProgram(AppState& state, int count) {
    for (int i = 0; i < count; ++i) {
        ExerciseEntry& e = state.Program.Exercise(i);
        e.Code = Code(i);
        e.Desc = QStringLiteral("Leg raise %1").arg(i + 1);
        e.Reps = 10;
        e.Sets = 2;
        e.Picture0 = PictureName(i, 1);
        e.Picture1 = PictureName(i, 2);
        e.Picture2 = PictureName(i, 3);
        e.Instruct0 = QStringLiteral("Lie%1 on your back.").arg(i + 1);
        e.Instruct1 = QStringLiteral("Lift%1 the leg.").arg(i + 1);
        e.Instruct2 = QStringLiteral("Lower%1 slowly.").arg(i + 1);
        e.HasVideo = true;
        e.VideoReps = 10;
        e.VideoSets = 2;
    }
    state.Program.NumExercises = static_cast<int16_t>(count);
}

QString Heading(const ExerciseEntry& e) {
    return QStringLiteral("(") + e.Code + QStringLiteral(") ") + e.Desc + QStringLiteral(": ") +
           ExerciseCaption(e);
}

// --- Picture files ----------------------------------------------------------------------

// A 300 x 225 picture in the format; a JPEG optionally written in progressive scans.
QByteArray EncodedPicture(const char* format, bool progressive = false) {
    QImage picture(300, 225, QImage::Format_RGB32);
    for (int y = 0; y < picture.height(); ++y)
        for (int x = 0; x < picture.width(); ++x)
            picture.setPixel(x, y, qRgb(x % 256, y, (x * y) % 256));
    QByteArray bytes;
    QBuffer buffer(&bytes);
    buffer.open(QIODevice::WriteOnly);
    QImageWriter writer(&buffer, format);
    writer.setProgressiveScanWrite(progressive);
    EXPECT_TRUE(writer.write(picture)) << writer.errorString().toStdString();
    return bytes;
}

void WriteFile(const QString& path, const QByteArray& bytes) {
    QFile file(path);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly)) << path.toStdString();
    ASSERT_EQ(file.write(bytes), bytes.size());
}

// Fills the pictures folder with a broken file for each view of every exercise, the kinds
// taking turns: garbage, an empty file, a JPEG cut off in the middle of its picture data, a
// PNG cut off likewise, a folder where the file should be, and no file at all.
void WriteBrokenPictures(const QString& folder, int count) {
    const QByteArray jpeg = EncodedPicture("JPG");
    const QByteArray png = EncodedPicture("PNG");
    for (int i = 0; i < count; ++i) {
        for (int view = 1; view <= 3; ++view) {
            const QString path = QDir(folder).filePath(PictureName(i, view));
            switch ((3 * i + view) % 6) {
            case 0:
                WriteFile(path, "this is no picture at all");
                break;
            case 1:
                WriteFile(path, QByteArray());
                break;
            case 2:
                WriteFile(path, jpeg.left(jpeg.size() / 2));
                break;
            case 3:
                WriteFile(path, png.left(png.size() / 2));
                break;
            case 4:
                QDir(folder).mkdir(PictureName(i, view));
                break;
            default:
                break; // missing
            }
        }
    }
}

// --- Recorded pages ---------------------------------------------------------------------

double RightEnd(const RecordedOp& op) {
    return op.x + op.text.size() * RecordingSurface::CharWidth(op.font.Size);
}

// The words of the instructions: the only texts in 11 points (the sheet's 12 less one).
QList<RecordedOp> InstructionTexts(const RecordingSurface& surface) {
    QList<RecordedOp> result;
    for (const RecordedOp& op : surface.Texts())
        if (op.font.Size == 11)
            result.append(op);
    return result;
}

// The left edge of the picture column that a text at x stands in.
double ColumnOf(const SheetGeometry& geometry, double x) {
    double column = geometry.Columns[0];
    for (double left : geometry.Columns)
        if (x >= left)
            column = left;
    return column;
}

// Runs a job through the printing entry, the printer dialog answering OK.
bool RunJob(AppState& state, PageSurface& surface, JobKind job) {
    state.Print.PrintJobKind = job;
    bool ran = false;
    EXPECT_NO_THROW(ran = RunPrintJob(
                        state, surface, [] { return true; }, PrintVideoOrderForm));
    return ran;
}

// --- PDF files --------------------------------------------------------------------------

// Prints the job into a PDF file the way a printer gets it. The cover sheet leaves the
// document open for the sheets that follow; the file is closed here whatever the job did.
bool RunJobToPdf(AppState& state, JobKind job, const QString& file) {
    QPdfWriter writer(file);
    writer.setResolution(1200);
    writer.setPageLayout(
        QPageLayout(QPageSize(QPageSize::Letter), QPageLayout::Portrait, QMarginsF(0, 0, 0, 0)));
    PainterSurface surface(writer);
    const bool ran = RunJob(state, surface, job);
    surface.EndDoc();
    return ran;
}

QString RunTool(const QString& program, const QStringList& args, int* exitCode) {
    QProcess process;
    process.start(program, args);
    EXPECT_TRUE(process.waitForFinished(60000)) << program.toStdString();
    *exitCode = process.exitStatus() == QProcess::NormalExit ? process.exitCode() : -1;
    return QString::fromLocal8Bit(process.readAllStandardOutput());
}

// The page count of a PDF file as pdfinfo reads it; -1 when it cannot.
int PdfPages(const QString& file) {
    int code = 0;
    const QString info = RunTool("pdfinfo", {file}, &code);
    const QRegularExpressionMatch match = QRegularExpression(QStringLiteral("^Pages:\\s+(\\d+)$"),
                                                             QRegularExpression::MultilineOption)
                                              .match(info);
    return code == 0 && match.hasMatch() ? match.captured(1).toInt() : -1;
}

// The number of pictures placed in a PDF file as pdfimages lists them; -1 when it cannot.
int PdfImages(const QString& file) {
    int code = 0;
    const QStringList lines =
        RunTool("pdfimages", {"-list", file}, &code).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    // Two lines of heading, then one line a picture.
    return code == 0 && lines.size() >= 2 ? static_cast<int>(lines.size()) - 2 : -1;
}

// The text of a PDF file in the order it was drawn, its pages apart by form feeds.
QString PdfText(const QString& file) {
    int code = 0;
    const QString text = RunTool("pdftotext", {"-raw", file, "-"}, &code);
    EXPECT_EQ(code, 0) << file.toStdString();
    return text;
}

// --- The fixture ------------------------------------------------------------------------

struct BadInput : ::testing::Test {
    QTemporaryDir dir;
    AppState state;
    RecordingSurface surface;
    QString pictures;

    void SetUp() override {
        ASSERT_TRUE(dir.isValid());
        pictures = dir.filePath("PICTURE");
        ASSERT_TRUE(QDir().mkpath(pictures));
        state.Media.Picture = pictures + "/";
        SetPatient(state);
    }

    // Draws the job afresh on the recording surface and returns its page count.
    int Record(JobKind job) {
        surface.Clear();
        EXPECT_TRUE(RunJob(state, surface, job)) << "job " << static_cast<int>(job);
        return surface.PageCount();
    }

    QString Pdf(const QString& name) const { return dir.filePath(name + ".pdf"); }

    int CountTexts(const QString& text) const {
        int n = 0;
        for (const RecordedOp& op : surface.Texts())
            n += op.text == text ? 1 : 0;
        return n;
    }

    // Every heading once, and the words of every instruction under its picture box.
    void ExpectEveryExerciseTextUnderItsBox(JobKind job) {
        const SheetGeometry& geometry = GeometryOf(job);
        for (int i = 0; i < state.Program.NumExercises; ++i) {
            const ExerciseEntry& e = state.Program.Exercise(i);
            const RecordedOp* heading = surface.FindText(Heading(e));
            ASSERT_NE(heading, nullptr) << Heading(e).toStdString();
            EXPECT_EQ(CountTexts(Heading(e)), 1);
            const double boxBottom = heading->y + 288 + 72 + geometry.PictureHeight;
            const QStringList first = {QStringLiteral("Lie%1 ").arg(i + 1),
                                       QStringLiteral("Lift%1 ").arg(i + 1),
                                       QStringLiteral("Lower%1 ").arg(i + 1)};
            for (int view = 0; view < 3; ++view) {
                const RecordedOp* word = surface.FindText(first[view]);
                ASSERT_NE(word, nullptr) << first[view].toStdString();
                EXPECT_EQ(word->x, geometry.Columns[size_t(view)]);
                EXPECT_EQ(word->y, boxBottom);
                EXPECT_EQ(word->page, heading->page);
            }
        }
    }
};

} // namespace

// --- A device that cannot start the document ---------------------------------------------

TEST_F(BadInput, AFileThatCannotBeWrittenEndsTheJobSilentlyAndPutsTheScaleBack) {
    FillProgram(state, 5);
    state.Print.PrintScale = 0.75;
    const QString file = dir.filePath("no such folder/sheets.pdf");
    for (JobKind job :
         {kJobExercises2, kJobExercises4, kJobCoverSheet, kJobPatientRecord, kJobVideoOrder}) {
        EXPECT_FALSE(RunJobToPdf(state, job, file)) << "job " << static_cast<int>(job);
        EXPECT_EQ(state.Print.PrintScale, 0.75);
        EXPECT_FALSE(QFileInfo::exists(file));
    }
}

// --- Missing and broken pictures --------------------------------------------------------

TEST_F(BadInput, MissingPicturesLeaveEveryBoxEmptyAndTheSheetsGoOn) {
    FillProgram(state, 20); // every picture named, none in the folder
    for (const JobKind job : {kJobExercises2, kJobExercises4}) {
        EXPECT_EQ(Record(job), PagesFor(job, 20)) << "job " << static_cast<int>(job);
        EXPECT_TRUE(surface.OpsOf(Kind::Picture).isEmpty());
        EXPECT_EQ(surface.OpsOf(Kind::EndDoc).size(), 1);
        ExpectEveryExerciseTextUnderItsBox(job);
    }
}

TEST_F(BadInput, BrokenPictureFilesLeaveTheirBoxesEmptyAndASoundOneIsPainted) {
    FillProgram(state, 20);
    WriteBrokenPictures(pictures, 20);
    // One sound picture among the broken ones: the second view of the fourth exercise.
    WriteFile(QDir(pictures).filePath(PictureName(3, 2)), EncodedPicture("JPG"));
    for (const JobKind job : {kJobExercises2, kJobExercises4}) {
        const SheetGeometry& geometry = GeometryOf(job);
        EXPECT_EQ(Record(job), PagesFor(job, 20)) << "job " << static_cast<int>(job);
        const QList<RecordedOp> painted = surface.OpsOf(Kind::Picture);
        ASSERT_EQ(painted.size(), 1) << "job " << static_cast<int>(job);
        const RecordedOp* heading = surface.FindText(Heading(state.Program.Exercise(3)));
        ASSERT_NE(heading, nullptr);
        EXPECT_EQ(painted[0].page, heading->page);
        EXPECT_EQ(painted[0].x, geometry.Columns[1]);
        EXPECT_EQ(painted[0].y, heading->y + 288 + 72);
        EXPECT_EQ(painted[0].x2, geometry.PictureWidth);
        EXPECT_EQ(painted[0].y2, geometry.PictureHeight);
        EXPECT_EQ(painted[0].text, "300x225");
        ExpectEveryExerciseTextUnderItsBox(job);
    }
}

TEST_F(BadInput, AJpegCutOffInItsPictureDataLeavesTheBoxEmpty) {
    // The decoder reads such a file without complaint and greys out what is missing; the
    // sheet shows no such half picture.
    const QByteArray jpeg = EncodedPicture("JPG");
    FillProgram(state, 1);
    WriteFile(QDir(pictures).filePath(PictureName(0, 1)), jpeg.left(jpeg.size() - 10));
    WriteFile(QDir(pictures).filePath(PictureName(0, 2)), jpeg.left(jpeg.size() / 4));
    WriteFile(QDir(pictures).filePath(PictureName(0, 3)), jpeg);
    Record(kJobExercises4);
    const QList<RecordedOp> painted = surface.OpsOf(Kind::Picture);
    ASSERT_EQ(painted.size(), 1);
    EXPECT_EQ(painted[0].x, kFourAPage.Columns[2]);
}

TEST_F(BadInput, ProgressiveCommentedAndPaddedJpegsAreStillPainted) {
    // Progressive scans, a comment that holds the bytes of the end marker, bytes after the
    // end marker: none of them is a cut-off file.
    const QByteArray baseline = EncodedPicture("JPG");
    const QByteArray progressive = EncodedPicture("JPG", true);
    ASSERT_NE(progressive, baseline);
    // A comment segment: marker, length 8, "ab", the end marker's bytes, "cd".
    const QByteArray comment = QByteArray::fromHex("FFFE00086162FFD96364");
    const QByteArray commented = baseline.left(2) + comment + baseline.mid(2);
    FillProgram(state, 2);
    WriteFile(QDir(pictures).filePath(PictureName(0, 1)), baseline);
    WriteFile(QDir(pictures).filePath(PictureName(0, 2)), progressive);
    WriteFile(QDir(pictures).filePath(PictureName(0, 3)), commented);
    WriteFile(QDir(pictures).filePath(PictureName(1, 1)), baseline + QByteArray(64, '\0'));
    WriteFile(QDir(pictures).filePath(PictureName(1, 2)), EncodedPicture("PNG"));
    Record(kJobExercises4);
    EXPECT_EQ(surface.OpsOf(Kind::Picture).size(), 5);
}

TEST_F(BadInput, PdfOfSheetsWithBrokenPicturesHoldsEveryPageAndTextAndOnlyTheSoundPicture) {
    FillProgram(state, 20);
    WriteBrokenPictures(pictures, 20);
    WriteFile(QDir(pictures).filePath(PictureName(3, 2)), EncodedPicture("JPG"));
    for (const JobKind job : {kJobExercises2, kJobExercises4}) {
        const QString file = Pdf(QStringLiteral("pictures-%1").arg(static_cast<int>(job)));
        ASSERT_TRUE(RunJobToPdf(state, job, file));
        EXPECT_EQ(PdfPages(file), PagesFor(job, 20)) << "job " << static_cast<int>(job);
        EXPECT_EQ(PdfImages(file), 1) << "job " << static_cast<int>(job);
        const QString text = PdfText(file);
        for (int i = 0; i < 20; ++i) {
            EXPECT_TRUE(text.contains(Heading(state.Program.Exercise(i))))
                << "job " << static_cast<int>(job) << ", exercise " << i + 1;
            EXPECT_TRUE(text.contains(QStringLiteral("Lower%1 slowly.").arg(i + 1)));
        }
    }
}

TEST_F(BadInput, PdfOfSheetsWithoutAnyPictureHoldsNoPicture) {
    FillProgram(state, 20);
    const QString file = Pdf("no-pictures");
    ASSERT_TRUE(RunJobToPdf(state, kJobExercises4, file));
    EXPECT_EQ(PdfPages(file), 5);
    EXPECT_EQ(PdfImages(file), 0);
}

// --- Descriptions of 200 characters -----------------------------------------------------

TEST_F(BadInput, LongDescriptionsRunWholeOnTheHeadingLinePastTheRightEdge) {
    FillProgram(state, 20);
    for (int i = 0; i < 20; ++i)
        state.Program.Exercise(i).Desc = LongDesc(i);
    for (const JobKind job : {kJobExercises2, kJobExercises4}) {
        const SheetGeometry& geometry = GeometryOf(job);
        EXPECT_EQ(Record(job), PagesFor(job, 20)) << "job " << static_cast<int>(job);
        for (int i = 0; i < 20; ++i) {
            // Neither wrapped nor cut: one line at the margin, beyond the edge of the page.
            const RecordedOp* heading = surface.FindText(Heading(state.Program.Exercise(i)));
            ASSERT_NE(heading, nullptr) << "exercise " << i + 1;
            EXPECT_EQ(heading->x, 720);
            EXPECT_GT(RightEnd(*heading), geometry.PageWidth);
            EXPECT_EQ(heading->y,
                      kFirstHeadingY + (i % (job == kJobExercises2 ? 2 : 4)) * geometry.Step);
        }
        // The instructions, which wrap, keep inside the page.
        for (const RecordedOp& op : InstructionTexts(surface))
            EXPECT_LE(RightEnd(op), geometry.PageWidth) << op.text.toStdString();
        ExpectEveryExerciseTextUnderItsBox(job);
    }
}

TEST_F(BadInput, LongDescriptionsRunOverTheNextColumnsOfTheRecordAndTheOrderForm) {
    FillProgram(state, 20);
    for (int i = 0; i < 20; ++i)
        state.Program.Exercise(i).Desc = LongDesc(i);
    for (const JobKind job : {kJobPatientRecord, kJobVideoOrder}) {
        EXPECT_EQ(Record(job), 1) << "job " << static_cast<int>(job);
        EXPECT_EQ(surface.OpsOf(Kind::NewPage).size(), 0);
        for (int i = 0; i < 20; ++i) {
            // The description column starts 2 inches in on both; the text runs on whole over
            // the columns after it and off the page.
            const RecordedOp* desc = surface.FindText(LongDesc(i));
            ASSERT_NE(desc, nullptr) << "job " << static_cast<int>(job) << ", exercise " << i + 1;
            EXPECT_EQ(desc->x, 2880);
            EXPECT_GT(RightEnd(*desc), kPortraitWidth);
        }
    }
    // The record's rows step on regardless: 21 rules across, a row every 242 twips (243 where
    // a rule's position rounds up to even).
    Record(kJobPatientRecord);
    EXPECT_EQ(surface.OpsOf(Kind::Line).size(), 1 + 21 + 7 + 1 + 16 + 3);
    for (int i = 1; i < 20; ++i) {
        const double step = surface.FindText(LongDesc(i))->y - surface.FindText(LongDesc(i - 1))->y;
        EXPECT_GE(step, 242) << "row " << i + 1;
        EXPECT_LE(step, 243) << "row " << i + 1;
    }
}

TEST_F(BadInput, PdfOfLongDescriptionsHasTheExpectedPagesForEveryJob) {
    FillProgram(state, 20);
    for (int i = 0; i < 20; ++i)
        state.Program.Exercise(i).Desc = LongDesc(i);
    for (const JobKind job : {kJobExercises2, kJobExercises4, kJobPatientRecord, kJobVideoOrder}) {
        const QString file = Pdf(QStringLiteral("desc-%1").arg(static_cast<int>(job)));
        ASSERT_TRUE(RunJobToPdf(state, job, file)) << "job " << static_cast<int>(job);
        EXPECT_EQ(PdfPages(file), PagesFor(job, 20)) << "job " << static_cast<int>(job);
        // The start of each description stands on the page; the part off the page is lost.
        const QString text = PdfText(file);
        for (int i = 0; i < 20; ++i)
            EXPECT_TRUE(text.contains(LongDesc(i).left(20)))
                << "job " << static_cast<int>(job) << ", " << i + 1;
        EXPECT_FALSE(text.contains(LongDesc(0))) << "job " << static_cast<int>(job);
    }
}

// --- An empty program -------------------------------------------------------------------

TEST_F(BadInput, EmptyProgramGivesSheetsOfOnePageWithTitleHeaderAndFooterOnly) {
    for (const JobKind job : {kJobExercises2, kJobExercises4}) {
        EXPECT_EQ(Record(job), 1) << "job " << static_cast<int>(job);
        EXPECT_EQ(surface.OpsOf(Kind::EndDoc).size(), 1);
        EXPECT_NE(surface.FindText("Harbor PT, 555-0100"), nullptr);
        EXPECT_NE(surface.FindText("Site #: 4711"), nullptr);
        EXPECT_NE(surface.FindText("Doe, Ann"), nullptr);
        EXPECT_NE(surface.FindText(MakerNotice()), nullptr);
        EXPECT_EQ(surface.FindText(" 1. "), nullptr);
        EXPECT_TRUE(InstructionTexts(surface).isEmpty());
        EXPECT_TRUE(surface.OpsOf(Kind::Picture).isEmpty());
    }
}

TEST_F(BadInput, EmptyProgramGivesARecordOfEmptyRows) {
    EXPECT_EQ(Record(kJobPatientRecord), 1);
    EXPECT_EQ(surface.OpsOf(Kind::EndDoc).size(), 1);
    EXPECT_EQ(surface.OpsOf(Kind::Line).size(), 1 + 21 + 7 + 1 + 16 + 3);
    EXPECT_EQ(surface.FindText(" 1 "), nullptr);
    EXPECT_NE(surface.FindText("EXERCISE PROGRAM"), nullptr);
    EXPECT_NE(surface.FindText("Signature: ___________________________"), nullptr);
}

TEST_F(BadInput, EmptyProgramGivesACoverSheetThatLeavesTheDocumentOpen) {
    state.CoverText.clear();
    Record(kJobCoverSheet);
    EXPECT_EQ(surface.OpsOf(Kind::NewPage).size(), 1);
    EXPECT_TRUE(surface.OpsOf(Kind::EndDoc).isEmpty());
    EXPECT_EQ(surface.Texts().first().text, "Harbor PT, 555-0100");
    EXPECT_EQ(surface.Texts().last().text, MakerNotice());
    EXPECT_EQ(surface.Texts().last().page, 0);
}

TEST_F(BadInput, EmptyProgramGivesAnOrderFormOfBlanks) {
    EXPECT_EQ(Record(kJobVideoOrder), 1);
    EXPECT_EQ(surface.OpsOf(Kind::EndDoc).size(), 1);
    // No tape exercise: the checksum is the site number alone; the table has only rules.
    EXPECT_NE(surface.FindText("CHECKSUM: 4711"), nullptr);
    EXPECT_EQ(surface.FindText(Code(0)), nullptr);
    EXPECT_EQ(CountTexts("________________________"), 2 * 6);
    EXPECT_EQ(CountTexts("= $__________"), 4);
    EXPECT_NE(surface.FindText("Doe, Ann"), nullptr);
    EXPECT_EQ(surface.Texts().last().text, MakerNotice());
}

TEST_F(BadInput, PdfOfAnEmptyProgramHasOnePageForEachOfTheFiveJobs) {
    for (const JobKind job :
         {kJobExercises2, kJobExercises4, kJobPatientRecord, kJobCoverSheet, kJobVideoOrder}) {
        const QString file = Pdf(QStringLiteral("empty-%1").arg(static_cast<int>(job)));
        ASSERT_TRUE(RunJobToPdf(state, job, file)) << "job " << static_cast<int>(job);
        EXPECT_EQ(PdfPages(file), 1) << "job " << static_cast<int>(job);
        const QString text = PdfText(file);
        EXPECT_TRUE(text.contains("Harbor PT, 555-0100")) << "job " << static_cast<int>(job);
        EXPECT_TRUE(text.contains(MakerNotice())) << "job " << static_cast<int>(job);
    }
}

// --- Instructions of many lines ---------------------------------------------------------

// Twenty exercises whose three instructions all run far longer than the sheets have room for.
void FillProgramWithLongInstructions(AppState& state) {
    FillProgram(state, 20);
    for (int i = 0; i < 20; ++i) {
        ExerciseEntry& e = state.Program.Exercise(i);
        e.Instruct0 = LongInstruction(i, 1);
        e.Instruct1 = LongInstruction(i, 2);
        e.Instruct2 = LongInstruction(i, 3);
    }
}

TEST_F(BadInput, LongInstructionsWrapInTheirColumnsAndRunOnOverWhatFollows) {
    FillProgramWithLongInstructions(state);
    for (const JobKind job : {kJobExercises2, kJobExercises4}) {
        const SheetGeometry& geometry = GeometryOf(job);
        const int perPage = job == kJobExercises2 ? 2 : 4;
        EXPECT_EQ(Record(job), PagesFor(job, 20)) << "job " << static_cast<int>(job);
        EXPECT_EQ(surface.OpsOf(Kind::NewPage).size(), PagesFor(job, 20) - 1);

        // Each word stands inside the picture column it began in.
        const QList<RecordedOp> words = InstructionTexts(surface);
        ASSERT_FALSE(words.isEmpty());
        for (const RecordedOp& op : words) {
            const double column = ColumnOf(geometry, op.x);
            EXPECT_LE(RightEnd(op), column + geometry.PictureWidth) << op.text.toStdString();
            EXPECT_LE(RightEnd(op), geometry.PageWidth);
        }
        // The room below the pictures stays two lines: the headings keep their places.
        for (int i = 0; i < 20; ++i) {
            const RecordedOp* heading = surface.FindText(Heading(state.Program.Exercise(i)));
            ASSERT_NE(heading, nullptr);
            EXPECT_EQ(heading->page, i / perPage);
            EXPECT_EQ(heading->y, kFirstHeadingY + (i % perPage) * geometry.Step);
        }
        // Nothing cuts the text: the first exercise's words reach down past the next
        // heading, and on every page the last exercise's words run off the foot of the page,
        // staying on that page.
        const double nextHeading = kFirstHeadingY + geometry.Step;
        std::vector<double> lowest(size_t(PagesFor(job, 20)), 0.0);
        bool overNextHeading = false;
        for (const RecordedOp& op : words) {
            lowest[size_t(op.page)] = std::max(lowest[size_t(op.page)], op.y);
            overNextHeading = overNextHeading ||
                              (op.page == 0 && op.x == geometry.Columns[0] && op.y > nextHeading);
        }
        EXPECT_TRUE(overNextHeading);
        for (size_t page = 0; page < lowest.size(); ++page)
            EXPECT_GT(lowest[page], geometry.PageHeight) << "page " << page;
    }
}

TEST_F(BadInput, PdfOfLongInstructionsHasTenAndFivePages) {
    FillProgramWithLongInstructions(state);
    for (const JobKind job : {kJobExercises2, kJobExercises4}) {
        const QString file = Pdf(QStringLiteral("instructions-%1").arg(static_cast<int>(job)));
        ASSERT_TRUE(RunJobToPdf(state, job, file));
        EXPECT_EQ(PdfPages(file), job == kJobExercises2 ? 10 : 5);
        const QString text = PdfText(file);
        for (int i = 0; i < 20; ++i)
            EXPECT_TRUE(text.contains(QStringLiteral("Step%1v1").arg(i + 1)))
                << "job " << static_cast<int>(job) << ", exercise " << i + 1;
    }
}

// --- A cover text of 500 lines ----------------------------------------------------------

QString CoverLine(int n) {
    return QStringLiteral("Cover line %1").arg(n, 3, 10, QLatin1Char('0'));
}

QString CoverOfLines(int count) {
    QStringList lines;
    for (int n = 1; n <= count; ++n)
        lines << CoverLine(n);
    return lines.join(QStringLiteral("\r\n"));
}

TEST_F(BadInput, CoverTextOfFiveHundredLinesStaysOnOnePageAndRunsOffItsFoot) {
    state.CoverText = CoverOfLines(500);
    Record(kJobCoverSheet);
    // One page: the job's own page break comes only at the end, after the footer.
    ASSERT_EQ(surface.OpsOf(Kind::NewPage).size(), 1);
    EXPECT_EQ(surface.Ops().last().kind, Kind::NewPage);
    EXPECT_TRUE(surface.OpsOf(Kind::EndDoc).isEmpty());
    const RecordedOp* first = surface.FindText(CoverLine(1));
    const RecordedOp* last = surface.FindText(CoverLine(500));
    ASSERT_NE(first, nullptr);
    ASSERT_NE(last, nullptr);
    EXPECT_EQ(first->x, 1800);
    EXPECT_EQ(last->x, 1800);
    EXPECT_EQ(last->page, 0);
    EXPECT_EQ(last->y - first->y, 499 * 288);
    EXPECT_GT(last->y, kPortraitHeight);
    // The footer stands at its place all the same, over the cover text.
    const RecordedOp* notice = surface.FindText(MakerNotice());
    ASSERT_NE(notice, nullptr);
    EXPECT_EQ(notice->page, 0);
    EXPECT_EQ(notice->y, kPortraitHeight - 3 * 288 - 720 + 2 * 288);
}

TEST_F(BadInput, PdfOfACoverTextOfFiveHundredLinesIsOnePageOfItsFirstLines) {
    state.CoverText = CoverOfLines(500);
    const QString file = Pdf("cover-500");
    ASSERT_TRUE(RunJobToPdf(state, kJobCoverSheet, file));
    EXPECT_EQ(PdfPages(file), 1);
    const QString text = PdfText(file);
    EXPECT_TRUE(text.contains(CoverLine(1)));
    EXPECT_TRUE(text.contains(CoverLine(30)));
    EXPECT_FALSE(text.contains(CoverLine(100)));
    EXPECT_FALSE(text.contains(CoverLine(500)));
}

// --- Lengths beyond 16 bits -------------------------------------------------------------

TEST_F(BadInput, PreviewScaleWhoseInchOverflowsIsAFaultOfTheDrawing) {
    FillProgram(state, 4);
    state.Print.PrintScale = 23.0; // 33120 twips an inch
    for (const JobKind job : {kJobExercises2, kJobExercises4, kJobPatientRecord, kJobCoverSheet}) {
        state.Print.PrintJobKind = job;
        surface.Clear();
        EXPECT_THROW(DrawPrintJob(surface, state), OverflowFault)
            << "job " << static_cast<int>(job);
        EXPECT_TRUE(surface.Texts().isEmpty());
    }
}

TEST_F(BadInput, HugeScaleNeverReachesThePaperAndIsPutBack) {
    FillProgram(state, 4);
    state.Print.PrintScale = 1000.0;
    EXPECT_EQ(Record(kJobExercises4), 1);
    EXPECT_EQ(state.Print.PrintScale, 1000.0);
    EXPECT_EQ(state.Print.InchTwips, 1440);
    EXPECT_EQ(surface.OpsOf(Kind::EndDoc).size(), 1);
    EXPECT_EQ(surface.FindText("Harbor PT, 555-0100")->font.Size, 12);
}

TEST_F(BadInput, AnInchLeftOverflowingByAnEarlierJobDoesNotReachTheOrderForm) {
    // The order form sets its own inch: one that an earlier drawing left, too large for the
    // table's right edge 7.5 inches in, is not used.
    FillProgram(state, 4);
    state.Print.InchTwips = 4400;
    state.Print.PrintScale = 0.75;
    state.Print.PrintJobKind = kJobVideoOrder;
    bool ran = false;
    EXPECT_NO_THROW(ran = RunPrintJob(
                        state, surface, [] { return true; }, PrintVideoOrderForm));
    EXPECT_TRUE(ran);
    EXPECT_EQ(state.Print.InchTwips, 1440);
    EXPECT_EQ(state.Print.PrintScale, 0.75);
    EXPECT_EQ(surface.OpsOf(Kind::EndDoc).size(), 1);
    EXPECT_NE(surface.FindText("Code"), nullptr);
    EXPECT_NE(surface.FindText(MakerNotice()), nullptr);
}

TEST_F(BadInput, OverflowingChecksumEndsTheOrderFormAfterItsTable) {
    // The checksum adds the leading number of each tape exercise's code to the site number;
    // a code of "9999999999" makes it overflow its 32 bits once the tape table is drawn.
    FillProgram(state, 4);
    state.Program.Exercise(2).Code = "9999999999";
    EXPECT_FALSE(RunJob(state, surface, kJobVideoOrder));
    EXPECT_NE(surface.FindText("9999999999"), nullptr);
    EXPECT_NE(surface.FindText("3. TAPE CONTENT"), nullptr);
    EXPECT_EQ(surface.FindText("CHECKSUM: 4711"), nullptr);
    EXPECT_EQ(surface.FindText(" 4. PAYMENT METHOD"), nullptr);
    EXPECT_TRUE(surface.OpsOf(Kind::EndDoc).isEmpty());
    EXPECT_EQ(state.Print.PrintScale, 1.0);

    // On paper the page holds what was drawn before the fault.
    const QString file = Pdf("checksum");
    EXPECT_FALSE(RunJobToPdf(state, kJobVideoOrder, file));
    EXPECT_EQ(PdfPages(file), 1);
    const QString text = PdfText(file);
    EXPECT_TRUE(text.contains("TAPE CONTENT"));
    EXPECT_FALSE(text.contains("PAYMENT METHOD"));
}

// --- tarvex-print -----------------------------------------------------------------------

namespace {

QString PrintToolPath() {
    return QStringLiteral(TARVEX_PRINT_TOOL);
}

// Stores a program of the first twenty library exercises for a user whose home is home and
// returns its number; the names of its pictures go to pictureNames.
int32_t StoreProgram(const QString& home, QStringList& pictureNames) {
    AppState state;
    state.AppFolder = QDir(home).filePath("data/Tarvex");
    state.DeliveredFolder = tarvex::testing::DeliveredFolder();
    EXPECT_EQ(PrepareAppFolder(state.AppFolder, TemplatesFolder(state)), "");
    OpenDatabases(state);
    LoadLibraryCache(state);
    tarvex::testing::ShellHarness shell(state);
    fakes::ScriptedPrompter prompter;
    ProgramStore store(state, shell.shell, prompter);
    ExerciseProgram& p = state.Program;
    p.PatientID = static_cast<int32_t>(
        InsertRow(state.Dbs.ProgramDb, "Patient",
                  {{"LastName", "Okafor"}, {"FirstName", "Chidi"}, {"FullName", "Okafor, Chidi"}}));
    p.FullName = "Okafor, Chidi";
    p.IsNew = true;
    for (int i = 0; i < 20; ++i) {
        p.Exercise(i) = state.Library.Entries.at(static_cast<size_t>(i));
        pictureNames << p.Exercise(i).Picture0 << p.Exercise(i).Picture1 << p.Exercise(i).Picture2;
    }
    p.NumExercises = 20;
    p.Modified = true;
    store.SaveProgram(false);
    const int32_t invoice = p.InvoiceID.value_or(0);
    CloseDatabases(state);
    return invoice;
}

} // namespace

TEST(BadInputPrintTool, WritesTheSheetsOfAProgramWhosePicturesAreMissingOrBroken) {
    const QString tool = PrintToolPath();
    ASSERT_TRUE(QFileInfo::exists(tool)) << "build tarvex-print first: " << tool.toStdString();
    QTemporaryDir home;
    QStringList names;
    const int32_t invoice = StoreProgram(home.path(), names);
    ASSERT_GT(invoice, 0);
    names.removeAll(QString());
    ASSERT_GE(names.size(), 2);

    // The user's pictures folder holds two broken files and nothing else.
    const QString pictures = home.filePath("PICTURE");
    ASSERT_TRUE(QDir().mkpath(pictures));
    WriteFile(QDir(pictures).filePath(names[0]), "no picture");
    const QByteArray jpeg = EncodedPicture("JPG");
    WriteFile(QDir(pictures).filePath(names[1]), jpeg.left(jpeg.size() / 2));
    const QString config = home.filePath("config/Tarvex");
    ASSERT_TRUE(QDir().mkpath(config));
    WriteFile(QDir(config).filePath("Tarvex.conf"),
              QStringLiteral("[Options]\nPicture=%1/\n").arg(pictures).toUtf8());

    QProcessEnvironment env = QProcessEnvironment::systemEnvironment();
    env.insert("HOME", home.path());
    env.insert("XDG_DATA_HOME", home.filePath("data"));
    env.insert("XDG_CONFIG_HOME", home.filePath("config"));
    for (const auto& [job, pages] : {std::pair{"ex2", 10}, std::pair{"ex4", 5}}) {
        const QString out = home.filePath(QString::fromLatin1(job) + ".pdf");
        QProcess process;
        process.setProcessEnvironment(env);
        process.start(tool, {"--job", job, "--invoice", QString::number(invoice), "--out", out});
        ASSERT_TRUE(process.waitForFinished(120000)) << job;
        EXPECT_EQ(process.exitStatus(), QProcess::NormalExit) << job;
        EXPECT_EQ(process.exitCode(), 0)
            << job << ": " << process.readAllStandardError().toStdString();
        EXPECT_EQ(PdfPages(out), pages) << job;
        EXPECT_EQ(PdfImages(out), 0) << job;
        EXPECT_TRUE(PdfText(out).contains("Okafor, Chidi")) << job;
    }
}
