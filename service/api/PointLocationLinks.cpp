#include "api/Answers.h"
#include "api/ApiError.h"
#include "api/JsonBody.h"
#include "api/Parameters.h"
#include "api/Resources.h"
#include "api/SentLinks.h"
#include "domain/PointLocation.h"
#include "json/JsonText.h"
#include "trail/AuditTrail.h"

#include <algorithm>
#include <optional>
#include <utility>

namespace monitorservice {

namespace {

// The links of the body as they are stored.
std::string linksIn(std::string_view json)
{
    const JsonBody body(json);
    std::optional<std::string> links;
    forEachMember(body.object(), "", [&links](std::string_view name, simdjson::dom::element value) {
        if (name != "links") {
            throw ApiError(400, "\"" + std::string(name) + "\" is not a member that can be set");
        }
        links = toJson(parseLinks(value, "links").links);
    });
    requireMember(links.has_value(), "links");
    return *links;
}

// The categories of the project in which both rights are held; nothing when they are held in every category.
std::optional<std::vector<std::string>> categoriesWithBoth(const Principal& principal, Right one, Right other,
                                                           const std::string& project)
{
    std::optional<std::vector<std::string>> categories = principal.categoriesWith(one, project);
    if (!categories) {
        return principal.categoriesWith(other, project);
    }
    categories->erase(
        std::remove_if(categories->begin(), categories->end(),
                       [&](const std::string& category) { return !principal.may(other, project, category); }),
        categories->end());
    return categories;
}

DocumentQuery everyPoint(const std::string& project, std::optional<std::vector<std::string>> categories,
                         const Where& where)
{
    DocumentQuery query;
    query.project = project;
    query.categories = std::move(categories);
    query.where = &where;
    return query;
}

// A point and what the audit trail will tell of it.
struct LinkedPoint
{
    std::int64_t key = 0;
    Change change;
};

Change linkChange(const FoundPoint& found, const std::string& links, const std::string& who)
{
    const auto point = fromDocument<PointLocation>(found.document);
    Change change;
    change.project = point.project;
    change.category = found.category;
    change.cell = point.cell;
    change.subCategory = point.subCategory;
    change.action = "links.replaced";
    change.subject = point.id;
    change.name = point.name;
    change.before = JsonObjectWriter().json("links", found.links).finish();
    change.after = JsonObjectWriter().json("links", links).finish();
    change.author.name = who;
    return change;
}

// Gives each of these points the links, with an entry of its own in the audit trail where it had others: so
// it is found by the point. Gives their number. All are read before the first of them is changed.
std::uint64_t replaceLinksOf(Session& session, const DocumentQuery& query, const std::string& links,
                             const std::string& who)
{
    std::vector<LinkedPoint> points;
    session.measurements().select(query)->visit([&](const FoundPoint& found) {
        points.push_back({found.key, linkChange(found, links, who)});
    });
    for (LinkedPoint& point : points) {
        if (session.measurements().replaceLinks(point.key, links, session.now(), who)) {
            record(session, std::move(point.change));
        }
    }
    return points.size();
}

// PUT pointLocations?where: replaces all relations of every point that matches and that the bearer may read
// and edit, in every project; answers the number of these points. 403 when points match that the bearer may
// read, but none to edit. Where only editing is allowed nothing is done: the number would tell what may not
// be read.
HttpResponse replaceLinks(ApiRequest& request)
{
    const Parameters parameters(request.http, {"where"});
    const Where where = requiredCondition(parameters, "the relations of every point would be replaced");
    const std::string links = linksIn(request.http.body);

    const auto [session, principal] = beginWriting(request);
    std::uint64_t edited = 0;
    std::uint64_t readable = 0;
    for (const Project& project : session->projects().list()) {
        if (!principal.mayAnywhere(Right::Read, project.id)) {
            continue;
        }
        const DocumentQuery editable = everyPoint(
            project.id, categoriesWithBoth(principal, Right::Edit, Right::Read, project.id), where);
        edited += replaceLinksOf(*session, editable, links, principal.owner());
        const DocumentQuery seen =
            everyPoint(project.id, principal.categoriesWith(Right::Read, project.id), where);
        readable += edited > 0 ? 0 : session->measurements().select(seen)->count();
    }
    if (edited == 0 && readable > 0) {
        throw ApiError(403, "the token may not edit the points that match");
    }
    session->commit();
    return answerCount(edited);
}

} // namespace

std::vector<Route> pointLocationLinkRoutes()
{
    return {{{"pointLocations"}, {{"PUT", replaceLinks}}}};
}

} // namespace monitorservice
