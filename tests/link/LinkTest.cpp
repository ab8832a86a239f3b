// The link to the companion picture editor, both sides over real local sockets.

#include "link/LinkClient.h"
#include "link/LinkServer.h"
#include "support/LinkServerThread.h"

#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QDeadlineTimer>
#include <QElapsedTimer>
#include <QFile>
#include <QJsonObject>
#include <QLocalServer>
#include <QLocalSocket>
#include <QTemporaryDir>
#include <QThread>
#include <QtEndian>

using namespace tarvex;
using tarvex::testing::LinkServerThread;

namespace {

const QString kTopic = QStringLiteral("MDIForm1");
const QStringList kPokeItems = {QStringLiteral("TVXSaveFName"), QStringLiteral("TVXOpenFName")};
const QStringList kAdviseItems = {QStringLiteral("StatFileName"), QStringLiteral("TVXLinkStatus")};

// Every test has a socket folder of its own, so that tests run side by side.
class Link : public ::testing::Test {
protected:
    void SetUp() override {
        ASSERT_TRUE(folder_.isValid());
        qputenv("TARVEX_LINK_DIR", folder_.path().toUtf8());
    }
    void TearDown() override { qunsetenv("TARVEX_LINK_DIR"); }

    QString Service() const { return QStringLiteral("Picture Bench"); }
    QString LinkTopic() const { return Service() + QLatin1Char('|') + kTopic; }
    std::unique_ptr<LinkServerThread> StartServer() {
        auto server =
            std::make_unique<LinkServerThread>(Service(), kTopic, kPokeItems, kAdviseItems);
        EXPECT_TRUE(server->Listening());
        return server;
    }
    // A label linked as the exercise editor links it.
    std::unique_ptr<LinkLabel> Linked(LinkChannels& channels, const QString& item, LinkMode mode) {
        auto label = std::make_unique<LinkLabel>(channels);
        label->SetLinkTopic(LinkTopic());
        label->SetLinkItem(item);
        label->SetLinkMode(mode);
        return label;
    }

    QTemporaryDir folder_;
};

// Lets events come in until the condition holds, at most two seconds.
template <typename Condition> bool WaitFor(Condition condition) {
    const QDeadlineTimer deadline(2000);
    while (!condition() && !deadline.hasExpired())
        QCoreApplication::processEvents(QEventLoop::AllEvents, 20);
    return condition();
}

int FaultNumber(const std::function<void()>& work) {
    try {
        work();
    } catch (const LinkFault& fault) {
        return fault.Number();
    }
    return 0;
}

QByteArray Frame(quint32 length, const QByteArray& body) {
    QByteArray frame(4, '\0');
    qToBigEndian(length, frame.data());
    return frame + body;
}

} // namespace

TEST_F(Link, TheSocketIsNamedByTheServiceInTheChosenFolder) {
    EXPECT_EQ(LinkSocketPath(QStringLiteral("Picture Bench")),
              folder_.filePath(QStringLiteral("tarvex-link-picture-bench")));
}

TEST_F(Link, NoServerGives282WhenTheLinkIsOpened) {
    LinkChannels channels;
    LinkLabel label(channels);
    label.SetLinkTopic(LinkTopic());
    label.SetLinkItem(QStringLiteral("TVXSaveFName"));
    EXPECT_EQ(FaultNumber([&] { label.SetLinkMode(LinkMode::Manual); }), LinkFault::kNoServer);
    EXPECT_EQ(label.Mode(), LinkMode::None);
}

TEST_F(Link, APokeWithoutALinkGives293) {
    LinkChannels channels;
    LinkLabel label(channels);
    label.SetCaption(QStringLiteral("/tmp/a.jpg"));
    EXPECT_EQ(FaultNumber([&] { label.LinkPoke(); }), LinkFault::kNoChannel);
    EXPECT_EQ(FaultNumber([&] { label.LinkRequest(); }), LinkFault::kNoChannel);
}

