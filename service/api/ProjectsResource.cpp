#include "api/AnswerSize.h"
#include "api/Answers.h"
#include "api/ApiError.h"
#include "api/Parameters.h"
#include "api/Resources.h"
#include "query/Matcher.h"
#include "query/Order.h"

#include <simdjson.h>

#include <algorithm>
#include <limits>

namespace monitorservice {

namespace {

std::string projectDocument(const Project& project)
{
    return JsonObjectWriter()
        .text("_id", project.id)
        .text("name", project.name)
        .text("timeZone", project.timeZone)
        .finish();
}

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

// The projects that the bearer has any right in, by identifier.
std::vector<Project> knownProjects(const ApiRequest& request)
{
    std::vector<Project> projects = request.session->projects().list();
    const auto unknown = std::remove_if(projects.begin(), projects.end(), [&](const Project& project) {
        return !request.principal.isKnownIn(project.id);
    });
    projects.erase(unknown, projects.end());
    return projects;
}

void keepMatching(std::vector<Project>& projects, const std::string& condition)
{
    Matcher matcher(Where::parse(condition));
    simdjson::dom::parser parser;
    const auto others = std::remove_if(projects.begin(), projects.end(), [&](const Project& project) {
        return !matcher.matches(parser.parse(projectDocument(project)));
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

// GET projects: a list like others, of the projects that the bearer has any right in.
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
        array.json(projectDocument(projects[i]));
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
    if (!project || !request.principal.isKnownIn(id)) {
        throw notFound("project", id);
    }
    return answerJson(projectDocument(*project));
}

} // namespace

std::vector<Route> projectRoutes()
{
    return {{{"projects"}, {{"GET", listProjects}}}, {{"projects", "*"}, {{"GET", getProject}}}};
}

} // namespace monitorservice
