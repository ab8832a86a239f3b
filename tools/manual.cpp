// Makes the user manual, one PDF document, from the pages of the help, so that the two
// always say the same: a title page, the contents, then every page in the order of the
// contents, each on a new sheet.
//
//   tarvex-manual --help-dir DIR --out "TVX Users Manual.pdf"

#include "shell/Splash.h"
#include "support/HelpBook.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QGuiApplication>
#include <QPageLayout>
#include <QPageSize>
#include <QPdfWriter>
#include <QRegularExpression>
#include <QTextDocument>
#include <QUrl>
#include <cstdio>

namespace {

// The body of a page, its links to other pages turned into links within the manual.
QString PageBody(const QString& html) {
    static const QRegularExpression body(QStringLiteral("<body[^>]*>(.*)</body>"),
                                         QRegularExpression::DotMatchesEverythingOption |
                                             QRegularExpression::CaseInsensitiveOption);
    static const QRegularExpression link(QStringLiteral("href=\"([\\w-]+)\\.html(#[\\w-]+)?\""));
    QString inner = body.match(html).captured(1);
    inner.replace(link, QStringLiteral("href=\"#\\1\""));
    return inner;
}

QString ManualHtml(const tarvex::HelpBook& book) {
    QString html = QStringLiteral("<html><body>"
                                  "<p align=\"center\" style=\"margin-top: 200px; font-size: 28pt; "
                                  "font-weight: bold;\">%1</p>"
                                  "<p align=\"center\" style=\"font-size: 18pt;\">User Manual</p>"
                                  "<p align=\"center\">%2</p><p align=\"center\">%3</p>")
                       .arg(tarvex::ProductName(), tarvex::VersionText(), tarvex::CompanyName());
    html += QStringLiteral("<h1 style=\"page-break-before: always;\">Contents</h1>");
    for (const tarvex::HelpTopic& topic : book.Contents()) {
        html +=
            QStringLiteral("<p style=\"margin-left: %1px; margin-top: 2px; margin-bottom: 2px;\">"
                           "<a href=\"#%2\">%3</a></p>")
                .arg(topic.Depth * 24)
                .arg(QFileInfo(topic.File).completeBaseName(), topic.Title.toHtmlEscaped());
    }
    for (const tarvex::HelpTopic& topic : book.Contents()) {
        html +=
            QStringLiteral("<div style=\"page-break-before: always;\"><a name=\"%1\"></a>%2</div>")
                .arg(QFileInfo(topic.File).completeBaseName(), PageBody(book.PageHtml(topic.File)));
    }
    return html + QStringLiteral("</body></html>");
}

int Fail(const QString& message) {
    std::fprintf(stderr, "tarvex-manual: %s\n", qPrintable(message));
    return 1;
}

} // namespace

int main(int argc, char** argv) {
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM"))
        qputenv("QT_QPA_PLATFORM", "offscreen");
    QGuiApplication app(argc, argv);
    const QStringList args = app.arguments();
    const int dirAt = static_cast<int>(args.indexOf(QStringLiteral("--help-dir")));
    const int outAt = static_cast<int>(args.indexOf(QStringLiteral("--out")));
    if (dirAt < 0 || outAt < 0 || dirAt + 1 >= args.size() || outAt + 1 >= args.size()) {
        std::fprintf(stderr, "usage: tarvex-manual --help-dir DIR --out FILE.pdf\n");
        return 2;
    }
    tarvex::HelpBook book;
    if (!book.Load(args.at(dirAt + 1)))
        return Fail(book.Error());
    // A manual with a page's picture or link missing is not made: the help is delivered
    // whole or the build says what is wrong.
    if (const QStringList broken = book.BrokenLinks(); !broken.isEmpty())
        return Fail(QStringLiteral("links that lead nowhere: ") +
                    broken.join(QStringLiteral(", ")));
    const QString out = args.at(outAt + 1);
    const QString partial = out + QStringLiteral(".partial");
    {
        QPdfWriter pdf(partial);
        pdf.setTitle(tarvex::ProductName() + QStringLiteral(" User Manual"));
        pdf.setCreator(tarvex::CompanyName());
        pdf.setPageLayout(QPageLayout(QPageSize(QPageSize::Letter), QPageLayout::Portrait,
                                      QMarginsF(18, 18, 18, 18), QPageLayout::Millimeter));
        // Laid out at the screen's 96 dots an inch, as the help window shows the pages: a
        // picture 600 wide fits the sheet as it fits the window.
        pdf.setResolution(96);
        QTextDocument document;
        document.setPageSize(pdf.pageLayout().paintRectPixels(96).size());
        document.setBaseUrl(QUrl::fromLocalFile(QDir(book.Folder()).absolutePath() + u'/'));
        document.setDefaultFont(QFont(QStringLiteral("Liberation Sans"), 10));
        document.setHtml(ManualHtml(book));
        document.print(&pdf);
    }
    QFile::remove(out);
    if (!QFile::rename(partial, out))
        return Fail(QStringLiteral("cannot write %1").arg(out));
    return 0;
}
