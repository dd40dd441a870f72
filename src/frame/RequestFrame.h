#pragma once

#include "frame/Companions.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QString>

#include <utility>

namespace rk {

/// Base address + "monitor-service/" + `pathTemplate`; its markers are the caller's to fill, in their order.
QString resourceUrl(const char* pathTemplate);

/// The same with "%1" filled with the current project's identifier.
QString projectUrl(const char* pathTemplate);

/// `url` with its two lowest markers filled with `skip` and `limit`, in decimal, as given.
QString pagedUrl(const QString& url, int skip, int limit);

/// One request, sent and waited for. The application's events run while it is being made, so nothing that
/// they may change (a cache entry, say) may be referred to across it.
class Exchange
{
public:
    static Exchange get(const QString& url);
    static Exchange post(const QString& url, const QJsonObject& body);
    static Exchange post(const QString& url, const QJsonArray& body);
    static Exchange put(const QString& url, const QJsonObject& body);
    static Exchange deleteResource(const QString& url);

    bool isSuccessful() const { return m_wait.isSuccessful(); }
    QNetworkReply::NetworkError error() const { return m_wait.error(); }
    QJsonObject object() const { return m_wait.object(); }
    QList<QJsonObject> objectList() const { return m_wait.objectList(); }
    QJsonArray array() const { return m_wait.array(); }

private:
    explicit Exchange(QNetworkReply* reply);

    NetworkEventLoop m_wait;
};

/// GET of a counting URL: stores the reply's "count", 0 when it has none.
bool readCount(const QString& url, int& count);

/// What is left of a GET of a list.
struct ListAnswer
{
    QList<QJsonObject> objects;
    bool isSuccessful = false;
};

/// GET of a list. When it returns, the exchange is gone, and with it the text and the document that the
/// objects came in.
ListAnswer getList(const QString& url);

/// GET of a list: calls `use(object)` with each object of the reply, in its order. An object is freed after
/// its use, so that records take the place of the document instead of standing beside it.
template <typename Use>
bool forEachObject(const QString& url, Use use)
{
    ListAnswer answer = getList(url);
    for (QJsonObject& element : answer.objects) {
        const QJsonObject object = std::exchange(element, {});
        use(object);
    }
    return answer.isSuccessful;
}

/// GET of a list: appends one record per object of the reply, in its order, each filled by
/// `fill(object, freshRecord)`.
template <typename Record, typename Fill>
bool appendRecords(const QString& url, QList<Record>& records, Fill fill)
{
    return forEachObject(url, [&](const QJsonObject& object) {
        // Filled where it lies: a record may hold thousands of samples.
        records.append(Record());
        fill(object, records.last());
    });
}

} // namespace rk
