// Picture Bench's main window driven as a user drives it: its commands, the tools on the
// picture with the mouse and the keys, the saves and their failures, and screenshots.

#include "ui/bench/PictureBenchWindow.h"
#include "link/LinkWire.h"
#include "picturebench/BenchService.h"
#include "picturebench/PictureDocument.h"
#include "ui/bench/AdjustDialog.h"
#include "ui/bench/PictureCanvas.h"

#include <QAction>
#include <QApplication>
#include <QDeadlineTimer>
#include <QDir>
#include <QFile>
#include <QFileDialog>
#include <QFileInfo>
#include <QImageReader>
#include <QInputDialog>
#include <QLineEdit>
#include <QLinearGradient>
#include <QLocalSocket>
#include <QMenu>
#include <QMenuBar>
#include <QMessageBox>
#include <QPainter>
#include <QPainterPath>
#include <QPointer>
#include <QPushButton>
#include <QRadialGradient>
#include <QScreen>
#include <QScrollBar>
#include <QStatusBar>
#include <QTemporaryDir>
#include <QTest>
#include <QTimer>
#include <QToolBar>
#include <QWheelEvent>
#include <functional>
#include <gtest/gtest.h>
#include <memory>
#include <utility>

using namespace tarvex;
using Command = PictureBenchWindow::Command;

namespace {

// Answers the next modal window when it comes up (the window's commands wait in it).
class ModalAnswer {
public:
    explicit ModalAnswer(std::function<void(QWidget*)> answer) : answer_(std::move(answer)) {
        QObject::connect(&timer_, &QTimer::timeout, [this] { Poll(); });
        timer_.start(10);
    }
    bool Answered() const { return answered_; }
    QString title;
    QString text;

private:
    void Poll() {
        QWidget* modal = QApplication::activeModalWidget();
        if (!modal || !modal->isVisible())
            return;
        timer_.stop();
        answered_ = true;
        title = modal->windowTitle();
        if (auto* box = qobject_cast<QMessageBox*>(modal))
            text = box->text() + QStringLiteral("\n") + box->informativeText();
        const QPointer<QWidget> guard(modal);
        answer_(modal);
        // An answer that failed half-way must not leave the test waiting in the window.
        if (auto* dialog = qobject_cast<QDialog*>(guard.data()); dialog && dialog->isVisible()) {
            ADD_FAILURE() << "the answer left " << title.toStdString() << " open";
            dialog->reject();
        }
    }
    std::function<void(QWidget*)> answer_;
    QTimer timer_;
    bool answered_ = false;
};

// The exercise editor's end of the link, frame by frame: the bench answers on this same
// thread while the messages are waited for.
class EditorEnd {
public:
    EditorEnd() {
        socket_.connectToServer(LinkSocketPath(QString::fromLatin1(BenchService::kService)));
        EXPECT_TRUE(socket_.waitForConnected(1000));
    }
    // Sends the message and waits for the bench's answer; true when it acknowledges it.
    bool Send(QJsonObject message) {
        message.insert("id", ++id_);
        socket_.write(EncodeLinkFrame(message));
        socket_.flush();
        const QDeadlineTimer deadline(3000);
        while (!deadline.hasExpired()) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 10);
            reader_.Append(socket_.readAll());
            while (const auto answer = reader_.Next())
                if (answer->value("id").toInt() == id_)
                    return answer->value("op").toString() == "ack";
        }
        ADD_FAILURE() << "the bench did not answer";
        return false;
    }

private:
    QLocalSocket socket_;
    LinkFrameReader reader_;
    int id_ = 0;
};

void ClickButton(QWidget* modal, QMessageBox::StandardButton which) {
    auto* box = qobject_cast<QMessageBox*>(modal);
    ASSERT_NE(box, nullptr);
    ASSERT_NE(box->button(which), nullptr);
    box->button(which)->click();
}

// A picture of a few flat areas, with a red mark in its top-left corner.
QImage PlainPicture(QSize size) {
    QImage image(size, QImage::Format_RGB32);
    image.fill(QColor(235, 235, 235));
    QPainter painter(&image);
    painter.fillRect(QRect(0, 0, 40, 40), Qt::red);
    painter.fillRect(QRect(size.width() / 2, 0, size.width() / 2, size.height() / 3),
                     QColor(120, 160, 220));
    painter.end();
    return image;
}

