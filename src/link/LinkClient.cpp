#include "link/LinkClient.h"

#include <QDeadlineTimer>
#include <QJsonValue>
#include <QLocalSocket>
#include <QMetaObject>

namespace tarvex {

namespace {

constexpr const char* kOp = "op";
constexpr const char* kId = "id";
constexpr const char* kItem = "item";
constexpr const char* kValue = "value";

QString Member(const QJsonObject& message, const char* name) {
    return message.value(QLatin1String(name)).toString();
}

} // namespace

LinkConversation::LinkConversation(QString service, QString topic, LinkTimeouts timeouts,
                                   QObject* parent)
    : QObject(parent), service_(std::move(service)), topic_(std::move(topic)), timeouts_(timeouts),
      socket_(std::make_unique<QLocalSocket>()) {
    connect(socket_.get(), &QLocalSocket::readyRead, this, &LinkConversation::Drain);
    connect(socket_.get(), &QLocalSocket::disconnected, this, &LinkConversation::OnDisconnected);
}

LinkConversation::~LinkConversation() {
    socket_->disconnect(this);
    socket_->abort();
}

void LinkConversation::Initiate() {
    const auto noServer = [this](const QString& why) {
        socket_->abort();
        return LinkFault(QStringLiteral("No application answered on the link \"%1|%2\": %3")
                             .arg(service_, topic_, why),
                         LinkFault::kNoServer);
    };
    socket_->connectToServer(LinkSocketPath(service_));
    if (!socket_->waitForConnected(timeouts_.connectMs))
        throw noServer(socket_->errorString());
    open_ = true;
    try {
        Call(QStringLiteral("initiate"),
             QJsonObject{{QStringLiteral("v"), link::kVersion}, {QStringLiteral("topic"), topic_}});
    } catch (const LinkFault& fault) {
        open_ = false;
        throw noServer(fault.Message());
    }
}

bool LinkConversation::IsOpen() const {
    return open_ && socket_->state() == QLocalSocket::ConnectedState;
}

QJsonObject LinkConversation::Call(const QString& op, QJsonObject members) {
    if (!IsOpen())
        throw LinkFault(
            QStringLiteral("The link \"%1|%2\" has no open channel.").arg(service_, topic_),
            LinkFault::kNoChannel);
    const int id = nextId_++;
    members.insert(QLatin1String(kOp), op);
    members.insert(QLatin1String(kId), id);
    ++waiting_;
    struct Leave {
        LinkConversation& c;
        ~Leave() {
            if (--c.waiting_ == 0 && !c.events_.empty())
                QMetaObject::invokeMethod(&c, &LinkConversation::Deliver, Qt::QueuedConnection);
        }
    } leave{*this};
    socket_->write(EncodeLinkFrame(members));
    socket_->flush();
    const QDeadlineTimer deadline(timeouts_.answerMs);
    while (!answers_.contains(id)) {
        if (!IsOpen())
            throw LinkFault(QStringLiteral("The server of \"%1|%2\" closed the link before it "
                                           "answered.")
                                .arg(service_, topic_),
                            LinkFault::kNoChannel);
        if (deadline.hasExpired())
            throw LinkFault(QStringLiteral("The server of \"%1|%2\" did not answer within %3 "
                                           "seconds.")
                                .arg(service_, topic_)
                                .arg(timeouts_.answerMs / 1000.0),
                            LinkFault::kTimeout);
        if (socket_->bytesAvailable() == 0)
            socket_->waitForReadyRead(static_cast<int>(qMax<qint64>(1, deadline.remainingTime())));
        Drain();
    }
    QJsonObject answer = answers_.take(id);
    if (Member(answer, kOp) == QLatin1String("nack"))
        throw LinkFault(QStringLiteral("The server of \"%1|%2\" refused \"%3\": %4")
                            .arg(service_, topic_, op, Member(answer, "error")),
                        LinkFault::kRefused);
    return answer;
}

void LinkConversation::Drain() {
    reader_.Append(socket_->readAll());
    while (const auto message = reader_.Next()) {
        const QString op = Member(*message, kOp);
        if (op == QLatin1String("ack") || op == QLatin1String("nack")) {
            const QJsonValue id = message->value(QLatin1String(kId));
            if (id.isDouble())
                answers_.insert(id.toInt(), *message);
        } else if (op == QLatin1String("data")) {
            events_.push_back({false, Member(*message, kItem), Member(*message, kValue)});
        } else if (op == QLatin1String("notice")) {
            events_.push_back({true, Member(*message, kItem), QString()});
        }
        // Anything else is no message of the link and is dropped.
    }
    if (reader_.Broken()) {
        socket_->abort();
        open_ = false;
    }
    if (waiting_ == 0)
        Deliver();
}

void LinkConversation::Deliver() {
    if (delivering_ || waiting_ > 0)
        return;
    delivering_ = true;
    const QPointer<LinkConversation> self(this);
    while (!events_.empty() && waiting_ == 0) {
        const Event event = events_.front();
        events_.pop_front();
        if (event.notice)
            emit Notice(event.item);
        else
            emit Data(event.item, event.value);
        if (!self)
            return;
    }
    delivering_ = false;
}

void LinkConversation::OnDisconnected() {
    const bool wasOpen = open_;
    open_ = false;
    if (wasOpen)
        emit Closed();
}

LinkConversation& LinkChannels::Open(const QString& linkTopic) {
    if (const auto found = conversations_.find(linkTopic); found != conversations_.end())
        return **found;
    const qsizetype bar = linkTopic.indexOf(QLatin1Char('|'));
    if (bar <= 0)
        throw LinkFault(QStringLiteral("\"%1\" is no link topic (service|topic).").arg(linkTopic),
                        LinkFault::kNoServer);
    auto conversation =
        std::make_shared<LinkConversation>(linkTopic.left(bar), linkTopic.mid(bar + 1), timeouts_);
    conversation->Initiate();
    conversations_.insert(linkTopic, conversation);
    return *conversation;
}

LinkLabel::LinkLabel(LinkChannels& channels, QObject* parent)
    : QObject(parent), channels_(channels) {}

void LinkLabel::SetCaption(const QString& caption) {
    if (caption == caption_)
        return;
    caption_ = caption;
    emit CaptionChanged(caption_);
}

LinkConversation& LinkLabel::Channel() const {
    if (mode_ == LinkMode::None || !conversation_ || !conversation_->IsOpen())
        throw LinkFault(QStringLiteral("The label \"%1\" has no open link channel.").arg(item_),
                        LinkFault::kNoChannel);
    return *conversation_;
}

void LinkLabel::SetLinkMode(LinkMode mode) {
    if (mode == mode_)
        return;
    if (mode_ != LinkMode::None && conversation_ && conversation_->IsOpen() &&
        mode_ != LinkMode::Manual)
        conversation_->Call(QStringLiteral("unadvise"), QJsonObject{{QLatin1String(kItem), item_}});
    if (conversation_)
        conversation_->disconnect(this);
    conversation_ = nullptr;
    mode_ = LinkMode::None;
    if (mode == LinkMode::None)
        return;

    LinkConversation& conversation = channels_.Open(topic_);
    if (mode == LinkMode::Automatic || mode == LinkMode::Notify) {
        const QJsonObject answer =
            conversation.Call(QStringLiteral("advise"),
                              QJsonObject{{QLatin1String(kItem), item_},
                                          {QStringLiteral("mode"), mode == LinkMode::Automatic
                                                                       ? QStringLiteral("hot")
                                                                       : QStringLiteral("warm")}});
        if (mode == LinkMode::Automatic)
            SetCaption(Member(answer, kValue));
    }
    conversation_ = &conversation;
    mode_ = mode;
    connect(&conversation, &LinkConversation::Data, this,
            [this](const QString& item, const QString& value) {
                if (mode_ == LinkMode::Automatic && item == item_)
                    SetCaption(value);
            });
    connect(&conversation, &LinkConversation::Notice, this, [this](const QString& item) {
        if (mode_ == LinkMode::Notify && item == item_)
            emit LinkNotify();
    });
}

void LinkLabel::LinkPoke() {
    Channel().Call(QStringLiteral("poke"),
                   QJsonObject{{QLatin1String(kItem), item_}, {QLatin1String(kValue), caption_}});
}

void LinkLabel::LinkRequest() {
    const QJsonObject answer =
        Channel().Call(QStringLiteral("request"), QJsonObject{{QLatin1String(kItem), item_}});
    SetCaption(Member(answer, kValue));
}

} // namespace tarvex
