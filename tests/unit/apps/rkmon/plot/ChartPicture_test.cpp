#include "plot/ChartPicture.h"

#include "Charts.h"
#include "SvgDrawing.h"
#include "Text.h"
#include "plot/ChartFile.h"
#include "plot/ChartStyle.h"

#include <QDateTime>
#include <QImage>
#include <QPainter>
#include <QSvgRenderer>
#include <QTemporaryDir>

#include <cmath>
#include <random>

// Where things stand in a chart, read back from what was drawn.

namespace {

const QString gridColour = "#d7d7d7"_q;
const QString black = "#000000"_q;
constexpr double tolerance = 0.05; // pixels; coordinates are written with six digits

// Charts of all kinds by chance, the same in every run.
class RandomChart
{
public:
    explicit RandomChart(unsigned seed) : m_random(seed) { make(); }

    Chart chart;
    ChartFormat format;

private:
    int whole(int least, int most) { return std::uniform_int_distribution<>(least, most)(m_random); }
    double real(double least, double most) { return std::uniform_real_distribution<>(least, most)(m_random); }

    void make()
    {
        constexpr double hour = 3'600'000.0;
        const double span = hour * std::pow(10.0, real(0.3, 5.0)); // two hours to eleven years
        const double begin = 1.4e12 + real(0.0, 4e11);
        const double magnitude = std::pow(10.0, real(-3.0, 5.0));
        chart.title = "Excavation"_q;
        chart.otherLabel = "Date (UTC+01:00)"_q;
        chart.panels.resize(whole(1, 3));
        for (Chart::Panel& panel : chart.panels) {
            panel.valueLabel = "Settlement (mm)"_q;
            panel.curves.resize(whole(1, 12));
            const int readings = whole(3, 150);
            for (Chart::Curve& curve : panel.curves) {
                curve.label = "S%1"_q.arg(whole(1, 999));
                for (int i = 0; i < readings; ++i) {
                    curve.points.append({begin + span * i / (readings - 1), real(-magnitude, magnitude)});
                }
            }
        }
        format.millimetres = {real(120.0, 400.0), real(90.0, 150.0) * chart.panels.size()};
    }

    std::mt19937 m_random;
};

// The way from one of two known places to the other, and on.
struct Line
{
    double from, to;           // what is known
    double fromPlace, toPlace; // where it is

    double place(double value) const
    {
        return fromPlace + (value - from) / (to - from) * (toPlace - fromPlace);
    }
    double value(double place) const
    {
        return from + (place - fromPlace) / (toPlace - fromPlace) * (to - from);
    }
};

// What the labels of an axis of time can say of their tick.
QDateTime nearestTime(const QString& label, double about)
{
    const QDateTime guess = QDateTime::fromMSecsSinceEpoch(std::llround(about), Qt::UTC);
    for (const char* format : {"yyyy-MM-dd", "yyyy-MM", "yyyy"}) {
        const QDate date = QDate::fromString(label, QLatin1String(format));
        if (date.isValid()) {
            return {date, QTime(0, 0), Qt::UTC};
        }
    }
    const QTime clock = QTime::fromString(label, "hh:mm"_q);
    EXPECT_TRUE(clock.isValid()) << label.toStdString();
    QDateTime best;
    for (const int days : {-1, 0, 1}) {
        const QDateTime candidate(guess.date().addDays(days), clock, Qt::UTC);
        if (!best.isValid() || std::abs(candidate.msecsTo(guess)) < std::abs(best.msecsTo(guess))) {
            best = candidate;
        }
    }
    return best;
}

bool holdsPlace(const QVector<double>& places, double place, double within = tolerance)
{
    return std::any_of(places.cbegin(), places.cend(),
                       [=](double other) { return std::abs(other - place) < within; });
}

class ChartPictureTest : public testing::Test
{
protected:
    QString path(const char* name) const { return m_folder.filePath(QString::fromUtf8(name)); }

    SvgDrawing drawn(const Chart& chart, const ChartFormat& format = {})
    {
        writeChart(chart, path("a.svg"), format);
        return readSvg(path("a.svg"));
    }

