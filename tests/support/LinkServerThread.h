#pragma once

// A link server on a thread of its own, for tests in which the client waits for answers on
// the main thread: the server keeps answering meanwhile, as the companion program does.

#include "link/LinkServer.h"

#include <QMutex>
#include <QMutexLocker>
#include <QObject>
#include <QPair>
#include <QStringList>
#include <QThread>
#include <memory>

namespace tarvex::testing {

class LinkServerThread {
public:
    LinkServerThread(const QString& service, const QString& topic, const QStringList& pokeItems,
                     const QStringList& otherItems) {
        context_.moveToThread(&thread_);
        thread_.start();
        Run([&] {
            server_ = std::make_unique<LinkServer>(service, topic);
            for (const QString& item : pokeItems)
                server_->DeclareItem(item, true);
            for (const QString& item : otherItems)
                server_->DeclareItem(item, false);
            QObject::connect(server_.get(), &LinkServer::Poked, &context_,
                             [this](const QString& item, const QString& value) {
                                 const QMutexLocker lock(&mutex_);
                                 pokes_.append({item, value});
                             });
            listening_ = server_->Listen();
        });
    }
    ~LinkServerThread() { Stop(); }
    LinkServerThread(const LinkServerThread&) = delete;
    LinkServerThread& operator=(const LinkServerThread&) = delete;

    bool Listening() const { return listening_; }
    // Runs work on the server's thread and waits for it.
    template <typename Work> void Run(Work work) {
        QMetaObject::invokeMethod(&context_, work, Qt::BlockingQueuedConnection);
    }
    void SetValue(const QString& item, const QString& value) {
        Run([&] { server_->SetValue(item, value); });
    }
    QString Value(const QString& item) {
        QString value;
        Run([&] { value = server_->Value(item); });
        return value;
    }
    int Connections() {
        int count = 0;
        Run([&] { count = server_->ConnectionCount(); });
        return count;
    }
    int Dropped() {
        int count = 0;
        Run([&] { count = server_->DroppedCount(); });
        return count;
    }
    QList<QPair<QString, QString>> Pokes() {
        const QMutexLocker lock(&mutex_);
        return pokes_;
    }
    // Ends the server as a dying companion would: every connection closes.
    void Stop() {
        if (!thread_.isRunning())
            return;
        Run([&] { server_.reset(); });
        thread_.quit();
        thread_.wait();
    }

private:
    QThread thread_;
    QObject context_;
    std::unique_ptr<LinkServer> server_;
    bool listening_ = false;
    QMutex mutex_;
    QList<QPair<QString, QString>> pokes_;
};

} // namespace tarvex::testing
