#include "media/MediaLocationsLogic.h"

#include "shell/AppFolder.h"
#include "shell/AppState.h"

#include <QDir>
#include <utility>

namespace tarvex {

MediaLocationsLogic::MediaLocationsLogic(AppState& state, Controls controls,
                                         IOpenFileDialog& dialog)
    : state_(state), c_(std::move(controls)), dialog_(dialog) {}

void MediaLocationsLogic::Load() {
    c_.lblMedia[0]->SetCaption(state_.Media.Icon);
    c_.lblMedia[1]->SetCaption(state_.Media.Picture);
    c_.lblMedia[2]->SetCaption(state_.Media.Movie);
}

QString MediaLocationsLogic::ProbeFile(const QString& tag) {
    if (tag == QLatin1String("Icon"))
        return QStringLiteral("1.JPG");
    if (tag == QLatin1String("Picture"))
        return QStringLiteral("1_1.JPG");
    if (tag == QLatin1String("Movie"))
        return QStringLiteral("1.AVI");
    return QString();
}

QString MediaLocationsLogic::StartFolder(const QString& tag) const {
    return QDir::toNativeSeparators(FindFileNoCase(state_.DeliveredFolder, tag)) +
           QDir::separator();
}

void MediaLocationsLogic::cmdMedia(int index) {
    if (index < 0 || index >= static_cast<int>(c_.lblMedia.size()))
        return;
    const QString tag = c_.cmdMediaTags.at(static_cast<size_t>(index));
    const QString probe = ProbeFile(tag);
    if (probe.isEmpty())
        return;
    const QString folder = FindMediaPath(tag, probe);
    if (!folder.isEmpty())
        c_.lblMedia.at(static_cast<size_t>(index))->SetCaption(folder);
}

QString MediaLocationsLogic::FindMediaPath(const QString& tag, const QString& fileName) {
    OpenFileRequest request;
    request.Flags = 4;
    request.Filter = fileName + u'|' + fileName;
    request.FilterIndex = 1;
    request.InitDir = StartFolder(tag);
    request.FileName = fileName;
    const std::optional<QString> chosen = dialog_.ShowOpen(request);
    if (!chosen)
        return QString();
    // The chosen file's name goes; the folder keeps its final separator.
    return QDir::toNativeSeparators(chosen->left(chosen->size() - fileName.size()));
}

bool MediaLocationsLogic::cmdOKCancel(const QString& tag) {
    if (tag == QLatin1String("OK")) {
        state_.Media.Icon = c_.lblMedia[0]->Caption();
        state_.Media.Picture = c_.lblMedia[1]->Caption();
        state_.Media.Movie = c_.lblMedia[2]->Caption();
    }
    return tag == QLatin1String("OK") || tag == QLatin1String("Cancel");
}

} // namespace tarvex
