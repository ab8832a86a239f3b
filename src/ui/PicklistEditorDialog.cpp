#include "ui/PicklistEditorDialog.h"

#include "ui/Guarded.h"
#include "ui/PatientDialogs.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPushButton>
#include <QStatusBar>
#include <QStyle>
#include <QTreeView>
#include <QVBoxLayout>

namespace tarvex {

PicklistEditorDialog::PicklistEditorDialog(AppState& state, QWidget* parent)
    : FormDialog(parent), tvwDB(new QTreeView(this)) {
    setObjectName(QStringLiteral("frmPicklistEditor"));
    setWindowTitle(QLatin1String(PicklistEditorLogic::kCaption));
    setAttribute(Qt::WA_DeleteOnClose);
    model_.SetImages({{QStringLiteral("closed"), style()->standardIcon(QStyle::SP_DirClosedIcon)},
                      {QStringLiteral("open"), style()->standardIcon(QStyle::SP_DirOpenIcon)}});
    BuildLayout();
    logic_ = std::make_unique<PicklistEditorLogic>(state, model_, status_);
    ConnectTree();
    logic_->Load();
    resize(460, 480);
}

PicklistEditorDialog::~PicklistEditorDialog() {
    // The view lets go of the model before the model goes.
    tvwDB->setModel(nullptr);
}

void PicklistEditorDialog::BuildLayout() {
    tvwDB->setObjectName(QStringLiteral("tvwDB"));
    tvwDB->setHeaderHidden(true);
    tvwDB->setModel(&model_);
    tvwDB->setEditTriggers(QAbstractItemView::EditKeyPressed | QAbstractItemView::SelectedClicked);
    auto* sbrDB = new QStatusBar(this);
    sbrDB->setObjectName(QStringLiteral("sbrDB"));
    sbrDB->setSizeGripEnabled(false);
    auto* panel = new QLabel(sbrDB);
    panel->setObjectName(QStringLiteral("sbrDBPanel1"));
    sbrDB->addWidget(panel, 1);
    status_.AddPanel(panel);

    auto* column = new QVBoxLayout;
    for (const QString& tag : {QStringLiteral("Add"), QStringLiteral("Delete"),
                               QStringLiteral("OK"), QStringLiteral("Cancel")}) {
        QPushButton* button = AddTaggedButton(this, buttons_, tag);
        connect(button, &QPushButton::clicked, this, Guarded([this, tag] { Run(tag); }));
        column->addWidget(button);
        if (tag == QLatin1String("Delete"))
            column->addStretch();
    }
    auto* row = new QHBoxLayout;
    row->addWidget(tvwDB, 1);
    row->addLayout(column);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(row, 1);
    layout->addWidget(sbrDB);
}

void PicklistEditorDialog::ConnectTree() {
    model_.BeforeLabelEdit = [this](const QString& key) {
        return logic_->tvwDB_BeforeLabelEdit(key);
    };
    model_.AfterLabelEdit = [this](const QString&, const QString& text) {
        return logic_->tvwDB_AfterLabelEdit(text);
    };
    connect(&model_, &TreeModel::SelectRequested, this, [this](const QModelIndex& index) {
        selectingInCode_ = true;
        tvwDB->setCurrentIndex(index);
        selectingInCode_ = false;
    });
    connect(&model_, &TreeModel::ExpandRequested, tvwDB, &QTreeView::expand);
    connect(tvwDB->selectionModel(), &QItemSelectionModel::currentChanged, this,
            Guarded([this](const QModelIndex& current) {
                const QString key = model_.KeyOf(current);
                model_.SetSelectedKey(key);
                // A node chosen by code leaves the path of the one the user chose last.
                if (!selectingInCode_ && !key.isEmpty())
                    logic_->tvwDB_NodeClick(key);
            }));
    connect(tvwDB, &QTreeView::expanded, this, Guarded([this](const QModelIndex& index) {
                logic_->tvwDB_Expand(model_.KeyOf(index));
            }));
    connect(tvwDB, &QTreeView::collapsed, this, Guarded([this](const QModelIndex& index) {
                logic_->tvwDB_Collapse(model_.KeyOf(index));
            }));
}

QPushButton* PicklistEditorDialog::Button(const QString& tag) const {
    return findChild<QPushButton*>(QStringLiteral("cmd") + tag);
}

void PicklistEditorDialog::Run(const QString& tag) {
    if (tag == QLatin1String("Add"))
        return logic_->cmdAdd();
    if (tag == QLatin1String("Delete"))
        return logic_->cmdDelete();
    // A failed save leaves the window open with every change, so nothing typed is lost.
    if (logic_->cmdOKCancel(tag))
        EndByButton(tag == QLatin1String("OK") ? Accepted : Rejected);
}

void PicklistEditorDialog::CancelByFrame() {
    logic_->cmdOKCancel(QStringLiteral("Cancel"));
}

} // namespace tarvex
