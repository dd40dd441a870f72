#pragma once

#include "RequestFailure.h"

#include <QDateTime>
#include <QJsonObject>
#include <QJsonValue>
#include <QList>
#include <QString>

/// One entry of the audit trail: who changed what, when, and what was there before.
struct AuditEntry
{
    QString id;
    QString category;      ///< of the monitoring it is about; empty: it is about the project as a whole
    QString cellId;        ///< identifier of the monitoring; empty when it is about none
    QString subCategoryId; ///< empty when it is about none
    QString action;        ///< what happened to what: "group.changed"
    QString subject;       ///< identifier of what was changed
    QString name;          ///< of it, for people
    QJsonValue before;     ///< what was there; null: nothing, or it is of another category
    QJsonValue after;      ///< what is there instead, alike
    QString deliveryId;    ///< in the history, of the delivery that made the change; empty: it was none
    QDateTime time;
    QString author;
};

/// Which entries, and in which order.
struct AuditQuery
{
    QJsonObject where; ///< condition; empty: all entries of the project
    QString order; ///< member names with commas between, "-" before one for descending; empty: newest first
};

namespace extensions {

/// GET projects/{project}/changes.
QList<AuditEntry> readChanges(const RequestContext& context, const QString& project, const AuditQuery& query,
                              int skip, int limit);

/// GET projects/{project}/changes?only_count=true.
int countChanges(const RequestContext& context, const QString& project, const AuditQuery& query);

} // namespace extensions
