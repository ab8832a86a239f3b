#pragma once

// The exercise editor's form over fake controls, for the editor's tests.

#include "data/Databases.h"
#include "data/Sql.h"
#include "fakes/FakeControls.h"
#include "library/ExerciseEditorLogic.h"
#include "library/PictureImport.h"
#include "support/Fault.h"
#include "support/LinkServerThread.h"
#include "support/TestFolder.h"

#include <QDir>
#include <QFile>
#include <QFileDevice>
#include <QImage>
#include <QImageReader>
#include <QSqlQuery>
#include <QSqlRecord>
#include <QTemporaryDir>
#include <gtest/gtest.h>

namespace tarvex::testing {

using namespace tarvex::fakes;

// The picture service as the editor's host runs it, on a status bar of its own.
class FakeHost : public IExerciseEditorHost {
public:
    void MakeIcon(const QString& picture, const QString& icon, int32_t width) override {
        icons << QFileInfo(icon).fileName();
        PictureImport service(status);
        service.LoadFile(picture, 0);
        service.ResizeAndSaveFile(icon, width);
    }
    void RefillLibraryList() override { ++refills; }

    FakeStatusBar status;
    QStringList icons;
    int refills = 0;
};

// The link's socket in a folder of the test's own, so that no companion of the user's answers.
struct LinkFolder {
    LinkFolder() { qputenv("TARVEX_LINK_DIR", dir.path().toUtf8()); }
    ~LinkFolder() { qunsetenv("TARVEX_LINK_DIR"); }
    QTemporaryDir dir;
};

// The companion picture editor as far as the link goes: a server on a thread of its own.
inline std::unique_ptr<tarvex::testing::LinkServerThread> StartCompanion() {
    return std::make_unique<tarvex::testing::LinkServerThread>(
        "Picture Bench", "MDIForm1", QStringList{"TVXSaveFName", "TVXOpenFName"},
        QStringList{"StatFileName", "TVXLinkStatus"});
}

// The editor's form over fake controls, on the delivered library, with its media folders
// in the test's folder. The companion picture editor answers unless told otherwise.
struct Editor {
    explicit Editor(bool companionRuns = true)
        : companion(companionRuns ? StartCompanion() : nullptr), lstJoint({}, true),
          lblPictSaveFName(channels), lblPictOpenFName(channels), lblSrcPicture(channels),
          lblLinkStatus(channels),
          logic(folder.state, prompter,
                {title,
                 txtDescription,
                 txtAbbrevDesc,
                 txtRepsDef,
                 txtHoldDef,
                 txtSetsDef,
                 cboPattern,
                 cboType,
                 lstJoint,
                 {&txtPicture[0], &txtPicture[1], &txtPicture[2]},
                 {&imgPicture[0], &imgPicture[1], &imgPicture[2]},
                 {&optExIcon[0], &optExIcon[1], &optExIcon[2]},
                 {lblPictSaveFName, lblPictOpenFName, lblSrcPicture, lblLinkStatus}},
                host) {
        QObject::connect(&lblLinkStatus, &LinkLabel::LinkNotify,
                         [this] { logic.lblLinkStatus_LinkNotify(); });
        OpenDatabases(folder.state);
        QDir(folder.Path()).mkpath("Icons");
        QDir(folder.Path()).mkpath("Pictures");
        folder.state.Media.Icon = folder.File("Icons") + u'/';
        folder.state.Media.Picture = folder.File("Pictures") + u'/';
        folder.state.Media.Movie = folder.File("Movies") + u'/';
    }
    QSqlDatabase& Db() { return folder.state.Dbs.LibraryDb; }
    qint64 Highest() {
        QSqlQuery q = OpenQuery(Db(), "SELECT MAX(ExerciseID) FROM ExerciseLibrary");
        return q.next() ? q.value(0).toLongLong() : -1;
    }
    int Count() {
        QSqlQuery q = OpenQuery(Db(), "SELECT COUNT(*) FROM ExerciseLibrary");
        return q.next() ? q.value(0).toInt() : -1;
    }
    // The stored row, or an empty record when there is none.
    QSqlRecord Row(qint64 id) {
        QSqlQuery q = OpenQuery(Db(), "SELECT * FROM ExerciseLibrary WHERE ExerciseID = " +
                                          QString::number(id));
        return q.next() ? q.record() : QSqlRecord();
    }
    void AddExercise(qint64 id, const QString& joint = "Knee") {
        InsertRow(Db(), "ExerciseLibrary",
                  {{"ExerciseID", id},
                   {"code", QString::number(id)},
                   {"Desc", "Added " + QString::number(id)},
                   {"Joint", joint},
                   {"Motion", "Flexion"},
                   {"Type", "Strengthening"},
                   {"Movie", "M" + QString::number(id) + ".AVI"},
                   {"IconSrc", 1},
                   {"HasVideo", true}});
    }
    // A picture file of the exercise in the picture folder, as the picture editor saves it.
    QString PutPicture(qint64 id, int view, QSize size = {900, 675}) {
        QImage image(size, QImage::Format_RGB32);
        image.fill(Qt::darkGreen);
        const QString path = folder.state.Media.Picture + QString::number(id) + u'_' +
                             QString::number(view) + ".JPG";
        EXPECT_TRUE(image.save(path, "JPEG"));
        return path;
    }
    // An icon 30 pixels wide, as an earlier save may have left.
    bool PutOldIcon(qint64 id) {
        QImage old(30, 30, QImage::Format_RGB32);
        old.fill(Qt::red);
        return old.save(IconPath(id), "JPEG");
    }
    QString IconPath(qint64 id) { return folder.state.Media.Icon + QString::number(id) + ".JPG"; }
    void Edit(qint64 id) {
        folder.state.ExerciseNumber = ExerciseListCode(id);
        logic.Load();
    }
    static QString ExerciseListCode(qint64 id) {
        return QStringLiteral("%1").arg(id, 3, 10, QChar(u'0'));
    }
    void Add() {
        folder.state.ExerciseNumber.reset();
        logic.Load();
    }

    LinkFolder linkFolder;
    std::unique_ptr<tarvex::testing::LinkServerThread> companion;
    tarvex::testing::TestFolder folder;
    ScriptedPrompter prompter;
    FakeTitle title{"frmEditExercise"};
    FakeTextBox txtDescription, txtAbbrevDesc, txtRepsDef, txtHoldDef, txtSetsDef;
    FakeComboBox cboPattern{false}, cboType{false};
    FakeListBox lstJoint;
    std::array<FakeTextBox, 3> txtPicture;
    std::array<FakePicture, 3> imgPicture;
    std::array<FakeCheckBox, 3> optExIcon;
    FakeHost host;
    LinkChannels channels;
    LinkLabel lblPictSaveFName, lblPictOpenFName, lblSrcPicture, lblLinkStatus;
    ExerciseEditorLogic logic;
};

} // namespace tarvex::testing
