#include "CommandOptions.h"
#include "Commands.h"
#include "Lookup.h"
#include "PointFilter.h"
#include "PointNames.h"
#include "Terminal.h"
#include "chart/LimitLines.h"
#include "chart/StatisticsChart.h"
#include "chart/Variation.h"
#include "plot/ChartFile.h"
#include "plot/ChartPicture.h"
#include "plot/TextChart.h"

#include <algorithm>

namespace {

struct StatisticsOptions
{
    PointFilter filter;
    QString values = QStringLiteral("measured");
    bool isDrawn = false;
    QString plot;
    QString title;
    QString unit;
    QString depthUnit;
};

QString labelOf(const RKPointLocationChartData& entry)
{
    return pointLabel(entry.name, entry.depth);
}

chart::Values valuesOf(const StatisticsOptions& options)
{
    if (options.values == QLatin1String("cumulative")) {
        return chart::Values::Cumulative;
    }
    return options.values == QLatin1String("daily") ? chart::Values::Daily : chart::Values::Measured;
}

Sheet statisticsSheet(const chart::Days& days, const PointSelection& selection)
{
    Sheet sheet{{column::fixed("DAY", "day"), column::text("SUB-CATEGORY", "subCategoryName"),
                 column::unlisted("SUB-CATEGORY ID", "subCategoryId"), column::fixed("NAME", "name"),
                 column::fixed("DEPTH", "depth"), column::fixed("VALUE", "value"),
                 column::computed("TOTAL", "totalVar"), column::fixed("COUNT", "count"),
                 column::fixed("MEASURED", "time"), column::unlisted("POINT", "id")},
                {}};
    for (auto day = days.cbegin(); day != days.cend(); ++day) {
        for (const RKPointLocationChartData& entry : *day) {
            const MeasuredSubCategory subCategory = selection.subCategoryOf(entry.id);
            const std::optional<ReferenceValue> reference = selection.directory().toldReferenceOf(entry.id);
            sheet.rows.append(
                {day.key().toString(Qt::ISODate), noneIfEmpty(subCategory.name), noneIfEmpty(subCategory.id),
                 entry.name, noneIfEmpty(entry.depth), entry.value,
                 reference ? QVariant(variation::total(entry.value, reference->value)) : QVariant(QString()),
                 entry.count, entry.time, entry.id});
        }
    }
    return sheet;
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

// Draws what the statistic of a monitoring shows.
class StatisticsDrawing
{
public:
    StatisticsDrawing(Session& session, const StatisticsOptions& options, const RKMonitoring& monitoring,
                      const chart::Days& days, PointSelection& selection)
        : m_session(session), m_options(options), m_monitoring(monitoring), m_days(days),
          m_selection(selection)
    {
    }

    Chart overTime()
    {
        Chart chart = chart::overTime(m_days, m_session.projectZone(), quantityOf());
        const chart::Values values = valuesOf(m_options);
        if (values == chart::Values::Cumulative) {
            chart::makeCumulative(chart, referenceOf());
        } else if (values == chart::Values::Daily) {
            chart::makeDaily(chart);
        }
        if (!m_options.plot.isEmpty()) {
            addLimits(chart, values);
        }
        setLabels(chart, values);
        return chart;
    }

    Chart overDepth()
    {
        const QList<MeasuredSubCategory> quantities = chart::quantitiesOf(m_days, quantityOf());
        requireOneQuantity(quantities);
        requireOneProfile();
        constexpr int mostCurves = 20;
        if (m_days.size() > mostCurves) {
            m_session.note(QStringLiteral("%1 of %2 days are drawn; --since and --until choose")
                               .arg(mostCurves)
                               .arg(m_days.size()));
        }
        Chart chart =
            chart::overDepth(chart::thinned(m_days, mostCurves),
                             quantities.isEmpty() ? MeasuredSubCategory() : quantities.constFirst());
        chart.otherLabel = chart::withUnit(QStringLiteral("Depth"), m_options.depthUnit);
        setLabels(chart, chart::Values::Measured);
        return chart;
    }

private:
    chart::QuantityOf quantityOf() const
    {
        return [this](const RKPointLocationChartData& entry) {
            return m_selection.requiredSubCategoryOf(entry.id, labelOf(entry));
        };
    }

    chart::ReferenceOf referenceOf()
    {
        return [this](const QString& pointId) -> std::optional<double> {
            const std::optional<ReferenceValue> reference = m_selection.directory().referenceOf(pointId);
            m_isGuessed = m_isGuessed || (reference && reference->isGuessed);
            return reference ? std::make_optional(reference->value) : std::nullopt;
        };
    }

    void addLimits(Chart& chart, chart::Values values)
    {
        const QList<chart::LimitingGroup> groups =
            chart::limitingGroups(m_session, m_session.extensions(), m_monitoring, chart);
        if (!groups.isEmpty()) {
            chart::addLimits(chart, values, groups, referenceOf());
        }
        if (m_isGuessed) {
            chart.title += QStringLiteral(" (variations count from the first readings)");
            m_session.note(
                QStringLiteral("variations and limits count from the first readings, since the service "
                               "does not tell initial values that are 0 or have a fraction"));
        }
    }

    void setLabels(Chart& chart, chart::Values values) const
    {
        if (!m_options.unit.isEmpty() && chart.panels.size() > 1) {
            throw Failure(
                FailureKind::BadInput,
                QStringLiteral("--unit: the chart shows several quantities; --sub-category chooses one"));
        }
        for (Chart::Panel& panel : chart.panels) {
            const MeasuredSubCategory quantity = m_selection.known(panel.subCategoryId);
            panel.valueLabel = chart::valueLabel(values, quantity.name,
                                                 m_options.unit.isEmpty() ? quantity.unit : m_options.unit);
        }
    }

    static void requireOneQuantity(const QList<MeasuredSubCategory>& quantities)
    {
        if (quantities.size() > 1) {
            QStringList names;
            for (const MeasuredSubCategory& quantity : quantities) {
                names.append(quantity.name);
            }
            throw Failure(
                FailureKind::BadInput,
                QStringLiteral("a chart over depth shows one quantity; --sub-category chooses among %1")
                    .arg(names.join(QStringLiteral(", "))));
        }
    }

    void requireOneProfile() const
    {
        const QStringList profiles = chart::namesWithProfile(m_days);
        if (profiles.size() > 1) {
            throw Failure(FailureKind::BadInput,
                          QStringLiteral("a chart over depth shows one point; --name chooses among %1")
                              .arg(profiles.join(QStringLiteral(", "))));
        }
    }

    Session& m_session;
    const StatisticsOptions& m_options;
    const RKMonitoring& m_monitoring;
    const chart::Days& m_days;
    PointSelection& m_selection;
    bool m_isGuessed = false;
};

void requireCurves(const Chart& chart, const RKMonitoring& monitoring)
{
    const bool isEmpty =
        std::all_of(chart.panels.cbegin(), chart.panels.cend(), [](const Chart::Panel& panel) {
            return std::all_of(panel.curves.cbegin(), panel.curves.cend(),
                               [](const Chart::Curve& curve) { return curve.points.isEmpty(); });
        });
    if (isEmpty) {
        throw Failure(
            FailureKind::NotFound,
            QStringLiteral("there is nothing to draw: no reading of \"%1\" matches").arg(monitoring.name));
    }
}

void draw(Session& session, const StatisticsOptions& options, const Chart& chart)
{
    if (options.isDrawn) {
        session.output().addPlainTexts(QStringLiteral("chart"),
                                       QStringList{chart.title} + textChart(chart, terminal::width()));
    }
    if (options.plot.isEmpty()) {
        return;
    }
    const QString missing = ChartPicture::charactersWithoutFont(chart);
    if (!missing.isEmpty()) {
        session.warn(
            QStringLiteral("no font of this machine has the characters %1: the chart shows boxes for them")
                .arg(missing));
    }
    writeChart(chart, options.plot);
    session.note(QStringLiteral("wrote %1").arg(options.plot));
}

ExitCode showStatistic(Session& session, const StatisticsOptions& options, chart::Statistic statistic)
{
    if (!options.plot.isEmpty()) {
        requireChartPath(options.plot);
    }
    const RKMonitoring monitoring = lookup::monitoring(session, options.filter.cell);
    const chart::Days read =
        chart::readDays(session, monitoring, conditionOf(session, options.filter, monitoring), statistic);
    PointSelection selection = selectionOf(session, options.filter, monitoring);
    const chart::Days days = chart::chosen(read, [&](const RKPointLocationChartData& entry) {
        return selection.holds(entry.id, labelOf(entry));
    });
    if (!options.isDrawn && options.plot.isEmpty()) {
        session.output().addList(statisticsSheet(days, selection));
        return ExitCode::Success;
    }
    StatisticsDrawing drawing(session, options, monitoring, days, selection);
    Chart chart = statistic == chart::Statistic::Depth ? drawing.overDepth() : drawing.overTime();
    chart.title = titleOf(options, monitoring) + chart.title;
    requireCurves(chart, monitoring);
    draw(session, options, chart);
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
    options::addText(app, "--plot", values.plot, "Write a chart for a report: an .svg, .png or .pdf file")
        ->type_name("FILE");
    options::addText(app, "--title", values.title, "Title of the chart instead of the monitoring's name");
    options::addText(app, "--unit", values.unit, "Unit of the values instead of the sub-category's")
        ->type_name("UNIT");
}

} // namespace

void addStatisticsCommands(CLI::App& root, Command& chosen)
{
    CLI::App& group =
        options::addCommandGroup(root, "stats", "Show the last value of each day, as a table or a chart");
    const auto [normal, shown] = options::addSubcommand(
        group, "normal", "Values over time: each point's last of each day", chosen, showNormal);
    addPointFilterOptions(normal, shown->filter);
    options::addText(
        normal, "--values", shown->values,
        "What a chart shows: values as measured, their variation since the reference, or per day")
        ->type_name("measured|cumulative|daily")
        ->check(CLI::IsMember({"measured", "cumulative", "daily"}).description(""));
    addDrawingOptions(normal, *shown);
    options::setExamples(normal,
                         "  rkmon stats normal --cell VH --name VH-W5\n"
                         "  rkmon stats normal --cell VH --name VH-W5 --plot VH-W5.svg --unit V\n"
                         "  rkmon stats normal --cell VH --sub-category SM --since 2015-12-20 --draw");

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
