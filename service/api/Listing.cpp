#include "api/Listing.h"

#include "api/ApiError.h"
#include "api/Parameters.h"
#include "json/JsonText.h"

#include <algorithm>

namespace monitorservice {

namespace {

constexpr std::uint64_t largestPage = 1000;

} // namespace

HttpResponse answerListing(const ApiRequest& request, const std::string& project, const Documents& documents)
{
    const Parameters parameters(request.http, {"where", "skip", "limit", "only_count", "expand", "order"});
    parameters.flag("expand"); // read for its check alone: these documents have nothing to expand
    DocumentQuery query;
    query.project = project;
    query.categories = request.principal.categoriesWith(Right::Read, project);
    query.skip = parameters.number("skip").value_or(0);
    query.limit = std::min(parameters.number("limit").value_or(largestPage), largestPage);
    const bool onlyCount = parameters.flag("only_count");
    if (const std::string* const order = parameters.text("order")) {
        query.order = *order;
    }
    Where where;
    if (const std::string* const condition = parameters.text("where")) {
        where = Where::parse(*condition);
        query.where = &where;
    }
    if (query.categories && query.categories->empty()) {
        throw notFound("project", project);
    }

    HttpResponse response;
    if (onlyCount) {
        response.body =
            JsonObjectWriter().integer("count", static_cast<std::int64_t>(documents.count(query))).finish();
        return response;
    }
    JsonArrayWriter array;
    documents.visit(query, [&array](std::string_view document) { array.json(document); });
    response.body = array.finish();
    return response;
}

} // namespace monitorservice
