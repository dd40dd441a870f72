#pragma once

#include "PagedReading.h"
#include "RequestFailure.h"
#include "extensions/AnswerObject.h"

#include <QJsonArray>
#include <QJsonObject>
#include <QList>
#include <QString>

#include <NetworkExchange.h>

#include <type_traits>

/// Requests that the library has no operation for. Each is sent once and waited for; the application's events
/// run meanwhile, so that nothing they may change may be referred to across it. A request that fails throws
/// its Failure, and so does an answer of another form than is asked for (BadAnswer).
///
/// Addresses stand after the base address and "monitor-service/".
namespace extensions {

/// `path` with its "%1" filled. Throws a Failure (BadInput) when `id` is no identifier: it could otherwise
/// lead to another resource.
QString resourcePath(const char* path, const QString& id);

/// `path` with a condition.
QString conditionPath(const QString& path, const QJsonObject& where);

/// How a request went, whatever came of it.
struct ServiceReply
{
    NetworkExchange exchange;
    QJsonObject object; ///< the body when it is an object
    QJsonArray array;   ///< the body when it is an array
    bool isArray = false;
    bool hasBody = false; ///< something arrived whole, JSON or not
};

/// Sends GET `path`; a failure is the caller's to judge.
ServiceReply tryToGet(const RequestContext& context, const QString& path);

AnswerObject get(const RequestContext& context, const QString& path);
AnswerObject put(const RequestContext& context, const QString& path, const QJsonObject& body);
AnswerObject patch(const RequestContext& context, const QString& path, const QJsonObject& body);
AnswerObject deleteResource(const RequestContext& context, const QString& path);

/// The failure to read the answer to a change that was made.
Failure afterChange(const Failure& failure);

/// What `read` makes of the answer to a change. Throws its failure, which says that the change was made.
template <typename Read>
auto readResult(const AnswerObject& answer, Read read)
{
    try {
        return read(answer);
    } catch (const Failure& failure) {
        throw afterChange(failure);
    }
}

/// A list of the service, and what of it is asked for.
struct ListRequest
{
    QString path;
    QJsonObject where; ///< condition; empty: everything
    QString order;     ///< member names with commas between, "-" before one for descending; empty: the list's
    QString more;      ///< parameters that it alone has, also when it is counted: "samples=latest"
};

QList<AnswerObject> getPage(const RequestContext& context, const ListRequest& list, int skip, int limit);
int getCount(const RequestContext& context, const ListRequest& list);

/// A page as records, each made by `read` of an object.
template <typename Read>
auto readPage(const RequestContext& context, const ListRequest& list, int skip, int limit, Read read)
{
    QList<std::invoke_result_t<Read, const AnswerObject&>> records;
    const QList<AnswerObject> objects = getPage(context, list, skip, limit);
    records.reserve(objects.size());
    for (const AnswerObject& object : objects) {
        records.append(read(object));
    }
    return records;
}

/// All of a list, page by page; `what` names the rows. Throws a Failure when they kept changing.
template <typename Read>
auto readAll(const RequestContext& context, const ListRequest& list, const QString& what, Read read)
{
    return paging::readAll(
        what, [&](int skip, int limit) { return readPage(context, list, skip, limit, read); },
        [&] { return getCount(context, list); });
}

} // namespace extensions
