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

struct Heading
{
    QString title;
    /// Its cells are never cut: identifiers, times.
    bool isFixed = false;
    /// Where the lines are too wide, the column with the greatest goes, of equals the last one; 0: it stays.
    int dispensability = 0;
};

/// Lines of `rows` below `headings`, columns aligned. To keep to the width columns are left out first, and
/// texts cut when that does not suffice. Every text is made safe to show.
QString listLines(const QVector<Heading>& headings, const QVector<QStringList>& rows, const Layout& layout);

/// One line per member of a record: its title and its text, which is never cut.
QString recordLines(const QStringList& titles, const QStringList& texts, const Layout& layout);

} // namespace table