// Something like a photo of an exercise: a room in soft light, a mat and a person who
// raises an arm.
QImage ExercisePhoto() {
    QImage image(1600, 1200, QImage::Format_RGB32);
    QPainter painter(&image);
    painter.setRenderHint(QPainter::Antialiasing);
    QLinearGradient wall(0, 0, 0, 800);
    wall.setColorAt(0, QColor(214, 226, 236));
    wall.setColorAt(1, QColor(176, 190, 204));
    painter.fillRect(QRect(0, 0, 1600, 800), wall);
    QLinearGradient floor(0, 800, 0, 1200);
    floor.setColorAt(0, QColor(170, 130, 90));
    floor.setColorAt(1, QColor(110, 78, 50));
    painter.fillRect(QRect(0, 800, 1600, 400), floor);
    QRadialGradient window(1250, 260, 300);
    window.setColorAt(0, QColor(255, 250, 230, 220));
    window.setColorAt(1, QColor(255, 250, 230, 0));
    painter.fillRect(QRect(900, 0, 700, 620), window);
    painter.setPen(QPen(QColor(120, 95, 70), 10));
    for (int bar = 0; bar < 7; ++bar) // wall bars
        painter.drawLine(120, 160 + bar * 95, 420, 160 + bar * 95);
    painter.drawLine(120, 120, 120, 800);
    painter.drawLine(420, 120, 420, 800);
    painter.setPen(Qt::NoPen);
    painter.setBrush(QColor(46, 110, 160));
    painter.drawRoundedRect(QRectF(500, 930, 900, 110), 20, 20); // the mat
    const QColor skin(222, 176, 140);
    const QColor shirt(200, 60, 60);
    const QColor trousers(50, 55, 80);
    painter.setBrush(skin);
    painter.drawEllipse(QPointF(900, 330), 62, 72); // head
    painter.setBrush(shirt);
    QPainterPath torso;
    torso.moveTo(820, 420);
    torso.lineTo(980, 420);
    torso.lineTo(1000, 700);
    torso.lineTo(800, 700);
    torso.closeSubpath();
    painter.drawPath(torso);
    const auto limb = [&painter](QPointF from, QPointF to, const QColor& colour, double width) {
        painter.setPen(QPen(colour, width, Qt::SolidLine, Qt::RoundCap));
        painter.drawLine(from, to);
    };
    limb(QPointF(830, 440), QPointF(700, 560), shirt, 52);
    limb(QPointF(700, 560), QPointF(640, 690), skin, 42);
    limb(QPointF(970, 440), QPointF(1080, 300), shirt, 52);
    limb(QPointF(1080, 300), QPointF(1140, 150), skin, 42);
    limb(QPointF(850, 700), QPointF(820, 960), trousers, 64);
    limb(QPointF(950, 700), QPointF(1000, 960), trousers, 64);
    painter.end();
    return image;
}

QString Save(const QImage& image, const QString& path) {
    EXPECT_TRUE(image.save(path)) << path.toStdString();
    return path;
}

int Grey(const QImage& image, QPointF at) {
    return qGray(image.pixel(at.toPoint()));
}

class PictureBenchWindowTest : public testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(dir_.isValid());
        qputenv("TARVEX_LINK_DIR", dir_.path().toUtf8());
        document_ = std::make_unique<PictureDocument>();
        service_ = std::make_unique<BenchService>(*document_);
    }
    void TearDown() override {
        window_.reset();
        service_.reset();
        document_.reset();
        qunsetenv("TARVEX_LINK_DIR");
    }

    QString Path(const QString& name) const { return dir_.filePath(name); }

    PictureBenchWindow& MakeWindow() {
        window_ = std::make_unique<PictureBenchWindow>(*document_, *service_);
        return *window_;
    }
    // The window on the screen at its full size, active, so that its shortcuts work.
    PictureBenchWindow& ShowWindow() {
        if (!window_)
            MakeWindow();
        window_->resize(PictureBenchWindow::kDefaultWidth, PictureBenchWindow::kDefaultHeight);
        window_->show();
        window_->activateWindow();
        EXPECT_TRUE(QTest::qWaitForWindowActive(window_.get()));
        return *window_;
    }
    void OpenPicture(const QImage& image, const QString& name) {
        ASSERT_TRUE(service_->OpenByUser(Save(image, Path(name))));
    }
    void Trigger(Command command) {
        QAction* action = window_->Action(command);
        ASSERT_NE(action, nullptr);
        ASSERT_TRUE(action->isEnabled());
        action->trigger();
    }
    QWidget* View() const { return window_->Canvas()->viewport(); }
    QPoint InView(QPointF picturePoint) const {
        return window_->Canvas()->ToViewport(picturePoint).toPoint();
    }
    // A drag with the left button, in small steps, between two points of the picture.
    void DragOnPicture(QPointF from, QPointF to) {
        const QPoint start = InView(from);
        const QPoint end = InView(to);
        QTest::mousePress(View(), Qt::LeftButton, {}, start);
        for (int step = 1; step <= 10; ++step)
            QTest::mouseMove(View(), start + (end - start) * step / 10);
        QTest::mouseRelease(View(), Qt::LeftButton, {}, end);
    }
    void SaveScreenshot(const QString& name) {
        QDir().mkpath(QStringLiteral(TARVEX_SCREENSHOT_DIR));
        EXPECT_TRUE(window_->grab().save(QStringLiteral(TARVEX_SCREENSHOT_DIR "/") + name));
    }

    QTemporaryDir dir_;
    std::unique_ptr<PictureDocument> document_;
    std::unique_ptr<BenchService> service_;
    std::unique_ptr<PictureBenchWindow> window_;
};

} // namespace

TEST_F(PictureBenchWindowTest, TheTitleNamesTheSourceAndMarksChanges) {
    MakeWindow();
    EXPECT_EQ(window_->windowTitle(), "Picture Bench - New picture");
    OpenPicture(PlainPicture(QSize(800, 600)), "knee-bend.png");
    EXPECT_EQ(window_->windowTitle(), "Picture Bench - knee-bend.png");
    Trigger(Command::RotateRight);
    EXPECT_EQ(window_->windowTitle(), "Picture Bench - knee-bend.png*");
    Trigger(Command::Undo);
    EXPECT_EQ(window_->windowTitle(), "Picture Bench - knee-bend.png");
    Trigger(Command::Redo);
    EXPECT_EQ(window_->windowTitle(), "Picture Bench - knee-bend.png*");
}

