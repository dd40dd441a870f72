#include "extensions/AuditTrail.h"

#include "extensions/ServiceRequest.h"

namespace extensions {

namespace {

AuditEntry entryOf(const AnswerObject& object)
{
    AuditEntry entry;
    entry.id = object.identifier("_id");
    entry.category = object.text("category");
    entry.cellId = object.text("cellId");
    entry.subCategoryId = object.text("subCategoryId");
    entry.action = object.text("action");
    entry.subject = object.text("subject");
    entry.name = object.text("name");
    entry.before = object.value("before");
    entry.after = object.value("after");
    entry.deliveryId = object.text("delivery");
    entry.time = object.time("createdAt");
    entry.author = object.text("createdBy");
    return entry;
}

ListRequest changeList(const QString& project, const AuditQuery& query)
{
    return {resourcePath("projects/%1/changes", project), query.where, query.order, {}};
}

} // namespace

QList<AuditEntry> readChanges(const RequestContext& context, const QString& project, const AuditQuery& query,
                              int skip, int limit)
{
    return readPage(context, changeList(project, query), skip, limit, entryOf);
}

int countChanges(const RequestContext& context, const QString& project, const AuditQuery& query)
{
    return getCount(context, changeList(project, query));
}

} // namespace extensions
