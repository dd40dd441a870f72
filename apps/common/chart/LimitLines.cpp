#include "chart/LimitLines.h"

#include "DailyLimit.h"
#include "ThresholdGroups.h"

#include <QSet>

#include <algorithm>
#include <cmath>

namespace chart {

namespace {

constexpr double wholeLimit = 100.0; // percent

// A line about nothing yet: what its amount counts from, and how far it is from there.
struct Amount
{
    double limit = 0.0; // not negative
    double level = wholeLimit;
    bool isFalling = false;

    double distance() const
    {
        const double amount = limit * level / wholeLimit;
        return isFalling ? -amount : amount;
    }
};

bool isListed(const Chart::Curve& curve, const PointLocSetting& group)
{
    return curve.cellId == group.cellId && group.groupPoint.contains(curve.pointName);
}

QString signedText(double number)
{
    constexpr int digits = 12;
    const QString amount = QString::number(std::abs(number), 'g', digits);
    return (number < 0.0 ? QString(QChar(0x2212)) : QStringLiteral("+")) + amount;
}

QList<Amount> amountsOf(double limit, LimitSide side, double warningLevel)
{
    QList<Amount> amounts;
    if (!(limit > 0.0)) {
        return amounts;
    }
    for (const bool isFalling : {false, true}) {
        const LimitSide other = isFalling ? LimitSide::Rising : LimitSide::Falling;
        if (side == other) {
            continue;
        }
        amounts.append({limit, wholeLimit, isFalling});
        if (warningLevel > 0.0 && warningLevel < wholeLimit) {
            amounts.append({limit, warningLevel, isFalling});
        }
    }
    return amounts;
}

Chart::Limit lineOf(const Words& words, const Amount& amount, double from, int curve)
{
    const bool isWarning = amount.level < wholeLimit;
    const QString& text = isWarning ? words.warning : words.limit;
    return {isWarning, text.arg(signedText(amount.distance())), from + amount.distance(), curve};
}

// Collects the lines of one panel.
class PanelLines
{
public:
    PanelLines(Chart::Panel& panel, const Words& words, Values values, const ReferenceOf& referenceOf)
        : m_panel(panel), m_words(words), m_values(values), m_referenceOf(referenceOf)
    {
    }

    void add(const LimitingGroup& group)
    {
        for (int curve = 0; curve < m_panel.curves.size(); ++curve) {
            if (isListed(m_panel.curves[curve], group.setting)) {
                addForCurve(group, curve);
            }
        }
    }

    // Lines that are at the same place for several curves become one of the whole panel. False when there are
    // more lines than anybody could read, which are then left out.
    bool finish()
    {
        constexpr int mostLines = 8;
        constexpr int mostLimits = 6;
        if (placeCount() > mostLines) {
            leaveOutWarnings();
        }
        if (m_values == Values::Measured && m_panel.curves.size() > 1 && placeCount() > mostLimits) {
            return false;
        }
        for (int first = 0; first < m_lines.size(); ++first) {
            const Chart::Limit line = m_lines[first];
            if (isTaken(line)) {
                continue;
            }
            const auto isSamePlace = [&](const Chart::Limit& other) {
                return other.value == line.value && other.isWarning == line.isWarning;
            };
            const auto count = std::count_if(m_lines.cbegin(), m_lines.cend(), isSamePlace);
            Chart::Limit shown = line;
            if (count > 1 || m_panel.curves.size() == 1) {
                shown.curve = Chart::Limit::everyCurve;
            } else {
                shown.label = m_panel.curves[line.curve].label + QLatin1String(": ") + line.label;
            }
            m_panel.limits.append(shown);
        }
        return true;
    }

private:
    int placeCount() const
    {
        QSet<double> places;
        for (const Chart::Limit& line : m_lines) {
            places.insert(line.value);
        }
        return places.size();
    }

    // Where curves have limits of their own, their warning levels would hide them.
    void leaveOutWarnings()
    {
        m_lines.erase(std::remove_if(m_lines.begin(), m_lines.end(),
                                     [](const Chart::Limit& line) { return line.isWarning; }),
                      m_lines.end());
    }

