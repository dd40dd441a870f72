#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// Lays out rows for people.
namespace table {

struct Layout
{
    /// Widest line in cells; 0: as wide as the content. Texts are cut only to keep to it.
    int maximumWidth = 0;
    /// Titles in bold.
    bool isColoured = false;
};

/// Lines of `rows` below `titles`, columns aligned. Cells of `fixedColumns` (identifiers, times) are never
/// cut. Every text is made safe to show.
QString listLines(const QStringList& titles, const QVector<QStringList>& rows,
                  const QVector<int>& fixedColumns, const Layout& layout);

/// One line per member of a record: its title and its text, which is never cut.
QString recordLines(const QStringList& titles, const QStringList& texts, const Layout& layout);

} // namespace table
