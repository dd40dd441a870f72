#include "StatisticsDrawing.h"

#include "PointNames.h"
#include "Terminal.h"
#include "chart/AlarmMarkers.h"
#include "chart/LimitLines.h"
#include "chart/Profiles.h"
#include "chart/StatisticsChart.h"
#include "plot/ChartFile.h"
#include "plot/ChartPicture.h"
#include "plot/TextChart.h"

#include <QRegularExpression>

#include <algorithm>

namespace {

QString labelOf(const RKPointLocationChartData& entry)
{
    return pointLabel(entry.name, entry.depth);
}

const chart::Words& wordsOf(const DrawingOptions& options)
{
    return options.language == QLatin1String("zh") ? chart::chineseWords() : chart::englishWords();
}

chart::Values valuesOf(const DrawingOptions& options)
{
    if (options.values == QLatin1String("cumulative")) {
        return chart::Values::Cumulative;
    }
    return options.values == QLatin1String("daily") ? chart::Values::Daily : chart::Values::Measured;
}

// Width and height in millimetres; empty when none are given.
QSizeF sizeOf(const QString& text)
{
    static const QRegularExpression form(QStringLiteral("\\A(\\d{1,4})x(\\d{1,4})\\z"));
    constexpr int least = 60;
    constexpr int most = 2000;
    if (text.isEmpty()) {
        return {};
    }
    const QRegularExpressionMatch match = form.match(text);
    const int width = match.captured(1).toInt();
    const int height = match.captured(2).toInt();
    if (std::min(width, height) < least || std::max(width, height) > most) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral(
                          "--size: \"%1\" is not WIDTHxHEIGHT in millimetres, from 60 to 2000, as in 250x140")
                          .arg(text));
    }
    return QSizeF(width, height);
}

bool isOneOf(const QString& text, std::initializer_list<const char*> words)
{
    return std::any_of(words.begin(), words.end(),
                       [&](const char* word) { return text == QLatin1String(word); });
}

// What a statistic of one monitoring is drawn from.
class StatisticsDrawing
{
public:
    StatisticsDrawing(Session& session, const DrawingOptions& options, const PointFilter& filter,
                      const RKMonitoring& monitoring, const chart::Days& days, PointSelection& selection)
        : m_session(session), m_options(options), m_filter(filter), m_monitoring(monitoring), m_days(days),
          m_selection(selection), m_words(wordsOf(options))
    {
    }

    void overTime()
    {
        const chart::Values values = valuesOf(m_options);
        Chart chart = chart::overTime(m_words, m_days, m_session.projectZone(), quantityOf());
        keepMostChanged(chart);
        if (values == chart::Values::Cumulative) {
            chart::makeCumulative(chart, referenceOf());
        } else if (values == chart::Values::Daily) {
            chart::makeDaily(chart);
        }
        for (Chart::Panel& panel : chart.panels) {
            const MeasuredSubCategory quantity = m_selection.known(panel.subCategoryId);
            panel.valueLabel = chart::valueLabel(m_words, values, quantity.name, unitOf(quantity));
        }
        if (!m_options.plot.isEmpty()) {
            addLimits(chart, values);
        }
        if (!m_options.unit.isEmpty() && chart.panels.size() > 1) {
            throw Failure(
                FailureKind::BadInput,
                QStringLiteral("--unit: the chart shows several quantities; --sub-category chooses one"));
        }
        draw(chart);
    }