TEST_F(PictureBenchWindowTest, RotateRightTurnsThePictureAQuarterTurn) {
    ShowWindow();
    OpenPicture(PlainPicture(QSize(1600, 900)), "wide.png");
    Trigger(Command::RotateRight);
    ASSERT_EQ(document_->Image().size(), QSize(900, 1600));
    // The red corner at the top left is now at the top right.
    EXPECT_EQ(document_->Image().pixel(880, 10), qRgb(255, 0, 0));
    EXPECT_NE(document_->Image().pixel(10, 10), qRgb(255, 0, 0));
    EXPECT_EQ(window_->SizeText(), "900 \u00d7 1600 pixels");
    // Its shortcut turns it back the other way.
    QTest::keyClick(window_.get(), Qt::Key_L, Qt::ControlModifier);
    EXPECT_EQ(document_->Image().size(), QSize(1600, 900));
    EXPECT_EQ(document_->Image().pixel(10, 10), qRgb(255, 0, 0));
}

TEST_F(PictureBenchWindowTest, TheCropToolCutsAWidePictureTo4To3) {
    ShowWindow();
    OpenPicture(PlainPicture(QSize(1600, 900)), "wide.png");
    EXPECT_FALSE(window_->Action(Command::ApplyCrop)->isEnabled());
    QTest::keyClick(window_.get(), Qt::Key_C);
    ASSERT_EQ(window_->Canvas()->CurrentTool(), PictureCanvas::Tool::Crop);
    EXPECT_TRUE(window_->Action(Command::Crop)->isChecked());
    EXPECT_EQ(window_->Canvas()->CropBox(), LargestCrop(QSize(1600, 900)));
    EXPECT_EQ(window_->Canvas()->CropBox(), QRect(200, 0, 1200, 900));

    // The bottom-right corner dragged in makes the box smaller, still 4:3, its top-left
    // corner where it was.
    DragOnPicture(QPointF(1400, 900), QPointF(1000, 600));
    const QRect resized = window_->Canvas()->CropBox();
    EXPECT_EQ(resized.topLeft(), QPoint(200, 0));
    EXPECT_NEAR(resized.width(), 800, 4);
    EXPECT_NEAR(resized.width() * 3.0 / resized.height(), 4.0, 0.02);
    // Dragged from inside, the box moves; it stops at the picture's edge.
    DragOnPicture(QPointF(600, 300), QPointF(1500, 400));
    const QRect moved = window_->Canvas()->CropBox();
    EXPECT_EQ(moved.size(), resized.size());
    EXPECT_EQ(moved.right(), 1599);
    EXPECT_NEAR(moved.top(), 100, 3);

    QTest::keyClick(window_->Canvas(), Qt::Key_Return);
    EXPECT_EQ(document_->Image().size(), moved.size());
    EXPECT_NEAR(document_->Image().width() * 3.0 / document_->Image().height(), 4.0, 0.02);
    EXPECT_EQ(window_->Canvas()->CurrentTool(), PictureCanvas::Tool::None);
    EXPECT_FALSE(window_->Action(Command::Crop)->isChecked());
    EXPECT_TRUE(document_->IsModified());
}

TEST_F(PictureBenchWindowTest, ReturnAloneCropsToTheLargest4To3Box) {
    ShowWindow();
    OpenPicture(PlainPicture(QSize(1600, 900)), "wide.png");
    Trigger(Command::Crop);
    QTest::keyClick(window_->Canvas(), Qt::Key_Return);
    EXPECT_EQ(document_->Image().size(), QSize(1200, 900));
}

TEST_F(PictureBenchWindowTest, EscPutsTheToolAwayAndLeavesTheWindowAndThePicture) {
    ShowWindow();
    OpenPicture(PlainPicture(QSize(1600, 900)), "wide.png");
    const QImage before = document_->Image();
    Trigger(Command::Crop);
    DragOnPicture(QPointF(1400, 900), QPointF(900, 600));
    QTest::keyClick(window_->Canvas(), Qt::Key_Escape);
    EXPECT_EQ(window_->Canvas()->CurrentTool(), PictureCanvas::Tool::None);
    EXPECT_FALSE(window_->Action(Command::Crop)->isChecked());
    EXPECT_FALSE(window_->Action(Command::StopTool)->isEnabled());
    EXPECT_TRUE(window_->isVisible());
    EXPECT_EQ(document_->Image(), before);
    EXPECT_FALSE(document_->IsModified());
    // With no tool out, Esc does nothing at all.
    QTest::keyClick(window_->Canvas(), Qt::Key_Escape);
    EXPECT_TRUE(window_->isVisible());
}

TEST_F(PictureBenchWindowTest, AnArrowDraggedOnThePictureIsDrawnAlongTheDragAndUndoes) {
    ShowWindow();
    QImage white(1600, 1200, QImage::Format_RGB32);
    white.fill(Qt::white);
    OpenPicture(white, "white.png");
    const QImage before = document_->Image();
    QTest::keyClick(window_.get(), Qt::Key_A);
    ASSERT_EQ(window_->Canvas()->CurrentTool(), PictureCanvas::Tool::Arrow);
    const QPointF tail(300, 300);
    const QPointF head(1100, 900);
    DragOnPicture(tail, head);

    const QImage& drawn = document_->Image();
    ASSERT_EQ(drawn.size(), QSize(1600, 1200));
    // The mapping from the view to the picture is within a shown pixel (here about 1.5
    // picture pixels): the dark line passes through every point along the drag.
    for (const double along : {0.1, 0.3, 0.5, 0.7, 0.9}) {
        const QPointF at = tail + (head - tail) * along;
        EXPECT_LT(Grey(drawn, at), 60) << "at " << at.x() << "," << at.y();
    }
    EXPECT_EQ(Grey(drawn, QPointF(1100, 300)), 255);
    EXPECT_EQ(Grey(drawn, QPointF(300, 900)), 255);
    EXPECT_EQ(window_->windowTitle(), "Picture Bench - white.png*");
    EXPECT_EQ(window_->Action(Command::Undo)->toolTip(), "Undo Draw Arrow (Ctrl+Z)");

    Trigger(Command::Undo);
    EXPECT_EQ(document_->Image(), before);
    EXPECT_FALSE(document_->IsModified());
}

