#include "support/HelpBook.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QTextDocumentFragment>
#include <QUrl>
#include <algorithm>

namespace tarvex {

const QString HelpBook::kContentsFile = QStringLiteral("contents.txt");

namespace {

bool ReadText(const QString& path, QString* text) {
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    *text = QString::fromUtf8(file.readAll());
    return true;
}

QStringList KeywordsOf(const QString& html) {
    static const QRegularExpression meta(
        QStringLiteral("<meta\\s+name=\"keywords\"\\s+content=\"([^\"]*)\""),
        QRegularExpression::CaseInsensitiveOption);
    QStringList terms;
    for (const QString& term : meta.match(html).captured(1).split(u';')) {
        if (!term.trimmed().isEmpty())
            terms << term.trimmed();
    }
    return terms;
}

QStringList Targets(const QString& html) {
    static const QRegularExpression target(QStringLiteral("(?:href|src)=\"([^\"]*)\""),
                                           QRegularExpression::CaseInsensitiveOption);
    QStringList targets;
    for (auto it = target.globalMatch(html); it.hasNext();)
        targets << it.next().captured(1);
    return targets;
}

bool HasAnchor(const QString& html, const QString& anchor) {
    return html.contains(QStringLiteral("name=\"%1\"").arg(anchor)) ||
           html.contains(QStringLiteral("id=\"%1\"").arg(anchor));
}

} // namespace

bool HelpBook::Load(const QString& folder) {
    folder_ = folder;
    contents_.clear();
    pages_.clear();
    index_.clear();
    QString contents;
    if (!ReadText(QDir(folder).filePath(kContentsFile), &contents)) {
        error_ = QStringLiteral("The help files were not found in %1.")
                     .arg(QDir::toNativeSeparators(folder));
        return false;
    }
    QHash<QString, int> termRows; // lower-case term: its row of the index
    for (const QString& line : contents.split(u'\n', Qt::SkipEmptyParts)) {
        const QStringList parts = line.trimmed().split(u'|');
        if (parts.size() != 3)
            continue;
        const HelpTopic topic{parts.at(0).toInt(), parts.at(1), parts.at(2)};
        Page page;
        if (!ReadText(QDir(folder).filePath(topic.File), &page.Html)) {
            error_ = QStringLiteral("The help page %1 is missing from %2.")
                         .arg(topic.File, QDir::toNativeSeparators(folder));
            return false;
        }
        page.Words = QTextDocumentFragment::fromHtml(page.Html).toPlainText().toLower();
        for (const QString& term : KeywordsOf(page.Html)) {
            const QString key = term.toLower();
            if (!termRows.contains(key)) {
                termRows.insert(key, static_cast<int>(index_.size()));
                index_.push_back({term, {}});
            }
            QStringList& files = index_[termRows.value(key)].Files;
            if (!files.contains(topic.File))
                files << topic.File;
        }
        pages_.insert(topic.File, page);
        contents_.push_back(topic);
    }
    std::stable_sort(index_.begin(), index_.end(),
                     [](const HelpIndexEntry& a, const HelpIndexEntry& b) {
                         return a.Term.compare(b.Term, Qt::CaseInsensitive) < 0;
                     });
    error_.clear();
    if (contents_.isEmpty())
        error_ = QStringLiteral("The help's contents in %1 are empty.")
                     .arg(QDir::toNativeSeparators(folder));
    return !contents_.isEmpty();
}

QString HelpBook::TitleOf(const QString& file) const {
    for (const HelpTopic& topic : contents_) {
        if (topic.File == file)
            return topic.Title;
    }
    return QString();
}

QStringList HelpBook::Search(const QString& query) const {
    const QStringList words =
        query.toLower().split(QRegularExpression(QStringLiteral("\\W+")), Qt::SkipEmptyParts);
    if (words.isEmpty())
        return {};
    QList<QPair<int, int>> hits; // hits, row of the contents
    for (int row = 0; row < contents_.size(); ++row) {
        const QString& text = pages_.value(contents_.at(row).File).Words;
        int total = 0;
        for (const QString& word : words) {
            const auto count = static_cast<int>(text.count(word));
            if (count == 0) {
                total = 0;
                break;
            }
            total += count;
        }
        if (total > 0)
            hits.push_back({total, row});
    }
    std::stable_sort(hits.begin(), hits.end(),
                     [](const auto& a, const auto& b) { return a.first > b.first; });
    QStringList files;
    for (const auto& hit : hits)
        files << contents_.at(hit.second).File;
    return files;
}

QStringList HelpBook::BrokenLinks() const {
    QStringList broken;
    for (const HelpTopic& topic : contents_) {
        const QString& html = pages_.value(topic.File).Html;
        for (const QString& target : Targets(html)) {
            const QUrl url(target);
            if (!url.scheme().isEmpty())
                continue;
            const QString file = url.path();
            const QString anchor = url.fragment();
            bool resolves = file.isEmpty() || QFileInfo(QDir(folder_).filePath(file)).isFile();
            if (resolves && !anchor.isEmpty())
                resolves = HasAnchor(file.isEmpty() ? html : pages_.value(file).Html, anchor);
            if (!resolves)
                broken << QStringLiteral("%1: %2").arg(topic.File, target);
        }
    }
    return broken;
}

const QHash<QString, QString>& HelpPagesByWindow() {
    static const QHash<QString, QString> pages = {
        {QStringLiteral("mdiTVX"), QStringLiteral("main-window.html")},
        {QStringLiteral("frmSelectPatient"), QStringLiteral("select-patient.html")},
        {QStringLiteral("frmEditPatient"), QStringLiteral("edit-patient.html")},
        {QStringLiteral("frmListPrograms"), QStringLiteral("program-list.html")},
        {QStringLiteral("frmExerciseSelection"), QStringLiteral("workspace.html")},
        {QStringLiteral("frmExerciseParams"), QStringLiteral("exercise-params.html")},
        {QStringLiteral("frmItems"), QStringLiteral("order-details.html")},
        {QStringLiteral("frmPrintPreview"), QStringLiteral("print-preview.html")},
        {QStringLiteral("frmClinic"), QStringLiteral("clinic-info.html")},
        {QStringLiteral("frmPreferences"), QStringLiteral("preferences.html")},
        {QStringLiteral("frmMedia"), QStringLiteral("media-locations.html")},
        {QStringLiteral("frmCheckMedia"), QStringLiteral("copy-pictures.html")},
        {QStringLiteral("frmProtocolEditor"), QStringLiteral("protocol-editor.html")},
        {QStringLiteral("frmSelectProtocol"), QStringLiteral("select-protocol.html")},
        {QStringLiteral("frmPicklistEditor"), QStringLiteral("picklist-editor.html")},
        {QStringLiteral("frmLibrary"), QStringLiteral("library.html")},
        {QStringLiteral("frmEditExercise"), QStringLiteral("exercise-editor.html")},
        {QStringLiteral("frmLoadPicture"), QStringLiteral("load-picture.html")},
        {QStringLiteral("frmTip"), QStringLiteral("tip-of-the-day.html")},
        {QStringLiteral("frmAbout"), QStringLiteral("about.html")},
        {QStringLiteral("frmSysInfo"), QStringLiteral("system-info.html")},
        {QStringLiteral("frmHelp"), QStringLiteral("help-window.html")},
        {QStringLiteral("frmBackup"), QStringLiteral("backup-window.html")},
    };
    return pages;
}

QString HelpPageFor(const QString& windowName) {
    return HelpPagesByWindow().value(windowName, QStringLiteral("index.html"));
}

} // namespace tarvex
