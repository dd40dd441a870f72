#include "plot/ChartFile.h"

#include "Failure.h"
#include "Text.h"
#include "chart/Chart.h"

#include <QApplication>
#include <QFile>
#include <QImage>
#include <QRegularExpression>
#include <QTemporaryDir>
#include <QXmlStreamReader>

#include <gtest/gtest.h>

#include <set>

// Charts as files: what they say and show, read back.

namespace {

Chart chartOver(Chart::Kind kind, int curves)
{
    Chart chart;
    chart.kind = kind;
    chart.title = "VH <b>probes</b> & 50 %"_q;
    chart.valueLabel = "Displacement (mm)"_q;
    chart.otherLabel = kind == Chart::Kind::OverTime ? "Date (UTC+01:00)"_q : "Depth (m)"_q;
    const double day = 86'400'000.0;
    for (int curve = 0; curve < curves; ++curve) {
        Chart::Curve made{"curve %1"_q.arg(curve), {}};
        for (int i = 0; i < 5; ++i) {
            made.points.append(kind == Chart::Kind::OverTime
                                   ? QPointF(1772409600000.0 + i * day, curve + i * 0.5)
                                   : QPointF(curve + i * 0.5, i * 0.5));
        }
        chart.curves.append(made);
    }
    return chart;
}

struct Drawn
{
    QStringList texts;
    // Colours of the lines with as many points as a curve has.
    std::set<QString> curveColours;
    int dashedLines = 0;
};

// What an SVG file shows. Fails the test when it is not well-formed.
Drawn readSvg(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly));
    QXmlStreamReader xml(&file);
    Drawn drawn;
    QStringList strokes{QString()};
    QStringList dashes{QString()};
    while (!xml.atEnd()) {
        const auto token = xml.readNext();
        if (token == QXmlStreamReader::EndElement) {
            strokes.removeLast();
            dashes.removeLast();
        }
        if (token != QXmlStreamReader::StartElement) {
            continue;
        }
        const QXmlStreamAttributes attributes = xml.attributes();
        const QString name = xml.name().toString();
        strokes.append(attributes.hasAttribute("stroke"_q) ? attributes.value("stroke"_q).toString()
                                                           : strokes.last());
        dashes.append(attributes.hasAttribute("stroke-dasharray"_q)
                          ? attributes.value("stroke-dasharray"_q).toString()
                          : QString());
        if (name == "text"_q) {
            drawn.texts.append(xml.readElementText().simplified());
            strokes.removeLast();
            dashes.removeLast();
        } else if (name == "polyline"_q &&
                   attributes.value("points"_q).toString().simplified().split(QLatin1Char(' ')).size() == 5) {
            drawn.curveColours.insert(strokes.last());
        }
        if (!dashes.last().isEmpty() && dashes.last() != "none"_q) {
            ++drawn.dashedLines;
        }
    }
    EXPECT_FALSE(xml.hasError()) << xml.errorString().toStdString();
    return drawn;
}

