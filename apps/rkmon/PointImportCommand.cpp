#include "PointImportCommand.h"

#include "CommandOptions.h"
#include "Messages.h"
#include "Progress.h"
#include "import/PointImport.h"
#include "reading/MeasuredValues.h"

#include <optional>

namespace {

struct ImportOptions
{
    QStringList files;
    QString cell;
    QString subCategory;
    QString projectFile;
    QString delimiter;
    QString decimal;
    QString utcOffset;
    bool isDryRun = false;
};

MeasuredFileFormat formatOf(const ImportOptions& options)
{
    MeasuredFileFormat format;
    if (options.delimiter == QLatin1String("comma")) {
        format.delimiter = ',';
    } else if (options.delimiter == QLatin1String("semicolon")) {
        format.delimiter = ';';
    } else if (options.delimiter == QLatin1String("tab")) {
        format.delimiter = '\t';
    }
    if (!options.decimal.isEmpty()) {
        format.decimalSign = QLatin1Char(options.decimal == QLatin1String("comma") ? ',' : '.');
    }
    if (!options.utcOffset.isEmpty() && !values::isUtcOffset(options.utcOffset)) {
        throw Failure(
            FailureKind::BadInput,
            QStringLiteral("--utc-offset: \"%1\" is not an offset like +01:00").arg(options.utcOffset));
    }
    format.utcOffset = options.utcOffset;
    return format;
}

Sheet resultSheet(const ImportResult& result)
{
    const QVariant newPoints = result.newPoints ? QVariant(*result.newPoints) : QVariant(QString());
    return {{column::text("FILES", "files"), column::text("POINTS", "points"),
             column::text("NEW POINTS", "newPoints"), column::text("SAMPLES", "samples"),
             column::text("DELIVERIES", "deliveries"), column::text("SENT", "sent")},
            {{result.files, result.points, newPoints, result.samples, result.deliveries, result.isSent}}};
}

[[noreturn]] void refuse(const ImportResult& result)
{
    for (const QString& row : result.badRows) {
        writePlainMessage(row);
    }
    QString message = QStringLiteral("nothing was sent: see the bad rows above");
    if (result.unclear.decimalSign) {
        message += QStringLiteral("; --decimal point or --decimal comma says which sign it is");
    }
    if (result.unclear.utcOffset) {
        message += QStringLiteral("; --utc-offset gives the offset of times that have none");
    }
    throw Failure(FailureKind::Other, message);
}

ImportResult runImport(Session& session, const ImportOptions& options)
{
    std::optional<Progress> bar; // gone before a failure is written
    ImportCallbacks callbacks;
    callbacks.onProgress = [&](int delivered, int total) {
        if (!bar) {
            bar.emplace(QStringLiteral("samples"), total);
        }
        bar->show(delivered);
    };
    callbacks.onNote = [&](const ImportNote& note) {
        note.kind == ImportNote::Kind::Warning ? session.warn(note.text) : session.note(note.text);
    };
    const MeasuredFileFormat format = formatOf(options);
    return options.projectFile.isEmpty()
               ? importFiles(session,
                             {options.files, options.cell, options.subCategory, format, options.isDryRun},
                             callbacks)
               : importProject(session, {options.projectFile, options.files, format, options.isDryRun},
                               callbacks);
}

void requirePlaces(const ImportOptions& options)
{
    if (!options.projectFile.isEmpty()) {
        return;
    }
    if (options.files.isEmpty()) {
        throw Failure(FailureKind::BadInput, QStringLiteral("which files? Name them, or a --project-file"));
    }
    if (options.cell.isEmpty() || options.subCategory.isEmpty()) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("where do the readings belong? Give --cell and --sub-category, or "
                                     "--project-file"));
    }
}

ExitCode importPoints(Session& session, const ImportOptions& options)
{
    requirePlaces(options);
    const ImportResult result = runImport(session, options);
    if (!result.badRows.isEmpty()) {
        refuse(result);
    }
    for (const QString& name : result.missingMonitorings) {
        session.note(QStringLiteral("would create monitoring \"%1\"").arg(name));
    }
    if (options.isDryRun) {
        session.note(QStringLiteral("all rows are good; nothing was sent"));
    }
    session.output().addRecord(resultSheet(result));
    return ExitCode::Success;
}

void addFormatOptions(CLI::App& app, ImportOptions& values)
{
    options::addText(app, "--delimiter", values.delimiter, "What separates the fields; detected unless given")
        ->type_name("comma|semicolon|tab")
        ->check(CLI::IsMember({"comma", "semicolon", "tab"}).description(""));
    options::addText(app, "--decimal", values.decimal, "The decimal sign; detected unless given")
        ->type_name("point|comma")
        ->check(CLI::IsMember({"point", "comma"}).description(""));
    options::addText(app, "--utc-offset", values.utcOffset, "Offset from UTC of times that have none")
        ->type_name("+HH:MM");
}

} // namespace

void addPointImportCommand(CLI::App& group, Command& chosen)
{
    const auto [app, values] = options::addSubcommand(
        group, "import", "Deliver the readings of CSV files; can be repeated safely", chosen, importPoints);
    options::addFiles(app, "FILE", values->files,
                      "Files with the columns name, depth, time, count, value and perhaps timeFlag");
    CLI::Option* cell = options::addCell(app, values->cell);
    CLI::Option* subCategory = options::addText(app, "--sub-category", values->subCategory,
                                                "What they measure, by identifier, name or alias");
    options::addText(app, "--project-file", values->projectFile,
                     "JSON that says which file belongs where; what is missing is created")
        ->type_name("FILE")
        ->excludes(cell)
        ->excludes(subCategory);
    addFormatOptions(app, *values);
    app.add_flag("--dry-run", values->isDryRun, "Check everything and send nothing");
    options::setExamples(app,
                         "  rkmon point import --cell VH --sub-category SM VH-moisture-week1.csv\n"
                         "  rkmon point import --project-file samples/coastal-bluff/project.json\n"
                         "  rkmon point import --dry-run --cell P1 --sub-category settlement export.csv");
}