TEST_F(PictureBenchWindowTest, ALineTakesTheChosenColourAndATextIsAskedFor) {
    ShowWindow();
    QImage white(1200, 900, QImage::Format_RGB32);
    white.fill(Qt::white);
    OpenPicture(white, "white.png");
    window_->SetMarkColour(Qt::red);
    window_->SetMarkWidth(PictureBenchWindow::MarkWeight::Thick);
    Trigger(Command::Line);
    DragOnPicture(QPointF(100, 450), QPointF(1100, 450));
    const QColor middle = document_->Image().pixelColor(600, 450);
    EXPECT_GT(middle.red(), 150);
    EXPECT_LT(middle.green(), 80);
    // Thick: twice the picture's usual width of 8 pixels, so 5 pixels off the line is red.
    EXPECT_GT(document_->Image().pixelColor(600, 455).red(), 150);
    EXPECT_LT(document_->Image().pixelColor(600, 455).green(), 80);

    const QImage beforeText = document_->Image();
    Trigger(Command::Text);
    int maxLength = 0;
    ModalAnswer answer([&maxLength](QWidget* modal) {
        auto* ask = qobject_cast<QInputDialog*>(modal);
        ASSERT_NE(ask, nullptr);
        if (auto* edit = ask->findChild<QLineEdit*>())
            maxLength = edit->maxLength();
        ask->setTextValue(QStringLiteral("Lift slowly"));
        ask->accept();
    });
    QTest::mouseClick(View(), Qt::LeftButton, {}, InView(QPointF(200, 120)));
    EXPECT_TRUE(answer.Answered());
    EXPECT_EQ(answer.title, "Add Text");
    EXPECT_EQ(maxLength, PictureBenchWindow::kMaxTextLength);
    EXPECT_NE(document_->Image(), beforeText);
    // The text is written in red below and to the right of the click; above it nothing.
    int red = 0;
    for (int y = 120; y < 200; ++y)
        for (int x = 200; x < 600; ++x) {
            const QColor pixel = document_->Image().pixelColor(x, y);
            red += pixel.red() > 150 && pixel.green() < 100 ? 1 : 0;
        }
    EXPECT_GT(red, 200);
    EXPECT_EQ(document_->Image().copy(0, 0, 1200, 110), beforeText.copy(0, 0, 1200, 110));
    EXPECT_EQ(document_->UndoStack()->undoText(), "Add Text");

    // A text clicked near the right edge moves in, so that none of it is cut off: its
    // white box ends inside the picture, and the edge column stays as it was.
    const QImage beforeEdge = document_->Image();
    ModalAnswer atEdge([](QWidget* modal) {
        auto* ask = qobject_cast<QInputDialog*>(modal);
        ASSERT_NE(ask, nullptr);
        ask->setTextValue(QStringLiteral("Hold for five seconds"));
        ask->accept();
    });
    QTest::mouseClick(View(), Qt::LeftButton, {}, InView(QPointF(1150, 700)));
    EXPECT_TRUE(atEdge.Answered());
    ASSERT_NE(document_->Image(), beforeEdge);
    int leftmostRed = 1200;
    for (int y = 700; y < 800; ++y)
        for (int x = 0; x < 1200; ++x) {
            const QColor pixel = document_->Image().pixelColor(x, y);
            if (pixel.red() > 150 && pixel.green() < 100)
                leftmostRed = std::min(leftmostRed, x);
        }
    EXPECT_LT(leftmostRed, 900);
    EXPECT_EQ(document_->Image().copy(1199, 0, 1, 900), beforeEdge.copy(1199, 0, 1, 900));
}

TEST_F(PictureBenchWindowTest, SaveWritesTheExercisePictureAndSaysSo) {
    ShowWindow();
    OpenPicture(ExercisePhoto(), "photo.png");
    Trigger(Command::Greyscale);
    const QString target = Path("exercise-12.jpg");
    service_->SetTarget(target);
    EXPECT_TRUE(window_->FilesText().contains(QDir::toNativeSeparators(target)));
    QTest::keyClick(window_.get(), Qt::Key_S, Qt::ControlModifier);

    QImageReader reader(target);
    EXPECT_EQ(reader.format(), "jpeg");
    const QImage saved = reader.read();
    EXPECT_EQ(saved.size(), QSize(kPictureWidth, kPictureHeight));
    EXPECT_EQ(window_->StatusMessage(), "Saved to " + QDir::toNativeSeparators(target));
    EXPECT_FALSE(document_->IsModified());
    EXPECT_EQ(window_->windowTitle(), "Picture Bench - photo.png");
    EXPECT_EQ(service_->SaveCount(), 1);
}

