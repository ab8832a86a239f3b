// Picture Bench's side of the link: what the exercise editor's pokes do, and what a save
// tells the editor, over a real socket.

#include "picturebench/BenchService.h"
#include "link/LinkWire.h"
#include "picturebench/ScriptedBench.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QImage>
#include <QLocalSocket>
#include <QSignalSpy>
#include <QTemporaryDir>

using namespace tarvex;

namespace {

// A client of the link that talks frame by frame, while the service answers on this same
// thread between its waits.
class RawClient {
public:
    RawClient() {
        socket_.connectToServer(LinkSocketPath(BenchService::kService));
        EXPECT_TRUE(socket_.waitForConnected(1000));
        EXPECT_EQ(Call({{"op", "initiate"}, {"v", 1}, {"topic", "MDIForm1"}}).value("op"), "ack");
    }
    QJsonObject Call(QJsonObject message) {
        message.insert("id", ++id_);
        socket_.write(EncodeLinkFrame(message));
        socket_.flush();
        const QDeadlineTimer deadline(3000);
        while (!deadline.hasExpired()) {
            Pump(20);
            for (qsizetype i = 0; i < pushed_.size(); ++i)
                if (pushed_[i].value("id").toInt() == id_)
                    return pushed_.takeAt(i);
        }
        ADD_FAILURE() << "no answer";
        return {};
    }
    // Lets the service run and keeps what arrives.
    void Pump(int ms) {
        const QDeadlineTimer deadline(ms);
        while (!deadline.hasExpired()) {
            QCoreApplication::processEvents(QEventLoop::AllEvents, 5);
            reader_.Append(socket_.readAll());
            while (const auto message = reader_.Next())
                pushed_.append(*message);
        }
    }
    // The data and notices that came, in order, as "data ITEM=VALUE" and "notice ITEM".
    QStringList Pushed() {
        QStringList seen;
        for (const QJsonObject& message : pushed_) {
            const QString op = message.value("op").toString();
            if (op == "data")
                seen << "data " + message.value("item").toString() + "=" +
                            message.value("value").toString();
            else if (op == "notice")
                seen << "notice " + message.value("item").toString();
        }
        return seen;
    }

private:
    QLocalSocket socket_;
    LinkFrameReader reader_;
    QList<QJsonObject> pushed_;
    int id_ = 0;
};

struct Bench {
    Bench() {
        qputenv("TARVEX_LINK_DIR", dir.path().toUtf8());
        EXPECT_TRUE(service.Listen()) << service.LinkError().toStdString();
    }
    ~Bench() { qunsetenv("TARVEX_LINK_DIR"); }
    QString Photo(QSize size = {1600, 1200}) {
        QImage photo(size, QImage::Format_RGB32);
        photo.fill(Qt::darkCyan);
        const QString path = dir.filePath("photo one.jpg");
        EXPECT_TRUE(photo.save(path, "JPEG"));
        return path;
    }
    QTemporaryDir dir;
    PictureDocument document;
    BenchService service{document};
};

} // namespace

TEST(BenchService, ThePokedSourceOpensAndASaveWritesTheTargetThenTheSourceThenTheStatus) {
    Bench b;
    RawClient client;
    client.Call({{"op", "advise"}, {"item", "StatFileName"}, {"mode", "hot"}});
    client.Call({{"op", "advise"}, {"item", "TVXLinkStatus"}, {"mode", "warm"}});
    QSignalSpy opened(&b.service, &BenchService::SourceOpened);
    const QString photo = b.Photo();
    client.Call({{"op", "poke"}, {"item", "TVXOpenFName"}, {"value", photo}});
    ASSERT_EQ(opened.count(), 1);
    EXPECT_EQ(opened[0][1].toString(), QString());
    EXPECT_EQ(b.document.Image().size(), QSize(1600, 1200));
    const QString target = b.dir.filePath("100000_2.JPG");
    client.Call({{"op", "poke"}, {"item", "TVXSaveFName"}, {"value", target}});
    EXPECT_EQ(b.service.Target(), target);
    EXPECT_TRUE(client.Pushed().isEmpty());

    b.document.Rotate90(true);
    ASSERT_EQ(b.service.Save(), QString());
    EXPECT_EQ(QImage(target).size(), QSize(900, 675));
    client.Pump(200);
    EXPECT_EQ(client.Pushed(), (QStringList{"data StatFileName=" + photo, "notice TVXLinkStatus"}));
    const QString status =
        client.Call({{"op", "request"}, {"item", "TVXLinkStatus"}}).value("value").toString();
    EXPECT_TRUE(status.startsWith("Saved 1 at ")) << status.toStdString();
    EXPECT_FALSE(b.document.IsModified());
}

