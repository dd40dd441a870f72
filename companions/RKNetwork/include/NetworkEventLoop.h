#pragma once

#include "RKNetworkExport.h"

#include <QEventLoop>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QList>
#include <QNetworkReply>
#include <QObject>
#include <QPointer>

/// Waits for one reply while the thread's other events run, and reads its JSON body.
///
/// It owns the reply and deletes it with itself. Waits nest: what an event starts during a wait may wait too.
///
/// The body is readable after a success and, so that its "message" can be shown, after an HTTP error status.
/// After any other failure (no answer, an answer that was cut, damaged, too large or not JSON) there is none,
/// and object(), objectList() and array() are empty.
class RKNETWORK_EXPORT NetworkEventLoop : public QObject
{
public:
    /// A null reply is allowed: the wait then fails at once.
    explicit NetworkEventLoop(QNetworkReply* reply, QObject* parent = nullptr);
    ~NetworkEventLoop() override;

    /// Runs events until the reply has finished, its deadline has passed, or the application is quitting; a
    /// reply that has not finished is then aborted and counts as failed. A wait that begins after
    /// QCoreApplication::quit() works like any other. Fails at once without a QCoreApplication. Returns 0
    /// when the reply finished and -1 when not. QEventLoop::ExcludeSocketNotifiers is ignored: the reply
    /// needs its socket. A large array is parsed on several threads, which have ended when exec returns.
    int exec(QEventLoop::ProcessEventsFlags flags = QEventLoop::AllEvents);

    /// True when exec has returned, the whole answer arrived with a 2xx status, and its body is JSON or, for
    /// anything but a GET, empty.
    bool isSuccessful() const;
    /// NoError after a success; before exec and after a failure the reason.
    QNetworkReply::NetworkError error() const;

    /// The body when it is an object, else an empty one.
    QJsonObject object() const;
    /// The body when it is an array of nothing but objects, else an empty list.
    QList<QJsonObject> objectList() const;
    /// The body when it is an array, else an empty one.
    QJsonArray array() const;

private:
    void runEvents(QEventLoop::ProcessEventsFlags flags);
    void readReply();

    QPointer<QNetworkReply> m_reply;
    QNetworkReply::NetworkError m_error = QNetworkReply::UnknownNetworkError;
    QJsonDocument m_body;
};
