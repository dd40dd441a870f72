#include "Table.h"

#include "DisplayText.h"

#include <algorithm>
#include <numeric>

namespace table {

namespace {

constexpr int gap = 2;
constexpr int narrowestCut = 8;

QStringList escapedTexts(const QStringList& texts)
{
    QStringList result;
    result.reserve(texts.size());
    for (const QString& text : texts) {
        result.append(display::escaped(text));
    }
    return result;
}

QVector<int> naturalWidths(const QVector<QStringList>& rows, int columns)
{
    QVector<int> widths(columns, 0);
    for (const QStringList& row : rows) {
        for (int column = 0; column < columns; ++column) {
            widths[column] = std::max(widths[column], display::width(row[column]));
        }
    }
    return widths;
}

// Takes cells from the widest column that may be cut until the line fits, or no column can give more.
void fitWidths(QVector<int>& widths, const QVector<int>& fixedColumns, int maximumWidth)
{
    const int gaps = gap * (widths.size() - 1);
    int excess = std::accumulate(widths.cbegin(), widths.cend(), gaps) - maximumWidth;
    while (excess > 0) {
        int widest = -1;
        for (int column = 0; column < widths.size(); ++column) {
            const bool mayShrink = widths[column] > narrowestCut && !fixedColumns.contains(column);
            if (mayShrink && (widest < 0 || widths[column] > widths[widest])) {
                widest = column;
            }
        }
        if (widest < 0) {
            return;
        }
        --widths[widest];
        --excess;
    }
}

QString line(const QStringList& texts, const QVector<int>& widths)
{
    QString result;
    for (int column = 0; column < texts.size(); ++column) {
        const QString text = display::truncated(texts[column], widths[column]);
        const bool isLast = column + 1 == texts.size();
        result += isLast ? text : display::padded(text, widths[column] + gap);
    }
    while (result.endsWith(QLatin1Char(' '))) {
        result.chop(1);
    }
    return result;
}

QString emphasised(const QString& text, const Layout& layout)
{
    return layout.isColoured ? QStringLiteral("\033[1m%1\033[0m").arg(text) : text;
}

} // namespace

QString listLines(const QStringList& titles, const QVector<QStringList>& rows,
                  const QVector<int>& fixedColumns, const Layout& layout)
{
    QVector<QStringList> lines{titles};
    lines.reserve(rows.size() + 1);
    for (const QStringList& row : rows) {
        lines.append(escapedTexts(row));
    }

    QVector<int> widths = naturalWidths(lines, titles.size());
    if (layout.maximumWidth > 0) {
        fitWidths(widths, fixedColumns, layout.maximumWidth);
    }

    QString result = emphasised(line(lines.constFirst(), widths), layout) + QLatin1Char('\n');
    for (int row = 1; row < lines.size(); ++row) {
        result += line(lines[row], widths) + QLatin1Char('\n');
    }
    return result;
}

QString recordLines(const QStringList& titles, const QStringList& texts, const Layout& layout)
{
    int widest = 0;
    for (const QString& title : titles) {
        widest = std::max(widest, display::width(title));
    }

    QString result;
    for (int member = 0; member < titles.size(); ++member) {
        const QString text = display::escaped(texts[member]);
        const QString title = text.isEmpty() ? titles[member] : display::padded(titles[member], widest + gap);
        result += emphasised(title, layout) + text + QLatin1Char('\n');
    }
    return result;
}

} // namespace table
