#pragma once

// The wire of the link to the companion picture editor: where a service listens, and the
// frames its messages travel in (docs/picture-bench-link.md).

#include <QByteArray>
#include <QJsonObject>
#include <QString>
#include <optional>

namespace tarvex {

namespace link {
constexpr int kVersion = 1;
constexpr qsizetype kMaxBody = 65536;
} // namespace link

// The file of the local socket on which a service listens.
QString LinkSocketPath(const QString& service);

// One message as a frame: its length in four big-endian bytes, then the JSON body.
QByteArray EncodeLinkFrame(const QJsonObject& message);

// Takes the bytes of one connection as they come and gives back whole messages.
class LinkFrameReader {
public:
    void Append(const QByteArray& bytes) { buffer_.append(bytes); }
    // The next whole message, or nothing while a frame is incomplete. A body that is no
    // JSON object gives an empty object (the caller drops it). A length outside the bounds
    // breaks the stream for good: Broken() then stays true.
    std::optional<QJsonObject> Next();
    bool Broken() const { return broken_; }
    qsizetype Pending() const { return buffer_.size(); }

private:
    QByteArray buffer_;
    bool broken_ = false;
};

} // namespace tarvex
