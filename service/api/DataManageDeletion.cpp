#include "api/ApiError.h"
#include "api/Parameters.h"
#include "api/Resources.h"
#include "domain/DataManage.h"

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
