#include "PointFilter.h"

#include "CommandOptions.h"
#include "Lookup.h"

void addPointFilterOptions(CLI::App& app, PointFilter& filter)
{
    options::addCell(app, filter.cell)->required();
    options::addTexts(app, "--name", filter.names, "Only the point of this name; once for each")
        ->type_name("NAME");
    addPeriodOptions(app, filter.period, "Measured at this time or later", "Measured on this day or earlier");
    app.add_flag("--flag-a", filter.isOnlyFlagA, "Only samples whose time flag is \"A\"");
}

RKPointLocationCondition conditionOf(const PointFilter& filter, const RKMonitoring& monitoring)
{
    RKPointLocationCondition condition;
    restrictTo(filter.period, condition);
    condition.cellId = monitoring.id;
    condition.names = filter.names;
    condition.onlyTimeFlagA = filter.isOnlyFlagA;
    return condition;
}
