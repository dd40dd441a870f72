#pragma once

#include "reading/FileMapping.h"

#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>

/// What the cells of a column look like.
enum class CellKind
{
    Empty,
    /// Digits with a decimal sign, perhaps.
    Number,
    /// A date, perhaps with a clock.
    Date,
    /// A clock alone.
    Clock,
    Text
};

CellKind kindOf(const QString& cell);

/// Where the table of a file stands and what its columns look like, found out by looking at its first lines.
struct TableSketch
{
    char delimiter = ',';
    /// Lines above the header, or above the rows where there is none.
    int skippedLines = 0;
    /// Empty where there is no header.
    QStringList titles;
    int skippedBelowHeader = 0;
    /// The kind of most cells of each column that are not empty.
    QVector<CellKind> kinds;
    TableLayout layout = TableLayout::Rows;

    bool isTable() const { return !kinds.isEmpty(); }
};

/// Looks at UTF-8 text, under each delimiter unless `delimiter` is given. `isTitle` tells which words are
/// known as titles.
TableSketch sketchTable(const QByteArray& text, std::optional<char> delimiter,
                        bool (*isTitle)(const QString& word));
