#include "api/Answers.h"
#include "api/ApiError.h"
#include "api/CellBody.h"
#include "api/JsonBody.h"
#include "api/Listing.h"
#include "api/Parameters.h"
#include "api/Permission.h"
#include "api/Resources.h"
#include "trail/AuditTrail.h"

#include <utility>

namespace monitorservice {

namespace {

constexpr const char* cellKind = "monitoring";
constexpr const char* cellKinds = "monitorings";

void requireMayCreate(const Session& session, const Principal& principal, const CellBody& body)
{
    const bool knowsProject = principal.mayAnywhere(Right::Read, *body.project) ||
                              principal.mayAnywhere(Right::Create, *body.project);
    if (!knowsProject) {
        throw notFound("project", *body.project);
    }
    requireSentCategory(session, *body.category);
    requireRight(principal, Right::Create, cellKinds, *body.project, *body.category);
}

// What is common to the entries of the audit trail about a monitoring.
Change cellChange(const char* action, const Cell& cell, const Principal& principal)
{
    Change change;
    change.project = cell.project;
    change.category = cell.category;
    change.cell = cell.id;
    change.action = action;
    change.subject = cell.id;
    change.name = cell.name;
    change.author.name = principal.owner();
    return change;
}

// POST cells: answers 201 and the whole monitoring.
HttpResponse createCell(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    const CellBody body = parseCellBody(request.http.body);
    requireMember(body.project.has_value(), "projectId");
    requireMember(body.name.has_value(), "name");
    requireMember(body.category.has_value(), "category");

    const auto [session, principal] = beginWriting(request);
    requireMayCreate(*session, principal, body);
    Cell cell;
    cell.id = session->newIdentifier();
    cell.project = *body.project;
    cell.stamp = Stamp::of({principal.owner(), isoText(session->now())});
    applyTo(cell, body);
    std::string document = toDocument(cell);
    session->documents(DocumentKind::Cell).insert(cell.project, cell.id, document);
    Change change = cellChange("cell.created", cell, principal);
    change.after = document;
    record(*session, std::move(change));
    session->commit();

    return answerCreated(std::move(document), "cells/" + cell.id);
}

// GET cells/{id}
HttpResponse getCell(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    return answerJson(
        readable(request.session->documents(DocumentKind::Cell), request.principal, cellKind, request.ids[0])
            .text);
}

// What hangs on a monitoring would be lost with it, and belongs to a sub-category of its category: it has to
// be deleted first, each by its own request. `what` names what cannot be done before.
void requireNothingMeasured(const Session& session, const StoredDocument& cell, const std::string& what)
{
    DocumentQuery query;
    query.project = cell.project;
    query.parent = cell.id;
    std::string names;
    const auto add = [&](const Documents& documents, const char* name) {
        const std::uint64_t number = documents.count(query);
        if (number > 0) {
            names += (names.empty() ? "" : ", ") + std::string(name) + ": " + std::to_string(number);
        }
    };
    add(session.documents(DocumentKind::PointLocation), "point locations");
    add(session.documents(DocumentKind::Group), "groups");
    add(session.documents(DocumentKind::DataManage), "data manages");
    add(session.documents(DocumentKind::Alarm), "alarms");
    if (!names.empty()) {
        throw ApiError(409, "the monitoring cannot " + what + " while it has " + names);
    }
}

// PUT cells/{id}: changes the members that are sent and answers the whole monitoring. Its times change with
// its content only.
HttpResponse updateCell(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    const CellBody body = parseCellBody(request.http.body);

    const auto [session, principal] = beginWriting(request);
    StoredDocument stored =
        readable(session->documents(DocumentKind::Cell), principal, cellKind, request.ids[0]);
    requireRight(principal, Right::Edit, cellKinds, stored.project, stored.category);
    if (body.project && *body.project != stored.project) {
        throw ApiError(400, "\"projectId\": a monitoring stays in its project");
    }
    if (body.category && *body.category != stored.category) {
        requireSentCategory(*session, *body.category);
        requireRight(principal, Right::Edit, cellKinds, stored.project, *body.category);
        requireNothingMeasured(*session, stored, "change its category");
    }
    Cell cell = fromDocument<Cell>(stored.text);
    Change was = cellChange("cell.changed", cell, principal);
    if (!applyTo(cell, body)) {
        return answerJson(std::move(stored.text));
    }
    cell.stamp.change({principal.owner(), isoText(session->now())});
    std::string document = toDocument(cell);
    session->documents(DocumentKind::Cell).replace(cell.project, cell.id, document);
    was.before = std::move(stored.text);
    Change is = cellChange("cell.changed", cell, principal);
    is.after = document;
    recordReplaced(*session, std::move(was), std::move(is));
    session->commit();
    return answerJson(std::move(document));
}

// DELETE cells/{id}: answers what was deleted.
HttpResponse deleteCell(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    const auto [session, principal] = beginWriting(request);
    StoredDocument stored =
        readable(session->documents(DocumentKind::Cell), principal, cellKind, request.ids[0]);
    requireRight(principal, Right::Delete, cellKinds, stored.project, stored.category);
    requireNothingMeasured(*session, stored, "be deleted");
    session->documents(DocumentKind::Cell).remove(stored.project, stored.id);
    Change change = cellChange("cell.deleted", fromDocument<Cell>(stored.text), principal);
    change.before = stored.text;
    record(*session, std::move(change));
    session->commit();
    return answerJson(std::move(stored.text));
}

// GET projects/{project}/cells: see answerListing().
HttpResponse listCells(ApiRequest& request)
{
    return answerListing(request, request.ids[0], request.session->documents(DocumentKind::Cell));
}

} // namespace

std::vector<Route> cellRoutes()
{
    return {{{"cells"}, {{"POST", createCell}}},
            {{"cells", "*"}, {{"GET", getCell}, {"PUT", updateCell}, {"DELETE", deleteCell}}},
            {{"projects", "*", "cells"}, {{"GET", listCells}}}};
}

} // namespace monitorservice
