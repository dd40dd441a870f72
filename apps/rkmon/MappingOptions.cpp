#include "MappingOptions.h"

#include "CommandOptions.h"
#include "Failure.h"
#include "HelpFormatter.h"

namespace {

[[noreturn]] void refuseOption(const char* option, const QString& reason)
{
    throw Failure(FailureKind::BadInput, QStringLiteral("%1: %2").arg(QLatin1String(option), reason));
}

// "COLUMN=TEXT" as the column and the text.
struct Assignment
{
    MeasuredColumn column;
    QString text;
};

Assignment assignmentOf(const char* option, const QString& text)
{
    const int sign = text.indexOf(u'=');
    const std::optional<MeasuredColumn> column = measuredColumnNamed(text.left(sign));
    if (sign < 0 || !column || sign + 1 == text.size()) {
        QStringList names;
        for (const MeasuredColumn known : measuredColumns) {
            names.append(nameOf(known));
        }
        refuseOption(option, QStringLiteral("\"%1\" is not like time=Date; before the \"=\" goes one of %2")
                                 .arg(text, names.join(QStringLiteral(", "))));
    }
    return {*column, text.mid(sign + 1).trimmed()};
}

// A title, or "#3" for the third column.
ColumnReference referenceIn(const QString& text)
{
    bool isNumber = false;
    const int number = text.startsWith(u'#') ? text.mid(1).toInt(&isNumber) : 0;
    return isNumber && number > 0 ? ColumnReference{QString(), number} : ColumnReference{text, 0};
}

void applyTable(const MappingOptions& options, FileMapping& mapping)
{
    if (!options.layout.isEmpty()) {
        mapping.layout = *tableLayoutNamed(options.layout);
    }
    for (const QString& text : options.columns) {
        const Assignment assignment = assignmentOf("--column", text);
        mapping.columns.insert(assignment.column, referenceIn(assignment.text));
        mapping.constants.remove(assignment.column);
    }
    for (const QString& text : options.constants) {
        const Assignment assignment = assignmentOf("--constant", text);
        const QString problem = problemOfConstant(assignment.column, assignment.text);
        if (!problem.isEmpty()) {
            refuseOption("--constant", problem);
        }
        mapping.constants.insert(assignment.column, assignment.text);
        mapping.columns.remove(assignment.column);
    }
    for (const QString& name : options.without) {
        mapping.absent.append(*measuredColumnNamed(name));
    }
    for (const QString& word : options.noReading) {
        mapping.noReading.insert(word.trimmed().toLower());
    }
    for (const QString& text : options.types) {
        const int sign = text.indexOf(u'=');
        if (sign <= 0 || sign + 1 == text.size()) {
            refuseOption("--type", QStringLiteral("\"%1\" is not like WLEV=SM").arg(text));
        }
        mapping.types[text.left(sign).trimmed()].subCategory = text.mid(sign + 1).trimmed();
    }
}

void applyText(const MappingOptions& options, FileMapping& mapping)
{
    if (!options.encoding.isEmpty()) {
        mapping.encoding = encodingNamed(options.encoding);
    }
    mapping.sheet = options.sheet.isEmpty() ? mapping.sheet : options.sheet;
    if (!options.delimiter.isEmpty()) {
        mapping.delimiter = delimiterNamed(options.delimiter);
    }
    if (!options.decimal.isEmpty()) {
        mapping.decimalSign = decimalSignNamed(options.decimal);
    }
    mapping.skippedLines = options.skipLines.value_or(mapping.skippedLines);
    mapping.skippedBelowHeader = options.skipLinesBelowHeader.value_or(mapping.skippedBelowHeader);
    mapping.hasHeader = mapping.hasHeader && !options.hasNoHeader;
}

void applyTimes(const MappingOptions& options, FileMapping& mapping)
{
    if (!options.timeFormats.isEmpty()) {
        mapping.timeFormats.clear();
    }
    for (const QString& name : options.timeFormats) {
        mapping.timeFormats.append(*timeFormatNamed(name));
    }
    if (!options.timeZone.isEmpty() || !options.utcOffset.isEmpty()) {
        mapping.zone = QTimeZone();
        mapping.utcOffset.reset();
    }
    if (!options.timeZone.isEmpty()) {
        mapping.zone = zoneNamed(options.timeZone);
        if (!mapping.zone.isValid()) {
            refuseOption("--time-zone",
                         QStringLiteral("\"%1\" is not a zone like Europe/Berlin").arg(options.timeZone));
        }
    }
    if (!options.utcOffset.isEmpty()) {
        mapping.utcOffset = readUtcOffset(options.utcOffset);
        if (!mapping.utcOffset) {
            refuseOption("--utc-offset",
                         QStringLiteral("\"%1\" is not an offset like +01:00").arg(options.utcOffset));
        }
    }
    if (!options.doubledHour.isEmpty()) {
        mapping.doubledHour = doubledHourNamed(options.doubledHour);
    }
}

// Makes the option take one of `names` and nothing else.
CLI::Option* restrictTo(CLI::Option* option, const QStringList& names)
{
    std::vector<std::string> known;
    for (const QString& name : names) {
        known.push_back(name.toStdString());
    }
    return option->type_name(names.join(u'|').toStdString())->check(CLI::IsMember(known).description(""));
}

void addTableOptions(CLI::App& app, MappingOptions& values)
{
    restrictTo(options::addText(app, "--layout", values.layout,
                                "How readings stand in the table: rows unless given"),
               tableLayoutNames());
    options::addTexts(
        app, "--column", values.columns,
        "The title of a column, or #NUMBER: name, depth, time, date, clock, count, value, timeFlag")
        ->type_name("COLUMN=TITLE");
    options::addTexts(app, "--constant", values.constants, "What holds for every row instead of a column")
        ->type_name("COLUMN=TEXT");
    restrictTo(options::addTexts(app, "--without", values.without,
                                 "A column that the table does not have; a missing count is 1"),
               {QStringLiteral("depth"), QStringLiteral("count")});
    options::addTexts(app, "--no-reading", values.noReading,
                      "A word that stands where there is no value, such as NAN or -9999")
        ->type_name("WORD");
    options::addTexts(app, "--type", values.types, "What readings of a type measure, in an AGS file")
        ->type_name("TYPE=SUB-CATEGORY");
}

void addTextOptions(CLI::App& app, MappingOptions& values)
{
    restrictTo(options::addText(app, "--encoding", values.encoding,
                                "The encoding; UTF-8 unless given or marked by the file"),
               encodingNames());
    options::addText(app, "--sheet", values.sheet, "The sheet of a spreadsheet with several")
        ->type_name("NAME");
    app.add_option("--skip-lines", values.skipLines, "Lines above the header")
        ->check(CLI::NonNegativeNumber.description(""))
        ->type_name("N");
    app.add_option("--skip-lines-below-header", values.skipLinesBelowHeader,
                   "Lines between the header and the rows, such as units")
        ->check(CLI::NonNegativeNumber.description(""))
        ->type_name("N");
    app.add_flag("--no-header", values.hasNoHeader, "The table has no header: columns go by #NUMBER");
    restrictTo(options::addText(app, "--delimiter", values.delimiter,
                                "What separates the fields; detected unless given"),
               delimiterNames());
    restrictTo(options::addText(app, "--decimal", values.decimal, "The decimal sign; detected unless given"),
               decimalSignNames());
}

void addTimeOptions(CLI::App& app, MappingOptions& values)
{
    restrictTo(options::addTexts(app, "--time-format", values.timeFormats,
                                 "How times are written; detected unless given"),
               timeFormatNames())
        ->type_name("FORMAT");
    CLI::Option* zone = options::addText(app, "--time-zone", values.timeZone,
                                         "Zone of times that have no offset from UTC, with its summer time");
    zone->type_name("ZONE");
    options::addText(app, "--utc-offset", values.utcOffset, "Offset from UTC of times that have none")
        ->type_name("+HH:MM")
        ->excludes(zone);
    restrictTo(options::addText(app, "--doubled-hour", values.doubledHour,
                                "Which hour is meant that the clock shows twice when it is put back"),
               doubledHourNames());
}

} // namespace

