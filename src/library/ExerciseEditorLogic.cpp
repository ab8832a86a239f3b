#include "library/ExerciseEditorLogic.h"

#include "data/NullValues.h"
#include "data/Sql.h"
#include "exercise/LibraryFilter.h"
#include "exercise/MediaPaths.h"
#include "library/NewExerciseNumber.h"
#include "library/PictureImport.h"
#include "shell/AppState.h"
#include "shell/Shell.h"
#include "support/Fault.h"
#include "support/Numbers.h"
#include "support/Prompter.h"

#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QLocale>
#include <QSet>
#include <QSqlQuery>
#include <QSqlRecord>

namespace tarvex {

namespace {

constexpr const char* kTable = "ExerciseLibrary";
constexpr const char* kInstructColumns[] = {"Instruct0", "Instruct1", "Instruct2"};
constexpr const char* kSourceColumns[] = {"Picture0Src", "Picture1Src", "Picture2Src"};
constexpr const char* kPictureColumns[] = {"Picture0", "Picture1", "Picture2"};

// The engine's report of a text that does not convert to the column's number type.
constexpr int kConversionError = 3421;
// "No current record": the row to edit is not there.
constexpr int kNoCurrentRecord = 3021;
// "Record is deleted": the row being edited was deleted meanwhile.
constexpr int kRecordDeleted = 3167;

// What a number box writes into its 16-bit column, converted as the engine converts a
// text: a number is rounded to a whole one, and anything else fails. An empty box writes
// 0, not null: the selection workspace needs every exercise's three numbers, and a null
// there would keep the library from loading.
QVariant NumberBoxValue(const QString& text, const char* column) {
    return AtPlace(
        QStringLiteral("the exercise's \"%1\" box, value \"%2\"").arg(QLatin1String(column), text),
        [&]() -> QVariant {
            const QString trimmed = text.trimmed();
            if (trimmed.isEmpty())
                return QVariant(0);
            bool ok = false;
            const double value = QLocale::c().toDouble(trimmed, &ok);
            if (!ok)
                throw DatabaseFault(QStringLiteral("Data type conversion error."),
                                    kConversionError);
            return ToInt16(value);
        });
}

QString Field(const QSqlRecord& row, const char* column) {
    return NullToText(row.value(QLatin1String(column)));
}

} // namespace

ExerciseEditorLogic::ExerciseEditorLogic(AppState& state, Prompter& prompter,
                                         ExerciseEditorControls controls, IExerciseEditorHost& host)
    : state_(state), prompter_(prompter), c_(controls), host_(host) {}

ExerciseEditorLogic::~ExerciseEditorLogic() = default;

void ExerciseEditorLogic::Load() {
    OpenPictureBenchLinks();
    if (state_.ExerciseNumber)
        LoadExisting(*state_.ExerciseNumber);
    else
        LoadNew();
    c_.Caption.SetTitle(QLatin1String(kCaption) + *state_.ExerciseNumber);
}

void ExerciseEditorLogic::LoadNew() {
    newNumber_.reset(); // a number held by an earlier load goes first
    newNumber_ = std::make_unique<NewExerciseNumber>(state_.Dbs.LibraryDb, kFirstClinicNumber);
    const qint64 number = newNumber_->Number();
    state_.ExerciseNumber = QString::number(number);
    adding_ = true;
    exerciseID_ = number;
    for (ITextBox* box : {&c_.txtDescription, &c_.txtAbbrevDesc, c_.txtPicture[0], c_.txtPicture[1],
                          c_.txtPicture[2]})
        box->SetText(QString());
    c_.cboPattern.SetText(QString());
    c_.cboType.SetText(QString());
    FillJointList(c_.lstJoint, QStringLiteral("Joint"));
    FillComboFromLibrary(c_.cboPattern, QStringLiteral("Motion"));
    FillComboFromLibrary(c_.cboType, QStringLiteral("Type"));
    c_.txtRepsDef.SetText(QString::number(kDefaultReps));
    c_.txtHoldDef.SetText(QString::number(kDefaultHold));
    c_.txtSetsDef.SetText(QString::number(kDefaultSets));
}

void ExerciseEditorLogic::LoadExisting(const QString& number) {
    QSqlQuery query =
        OpenQuery(state_.Dbs.LibraryDb,
                  QStringLiteral("SELECT * From ExerciseLibrary WHERE ExerciseID = ") + number);
    if (!query.next())
        throw DatabaseFault(
            QStringLiteral("No current record: the library has no exercise %1.").arg(number),
            kNoCurrentRecord);
    const QSqlRecord row = query.record();
    newNumber_.reset();
    adding_ = false;
    exerciseID_ = row.value(QStringLiteral("ExerciseID")).toLongLong();
    // The bound controls show the row's values.
    c_.txtDescription.SetText(Field(row, "Desc"));
    c_.txtAbbrevDesc.SetText(Field(row, "AbbrevDesc"));
    c_.txtRepsDef.SetText(Field(row, "Reps"));
    c_.txtHoldDef.SetText(Field(row, "Hold"));
    c_.txtSetsDef.SetText(Field(row, "Sets"));
    c_.cboPattern.SetText(Field(row, "Motion"));
    c_.cboType.SetText(Field(row, "Type"));
    for (size_t i = 0; i < 3; ++i)
        c_.txtPicture[i]->SetText(Field(row, kInstructColumns[i]));

    FillJointList(c_.lstJoint, QStringLiteral("Joint"));
    SelectJoints(c_.lstJoint, Field(row, "Joint"));
    FillComboFromLibrary(c_.cboPattern, QStringLiteral("Motion"));
    SelectComboItem(c_.cboPattern, Field(row, "Motion"));
    FillComboFromLibrary(c_.cboType, QStringLiteral("Type"));
    SelectComboItem(c_.cboType, Field(row, "Type"));
    for (size_t i = 0; i < 3; ++i)
        pictureSource_[i] = Field(row, kSourceColumns[i]);
    const QVariant iconSrc = row.value(QStringLiteral("IconSrc"));
    for (size_t i = 0; i < 3; ++i)
        c_.optExIcon[i]->SetValue(!iconSrc.isNull() && iconSrc.toInt() == static_cast<int>(i));
    // A picture that is missing or unreadable leaves its box empty.
    for (size_t i = 0; i < 3; ++i)
        c_.imgPicture[i]->LoadFile(PictureFileName(state_.Media, static_cast<int32_t>(exerciseID_),
                                                   static_cast<int>(i) + 1));
}

QSqlQuery ExerciseEditorLogic::DistinctValues(const QString& column) {
    return OpenQuery(state_.Dbs.LibraryDb, QStringLiteral("SELECT DISTINCT ") + column +
                                               QStringLiteral(" From ExerciseLibrary"));
}

void ExerciseEditorLogic::FillComboFromLibrary(IComboBox& combo, const QString& column) {
    QSqlQuery rows = DistinctValues(column);
    while (rows.next())
        combo.AddItem(NullToText(rows.value(0)));
}

void ExerciseEditorLogic::SelectComboItem(IComboBox& combo, const QString& value) {
    for (int i = 0; i < combo.ListCount(); ++i) {
        if (combo.List(i) == value)
            combo.SetText(combo.List(i));
    }
}

void ExerciseEditorLogic::FillJointList(IListBox& list, const QString& column) {
    QSqlQuery rows = DistinctValues(column);
    QSet<QString> present;
    for (int i = 0; i < list.ListCount(); ++i)
        present.insert(list.List(i));
    while (rows.next()) {
        for (const QString& item : SplitCommaItems(NullToText(rows.value(0)))) {
            if (present.contains(item))
                continue;
            present.insert(item);
            list.AddItem(item);
        }
    }
}

void ExerciseEditorLogic::SelectJoints(IListBox& list, const QString& joints) {
    for (const QString& item : SplitCommaItems(joints)) {
        for (int i = 0; i < list.ListCount(); ++i) {
            if (list.List(i) == item)
                list.SetSelected(i, true);
        }
    }
}

void ExerciseEditorLogic::cmdNewJoint_Click() {
    const std::optional<QString> joint = prompter_.InputBox(
        QStringLiteral("Enter new joint"), QStringLiteral("Add new joint"), QString());
    if (joint && !joint->isEmpty())
        c_.lstJoint.AddItem(*joint);
}

bool ExerciseEditorLogic::cmdOKCancel_Click(const QString& tag) {
    if (tag == QLatin1String("Cancel"))
        return true; // nothing was written: the new or changed row is dropped
    if (tag == QLatin1String("OK"))
        return Save();
    return false;
}

QString ExerciseEditorLogic::JointText() const {
    QStringList chosen;
    for (int i = 0; i < c_.lstJoint.ListCount(); ++i) {
        if (c_.lstJoint.Selected(i))
            chosen << c_.lstJoint.List(i);
    }
    return chosen.join(u',');
}

int ExerciseEditorLogic::IconSource() const {
    for (size_t i = 0; i < 3; ++i) {
        if (c_.optExIcon[i]->Value() != 0)
            return static_cast<int>(i);
    }
    return kNoIcon;
}

bool ExerciseEditorLogic::Save() {
    // The number boxes convert first, as the update would: a text that is no number ends
    // the save before anything is written, the icon included.
    const QVariant reps = NumberBoxValue(c_.txtRepsDef.Text(), "Reps");
    const QVariant hold = NumberBoxValue(c_.txtHoldDef.Text(), "Hold");
    const QVariant sets = NumberBoxValue(c_.txtSetsDef.Text(), "Sets");

    // The library list stays usable beside the editor: the exercise may have been deleted
    // there meanwhile, and an update would then store nothing.
    if (!adding_) {
        QSqlQuery row = ExecPrepared(state_.Dbs.LibraryDb,
                                     QStringLiteral("SELECT 1 FROM ExerciseLibrary WHERE "
                                                    "ExerciseID = ?"),
                                     {exerciseID_});
        if (!row.next())
            throw DatabaseFault(QStringLiteral("Record is deleted: exercise %1 is no longer in "
                                               "the library.")
                                    .arg(exerciseID_),
                                kRecordDeleted);
    }

    const auto id = static_cast<int32_t>(exerciseID_);
    const QString number = QString::number(exerciseID_);
    const QString joint = JointText();
    const int iconSrc = IconSource();
    const QString picture = PictureFileName(state_.Media, id, iconSrc + 1);
    const bool makeIcon = QFileInfo(picture).isFile();
    const QString icon = IconFileName(state_.Media, id);
    if (makeIcon && !FolderIsWritable(QFileInfo(icon).absolutePath())) {
        prompter_.MsgBox(UnwritableFolderText(QFileInfo(icon).absolutePath()), msg::Exclamation,
                         QLatin1String(kUnwritableFolderTitle));
        return false;
    }

    ColumnValues values = {
        {QStringLiteral("Desc"), c_.txtDescription.Text()},
        {QStringLiteral("AbbrevDesc"), c_.txtAbbrevDesc.Text()},
        {QStringLiteral("Reps"), reps},
        {QStringLiteral("Hold"), hold},
        {QStringLiteral("Sets"), sets},
        {QStringLiteral("Motion"), c_.cboPattern.Text()},
        {QStringLiteral("Type"), c_.cboType.Text()},
        {QStringLiteral("Joint"), joint},
        {QStringLiteral("Icon"), number + QStringLiteral(".JPG")},
    };
    for (size_t i = 0; i < 3; ++i)
        values.emplace_back(QLatin1String(kPictureColumns[i]),
                            number + u'_' + QString::number(i + 1) + QStringLiteral(".JPG"));
    values.emplace_back(QStringLiteral("IconSrc"), iconSrc);
    if (makeIcon)
        host_.MakeIcon(picture, icon, kIconWidth);
    for (size_t i = 0; i < 3; ++i)
        values.emplace_back(QLatin1String(kSourceColumns[i]), pictureSource_[i]);
    for (size_t i = 0; i < 3; ++i)
        values.emplace_back(QLatin1String(kInstructColumns[i]), c_.txtPicture[i]->Text());
    values.emplace_back(QStringLiteral("HasVideo"), false);
    values.emplace_back(QStringLiteral("code"), number);

    QSqlDatabase& db = state_.Dbs.LibraryDb;
    Transaction transaction(db);
    if (adding_) {
        values.insert(values.begin(), {QStringLiteral("ExerciseID"), exerciseID_});
        InsertRow(db, QLatin1String(kTable), values);
    } else {
        UpdateRow(db, QLatin1String(kTable), QStringLiteral("ExerciseID"), exerciseID_, values);
    }
    transaction.Commit();
    return true;
}

void ExerciseEditorLogic::Unload() {
    host_.RefillLibraryList();
}

void ExerciseEditorLogic::OpenPictureBenchLinks() {
    struct Link {
        LinkLabel& label;
        const char* item;
        LinkMode mode;
    };
    const Link links[] = {
        {c_.links.lblPictSaveFName, "TVXSaveFName", LinkMode::Manual},
        {c_.links.lblPictOpenFName, "TVXOpenFName", LinkMode::Manual},
        {c_.links.lblSrcPicture, "StatFileName", LinkMode::Automatic},
        {c_.links.lblLinkStatus, "TVXLinkStatus", LinkMode::Notify},
    };
    try {
        for (const Link& link : links) {
            if (link.label.Mode() != LinkMode::None)
                continue;
            link.label.SetLinkTopic(QLatin1String(kPictureBenchTopic));
            link.label.SetLinkItem(QLatin1String(link.item));
            link.label.SetLinkMode(link.mode);
        }
    } catch (const Fault& fault) {
        const QString title = QStringLiteral("Error Calling Picture Bench");
        if (fault.Number() == LinkFault::kNoServer)
            prompter_.MsgBox(QStringLiteral("Can't find TVX Picture Bench"), msg::Exclamation,
                             title);
        else
            prompter_.MsgBox(QStringLiteral("Error%1 %2").arg(fault.Number()).arg(fault.Message()),
                             msg::Exclamation, title);
    }
}

void ExerciseEditorLogic::imgPicture_DblClick(int index) {
    if (index < 0 || index > 2)
        throw BoundsFault(QStringLiteral("There is no picture %1 on the form.").arg(index));
    state_.PictureNumber = index + 1;
    pictureIndex_ = index;
    LinkLabel& open = c_.links.lblPictOpenFName;
    open.SetCaption(pictureSource_[static_cast<size_t>(index)]);
    try {
        open.LinkPoke();
    } catch (const Fault& fault) {
        if (fault.Number() == LinkFault::kNoChannel)
            prompter_.MsgBox(QStringLiteral("Picture Bench is not running.\nYou must exit and "
                                            "restart the exercise library editor."),
                             msg::Information, QStringLiteral("Error: Can't Edit Image."));
        else
            prompter_.MsgBox(
                QStringLiteral("Error: %1 %2").arg(fault.Number()).arg(fault.Message()),
                msg::Information, QStringLiteral("Error: imgPicture_DblClick"));
        return;
    }
    LinkLabel& save = c_.links.lblPictSaveFName;
    save.SetCaption(PictureFileName(state_.Media, static_cast<int32_t>(exerciseID_), index + 1));
    save.LinkPoke(); // a fault here is the run-time's to report
}

void ExerciseEditorLogic::lblLinkStatus_LinkNotify() {
    pictureSource_[static_cast<size_t>(pictureIndex_)] = c_.links.lblSrcPicture.Caption();
    // From here on errors are ignored: a picture the companion did not save leaves the
    // picture on the form as it was.
    const QString picture =
        PictureFileName(state_.Media, static_cast<int32_t>(exerciseID_), state_.PictureNumber);
    if (QImageReader(picture).canRead())
        c_.imgPicture[static_cast<size_t>(pictureIndex_)]->LoadFile(picture);
    try {
        c_.links.lblLinkStatus.LinkRequest();
    } catch (const Fault&) {
        // ignored: the status text is not looked at
    }
}

QString ExerciseEditorLogic::UnwritableFolderText(const QString& folder) {
    return QStringLiteral("The exercise's pictures cannot be changed in the folder\n\n%1\n\n"
                          "because this user may not write there (the pictures are on the "
                          "program's CD or a shared folder). Nothing was saved.\n\n"
                          "Copy the pictures to the hard drive first with File > Copy "
                          "Pictures, then edit the exercise again.")
        .arg(QDir::toNativeSeparators(folder));
}

} // namespace tarvex
