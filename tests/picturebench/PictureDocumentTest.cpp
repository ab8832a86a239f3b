#include "picturebench/PictureDocument.h"
#include "picturebench/BenchScript.h"
#include "picturebench/PixelChecks.h"

#include <QDir>
#include <QFile>
#include <QImageReader>
#include <QPainter>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace tarvex;
using namespace tarvex::testing;

namespace {

// A document with a count of its ImageChanged signals.
struct Bench {
    Bench() {
        QObject::connect(&document, &PictureDocument::ImageChanged, [this] { ++changes; });
    }
    QString Path(const QString& name) const { return dir.filePath(name); }
    QString SaveQuadrants(const QString& name, QSize size) const {
        const QString path = Path(name);
        EXPECT_TRUE(Quadrants(size).save(path));
        return path;
    }

    QTemporaryDir dir;
    PictureDocument document;
    int changes = 0;
};

} // namespace

// --- The document ---

TEST(PictureDocument, ANewDocumentIsABlankPictureWithNothingToUndo) {
    PictureDocument document;
    EXPECT_EQ(document.Image(), EmptyCanvas());
    EXPECT_FALSE(document.IsModified());
    EXPECT_FALSE(document.UndoStack()->canUndo());
    EXPECT_EQ(document.UndoStack()->undoLimit(), PictureDocument::kUndoLimit);
    EXPECT_EQ(document.SourcePath(), QString());
}

TEST(PictureDocument, UndoPutsBackTheExactPixelsOfEachStepAndRedoDoesItAgain) {
    Bench b;
    b.document.SetImage(Quadrants({800, 600}));
    std::vector<QImage> states{b.document.Image()};
    b.document.Crop(QRect(100, 100, 400, 300));
    states.push_back(b.document.Image());
    b.document.Straighten(7.5);
    states.push_back(b.document.Image());
    b.document.BrightnessContrast(30, 20);
    states.push_back(b.document.Image());
    Mark arrow;
    arrow.from = QPointF(10, 10);
    arrow.to = QPointF(200, 150);
    b.document.Draw(arrow);
    states.push_back(b.document.Image());
    b.document.Rotate90(true);
    states.push_back(b.document.Image());
    // Each edit changed the picture.
    for (size_t i = 1; i < states.size(); ++i)
        ASSERT_NE(states[i], states[i - 1]) << i;
    ASSERT_EQ(b.document.UndoStack()->count(), 5);
    const int changesBefore = b.changes;
    for (size_t i = states.size() - 1; i > 0; --i) {
        b.document.UndoStack()->undo();
        ASSERT_EQ(b.document.Image(), states[i - 1]) << "after undoing step " << i;
    }
    EXPECT_FALSE(b.document.UndoStack()->canUndo());
    for (size_t i = 1; i < states.size(); ++i) {
        b.document.UndoStack()->redo();
        ASSERT_EQ(b.document.Image(), states[i]) << "after redoing step " << i;
    }
    EXPECT_EQ(b.changes - changesBefore, 10); // each undo and redo said so
}

TEST(PictureDocument, AStepSharesThePicturesBeforeAndAfterRatherThanCopyingThem) {
    Bench b;
    b.document.SetImage(Quadrants({400, 300}));
    const QImage before = b.document.Image();
    b.document.Greyscale();
    const QImage after = b.document.Image();
    b.document.UndoStack()->undo();
    EXPECT_EQ(b.document.Image().constBits(), before.constBits());
    b.document.UndoStack()->redo();
    EXPECT_EQ(b.document.Image().constBits(), after.constBits());
}

TEST(PictureDocument, NoMoreThanTwentyStepsAreKept) {
    Bench b;
    b.document.SetImage(Quadrants({40, 30}));
    std::vector<QImage> states{b.document.Image()};
    for (int i = 0; i < 25; ++i) {
        b.document.Rotate90(i % 3 != 0);
        b.document.BrightnessContrast(i % 2 == 0 ? 5 : -4, 0);
        states.push_back(b.document.Image());
        if (i % 2 == 1) { // undone and redone on the way: still the same steps
            b.document.UndoStack()->undo();
            b.document.UndoStack()->redo();
        }
    }
    // Fifty edits, twenty of them kept: the last twenty undo to the state after thirty.
    EXPECT_EQ(b.document.UndoStack()->count(), 20);
    int undone = 0;
    while (b.document.UndoStack()->canUndo()) {
        b.document.UndoStack()->undo();
        ++undone;
    }
    EXPECT_EQ(undone, 20);
    EXPECT_NE(b.document.Image(), states.front());
    EXPECT_EQ(b.document.Image(), states[15]);
}

