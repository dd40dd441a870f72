#include "Charts.h"
#include "SvgDrawing.h"
#include "Text.h"
#include "plot/ChartFile.h"

#include <QFile>
#include <QTemporaryDir>
#include <QTextStream>

#include <cmath>

// Six charts as they are meant to look: every line and text with its place is compared with what the folder
// golden holds. A chart that is to look otherwise from now on is written there anew with RK_WRITE_GOLDEN=1,
// and to be looked at.

namespace {

constexpr double day = 86'400'000.0;
constexpr double begin = 1'772'409'600'000.0; // 2 March 2026

Chart::Curve settling(const QString& label, int days, double speed)
{
    Chart::Curve curve = curveOf(label, {});
    for (int i = 0; i < days; ++i) {
        curve.points.append({begin + i * day, -speed * i + std::fmod(i * 0.37, 0.5)});
    }
    return curve;
}

Chart::Limit limit(const QString& label, double value, bool isWarning)
{
    return {isWarning, label, value, Chart::Limit::everyCurve};
}

Chart overTime(const QString& title, const QVector<Chart::Panel>& panels)
{
    Chart chart;
    chart.title = title;
    chart.otherLabel = "Date (UTC+01:00)"_q;
    chart.alarmLabel = "alarm"_q;
    chart.panels = panels;
    return chart;
}

Chart limits()
{
    Chart chart = overTime("Pit-N"_q, {panelOf("Settlement, total variation (mm)"_q,
                                               {settling("S1"_q, 60, 0.4), settling("S2"_q, 60, 0.1)})});
    chart.panels[0].limits = {limit("limit +20"_q, 20.0, false), limit("warning +16"_q, 16.0, true),
                              limit(QString::fromUtf8("limit −20"), -20.0, false),
                              limit(QString::fromUtf8("warning −16"), -16.0, true)};
    chart.panels[0].alarms = {{{begin + 55 * day, -22.0}, 0}};
    return chart;
}

Chart quantities()
{
    return overTime("Pit-N: P1"_q, {panelOf("Force (kN)"_q, {settling("P1"_q, 14, -7.0)}),
                                    panelOf("Settlement (mm)"_q, {settling("P1"_q, 14, 0.3)})});
}

Chart manyCurves()
{
    Chart::Panel panel = panelOf("Settlement (mm)"_q, {});
    for (int i = 1; i <= 28; ++i) {
        panel.curves.append(settling("SP%1"_q.arg(i, 4, 10, QLatin1Char('0')), 30, i * 0.05));
    }
    return overTime("Excavation"_q, {panel});
}

Chart gaps()
{
    Chart chart = overTime("LS-a"_q, {panelOf("Soil moisture, daily variation (V)"_q, {})});
    Chart::Curve curve = curveOf("LS-a-W2, 100"_q, {});
    for (const int i : {0, 1, 2, 3, 12, 13, 14, 30}) {
        curve.points.append({begin + i * day, 0.001 * (i % 4)});
    }
    chart.panels[0].curves = {curve};
    return chart;
}

Chart profile()
{
    Chart chart;
    chart.kind = Chart::Kind::OverDepth;
    chart.title = "Excavation: IN1"_q;
    chart.otherLabel = "Depth (m)"_q;
    chart.panels = {panelOf("Displacement, total variation (mm)"_q, {})};
    for (int step = 0; step < 5; ++step) {
        Chart::Curve curve = curveOf("2026-03-%1"_q.arg(2 + step * 7, 2, 10, QLatin1Char('0')), {});
        for (double depth = 0.5; depth <= 20.0; depth += 0.5) {
            curve.points.append({step * 5.0 * std::exp(-std::pow((depth - 6.0 - step) / 4.0, 2)), depth});
        }
        chart.panels[0].curves.append(curve);
    }
    chart.panels[0].limits = {limit("limit +30"_q, 30.0, false), limit("warning +24"_q, 24.0, true)};
    chart.panels[0].levels = {{"dig level 9.5 m"_q, 9.5}};
    return chart;
}

Chart chinese()
{
    Chart chart = overTime(
        QString::fromUtf8("北侧基坑 <沉降>"),
        {panelOf(QString::fromUtf8("沉降累计变化量 (mm)"), {settling(QString::fromUtf8("测点1"), 20, 0.4)})});
    chart.otherLabel = QString::fromUtf8("日期 (UTC+08:00)");
    chart.panels[0].limits = {limit(QString::fromUtf8("限值 −10"), -10.0, false)};
    return chart;
}

struct Golden
{
    const char* name;
    Chart (*chart)();
};

class GoldenCharts : public testing::TestWithParam<Golden>
{
protected:
    // One line for each line and text of the drawing; ends of lines stand for them.
    static QStringList described(const SvgDrawing& drawing)
    {
        QStringList lines;
        for (const SvgDrawing::Line& line : drawing.lines) {
            const QPointF first = line.points.first();
            const QPointF last = line.points.last();
            lines.append("line %1 %2 of %3 from %4 %5 to %6 %7"_q.arg(line.colour)
                             .arg(line.isDashed ? "dashed"_q : "solid"_q)
                             .arg(line.points.size())
                             .arg(first.x(), 0, 'f', 1)
                             .arg(first.y(), 0, 'f', 1)
                             .arg(last.x(), 0, 'f', 1)
                             .arg(last.y(), 0, 'f', 1));
        }
        for (const SvgDrawing::Text& text : drawing.texts) {
            lines.append("text %1 at %2 %3: %4"_q.arg(text.size)
                             .arg(text.place.x(), 0, 'f', 1)
                             .arg(text.place.y(), 0, 'f', 1)
                             .arg(text.text));
        }
        return lines;
    }

