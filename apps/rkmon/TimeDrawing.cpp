#include "PointNames.h"
#include "StatisticsDrawing.h"
#include "chart/AlarmMarkers.h"
#include "chart/LimitLines.h"
#include "chart/StatisticsChart.h"

#include <QHash>

namespace {

// The statistics of monitorings, whose points are told apart by their identifiers.
class TimeDrawing
{
public:
    TimeDrawing(Session& session, const DrawingOptions& options, const PointFilter& filter,
                std::vector<MonitoringStatistic>& statistics)
        : m_session(session), m_options(options), m_filter(filter), m_statistics(statistics)
    {
        for (MonitoringStatistic& statistic : m_statistics) {
            m_names.append(statistic.monitoring.name);
            for (auto day = statistic.days.cbegin(); day != statistic.days.cend(); ++day) {
                for (const RKPointLocationChartData& entry : *day) {
                    m_owners.insert(entry.id, &statistic);
                    m_days[day.key()].append(entry);
                }
            }
        }
    }

    void draw()
    {
        const chart::Values values = valuesOf(m_options);
        Chart chart = chart::overTime(wordsOf(m_options), m_days, m_session.projectZone(), shownPointOf());
        keepMostChanged(chart);
        if (values == chart::Values::Cumulative) {
            chart::makeCumulative(chart, referenceOf());
        } else if (values == chart::Values::Daily) {
            chart::makeDaily(chart);
        }
        setLabels(chart, values);
        if (!m_options.plot.isEmpty()) {
            addLimits(chart, values);
        }
        chart.title = titleOf(m_options, m_filter, m_names.join(QStringLiteral(", ")));
        if (m_isGuessed) {
            tellOfGuesses(m_session, chart);
        }
        drawChart(m_session, m_options, chart,
                  QStringLiteral("\"%1\"").arg(m_names.join(QStringLiteral("\", \""))));
    }

private:
    chart::ShownPointOf shownPointOf() const
    {
        return [this](const RKPointLocationChartData& entry) {
            const MonitoringStatistic& owner = *m_owners.value(entry.id);
            const QString label = pointLabel(entry.name, entry.depth);
            return chart::ShownPoint{
                owner.selection.requiredSubCategoryOf(entry.id, label), owner.monitoring.id,
                m_statistics.size() > 1 ? owner.monitoring.name + QStringLiteral(": ") + label : label};
        };
    }

    chart::ReferenceOf referenceOf()
    {
        return [this](const QString& pointId) -> std::optional<double> {
            const std::optional<ReferenceValue> reference =
                m_owners.value(pointId)->selection.directory().referenceOf(pointId);
            m_isGuessed = m_isGuessed || (reference && reference->isGuessed);
            return reference ? std::make_optional(reference->value) : std::nullopt;
        };
    }

    MeasuredSubCategory quantityOf(const Chart::Panel& panel) const
    {
        for (const MonitoringStatistic& statistic : m_statistics) {
            const MeasuredSubCategory quantity = statistic.selection.known(panel.subCategoryId);
            if (!quantity.id.isEmpty()) {
                return quantity;
            }
        }
        return {};
    }

    // More curves than anybody tells apart are refused rather than drawn.
    void keepMostChanged(Chart& chart)
    {
        constexpr int mostCurves = 30;
        for (const Chart::Panel& panel : qAsConst(chart.panels)) {
            if (!m_options.top && !m_options.plot.isEmpty() && panel.curves.size() > mostCurves) {
                throw Failure(
                    FailureKind::BadInput,
                    QStringLiteral(
                        "%1 curves of \"%2\" are too many for one chart; --name chooses points, --top N "
                        "shows those that changed most")
                        .arg(panel.curves.size())
                        .arg(quantityOf(panel).name));
            }
        }
        if (!m_options.top) {
            return;
        }
        const int leftOut = chart::keepMostChanged(chart, *m_options.top, referenceOf());
        if (leftOut > 0) {
            m_session.note(QStringLiteral("left out the %1 curves that changed less").arg(leftOut));
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
            const MeasuredSubCategory quantity = quantityOf(panel);
            panel.valueLabel =
                chart::valueLabel(wordsOf(m_options), values, quantity.name, unitOf(m_options, quantity));
        }
        chart.alarmLabel = wordsOf(m_options).alarm;
    }

    void addLimits(Chart& chart, chart::Values values)
    {
        QList<chart::LimitingGroup> groups;
        QList<chart::AlarmedReading> alarmed;
        for (const MonitoringStatistic& statistic : m_statistics) {
            const QList<chart::LimitingGroup> some =
                chart::limitingGroups(m_session, statistic.monitoring, [&](const PointLocSetting& group) {
                    return chart::limitsPointOf(chart, group);
                });
            groups.append(some);
            // Without a limit there is no alarm.
            if (!some.isEmpty()) {
                alarmed.append(chart::alarmedReadings(m_session, statistic.monitoring));
            }
        }
        if (groups.isEmpty()) {
            return;
        }
        if (!chart::addLimits(chart, wordsOf(m_options), values, groups, referenceOf())) {
            m_session.note(QStringLiteral(
                "limits are left out, since each point has others: they count from its reference; "
                "--values cumulative shows them"));
        }
        chart::addAlarms(chart, values, m_session.projectZone(), alarmed, referenceOf());
    }

    Session& m_session;
    const DrawingOptions& m_options;
    const PointFilter& m_filter;
    std::vector<MonitoringStatistic>& m_statistics;
    QHash<QString, MonitoringStatistic*> m_owners; // by point
    chart::Days m_days;
    QStringList m_names;
    bool m_isGuessed = false;
};

} // namespace

void drawOverTime(Session& session, const DrawingOptions& options, const PointFilter& filter,
                  std::vector<MonitoringStatistic>& statistics)
{
    TimeDrawing(session, options, filter, statistics).draw();
}

QString titleOf(const DrawingOptions& options, const PointFilter& filter, const QString& monitorings)
{
    if (!options.title.isEmpty()) {
        return options.title;
    }
    return filter.names.isEmpty()
               ? monitorings
               : monitorings + QStringLiteral(": ") + filter.names.join(QStringLiteral(", "));
}
