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

int lineWidth(const QVector<int>& widths)
{
    return std::accumulate(widths.cbegin(), widths.cend(), gap * (widths.size() - 1));
}

// Leaves columns out until the line fits, or none of those that are left may go.
void dropColumns(QVector<Heading>& headings, QVector<QStringList>& lines, QVector<int>& widths,
                 int maximumWidth)
{
    while (lineWidth(widths) > maximumWidth) {
        int first = 0;
        for (int column = 0; column < headings.size(); ++column) {
            if (headings[column].dispensability >= headings[first].dispensability) {
                first = column;
            }
        }
        if (headings[first].dispensability == 0) {
            return;
        }
        headings.remove(first);
        widths.remove(first);
        for (QStringList& line : lines) {
            line.removeAt(first);
        }
    }
}

// Takes cells from the widest column that may be cut until the line fits, or no column can give more.
void fitWidths(QVector<int>& widths, const QVector<Heading>& headings, int maximumWidth)
{
    int excess = lineWidth(widths) - maximumWidth;
    while (excess > 0) {
        int widest = -1;
        for (int column = 0; column < widths.size(); ++column) {
            const bool mayShrink = widths[column] > narrowestCut && !headings[column].isFixed;
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

QString listLines(const QVector<Heading>& headings, const QVector<QStringList>& rows, const Layout& layout)
{
    QStringList titles;
    for (const Heading& heading : headings) {
        titles.append(heading.title);
    }
    QVector<QStringList> lines{titles};
    lines.reserve(rows.size() + 1);
    for (const QStringList& row : rows) {
        lines.append(escapedTexts(row));
    }

    QVector<int> widths = naturalWidths(lines, titles.size());
    if (layout.maximumWidth > 0) {
        QVector<Heading> shown = headings;
        dropColumns(shown, lines, widths, layout.maximumWidth);
        fitWidths(widths, shown, layout.maximumWidth);
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