    static QVector<SvgDrawing::Line> curvesOf(const SvgDrawing& drawing)
    {
        QVector<SvgDrawing::Line> curves;
        for (const SvgDrawing::Line& line : drawing.lines) {
            if (line.points.size() > 2) {
                curves.append(line);
            }
        }
        return curves;
    }

    static double centreOf(const SvgDrawing::Text& text)
    {
        return text.place.x() + style::widthOf(text.text, style::labelFont()) / 2;
    }

private:
    QTemporaryDir m_folder;
};

} // namespace

TEST_F(ChartPictureTest, TicksGridAndReadingsOfTimeBelongTogether)
{
    for (unsigned seed = 1; seed <= 60; ++seed) {
        SCOPED_TRACE(seed);
        const RandomChart random(seed);
        const SvgDrawing drawing = drawn(random.chart, random.format);
        const QVector<SvgDrawing::Line> curves = curvesOf(drawing);
        const QVector<QPointF>& readings = random.chart.panels[0].curves[0].points;
        ASSERT_FALSE(curves.isEmpty());
        ASSERT_EQ(curves[0].points.size(), readings.size());
        const Line time{readings.first().x(), readings.last().x(), curves[0].points.first().x(),
                        curves[0].points.last().x()};

        int curve = 0;
        for (const Chart::Panel& panel : random.chart.panels) {
            for (const Chart::Curve& measured : panel.curves) {
                ASSERT_EQ(curves[curve].points.size(), measured.points.size());
                for (int i = 0; i < measured.points.size(); ++i) {
                    EXPECT_NEAR(curves[curve].points[i].x(), time.place(measured.points[i].x()), tolerance);
                }
                ++curve;
            }
        }
        EXPECT_EQ(curve, curves.size());

        QVector<double> grid;
        QVector<double> ticks;
        double bottom = 0.0;
        double left = 1e9;
        for (const SvgDrawing::Line& line : drawing.lines) {
            if (line.colour == gridColour && !line.isUpright()) {
                left = std::min(left, line.points[0].x());
            } else if (line.isUpright() && line.colour == gridColour) {
                grid.append(line.points[0].x());
                bottom = std::max(bottom, line.points[1].y());
            } else if (line.isUpright() && line.colour == black) {
                ticks.append(line.points[0].x());
            }
        }
        EXPECT_EQ(grid, ticks);
        ASSERT_FALSE(ticks.isEmpty());

        int labels = 0;
        const double lineHeight = style::heightOf(style::labelFont());
        for (const SvgDrawing::Text& text : drawing.texts) {
            const double below = text.place.y() - bottom - style::tickLength;
            if (below > 0 && below < lineHeight && centreOf(text) > left) {
                ++labels;
                EXPECT_TRUE(holdsPlace(ticks, centreOf(text), 0.5)) << text.text.toStdString();
                const QDateTime named = nearestTime(text.text, time.value(centreOf(text)));
                const double place = time.place(static_cast<double>(named.toMSecsSinceEpoch()));
                EXPECT_TRUE(holdsPlace(ticks, place)) << text.text.toStdString() << " at " << place;
                EXPECT_NEAR(centreOf(text), place, 0.5) << text.text.toStdString();
            }
        }
        EXPECT_EQ(labels * random.chart.panels.size(), ticks.size());
    }
}

