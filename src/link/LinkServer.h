#pragma once

// The server side of the link: a service and topic with named items that clients poke,
// request and advise (docs/picture-bench-link.md).

#include "link/LinkWire.h"

#include <QHash>
#include <QObject>
#include <QSet>
#include <QString>
#include <memory>
#include <vector>

class QLocalServer;
class QLocalSocket;

namespace tarvex {

class LinkServer : public QObject {
    Q_OBJECT
public:
    LinkServer(QString service, QString topic, QObject* parent = nullptr);
    ~LinkServer() override;
    LinkServer(const LinkServer&) = delete;
    LinkServer& operator=(const LinkServer&) = delete;

    // Starts serving. False when another server already answers for the service, or the
    // socket cannot be made; Error() then says why. A socket left by a server that died
    // is taken over.
    bool Listen();
    QString Error() const { return error_; }
    bool IsListening() const;
    QString SocketPath() const { return path_; }

    // An item of the topic; only items that take pokes accept them.
    void DeclareItem(const QString& item, bool takesPokes);
    QString Value(const QString& item) const;
    // Changes an item: every hot advise loop on it gets the value, every warm one a notice.
    void SetValue(const QString& item, const QString& value);

    int ConnectionCount() const { return static_cast<int>(connections_.size()); }
    // Messages dropped because they were no message of the link (for the tests and the log).
    int DroppedCount() const { return dropped_; }

signals:
    // A client poked a value into an item; the client has its answer already.
    void Poked(const QString& item, const QString& value);
    void ConnectionsChanged(int count);

private:
    struct Item {
        QString value;
        bool takesPokes = false;
    };
    struct Connection;

    void OnNewConnection();
    void OnReadyRead(Connection& connection);
    void Handle(Connection& connection, const QJsonObject& message);
    void Drop(Connection& connection);
    void Send(Connection& connection, const QJsonObject& message);

    QString service_;
    QString topic_;
    QString path_;
    QString error_;
    std::unique_ptr<QLocalServer> server_;
    QHash<QString, Item> items_;
    std::vector<std::unique_ptr<Connection>> connections_;
    int dropped_ = 0;
};

} // namespace tarvex
