#include "trail/AuditTrail.h"

#include "time/Instant.h"

namespace monitorservice {

void record(Session& session, Change change)
{
    change.id = session.newIdentifier();
    change.author.time = isoText(session.now());
    session.documents(DocumentKind::Change).insert(change.project, change.id, toDocument(change));
}

} // namespace monitorservice