TEST_F(ChartPictureTest, TicksGridAndReadingsOfValuesBelongTogether)
{
    for (unsigned seed = 101; seed <= 160; ++seed) {
        SCOPED_TRACE(seed);
        RandomChart random(seed);
        random.chart.panels.resize(1);
        const SvgDrawing drawing = drawn(random.chart, random.format);
        const QVector<QPointF>& readings = random.chart.panels[0].curves[0].points;
        const SvgDrawing::Line curve = curvesOf(drawing).value(0);
        ASSERT_EQ(curve.points.size(), readings.size());
        const auto byValue = [](const QPointF& left, const QPointF& right) {
            return left.y() < right.y();
        };
        const auto [least, most] = std::minmax_element(readings.cbegin(), readings.cend(), byValue);
        const Line value{least->y(), most->y(), curve.points[static_cast<int>(least - readings.cbegin())].y(),
                         curve.points[static_cast<int>(most - readings.cbegin())].y()};
        QVector<double> grid;
        QVector<double> ticks;
        double left = 1e9;
        for (const SvgDrawing::Line& line : drawing.lines) {
            const bool isLevel = line.points.size() == 2 && line.points[0].y() == line.points[1].y();
            if (isLevel && line.colour == gridColour) {
                grid.append(line.points[0].y());
                left = std::min(left, line.points[0].x());
            } else if (isLevel && line.colour == black) {
                ticks.append(line.points[0].y());
            }
        }
        EXPECT_EQ(grid, ticks);
        int labels = 0;
        for (SvgDrawing::Text text : drawing.texts) {
            const double end = text.place.x() + style::widthOf(text.text, style::labelFont());
            if (text.place.x() > style::margin && end < left - style::tickLength + 0.5 &&
                text.text != "Settlement (mm)"_q) {
                ++labels;
                const double number = text.text.replace(QChar(0x2212), QLatin1Char('-')).toDouble();
                EXPECT_TRUE(holdsPlace(ticks, value.place(number))) << text.text.toStdString();
            }
        }
        EXPECT_EQ(labels, ticks.size());
    }
}

TEST_F(ChartPictureTest, PngIsTheSameDrawingAsSvg)
{
    for (unsigned seed = 1; seed <= 3; ++seed) {
        const RandomChart random(seed);
        writeChart(random.chart, path("a.svg"), random.format);
        writeChart(random.chart, path("a.png"), random.format);
        const QImage picture = QImage(path("a.png")).convertToFormat(QImage::Format_Grayscale8);
        QImage fromSvg(picture.size(), QImage::Format_Grayscale8);
        fromSvg.fill(Qt::white);
        QPainter painter(&fromSvg);
        QSvgRenderer(path("a.svg")).render(&painter);
        painter.end();
        qint64 different = 0;
        for (int y = 0; y < picture.height(); ++y) {
            constexpr int notice = 128;
            const uchar* left = picture.constScanLine(y);
            const uchar* right = fromSvg.constScanLine(y);
            for (int x = 0; x < picture.width(); ++x) {
                different += std::abs(left[x] - right[x]) > notice ? 1 : 0;
            }
        }
        // Texts are smoothed a little differently.
        EXPECT_LT(different, picture.width() * qint64(picture.height()) / 200) << seed;
    }
}

TEST_F(ChartPictureTest, ResolutionMakesMorePixelsOfTheSamePaper)
{
    Chart chart = RandomChart(1).chart;
    writeChart(chart, path("a.png"), {{254.0, 127.0}, 100});
    writeChart(chart, path("b.png"), {{254.0, 127.0}, 300});
    EXPECT_EQ(QImage(path("a.png")).size(), QSize(1000, 500));
    EXPECT_EQ(QImage(path("b.png")).size(), QSize(3000, 1500));
    EXPECT_EQ(qRound(QImage(path("b.png")).dotsPerMeterX() * 0.0254), 300);
}

TEST_F(ChartPictureTest, QuantitiesHavePanelsOfTheirOwnOverOneAxisOfTime)
{
    Chart chart = RandomChart(7).chart;
    chart.panels.resize(2);
    chart.panels[0].valueLabel = "Settlement (mm)"_q;
    chart.panels[1].valueLabel = "Force (kN)"_q;
    const SvgDrawing drawing = drawn(chart);
    EXPECT_EQ(drawing.allTexts().count("Settlement (mm)"_q), 1);
    EXPECT_EQ(drawing.allTexts().count("Force (kN)"_q), 1);
    EXPECT_EQ(drawing.allTexts().count("Date (UTC+01:00)"_q), 1);
    const QVector<SvgDrawing::Line> curves = curvesOf(drawing);
    double lowestOfFirst = 0.0;
    double highestOfSecond = 1e9;
    for (int i = 0; i < curves.size(); ++i) {
        for (const QPointF& place : curves[i].points) {
            if (i < chart.panels[0].curves.size()) {
                lowestOfFirst = std::max(lowestOfFirst, place.y());
            } else {
                highestOfSecond = std::min(highestOfSecond, place.y());
            }
        }
    }
    EXPECT_LT(lowestOfFirst, highestOfSecond);
}