    void overDepth()
    {
        const QList<MeasuredSubCategory> quantities = chart::quantitiesOf(m_days, quantityOf());
        requireOneQuantity(quantities);
        requireOneProfile();
        const MeasuredSubCategory quantity =
            quantities.isEmpty() ? MeasuredSubCategory() : quantities.constFirst();
        QString label = quantity.name;
        const chart::Days changed = profiles(label);
        if (changed.size() > m_options.curves) {
            m_session.note(
                QStringLiteral("%1 of %2 days are drawn; --since and --until choose, --curves shows more")
                    .arg(m_options.curves)
                    .arg(changed.size()));
        }
        Chart chart = chart::overDepth(chart::thinned(changed, m_options.curves), quantity);
        chart.otherLabel = chart::withUnit(m_words.depth, m_options.depthUnit);
        for (Chart::Panel& panel : chart.panels) {
            panel.valueLabel = chart::withUnit(label, unitOf(quantity));
            if (m_options.level) {
                const QString depth =
                    QString::number(*m_options.level) + QLatin1Char(' ') + m_options.depthUnit;
                panel.levels.append({m_words.level.arg(depth.trimmed()), *m_options.level});
            }
        }
        if (!m_options.plot.isEmpty() && isTotalVariation()) {
            chart::addLimitsOverDepth(chart, m_words, groupsOfProfile(quantity), nameOfProfile());
        }
        draw(chart);
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

    QString unitOf(const MeasuredSubCategory& quantity) const
    {
        return m_options.unit.isEmpty() ? quantity.unit : m_options.unit;
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
                        .arg(m_selection.known(panel.subCategoryId).name));
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

    void addLimits(Chart& chart, chart::Values values)
    {
        const QList<chart::LimitingGroup> groups = chart::limitingGroups(
            m_session, m_session.extensions(), m_monitoring,
            [&](const PointLocSetting& group) { return chart::limitsPointOf(chart, group); });
        if (groups.isEmpty()) {
            return;
        }
        if (!chart::addLimits(chart, m_words, values, groups, referenceOf())) {
            m_session.note(QStringLiteral(
                "limits are left out, since each point has others: they count from its reference; "
                "--values cumulative shows them"));
        }
        chart.alarmLabel = m_words.alarm;
        chart::addAlarms(chart, values, m_session.projectZone(),
                         chart::alarmedReadings(m_session, m_session.extensions(), m_monitoring),
                         referenceOf());
    }

    bool isTotalVariation() const
    {
        return m_options.values == QLatin1String("cumulative") &&
               isOneOf(m_options.baseline, {"", "reference"});
    }

    // The days as they are to be drawn; `label` becomes what they show.
    chart::Days profiles(QString& label)
    {
        if (m_options.values == QLatin1String("measured")) {
            return m_days;
        }
        const chart::Days changed = chart::changes(m_days, baseline(label));
        if (m_options.values != QLatin1String("incremental")) {
            return changed;
        }
        label = m_words.increment.arg(label);
        return chart::increments(changed);
    }

    chart::BaselineOf baseline(QString& label)
    {
        if (isOneOf(m_options.baseline, {"", "reference"})) {
            label = m_words.totalVariation.arg(label);
            return [this](const QDate&, const RKPointLocationChartData& entry) {
                return referenceOf()(entry.id);
            };
        }
        const chart::Days everything = allDays();
        if (m_options.baseline == QLatin1String("previous")) {
            label = m_words.changeSincePrevious.arg(label);
            return chart::previousDay(everything);
        }
        const bool isFirst = m_options.baseline == QLatin1String("first");
        const QDate day =
            isFirst ? everything.firstKey() : QDate::fromString(m_options.baseline, Qt::ISODate);
        if (!everything.contains(day)) {
            throw Failure(
                FailureKind::NotFound,
                QStringLiteral("--baseline: nothing was measured on %1; the first day is %2, the last one %3")
                    .arg(m_options.baseline, everything.firstKey().toString(Qt::ISODate),
                         everything.lastKey().toString(Qt::ISODate)));
        }
        label = m_words.changeSince.arg(label, day.toString(Qt::ISODate));
        return isFirst ? chart::firstDay(everything) : chart::thatDay(everything, day);
    }

    // Those before and after the period too.
    chart::Days allDays()
    {
        PointFilter filter = m_filter;
        filter.period = {};
        const chart::Days days = chart::readDays(
            m_session, m_monitoring, conditionOf(m_session, filter, m_monitoring), chart::Statistic::Depth);
        return chart::chosen(days, [&](const RKPointLocationChartData& entry) {
            return m_selection.holds(entry.id, labelOf(entry));
        });
    }

    QString nameOfProfile() const { return m_days.isEmpty() ? QString() : m_days.first().constFirst().name; }

    QList<chart::LimitingGroup> groupsOfProfile(const MeasuredSubCategory& quantity)
    {
        const QString name = nameOfProfile();
        return chart::limitingGroups(
            m_session, m_session.extensions(), m_monitoring, [&](const PointLocSetting& group) {
                return group.subCategoryId == quantity.id && group.groupPoint.contains(name);
            });
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

    QString title() const
    {
        if (!m_options.title.isEmpty()) {
            return m_options.title;
        }
        return m_filter.names.isEmpty()
                   ? m_monitoring.name
                   : m_monitoring.name + QStringLiteral(": ") + m_filter.names.join(QStringLiteral(", "));
    }

    void requireCurves(const Chart& chart) const
    {
        const bool isEmpty =
            std::all_of(chart.panels.cbegin(), chart.panels.cend(), [](const Chart::Panel& panel) {
                return std::all_of(panel.curves.cbegin(), panel.curves.cend(),
                                   [](const Chart::Curve& curve) { return curve.points.isEmpty(); });
            });
        if (isEmpty) {
            throw Failure(FailureKind::NotFound,
                          QStringLiteral("there is nothing to draw: no reading of \"%1\" matches")
                              .arg(m_monitoring.name));
        }
    }

    void draw(Chart& chart)
    {
        requireCurves(chart);
        chart.title = title();
        if (m_isGuessed) {
            chart.title += QStringLiteral(" (variations count from the first readings)");
            m_session.note(
                QStringLiteral("variations and limits count from the first readings, since the service "
                               "does not tell initial values that are 0 or have a fraction"));
        }
        if (m_options.isDrawn) {
            m_session.output().addPlainTexts(QStringLiteral("chart"),
                                             QStringList{chart.title} + textChart(chart, terminal::width()));
        }
        if (!m_options.plot.isEmpty()) {
            write(chart);
        }
    }

    void write(const Chart& chart)
    {
        const QString missing = ChartPicture::charactersWithoutFont(chart);
        if (!missing.isEmpty()) {
            m_session.warn(
                QStringLiteral(
                    "no font of this machine has the characters %1; the chart shows boxes for them")
                    .arg(missing));
        }
        writeChart(chart, m_options.plot, {sizeOf(m_options.size), m_options.dotsPerInch});
        m_session.note(QStringLiteral("wrote %1").arg(m_options.plot));
    }

    Session& m_session;
    const DrawingOptions& m_options;
    const PointFilter& m_filter;
    const RKMonitoring& m_monitoring;
    const chart::Days& m_days;
    PointSelection& m_selection;
    const chart::Words& m_words;
    bool m_isGuessed = false;
};

} // namespace

void requireDrawable(const DrawingOptions& options)
{
    if (!options.plot.isEmpty()) {
        requireChartPath(options.plot);
    }
    sizeOf(options.size);
    const bool isDay = QDate::fromString(options.baseline, Qt::ISODate).isValid();
    if (!isDay && !isOneOf(options.baseline, {"", "reference", "first", "previous"})) {
        throw Failure(
            FailureKind::BadInput,
            QStringLiteral(
                "--baseline: \"%1\" is neither reference, first, previous nor a day like 2026-03-01")
                .arg(options.baseline));
    }
    if (!options.baseline.isEmpty() && options.values == QLatin1String("measured")) {
        throw Failure(
            FailureKind::BadInput,
            QStringLiteral("--baseline: values as measured count from nothing; give --values cumulative or "
                           "incremental"));
    }
}

void drawOverTime(Session& session, const DrawingOptions& options, const PointFilter& filter,
                  const RKMonitoring& monitoring, const chart::Days& days, PointSelection& selection)
{
    StatisticsDrawing(session, options, filter, monitoring, days, selection).overTime();
}

void drawOverDepth(Session& session, const DrawingOptions& options, const PointFilter& filter,
                   const RKMonitoring& monitoring, const chart::Days& days, PointSelection& selection)
{
    StatisticsDrawing(session, options, filter, monitoring, days, selection).overDepth();
}
