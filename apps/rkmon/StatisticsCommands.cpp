#include "CommandOptions.h"
#include "Commands.h"
#include "Failure.h"
#include "Lookup.h"
#include "PointFilter.h"
#include "Terminal.h"
#include "plot/ChartFile.h"
#include "plot/StatisticsChart.h"
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

using Statistic = bool (RKMonitoringData::*)(const RKPointLocationCondition&, chart::Days&);

Sheet statisticsSheet(const chart::Days& days)
{
    constexpr bool listed = true;
    constexpr bool fixed = true;
    Sheet sheet{{{QStringLiteral("DAY"), QStringLiteral("day"), listed, fixed},
                 {QStringLiteral("NAME"), QStringLiteral("name"), listed, !fixed},
                 {QStringLiteral("DEPTH"), QStringLiteral("depth"), listed, fixed},
                 {QStringLiteral("VALUE"), QStringLiteral("value"), listed, fixed},
                 {QStringLiteral("COUNT"), QStringLiteral("count"), listed, fixed},
                 {QStringLiteral("MEASURED"), QStringLiteral("time"), listed, fixed},
                 {QStringLiteral("POINT"), QStringLiteral("id"), !listed, fixed}},
                {}};
    for (auto day = days.cbegin(); day != days.cend(); ++day) {
        for (const RKPointLocationChartData& entry : *day) {
            const QString depth = entry.depth.isEmpty() ? QString() : entry.depth;
            sheet.rows.append({day.key().toString(Qt::ISODate), entry.name, depth, entry.value, entry.count,
                               entry.time, entry.id});
        }
    }
    return sheet;
}

chart::Days readDays(Session& session, const RKMonitoring& monitoring, const PointFilter& filter,
                     Statistic statistic)
{
    const RKPointLocationCondition condition = conditionOf(filter, monitoring);
    const QString purpose = QStringLiteral("read the statistics of \"%1\"").arg(monitoring.name);
    chart::Days days;
    session.ask(purpose, [&] { return (session.data().*statistic)(condition, days); });
    // The library puts a day whose time it cannot read under the null date.
    if (days.contains(QDate())) {
        throw Failure(ExitCode::Failed,
                      QStringLiteral("cannot %1: the answer holds a day without a date").arg(purpose));
    }
    return days;
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

// What the limits of the named points count from, by the label of their curves.
QMap<QString, chart::Reference> readReferences(Session& session, const RKMonitoring& monitoring,
                                               const QStringList& names)
{
    RKPointLocationCondition condition;
    condition.cellId = monitoring.id;
    condition.names = names;
    QList<RKPointLocation> points;
    session.ask(QStringLiteral("read the initial values of \"%1\"").arg(monitoring.name),
                [&] { return session.data().getPointLocation(condition, points, false); });
    QMap<QString, chart::Reference> references;
    for (const RKPointLocation& point : qAsConst(points)) {
        // The library reads an initial value with a fraction as 0, which therefore says nothing.
        const bool isKnown = point.initialValue != 0.0;
        if (isKnown || !point.data.isEmpty()) {
            references.insert(chart::label(point.name, point.depth),
                              {isKnown ? point.initialValue : point.data.constFirst().value, !isKnown});
        }
    }
    return references;
}

void addGroupLimits(Session& session, const RKMonitoring& monitoring, const chart::Days& days, Chart& chart)
{
    QList<PointLocSetting> groups;
    session.ask(QStringLiteral("list the groups of \"%1\"").arg(monitoring.name),
                [&] { return session.data().getGroupsByCellId(monitoring.id, groups, false); });
    QStringList shown;
    for (const QList<RKPointLocationChartData>& day : days) {
        for (const RKPointLocationChartData& entry : day) {
            shown.append(entry.name);
        }
    }
    shown.removeDuplicates();
    QStringList limited;
    for (const PointLocSetting& group : qAsConst(groups)) {
        for (const QString& name : group.groupPoint) {
            if (group.totalVar > 0.0 && shown.contains(name) && !limited.contains(name)) {
                limited.append(name);
            }
        }
    }
    if (limited.isEmpty()) {
        return;
    }
    const QMap<QString, chart::Reference> references = readReferences(session, monitoring, limited);
    chart::addLimits(chart, days, groups, references);
    const bool isGuessed =
        std::any_of(references.cbegin(), references.cend(),
                    [](const chart::Reference& reference) { return reference.isFirstReading; });
    if (isGuessed) {
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
        throw Failure(ExitCode::Usage,
                      QStringLiteral("a chart over depth shows one point; --name chooses among %1")
                          .arg(profiles.join(QStringLiteral(", "))));
    }
    constexpr int mostCurves = 20;
    if (days.size() > mostCurves) {
        session.note(QStringLiteral("drawn are %1 of %2 days; --since and --until choose")
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
            ExitCode::NotFound,
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

ExitCode showNormal(Session& session, const StatisticsOptions& options)
{
    if (!options.plot.isEmpty()) {
        requireChartPath(options.plot);
    }
    const RKMonitoring monitoring = lookup::monitoring(session, options.filter.cell);
    const chart::Days days =
        readDays(session, monitoring, options.filter, &RKMonitoringData::getNormalPointLocation);
    if (!options.isDrawn && options.plot.isEmpty()) {
        session.output().addList(statisticsSheet(days));
        return ExitCode::Success;
    }
    Chart chart = chart::overTime(days);
    if (!options.plot.isEmpty()) {
        addGroupLimits(session, monitoring, days, chart);
    }
    draw(session, options, monitoring, chart);
    return ExitCode::Success;
}

ExitCode showDepth(Session& session, const StatisticsOptions& options)
{
    if (!options.plot.isEmpty()) {
        requireChartPath(options.plot);
    }
    const RKMonitoring monitoring = lookup::monitoring(session, options.filter.cell);
    const chart::Days days =
        readDays(session, monitoring, options.filter, &RKMonitoringData::getDepthPointLocation);
    if (!options.isDrawn && options.plot.isEmpty()) {
        session.output().addList(statisticsSheet(days));
        return ExitCode::Success;
    }
    Chart chart = depthChart(session, days);
    chart.otherLabel = withUnit(QStringLiteral("Depth"), options.depthUnit);
    draw(session, options, monitoring, chart);
    return ExitCode::Success;
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
