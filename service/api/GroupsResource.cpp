#include "api/Answers.h"
#include "api/ApiError.h"
#include "api/GroupBody.h"
#include "api/GroupWarnings.h"
#include "api/JsonBody.h"
#include "api/Listing.h"
#include "api/Parameters.h"
#include "api/Permission.h"
#include "api/Resources.h"
#include "trail/AuditTrail.h"

#include <utility>

namespace monitorservice {

namespace {

constexpr const char* groupKind = "group";
constexpr const char* groupKinds = "groups";

// The monitoring that a body names. Who may neither read nor change it is told that there is none.
StoredDocument namedCell(const Session& session, const Principal& principal, Right right,
                         const std::string& project, const std::string& id)
{
    std::optional<StoredDocument> cell = session.documents(DocumentKind::Cell).find(id);
    const bool known = cell && cell->project == project &&
                       (principal.may(Right::Read, project, cell->category) ||
                        principal.may(right, project, cell->category));
    if (!known) {
        throw ApiError(400, "\"cellId\": there is no monitoring \"" + id + "\" in this project");
    }
    requireRight(principal, right, groupKinds, project, cell->category);
    return std::move(*cell);
}

// Checks that the group's monitoring and sub-category exist, belong together, and may be worked on. Gives the
// category of both.
std::string requirePlace(const Session& session, const Principal& principal, Right right, const Group& group)
{
    StoredDocument cell = namedCell(session, principal, right, group.project, group.cell);
    const std::optional<StoredDocument> subCategory =
        session.documents(DocumentKind::SubCategory).find(group.subCategory);
    if (!subCategory || subCategory->project != group.project || subCategory->category != cell.category) {
        throw ApiError(400, "\"subCategoryId\": category \"" + cell.category +
                                "\" of the monitoring has no sub-category \"" + group.subCategory +
                                "\" in this project");
    }
    return std::move(cell.category);
}

// The group as it is answered to who sent it: with what is hardly meant, as far as they may know it.
std::string asItIsSeen(const Session& session, const Principal& principal, const std::string& category,
                       std::string document)
{
    const auto group = fromDocument<Group>(document);
    return withWarnings(std::move(document),
                        warningsOf(session, group, principal.may(Right::Read, group.project, category)));
}

// What is common to the entries of the audit trail about a group.
Change groupChange(const char* action, const Group& group, const std::string& category,
                   const Principal& principal)
{
    Change change;
    change.project = group.project;
    change.category = category;
    change.cell = group.cell;
    change.subCategory = group.subCategory;
    change.action = action;
    change.subject = group.id;
    change.name = group.name;
    change.author.name = principal.owner();
    return change;
}

// POST groupSettings: answers 201 and the whole group.
HttpResponse createGroup(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    const GroupBody body = parseGroupBody(request.http.body);
    requireMember(body.project.has_value(), "projectId");
    requireMember(body.cell.has_value(), "cellId");
    requireMember(body.subCategory.has_value(), "subCategoryId");
    requireMember(body.name.has_value(), "groupName");

    const auto [session, principal] = beginWriting(request);
    Group group;
    group.project = *body.project;
    applyTo(group, body);
    const std::string category = requirePlace(*session, principal, Right::Create, group);
    group.id = session->newIdentifier();
    group.stamp = Stamp::of({principal.owner(), isoText(session->now())});
    std::string document = toDocument(group);
    session->documents(DocumentKind::Group).insert(group.project, group.id, document);
    Change change = groupChange("group.created", group, category, principal);
    change.after = document;
    record(*session, std::move(change));
    std::string answer = asItIsSeen(*session, principal, category, std::move(document));
    session->commit();
    return answerCreated(std::move(answer), "groupSettings/" + group.id);
}

// GET groupSettings/{id}
HttpResponse getGroup(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    return answerJson(readable(request.session->documents(DocumentKind::Group), request.principal, groupKind,
                               request.ids[0])
                          .text);
}

// PUT groupSettings/{id}: changes the members that are sent and answers the whole group. Its times change
// with its content only.
HttpResponse updateGroup(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    const GroupBody body = parseGroupBody(request.http.body);

    const auto [session, principal] = beginWriting(request);
    StoredDocument stored =
        readable(session->documents(DocumentKind::Group), principal, groupKind, request.ids[0]);
    requireRight(principal, Right::Edit, groupKinds, stored.project, stored.category);
    if (body.project && *body.project != stored.project) {
        throw ApiError(400, "\"projectId\": a group stays in its project");
    }
    Group group = fromDocument<Group>(stored.text);
    Change was = groupChange("group.changed", group, stored.category, principal);
    if (!applyTo(group, body)) {
        return answerJson(asItIsSeen(*session, principal, stored.category, std::move(stored.text)));
    }
    const bool mayMove = body.cell || body.subCategory;
    const std::string category =
        mayMove ? requirePlace(*session, principal, Right::Edit, group) : stored.category;
    group.stamp.change({principal.owner(), isoText(session->now())});
    std::string document = toDocument(group);
    session->documents(DocumentKind::Group).replace(group.project, group.id, document);
    was.before = std::move(stored.text);
    Change is = groupChange("group.changed", group, category, principal);
    is.after = document;
    recordReplaced(*session, std::move(was), std::move(is));
    std::string answer = asItIsSeen(*session, principal, category, std::move(document));
    session->commit();
    return answerJson(std::move(answer));
}

// DELETE groupSettings/{id}: answers what was deleted.
HttpResponse deleteGroup(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    const auto [session, principal] = beginWriting(request);
    StoredDocument stored =
        readable(session->documents(DocumentKind::Group), principal, groupKind, request.ids[0]);
    requireRight(principal, Right::Delete, groupKinds, stored.project, stored.category);
    session->documents(DocumentKind::Group).remove(stored.project, stored.id);
    Change change =
        groupChange("group.deleted", fromDocument<Group>(stored.text), stored.category, principal);
    change.before = stored.text;
    record(*session, std::move(change));
    session->commit();
    return answerJson(std::move(stored.text));
}

// GET projects/{project}/groupSettings: see answerListing().
HttpResponse listGroups(ApiRequest& request)
{
    return answerListing(request, request.ids[0], request.session->documents(DocumentKind::Group));
}

// GET cells/{id}/groupSettings: see answerListing().
HttpResponse listGroupsOfCell(ApiRequest& request)
{
    return answerListingOf(request, {request.session->documents(DocumentKind::Cell), "monitoring"},
                           request.session->documents(DocumentKind::Group));
}

} // namespace

std::vector<Route> groupRoutes()
{
    return {{{"groupSettings"}, {{"POST", createGroup}}},
            {{"groupSettings", "*"}, {{"GET", getGroup}, {"PUT", updateGroup}, {"DELETE", deleteGroup}}},
            {{"projects", "*", "groupSettings"}, {{"GET", listGroups}}},
            {{"cells", "*", "groupSettings"}, {{"GET", listGroupsOfCell}}}};
}

} // namespace monitorservice
