#include "ui/PatientDialogs.h"

#include "ui/Guarded.h"

#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QMouseEvent>
#include <QPushButton>
#include <QVBoxLayout>

namespace tarvex {

QPushButton* AddTaggedButton(QWidget* parent, QtButtons& buttons, const QString& tag,
                             const QString& tip) {
    auto* button = new QPushButton(tag, parent);
    button->setObjectName(QStringLiteral("cmd") + tag);
    button->setProperty("tag", tag);
    if (!tip.isEmpty())
        button->setToolTip(tip);
    button->setAutoDefault(false);
    buttons.Add(tag, button);
    return button;
}

void LayOutListWithButtons(QDialog* dialog, QTreeWidget* list, const QStringList& headers,
                           int firstColumnWidth, QtButtons& buttons, const QStringList& tags,
                           const std::function<void(const QString&)>& run) {
    list->setObjectName(QStringLiteral("lstPatients"));
    list->setHeaderLabels(headers);
    list->setRootIsDecorated(false);
    list->setUniformRowHeights(true);
    list->setAlternatingRowColors(true);
    list->header()->setSectionsClickable(true);
    list->setColumnWidth(0, firstColumnWidth);
    auto* column = new QVBoxLayout;
    for (const QString& tag : tags) {
        QPushButton* button = AddTaggedButton(dialog, buttons, tag);
        QObject::connect(button, &QPushButton::clicked, dialog, Guarded([run, tag] { run(tag); }));
        column->addWidget(button);
    }
    column->addStretch();
    auto* layout = new QHBoxLayout(dialog);
    layout->addWidget(list, 1);
    layout->addLayout(column);
}

namespace {

// Runs an action on a click in the empty part of a list, as a click on a row does.
class EmptyAreaClickFilter : public QObject {
public:
    EmptyAreaClickFilter(QTreeWidget* list, std::function<void()> action)
        : QObject(list), list_(list), action_(std::move(action)) {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::MouseButtonRelease) {
            const QPoint at = static_cast<QMouseEvent*>(event)->position().toPoint();
            if (!list_->itemAt(at))
                RunGuarded(action_);
        }
        return QObject::eventFilter(watched, event);
    }

private:
    QTreeWidget* list_;
    std::function<void()> action_;
};

// Runs an action when the space bar goes down in the object it watches.
class SpaceKeyFilter : public QObject {
public:
    SpaceKeyFilter(QObject* parent, std::function<void()> action)
        : QObject(parent), action_(std::move(action)) {}

protected:
    bool eventFilter(QObject* watched, QEvent* event) override {
        if (event->type() == QEvent::KeyPress &&
            static_cast<QKeyEvent*>(event)->key() == Qt::Key_Space)
            RunGuarded(action_);
        return QObject::eventFilter(watched, event);
    }

private:
    std::function<void()> action_;
};

} // namespace

void ConnectListEvents(QTreeWidget* list, const std::function<void()>& pick,
                       const std::function<void()>& ok, const std::function<void(int)>& sort) {
    list->installEventFilter(new SpaceKeyFilter(list, pick));
    list->viewport()->installEventFilter(new EmptyAreaClickFilter(list, pick));
    QObject::connect(list, &QTreeWidget::itemClicked, list, Guarded([pick] { pick(); }));
    QObject::connect(list, &QTreeWidget::itemDoubleClicked, list, Guarded([ok] { ok(); }));
    QObject::connect(list->header(), &QHeaderView::sectionClicked, list,
                     Guarded([sort](int section) { sort(section); }));
}

SelectPatientDialog::SelectPatientDialog(AppState& state, Shell& shell, Prompter& prompter,
                                         std::function<void()> openEditor, QWidget* parent)
    : FormDialog(parent), lstPatients(new QTreeWidget(this)), list_(lstPatients),
      openEditor_(std::move(openEditor)) {
    setObjectName(QStringLiteral("frmSelectPatient"));
    setWindowTitle(QStringLiteral("Select a Patient"));
    setAttribute(Qt::WA_DeleteOnClose);
    LayOutListWithButtons(this, lstPatients, {QStringLiteral("Name"), QStringLiteral("ID")}, 260,
                          buttons_, {"OK", "Cancel", "New", "Edit", "Delete"},
                          [this](const QString& tag) { Run(tag); });
    resize(520, 380);

    IPatientDialogHost& host = *this;
    logic_ = std::make_unique<SelectPatientLogic>(state, shell, prompter, list_, buttons_, host);
    logic_->Load();
    ConnectListEvents(
        lstPatients, [this] { logic_->lstPatients_Click(); }, [this] { Run(QStringLiteral("OK")); },
        [this](int section) { logic_->lstPatients_ColumnClick(section); });
}

SelectPatientDialog::~SelectPatientDialog() = default;

QPushButton* SelectPatientDialog::Button(const QString& tag) const {
    return findChild<QPushButton*>(QStringLiteral("cmd") + tag);
}

void SelectPatientDialog::Run(const QString& tag) {
    logic_->cmdOKCancel(tag); // a fault ends here, and the dialog stays open
    EndByButton();
}

void SelectPatientDialog::ShowEditPatient() {
    if (openEditor_)
        openEditor_();
}

void SelectPatientDialog::CancelByFrame() {
    logic_->cmdOKCancel(QStringLiteral("Cancel"));
}

EditPatientDialog::EditPatientDialog(AppState& state, Shell& shell, QWidget* parent)
    : FormDialog(parent), txtLastName(new QLineEdit(this)), txtFirstName(new QLineEdit(this)),
      txtID(new QLineEdit(this)), last_(txtLastName), first_(txtFirstName), id_(txtID) {
    setObjectName(QStringLiteral("frmEditPatient"));
    setWindowTitle(QStringLiteral("Patient Information"));
    setAttribute(Qt::WA_DeleteOnClose);
    txtLastName->setObjectName(QStringLiteral("txtLastName"));
    txtFirstName->setObjectName(QStringLiteral("txtFirstName"));
    txtID->setObjectName(QStringLiteral("txtID"));
    txtLastName->setMaxLength(EditPatientLogic::kNameLimit);
    txtFirstName->setMaxLength(EditPatientLogic::kNameLimit);
    auto* form = new QFormLayout;
    form->addRow(QStringLiteral("Last Name:"), txtLastName);
    form->addRow(QStringLiteral("First Name:"), txtFirstName);
    form->addRow(QStringLiteral("ID:"), txtID);
    QtButtons buttons;
    cmdOK = AddTaggedButton(this, buttons, QStringLiteral("OK"));
    cmdCancel = AddTaggedButton(this, buttons, QStringLiteral("Cancel"));
    cmdOK->setDefault(true);
    auto* row = new QHBoxLayout;
    row->addStretch();
    row->addWidget(cmdOK);
    row->addWidget(cmdCancel);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addLayout(row);
    setMinimumWidth(380);

    logic_ = std::make_unique<EditPatientLogic>(state, shell, last_, first_, id_);
    logic_->Load();
    connect(cmdOK, &QPushButton::clicked, this, Guarded([this] { Run(QStringLiteral("OK")); }));
    connect(cmdCancel, &QPushButton::clicked, this,
            Guarded([this] { Run(QStringLiteral("Cancel")); }));
}

EditPatientDialog::~EditPatientDialog() = default;

void EditPatientDialog::Run(const QString& tag) {
    logic_->cmdOKCancel(tag);
    EndByButton();
}

void EditPatientDialog::CancelByFrame() {
    logic_->cmdOKCancel(QStringLiteral("Cancel"));
}

} // namespace tarvex
