#pragma once

#include "ServiceSession.h"

#include <QList>
#include <RKConditions.h>
#include <RKDataManage.h>

/// The data that the service holds, per monitoring and sub-category.
namespace dataheld {

/// At most `limit` of them from the one at `skip` on, newest first.
QList<RKDataManage> readPage(ServiceSession& session, const RKDataManageCondition& condition, int skip,
                             int limit);

int readCount(ServiceSession& session, const RKDataManageCondition& condition);

/// All of them. Throws a Failure when they kept changing.
QList<RKDataManage> readAll(ServiceSession& session, const RKDataManageCondition& condition);

/// The one with this identifier. Throws a Failure when there is none.
RKDataManage find(ServiceSession& session, const QString& id);

} // namespace dataheld