TEST(PictureDocument, EachEditIsNamedForTheUndoMenu) {
    Bench b;
    b.document.SetImage(Quadrants({80, 60}));
    QUndoStack* stack = b.document.UndoStack();
    const auto last = [stack] { return stack->undoText(); };
    b.document.Rotate90(true);
    EXPECT_EQ(last(), "Rotate Right");
    b.document.Rotate90(false);
    EXPECT_EQ(last(), "Rotate Left");
    b.document.Flip(Qt::Horizontal);
    EXPECT_EQ(last(), "Flip Horizontally");
    b.document.Flip(Qt::Vertical);
    EXPECT_EQ(last(), "Flip Vertically");
    b.document.Crop(QRect(20, 15, 40, 30));
    EXPECT_EQ(last(), "Crop");
    b.document.Straighten(3);
    EXPECT_EQ(last(), "Straighten");
    b.document.BrightnessContrast(-30, -10);
    EXPECT_EQ(last(), "Brightness and Contrast");
    b.document.Greyscale();
    EXPECT_EQ(last(), "Greyscale");
    b.document.DrawingLook(40);
    EXPECT_EQ(last(), "Drawing Look");
    Mark mark;
    mark.from = QPointF(5, 5);
    mark.to = QPointF(30, 20);
    b.document.Draw(mark);
    EXPECT_EQ(last(), "Draw Arrow");
    mark.kind = Mark::Kind::Line;
    mark.to = QPointF(5, 20);
    b.document.Draw(mark);
    EXPECT_EQ(last(), "Draw Line");
    mark.kind = Mark::Kind::Text;
    mark.text = "A";
    b.document.Draw(mark);
    EXPECT_EQ(last(), "Add Text");
    EXPECT_EQ(stack->count(), 12);
}

TEST(PictureDocument, TheEditsOfTheDocumentAreThoseOfThePictureEdits) {
    const QImage start = Quadrants({400, 300});
    Bench b;
    b.document.SetImage(start);
    b.document.Flip(Qt::Horizontal);
    EXPECT_EQ(b.document.Image(), Flip(start, Qt::Horizontal));
    b.document.SetImage(start);
    b.document.DrawingLook(60);
    EXPECT_EQ(b.document.Image(), DrawingLook(start, 60));
    b.document.SetImage(start);
    b.document.Crop(QRect(200, 0, 200, 150));
    EXPECT_EQ(b.document.Image(), Crop(start, QRect(200, 0, 200, 150)));
    EXPECT_EQ(b.document.Image().pixelColor(0, 0), QColor(Qt::green));
}

TEST(PictureDocument, AnEditThatChangesNothingLeavesNoStep) {
    Bench b;
    b.document.SetImage(Quadrants({80, 60}));
    b.document.BrightnessContrast(0, 0);
    b.document.Crop(QRect(500, 500, 10, 10));
    b.document.Apply("Nothing", [](const QImage&) { return QImage(); });
    b.document.Apply("Nothing either", nullptr);
    EXPECT_EQ(b.document.UndoStack()->count(), 0);
    EXPECT_FALSE(b.document.IsModified());
    EXPECT_EQ(b.document.Image(), Quadrants({80, 60}));
}

TEST(PictureDocument, AnEditOfItsOwnIsOneStep) {
    Bench b;
    b.document.SetImage(Quadrants({80, 60}));
    const int changesBefore = b.changes;
    b.document.Apply("Invert", [](const QImage& image) {
        QImage inverted = image;
        inverted.invertPixels();
        return inverted;
    });
    EXPECT_EQ(b.changes - changesBefore, 1);
    EXPECT_EQ(b.document.Image().pixelColor(0, 0), QColor(Qt::cyan));
    EXPECT_EQ(b.document.UndoStack()->undoText(), "Invert");
    b.document.UndoStack()->undo();
    EXPECT_EQ(b.document.Image(), Quadrants({80, 60}));
}

