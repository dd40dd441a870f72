#include "trail/AuditTrail.h"

#include "time/Instant.h"

#include <utility>

namespace monitorservice {

void record(Session& session, Change change)
{
    change.id = session.newIdentifier();
    change.author.time = isoText(session.now());
    session.documents(DocumentKind::Change).insert(change.project, change.id, toDocument(change));
}

void recordReplaced(Session& session, Change was, Change is)
{
    if (was.category == is.category) {
        is.before = std::move(was.before);
    } else {
        record(session, std::move(was));
    }
    record(session, std::move(is));
}

} // namespace monitorservice