TEST_F(PictureBenchWindowTest, ASaveThatFailsSaysWhyAndKeepsThePictureOpenAndChanged) {
    ShowWindow();
    OpenPicture(PlainPicture(QSize(800, 600)), "plain.png");
    Trigger(Command::FlipHorizontal);
    const QString target = Path("no-such-folder/exercise.jpg");
    service_->SetTarget(target);
    ModalAnswer answer([](QWidget* modal) { ClickButton(modal, QMessageBox::Ok); });
    Trigger(Command::Save);
    EXPECT_TRUE(answer.Answered());
    EXPECT_EQ(answer.title, "Picture Not Saved");
    EXPECT_TRUE(answer.text.contains("does not exist")) << answer.text.toStdString();
    EXPECT_FALSE(QFile::exists(target));
    EXPECT_TRUE(document_->IsModified());
    EXPECT_EQ(window_->windowTitle(), "Picture Bench - plain.png*");
    EXPECT_EQ(window_->StatusMessage(), "The picture was not saved.");
    EXPECT_EQ(service_->SaveCount(), 0);
}

TEST_F(PictureBenchWindowTest, SaveWithNoTargetAsksForAFile) {
    ShowWindow();
    OpenPicture(PlainPicture(QSize(800, 600)), "plain.png");
    const QString chosen = Path("chosen-name");
    QString suggested;
    ModalAnswer answer([&chosen, &suggested](QWidget* modal) {
        auto* files = qobject_cast<QFileDialog*>(modal);
        ASSERT_NE(files, nullptr);
        // The dialog reads its folder first, and then selects the name it was given.
        QTest::qWait(300);
        suggested = files->selectedFiles().value(0);
        auto* name = files->findChild<QLineEdit*>(QStringLiteral("fileNameEdit"));
        ASSERT_NE(name, nullptr);
        name->setText(QFileInfo(chosen).fileName());
        QDialog* dialog = files; // (its accept is the dialog's, which a file dialog overrides)
        dialog->accept();
    });
    Trigger(Command::Save);
    EXPECT_TRUE(answer.Answered());
    EXPECT_EQ(answer.title, "Save Picture As");
    // It offered the source's name, as a JPEG beside it.
    EXPECT_EQ(suggested, Path("plain.jpg"));
    // A name without a JPEG suffix gets one.
    EXPECT_EQ(service_->Target(), chosen + ".jpg");
    EXPECT_EQ(QImage(chosen + ".jpg").size(), QSize(kPictureWidth, kPictureHeight));
}

TEST_F(PictureBenchWindowTest, EveryActionHasAnIconAndATipThatNamesItsShortcut) {
    MakeWindow();
    const QList<QAction*> actions = window_->AllActions();
    EXPECT_GE(actions.size(), 30);
    for (QAction* action : actions) {
        SCOPED_TRACE(action->text().toStdString());
        EXPECT_FALSE(action->icon().isNull());
        EXPECT_FALSE(action->toolTip().isEmpty());
        const QString shortcut = action->shortcut().toString(QKeySequence::NativeText);
        EXPECT_TRUE(shortcut.isEmpty() || action->toolTip().contains(shortcut))
            << action->toolTip().toStdString();
    }
    EXPECT_EQ(window_->Action(Command::Crop)->toolTip(), "Crop (C)");
    EXPECT_EQ(window_->Action(Command::RotateRight)->toolTip(), "Rotate Right (Ctrl+R)");
    EXPECT_EQ(window_->Action(Command::ZoomFit)->toolTip(), "Fit to Window (Ctrl+0)");
    EXPECT_EQ(window_->Action(Command::Undo)->toolTip(), "Undo (Ctrl+Z)");
}

TEST_F(PictureBenchWindowTest, TheMenusHoldTheCommands) {
    MakeWindow();
    QStringList menus;
    for (QAction* menu : window_->menuBar()->actions())
        menus << menu->text().remove('&');
    EXPECT_EQ(menus, QStringList({"File", "Edit", "Picture", "Draw", "View", "Help"}));
    for (const Command command :
         {Command::Open, Command::Save, Command::Undo, Command::Crop, Command::Straighten,
          Command::Arrow, Command::ZoomActual, Command::About}) {
        QAction* action = window_->Action(command);
        bool inMenu = false;
        for (QObject* holder : action->associatedObjects())
            inMenu = inMenu || qobject_cast<QMenu*>(holder) != nullptr;
        EXPECT_TRUE(inMenu) << action->text().toStdString();
    }
}

TEST_F(PictureBenchWindowTest, TheWindowFitsTheScreensOfAClinic) {
    MakeWindow();
    EXPECT_LE(window_->width(), PictureBenchWindow::kDefaultWidth);
    EXPECT_LE(window_->height(), PictureBenchWindow::kDefaultHeight);
    EXPECT_LE(window_->minimumSizeHint().width(), 1366);
    EXPECT_LE(window_->minimumSizeHint().height(), 700);
    EXPECT_LE(window_->minimumWidth(), 640);
    ShowWindow();
    EXPECT_EQ(window_->size(), QSize(1200, 720));
    // At that size every button of the toolbar shows, none hidden behind its edge.
    auto* bar = window_->findChild<QToolBar*>(QStringLiteral("toolBar"));
    ASSERT_NE(bar, nullptr);
    for (QAction* action : bar->actions()) {
        if (action->isSeparator())
            continue;
        QWidget* button = bar->widgetForAction(action);
        ASSERT_NE(button, nullptr);
        EXPECT_TRUE(button->isVisible()) << action->text().toStdString();
        EXPECT_LE(button->geometry().right(), bar->width()) << action->text().toStdString();
    }
    // And the status line's parts are all there.
    for (const char* part : {"pointerStatus", "sizeStatus", "zoomStatus", "linkStatus"}) {
        auto* widget = window_->statusBar()->findChild<QWidget*>(QString::fromLatin1(part));
        ASSERT_NE(widget, nullptr) << part;
        EXPECT_TRUE(widget->isVisible()) << part;
        EXPECT_GE(widget->width(), widget->minimumSizeHint().width()) << part;
    }
}

