#include "plot/ChartFile.h"

#include "Failure.h"
#include "SvgDrawing.h"
#include "Text.h"
#include "chart/Chart.h"

#include <QGuiApplication>
#include <QImage>
#include <QTemporaryDir>

#include <set>

// Charts as files: what they say and show, read back.

namespace {

Chart chartOver(Chart::Kind kind, int curves)
{
    Chart chart;
    chart.kind = kind;
    chart.title = "VH <b>probes</b> & 50 %"_q;
    chart.otherLabel = kind == Chart::Kind::OverTime ? "Date (UTC+01:00)"_q : "Depth (m)"_q;
    Chart::Panel panel;
    panel.valueLabel = "Displacement (mm)"_q;
    const double day = 86'400'000.0;
    for (int curve = 0; curve < curves; ++curve) {
        Chart::Curve made;
        made.label = "curve %1"_q.arg(curve);
        for (int i = 0; i < 5; ++i) {
            made.points.append(kind == Chart::Kind::OverTime
                                   ? QPointF(1772409600000.0 + i * day, curve + i * 0.5)
                                   : QPointF(curve + i * 0.5, i * 0.5));
        }
        panel.curves.append(made);
    }
    chart.panels = {panel};
    return chart;
}

std::set<QString> curveColours(const SvgDrawing& drawing)
{
    std::set<QString> colours;
    for (const SvgDrawing::Line& line : drawing.lines) {
        if (line.points.size() == 5) {
            colours.insert(line.colour);
        }
    }
    return colours;
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
    chart.panels[0].limits = {{false, "limit +10"_q, 10.0, Chart::Limit::everyCurve},
                              {false, "curve 0: limit -10"_q, -10.0, 0}};
    writeChart(chart, path("a.svg"));
    const SvgDrawing drawing = readSvg(path("a.svg"));
    for (const QString& text : {chart.title, "Displacement (mm)"_q, chart.otherLabel, "curve 0"_q,
                                "curve 2"_q, "limit +10"_q, "curve 0: limit -10"_q, "2026-03-03"_q}) {
        EXPECT_TRUE(drawing.allTexts().contains(text)) << text.toStdString();
    }
    EXPECT_EQ(curveColours(drawing).size(), 3u);
}

TEST_F(ChartFile, OverDepthHoldsACurvePerDate)
{
    writeChart(chartOver(Chart::Kind::OverDepth, 14), path("a.svg"));
    const SvgDrawing drawing = readSvg(path("a.svg"));
    EXPECT_EQ(curveColours(drawing).size(), 14u);
    EXPECT_TRUE(drawing.allTexts().contains("Depth (m)"_q));
    EXPECT_TRUE(drawing.allTexts().contains("curve 13"_q));
}

TEST_F(ChartFile, ManyCurvesHaveColoursOfTheirOwn)
{
    writeChart(chartOver(Chart::Kind::OverTime, 30), path("a.svg"));
    EXPECT_EQ(curveColours(readSvg(path("a.svg"))).size(), 30u);
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

TEST_F(ChartFile, PdfIsADocumentOfOnePage)
{
    writeChart(chartOver(Chart::Kind::OverTime, 3), path("a.pdf"), {{254.0, 127.0}, 150});
    QFile file(path("a.pdf"));
    ASSERT_TRUE(file.open(QIODevice::ReadOnly));
    const QByteArray content = file.readAll();
    EXPECT_TRUE(content.startsWith("%PDF-"));
    EXPECT_TRUE(content.contains("/Count 1"));
    EXPECT_TRUE(content.contains("/MediaBox [0 0 720.000000 360.000000]")); // points
}

TEST_F(ChartFile, OneReadingIsEnough)
{
    Chart chart = chartOver(Chart::Kind::OverTime, 1);
    chart.panels[0].curves[0].points.resize(1);
    writeChart(chart, path("a.svg"));
    EXPECT_TRUE(readSvg(path("a.svg")).allTexts().contains("curve 0"_q));
}

TEST_F(ChartFile, KindsOfFilesAreKnownByTheirNames)
{
    for (const char* name : {"a.svg", "a.PNG", "a.pdf"}) {
        EXPECT_NO_THROW(requireChartPath(QString::fromUtf8(name))) << name;
    }
    for (const char* name : {"a.jpg", "svg", "a"}) {
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
    const QGuiApplication application(argc, argv);
    testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
