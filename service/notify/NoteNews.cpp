#include "notify/NoteNews.h"

#include "domain/Alarm.h"
#include "domain/Cell.h"
#include "store/StoreError.h"

#include <optional>

namespace monitorservice {

void noteNews(Session& session, const std::string& alarm)
{
    const Session& stored = session;
    const std::optional<StoredDocument> found = stored.documents(DocumentKind::Alarm).find(alarm);
    const std::optional<StoredDocument> cell =
        found ? stored.documents(DocumentKind::Cell).find(fromDocument<Alarm>(found->text).cell)
              : std::nullopt;
    if (!cell) {
        throw StoreError(StoreFailure::Conflict, "there is no alarm " + alarm);
    }
    for (const std::string& recipient : fromDocument<Cell>(cell->text).alarmTo) {
        session.outbox().note(alarm, Channel::Mail, recipient);
    }
    session.outbox().note(alarm, Channel::Webhook, {});
}

} // namespace monitorservice
