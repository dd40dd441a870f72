#include "DrawingOptions.h"

#include "Terminal.h"
#include "plot/ChartFile.h"
#include "plot/ChartPicture.h"
#include "plot/TextChart.h"

#include <QDate>
#include <QRegularExpression>

#include <algorithm>

namespace {

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

bool isEmpty(const Chart& chart)
{
    return std::all_of(chart.panels.cbegin(), chart.panels.cend(), [](const Chart::Panel& panel) {
        return std::all_of(panel.curves.cbegin(), panel.curves.cend(),
                           [](const Chart::Curve& curve) { return curve.points.isEmpty(); });
    });
}

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

QString unitOf(const DrawingOptions& options, const MeasuredSubCategory& quantity)
{
    return options.unit.isEmpty() ? quantity.unit : options.unit;
}

void drawChart(Session& session, const DrawingOptions& options, const Chart& chart, const QString& what)
{
    if (isEmpty(chart)) {
        throw Failure(FailureKind::NotFound,
                      QStringLiteral("there is nothing to draw: no reading of %1 matches").arg(what));
    }
    if (options.isDrawn) {
        constexpr int titleAndPrompt = 2;
        const QSize cells(terminal::width(), terminal::height() - titleAndPrompt);
        session.output().addPlainTexts(QStringLiteral("chart"),
                                       QStringList{chart.title} + textChart(chart, cells));
    }
    if (options.plot.isEmpty()) {
        return;
    }
    const QString missing = ChartPicture::charactersWithoutFont(chart);
    if (!missing.isEmpty()) {
        session.warn(
            QStringLiteral("no font of this machine has the characters %1; the chart shows boxes for them")
                .arg(missing));
    }
    writeChart(chart, options.plot, {sizeOf(options.size), options.dotsPerInch});
    session.note(QStringLiteral("wrote %1").arg(options.plot));
}

void tellOfGuesses(Session& session, Chart& chart)
{
    chart.title += QStringLiteral(" (variations count from the first readings)");
    session.note(
        QStringLiteral("variations and limits count from the first readings, since the service does not tell "
                       "initial values that are 0 or have a fraction"));
}