TEST(BenchService, AnEmptySourceStartsABlankPictureAndAMissingOneSaysWhy) {
    Bench b;
    RawClient client;
    QSignalSpy opened(&b.service, &BenchService::SourceOpened);
    b.document.SetImage(QImage(100, 100, QImage::Format_RGB32));
    client.Call({{"op", "poke"}, {"item", "TVXOpenFName"}, {"value", ""}});
    EXPECT_EQ(b.document.Image().size(), QSize(900, 675));
    EXPECT_EQ(b.document.Image().pixel(450, 300), qRgb(255, 255, 255));
    client.Call({{"op", "poke"}, {"item", "TVXOpenFName"}, {"value", b.dir.filePath("gone.jpg")}});
    ASSERT_EQ(opened.count(), 2);
    EXPECT_FALSE(opened[1][1].toString().isEmpty());
    EXPECT_EQ(b.service.Source(), b.dir.filePath("gone.jpg"));
    EXPECT_EQ(b.document.Image().size(), QSize(900, 675));
}

TEST(BenchService, ASaveThatFailsTellsTheEditorNothing) {
    Bench b;
    RawClient client;
    client.Call({{"op", "advise"}, {"item", "StatFileName"}, {"mode", "hot"}});
    client.Call({{"op", "advise"}, {"item", "TVXLinkStatus"}, {"mode", "warm"}});
    client.Call({{"op", "poke"}, {"item", "TVXOpenFName"}, {"value", b.Photo()}});
    const QString target = b.dir.filePath("no such folder/100000_1.JPG");
    client.Call({{"op", "poke"}, {"item", "TVXSaveFName"}, {"value", target}});
    b.document.Greyscale();
    const QString error = b.service.Save();
    EXPECT_TRUE(error.contains("no such folder")) << error.toStdString();
    client.Pump(200);
    EXPECT_TRUE(client.Pushed().isEmpty());
    EXPECT_FALSE(QFile::exists(target));
    EXPECT_TRUE(b.document.IsModified());
    EXPECT_EQ(b.service.SaveCount(), 0);
}

TEST(BenchService, WithoutATargetASaveIsRefused) {
    Bench b;
    EXPECT_FALSE(b.service.Save().isEmpty());
    EXPECT_EQ(b.service.SaveCount(), 0);
}

TEST(ScriptedBench, RunsTheScriptOnEachPictureSentAndSavesThroughTheLink) {
    Bench b;
    QString error;
    const auto steps = ParseBenchScript("crop 0 0 0.5 0.5\nrotate 90\nsave\n", &error);
    ASSERT_TRUE(error.isEmpty()) << error.toStdString();
    ScriptedBench bench(b.document, b.service, steps);
    RawClient client;
    client.Call({{"op", "advise"}, {"item", "TVXLinkStatus"}, {"mode", "warm"}});
    client.Call({{"op", "poke"}, {"item", "TVXOpenFName"}, {"value", b.Photo()}});
    EXPECT_EQ(bench.Runs(), 0) << "nothing happens before the target is there";
    const QString target = b.dir.filePath("100000_1.JPG");
    client.Call({{"op", "poke"}, {"item", "TVXSaveFName"}, {"value", target}});
    EXPECT_EQ(bench.Runs(), 1);
    EXPECT_TRUE(bench.Errors().isEmpty()) << bench.Errors().join('\n').toStdString();
    EXPECT_EQ(QImage(target).size(), QSize(900, 675));
    client.Pump(200);
    EXPECT_EQ(client.Pushed(), QStringList{"notice TVXLinkStatus"});
    EXPECT_EQ(b.service.SaveCount(), 1);
}
