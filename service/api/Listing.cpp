#include "api/Listing.h"

#include "api/AnswerSize.h"
#include "api/Answers.h"
#include "api/ApiError.h"
#include "api/Parameters.h"
#include "api/Permission.h"
#include "json/JsonText.h"
#include "query/Order.h"

#include <cstddef>
#include <vector>

namespace monitorservice {

namespace {

std::vector<std::string_view> knownParameters(const std::vector<std::string_view>& besides)
{
    std::vector<std::string_view> known{"where", "skip", "limit", "only_count", "expand", "order"};
    known.insert(known.end(), besides.begin(), besides.end());
    return known;
}

std::vector<std::string> textsOf(const Documents& documents, const DocumentQuery& query)
{
    std::vector<std::string> texts;
    std::size_t bytes = 0;
    documents.visit(query, [&texts, &bytes](std::string_view document) {
        texts.emplace_back(document);
        bytes += document.size();
        requireRoom(bytes);
    });
    return texts;
}

} // namespace

ListReach readableIn(const ApiRequest& request, const std::string& project)
{
    ListReach reach;
    reach.project = project;
    reach.categories = request.principal.categoriesWith(Right::Read, project);
    return reach;
}

ListParameters::ListParameters(const ApiRequest& request, const ListReach& reach,
                               const std::vector<std::string_view>& besides)
    : given(request.http, knownParameters(besides))
{
    query.project = reach.project;
    query.everyProject = reach.everyProject;
    query.categories = reach.categories;
    query.skip = given.number("skip").value_or(0);
    query.limit = given.number("limit").value_or(query.limit);
    onlyCount = given.flag("only_count");
    expand = given.flag("expand");
    if (const std::string* const condition = given.text("where")) {
        where = Where::parse(*condition);
        query.where = &where;
    }
    if (query.categories && query.categories->empty()) {
        throw notFound("project", reach.project);
    }
    if (const std::string* const order = given.text("order")) {
        query.order = parseOrder(*order);
    }
}

HttpResponse answerListing(const ApiRequest& request, const std::string& project, const Documents& documents,
                           const ListKind& kind)
{
    return answerListing(request, readableIn(request, project), documents, kind);
}

HttpResponse answerListing(const ApiRequest& request, const ListReach& reach, const Documents& documents,
                           const ListKind& kind)
{
    ListParameters parameters(request, reach);
    return answerListing(parameters, documents, kind);
}

HttpResponse answerListing(ListParameters& parameters, const Documents& documents, const ListKind& kind)
{
    DocumentQuery& query = parameters.query;
    query.parent = kind.parent;
    if (query.order.empty() && kind.order != nullptr) {
        query.order = parseOrder(kind.order);
    }
    if (parameters.onlyCount) {
        return answerCount(documents.count(query));
    }
    const bool expanding = parameters.expand && kind.expanded != nullptr;
    JsonArrayWriter array;
    if (!expanding) {
        documents.visit(query, [&array](std::string_view document) {
            array.json(document);
            requireRoom(array.size());
        });
        return answerJson(array.finish());
    }
    // What is added may be read from the same session, which is free only after the visit.
    for (const std::string& document : textsOf(documents, query)) {
        array.json(kind.expanded(document));
        requireRoom(array.size());
    }
    return answerJson(array.finish());
}

HttpResponse answerListingOf(const ApiRequest& request, const ListParent& parent, const Documents& documents,
                             const char* order)
{
    const StoredDocument stored = readable(parent.documents, request.principal, parent.kind, request.ids[0]);
    return answerListing(request, stored.project, documents, {stored.id, order});
}

} // namespace monitorservice