TEST_F(PictureBenchWindowTest, AtItsOwnSizeTheWindowOpensWhollyOnItsScreen) {
    MakeWindow();
    window_->show();
    ASSERT_TRUE(QTest::qWaitForWindowExposed(window_.get()));
    QTest::qWait(300); // (a window manager frames the window meanwhile)
    const QRect screen = window_->screen()->availableGeometry();
    EXPECT_TRUE(screen.contains(window_->frameGeometry()))
        << "screen " << screen.width() << "x" << screen.height() << ", window "
        << window_->frameGeometry().width() << "x" << window_->frameGeometry().height();
    EXPECT_LE(window_->width(), PictureBenchWindow::kDefaultWidth);
    EXPECT_LE(window_->height(), PictureBenchWindow::kDefaultHeight);
}

TEST_F(PictureBenchWindowTest, ThePictureIsFittedAndZooms) {
    ShowWindow();
    OpenPicture(ExercisePhoto(), "photo.png");
    PictureCanvas* canvas = window_->Canvas();
    EXPECT_TRUE(canvas->IsFitting());
    const QRectF shown = canvas->PictureRect();
    EXPECT_TRUE(QRectF(View()->rect()).contains(shown));
    // Fitted: as tall as the view allows, with its shape kept.
    EXPECT_GT(shown.height(), View()->height() - 2 * PictureCanvas::kMargin - 2);
    EXPECT_NEAR(shown.width() / shown.height(), 4.0 / 3.0, 0.01);
    EXPECT_EQ(canvas->horizontalScrollBar()->maximum(), 0);
    const double fit = canvas->Zoom();
    EXPECT_TRUE(window_->ZoomText().endsWith("(fit)"));

    QTest::keyClick(window_.get(), Qt::Key_1, Qt::ControlModifier);
    EXPECT_DOUBLE_EQ(canvas->Zoom(), 1.0);
    EXPECT_FALSE(canvas->IsFitting());
    EXPECT_EQ(window_->ZoomText(), "Zoom 100%");
    EXPECT_GT(canvas->horizontalScrollBar()->maximum(), 0);
    EXPECT_GT(canvas->verticalScrollBar()->maximum(), 0);
    // The mapping follows the scroll bars.
    canvas->horizontalScrollBar()->setValue(200);
    const QPointF point = canvas->ToPicture(QPointF(100, 100));
    EXPECT_NEAR(canvas->ToViewport(point).x(), 100, 1e-9);
    EXPECT_NEAR(point.x(), 100 - PictureCanvas::kMargin + 200, 1e-9);

    QTest::keyClick(window_.get(), Qt::Key_0, Qt::ControlModifier);
    EXPECT_TRUE(canvas->IsFitting());
    EXPECT_DOUBLE_EQ(canvas->Zoom(), fit);
    Trigger(Command::ZoomIn);
    EXPECT_NEAR(canvas->Zoom(), fit * PictureCanvas::kZoomStep, 1e-9);
    Trigger(Command::ZoomOut);
    EXPECT_NEAR(canvas->Zoom(), fit, 1e-9);

    // Ctrl and the wheel zoom about the pointer: the pixel under it stays under it (a point
    // near the middle, which the scroll bars can keep in place).
    const QPointF under(View()->width() / 2.0 + 30, View()->height() / 2.0 + 20);
    const QPointF pixel = canvas->ToPicture(under);
    QWheelEvent wheel(under, View()->mapToGlobal(under), QPoint(), QPoint(0, 240), Qt::NoButton,
                      Qt::ControlModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(View(), &wheel);
    EXPECT_NEAR(canvas->Zoom(), fit * PictureCanvas::kZoomStep * PictureCanvas::kZoomStep, 1e-9);
    EXPECT_NEAR(canvas->ToPicture(under).x(), pixel.x(), 1.0);
    EXPECT_NEAR(canvas->ToPicture(under).y(), pixel.y(), 1.0);
}

TEST_F(PictureBenchWindowTest, TheStatusLineTellsThePointerTheSizeTheLinkAndTheFiles) {
    ASSERT_TRUE(service_->Listen()) << service_->LinkError().toStdString();
    ShowWindow();
    EXPECT_EQ(window_->LinkText(), "Linked to the exercise editor");
    OpenPicture(PlainPicture(QSize(1600, 1200)), "plain.png");
    EXPECT_EQ(window_->SizeText(), "1600 \u00d7 1200 pixels");
    EXPECT_TRUE(window_->FilesText().contains(QDir::toNativeSeparators(Path("plain.png"))));
    EXPECT_TRUE(window_->FilesText().contains("Saves to: no file yet"));
    QTest::mouseMove(View(), InView(QPointF(800.5, 600.5)));
    EXPECT_EQ(window_->PointerText(), "x 800, y 600");
    QTest::mouseMove(View(), QPoint(2, 2)); // the grey ground round the picture
    EXPECT_EQ(window_->PointerText(), "");
}

TEST_F(PictureBenchWindowTest, ABenchThatCannotListenSaysWhyAndOneNotAskedWorksOnItsOwn) {
    MakeWindow();
    EXPECT_EQ(window_->LinkText(), "Working on its own");
    window_.reset();
    BenchService first(*document_);
    ASSERT_TRUE(first.Listen());
    ASSERT_FALSE(service_->Listen());
    MakeWindow();
    EXPECT_FALSE(window_->LinkText().isEmpty());
    EXPECT_EQ(window_->LinkText(), service_->LinkError());
}

TEST_F(PictureBenchWindowTest, ASourceThatCannotBeOpenedStartsABlankPictureAndSaysSo) {
    ASSERT_TRUE(service_->Listen()) << service_->LinkError().toStdString();
    ShowWindow();
    OpenPicture(PlainPicture(QSize(800, 600)), "earlier.png");
    const QString missing = Path("gone/picture.jpg");
    EditorEnd editor;
    ASSERT_TRUE(
        editor.Send({{"op", "initiate"}, {"v", link::kVersion}, {"topic", BenchService::kTopic}}));
    ASSERT_TRUE(
        editor.Send({{"op", "poke"}, {"item", BenchService::kOpenItem}, {"value", missing}}));
    QMessageBox* box = nullptr;
    QTRY_VERIFY_WITH_TIMEOUT((box = window_->findChild<QMessageBox*>()) != nullptr, 3000);
    if (HasFailure())
        return;
    EXPECT_EQ(box->windowTitle(), "Picture Not Opened");
    EXPECT_TRUE(box->text().contains("picture.jpg"));
    EXPECT_TRUE(box->text().contains("blank picture"));
    EXPECT_FALSE(box->informativeText().isEmpty());
    EXPECT_TRUE(window_->StatusMessage().contains("could not be opened"));
    EXPECT_TRUE(window_->StatusMessage().contains("blank picture"));
    EXPECT_EQ(document_->Image().size(), QSize(kPictureWidth, kPictureHeight));
    EXPECT_EQ(window_->windowTitle(), "Picture Bench - New picture");
    box->button(QMessageBox::Ok)->click();
    QTRY_VERIFY_WITH_TIMEOUT(window_->findChild<QMessageBox*>() == nullptr, 3000);
}

TEST_F(PictureBenchWindowTest, ClosingWithChangesAsksFirst) {
    ShowWindow();
    OpenPicture(PlainPicture(QSize(800, 600)), "plain.png");
    Trigger(Command::RotateLeft);
    {
        ModalAnswer answer([](QWidget* modal) { ClickButton(modal, QMessageBox::Cancel); });
        EXPECT_FALSE(window_->close());
        EXPECT_TRUE(answer.Answered());
        EXPECT_TRUE(answer.text.contains("not saved"));
        EXPECT_TRUE(window_->isVisible());
    }
    {
        const QString target = Path("saved-on-close.jpg");
        service_->SetTarget(target);
        ModalAnswer answer([](QWidget* modal) { ClickButton(modal, QMessageBox::Save); });
        EXPECT_TRUE(window_->close());
        EXPECT_TRUE(answer.Answered());
        EXPECT_TRUE(QFile::exists(target));
        EXPECT_FALSE(document_->IsModified());
    }
    ShowWindow();
    Trigger(Command::FlipVertical);
    {
        ModalAnswer answer([](QWidget* modal) { ClickButton(modal, QMessageBox::Discard); });
        EXPECT_TRUE(window_->close());
        EXPECT_TRUE(answer.Answered());
    }
    // Unchanged, it closes without a word.
    Trigger(Command::Undo);
    ShowWindow();
    EXPECT_FALSE(document_->IsModified());
    EXPECT_TRUE(window_->close());
    EXPECT_EQ(QApplication::activeModalWidget(), nullptr);
}

TEST_F(PictureBenchWindowTest, StraightenPreviewsAndOkAppliesTheAngle) {
    ShowWindow();
    OpenPicture(ExercisePhoto(), "photo.png");
    const QImage photo = document_->Image();
    bool previewed = false;
    ModalAnswer answer([this, &previewed](QWidget* modal) {
        auto* dialog = qobject_cast<AdjustDialog*>(modal);
        ASSERT_NE(dialog, nullptr);
        dialog->SetValue(0, 5.2); // to the nearer half degree
        EXPECT_DOUBLE_EQ(dialog->Value(0), 5.0);
        QTest::qWait(200);
        previewed = window_->Canvas()->HasPreview();
        if (QDir().mkpath(QStringLiteral(TARVEX_SCREENSHOT_DIR)))
            window_->grab().save(
                QStringLiteral(TARVEX_SCREENSHOT_DIR "/picture-bench-straighten-preview.png"));
        dialog->accept();
    });
    Trigger(Command::Straighten);
    EXPECT_TRUE(answer.Answered());
    EXPECT_EQ(answer.title, "Straighten");
    EXPECT_TRUE(previewed);
    EXPECT_FALSE(window_->Canvas()->HasPreview());
    EXPECT_EQ(document_->Image(), Straighten(photo, 5.0));
    EXPECT_EQ(document_->UndoStack()->undoText(), "Straighten");
}

TEST_F(PictureBenchWindowTest, CancelledAdjustmentsLeaveThePicture) {
    ShowWindow();
    OpenPicture(ExercisePhoto(), "photo.png");
    const QImage before = document_->Image();
    for (const Command command :
         {Command::BrightnessContrast, Command::DrawingLook, Command::Straighten}) {
        ModalAnswer answer([](QWidget* modal) {
            auto* dialog = qobject_cast<AdjustDialog*>(modal);
            ASSERT_NE(dialog, nullptr);
            for (int row = 0; row < dialog->RowCount(); ++row)
                dialog->SetValue(row, 10);
            QTest::keyClick(dialog, Qt::Key_Escape);
        });
        Trigger(command);
        EXPECT_TRUE(answer.Answered());
        EXPECT_EQ(document_->Image(), before);
        EXPECT_FALSE(window_->Canvas()->HasPreview());
    }
    EXPECT_FALSE(document_->IsModified());
}

TEST_F(PictureBenchWindowTest, BrightnessGreyscaleAndDrawingLookChangeThePicture) {
    ShowWindow();
    OpenPicture(ExercisePhoto(), "photo.png");
    const QImage photo = document_->Image();
    {
        ModalAnswer answer([](QWidget* modal) {
            auto* dialog = qobject_cast<AdjustDialog*>(modal);
            ASSERT_NE(dialog, nullptr);
            ASSERT_EQ(dialog->RowCount(), 2);
            dialog->SetValue(0, 40);
            dialog->SetValue(1, -20);
            dialog->accept();
        });
        Trigger(Command::BrightnessContrast);
        EXPECT_TRUE(answer.Answered());
        EXPECT_EQ(document_->Image(), AdjustBrightnessContrast(photo, 40, -20));
    }
    Trigger(Command::Greyscale);
    const QColor grey = document_->Image().pixelColor(900, 500);
    EXPECT_EQ(grey.red(), grey.green());
    EXPECT_EQ(grey.green(), grey.blue());
    {
        ModalAnswer answer([](QWidget* modal) {
            auto* dialog = qobject_cast<AdjustDialog*>(modal);
            ASSERT_NE(dialog, nullptr);
            EXPECT_EQ(dialog->Value(0), 50);
            dialog->accept();
        });
        const QImage before = document_->Image();
        Trigger(Command::DrawingLook);
        EXPECT_TRUE(answer.Answered());
        EXPECT_EQ(document_->Image(), DrawingLook(before, 50));
    }
    EXPECT_EQ(document_->UndoStack()->count(), 3);
}

TEST_F(PictureBenchWindowTest, Screenshots) {
    OpenPicture(ExercisePhoto(), "raise-arm.png");
    ShowWindow();
    window_->SetMarkColour(QColor(0xd0, 0x1c, 0x1c));
    Trigger(Command::Arrow);
    DragOnPicture(QPointF(1320, 420), QPointF(1160, 170));
    Trigger(Command::Text);
    {
        ModalAnswer answer([](QWidget* modal) {
            auto* ask = qobject_cast<QInputDialog*>(modal);
            ASSERT_NE(ask, nullptr);
            ask->setTextValue(QStringLiteral("Raise the arm slowly"));
            ask->accept();
        });
        QTest::mouseClick(View(), Qt::LeftButton, {}, InView(QPointF(80, 1080)));
        EXPECT_TRUE(answer.Answered());
    }
    Trigger(Command::Text); // put away
    QTest::mouseMove(View(), InView(QPointF(900, 330)));
    EXPECT_EQ(document_->UndoStack()->count(), 2);
    SaveScreenshot(QStringLiteral("picture-bench.png"));

    Trigger(Command::Crop);
    DragOnPicture(QPointF(1600, 1200), QPointF(1400, 1050));
    DragOnPicture(QPointF(700, 500), QPointF(760, 520));
    SaveScreenshot(QStringLiteral("picture-bench-crop.png"));
    EXPECT_EQ(window_->Canvas()->CurrentTool(), PictureCanvas::Tool::Crop);

    // The Picture menu, open.
    QMenu* menu = window_->menuBar()->actions().at(2)->menu();
    ASSERT_NE(menu, nullptr);
    menu->popup(window_->mapToGlobal(QPoint(80, 24)));
    EXPECT_TRUE(QTest::qWaitForWindowExposed(menu));
    EXPECT_TRUE(menu->grab().save(QStringLiteral(TARVEX_SCREENSHOT_DIR "/picture-bench-menu.png")));
    menu->hide();

    // Every icon of the window, large and at the toolbar's size, with its tool tip.
    const QList<QAction*> actions = window_->AllActions();
    QImage sheet(560, 56 * static_cast<int>(actions.size()), QImage::Format_RGB32);
    sheet.fill(Qt::white);
    QPainter painter(&sheet);
    for (qsizetype row = 0; row < actions.size(); ++row) {
        const int top = 56 * static_cast<int>(row);
        painter.drawPixmap(4, top + 4, actions[row]->icon().pixmap(48, 48));
        painter.drawPixmap(60, top + 16, actions[row]->icon().pixmap(24, 24));
        painter.drawText(QRect(96, top, 460, 56), Qt::AlignVCenter, actions[row]->toolTip());
    }
    painter.end();
    EXPECT_TRUE(sheet.save(QStringLiteral(TARVEX_SCREENSHOT_DIR "/picture-bench-icons.png")));
}

TEST_F(PictureBenchWindowTest, TheHelpMenuExplainsTheBench) {
    ShowWindow();
    for (const auto& help :
         {std::pair{Command::HowToUse, QStringLiteral("How to Use Picture Bench")},
          std::pair{Command::About, QStringLiteral("About Picture Bench")}}) {
        const QString& title = help.second;
        QString text;
        ModalAnswer answer([&text, &title](QWidget* modal) {
            auto* box = qobject_cast<QMessageBox*>(modal);
            ASSERT_NE(box, nullptr);
            text = box->text();
            QDir().mkpath(QStringLiteral(TARVEX_SCREENSHOT_DIR));
            box->grab().save(QStringLiteral(TARVEX_SCREENSHOT_DIR "/picture-bench-") +
                             title.section(' ', 0, 0).toLower() + ".png");
            box->accept();
        });
        Trigger(help.first);
        EXPECT_TRUE(answer.Answered());
        EXPECT_EQ(answer.title, title);
        EXPECT_TRUE(text.contains("Picture Bench"));
    }
}
