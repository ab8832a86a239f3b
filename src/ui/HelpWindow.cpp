#include "ui/HelpWindow.h"

#include "ui/Guarded.h"
#include "ui/ScreenFit.h"

#include <QDir>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QPushButton>
#include <QShortcut>
#include <QSplitter>
#include <QStyle>
#include <QTabWidget>
#include <QTextBrowser>
#include <QToolButton>
#include <QTreeWidget>
#include <QUrl>
#include <QVBoxLayout>

namespace tarvex {

namespace {

constexpr int kFileRole = Qt::UserRole;

QToolButton* NavButton(QStyle::StandardPixmap icon, const QString& text, const QString& tip,
                       QWidget* parent) {
    auto* button = new QToolButton(parent);
    button->setIcon(parent->style()->standardIcon(icon));
    button->setText(text);
    button->setToolTip(tip);
    button->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
    return button;
}

} // namespace

HelpWindow::HelpWindow(const QString& folder, QWidget* parent) : QWidget(parent, Qt::Window) {
    setObjectName(QStringLiteral("frmHelp"));
    setWindowTitle(QStringLiteral("TVX Regimenter Help"));
    setAttribute(Qt::WA_DeleteOnClose);

    cmdBack = NavButton(QStyle::SP_ArrowBack, QStringLiteral("&Back"),
                        QStringLiteral("The page before (Alt+Left)"), this);
    cmdForward = NavButton(QStyle::SP_ArrowForward, QStringLiteral("&Forward"),
                           QStringLiteral("The page after (Alt+Right)"), this);
    cmdHome = NavButton(QStyle::SP_DirHomeIcon, QStringLiteral("&Home"),
                        QStringLiteral("The first page of the help"), this);
    Page = new QTextBrowser(this);
    Page->setObjectName(QStringLiteral("Page"));
    Page->setOpenExternalLinks(true);
    Page->setSearchPaths({folder});

    Contents = new QTreeWidget(this);
    Contents->setObjectName(QStringLiteral("Contents"));
    Contents->setHeaderHidden(true);
    IndexLine = new QLineEdit(this);
    IndexLine->setObjectName(QStringLiteral("IndexLine"));
    IndexLine->setPlaceholderText(QStringLiteral("Type a word to look for"));
    IndexList = new QTreeWidget(this);
    IndexList->setObjectName(QStringLiteral("IndexList"));
    IndexList->setHeaderHidden(true);
    SearchLine = new QLineEdit(this);
    SearchLine->setObjectName(QStringLiteral("SearchLine"));
    SearchLine->setPlaceholderText(QStringLiteral("Words to find, then Return"));
    SearchResults = new QListWidget(this);
    SearchResults->setObjectName(QStringLiteral("SearchResults"));

    auto* indexTab = new QWidget(this);
    auto* indexLayout = new QVBoxLayout(indexTab);
    indexLayout->addWidget(IndexLine);
    indexLayout->addWidget(IndexList);
    auto* searchTab = new QWidget(this);
    auto* searchLayout = new QVBoxLayout(searchTab);
    searchLayout->addWidget(SearchLine);
    searchLayout->addWidget(SearchResults);
    Tabs = new QTabWidget(this);
    Tabs->setObjectName(QStringLiteral("Tabs"));
    Tabs->addTab(Contents, QStringLiteral("&Contents"));
    Tabs->addTab(indexTab, QStringLiteral("&Index"));
    Tabs->addTab(searchTab, QStringLiteral("&Search"));

    auto* splitter = new QSplitter(this);
    splitter->addWidget(Tabs);
    splitter->addWidget(Page);
    splitter->setStretchFactor(1, 1);
    splitter->setSizes({280, 720});
    auto* nav = new QHBoxLayout;
    nav->addWidget(cmdBack);
    nav->addWidget(cmdForward);
    nav->addWidget(cmdHome);
    nav->addStretch();
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(nav);
    layout->addWidget(splitter, 1);
    resize(1000, 640);
    KeepOnScreenWhenShown(this);

    connect(cmdBack, &QToolButton::clicked, Page, &QTextBrowser::backward);
    connect(cmdForward, &QToolButton::clicked, Page, &QTextBrowser::forward);
    connect(cmdHome, &QToolButton::clicked, this,
            Guarded([this] { ShowPage(QStringLiteral("index.html")); }));
    connect(Page, &QTextBrowser::backwardAvailable, cmdBack, &QWidget::setEnabled);
    connect(Page, &QTextBrowser::forwardAvailable, cmdForward, &QWidget::setEnabled);
    connect(Page, &QTextBrowser::sourceChanged, this,
            Guarded([this](const QUrl& url) { SelectInContents(url.fileName()); }));
    connect(Contents, &QTreeWidget::itemActivated, this, Guarded([this](QTreeWidgetItem* item) {
                ShowPage(item->data(0, kFileRole).toString());
            }));
    connect(Contents, &QTreeWidget::itemClicked, this, Guarded([this](QTreeWidgetItem* item) {
                ShowPage(item->data(0, kFileRole).toString());
            }));
    connect(IndexLine, &QLineEdit::textEdited, this,
            Guarded([this](const QString& text) { FindInIndex(text); }));
    connect(IndexLine, &QLineEdit::returnPressed, this,
            Guarded([this] { OpenIndexItem(IndexList->currentItem()); }));
    connect(IndexList, &QTreeWidget::itemActivated, this,
            Guarded([this](QTreeWidgetItem* item) { OpenIndexItem(item); }));
    connect(SearchLine, &QLineEdit::returnPressed, this, Guarded([this] { RunSearch(); }));
    connect(SearchResults, &QListWidget::itemActivated, this,
            Guarded([this](QListWidgetItem* item) {
                ShowPage(item->data(kFileRole).toString());
                const QStringList words = lastSearch_.split(u' ', Qt::SkipEmptyParts);
                if (!words.isEmpty())
                    Page->find(words.first());
            }));
    auto* back = new QShortcut(QKeySequence::Back, this);
    connect(back, &QShortcut::activated, Page, &QTextBrowser::backward);
    auto* forward = new QShortcut(QKeySequence::Forward, this);
    connect(forward, &QShortcut::activated, Page, &QTextBrowser::forward);
    cmdBack->setEnabled(false);
    cmdForward->setEnabled(false);

    loaded_ = book_.Load(folder);
    if (!loaded_) {
        Tabs->setEnabled(false);
        cmdHome->setEnabled(false);
        Page->setPlainText(book_.Error() +
                           QStringLiteral("\n\nThe help is installed with the program. Install "
                                          "the program again to put it back."));
        return;
    }
    BuildContents();
    BuildIndex();
}

void HelpWindow::BuildContents() {
    QList<QTreeWidgetItem*> parents;
    for (const HelpTopic& topic : book_.Contents()) {
        const int depth = std::min(topic.Depth, static_cast<int>(parents.size()));
        parents.resize(depth);
        auto* item = parents.isEmpty() ? new QTreeWidgetItem(Contents, {topic.Title})
                                       : new QTreeWidgetItem(parents.last(), {topic.Title});
        item->setData(0, kFileRole, topic.File);
        contentsItems_.insert(topic.File, item);
        parents.push_back(item);
    }
    Contents->expandAll();
}

void HelpWindow::BuildIndex() {
    for (const HelpIndexEntry& entry : book_.Index()) {
        auto* term = new QTreeWidgetItem(IndexList, {entry.Term});
        if (entry.Files.size() == 1) {
            term->setData(0, kFileRole, entry.Files.first());
            continue;
        }
        for (const QString& file : entry.Files) {
            auto* page = new QTreeWidgetItem(term, {book_.TitleOf(file)});
            page->setData(0, kFileRole, file);
        }
    }
}

void HelpWindow::FindInIndex(const QString& text) {
    for (int i = 0; i < IndexList->topLevelItemCount(); ++i) {
        QTreeWidgetItem* item = IndexList->topLevelItem(i);
        if (item->text(0).startsWith(text, Qt::CaseInsensitive)) {
            IndexList->setCurrentItem(item);
            IndexList->scrollToItem(item, QAbstractItemView::PositionAtTop);
            return;
        }
    }
}

void HelpWindow::OpenIndexItem(QTreeWidgetItem* item) {
    if (!item)
        return;
    // A term of several pages opens its first; its pages are listed under it.
    if (item->data(0, kFileRole).toString().isEmpty() && item->childCount() > 0) {
        item->setExpanded(true);
        item = item->child(0);
    }
    ShowPage(item->data(0, kFileRole).toString());
}

void HelpWindow::RunSearch() {
    lastSearch_ = SearchLine->text();
    SearchResults->clear();
    const QStringList found = book_.Search(lastSearch_);
    for (const QString& file : found) {
        auto* item = new QListWidgetItem(book_.TitleOf(file), SearchResults);
        item->setData(kFileRole, file);
    }
    if (found.isEmpty())
        new QListWidgetItem(QStringLiteral("No page holds all of these words."), SearchResults);
    else
        SearchResults->setCurrentRow(0);
}

bool HelpWindow::ShowPage(const QString& file) {
    const QUrl link(file);
    // A link to a place of the page on show names no page.
    const QString path = link.path().isEmpty() ? CurrentPage() : link.path();
    if (!loaded_ || book_.TitleOf(path).isEmpty())
        return false;
    QUrl page = QUrl::fromLocalFile(QDir(book_.Folder()).filePath(path));
    page.setFragment(link.fragment());
    Page->setSource(page);
    return true;
}

void HelpWindow::keyPressEvent(QKeyEvent* event) {
    // Esc closes the help, as it closes every window of the program.
    if (event->key() == Qt::Key_Escape && event->modifiers() == Qt::NoModifier)
        return static_cast<void>(close());
    QWidget::keyPressEvent(event);
}

QString HelpWindow::CurrentPage() const {
    return Page->source().isEmpty() ? QString() : QUrl(Page->source()).fileName();
}

void HelpWindow::SelectInContents(const QString& file) {
    if (QTreeWidgetItem* item = contentsItems_.value(file))
        Contents->setCurrentItem(item);
}

} // namespace tarvex