TEST(PictureDocument, OpeningAPictureStartsAfreshAndAFailureKeepsWhatWasThere) {
    Bench b;
    const QString photo = b.SaveQuadrants("photo one.png", {1200, 900});
    EXPECT_TRUE(b.document.Open(photo));
    EXPECT_EQ(b.document.Image(), Quadrants({1200, 900}));
    EXPECT_EQ(b.document.SourcePath(), photo);
    EXPECT_FALSE(b.document.IsModified());
    b.document.Greyscale();
    const QImage edited = b.document.Image();
    const int changesBefore = b.changes;
    // A file that is not there: nothing changes, and the error names it.
    EXPECT_FALSE(b.document.Open(b.Path("gone.jpg")));
    EXPECT_TRUE(b.document.LastError().contains(QDir::toNativeSeparators(b.Path("gone.jpg"))))
        << b.document.LastError().toStdString();
    EXPECT_EQ(b.document.Image(), edited);
    EXPECT_EQ(b.document.SourcePath(), photo);
    EXPECT_TRUE(b.document.UndoStack()->canUndo());
    EXPECT_EQ(b.changes, changesBefore);
    // Another picture: the steps of the first are gone.
    const QString second = b.SaveQuadrants("two.png", {400, 300});
    EXPECT_TRUE(b.document.Open(second));
    EXPECT_EQ(b.document.LastError(), QString());
    EXPECT_EQ(b.document.Image().size(), QSize(400, 300));
    EXPECT_FALSE(b.document.UndoStack()->canUndo());
    EXPECT_EQ(b.changes, changesBefore + 1);
    // No path: a blank picture.
    EXPECT_TRUE(b.document.Open(QString()));
    EXPECT_EQ(b.document.Image(), EmptyCanvas());
    EXPECT_EQ(b.document.SourcePath(), QString());
}

TEST(PictureDocument, ALargePhotoIsOpenedAtTheWorkingSize) {
    Bench b;
    const QString photo = b.SaveQuadrants("large.jpg", {4000, 3000});
    EXPECT_TRUE(b.document.Open(photo));
    EXPECT_EQ(b.document.Image().size(), QSize(1800, 1350));
}

TEST(PictureDocument, SavingMakesTheDocumentUnmodifiedUntilTheNextChange) {
    Bench b;
    b.document.SetImage(Quadrants({800, 600}));
    EXPECT_FALSE(b.document.IsModified());
    b.document.Rotate90(true);
    EXPECT_TRUE(b.document.IsModified());
    const QString target = b.Path("saved.jpg");
    EXPECT_EQ(b.document.Save(target), QString());
    EXPECT_FALSE(b.document.IsModified());
    EXPECT_EQ(QImageReader(target).size(), QSize(900, 675));
    b.document.UndoStack()->undo();
    EXPECT_TRUE(b.document.IsModified());
    b.document.UndoStack()->redo();
    EXPECT_FALSE(b.document.IsModified());
    // A failed save leaves it modified and says why.
    b.document.Greyscale();
    const QString error = b.document.Save(b.Path("no folder/saved.jpg"));
    EXPECT_FALSE(error.isEmpty());
    EXPECT_EQ(b.document.LastError(), error);
    EXPECT_TRUE(b.document.IsModified());
}

// --- Bench scripts ---

TEST(BenchScript, EachLineIsOneStepWithItsLineNumber) {
    QString error = "not cleared";
    const std::vector<ScriptStep> steps = ParseBenchScript("# make the squat picture\n"
                                                           "\n"
                                                           "open /pictures/Squat photo 2.jpg\n"
                                                           "  crop 0.1 0.1 0.8 0.8  \n"
                                                           "rotate -90\r\n"
                                                           "text 0.05 0.9 Knees  over   toes\n"
                                                           "    # an indented remark\n"
                                                           "save\n"
                                                           "save /out/12.jpg\n",
                                                           &error);
    EXPECT_EQ(error, QString());
    ASSERT_EQ(steps.size(), 6u);
    EXPECT_EQ(steps[0].command, "open");
    EXPECT_EQ(steps[0].args, QStringList({"/pictures/Squat photo 2.jpg"}));
    EXPECT_EQ(steps[0].line, 3);
    EXPECT_EQ(steps[1].command, "crop");
    EXPECT_EQ(steps[1].args, QStringList({"0.1", "0.1", "0.8", "0.8"}));
    EXPECT_EQ(steps[1].line, 4);
    EXPECT_EQ(steps[2].args, QStringList({"-90"}));
    EXPECT_EQ(steps[3].args, QStringList({"0.05", "0.9", "Knees  over   toes"}));
    EXPECT_EQ(steps[3].line, 6);
    EXPECT_EQ(steps[4].command, "save");
    EXPECT_TRUE(steps[4].args.isEmpty());
    EXPECT_EQ(steps[4].line, 8);
    EXPECT_EQ(steps[5].args, QStringList({"/out/12.jpg"}));
}

