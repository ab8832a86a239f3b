#pragma once

// Picture Bench's side of the link with the exercise editor: the service "Picture Bench",
// topic "MDIForm1". The editor pokes the picture's source, which is opened at once, then
// the file to save it as; a save writes that file, then reports the source, then changes
// the status, in that order.

#include "link/LinkServer.h"
#include "picturebench/PictureDocument.h"

#include <QObject>
#include <QString>

namespace tarvex {

class BenchService : public QObject {
    Q_OBJECT
public:
    static constexpr const char* kService = "Picture Bench";
    static constexpr const char* kTopic = "MDIForm1";
    static constexpr const char* kOpenItem = "TVXOpenFName";
    static constexpr const char* kSaveItem = "TVXSaveFName";
    static constexpr const char* kSourceItem = "StatFileName";
    static constexpr const char* kStatusItem = "TVXLinkStatus";

    explicit BenchService(PictureDocument& document, QObject* parent = nullptr);

    // Offers the service. False when it cannot (another Picture Bench serves it); the bench
    // then works on its own, and LinkError() says why.
    bool Listen();
    bool Linked() const { return server_.IsListening(); }
    QString LinkError() const { return server_.Error(); }
    LinkServer& Server() { return server_; }

    // The source the picture came from (empty for a blank picture) and where it is to be
    // saved (empty until the editor or the user names a file).
    QString Source() const { return source_; }
    QString Target() const { return target_; }
    // Opens a picture the user chose: it becomes the source, and the target stays.
    bool OpenByUser(const QString& path);
    void SetTarget(const QString& target);

    // Saves the picture to the target and tells the editor. An empty text on success, else
    // what went wrong (nothing is told then, and the old file stays as it was).
    QString Save();
    int SaveCount() const { return saves_; }

signals:
    // The editor sent a picture: it is open now (or could not be, with the reason).
    void SourceOpened(const QString& source, const QString& error);
    void TargetChanged(const QString& target);
    void Saved(const QString& target);

private:
    void OnPoked(const QString& item, const QString& value);

    PictureDocument& document_;
    LinkServer server_;
    QString source_;
    QString target_;
    int saves_ = 0;
};

} // namespace tarvex
