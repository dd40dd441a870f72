#pragma once

#include "reading/WrittenTime.h"

#include <QByteArray>
#include <QList>
#include <QString>

/// A sheet of a spreadsheet as text: a line for each row, tabs between the fields, decimal points. Rows
/// without cells are empty lines.
struct SheetText
{
    QByteArray utf8;
    /// How the workbook counts the days of its dates; both ways where it does not say.
    QList<TimeFormat> days;
};

/// Whether `content` may be a spreadsheet (.xlsx): it is an archive.
bool isSpreadsheet(const QByteArray& content);

/// Reads the sheet called `sheet` of the spreadsheet that `content` is, or, when that is empty, the only one
/// that holds anything. A cell with a formula has the value that was last worked out. `path` is for messages.
/// Throws a Failure (BadInput) when it is no spreadsheet, has no such sheet, or several come into question.
SheetText readSheet(const QString& path, const QByteArray& content, const QString& sheet);
