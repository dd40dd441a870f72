#include "CommandOptions.h"
#include "Commands.h"
#include "Lookup.h"
#include "PointFilter.h"
#include "PointNames.h"
#include "StatisticsDrawing.h"
#include "chart/StatisticsChart.h"
#include "chart/Variation.h"

#include <algorithm>

namespace {

struct StatisticsOptions
{
    PointFilter filter;
    DrawingOptions drawing;
};

Sheet statisticsSheet(const std::vector<MonitoringStatistic>& statistics)
{
    const bool areSeveral = statistics.size() > 1;
    Sheet sheet{
        {column::fixed("DAY", "day"),
         areSeveral ? column::text("MONITORING", "cellName") : column::unlisted("MONITORING", "cellName"),
         column::unlisted("MONITORING ID", "cellId"), column::text("SUB-CATEGORY", "subCategoryName"),
         column::unlisted("SUB-CATEGORY ID", "subCategoryId"), column::fixed("NAME", "name"),
         column::fixed("DEPTH", "depth"), column::fixed("VALUE", "value"),
         column::computed("TOTAL", "totalVar"), column::dispensable(2, column::fixed("COUNT", "count")),
         column::dispensable(1, column::fixed("MEASURED", "time")), column::unlisted("POINT", "id")},
        {}};
    for (const MonitoringStatistic& statistic : statistics) {
        for (auto day = statistic.days.cbegin(); day != statistic.days.cend(); ++day) {
            for (const RKPointLocationChartData& entry : *day) {
                const MeasuredSubCategory subCategory = statistic.selection.subCategoryOf(entry.id);
                const std::optional<ReferenceValue> reference =
                    statistic.selection.directory().toldReferenceOf(entry.id);
                const QVariant total =
                    reference
                        ? cell::number(variation::total(entry.value, reference->value), subCategory.decimals)
                        : QVariant(QString());
                sheet.rows.append({day.key().toString(Qt::ISODate), statistic.monitoring.name,
                                   statistic.monitoring.id, noneIfEmpty(subCategory.name),
                                   noneIfEmpty(subCategory.id), entry.name, noneIfEmpty(entry.depth),
                                   cell::number(entry.value, subCategory.decimals), total, entry.count,
                                   entry.time, entry.id});
            }
        }
    }
    return sheet;
}

// What the filter chose of the statistic of each monitoring that it names.
std::vector<MonitoringStatistic> readStatistics(Session& session, const PointFilter& filter,
                                                chart::Statistic statistic)
{
    std::vector<MonitoringStatistic> statistics;
    for (const QString& cell : filter.cells) {
        const RKMonitoring monitoring = lookup::monitoring(session, cell);
        const bool isTwice =
            std::any_of(statistics.cbegin(), statistics.cend(), [&](const MonitoringStatistic& other) {
                return other.monitoring.id == monitoring.id;
            });
        if (isTwice) {
            continue;
        }
        const chart::Days read =
            chart::readDays(session, monitoring, conditionOf(session, filter, monitoring), statistic);
        const PointSelection selection = selectionOf(session, filter, monitoring);
        const chart::Days days = chart::chosen(read, [&](const RKPointLocationChartData& entry) {
            return selection.holds(entry.id, pointLabel(entry.name, entry.depth));
        });
        statistics.push_back({monitoring, days, selection});
    }
    return statistics;
}

ExitCode showNormal(Session& session, const StatisticsOptions& options)
{
    requireDrawable(options.drawing);
    std::vector<MonitoringStatistic> statistics =
        readStatistics(session, options.filter, chart::Statistic::Normal);
    if (options.drawing.isAsked()) {
        drawOverTime(session, options.drawing, options.filter, statistics);
    } else {
        session.output().addList(statisticsSheet(statistics));
    }
    return ExitCode::Success;
}

ExitCode showDepth(Session& session, const StatisticsOptions& options)
{
    requireDrawable(options.drawing);
    std::vector<MonitoringStatistic> statistics =
        readStatistics(session, options.filter, chart::Statistic::Depth);
    if (options.drawing.isAsked()) {
        drawOverDepth(session, options.drawing, options.filter, statistics.front());
    } else {
        session.output().addList(statisticsSheet(statistics));
    }
    return ExitCode::Success;
}

void addChoice(CLI::App& app, const char* name, QString& target, const char* description, const char* shown,
               const std::vector<std::string>& choices)
{
    options::addText(app, name, target, description)
        ->type_name(shown)
        ->check(CLI::IsMember(choices).description(""));
}

void addDrawingOptions(CLI::App& app, DrawingOptions& values)
{
    constexpr int leastResolution = 50;
    constexpr int greatestResolution = 1200;
    app.add_flag("--draw", values.isDrawn, "Draw in the terminal instead of a table");
    CLI::Option* plot =
        options::addText(app, "--plot", values.plot, "Write a chart for a report: an .svg, .png or .pdf file")
            ->type_name("FILE");
    options::addText(app, "--title", values.title, "Title of the chart instead of the monitoring's name");
    options::addText(app, "--unit", values.unit, "Unit of the values instead of the sub-category's")
        ->type_name("UNIT");
    options::addText(app, "--size", values.size, "Width and height of the chart in millimetres")
        ->type_name("WxH")
        ->needs(plot);
    app.add_option("--dpi", values.dotsPerInch, "Dots per inch of a .png file, 150 when absent")
        ->type_name("N")
        ->check(CLI::Range(leastResolution, greatestResolution).description(""))
        ->needs(plot);
    addChoice(app, "--language", values.language, "Language of the chart", "en|zh", {"en", "zh"});
}

void addNormalCommand(CLI::App& group, Command& chosen)
{
    const auto [app, values] = options::addSubcommand(
        group, "normal", "Values over time: each point's last of each day", chosen, showNormal);
    addPointFilterOptionsOfSeveral(app, values->filter);
    addChoice(app, "--values", values->drawing.values,
              "What a chart shows: values, total or daily variations", "measured|cumulative|daily",
              {"measured", "cumulative", "daily"});
    constexpr int mostCurves = 30;
    app.add_option("--top", values->drawing.top, "Draw only the N points that changed most")
        ->type_name("N")
        ->check(CLI::Range(1, mostCurves).description(""));
    addDrawingOptions(app, values->drawing);
    options::setExamples(
        app, "  rkmon stats normal --cell VH --sub-category SM --values cumulative --plot VH.svg\n"
             "  rkmon stats normal --cell VH --since 2015-12-20 --draw");
}

void addDepthCommand(CLI::App& group, Command& chosen)
{
    const auto [app, values] = options::addSubcommand(
        group, "depth", "Values over depth: those of the points that have one", chosen, showDepth);
    addPointFilterOptions(app, values->filter);
    DrawingOptions& drawing = values->drawing;
    addChoice(app, "--values", drawing.values, "What a chart shows: values, changes, or changes per interval",
              "measured|cumulative|incremental", {"measured", "cumulative", "incremental"});
    options::addText(app, "--baseline", drawing.baseline,
                     "What changes count from: reference, first, previous, a day")
        ->type_name("BASELINE");
    constexpr int mostCurves = 50;
    app.add_option("--curves", drawing.curves, "Draw so many days at most, 10 when absent")
        ->type_name("N")
        ->check(CLI::Range(2, mostCurves).description(""));
    options::addNumber(app, "--level", drawing.level, "Mark this depth as that of the excavation")
        ->type_name("DEPTH");
    addDrawingOptions(app, drawing);
    options::addText(app, "--depth-unit", drawing.depthUnit, "Unit of the depths, for the chart")
        ->type_name("UNIT");
    options::setExamples(app,
                         "  rkmon stats depth --cell Pit-N --name IN1 --draw\n"
                         "  rkmon stats depth --cell Pit-N --name IN1 --values cumulative --level 12 --plot "
                         "IN1.pdf");
}

} // namespace

void addStatisticsCommands(CLI::App& root, Command& chosen)
{
    CLI::App& group =
        options::addCommandGroup(root, "stats", "Show the last value of each day, as a table or a chart");
    addNormalCommand(group, chosen);
    addDepthCommand(group, chosen);
    options::setExamples(group, "  rkmon stats normal --cell VH --draw\n"
                                "  rkmon stats depth --cell VH --plot VH.svg");
}
