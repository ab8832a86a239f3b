#pragma once

// The client side of the link: a conversation with a service and topic, and labels whose
// caption is tied to an item of it, as the exercise editor's labels are to the companion
// picture editor (docs/picture-bench-link.md).

#include "link/LinkWire.h"
#include "support/Fault.h"

#include <QHash>
#include <QJsonObject>
#include <QObject>
#include <QPointer>
#include <QString>
#include <deque>
#include <memory>

class QLocalSocket;

namespace tarvex {

// A fault of the link, with the number the error handlers test.
class LinkFault : public Fault {
public:
    static constexpr int kNoServer = 282;  // no application answered when the link was opened
    static constexpr int kRefused = 285;   // the server would not do what was asked
    static constexpr int kTimeout = 286;   // no answer within the time allowed
    static constexpr int kNoChannel = 293; // a poke or request with no open channel
    LinkFault(const QString& message, int number) : Fault(message, number) {}
};

// How long the client waits, at most, for each step.
struct LinkTimeouts {
    int connectMs = 2000;
    int answerMs = 5000;
};

// One conversation: a socket to a service's topic. Messages that arrive while the client
// waits for an answer are kept and passed on, in order, once the wait is over, so that a
// handler never runs inside another.
class LinkConversation : public QObject {
    Q_OBJECT
public:
    LinkConversation(QString service, QString topic, LinkTimeouts timeouts,
                     QObject* parent = nullptr);
    ~LinkConversation() override;
    LinkConversation(const LinkConversation&) = delete;
    LinkConversation& operator=(const LinkConversation&) = delete;

    // Connects and initiates the topic; LinkFault 282 when no server answers.
    void Initiate();
    bool IsOpen() const;
    // Sends one operation and waits for its answer; the answer's members come back.
    // 293 when the channel is closed or closes meanwhile, 286 after the time allowed,
    // 285 when the server refuses.
    QJsonObject Call(const QString& op, QJsonObject members);

signals:
    void Data(const QString& item, const QString& value);
    void Notice(const QString& item);
    void Closed();

private:
    struct Event {
        bool notice = false;
        QString item;
        QString value;
    };
    void Drain();
    void Deliver();
    void OnDisconnected();

    QString service_;
    QString topic_;
    LinkTimeouts timeouts_;
    std::unique_ptr<QLocalSocket> socket_;
    LinkFrameReader reader_;
    bool open_ = false;
    int nextId_ = 1;
    int waiting_ = 0; // depth of Call
    bool delivering_ = false;
    QHash<int, QJsonObject> answers_;
    std::deque<Event> events_;
};

// The conversations of one window, one for each link topic ("service|topic"). They live
// as long as the window: nothing closes a link but the end of its window.
class LinkChannels {
public:
    explicit LinkChannels(LinkTimeouts timeouts = {}) : timeouts_(timeouts) {}
    // The open conversation on the topic, opened now when there is none (282 when no
    // server answers; nothing is kept then, so a later call tries again).
    LinkConversation& Open(const QString& linkTopic);

private:
    LinkTimeouts timeouts_;
    QHash<QString, std::shared_ptr<LinkConversation>> conversations_;
};

// How a label is linked.
enum class LinkMode {
    None = 0,      // no link
    Automatic = 1, // hot advise loop: the caption follows the server's value
    Manual = 2,    // no advise loop: pokes and requests only
    Notify = 3     // warm advise loop: a notice arrives when the value changes
};

// A label whose caption can be linked to an item of a conversation.
class LinkLabel : public QObject {
    Q_OBJECT
public:
    explicit LinkLabel(LinkChannels& channels, QObject* parent = nullptr);

    QString Caption() const { return caption_; }
    void SetCaption(const QString& caption);
    QString LinkTopic() const { return topic_; }
    void SetLinkTopic(const QString& topic) { topic_ = topic; }
    QString LinkItem() const { return item_; }
    void SetLinkItem(const QString& item) { item_ = item; }
    LinkMode Mode() const { return mode_; }
    // Setting a mode other than None opens the conversation and its advise loop; the
    // caption of a hot loop takes the server's value at once.
    void SetLinkMode(LinkMode mode);
    // Sends the caption to the server's item (293 with no open channel).
    void LinkPoke();
    // Takes the server's value of the item as the caption.
    void LinkRequest();

signals:
    void CaptionChanged(const QString& caption);
    // The server changed the item of a warm advise loop.
    void LinkNotify();

private:
    LinkConversation& Channel() const;

    LinkChannels& channels_;
    QPointer<LinkConversation> conversation_;
    QString caption_;
    QString topic_;
    QString item_;
    LinkMode mode_ = LinkMode::None;
};

} // namespace tarvex
