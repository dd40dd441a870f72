#include "administration/ProjectAdministration.h"
#include "api/Administering.h"
#include "api/AnswerSize.h"
#include "api/Answers.h"
#include "api/ApiError.h"
#include "api/JsonBody.h"
#include "api/NameBody.h"
#include "api/Parameters.h"
#include "api/Resources.h"
#include "query/Matcher.h"
#include "query/Order.h"

#include <simdjson.h>

#include <algorithm>
#include <limits>

namespace monitorservice {

namespace {

const std::string& memberOf(const Project& project, const std::string& path)
{
    if (path == "_id") {
        return project.id;
    }
    if (path == "name") {
        return project.name;
    }
    if (path == "timeZone") {
        return project.timeZone;
    }
    refuseOrder(path);
}

bool maySee(const Principal& principal, const std::string& project)
{
    return principal.mayAdminister() || principal.isKnownIn(project);
}

// The projects that the bearer has any right in or administers, by identifier.
std::vector<Project> knownProjects(const ApiRequest& request)
{
    std::vector<Project> projects = request.session->projects().list();
    const auto unknown = std::remove_if(projects.begin(), projects.end(), [&](const Project& project) {
        return !maySee(request.principal, project.id);
    });
    projects.erase(unknown, projects.end());
    return projects;
}

void keepMatching(std::vector<Project>& projects, const std::string& condition)
{
    Matcher matcher(Where::parse(condition));
    simdjson::dom::parser parser;
    const auto others = std::remove_if(projects.begin(), projects.end(), [&](const Project& project) {
        return !matcher.matches(parser.parse(toDocument(project)));
    });
    projects.erase(others, projects.end());
}

void sortBy(std::vector<Project>& projects, const std::string& order)
{
    const std::vector<OrderTerm> terms = parseOrder(order);
    for (const OrderTerm& term : terms) {
        memberOf({}, term.path); // refused however few projects there are
    }
    std::stable_sort(projects.begin(), projects.end(), [&terms](const Project& left, const Project& right) {
        for (const OrderTerm& term : terms) {
            const int difference = memberOf(left, term.path).compare(memberOf(right, term.path));
            if (difference != 0) {
                return (difference < 0) != term.descending;
            }
        }
        return false;
    });
}

// GET projects: a list like others, of the projects that the bearer has any right in or administers.
HttpResponse listProjects(ApiRequest& request)
{
    const Parameters parameters(request.http, {"where", "skip", "limit", "only_count", "expand", "order"});
    parameters.flag("expand"); // checked alone: there is nothing to add
    const std::uint64_t skip = parameters.number("skip").value_or(0);
    const std::uint64_t limit =
        parameters.number("limit").value_or(std::numeric_limits<std::uint64_t>::max());
    std::vector<Project> projects = knownProjects(request);
    if (const std::string* const condition = parameters.text("where")) {
        keepMatching(projects, *condition);
    }
    if (const std::string* const order = parameters.text("order")) {
        sortBy(projects, *order);
    }
    if (parameters.flag("only_count")) {
        return answerCount(projects.size());
    }
    JsonArrayWriter array;
    for (std::size_t i = skip; i < projects.size() && i - skip < limit; ++i) {
        array.json(toDocument(projects[i]));
        requireRoom(array.size());
    }
    return answerJson(array.finish());
}

// GET projects/{project}
HttpResponse getProject(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    const std::string& id = request.ids[0];
    const std::optional<Project> project = request.session->projects().find(id);
    if (!project || !maySee(request.principal, id)) {
        throw notFound("project", id);
    }
    return answerJson(toDocument(*project));
}

ProjectDescription parseProjectBody(std::string_view json)
{
    const JsonBody text(json);
    std::optional<std::string> projectName;
    std::optional<std::string> timeZone;
    forEachMember(text.object(), "", [&](std::string_view name, simdjson::dom::element value) {
        if (name == "name") {
            projectName = textOf(value, "name");
        } else if (name == "timeZone") {
            timeZone = textOf(value, "timeZone");
        } else {
            throw ApiError(400, "\"" + std::string(name) + "\" is not a member that can be set");
        }
    });
    requireMember(projectName.has_value(), "name");
    requireMember(timeZone.has_value(), "timeZone");
    return {*projectName, *timeZone};
}

// POST projects: answers 201 and the project.
HttpResponse createProject(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    const ProjectDescription description = parseProjectBody(request.http.body);
    return administer(request, [&](Session& session, const std::string& author) {
        const Administered<Project> made = ProjectAdministration(session, author).create(description);
        return answerCreated(withWarnings(toDocument(made.thing), made.warnings),
                             "projects/" + made.thing.id);
    });
}

// PATCH projects/{project}: renames it; answers the project.
HttpResponse renameProject(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    const std::string name = parseNameBody(request.http.body);
    return administer(request, [&](Session& session, const std::string& author) {
        const Administered<Project> renamed =
            ProjectAdministration(session, author).rename(request.ids[0], name);
        return answerJson(withWarnings(toDocument(renamed.thing), renamed.warnings));
    });
}

// DELETE projects/{project}: answers what was removed.
HttpResponse removeProject(ApiRequest& request)
{
    const Parameters parameters(request.http, {});
    return administer(request, [&](Session& session, const std::string& author) {
        return answerJson(toDocument(ProjectAdministration(session, author).remove(request.ids[0])));
    });
}

} // namespace

std::vector<Route> projectRoutes()
{
    return {{{"projects"}, {{"GET", listProjects}, {"POST", createProject}}},
            {{"projects", "*"}, {{"GET", getProject}, {"PATCH", renameProject}, {"DELETE", removeProject}}}};
}

} // namespace monitorservice
