#pragma once

#include "reading/FileMapping.h"
#include "reading/UnclearFormat.h"

#include <QString>
#include <QStringList>

#include <optional>

namespace CLI {
class App;
}

/// How files of readings are written, as the command line says it.
struct MappingOptions
{
    QString map;
    QString layout;
    QStringList columns;
    QStringList constants;
    QStringList without;
    QStringList types;
    QString encoding;
    QString sheet;
    std::optional<int> skipLines;
    std::optional<int> skipLinesBelowHeader;
    bool hasNoHeader = false;
    QString delimiter;
    QString decimal;
    QStringList noReading;
    QStringList timeFormats;
    QString timeZone;
    QString utcOffset;
    QString doubledHour;
};

void addMappingOptions(CLI::App& app, MappingOptions& options);

/// What the file of --map says; what an option says holds instead. Throws a Failure (BadInput) when something
/// makes no sense.
FileMapping mappingOf(const MappingOptions& options);

/// `mapping` with what the options say instead. Throws as mappingOf() does.
FileMapping amended(FileMapping mapping, const MappingOptions& options);

/// The options that would make clear what is not, each behind "; ", for the end of a message.
QString optionsThatClear(const UnclearFormat& unclear);