    void addForCurve(const LimitingGroup& group, int curve)
    {
        const PointLocSetting& setting = group.setting;
        const std::optional<double> reference = m_referenceOf(m_panel.curves[curve].pointId);
        if (m_values == Values::Daily) {
            const bool isPercent = setting.dayVarType == daily::inPercent;
            if (!isPercent || reference) {
                const double limit =
                    isPercent ? setting.dayVarValue / wholeLimit * std::abs(*reference) : setting.dayVarValue;
                addLines(curve, 0.0, amountsOf(limit, group.sides.daySide, group.sides.warningLevel));
            }
        } else if (reference) {
            const double from = m_values == Values::Cumulative ? 0.0 : *reference;
            addLines(curve, from,
                     amountsOf(setting.totalVar, group.sides.totalSide, group.sides.warningLevel));
        }
    }

    void addLines(int curve, double from, const QList<Amount>& amounts)
    {
        for (const Amount& amount : amounts) {
            const Chart::Limit line = lineOf(m_words, amount, from, curve);
            const bool isThere =
                std::any_of(m_lines.cbegin(), m_lines.cend(), [&](const Chart::Limit& other) {
                    return other.curve == curve && other.value == line.value &&
                           other.isWarning == line.isWarning;
                });
            if (!isThere) {
                m_lines.append(line);
            }
        }
    }

    bool isTaken(const Chart::Limit& line) const
    {
        return std::any_of(m_panel.limits.cbegin(), m_panel.limits.cend(), [&](const Chart::Limit& shown) {
            return shown.curve == Chart::Limit::everyCurve && shown.value == line.value &&
                   shown.isWarning == line.isWarning;
        });
    }

    Chart::Panel& m_panel;
    const Words& m_words;
    Values m_values;
    const ReferenceOf& m_referenceOf;
    QVector<Chart::Limit> m_lines;
};

} // namespace

bool addLimits(Chart& chart, const Words& words, Values values, const QList<LimitingGroup>& groups,
               const ReferenceOf& referenceOf)
{
    bool isComplete = true;
    for (Chart::Panel& panel : chart.panels) {
        PanelLines lines(panel, words, values, referenceOf);
        for (const LimitingGroup& group : groups) {
            if (group.setting.subCategoryId == panel.subCategoryId) {
                lines.add(group);
            }
        }
        isComplete = lines.finish() && isComplete;
    }
    return isComplete;
}

void addLimitsOverDepth(Chart& chart, const Words& words, const QList<LimitingGroup>& groups,
                        const QString& pointName)
{
    for (Chart::Panel& panel : chart.panels) {
        for (const LimitingGroup& group : groups) {
            if (group.setting.subCategoryId != panel.subCategoryId ||
                !group.setting.groupPoint.contains(pointName)) {
                continue;
            }
            for (const Amount& amount :
                 amountsOf(group.setting.totalVar, group.sides.totalSide, group.sides.warningLevel)) {
                panel.limits.append(lineOf(words, amount, 0.0, Chart::Limit::everyCurve));
            }
        }
    }
}

bool limitsPointOf(const Chart& chart, const PointLocSetting& group)
{
    for (const Chart::Panel& panel : chart.panels) {
        if (panel.subCategoryId != group.subCategoryId) {
            continue;
        }
        for (const Chart::Curve& curve : panel.curves) {
            if (isListed(curve, group)) {
                return true;
            }
        }
    }
    return false;
}

QList<LimitingGroup> limitingGroups(ServiceSession& session, const RKMonitoring& monitoring,
                                    const std::function<bool(const PointLocSetting&)>& isWanted)
{
    const bool tellsSides = session.extensions().has(Extension::GroupSides);
    QList<LimitingGroup> limiting;
    for (const PointLocSetting& group : groupsOfMonitoring(session, monitoring)) {
        if (isWanted(group)) {
            limiting.append({group, tellsSides ? session.extensions().groupSides(group.id) : GroupSides()});
        }
    }
    return limiting;
}

} // namespace chart
