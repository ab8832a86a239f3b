#include "picturebench/BenchService.h"

#include <QLocale>
#include <QTime>

namespace tarvex {

BenchService::BenchService(PictureDocument& document, QObject* parent)
    : QObject(parent), document_(document),
      server_(QLatin1String(kService), QLatin1String(kTopic)) {
    server_.DeclareItem(QLatin1String(kOpenItem), true);
    server_.DeclareItem(QLatin1String(kSaveItem), true);
    server_.DeclareItem(QLatin1String(kSourceItem), false);
    server_.DeclareItem(QLatin1String(kStatusItem), false);
    server_.SetValue(QLatin1String(kStatusItem), QStringLiteral("Ready"));
    connect(&server_, &LinkServer::Poked, this, &BenchService::OnPoked);
}

bool BenchService::Listen() {
    return server_.Listen();
}

bool BenchService::OpenByUser(const QString& path) {
    if (!document_.Open(path))
        return false;
    source_ = path;
    return true;
}

void BenchService::SetTarget(const QString& target) {
    target_ = target;
    emit TargetChanged(target_);
}

void BenchService::OnPoked(const QString& item, const QString& value) {
    if (item == QLatin1String(kOpenItem)) {
        // The source is the picture's origin whether or not it opens: an empty one, or one
        // that is gone, starts a blank picture, so the user can still make one.
        source_ = value;
        QString error;
        if (!document_.Open(value)) {
            error = document_.LastError();
            document_.Open(QString());
        }
        emit SourceOpened(value, error);
    } else if (item == QLatin1String(kSaveItem)) {
        SetTarget(value);
    }
}

QString BenchService::Save() {
    if (target_.isEmpty())
        return QStringLiteral("There is no file to save the picture as: open the picture from "
                              "the exercise editor, or choose Save As.");
    QString error = document_.Save(target_);
    if (!error.isEmpty())
        return error;
    ++saves_;
    server_.SetValue(QLatin1String(kSourceItem), source_);
    server_.SetValue(
        QLatin1String(kStatusItem),
        QStringLiteral("Saved %1 at %2")
            .arg(saves_)
            .arg(QLocale::c().toString(QTime::currentTime(), QStringLiteral("HH:mm:ss"))));
    emit Saved(target_);
    return QString();
}

} // namespace tarvex
