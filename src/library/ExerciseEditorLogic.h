#pragma once

#include "link/LinkClient.h"
#include "support/Controls.h"

#include <QSqlQuery>
#include <QString>
#include <QStringList>
#include <array>
#include <cstdint>
#include <memory>

namespace tarvex {

class NewExerciseNumber;

struct AppState;
class IWindowTitle;
class Prompter;

// The labels that carry the link to the companion picture editor, by their names on the
// form. Their captions are the link's data and are shown on the form.
struct PictureBenchLabels {
    LinkLabel& lblPictSaveFName; // where the picture is to be saved (poked)
    LinkLabel& lblPictOpenFName; // the picture's source (poked)
    LinkLabel& lblSrcPicture;    // the source the companion has in hand (follows it)
    LinkLabel& lblLinkStatus;    // the companion's status (a notice when it changes)
};

// The controls of the exercise editor, by their names on the form.
struct ExerciseEditorControls {
    IWindowTitle& Caption;
    ITextBox& txtDescription; // "Desc", at most 50 characters
    ITextBox& txtAbbrevDesc;  // "AbbrevDesc", at most 15
    ITextBox& txtRepsDef;
    ITextBox& txtHoldDef;
    ITextBox& txtSetsDef;
    IComboBox& cboPattern;               // "Motion"
    IComboBox& cboType;                  // "Type"
    IListBox& lstJoint;                  // sorted, several entries can be chosen
    std::array<ITextBox*, 3> txtPicture; // "Instruct0" to "Instruct2", at most 75 each
    std::array<IPicture*, 3> imgPicture;
    std::array<ICheckBox*, 3> optExIcon; // "Use as selection icon": 1 on, 0 off
    PictureBenchLabels links;
};

// What the exercise editor needs of the program around it.
class IExerciseEditorHost {
public:
    virtual ~IExerciseEditorHost() = default;
    // Makes the selection icon from a picture through the picture service: the picture is
    // loaded, scaled to the width and saved as a JPEG at icon, whole or not at all.
    virtual void MakeIcon(const QString& picture, const QString& icon, int32_t width) = 0;
    // Refills the library list (after every closing of the editor).
    virtual void RefillLibraryList() = 0;
};

// The logic of frmEditExercise, "Exercise Number: N": one row of the library with its
// texts, default parameters, filter attributes, the instruction lines of its three
// pictures, and which picture gives the selection icon. With no exercise number it adds a
// row under a new number (100000 for the first a clinic adds, then one more than the
// highest); the row is written when OK is pressed, by one update, and Cancel leaves none.
class ExerciseEditorLogic {
public:
    static constexpr const char* kCaption = "Exercise Number: ";
    static constexpr int kDescLength = 50;
    static constexpr int kAbbrevDescLength = 15;
    static constexpr int kInstructLength = 75;
    static constexpr int kFirstClinicNumber = 100000;
    static constexpr int kIconWidth = 61;
    static constexpr int kNoIcon = 3; // IconSrc when no picture gives the icon
    static constexpr int kDefaultReps = 10;
    static constexpr int kDefaultHold = 0;
    static constexpr int kDefaultSets = 1;

    ExerciseEditorLogic(AppState& state, Prompter& prompter, ExerciseEditorControls controls,
                        IExerciseEditorHost& host);
    ~ExerciseEditorLogic();
    ExerciseEditorLogic(const ExerciseEditorLogic&) = delete;
    ExerciseEditorLogic& operator=(const ExerciseEditorLogic&) = delete;

    // Loading the form: the row to edit, or a new one under the next number. An exercise
    // that is not in the library is a fault ("No current record").
    void Load();
    // "Add": a joint typed by the user joins the list, not chosen.
    void cmdNewJoint_Click();
    // OK writes the row and the icon; Cancel writes nothing. True when the form is to go:
    // false when the save could not start (the box has said why), and a fault in the save
    // ends it with nothing stored, the form still open.
    bool cmdOKCancel_Click(const QString& tag);
    // Whatever closed the form: the library list is filled again.
    void Unload();

    // The link to the companion picture editor: its service and topic, and the form's
    // captions for the four labels' values.
    static constexpr const char* kPictureBenchTopic = "Picture Bench|MDIForm1";
    static constexpr std::array<const char*, 4> kLinkCaptions = {
        "Status:", "Source:", "Prev Src:", "SaveAs:"};

    // Opens the links of the four labels to the companion picture editor, when the form
    // loads. A companion that does not answer is reported once; the form then works
    // without the link, and the labels not yet linked stay so.
    void OpenPictureBenchLinks();
    // A double click on one of the three pictures: the companion gets the picture's source,
    // then the file it is to save it as.
    void imgPicture_DblClick(int index);
    // The companion saved a picture: it belongs to the picture last sent. Its source is
    // kept, the picture shown anew, and the status taken.
    void lblLinkStatus_LinkNotify();
    int PictureIndex() const { return pictureIndex_; }

    // The exercise's number, which names its files.
    qint64 ExerciseID() const { return exerciseID_; }
    bool Adding() const { return adding_; }
    // The sources of the three pictures, as the picture editor reported them.
    const std::array<QString, 3>& PictureSource() const { return pictureSource_; }

    // The box shown when the icon or a picture is to be written in a folder that cannot be
    // written: the folder named, and the way to put the pictures where they can be changed.
    static QString UnwritableFolderText(const QString& folder);
    static constexpr const char* kUnwritableFolderTitle = "Pictures Cannot Be Changed";

private:
    void LoadNew();
    void LoadExisting(const QString& number);
    // Each value of the library column once: "SELECT DISTINCT column From ExerciseLibrary".
    QSqlQuery DistinctValues(const QString& column);
    void FillComboFromLibrary(IComboBox& combo, const QString& column);
    static void SelectComboItem(IComboBox& combo, const QString& value);
    void FillJointList(IListBox& list, const QString& column);
    static void SelectJoints(IListBox& list, const QString& joints);
    QString JointText() const;
    int IconSource() const;
    // The save of OK, in its order; false when it could not start.
    bool Save();

    AppState& state_;
    Prompter& prompter_;
    ExerciseEditorControls c_;
    IExerciseEditorHost& host_;
    bool adding_ = false;
    qint64 exerciseID_ = 0;
    // A new exercise's number, held while the editor is open.
    std::unique_ptr<NewExerciseNumber> newNumber_;
    std::array<QString, 3> pictureSource_;
    int pictureIndex_ = 0;
};

} // namespace tarvex
