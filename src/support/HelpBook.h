#pragma once

#include <QHash>
#include <QList>
#include <QString>
#include <QStringList>

namespace tarvex {

// A line of the help's contents: a page, its title and how deep it stands in the tree.
struct HelpTopic {
    int Depth = 0;
    QString File;
    QString Title;
};

// A term of the help's index with the pages that name it.
struct HelpIndexEntry {
    QString Term;
    QStringList Files;
};

// The program's help: pages of HTML in one folder, listed in "contents.txt" one a line as
// "depth|file|title". Each page names its index terms in a keywords line
// (<meta name="keywords" content="term; term">). The book reads them all once and answers
// the contents, the index and the search from memory.
class HelpBook {
public:
    // Reads the folder; false, with Error() saying why, when it has no contents or a page
    // of the contents cannot be read.
    bool Load(const QString& folder);

    QString Folder() const { return folder_; }
    QString Error() const { return error_; }
    const QList<HelpTopic>& Contents() const { return contents_; }
    // The title of a page, empty for a page the contents does not list.
    QString TitleOf(const QString& file) const;
    // The HTML of a page of the contents, as read at Load; empty for any other.
    QString PageHtml(const QString& file) const { return pages_.value(file).Html; }
    // The index: each term, in alphabetical order without regard to case, with the pages
    // that name it, in the order of the contents.
    const QList<HelpIndexEntry>& Index() const { return index_; }
    // The pages that hold every word of the query (without regard to case), those with the
    // most hits first, then in the order of the contents. An empty query finds nothing.
    QStringList Search(const QString& query) const;
    // Every link and picture of every page whose target is missing, as "page: target".
    QStringList BrokenLinks() const;

    static const QString kContentsFile;

private:
    struct Page {
        QString Html;
        QString Words; // the page's text in lower case, for the search
    };
    QString folder_;
    QString error_;
    QList<HelpTopic> contents_;
    QHash<QString, Page> pages_;
    QList<HelpIndexEntry> index_;
};

// The page that tells of a window, by the window's object name ("frmClinic"); the contents
// page for a window without a page of its own.
QString HelpPageFor(const QString& windowName);
// Every window that has a page of its own, with that page.
const QHash<QString, QString>& HelpPagesByWindow();

} // namespace tarvex
