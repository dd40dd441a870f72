#include "PointFilter.h"

#include "CommandOptions.h"
#include "Lookup.h"

namespace {

void addOptionsButCells(CLI::App& app, PointFilter& filter)
{
    options::addTexts(app, "--name", filter.names, "Only the point of this name; once for each")
        ->type_name("NAME");
    options::addTexts(app, "--sub-category", filter.subCategories,
                      "Only points of this sub-category, by identifier, name or alias; once for each");
    addPeriodOptions(app, filter.period, "Measured at this time or later", "Measured on this day or earlier");
    app.add_flag("--flag-a", filter.isOnlyFlagA, "Only samples whose time flag is \"A\"");
}

} // namespace

void addPointFilterOptions(CLI::App& app, PointFilter& filter)
{
    options::addTexts(app, "--cell", filter.cells, "The monitoring, by identifier or exact name")
        ->type_name("MONITORING")
        ->required()
        ->expected(1)
        ->multi_option_policy(CLI::MultiOptionPolicy::Throw);
    addOptionsButCells(app, filter);
}

void addPointFilterOptionsOfSeveral(CLI::App& app, PointFilter& filter)
{
    options::addTexts(app, "--cell", filter.cells, "A monitoring, by identifier or exact name; once for each")
        ->type_name("MONITORING")
        ->required();
    addOptionsButCells(app, filter);
}

RKMonitoring monitoringOf(Session& session, const PointFilter& filter)
{
    return lookup::monitoring(session, filter.cells.constFirst());
}

RKPointLocationCondition conditionOf(Session& session, const PointFilter& filter,
                                     const RKMonitoring& monitoring)
{
    RKPointLocationCondition condition;
    restrictTo(filter.period, session.zoneOf(), condition);
    condition.cellId = monitoring.id;
    condition.names = filter.names;
    condition.onlyTimeFlagA = filter.isOnlyFlagA;
    return condition;
}

PointSelection selectionOf(Session& session, const PointFilter& filter, const RKMonitoring& monitoring)
{
    return {session, monitoring, filter.names, filter.subCategories};
}
