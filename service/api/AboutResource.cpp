#include "api/Answers.h"
#include "api/Extensions.h"
#include "api/Parameters.h"
#include "api/Resources.h"

#include <array>

namespace monitorservice {

namespace {

std::string namesOf(Rights rights)
{
    JsonArrayWriter names;
    for (const Right right : {Right::Read, Right::Create, Right::Edit, Right::Delete, Right::Administer}) {
        if (rights.has(right)) {
            names.text(Rights(right).names());
        }
    }
    return names.finish();
}

std::string rightsArray(const std::vector<HeldRights>& all)
{
    JsonArrayWriter array;
    for (const HeldRights& held : all) {
        JsonObjectWriter object;
        held.project ? object.text("projectId", *held.project) : object.null("projectId");
        held.category ? object.text("category", *held.category) : object.null("category");
        array.json(object.json("rights", namesOf(held.rights)).finish());
    }
    return array.finish();
}

// GET about: which service this is, what it can, and who asks.
HttpResponse getAbout(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    JsonArrayWriter names;
    for (const std::string_view extension : extensions) {
        names.text(extension);
    }
    return answerJson(JsonObjectWriter()
                          .text("name", "monitor-service")
                          .text("version", MONITOR_SERVICE_VERSION)
                          .json("extensions", names.finish())
                          .text("owner", request.principal.owner())
                          .json("rights", rightsArray(request.principal.allRights()))
                          .finish());
}

} // namespace

std::vector<Route> aboutRoutes()
{
    return {{{"about"}, {{"GET", getAbout}}}};
}

} // namespace monitorservice