TEST_F(Link, PokesArriveInTheOrderSentAndRequestsReadTheValue) {
    const auto server = StartServer();
    LinkChannels channels;
    const auto save = Linked(channels, QStringLiteral("TVXSaveFName"), LinkMode::Manual);
    const auto open = Linked(channels, QStringLiteral("TVXOpenFName"), LinkMode::Manual);
    open->SetCaption(QString());
    open->LinkPoke();
    save->SetCaption(QStringLiteral("/pictures/100000_2.JPG"));
    save->LinkPoke();
    const auto pokes = server->Pokes();
    ASSERT_EQ(pokes.size(), 2);
    EXPECT_EQ(pokes[0], qMakePair(QStringLiteral("TVXOpenFName"), QString()));
    EXPECT_EQ(pokes[1],
              qMakePair(QStringLiteral("TVXSaveFName"), QStringLiteral("/pictures/100000_2.JPG")));
    save->SetCaption(QStringLiteral("changed here"));
    save->LinkRequest();
    EXPECT_EQ(save->Caption(), QStringLiteral("/pictures/100000_2.JPG"));
    // One conversation carries all the labels of a window.
    EXPECT_EQ(server->Connections(), 1);
}

TEST_F(Link, AnItemThatTakesNoPokesIsRefused) {
    const auto server = StartServer();
    LinkChannels channels;
    const auto status = Linked(channels, QStringLiteral("TVXLinkStatus"), LinkMode::Manual);
    status->SetCaption(QStringLiteral("x"));
    EXPECT_EQ(FaultNumber([&] { status->LinkPoke(); }), LinkFault::kRefused);
    EXPECT_EQ(server->Value(QStringLiteral("TVXLinkStatus")), QString());
}

TEST_F(Link, AHotLoopCaptionFollowsTheServer) {
    const auto server = StartServer();
    server->SetValue(QStringLiteral("StatFileName"), QStringLiteral("/photos/first.jpg"));
    LinkChannels channels;
    const auto source = Linked(channels, QStringLiteral("StatFileName"), LinkMode::Automatic);
    EXPECT_EQ(source->Caption(), QStringLiteral("/photos/first.jpg"));
    server->SetValue(QStringLiteral("StatFileName"), QStringLiteral("/photos/second.jpg"));
    EXPECT_TRUE(WaitFor([&] { return source->Caption() == QStringLiteral("/photos/second.jpg"); }));
}

TEST_F(Link, AWarmLoopGivesANoticeAndLeavesTheCaption) {
    const auto server = StartServer();
    LinkChannels channels;
    const auto status = Linked(channels, QStringLiteral("TVXLinkStatus"), LinkMode::Notify);
    int notices = 0;
    QObject::connect(status.get(), &LinkLabel::LinkNotify, [&] { ++notices; });
    server->SetValue(QStringLiteral("TVXLinkStatus"), QStringLiteral("Saved 1"));
    ASSERT_TRUE(WaitFor([&] { return notices == 1; }));
    EXPECT_EQ(status->Caption(), QString());
    status->LinkRequest();
    EXPECT_EQ(status->Caption(), QStringLiteral("Saved 1"));
}

TEST_F(Link, TheSourceArrivesBeforeEachNoticeInOrder) {
    const auto server = StartServer();
    LinkChannels channels;
    const auto source = Linked(channels, QStringLiteral("StatFileName"), LinkMode::Automatic);
    const auto status = Linked(channels, QStringLiteral("TVXLinkStatus"), LinkMode::Notify);
    QStringList seen;
    QObject::connect(status.get(), &LinkLabel::LinkNotify, [&] {
        seen << source->Caption();
        status->LinkRequest(); // a handler may talk to the server again
        seen << status->Caption();
    });
    server->Run([&] {}); // the advise loops stand
    for (int i = 1; i <= 3; ++i) {
        server->SetValue(QStringLiteral("StatFileName"), QStringLiteral("/photos/%1.jpg").arg(i));
        server->SetValue(QStringLiteral("TVXLinkStatus"), QStringLiteral("Saved %1").arg(i));
    }
    ASSERT_TRUE(WaitFor([&] { return seen.size() == 6; }));
    EXPECT_EQ(seen, (QStringList{"/photos/1.jpg", "Saved 3", "/photos/2.jpg", "Saved 3",
                                 "/photos/3.jpg", "Saved 3"}));
}

TEST_F(Link, AServerThatDiesGives293OnTheNextPoke) {
    auto server = StartServer();
    LinkChannels channels;
    const auto save = Linked(channels, QStringLiteral("TVXSaveFName"), LinkMode::Manual);
    save->LinkPoke();
    server->Stop();
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(FaultNumber([&] { save->LinkPoke(); }), LinkFault::kNoChannel);
    EXPECT_LT(clock.elapsed(), 3000);
}