void addMappingOptions(CLI::App& app, MappingOptions& values)
{
    options::addText(app, "--map", values.map, "JSON that says how the files are written")->type_name("FILE");
    addTableOptions(app, values);
    addTextOptions(app, values);
    addTimeOptions(app, values);
    // More than a screen holds: the help of the command names the topic that has them.
    for (const char* rare : {"--layout", "--column", "--constant", "--without", "--no-reading", "--type",
                             "--encoding", "--sheet", "--skip-lines", "--skip-lines-below-header",
                             "--no-header", "--delimiter", "--decimal", "--utc-offset", "--doubled-hour"}) {
        app.get_option(rare)->group(help::groupOfTopic);
    }
}

FileMapping mappingOf(const MappingOptions& options)
{
    return amended(options.map.isEmpty() ? FileMapping() : readFileMapping(options.map), options);
}

FileMapping amended(FileMapping mapping, const MappingOptions& options)
{
    applyTable(options, mapping);
    applyText(options, mapping);
    applyTimes(options, mapping);
    requireConsistent(mapping);
    return mapping;
}

QString optionsThatClear(const UnclearFormat& unclear)
{
    QString words;
    if (unclear.delimiter) {
        words += QStringLiteral("; --delimiter says what separates the fields");
    }
    if (unclear.decimalSign) {
        words += QStringLiteral("; --decimal point or --decimal comma says which sign it is");
    }
    if (unclear.absentColumns) {
        words += QStringLiteral("; --without depth and --without count read tables that have none");
    }
    if (!unclear.names.isEmpty()) {
        words += QStringLiteral("; --column name=%1 says how points are named: by %2")
                     .arg(unclear.names.first(), unclear.names.join(QStringLiteral(" or ")));
    }
    if (!unclear.timeFormats.isEmpty()) {
        words += QStringLiteral("; --time-format says which way it is: %1")
                     .arg(unclear.timeFormats.join(QStringLiteral(", ")));
    }
    if (unclear.utcOffset) {
        words += QStringLiteral("; --time-zone or --utc-offset says where the clock is of times that have no "
                                "offset");
    }
    if (unclear.doubledHour) {
        words += QStringLiteral("; --doubled-hour first or --doubled-hour second says which hour it is");
    }
    if (!unclear.encodings.isEmpty()) {
        words += QStringLiteral("; --encoding says which it is: it can be read as %1")
                     .arg(unclear.encodings.join(QStringLiteral(", ")));
    }
    return words;
}
