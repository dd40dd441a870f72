#pragma once

#include <QByteArray>
#include <QString>
#include <QStringList>

/// AGS 4 as text: UTF-8, which is ASCII where all that is written is.
namespace ags {

constexpr const char* lineEnd = "\r\n";

/// What stands above the data of a group.
struct Head
{
    QString group;
    QStringList headings;
    /// One for each heading.
    QStringList units;
    QStringList types;
};

/// A row: its descriptor and its fields in quotes, with its line end.
QByteArray rowText(const QString& descriptor, const QStringList& fields);

/// The rows GROUP, HEADING, UNIT and TYPE.
QByteArray headText(const Head& head);

} // namespace ags