// A server that takes the connection and the initiation, then reads a poke and either dies
// at once (closes the connection) or never answers.
class MuteServer {
public:
    enum class OnPoke { Die, Hang };
    explicit MuteServer(OnPoke onPoke) : onPoke_(onPoke) {
        context_.moveToThread(&thread_);
        thread_.start();
        QMetaObject::invokeMethod(
            &context_,
            [this] {
                server_ = std::make_unique<QLocalServer>();
                server_->listen(LinkSocketPath(QStringLiteral("Picture Bench")));
                QObject::connect(server_.get(), &QLocalServer::newConnection, &context_, [this] {
                    QLocalSocket* socket = server_->nextPendingConnection();
                    QObject::connect(socket, &QLocalSocket::readyRead, &context_, [this, socket] {
                        reader_.Append(socket->readAll());
                        while (const auto message = reader_.Next()) {
                            if (message->value(QStringLiteral("op")).toString() == "initiate") {
                                socket->write(
                                    EncodeLinkFrame({{"op", "ack"}, {"id", message->value("id")}}));
                            } else if (onPoke_ == OnPoke::Die) {
                                socket->abort();
                                return;
                            }
                        }
                    });
                });
            },
            Qt::BlockingQueuedConnection);
    }
    ~MuteServer() {
        QMetaObject::invokeMethod(
            &context_, [this] { server_.reset(); }, Qt::BlockingQueuedConnection);
        thread_.quit();
        thread_.wait();
    }

private:
    OnPoke onPoke_;
    QThread thread_;
    QObject context_;
    std::unique_ptr<QLocalServer> server_;
    LinkFrameReader reader_;
};

TEST_F(Link, AServerKilledMidPokeGives293AndNoHang) {
    MuteServer server(MuteServer::OnPoke::Die);
    LinkChannels channels;
    const auto save = Linked(channels, QStringLiteral("TVXSaveFName"), LinkMode::Manual);
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(FaultNumber([&] { save->LinkPoke(); }), LinkFault::kNoChannel);
    EXPECT_EQ(FaultNumber([&] { save->LinkPoke(); }), LinkFault::kNoChannel);
    EXPECT_LT(clock.elapsed(), 3000);
}

TEST_F(Link, AServerThatNeverAnswersGives286WithinTheTimeAllowed) {
    MuteServer server(MuteServer::OnPoke::Hang);
    LinkChannels channels(LinkTimeouts{500, 300});
    const auto save = Linked(channels, QStringLiteral("TVXSaveFName"), LinkMode::Manual);
    QElapsedTimer clock;
    clock.start();
    EXPECT_EQ(FaultNumber([&] { save->LinkPoke(); }), LinkFault::kTimeout);
    EXPECT_GE(clock.elapsed(), 300);
    EXPECT_LT(clock.elapsed(), 2000);
}

TEST_F(Link, AnUnknownTopicIsNoServer) {
    const auto server = StartServer();
    LinkChannels channels;
    LinkLabel label(channels);
    label.SetLinkTopic(Service() + QStringLiteral("|OtherForm"));
    label.SetLinkItem(QStringLiteral("TVXSaveFName"));
    EXPECT_EQ(FaultNumber([&] { label.SetLinkMode(LinkMode::Manual); }), LinkFault::kNoServer);
}

