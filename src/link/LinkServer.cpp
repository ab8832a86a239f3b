#include "link/LinkServer.h"

#include <QFileInfo>
#include <QJsonValue>
#include <QLocalServer>
#include <QLocalSocket>

namespace tarvex {

struct LinkServer::Connection {
    QLocalSocket* socket = nullptr; // owned by the server's QLocalServer as parent
    LinkFrameReader reader;
    bool initiated = false;
    QSet<QString> hot;
    QSet<QString> warm;
};

namespace {

QJsonObject Ack(const QJsonValue& id) {
    return QJsonObject{{QStringLiteral("op"), QStringLiteral("ack")}, {QStringLiteral("id"), id}};
}

QJsonObject Nack(const QJsonValue& id, const QString& why) {
    return QJsonObject{{QStringLiteral("op"), QStringLiteral("nack")},
                       {QStringLiteral("id"), id},
                       {QStringLiteral("error"), why}};
}

// Asks whether a server answers on the socket already.
bool SomeoneListens(const QString& path) {
    QLocalSocket probe;
    probe.connectToServer(path);
    const bool answered = probe.waitForConnected(1000);
    probe.abort();
    return answered;
}

} // namespace

LinkServer::LinkServer(QString service, QString topic, QObject* parent)
    : QObject(parent), service_(std::move(service)), topic_(std::move(topic)) {}

LinkServer::~LinkServer() {
    // The sockets die with the QLocalServer; none may call back into a half-destroyed server.
    for (const auto& connection : connections_)
        connection->socket->disconnect(this);
    if (server_)
        server_->close();
}

bool LinkServer::Listen() {
    path_ = LinkSocketPath(service_);
    server_ = std::make_unique<QLocalServer>();
    server_->setSocketOptions(QLocalServer::UserAccessOption);
    connect(server_.get(), &QLocalServer::newConnection, this, &LinkServer::OnNewConnection);
    // Listening replaces the socket's file, so a server that answers there is asked first.
    if (QFileInfo::exists(path_)) {
        if (SomeoneListens(path_)) {
            error_ =
                QStringLiteral("Another program already serves \"%1\" (%2).").arg(service_, path_);
            return false;
        }
        QLocalServer::removeServer(path_);
    }
    if (server_->listen(path_))
        return true;
    error_ = QStringLiteral("The link \"%1\" cannot listen at %2: %3")
                 .arg(service_, path_, server_->errorString());
    return false;
}

bool LinkServer::IsListening() const {
    return server_ && server_->isListening();
}

void LinkServer::DeclareItem(const QString& item, bool takesPokes) {
    items_[item].takesPokes = takesPokes;
}

QString LinkServer::Value(const QString& item) const {
    return items_.value(item).value;
}

void LinkServer::SetValue(const QString& item, const QString& value) {
    items_[item].value = value;
    for (const auto& connection : connections_) {
        if (connection->hot.contains(item))
            Send(*connection, QJsonObject{{QStringLiteral("op"), QStringLiteral("data")},
                                          {QStringLiteral("item"), item},
                                          {QStringLiteral("value"), value}});
        if (connection->warm.contains(item))
            Send(*connection, QJsonObject{{QStringLiteral("op"), QStringLiteral("notice")},
                                          {QStringLiteral("item"), item}});
    }
}

void LinkServer::OnNewConnection() {
    while (QLocalSocket* socket = server_->nextPendingConnection()) {
        auto connection = std::make_unique<Connection>();
        connection->socket = socket;
        Connection* raw = connection.get();
        connections_.push_back(std::move(connection));
        connect(socket, &QLocalSocket::readyRead, this, [this, raw] { OnReadyRead(*raw); });
        connect(socket, &QLocalSocket::disconnected, this, [this, raw] { Drop(*raw); });
        emit ConnectionsChanged(ConnectionCount());
        // Bytes may have come with the connection itself.
        if (socket->bytesAvailable() > 0)
            OnReadyRead(*raw);
    }
}

void LinkServer::OnReadyRead(Connection& connection) {
    connection.reader.Append(connection.socket->readAll());
    while (const auto message = connection.reader.Next()) {
        if (message->isEmpty()) {
            ++dropped_;
            continue;
        }
        Handle(connection, *message);
    }
    if (connection.reader.Broken()) {
        ++dropped_;
        connection.socket->abort(); // disconnected() drops the connection
    }
}

void LinkServer::Handle(Connection& connection, const QJsonObject& message) {
    const QString op = message.value(QStringLiteral("op")).toString();
    const QJsonValue id = message.value(QStringLiteral("id"));
    const QString item = message.value(QStringLiteral("item")).toString();
    if (!id.isDouble()) {
        ++dropped_;
        return;
    }
    if (op == QLatin1String("initiate")) {
        if (message.value(QStringLiteral("v")).toInt() != link::kVersion)
            return Send(connection, Nack(id, QStringLiteral("version %1 is not spoken here")
                                                 .arg(message.value(QStringLiteral("v")).toInt())));
        if (message.value(QStringLiteral("topic")).toString() != topic_)
            return Send(connection,
                        Nack(id, QStringLiteral("no topic \"%1\"")
                                     .arg(message.value(QStringLiteral("topic")).toString())));
        connection.initiated = true;
        return Send(connection, Ack(id));
    }
    if (!connection.initiated)
        return Send(connection, Nack(id, QStringLiteral("the link was not initiated")));
    if (op != QLatin1String("advise") && op != QLatin1String("unadvise") &&
        op != QLatin1String("poke") && op != QLatin1String("request")) {
        ++dropped_;
        return Send(connection, Nack(id, QStringLiteral("unknown operation \"%1\"").arg(op)));
    }
    if (!items_.contains(item))
        return Send(connection, Nack(id, QStringLiteral("no item \"%1\"").arg(item)));
    if (op == QLatin1String("poke")) {
        if (!items_.value(item).takesPokes)
            return Send(connection, Nack(id, QStringLiteral("\"%1\" takes no pokes").arg(item)));
        const QString value = message.value(QStringLiteral("value")).toString();
        items_[item].value = value;
        Send(connection, Ack(id));
        emit Poked(item, value);
        return;
    }
    if (op == QLatin1String("unadvise")) {
        connection.hot.remove(item);
        connection.warm.remove(item);
        return Send(connection, Ack(id));
    }
    if (op == QLatin1String("advise")) {
        const QString mode = message.value(QStringLiteral("mode")).toString();
        if (mode == QLatin1String("hot"))
            connection.hot.insert(item);
        else if (mode == QLatin1String("warm"))
            connection.warm.insert(item);
        else
            return Send(connection, Nack(id, QStringLiteral("no advise mode \"%1\"").arg(mode)));
    }
    // advise and request: the answer carries the value now.
    QJsonObject ack = Ack(id);
    ack.insert(QStringLiteral("value"), items_.value(item).value);
    Send(connection, ack);
}

void LinkServer::Drop(Connection& connection) {
    for (auto it = connections_.begin(); it != connections_.end(); ++it) {
        if (it->get() == &connection) {
            (*it)->socket->disconnect(this);
            (*it)->socket->deleteLater();
            connections_.erase(it);
            emit ConnectionsChanged(ConnectionCount());
            return;
        }
    }
}

void LinkServer::Send(Connection& connection, const QJsonObject& message) {
    if (connection.socket->state() == QLocalSocket::ConnectedState)
        connection.socket->write(EncodeLinkFrame(message));
}

} // namespace tarvex
