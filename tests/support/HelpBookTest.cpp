#include "support/HelpBook.h"

#include <QDir>
#include <QFile>
#include <QTemporaryDir>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

void Write(const QString& path, const QString& text) {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(text.toUtf8());
}

QString Page(const QString& title, const QString& keywords, const QString& body) {
    return QStringLiteral("<html><head><meta charset=\"utf-8\"><title>%1</title>"
                          "<meta name=\"keywords\" content=\"%2\"></head><body><h1>%1</h1>%3"
                          "</body></html>")
        .arg(title, keywords, body);
}

// A small book: a welcome page with two pages under it.
struct Book {
    Book() {
        Write(dir.filePath("contents.txt"),
              "0|index.html|Welcome\n1|patients.html|Patients\n1|print.html|Printing\n");
        Write(dir.filePath("index.html"), Page("Welcome", "start; Patient, adding",
                                               "<p>See <a href=\"patients.html\">patients</a> and "
                                               "<a href=\"print.html#sheets\">sheets</a>.</p>"));
        Write(dir.filePath("patients.html"),
              Page("Patients", "patient, adding; Delete",
                   "<p>Add a patient. A patient has a program; the patient list.</p>"
                   "<img src=\"images/patients.png\">"));
        Write(dir.filePath("print.html"),
              Page("Printing", "print; sheets",
                   "<a name=\"sheets\"></a><p>Print the program's sheets for the patient.</p>"));
        Write(dir.filePath("images/patients.png"), "png");
        loaded = book.Load(dir.path());
    }
    QTemporaryDir dir;
    HelpBook book;
    bool loaded = false;
};

} // namespace

TEST(HelpBook, ReadsTheContentsInOrderWithTheirDepth) {
    Book b;
    ASSERT_TRUE(b.loaded) << b.book.Error().toStdString();
    ASSERT_EQ(b.book.Contents().size(), 3);
    EXPECT_EQ(b.book.Contents()[1].File, "patients.html");
    EXPECT_EQ(b.book.Contents()[1].Depth, 1);
    EXPECT_EQ(b.book.TitleOf("print.html"), "Printing");
    EXPECT_EQ(b.book.TitleOf("other.html"), "");
}

TEST(HelpBook, TheIndexMergesTermsWithoutRegardToCaseAndSortsThem) {
    Book b;
    QStringList terms;
    for (const HelpIndexEntry& entry : b.book.Index())
        terms << entry.Term;
    EXPECT_EQ(terms, (QStringList{"Delete", "Patient, adding", "print", "sheets", "start"}));
    EXPECT_EQ(b.book.Index()[1].Files, (QStringList{"index.html", "patients.html"}));
}

TEST(HelpBook, SearchFindsPagesWithEveryWordMostHitsFirst) {
    Book b;
    EXPECT_EQ(b.book.Search("PATIENT"), (QStringList{"patients.html", "index.html", "print.html"}));
    EXPECT_EQ(b.book.Search("patient sheets"), (QStringList{"index.html", "print.html"}));
    EXPECT_TRUE(b.book.Search("wheelchair").isEmpty());
    EXPECT_TRUE(b.book.Search("  ").isEmpty());
}

TEST(HelpBook, EveryLinkThatDoesNotResolveIsNamed) {
    Book b;
    EXPECT_TRUE(b.book.BrokenLinks().isEmpty()) << b.book.BrokenLinks().join(", ").toStdString();
    Write(b.dir.filePath("print.html"),
          Page("Printing", "print",
               "<a href=\"gone.html\">x</a><a href=\"index.html#nowhere\">y</a>"
               "<img src=\"images/gone.png\"><a href=\"mailto:a@b.example\">z</a>"));
    ASSERT_TRUE(b.book.Load(b.dir.path()));
    EXPECT_EQ(b.book.BrokenLinks(),
              (QStringList{"index.html: print.html#sheets", "print.html: gone.html",
                           "print.html: index.html#nowhere", "print.html: images/gone.png"}));
}

TEST(HelpBook, MissingHelpFilesAreReportedNotShownEmpty) {
    QTemporaryDir dir;
    HelpBook book;
    EXPECT_FALSE(book.Load(dir.filePath("Help")));
    EXPECT_TRUE(book.Error().startsWith("The help files were not found in "))
        << book.Error().toStdString();
    Write(dir.filePath("Help/contents.txt"), "0|index.html|Welcome\n");
    EXPECT_FALSE(book.Load(dir.filePath("Help")));
    EXPECT_TRUE(book.Error().startsWith("The help page index.html is missing"));
}

TEST(HelpBook, AWindowWithoutAPageOfItsOwnOpensTheContents) {
    EXPECT_EQ(HelpPageFor("frmClinic"), "clinic-info.html");
    EXPECT_EQ(HelpPageFor("frmSplash"), "index.html");
}