    // Words must be the same, and numbers nearly: another version of the font has letters of another width.
    static bool isAlike(const QString& left, const QString& right)
    {
        constexpr double tolerance = 3.0;
        const QStringList leftWords = left.split(QLatin1Char(' '));
        const QStringList rightWords = right.split(QLatin1Char(' '));
        if (leftWords.size() != rightWords.size()) {
            return false;
        }
        for (int i = 0; i < leftWords.size(); ++i) {
            bool isNumber = false;
            const double number = leftWords[i].toDouble(&isNumber);
            const bool isSame = isNumber && leftWords[i].contains(QLatin1Char('.'))
                                    ? std::abs(number - rightWords[i].toDouble()) <= tolerance
                                    : leftWords[i] == rightWords[i];
            if (!isSame) {
                return false;
            }
        }
        return true;
    }

    static QStringList linesOf(const QString& path)
    {
        QFile file(path);
        EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
        return QString::fromUtf8(file.readAll()).split(QLatin1Char('\n'), Qt::SkipEmptyParts);
    }

    QTemporaryDir folder;
};

} // namespace

TEST_P(GoldenCharts, LookAsTheyAreMeantTo)
{
    const QString svg = folder.filePath("a.svg"_q);
    writeChart(GetParam().chart(), svg);
    const QStringList drawn = described(readSvg(svg));
    const QString path =
        QStringLiteral(RK_GOLDEN) + QLatin1Char('/') + QLatin1String(GetParam().name) + ".txt"_q;
    if (qEnvironmentVariableIsSet("RK_WRITE_GOLDEN")) {
        QFile file(path);
        ASSERT_TRUE(file.open(QIODevice::WriteOnly));
        file.write(drawn.join(QLatin1Char('\n')).toUtf8() + '\n');
    }
    const QStringList golden = linesOf(path);
    ASSERT_EQ(drawn.size(), golden.size());
    for (int i = 0; i < drawn.size(); ++i) {
        EXPECT_TRUE(isAlike(drawn[i], golden[i])) << drawn[i].toStdString() << "\n"
                                                  << golden[i].toStdString();
    }
}

INSTANTIATE_TEST_SUITE_P(
    All, GoldenCharts,
    testing::Values(Golden{"limits", limits}, Golden{"quantities", quantities},
                    Golden{"many-curves", manyCurves}, Golden{"gaps", gaps}, Golden{"profile", profile},
                    Golden{"chinese", chinese}),
    [](const testing::TestParamInfo<Golden>& golden) {
        return QString::fromLatin1(golden.param.name).remove(QLatin1Char('-')).toStdString();
    });
