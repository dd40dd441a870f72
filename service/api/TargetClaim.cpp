#include "api/TargetClaim.h"

#include "domain/DataManage.h"
#include "domain/History.h"
#include "domain/PointLocation.h"

#include <optional>

namespace monitorservice {

namespace {

template <typename Document>
std::optional<Document> find(const Session& session, DocumentKind kind, const std::string& id)
{
    const std::optional<StoredDocument> stored = session.documents(kind).find(id);
    return stored ? std::optional(fromDocument<Document>(stored->text)) : std::nullopt;
}

template <typename Document>
Claim claimFor(const std::optional<Document>& delivered)
{
    return delivered ? Claim{{{{delivered->cell, delivered->subCategory}}}} : Claim();
}

} // namespace

Claim claimOfPoint(const Session& session, const std::string& point)
{
    return claimFor(find<PointLocation>(session, DocumentKind::PointLocation, point));
}

Claim claimOfDelivery(const Session& session, const std::string& history)
{
    const auto entry = find<History>(session, DocumentKind::History, history);
    return entry ? claimFor(find<DataManage>(session, DocumentKind::DataManage, entry->dataManage)) : Claim();
}

} // namespace monitorservice
