#pragma once

#include "media/CheckMediaLogic.h"
#include "support/FileDialog.h"

#include <QDir>
#include <QFile>
#include <deque>
#include <functional>
#include <optional>
#include <vector>

namespace tarvex::testing {

// The open-file dialog: answers from a script and keeps what it was asked.
class ScriptedOpenDialog : public IOpenFileDialog {
public:
    std::optional<QString> ShowOpen(const OpenFileRequest& request) override {
        requests.push_back(request);
        if (answers.empty())
            return std::nullopt;
        auto answer = answers.front();
        answers.pop_front();
        return answer;
    }
    std::deque<std::optional<QString>> answers;
    std::vector<OpenFileRequest> requests;
};

class FakeDriveList : public IDriveList {
public:
    void SetDrives(const QList<MediaDrive>& list) override {
        drives = list;
        chosen = drives.isEmpty() ? -1 : 0;
    }
    QString Drive() const override { return chosen < 0 ? QString() : drives.at(chosen).Root; }
    bool SetDrive(const QString& root) override {
        for (int i = 0; i < drives.size(); ++i) {
            if (QDir::cleanPath(drives.at(i).Root) == QDir::cleanPath(root)) {
                chosen = i;
                return true;
            }
        }
        return false;
    }
    QList<MediaDrive> drives;
    int chosen = -1;
};

class FakeCheckMediaHost : public ICheckMediaHost {
public:
    void SetBusy(bool busy) override { calls << (busy ? "busy" : "ready"); }
    void DoEvents() override {
        ++events;
        if (onEvents)
            onEvents(events);
    }
    void UnloadForm() override { calls << "unload"; }
    QStringList calls;
    int events = 0;
    std::function<void(int)> onEvents; // what happens while the events run, by their count
};

// Writes a small file, making its folder.
inline void WriteFile(const QString& path, const QByteArray& bytes = "media") {
    QDir().mkpath(QFileInfo(path).path());
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
}

} // namespace tarvex::testing