TEST_F(Link, GarbageHalfAndOversizedMessagesAreDroppedAndTheServerStaysUp) {
    const auto server = StartServer();
    const QString path = LinkSocketPath(Service());
    const auto sendRaw = [&](const QByteArray& bytes) {
        QLocalSocket raw;
        raw.connectToServer(path);
        ASSERT_TRUE(raw.waitForConnected(1000));
        raw.write(bytes);
        raw.flush();
        raw.waitForBytesWritten(1000);
        QThread::msleep(50);
        raw.disconnectFromServer();
    };
    const auto whole = [](const QByteArray& body) {
        return Frame(static_cast<quint32>(body.size()), body);
    };
    sendRaw(whole("not json at all"));                // no JSON
    sendRaw(whole("[1,2]"));                          // JSON, no object
    sendRaw(whole("{\"op\":\"poke\",\"id\":\"a\"}")); // no number as id
    sendRaw(Frame(200000, QByteArray(100, 'x')));     // oversized
    sendRaw(Frame(0, QByteArray()));                  // empty
    sendRaw(Frame(40, "{\"op\":\"poke\""));           // half a frame
    sendRaw(QByteArray("\x00\x00", 2));               // half a length
    EXPECT_TRUE(WaitFor([&] { return server->Dropped() == 5; }));
    EXPECT_TRUE(WaitFor([&] { return server->Connections() == 0; }));
    EXPECT_TRUE(server->Pokes().isEmpty());

    LinkChannels channels;
    const auto open = Linked(channels, QStringLiteral("TVXOpenFName"), LinkMode::Manual);
    open->SetCaption(QStringLiteral("/photos/a.jpg"));
    open->LinkPoke();
    EXPECT_EQ(server->Value(QStringLiteral("TVXOpenFName")), QStringLiteral("/photos/a.jpg"));
}

TEST_F(Link, AnOperationBeforeInitiationIsRefused) {
    const auto server = StartServer();
    QLocalSocket raw;
    raw.connectToServer(LinkSocketPath(Service()));
    ASSERT_TRUE(raw.waitForConnected(1000));
    raw.write(
        EncodeLinkFrame({{"op", "poke"}, {"id", 7}, {"item", "TVXOpenFName"}, {"value", "x"}}));
    LinkFrameReader reader;
    std::optional<QJsonObject> answer;
    const QDeadlineTimer deadline(2000);
    while (!answer && !deadline.hasExpired()) {
        raw.waitForReadyRead(100);
        reader.Append(raw.readAll());
        answer = reader.Next();
    }
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->value("op").toString(), QStringLiteral("nack"));
    EXPECT_EQ(answer->value("id").toInt(), 7);
    EXPECT_EQ(server->Value(QStringLiteral("TVXOpenFName")), QString());
}

TEST_F(Link, TwoClientsAtOnceEachGetTheirLoops) {
    const auto server = StartServer();
    LinkChannels first;
    LinkChannels second;
    const auto a = Linked(first, QStringLiteral("StatFileName"), LinkMode::Automatic);
    const auto b = Linked(second, QStringLiteral("StatFileName"), LinkMode::Automatic);
    EXPECT_EQ(server->Connections(), 2);
    server->SetValue(QStringLiteral("StatFileName"), QStringLiteral("/photos/both.jpg"));
    EXPECT_TRUE(WaitFor([&] {
        return a->Caption() == QStringLiteral("/photos/both.jpg") &&
               b->Caption() == QStringLiteral("/photos/both.jpg");
    }));
}

TEST_F(Link, ASecondWindowLinksAgainAfterTheFirstIsGone) {
    const auto server = StartServer();
    {
        LinkChannels channels;
        const auto status = Linked(channels, QStringLiteral("TVXLinkStatus"), LinkMode::Notify);
        EXPECT_EQ(server->Connections(), 1);
    }
    EXPECT_TRUE(WaitFor([&] { return server->Connections() == 0; }));
    LinkChannels channels;
    const auto status = Linked(channels, QStringLiteral("TVXLinkStatus"), LinkMode::Notify);
    int notices = 0;
    QObject::connect(status.get(), &LinkLabel::LinkNotify, [&] { ++notices; });
    server->SetValue(QStringLiteral("TVXLinkStatus"), QStringLiteral("Saved"));
    EXPECT_TRUE(WaitFor([&] { return notices == 1; }));
    EXPECT_EQ(server->Connections(), 1);
}

TEST_F(Link, ASecondServerForTheServiceDoesNotListenAndALeftoverSocketIsTakenOver) {
    {
        const auto server = StartServer();
        LinkServer second(Service(), kTopic);
        EXPECT_FALSE(second.Listen());
        EXPECT_TRUE(second.Error().contains(QStringLiteral("already serves")));
    }
    // A file left where the socket was, as by a server that died.
    QFile leftover(LinkSocketPath(Service()));
    if (!leftover.exists()) {
        ASSERT_TRUE(leftover.open(QIODevice::WriteOnly));
        leftover.close();
    }
    LinkServer third(Service(), kTopic);
    EXPECT_TRUE(third.Listen()) << third.Error().toStdString();
}
