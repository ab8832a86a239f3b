#pragma once

#include "support/HelpBook.h"

#include <QHash>
#include <QWidget>

class QLineEdit;
class QListWidget;
class QTabWidget;
class QTextBrowser;
class QToolButton;
class QTreeWidget;
class QTreeWidgetItem;

namespace tarvex {

// The help window: the contents as a tree, the index with a line to type a term in, a
// search over the words of every page, and the page itself with its links. One window
// for the run; F1 in any window opens the page that tells of it.
class HelpWindow : public QWidget {
    Q_OBJECT
public:
    explicit HelpWindow(const QString& folder, QWidget* parent = nullptr);

    // Shows a page of the help; false when the help has no such page.
    bool ShowPage(const QString& file);
    // The page on show ("index.html"), empty when the help could not be read.
    QString CurrentPage() const;
    const HelpBook& Book() const { return book_; }

    QTabWidget* Tabs = nullptr;
    QTreeWidget* Contents = nullptr;
    QLineEdit* IndexLine = nullptr;
    QTreeWidget* IndexList = nullptr;
    QLineEdit* SearchLine = nullptr;
    QListWidget* SearchResults = nullptr;
    QTextBrowser* Page = nullptr;
    QToolButton* cmdBack = nullptr;
    QToolButton* cmdForward = nullptr;
    QToolButton* cmdHome = nullptr;

protected:
    void keyPressEvent(QKeyEvent* event) override;

private:
    void BuildContents();
    void BuildIndex();
    void FindInIndex(const QString& text);
    void OpenIndexItem(QTreeWidgetItem* item);
    void RunSearch();
    void SelectInContents(const QString& file);

    HelpBook book_;
    QHash<QString, QTreeWidgetItem*> contentsItems_; // the contents' item of each page
    bool loaded_ = false;
    QString lastSearch_;
};

} // namespace tarvex