class ChartFile : public testing::Test
{
protected:
    QString path(const char* name) const { return m_folder.filePath(QString::fromUtf8(name)); }

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(ChartFile, OverTimeHoldsLabelsCurvesAndLimits)
{
    Chart chart = chartOver(Chart::Kind::OverTime, 3);
    chart.limits = {{"curve 0 +10"_q, 10.0, 0}, {"curve 0 -10"_q, -10.0, 0}};
    writeChart(chart, path("a.svg"));
    const Drawn drawn = readSvg(path("a.svg"));
    for (const QString& text : {chart.title, chart.valueLabel, chart.otherLabel, "curve 0"_q, "curve 2"_q,
                                "curve 0 +10"_q, "curve 0 -10"_q, "2026-03-03"_q}) {
        EXPECT_TRUE(drawn.texts.contains(text)) << text.toStdString();
    }
    EXPECT_EQ(drawn.curveColours.size(), 3u);
    EXPECT_GE(drawn.dashedLines, 2);
}

TEST_F(ChartFile, TicksOfSeveralDaysAreMidnightsAndNoons)
{
    Chart chart = chartOver(Chart::Kind::OverTime, 1);
    const double quarterPastEight = 29'700'000.0; // of the local day that the chart counts in
    for (QPointF& point : chart.curves[0].points) {
        point.rx() += quarterPastEight;
    }
    writeChart(chart, path("a.svg"));
    const QStringList texts = readSvg(path("a.svg")).texts;
    const QStringList hours = texts.filter(QRegularExpression("\\A\\d\\d:\\d\\d\\z"_q));
    EXPECT_GE(hours.count("00:00"_q), 3);
    EXPECT_EQ(hours.count("00:00"_q) + hours.count("12:00"_q), hours.size());
    EXPECT_TRUE(texts.contains("2026-03-04"_q));
}

TEST_F(ChartFile, TicksOfADayAreRoundHours)
{
    Chart chart = chartOver(Chart::Kind::OverTime, 1);
    const double twoHoursAndAQuarter = 8'100'000.0;
    const double sevenPastTwo = 1772409600000.0 + 7'620'000.0;
    for (int i = 0; i < chart.curves[0].points.size(); ++i) {
        chart.curves[0].points[i].setX(sevenPastTwo + i * twoHoursAndAQuarter);
    }
    writeChart(chart, path("a.svg"));
    const QStringList hours =
        readSvg(path("a.svg")).texts.filter(QRegularExpression("\\A\\d\\d:\\d\\d\\z"_q));
    EXPECT_GE(hours.size(), 3);
    for (const QString& hour : hours) {
        EXPECT_TRUE(hour.endsWith(":00"_q)) << hour.toStdString();
    }
}

TEST_F(ChartFile, OverDepthHoldsACurvePerDate)
{
    const Chart chart = chartOver(Chart::Kind::OverDepth, 14);
    writeChart(chart, path("a.svg"));
    const Drawn drawn = readSvg(path("a.svg"));
    EXPECT_EQ(drawn.curveColours.size(), 14u);
    EXPECT_TRUE(drawn.texts.contains("Depth (m)"_q));
    EXPECT_TRUE(drawn.texts.contains("curve 13"_q));
}

TEST_F(ChartFile, PngIsAPicture)
{
    writeChart(chartOver(Chart::Kind::OverDepth, 3), path("a.PNG"));
    const QImage image(path("a.PNG"));
    ASSERT_FALSE(image.isNull());
    EXPECT_GT(image.width(), 800);
    std::set<QRgb> colours;
    for (int y = 0; y < image.height(); ++y) {
        for (int x = 0; x < image.width(); ++x) {
            colours.insert(image.pixel(x, y));
        }
    }
    EXPECT_EQ(image.pixelColor(0, 0), QColor(Qt::white));
    EXPECT_GT(colours.size(), 20u);
}

TEST_F(ChartFile, OneReadingIsEnough)
{
    Chart chart = chartOver(Chart::Kind::OverTime, 1);
    chart.curves[0].points.resize(1);
    writeChart(chart, path("a.svg"));
    EXPECT_TRUE(readSvg(path("a.svg")).texts.contains("curve 0"_q));
}

TEST_F(ChartFile, OnlySvgAndPng)
{
    EXPECT_NO_THROW(requireChartPath("a.svg"_q));
    EXPECT_NO_THROW(requireChartPath("a.PNG"_q));
    for (const char* name : {"a.pdf", "svg", "a"}) {
        EXPECT_THROW(requireChartPath(QString::fromUtf8(name)), Failure) << name;
    }
}

TEST_F(ChartFile, AnUnwritablePlaceIsAFailure)
{
    try {
        writeChart(chartOver(Chart::Kind::OverTime, 1), path("no/such/folder/a.svg"));
        FAIL() << "wrote into a folder that is not there";
    } catch (const Failure& failure) {
        EXPECT_TRUE(failure.message().contains("no/such/folder/a.svg"_q));
    }
}

int main(int argc, char** argv)
{
    if (!qEnvironmentVariableIsSet("QT_QPA_PLATFORM")) {
        qputenv("QT_QPA_PLATFORM", "offscreen");
    }
    const QApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
