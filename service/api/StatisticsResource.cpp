#include "api/Answers.h"
#include "api/ApiError.h"
#include "api/Parameters.h"
#include "api/Resources.h"
#include "statistics/DailyStatistics.h"
#include "time/LocalDays.h"

namespace monitorservice {

namespace {

// About as many as fit the largest answer that the client library takes.
constexpr std::size_t mostValues = 1'000'000;

enum class Points
{
    All,
    WithDepth
};

void requireRoom(const DailyStatistics& statistics)
{
    if (statistics.size() > mostValues) {
        throw ApiError(413,
                       "the answer would have more than " + std::to_string(mostValues) +
                           " values; ask for a shorter period with a condition on \"time\", or for fewer "
                           "points");
    }
}

HttpResponse answerStatistics(const ApiRequest& request, const Where& where, Points points)
{
    const std::string& projectId = request.ids[0];
    DocumentQuery query;
    query.project = projectId;
    query.categories = request.principal.categoriesWith(Right::Read, projectId);
    query.where = &where;
    const std::optional<Project> project = request.session->projects().find(projectId);
    if (!project || (query.categories && query.categories->empty())) {
        throw notFound("project", projectId);
    }

    DailyStatistics statistics;
    const auto selection = request.session->measurements().select(query);
    selection->visitDays(
        [&statistics, points](const FoundPoint& point) {
            const bool isWanted = points == Points::All || !point.depth.empty();
            if (isWanted) {
                statistics.beginPoint(point);
            }
            return isWanted;
        },
        [&statistics](const DayValue& day) {
            statistics.add(day);
            requireRoom(statistics);
        });
    LocalDays days(project->timeZone);
    return answerJson(statistics.text(days));
}

Where whereIn(const Parameters& parameters)
{
    parameters.flag("expand"); // read for its check alone: relations are always there
    const std::string* const condition = parameters.text("where");
    return condition == nullptr ? Where() : Where::parse(*condition);
}

// GET projects/{project}/normal_statistics: for each day of the project's time zone the last chosen sample of
// each point, see DailyStatistics.
HttpResponse getNormalStatistics(ApiRequest& request)
{
    const Parameters parameters(request.http, {"where", "expand"});
    return answerStatistics(request, whereIn(parameters), Points::All);
}

// GET projects/{project}/depth_statistics: the same of the points with a depth.
HttpResponse getDepthStatistics(ApiRequest& request)
{
    const Parameters parameters(request.http, {"where", "expand", "type"});
    const std::string* const type = parameters.text("type");
    if (type != nullptr && *type != "depth") {
        throw ApiError(400, "parameter \"type\" must be depth, not \"" + *type + "\"");
    }
    return answerStatistics(request, whereIn(parameters), Points::WithDepth);
}

} // namespace

std::vector<Route> statisticsRoutes()
{
    return {{{"projects", "*", "normal_statistics"}, {{"GET", getNormalStatistics}}},
            {{"projects", "*", "depth_statistics"}, {{"GET", getDepthStatistics}}}};
}

} // namespace monitorservice