TEST_F(ChartPictureTest, LabelsOfLimitsDoNotHideEachOther)
{
    Chart chart = RandomChart(3).chart;
    chart.panels.resize(1);
    chart.panels[0].curves = {curveOf("S1"_q, {{0, 0.0}, {1e9, 1.0}, {2e9, 100.0}})};
    chart.panels[0].limits = {{false, "limit +90"_q, 90.0, Chart::Limit::everyCurve},
                              {true, "warning +89"_q, 89.0, Chart::Limit::everyCurve},
                              {false, "limit +88"_q, 88.0, 0}};
    const SvgDrawing drawing = drawn(chart);
    QVector<QRectF> places;
    for (const SvgDrawing::Text& text : drawing.texts) {
        if (text.text.contains("+"_q)) {
            places.append({text.place, QSizeF(style::widthOf(text.text, style::limitFont()),
                                              style::heightOf(style::limitFont()))});
        }
    }
    ASSERT_EQ(places.size(), 4); // and the label of the axis, which has an offset
    for (int i = 0; i < places.size(); ++i) {
        for (int j = 0; j < i; ++j) {
            EXPECT_FALSE(places[i].intersects(places[j])) << i << j;
        }
    }
    const auto dashed = std::count_if(drawing.lines.cbegin(), drawing.lines.cend(),
                                      [](const SvgDrawing::Line& line) { return line.isDashed; });
    EXPECT_EQ(dashed, 3);
}

TEST_F(ChartPictureTest, GapsAreNotJoined)
{
    Chart chart = RandomChart(3).chart;
    const double day = 86'400'000.0;
    chart.panels = {panelOf("Settlement"_q, {curveOf("S1"_q, {})})};
    for (const int i : {0, 1, 2, 20, 21, 22, 23}) {
        chart.panels[0].curves[0].points.append({i * day, i * 1.0});
    }
    const QVector<SvgDrawing::Line> curves = curvesOf(drawn(chart));
    ASSERT_EQ(curves.size(), 2);
    EXPECT_EQ(curves[0].points.size(), 3);
    EXPECT_EQ(curves[1].points.size(), 4);
}

TEST_F(ChartPictureTest, DepthGrowsDownwards)
{
    Chart chart;
    chart.kind = Chart::Kind::OverDepth;
    chart.title = "IN1"_q;
    chart.otherLabel = "Depth (m)"_q;
    chart.panels = {
        panelOf("Displacement (mm)"_q, {curveOf("2026-03-02"_q, {{5.0, 0.5}, {3.0, 10.0}, {1.0, 20.0}})})};
    const SvgDrawing drawing = drawn(chart);
    const SvgDrawing::Line curve = curvesOf(drawing).value(0);
    ASSERT_EQ(curve.points.size(), 3);
    EXPECT_LT(curve.points[0].y(), curve.points[1].y());
    EXPECT_GT(curve.points[0].x(), curve.points[1].x());
    EXPECT_TRUE(drawing.allTexts().contains("Depth (m)"_q));
    EXPECT_TRUE(drawing.allTexts().contains("Displacement (mm)"_q));
}

TEST_F(ChartPictureTest, SaysWhichCharactersHaveNoFont)
{
    Chart chart;
    chart.title = "Wall \u00e9\u03b1"_q;
    EXPECT_EQ(ChartPicture::charactersWithoutFont(chart), QString());
    const uint unassigned = 0x10FFFD; // for private use
    const QString strange = QString::fromUcs4(&unassigned, 1);
    chart.panels = {panelOf("Settlement"_q, {curveOf(strange + strange, {})})};
    EXPECT_EQ(ChartPicture::charactersWithoutFont(chart), QString::fromUcs4(&unassigned, 1));
}
