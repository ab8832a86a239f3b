// The help as the build delivers it beside the program, and the tips.

#include "support/HelpBook.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QSet>
#include <gtest/gtest.h>

using namespace tarvex;

namespace {

QString HelpDir() {
    return QStringLiteral(TARVEX_OUTPUT_DIR "/Help");
}

QString Read(const QString& path) {
    QFile file(path);
    file.open(QIODevice::ReadOnly);
    return QString::fromUtf8(file.readAll());
}

} // namespace

TEST(DeliveredHelp, EveryLinkAndPictureOfEveryPageResolves) {
    HelpBook book;
    ASSERT_TRUE(book.Load(HelpDir())) << book.Error().toStdString();
    EXPECT_GE(book.Contents().size(), 30);
    EXPECT_TRUE(book.BrokenLinks().isEmpty()) << book.BrokenLinks().join("\n").toStdString();
}

TEST(DeliveredHelp, EveryPageIsInTheContentsOnceWithItsOwnTitle) {
    HelpBook book;
    ASSERT_TRUE(book.Load(HelpDir()));
    QSet<QString> listed;
    for (const HelpTopic& topic : book.Contents()) {
        EXPECT_FALSE(listed.contains(topic.File)) << topic.File.toStdString();
        listed.insert(topic.File);
        const QString html = Read(QDir(HelpDir()).filePath(topic.File));
        EXPECT_TRUE(html.contains("<title>" + topic.Title.toHtmlEscaped() + "</title>"))
            << topic.File.toStdString();
        EXPECT_TRUE(html.contains("name=\"keywords\"")) << topic.File.toStdString();
    }
    for (const QString& file : QDir(HelpDir()).entryList({"*.html"}, QDir::Files))
        EXPECT_TRUE(listed.contains(file)) << file.toStdString() << " is not in the contents";
    EXPECT_GE(book.Index().size(), 100);
}

TEST(DeliveredHelp, EveryWindowHasItsPageAndEveryScreenshotIsShown) {
    HelpBook book;
    ASSERT_TRUE(book.Load(HelpDir()));
    for (auto it = HelpPagesByWindow().cbegin(); it != HelpPagesByWindow().cend(); ++it)
        EXPECT_FALSE(book.TitleOf(it.value()).isEmpty()) << it.key().toStdString();
    QString all;
    for (const HelpTopic& topic : book.Contents())
        all += Read(QDir(HelpDir()).filePath(topic.File));
    const QStringList shots = QDir(HelpDir() + "/images").entryList({"*.png"}, QDir::Files);
    EXPECT_GE(shots.size(), 20);
    for (const QString& shot : shots)
        EXPECT_TRUE(all.contains("images/" + shot)) << shot.toStdString() << " is shown nowhere";
}

TEST(DeliveredHelp, TheManualIsMadeFromTheSamePages) {
    const QFileInfo manual(HelpDir() + "/TVX Users Manual.pdf");
    ASSERT_TRUE(manual.isFile());
    EXPECT_GT(manual.size(), 100 * 1024);
    QFile file(manual.filePath());
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    EXPECT_TRUE(file.read(5) == "%PDF-");
}

TEST(DeliveredTips, AtLeastFortyTipsOneALine) {
    const QString text = Read(QStringLiteral(TARVEX_CONTENT_DIR "/TIPOFDAY.TXT"));
    const QStringList lines = text.split('\n', Qt::SkipEmptyParts);
    EXPECT_GE(lines.size(), 40);
    EXPECT_EQ(text.count('\n'), lines.size()); // no empty line, a final line break
    for (const QString& line : lines) {
        EXPECT_LE(line.size(), 300) << line.toStdString();
        EXPECT_GE(line.size(), 20) << line.toStdString();
    }
}
