#pragma once

// The Qt side of the control interfaces: each adapter binds one widget (or a set of
// actions) to the interface that the logic uses.

#include "shell/Shell.h"
#include "support/Controls.h"
#include "support/Desktop.h"
#include "support/Prompter.h"

#include <QHash>
#include <QPointer>

#include <QAbstractButton>
#include <QAction>
#include <QCheckBox>
#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTreeWidget>

namespace tarvex {

// Commands by key over actions (toolbar buttons or menu entries).
class QtCommands : public ICommands {
public:
    void Add(const QString& key, QAction* action) { actions_.insert(key, action); }
    QAction* Action(const QString& key) const { return actions_.value(key); }
    void SetEnabled(const QString& key, bool enabled) override;
    bool IsEnabled(const QString& key) const override;

private:
    QHash<QString, QPointer<QAction>> actions_;
};

// Commands by key over push buttons (a dialog's buttons, keyed by their tag).
class QtButtons : public ICommands {
public:
    void Add(const QString& key, QAbstractButton* button) { buttons_.insert(key, button); }
    void SetEnabled(const QString& key, bool enabled) override;
    bool IsEnabled(const QString& key) const override;

private:
    QHash<QString, QPointer<QAbstractButton>> buttons_;
};

// A status bar of label panels.
class QtStatusPanels : public IStatusBar {
public:
    void AddPanel(QLabel* label) { panels_.append(label); }
    void SetPanelText(int panel, const QString& text) override;
    QString PanelText(int panel) const override;
    void Refresh() override;

private:
    QList<QPointer<QLabel>> panels_;
};

class QtWindowTitle : public IWindowTitle {
public:
    explicit QtWindowTitle(QWidget* window) : window_(window) {}
    void SetTitle(const QString& title) override;
    QString Title() const override;

private:
    QPointer<QWidget> window_;
};

class QtLineEdit : public ITextBox {
public:
    explicit QtLineEdit(QLineEdit* edit) : edit_(edit) {}
    QString Text() const override;
    void SetText(const QString& text) override;
    void SetEnabled(bool enabled) override;
    bool IsEnabled() const override;
    void SetCursorPosition(int position) override;

private:
    QPointer<QLineEdit> edit_;
};

class QtPlainTextEdit : public ITextBox {
public:
    explicit QtPlainTextEdit(QPlainTextEdit* edit) : edit_(edit) {}
    QString Text() const override;
    void SetText(const QString& text) override;
    void SetEnabled(bool enabled) override;
    bool IsEnabled() const override;
    void SetCursorPosition(int position) override;

private:
    QPointer<QPlainTextEdit> edit_;
};

class QtCheckBox : public ICheckBox {
public:
    explicit QtCheckBox(QCheckBox* box) : box_(box) {}
    int Value() const override;
    void SetValue(int value) override;

private:
    QPointer<QCheckBox> box_;
};

// A combo box; an editable one takes any text, a fixed list only its items.
class QtComboBox : public IComboBox {
public:
    explicit QtComboBox(QComboBox* box) : box_(box) {}
    void Clear() override;
    void AddItem(const QString& text) override;
    int ListCount() const override;
    QString List(int index) const override;
    QString Text() const override;
    bool SetText(const QString& text) override;
    int ListIndex() const override;
    void SetListIndex(int index) override;
    QString Tag() const override;

private:
    QPointer<QComboBox> box_;
};

// A fixed-list combo box whose entries carry a number in their user data. Changes made
// through the adapter emit none of the widget's signals: the logic runs its click itself.
class QtItemDataCombo : public IItemDataCombo {
public:
    explicit QtItemDataCombo(QComboBox* box) : box_(box) {}
    void Clear() override;
    void AddItem(const QString& text, int32_t itemData) override;
    int ListCount() const override;
    QString List(int index) const override;
    int32_t ItemData(int index) const override;
    int ListIndex() const override;
    void SetListIndex(int index) override;

private:
    QPointer<QComboBox> box_;
};

class QtEnableable : public IEnableable {
public:
    explicit QtEnableable(QWidget* widget) : widget_(widget) {}
    void SetEnabled(bool enabled) override;
    bool IsEnabled() const override;

private:
    QPointer<QWidget> widget_;
};

// A list box over a list widget. Changes made through the adapter emit none of the
// widget's signals, so a handler connected to itemSelectionChanged hears the user only.
// A sorted list keeps its entries in SortsBefore order: AddItem inserts behind the
// entries that sort equal.
class QtListBox : public IListBox {
public:
    explicit QtListBox(QListWidget* list) : list_(list) {}
    void Clear() override;
    void AddItem(const QString& text) override;
    int ListCount() const override;
    QString List(int index) const override;
    bool Selected(int index) const override;
    void SetSelected(int index, bool selected) override;
    QString Tag() const override;
    void SetSorted(bool sorted) { sorted_ = sorted; }
    bool Sorted() const { return sorted_; }

private:
    QPointer<QListWidget> list_;
    bool sorted_ = false;
};

// A report list over a tree widget without children; the key lives in the item's data.
class QtReportList : public IReportList {
public:
    explicit QtReportList(QTreeWidget* tree) : tree_(tree) {}
    void Clear() override;
    void AddRow(const QString& key, const QStringList& columns) override;
    int RowCount() const override;
    QString Key(int row) const override;
    QString Text(int row, int column) const override;
    int SelectedRow() const override;
    void SetSelectedRow(int row) override;
    void SortByColumn(int column) override;

private:
    QPointer<QTreeWidget> tree_;
};

// A caption over a label, a read-only line (for a long path, which scrolls and shows
// whole in its tool tip) or a plain text box (for a text of any length).
class QtCaption : public ILabel {
public:
    explicit QtCaption(QWidget* widget) : widget_(widget) {}
    QString Caption() const override;
    void SetCaption(const QString& caption) override;

private:
    QPointer<QWidget> widget_;
};

// A picture box over a label; the picture is scaled to the label's size.
class QtPicture : public IPicture {
public:
    explicit QtPicture(QLabel* label) : label_(label) {}
    bool LoadFile(const QString& path) override;
    void Clear() override;
    bool HasPicture() const override;

private:
    QPointer<QLabel> label_;
};

// Message and input boxes over QMessageBox and QInputDialog.
class QtPrompter : public Prompter {
public:
    explicit QtPrompter(QWidget* parent) : parent_(parent) {}
    Answer MsgBox(const QString& text, int style, const QString& title) override;
    std::optional<QString> InputBox(const QString& prompt, const QString& title,
                                    const QString& defaultText) override;

private:
    // The window the box belongs to: the one the user works in (the workspace, a dialog)
    // so that the box comes up over it, else the main window.
    QWidget* Owner() const;
    QPointer<QWidget> parent_;
};

class QtDesktop : public IDesktop {
public:
    bool OpenDocument(const QString& path) override;
};

// The tag of a button: its "tag" property, as the logic dispatches on it.
QString ButtonTag(const QObject* button);

// A push button whose caption and tag differ ("Hard Drive" and "HardDrive"), with its
// tool tip when one is given.
QPushButton* TaggedButton(const QString& caption, const QString& tag, const QString& tip,
                          QWidget* parent);

} // namespace tarvex
