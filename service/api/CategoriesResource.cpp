#include "administration/CategoryAdministration.h"
#include "api/Administering.h"
#include "api/Answers.h"
#include "api/NameBody.h"
#include "api/Parameters.h"
#include "api/Resources.h"
#include "http/RequestTarget.h"
#include "json/JsonText.h"

namespace monitorservice {

namespace {

// GET categories: an array of texts, the same for every caller.
HttpResponse getCategories(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    JsonArrayWriter array;
    for (const std::string& category : request.session->categories().list()) {
        array.text(category);
    }
    HttpResponse response;
    response.body = array.finish();
    return response;
}

// POST categories: answers 201 and {"name": …}.
HttpResponse addCategory(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    const std::string name = parseNameBody(request.http.body);
    return administer(request, [&](Session& session, const std::string& author) {
        const Administered<std::string> added = CategoryAdministration(session, author).add(name);
        return answerCreated(withWarnings(categoryDocument(added.thing), added.warnings),
                             "categories/" + encodedSegment(added.thing));
    });
}

// PATCH categories/{name}: renames it in all projects; answers {"name": …}.
HttpResponse renameCategory(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    const std::string name = parseNameBody(request.http.body);
    return administer(request, [&](Session& session, const std::string& author) {
        const Administered<std::string> renamed =
            CategoryAdministration(session, author).rename(request.ids[0], name);
        return answerJson(withWarnings(categoryDocument(renamed.thing), renamed.warnings));
    });
}

// DELETE categories/{name}: answers what was removed.
HttpResponse removeCategory(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    return administer(request, [&](Session& session, const std::string& author) {
        return answerJson(categoryDocument(CategoryAdministration(session, author).remove(request.ids[0])));
    });
}

} // namespace

std::vector<Route> categoryRoutes()
{
    return {{{"categories"}, {{"GET", getCategories}, {"POST", addCategory}}},
            {{"categories", "*"}, {{"PATCH", renameCategory}, {"DELETE", removeCategory}}}};
}

} // namespace monitorservice
