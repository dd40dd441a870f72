#include "DataHeld.h"

#include "PagedReading.h"
#include "RecordChecks.h"

namespace dataheld {

QList<RKDataManage> readPage(ServiceSession& session, const RKDataManageCondition& condition, int skip,
                             int limit)
{
    const QString purpose = QStringLiteral("list the data held");
    QList<RKDataManage> page;
    session.ask(purpose,
                [&] { return session.projectData().getDataManageRangeData(condition, skip, limit, page); });
    requireIdentifiers(page, purpose, QStringLiteral("data held"));
    return page;
}

int readCount(ServiceSession& session, const RKDataManageCondition& condition)
{
    int count = 0;
    session.ask(QStringLiteral("count the data held"),
                [&] { return session.projectData().getDataManageRangeCount(condition, count); });
    return count;
}

QList<RKDataManage> readAll(ServiceSession& session, const RKDataManageCondition& condition)
{
    return paging::readAll(
        QStringLiteral("data held"),
        [&](int skip, int limit) { return readPage(session, condition, skip, limit); },
        [&] { return readCount(session, condition); });
}

// The service has no way to ask for one.
RKDataManage find(ServiceSession& session, const QString& id)
{
    const QList<RKDataManage> everything = readAll(session, RKDataManageCondition());
    for (const RKDataManage& data : everything) {
        if (data.id.compare(id, Qt::CaseInsensitive) == 0) {
            return data;
        }
    }
    throw Failure(FailureKind::NotFound,
                  QStringLiteral("there is no data %1; rkmon data list shows it").arg(id));
}

} // namespace dataheld