TEST(BenchScript, EveryWrongLineIsNamedByItsNumberAndNothingIsRun) {
    QString error;
    const std::vector<ScriptStep> steps = ParseBenchScript("grey\n"
                                                           "# fine so far\n"
                                                           "sharpen 3\n"
                                                           "crop 0.1 0.1 0.5\n"
                                                           "brightness lots\n"
                                                           "arrow 0.1 0.2 1.5 0.2\n"
                                                           "rotate 45\n"
                                                           "flip x\n"
                                                           "open\n"
                                                           "grey please\n"
                                                           "drawing 0\n"
                                                           "straighten 50\n"
                                                           "contrast 2.5\n"
                                                           "text 0.5 0.5\n"
                                                           "undo\n",
                                                           &error);
    EXPECT_TRUE(steps.empty());
    const QStringList lines = error.split('\n');
    ASSERT_EQ(lines.size(), 12) << error.toStdString();
    const auto says = [&](int index, const QString& start, const QString& words) {
        EXPECT_TRUE(lines[index].startsWith(start)) << lines[index].toStdString();
        EXPECT_TRUE(lines[index].contains(words)) << lines[index].toStdString();
    };
    says(0, "Line 3:", "unknown command \"sharpen\"");
    says(1, "Line 4:", "needs 4 values, not 3");
    says(2, "Line 5:", "\"lots\" is not a number");
    says(3, "Line 6:", "1.5 is outside 0 to 1");
    says(4, "Line 7:", "rotate takes 90");
    says(5, "Line 8:", "flip takes h");
    says(6, "Line 9:", "a path is missing");
    says(7, "Line 10:", "grey takes nothing");
    says(8, "Line 11:", "0 is outside 1 to 100");
    says(9, "Line 12:", "50 is outside -45 to 45");
    says(10, "Line 13:", "2.5 is not a whole number");
    says(11, "Line 14:", "the words are needed");
}

TEST(BenchScript, AScriptThatCropsTurnsDrawsAndSavesGivesAnExercisePicture) {
    Bench b;
    const QString photo = b.SaveQuadrants("phone photo.png", {1200, 900});
    const QString target = b.Path("out/12.jpg");
    ASSERT_TRUE(QDir(b.dir.path()).mkdir("out"));
    QString error;
    const std::vector<ScriptStep> steps = ParseBenchScript(QStringLiteral("open %1\n"
                                                                          "crop 0.25 0.25 0.5 0.5\n"
                                                                          "rotate 90\n"
                                                                          "arrow 0.1 0.5 0.9 0.5\n"
                                                                          "save %2\n")
                                                               .arg(photo, target),
                                                           &error);
    ASSERT_EQ(error, QString());
    ASSERT_EQ(steps.size(), 5u);
    for (const ScriptStep& step : steps)
        ASSERT_EQ(RunBenchStep(b.document, step, QString()), QString()) << step.line;
    // The middle of the photo, 600x450, turned to 450x600 and drawn on.
    EXPECT_EQ(b.document.Image().size(), QSize(450, 600));
    EXPECT_EQ(b.document.UndoStack()->count(), 3);
    EXPECT_FALSE(b.document.IsModified());
    const QImage saved(target);
    ASSERT_EQ(saved.size(), QSize(900, 675));
    // Upright in the middle of the saved picture (506 wide), white at the sides.
    EXPECT_TRUE(Near(saved, {20, 337}, Qt::white, 8));
    EXPECT_TRUE(Near(saved, {880, 337}, Qt::white, 8));
    // The red top left went to the top right, the blue bottom left to the top left.
    EXPECT_TRUE(Near(saved, {650, 100}, Qt::red));
    EXPECT_TRUE(Near(saved, {250, 100}, Qt::blue));
    EXPECT_TRUE(Near(saved, {650, 600}, Qt::green));
    EXPECT_TRUE(Near(saved, {250, 600}, Qt::yellow));
    // The arrow across the middle, dark over the colours.
    EXPECT_LT(qGray(saved.pixel(450, 337)), 60);
    EXPECT_LT(qGray(saved.pixel(300, 337)), 60);
}

