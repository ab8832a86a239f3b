#include "ui/QtControls.h"

#include "support/Fault.h"
#include "support/Pictures.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QComboBox>
#include <QDesktopServices>
#include <QImageReader>
#include <QInputDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QSignalBlocker>
#include <QTreeWidget>
#include <QUrl>
#include <algorithm>

namespace tarvex {

// --- commands, status, title

void QtCommands::SetEnabled(const QString& key, bool enabled) {
    if (QAction* action = actions_.value(key))
        action->setEnabled(enabled);
}

bool QtCommands::IsEnabled(const QString& key) const {
    const QAction* action = actions_.value(key);
    return action && action->isEnabled();
}

void QtButtons::SetEnabled(const QString& key, bool enabled) {
    if (QAbstractButton* button = buttons_.value(key))
        button->setEnabled(enabled);
}

bool QtButtons::IsEnabled(const QString& key) const {
    const QAbstractButton* button = buttons_.value(key);
    return button && button->isEnabled();
}

void QtStatusPanels::SetPanelText(int panel, const QString& text) {
    if (panel >= 0 && panel < panels_.size() && panels_[panel])
        panels_[panel]->setText(text);
}

QString QtStatusPanels::PanelText(int panel) const {
    return panel >= 0 && panel < panels_.size() && panels_[panel] ? panels_[panel]->text()
                                                                  : QString();
}

void QtStatusPanels::Refresh() {
    QCoreApplication::processEvents(QEventLoop::ExcludeUserInputEvents);
}

void QtWindowTitle::SetTitle(const QString& title) {
    if (window_)
        window_->setWindowTitle(title);
}

QString QtWindowTitle::Title() const {
    return window_ ? window_->windowTitle() : QString();
}

// --- text boxes, check boxes

QString QtLineEdit::Text() const {
    return edit_ ? edit_->text() : QString();
}
void QtLineEdit::SetText(const QString& text) {
    if (edit_)
        edit_->setText(text);
}
void QtLineEdit::SetEnabled(bool enabled) {
    if (edit_)
        edit_->setEnabled(enabled);
}
bool QtLineEdit::IsEnabled() const {
    return edit_ && edit_->isEnabled();
}
void QtLineEdit::SetCursorPosition(int position) {
    if (edit_)
        edit_->setCursorPosition(position);
}

// A box of several lines gives its breaks as the program's own texts have them (CR LF),
// and shows stored breaks of either kind as lines.
QString QtPlainTextEdit::Text() const {
    if (!edit_)
        return QString();
    QString text = edit_->toPlainText();
    text.replace(u'\n', QStringLiteral("\r\n"));
    return text;
}
void QtPlainTextEdit::SetText(const QString& text) {
    QString shown = text;
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
    if (!edit_ || edit_->toPlainText() == shown)
        return;
    edit_->setPlainText(shown);
    // Typing goes on after what was put in, as in a one-line box.
    edit_->moveCursor(QTextCursor::End);
}
void QtPlainTextEdit::SetEnabled(bool enabled) {
    if (edit_)
        edit_->setEnabled(enabled);
}
bool QtPlainTextEdit::IsEnabled() const {
    return edit_ && edit_->isEnabled();
}
void QtPlainTextEdit::SetCursorPosition(int position) {
    if (!edit_)
        return;
    // The position counts CR LF as two characters, the box as one.
    const qsizetype breaks = Text().left(position).count(u'\r');
    const int shown = position - static_cast<int>(breaks);
    QTextCursor cursor = edit_->textCursor();
    cursor.setPosition(qBound(0, shown, static_cast<int>(edit_->toPlainText().size())));
    edit_->setTextCursor(cursor);
}

int QtCheckBox::Value() const {
    return box_ && box_->isChecked() ? 1 : 0;
}
void QtCheckBox::SetValue(int value) {
    if (box_)
        box_->setChecked(value > 0);
}

// --- combo box

void QtComboBox::Clear() {
    box_->clear();
}
void QtComboBox::AddItem(const QString& text) {
    box_->addItem(text);
}
int QtComboBox::ListCount() const {
    return box_->count();
}
QString QtComboBox::List(int index) const {
    return box_->itemText(index);
}
QString QtComboBox::Text() const {
    return box_->currentText();
}
bool QtComboBox::SetText(const QString& text) {
    const int index = box_->findText(text, Qt::MatchFixedString);
    if (index >= 0) {
        box_->setCurrentIndex(index);
        return true;
    }
    if (!box_->isEditable())
        return false;
    box_->setCurrentIndex(-1);
    box_->setEditText(text);
    return true;
}
int QtComboBox::ListIndex() const {
    const int index = box_->currentIndex();
    return index >= 0 && box_->itemText(index) == box_->currentText() ? index : -1;
}
void QtComboBox::SetListIndex(int index) {
    box_->setCurrentIndex(index);
}
QString QtComboBox::Tag() const {
    return box_->property("tag").toString();
}

void QtEnableable::SetEnabled(bool enabled) {
    if (widget_)
        widget_->setEnabled(enabled);
}
bool QtEnableable::IsEnabled() const {
    return widget_ && widget_->isEnabled();
}

// --- lists

void QtListBox::Clear() {
    const QSignalBlocker quiet(list_);
    list_->clear();
}
void QtListBox::AddItem(const QString& text) {
    const QSignalBlocker quiet(list_);
    int at = list_->count();
    if (sorted_) {
        at = 0;
        while (at < list_->count() && !SortsBefore(text, list_->item(at)->text()))
            ++at;
    }
    list_->insertItem(at, text);
}
int QtListBox::ListCount() const {
    return list_->count();
}
QString QtListBox::List(int index) const {
    const QListWidgetItem* item = list_->item(index);
    return item ? item->text() : QString();
}
bool QtListBox::Selected(int index) const {
    const QListWidgetItem* item = list_->item(index);
    return item && item->isSelected();
}
void QtListBox::SetSelected(int index, bool selected) {
    const QSignalBlocker quiet(list_);
    if (QListWidgetItem* item = list_->item(index))
        item->setSelected(selected);
}
QString QtListBox::Tag() const {
    return list_->property("tag").toString();
}

void QtReportList::Clear() {
    tree_->clear();
}
void QtReportList::AddRow(const QString& key, const QStringList& columns) {
    auto* item = new QTreeWidgetItem(tree_, columns);
    item->setData(0, Qt::UserRole, key);
}
int QtReportList::RowCount() const {
    return tree_->topLevelItemCount();
}
QString QtReportList::Key(int row) const {
    const QTreeWidgetItem* item = tree_->topLevelItem(row);
    return item ? item->data(0, Qt::UserRole).toString() : QString();
}
QString QtReportList::Text(int row, int column) const {
    const QTreeWidgetItem* item = tree_->topLevelItem(row);
    return item ? item->text(column) : QString();
}
int QtReportList::SelectedRow() const {
    QTreeWidgetItem* item = tree_->currentItem();
    return item ? tree_->indexOfTopLevelItem(item) : -1;
}
void QtReportList::SetSelectedRow(int row) {
    QTreeWidgetItem* item = tree_->topLevelItem(row);
    tree_->setCurrentItem(item);
    if (!item)
        tree_->clearSelection();
}
void QtReportList::SortByColumn(int column) {
    tree_->sortItems(column, Qt::AscendingOrder);
}

// --- combo with item data

void QtItemDataCombo::Clear() {
    const QSignalBlocker quiet(box_);
    box_->clear();
}
void QtItemDataCombo::AddItem(const QString& text, int32_t itemData) {
    const QSignalBlocker quiet(box_);
    box_->addItem(text, itemData);
}
int QtItemDataCombo::ListCount() const {
    return box_->count();
}
QString QtItemDataCombo::List(int index) const {
    return box_->itemText(index);
}
int32_t QtItemDataCombo::ItemData(int index) const {
    if (index < 0 || index >= box_->count())
        throw BoundsFault(QStringLiteral("Invalid property array index (%1)").arg(index));
    return box_->itemData(index).toInt();
}
int QtItemDataCombo::ListIndex() const {
    return box_->currentIndex();
}
void QtItemDataCombo::SetListIndex(int index) {
    const QSignalBlocker quiet(box_);
    box_->setCurrentIndex(index);
}

// --- picture

bool QtPicture::LoadFile(const QString& path) {
    QImageReader reader(path);
    const QImage image = ReadPictureAtMost(reader, label_->size() * label_->devicePixelRatio());
    if (image.isNull()) {
        Clear();
        return false;
    }
    label_->setPixmap(QPixmap::fromImage(
        image.scaled(label_->size(), Qt::KeepAspectRatio, Qt::SmoothTransformation)));
    return true;
}
void QtPicture::Clear() {
    label_->clear();
}
bool QtPicture::HasPicture() const {
    return !label_->pixmap().isNull();
}

// --- message boxes

QWidget* QtPrompter::Owner() const {
    if (QWidget* modal = QApplication::activeModalWidget())
        return modal;
    QWidget* active = QApplication::activeWindow();
    return active && active->isVisible() ? active : parent_.data();
}

Answer QtPrompter::MsgBox(const QString& text, int style, const QString& title) {
    QMessageBox box(Owner());
    box.setWindowTitle(title);
    // A carriage return alone broke the line in the classic boxes, as a line feed does.
    QString shown = text;
    shown.replace(QStringLiteral("\r\n"), QStringLiteral("\n")).replace(u'\r', u'\n');
    box.setText(shown);
    switch (style & 0x70) {
    case msg::Critical:
        box.setIcon(QMessageBox::Critical);
        break;
    case msg::Question:
        box.setIcon(QMessageBox::Question);
        break;
    case msg::Exclamation:
        box.setIcon(QMessageBox::Warning);
        break;
    case msg::Information:
        box.setIcon(QMessageBox::Information);
        break;
    default:
        break;
    }
    struct Button {
        QMessageBox::StandardButton button;
        Answer answer;
    };
    QList<Button> buttons;
    switch (style & 0x7) {
    case msg::OkCancel:
        buttons = {{QMessageBox::Ok, Answer::Ok}, {QMessageBox::Cancel, Answer::Cancel}};
        break;
    case msg::AbortRetryIgnore:
        buttons = {{QMessageBox::Abort, Answer::Abort},
                   {QMessageBox::Retry, Answer::Retry},
                   {QMessageBox::Ignore, Answer::Ignore}};
        break;
    case msg::YesNoCancel:
        buttons = {{QMessageBox::Yes, Answer::Yes},
                   {QMessageBox::No, Answer::No},
                   {QMessageBox::Cancel, Answer::Cancel}};
        break;
    case msg::YesNo:
        buttons = {{QMessageBox::Yes, Answer::Yes}, {QMessageBox::No, Answer::No}};
        break;
    case msg::RetryCancel:
        buttons = {{QMessageBox::Retry, Answer::Retry}, {QMessageBox::Cancel, Answer::Cancel}};
        break;
    default:
        buttons = {{QMessageBox::Ok, Answer::Ok}};
        break;
    }
    QMessageBox::StandardButtons all;
    for (const Button& b : buttons)
        all |= b.button;
    box.setStandardButtons(all);
    const int defaultIndex = (style & msg::DefaultButton3)   ? 2
                             : (style & msg::DefaultButton2) ? 1
                                                             : 0;
    box.setDefaultButton(buttons.value(defaultIndex, buttons.first()).button);
    const auto pressed = static_cast<QMessageBox::StandardButton>(box.exec());
    for (const Button& b : buttons) {
        if (b.button == pressed)
            return b.answer;
    }
    // Closing the box counts as its cancel button, or as its only button.
    for (const Button& b : buttons) {
        if (b.answer == Answer::Cancel || b.answer == Answer::No)
            return b.answer;
    }
    return buttons.first().answer;
}

std::optional<QString> QtPrompter::InputBox(const QString& prompt, const QString& title,
                                            const QString& defaultText) {
    bool ok = false;
    const QString text =
        QInputDialog::getText(Owner(), title, prompt, QLineEdit::Normal, defaultText, &ok);
    if (!ok)
        return std::nullopt;
    return text;
}

bool QtDesktop::OpenDocument(const QString& path) {
    return QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

QString QtCaption::Caption() const {
    if (auto* label = qobject_cast<QLabel*>(widget_))
        return label->text();
    if (auto* line = qobject_cast<QLineEdit*>(widget_))
        return line->text();
    if (auto* text = qobject_cast<QPlainTextEdit*>(widget_))
        return text->toPlainText();
    return QString();
}

void QtCaption::SetCaption(const QString& caption) {
    if (auto* label = qobject_cast<QLabel*>(widget_))
        return label->setText(caption);
    if (auto* line = qobject_cast<QLineEdit*>(widget_)) {
        line->setText(caption);
        line->setCursorPosition(0);
        line->setToolTip(caption);
        return;
    }
    if (auto* text = qobject_cast<QPlainTextEdit*>(widget_))
        text->setPlainText(caption);
}

QString ButtonTag(const QObject* button) {
    return button ? button->property("tag").toString() : QString();
}

QPushButton* TaggedButton(const QString& caption, const QString& tag, const QString& tip,
                          QWidget* parent) {
    auto* button = new QPushButton(caption, parent);
    button->setProperty("tag", tag);
    if (!tip.isEmpty())
        button->setToolTip(tip);
    return button;
}

} // namespace tarvex
