#include "MonitoringFilter.h"

#include "CommandOptions.h"
#include "Lookup.h"
#include "PlaceMarkers.h"

void addFilterOptions(CLI::App& app, MonitoringFilter& filter)
{
    CLI::Option* name = options::addText(app, "--name", filter.name,
                                         "Names that contain this regular expression, case ignored")
                            ->type_name("PATTERN");
    options::addText(app, "--exact-name", filter.exactName, "This name, letter for letter")
        ->type_name("NAME")
        ->excludes(name);
    options::addText(app, "--model", filter.model, "Linked to this model")->type_name("MODEL");
    addPeriodOptions(app, filter.period, "Created at this time or later", "Created on this day or earlier");
}

RKMonitoringCondition conditionOf(const MonitoringFilter& filter, const std::function<QTimeZone()>& zoneOf)
{
    RKMonitoringCondition condition;
    condition.name = markers::keptOutOf(filter.name);
    if (!filter.exactName.isEmpty()) {
        lookup::restrictToName(filter.exactName, condition);
    }
    condition.modelId = markers::requireNone(filter.model, "--model");
    restrictTo(filter.period, zoneOf, condition);
    return condition;
}
