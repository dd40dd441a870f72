#include "api/ApiError.h"
#include "api/Parameters.h"
#include "api/Resources.h"
#include "domain/Cell.h"
#include "domain/DataManage.h"
#include "domain/PointLocation.h"
#include "domain/SubCategory.h"
#include "json/JsonText.h"
#include "trail/AuditTrail.h"

#include <utility>

namespace monitorservice {

namespace {

bool hasAny(const Documents& documents, const std::string& project, const std::string& parent,
            const Where* where = nullptr)
{
    DocumentQuery query;
    query.project = project;
    query.parent = parent;
    query.where = where;
    query.limit = 1;
    bool found = false;
    documents.visit(query, [&found](std::string_view /*document*/) { found = true; });
    return found;
}

// What would go with the data manage, for a message; empty when nothing would.
std::string dependentsOf(const Session& session, const DataManage& dataManage)
{
    const Where where = Where::equals("subCategoryId", dataManage.subCategory);
    std::string names;
    const auto add = [&names](bool present, const char* name) {
        names += present ? (names.empty() ? "" : ", ") + std::string(name) : std::string();
    };
    add(hasAny(session.documents(DocumentKind::PointLocation), dataManage.project, dataManage.cell, &where),
        "point locations");
    add(hasAny(session.documents(DocumentKind::History), dataManage.project, dataManage.id), "history");
    add(hasAny(session.documents(DocumentKind::Alarm), dataManage.project, dataManage.cell, &where),
        "alarms");
    return names;
}

// The data manage with the number of what goes with it.
std::string countedDocument(const Session& session, const DataManage& dataManage, const std::string& document)
{
    const Where where = Where::equals("subCategoryId", dataManage.subCategory);
    DocumentQuery query;
    query.project = dataManage.project;
    query.parent = dataManage.cell;
    query.where = &where;
    std::int64_t points = 0;
    std::int64_t samples = 0;
    session.documents(DocumentKind::PointLocation).visit(query, [&](std::string_view point) {
        ++points;
        samples += fromDocument<PointLocation>(point).insertCount;
    });
    const std::uint64_t alarms = session.documents(DocumentKind::Alarm).count(query);
    return std::string(openedDocument(document)) + ",\"points\":" + std::to_string(points) +
           ",\"samples\":" + std::to_string(samples) + ",\"alarms\":" + std::to_string(alarms) + "}";
}

// The names of the monitoring and the sub-category: a data manage has none.
std::string nameForPeople(const Session& session, const DataManage& dataManage)
{
    const auto cell = session.documents(DocumentKind::Cell).find(dataManage.cell);
    const auto subCategory = session.documents(DocumentKind::SubCategory).find(dataManage.subCategory);
    if (!cell || !subCategory) {
        throw DamagedDocument("the monitoring or the sub-category of a data manage is missing");
    }
    return fromDocument<Cell>(cell->text).name + " / " + fromDocument<SubCategory>(subCategory->text).name;
}

void recordDeletion(Session& session, const DataManage& dataManage, const StoredDocument& stored,
                    const Principal& principal)
{
    Change change;
    change.project = dataManage.project;
    change.category = stored.category;
    change.cell = dataManage.cell;
    change.subCategory = dataManage.subCategory;
    change.action = "dataManage.deleted";
    change.subject = dataManage.id;
    change.name = nameForPeople(session, dataManage);
    change.before = countedDocument(session, dataManage, stored.text);
    change.author.name = principal.owner();
    record(session, std::move(change));
}

// DELETE dataManages/{id}: answers what was deleted. With cascade=true everything goes that was delivered for
// its monitoring and sub-category or followed from that; without, it must be alone.
HttpResponse deleteDataManage(ApiRequest& request)
{
    const Parameters parameters(request.http, {"cascade"});
    const bool cascade = parameters.flag("cascade");
    const std::string& id = request.ids[0];

    const auto [session, principal] = beginWriting(request);
    std::optional<StoredDocument> stored = session->documents(DocumentKind::DataManage).find(id);
    if (!stored || !principal.may(Right::Read, stored->project, stored->category)) {
        throw notFound("data manage", id);
    }
    if (!principal.may(Right::Delete, stored->project, stored->category)) {
        throw ApiError(403, "the token may not delete in monitorings of category \"" + stored->category +
                                "\" in this project");
    }
    const auto dataManage = fromDocument<DataManage>(stored->text);
    const std::string dependents = dependentsOf(*session, dataManage);
    if (!cascade && !dependents.empty()) {
        throw ApiError(409,
                       "the data manage has " + dependents + "; cascade=true deletes them together with it");
    }
    recordDeletion(*session, dataManage, *stored, principal);
    session->measurements().removeDelivered(dataManage.cell, dataManage.subCategory);
    session->commit();
    HttpResponse response;
    response.body = std::move(stored->text);
    return response;
}

} // namespace

std::vector<Route> dataManageDeletionRoutes()
{
    return {{{"dataManages", "*"}, {{"DELETE", deleteDataManage}}}};
}

} // namespace monitorservice
