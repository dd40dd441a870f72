#include "api/ApiError.h"
#include "api/Parameters.h"
#include "api/Resources.h"

#include <simdjson.h>

namespace monitorservice {

namespace {

std::string textIn(const std::string& document, const char* name)
{
    simdjson::dom::parser parser;
    std::string_view text;
    if (parser.parse(document)[name].get(text) != simdjson::SUCCESS) {
        throw StoreError(StoreFailure::InputOutput, "a stored data manage is damaged");
    }
    return std::string(text);
}

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
std::string dependentsOf(const Session& session, const StoredDocument& dataManage)
{
    const std::string cell = textIn(dataManage.text, "cellId");
    const Where where = Where::equals("subCategoryId", textIn(dataManage.text, "subCategoryId"));
    std::string names;
    const auto add = [&names](bool present, const char* name) {
        names += present ? (names.empty() ? "" : ", ") + std::string(name) : std::string();
    };
    add(hasAny(session.documents(DocumentKind::PointLocation), dataManage.project, cell, &where),
        "point locations");
    add(hasAny(session.documents(DocumentKind::History), dataManage.project, dataManage.id), "history");
    add(hasAny(session.documents(DocumentKind::Alarm), dataManage.project, cell, &where), "alarms");
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
    const std::string dependents = dependentsOf(*session, *stored);
    if (!cascade && !dependents.empty()) {
        throw ApiError(409,
                       "the data manage has " + dependents + "; cascade=true deletes them together with it");
    }
    session->measurements().removeDelivered(textIn(stored->text, "cellId"),
                                            textIn(stored->text, "subCategoryId"));
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
