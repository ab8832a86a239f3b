#include "link/LinkWire.h"

#include <QDir>
#include <QJsonDocument>
#include <QStandardPaths>
#include <QtEndian>

namespace tarvex {

QString LinkSocketPath(const QString& service) {
    QString name = QStringLiteral("tarvex-link-");
    for (const QChar c : service.toLower())
        name += c.isLetterOrNumber() ? c : QLatin1Char('-');
    QString folder = qEnvironmentVariable("TARVEX_LINK_DIR");
    if (folder.isEmpty())
        folder = QStandardPaths::writableLocation(QStandardPaths::RuntimeLocation);
    if (folder.isEmpty())
        folder = QDir::tempPath();
    return QDir(folder).filePath(name);
}

QByteArray EncodeLinkFrame(const QJsonObject& message) {
    const QByteArray body = QJsonDocument(message).toJson(QJsonDocument::Compact);
    QByteArray frame(4, '\0');
    qToBigEndian(static_cast<quint32>(body.size()), frame.data());
    return frame + body;
}

std::optional<QJsonObject> LinkFrameReader::Next() {
    if (broken_ || buffer_.size() < 4)
        return std::nullopt;
    const quint32 length = qFromBigEndian<quint32>(buffer_.constData());
    if (length == 0 || length > static_cast<quint32>(link::kMaxBody)) {
        broken_ = true;
        buffer_.clear();
        return std::nullopt;
    }
    if (buffer_.size() < 4 + static_cast<qsizetype>(length))
        return std::nullopt;
    const QByteArray body = buffer_.mid(4, length);
    buffer_.remove(0, 4 + length);
    QJsonParseError error{};
    const QJsonDocument document = QJsonDocument::fromJson(body, &error);
    if (error.error != QJsonParseError::NoError || !document.isObject())
        return QJsonObject();
    return document.object();
}

} // namespace tarvex