TEST(BenchScript, EachCommandDoesTheEditOfItsName) {
    const QImage start = Quadrants({400, 300});
    const auto after = [&](const QString& line) {
        PictureDocument document;
        document.SetImage(start);
        QString error;
        const std::vector<ScriptStep> steps = ParseBenchScript(line, &error);
        EXPECT_EQ(error, QString()) << line.toStdString();
        for (const ScriptStep& step : steps)
            EXPECT_EQ(RunBenchStep(document, step, QString()), QString()) << line.toStdString();
        return document.Image();
    };
    EXPECT_EQ(after("rotate -90"), Rotate90(start, false));
    EXPECT_EQ(after("flip h"), Flip(start, Qt::Horizontal));
    EXPECT_EQ(after("flip v"), Flip(start, Qt::Vertical));
    EXPECT_EQ(after("straighten -4.5"), Straighten(start, -4.5));
    EXPECT_EQ(after("brightness 40"), AdjustBrightnessContrast(start, 40, 0));
    EXPECT_EQ(after("contrast -30"), AdjustBrightnessContrast(start, 0, -30));
    EXPECT_EQ(after("grey"), Greyscale(start));
    EXPECT_EQ(after("drawing 70"), DrawingLook(start, 70));
    EXPECT_EQ(after("crop 0 0 0.5 0.5"), Crop(start, QRect(0, 0, 200, 150)));
    Mark line;
    line.kind = Mark::Kind::Line;
    line.from = QPointF(40, 75);
    line.to = QPointF(360, 225);
    EXPECT_EQ(after("line 0.1 0.25 0.9 0.75"), DrawMark(start, line));
    Mark text;
    text.kind = Mark::Kind::Text;
    text.from = QPointF(100, 30);
    text.text = "Hold  5 s";
    EXPECT_EQ(after("text 0.25 0.1 Hold  5 s"), DrawMark(start, text));
    EXPECT_EQ(after("grey\nundo"), start);
    EXPECT_EQ(after("grey\nundo\nredo"), Greyscale(start));
}

TEST(BenchScript, AStepThatCannotBeDoneSaysWhichLineAndWhy) {
    Bench b;
    const ScriptStep undo{"undo", {}, 4};
    EXPECT_EQ(RunBenchStep(b.document, undo, QString()), "Line 4: there is nothing to undo.");
    const ScriptStep redo{"redo", {}, 5};
    EXPECT_EQ(RunBenchStep(b.document, redo, QString()), "Line 5: there is nothing to redo.");
    const ScriptStep open{"open", {b.Path("gone.jpg")}, 6};
    const QString openError = RunBenchStep(b.document, open, QString());
    EXPECT_TRUE(openError.startsWith("Line 6: ")) << openError.toStdString();
    EXPECT_TRUE(openError.contains(QDir::toNativeSeparators(b.Path("gone.jpg"))));
    const ScriptStep save{"save", {}, 7};
    EXPECT_TRUE(RunBenchStep(b.document, save, QString()).startsWith("Line 7: save has no path"));
    // A step made by hand is checked as a parsed one is.
    const ScriptStep crop{"crop", {"0.5", "0.5"}, 8};
    EXPECT_TRUE(RunBenchStep(b.document, crop, QString()).startsWith("Line 8: crop X Y W H needs"));
    const ScriptStep unknown{"blur", {}, 9};
    EXPECT_EQ(RunBenchStep(b.document, unknown, QString()), "Line 9: unknown command \"blur\".");
    EXPECT_EQ(b.document.Image(), EmptyCanvas());
}

TEST(BenchScript, ASaveWithoutAPathSavesAtTheRunsTarget) {
    Bench b;
    const QString target = b.Path("default.jpg");
    QString error;
    const std::vector<ScriptStep> steps = ParseBenchScript("line 0 0 1 1\nsave\n", &error);
    ASSERT_EQ(error, QString());
    EXPECT_EQ(RunBenchScript(b.document, steps, target), QString());
    EXPECT_EQ(QImageReader(target).size(), QSize(900, 675));
    // A run stops at the first step that fails.
    const std::vector<ScriptStep> failing = ParseBenchScript("redo\ngrey\n", &error);
    ASSERT_EQ(failing.size(), 2u);
    EXPECT_EQ(RunBenchScript(b.document, failing, target), "Line 1: there is nothing to redo.");
    EXPECT_EQ(b.document.UndoStack()->count(), 1); // the line, and no grey after the failure
}
