#include "PointNames.h"
#include "StatisticsDrawing.h"
#include "chart/LimitLines.h"
#include "chart/Profiles.h"
#include "chart/StatisticsChart.h"

namespace {

// The statistic of a point with several depths, or of points with one depth each.
class DepthDrawing
{
public:
    DepthDrawing(Session& session, const DrawingOptions& options, const PointFilter& filter,
                 MonitoringStatistic& statistic)
        : m_session(session), m_options(options), m_filter(filter), m_statistic(statistic),
          m_words(wordsOf(options))
    {
    }

    void draw()
    {
        const MeasuredSubCategory quantity = onlyQuantity();
        requireOneProfile();
        QString label = quantity.name;
        const chart::Days shown = profiles(label);
        if (shown.size() > m_options.curves) {
            m_session.note(
                QStringLiteral("%1 of %2 days are drawn; --since and --until choose, --curves shows more")
                    .arg(m_options.curves)
                    .arg(shown.size()));
        }
        Chart chart = chart::overDepth(chart::thinned(shown, m_options.curves), quantity);
        chart.otherLabel = chart::withUnit(m_words.depth, m_options.depthUnit);
        for (Chart::Panel& panel : chart.panels) {
            panel.valueLabel = chart::withUnit(label, unitOf(m_options, quantity));
            addLevel(panel);
        }
        if (!m_options.plot.isEmpty() && isTotalVariation()) {
            addLimits(chart, quantity);
        }
        chart.title = titleOf(m_options, m_filter, m_statistic.monitoring.name);
        if (m_isGuessed) {
            tellOfGuesses(m_session, chart);
        }
        drawChart(m_session, m_options, chart, QStringLiteral("\"%1\"").arg(m_statistic.monitoring.name));
    }

private:
    static QString labelOf(const RKPointLocationChartData& entry)
    {
        return pointLabel(entry.name, entry.depth);
    }

    MeasuredSubCategory onlyQuantity() const
    {
        const auto pointOf = [this](const RKPointLocationChartData& entry) {
            return chart::ShownPoint{m_statistic.selection.requiredSubCategoryOf(entry.id, labelOf(entry)),
                                     m_statistic.monitoring.id, labelOf(entry)};
        };
        const QList<MeasuredSubCategory> quantities = chart::quantitiesOf(m_statistic.days, pointOf);
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
        return quantities.isEmpty() ? MeasuredSubCategory() : quantities.constFirst();
    }

    void requireOneProfile() const
    {
        const QStringList profiles = chart::namesWithProfile(m_statistic.days);
        if (profiles.size() > 1) {
            throw Failure(FailureKind::BadInput,
                          QStringLiteral("a chart over depth shows one point; --name chooses among %1")
                              .arg(profiles.join(QStringLiteral(", "))));
        }
    }

    bool isTotalVariation() const
    {
        return m_options.values == QLatin1String("cumulative") && m_options.countsFromReference();
    }

    // The days as they are to be drawn; `label` becomes what they show.
    chart::Days profiles(QString& label)
    {
        if (m_options.values == QLatin1String("measured")) {
            return m_statistic.days;
        }
        const chart::Days changed = chart::changes(m_statistic.days, baseline(label));
        if (m_options.values != QLatin1String("incremental")) {
            return changed;
        }
        label = m_words.increment.arg(label);
        return chart::increments(changed);
    }

    chart::BaselineOf baseline(QString& label)
    {
        if (m_options.countsFromReference()) {
            label = m_words.totalVariation.arg(label);
            return [this](const QDate&, const RKPointLocationChartData& entry) {
                return referenceOf(entry.id);
            };
        }
        const chart::Days everything = allDays();
        if (m_options.baseline == QLatin1String("previous")) {
            label = m_words.changeSincePrevious.arg(label);
            return chart::previousDay(everything);
        }
        const bool isFirst = m_options.baseline == QLatin1String("first");
        const QDate day = isFirst && !everything.isEmpty()
                              ? everything.firstKey()
                              : QDate::fromString(m_options.baseline, Qt::ISODate);
        if (!everything.contains(day) && !everything.isEmpty()) {
            throw Failure(
                FailureKind::NotFound,
                QStringLiteral("--baseline: nothing was measured on %1; the first day is %2, the last one %3")
                    .arg(m_options.baseline, everything.firstKey().toString(Qt::ISODate),
                         everything.lastKey().toString(Qt::ISODate)));
        }
        label = m_words.changeSince.arg(label, day.toString(Qt::ISODate));
        return isFirst ? chart::firstDay(everything) : chart::thatDay(everything, day);
    }

    std::optional<double> referenceOf(const QString& pointId)
    {
        const std::optional<ReferenceValue> reference =
            m_statistic.selection.directory().referenceOf(pointId);
        m_isGuessed = m_isGuessed || (reference && reference->isGuessed);
        return reference ? std::make_optional(reference->value) : std::nullopt;
    }

    // Those before and after the period too.
    chart::Days allDays()
    {
        PointFilter filter = m_filter;
        filter.period = {};
        const chart::Days days =
            chart::readDays(m_session, m_statistic.monitoring,
                            conditionOf(m_session, filter, m_statistic.monitoring), chart::Statistic::Depth);
        return chart::chosen(days, [&](const RKPointLocationChartData& entry) {
            return m_statistic.selection.holds(entry.id, labelOf(entry));
        });
    }

    void addLevel(Chart::Panel& panel) const
    {
        if (m_options.level) {
            const QString depth = QString::number(*m_options.level) + QLatin1Char(' ') + m_options.depthUnit;
            panel.levels.append({m_words.level.arg(depth.trimmed()), *m_options.level});
        }
    }

    void addLimits(Chart& chart, const MeasuredSubCategory& quantity)
    {
        if (m_statistic.days.isEmpty()) {
            return;
        }
        const QString name = m_statistic.days.first().constFirst().name;
        const QList<chart::LimitingGroup> groups =
            chart::limitingGroups(m_session, m_statistic.monitoring, [&](const PointLocSetting& group) {
                return group.subCategoryId == quantity.id && group.groupPoint.contains(name);
            });
        chart::addLimitsOverDepth(chart, m_words, groups, name);
    }

    Session& m_session;
    const DrawingOptions& m_options;
    const PointFilter& m_filter;
    MonitoringStatistic& m_statistic;
    const chart::Words& m_words;
    bool m_isGuessed = false;
};

} // namespace

void drawOverDepth(Session& session, const DrawingOptions& options, const PointFilter& filter,
                   MonitoringStatistic& statistic)
{
    DepthDrawing(session, options, filter, statistic).draw();
}
