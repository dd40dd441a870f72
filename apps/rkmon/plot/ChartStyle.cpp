#include "plot/ChartStyle.h"

#include <QFontMetricsF>

#include <array>
#include <cmath>

namespace style {

namespace {

// Sizes are in units of the picture, whatever the resolution of what it is painted on.
QFont fontOf(int size, QFont::Weight weight = QFont::Normal)
{
    QFont font(QStringLiteral("sans-serif"));
    font.setPixelSize(size);
    font.setWeight(weight);
    font.setHintingPreference(QFont::PreferNoHinting);
    return font;
}

} // namespace

QFont titleFont()
{
    return fontOf(25, QFont::Bold);
}

QFont axisFont()
{
    return fontOf(19, QFont::DemiBold);
}

QFont labelFont()
{
    return fontOf(19);
}

QFont limitFont()
{
    return fontOf(17);
}

double widthOf(const QString& text, const QFont& font)
{
    return QFontMetricsF(font).horizontalAdvance(text);
}

double heightOf(const QFont& font)
{
    return QFontMetricsF(font).height();
}

QColor distinctColour(int index, int count)
{
    // People with any kind of colour vision tell these apart (Okabe and Ito, 2008).
    static const std::array<QColor, 7> colours{
        QColor(0, 114, 178),  QColor(213, 94, 0),  QColor(0, 158, 115), QColor(204, 121, 167),
        QColor(86, 180, 233), QColor(230, 159, 0), QColor(64, 64, 64)};
    if (count <= static_cast<int>(colours.size())) {
        return colours[static_cast<std::size_t>(index)];
    }
    // More than these: hues around the circle, neighbours of different lightness.
    const std::array<double, 3> lightnesses{0.30, 0.45, 0.58};
    return QColor::fromHslF(static_cast<double>(index) / count, 0.75,
                            lightnesses[static_cast<std::size_t>(index) % lightnesses.size()]);
}

QColor limitColour()
{
    return {190, 20, 30};
}

QColor levelColour()
{
    return {110, 70, 20};
}

QColor sequentialColour(int index, int count)
{
    const QColor first(253, 190, 110);
    const QColor middle(200, 60, 110);
    const QColor last(30, 20, 100);
    const double place = count > 1 ? static_cast<double>(index) / (count - 1) : 1.0;
    const bool isEarly = place < 0.5;
    const QColor& from = isEarly ? first : middle;
    const QColor& to = isEarly ? middle : last;
    const double share = isEarly ? place * 2 : place * 2 - 1;
    const auto mixed = [share](int left, int right) {
        return static_cast<int>(std::lround(left + (right - left) * share));
    };
    return {mixed(from.red(), to.red()), mixed(from.green(), to.green()), mixed(from.blue(), to.blue())};
}

} // namespace style
