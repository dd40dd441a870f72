#include "CommandOptions.h"
#include "Commands.h"
#include "Lookup.h"
#include "PointFilter.h"
#include "Terminal.h"
#include "chart/LimitLines.h"
#include "chart/StatisticsChart.h"
#include "plot/ChartFile.h"
#include "plot/TextChart.h"

#include <algorithm>

namespace {

struct StatisticsOptions
{
    PointFilter filter;
    bool isDrawn = false;
    QString plot;
    QString title;
    QString unit;
    QString depthUnit;
};

Sheet statisticsSheet(const chart::Days& days)
{
    Sheet sheet{{column::fixed("DAY", "day"), column::text("NAME", "name"), column::fixed("DEPTH", "depth"),
                 column::fixed("VALUE", "value"), column::fixed("COUNT", "count"),
                 column::fixed("MEASURED", "time"), column::unlisted("POINT", "id")},
                {}};
    for (auto day = days.cbegin(); day != days.cend(); ++day) {
        for (const RKPointLocationChartData& entry : *day) {
            sheet.rows.append({day.key().toString(Qt::ISODate), entry.name, noneIfEmpty(entry.depth),
                               entry.value, entry.count, entry.time, entry.id});
        }
    }
    return sheet;
}

QString withUnit(const QString& text, const QString& unit)
{
    return unit.isEmpty() ? text : QStringLiteral("%1 (%2)").arg(text, unit);
}

QString titleOf(const StatisticsOptions& options, const RKMonitoring& monitoring)
{
    if (!options.title.isEmpty()) {
        return options.title;
    }
    return options.filter.names.isEmpty()
               ? monitoring.name
               : monitoring.name + QStringLiteral(": ") + options.filter.names.join(QStringLiteral(", "));
}

void addLimits(Session& session, const RKMonitoring& monitoring, const chart::Days& days, Chart& chart)
{
    if (chart::addLimitsOf(session, monitoring, days, chart) == chart::LimitOrigin::FirstReading) {
        chart.title += QStringLiteral(" (limits about the first readings)");
        session.note(
            QStringLiteral("the limits are drawn about the first readings, since initial values that are 0 "
                           "or have a fraction cannot be read"));
    }
}

Chart depthChart(Session& session, const chart::Days& days)
{
    const QStringList profiles = chart::namesWithProfile(days);
    const bool isSeveral = profiles.size() > 1;
    if (isSeveral) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("a chart over depth shows one point; --name chooses among %1")
                          .arg(profiles.join(QStringLiteral(", "))));
    }
    constexpr int mostCurves = 20;
    if (days.size() > mostCurves) {
        session.note(QStringLiteral("%1 of %2 days are drawn; --since and --until choose")
                         .arg(mostCurves)
                         .arg(days.size()));
    }
    return chart::overDepth(chart::thinned(days, mostCurves));
}

void draw(Session& session, const StatisticsOptions& options, const RKMonitoring& monitoring, Chart chart)
{
    chart.title = titleOf(options, monitoring) + chart.title;
    chart.valueLabel = withUnit(QStringLiteral("Value"), options.unit);
    if (chart.curves.isEmpty()) {
        throw Failure(
            FailureKind::NotFound,
            QStringLiteral("there is nothing to draw: no reading of \"%1\" matches").arg(monitoring.name));
    }
    if (options.isDrawn) {
        session.output().addPlainTexts(QStringLiteral("chart"),
                                       QStringList{chart.title} + textChart(chart, terminal::width()));
    }
    if (!options.plot.isEmpty()) {
        writeChart(chart, options.plot);
        session.note(QStringLiteral("wrote %1").arg(options.plot));
    }
}

ExitCode showStatistic(Session& session, const StatisticsOptions& options, chart::Statistic statistic)
{
    if (!options.plot.isEmpty()) {
        requireChartPath(options.plot);
    }
    const RKMonitoring monitoring = lookup::monitoring(session, options.filter.cell);
    const chart::Days days =
        chart::readDays(session, monitoring, conditionOf(options.filter, monitoring), statistic);
    if (!options.isDrawn && options.plot.isEmpty()) {
        session.output().addList(statisticsSheet(days));
        return ExitCode::Success;
    }
    Chart chart;
    if (statistic == chart::Statistic::Depth) {
        chart = depthChart(session, days);
        chart.otherLabel = withUnit(QStringLiteral("Depth"), options.depthUnit);
    } else {
        chart = chart::overTime(days);
        if (!options.plot.isEmpty()) {
            addLimits(session, monitoring, days, chart);
        }
    }
    draw(session, options, monitoring, chart);
    return ExitCode::Success;
}

ExitCode showNormal(Session& session, const StatisticsOptions& options)
{
    return showStatistic(session, options, chart::Statistic::Normal);
}

ExitCode showDepth(Session& session, const StatisticsOptions& options)
{
    return showStatistic(session, options, chart::Statistic::Depth);
}

void addDrawingOptions(CLI::App& app, StatisticsOptions& values)
{
    app.add_flag("--draw", values.isDrawn, "Draw in the terminal instead of a table");
    options::addText(app, "--plot", values.plot, "Write a chart for a report: an .svg or .png file")
        ->type_name("FILE");
    options::addText(app, "--title", values.title, "Title of the chart instead of the monitoring's name");
    options::addText(app, "--unit", values.unit, "Unit of the values, for the chart")->type_name("UNIT");
}

} // namespace

void addStatisticsCommands(CLI::App& root, Command& chosen)
{
    CLI::App& group =
        options::addCommandGroup(root, "stats", "Show the last value of each day, as a table or a chart");
    const auto [normal, shown] = options::addSubcommand(
        group, "normal", "Values over time: each point's last of each day", chosen, showNormal);
    addPointFilterOptions(normal, shown->filter);
    addDrawingOptions(normal, *shown);
    options::setExamples(normal, "  rkmon stats normal --cell VH --name VH-W5\n"
                                 "  rkmon stats normal --cell VH --name VH-W5 --plot VH-W5.svg --unit V\n"
                                 "  TZ=America/Los_Angeles rkmon stats normal --cell VH --since 2015-12-20 "
                                 "--draw");

    const auto [depth, profile] = options::addSubcommand(
        group, "depth", "Values over depth: those of the points that have one", chosen, showDepth);
    addPointFilterOptions(depth, profile->filter);
    addDrawingOptions(depth, *profile);
    options::addText(depth, "--depth-unit", profile->depthUnit, "Unit of the depths, for the chart")
        ->type_name("UNIT");
    options::setExamples(depth, "  rkmon stats depth --cell Pit-N --name IN1\n"
                                "  rkmon stats depth --cell Pit-N --name IN1 --plot IN1.png --unit mm "
                                "--depth-unit m");
    options::setExamples(group, "  rkmon stats normal --cell VH --draw\n"
                                "  rkmon stats depth --cell VH --plot VH.svg");
}
