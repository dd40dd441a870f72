#include "PointImportCommand.h"

#include "CommandOptions.h"
#include "ImportReport.h"
#include "Interruption.h"
#include "MappingOptions.h"
#include "Messages.h"
#include "Progress.h"
#include "import/AnyFile.h"
#include "import/PointImport.h"
#include "reading/FileSource.h"

#include <optional>

namespace {

struct ImportOptions
{
    QStringList files;
    QString cell;
    QString subCategory;
    QString projectFile;
    MappingOptions mapping;
    QString badRowsFile;
    bool writesMap = false;
    bool isDryRun = false;
};

void tellSkippedRows(const Session& session, const ImportOptions& options, const ImportResult& result)
{
    for (const QString& row : result.skippedRows) {
        writePlainMessage(row);
    }
    if (result.skippedRows.isEmpty()) {
        return;
    }
    const QString count = QString::number(result.skippedRowCount);
    session.warn(
        options.isDryRun
            ? QStringLiteral("bad rows that would be left out: %1").arg(count)
            : QStringLiteral("bad rows left out: %1; they are in %2").arg(count, options.badRowsFile));
}

[[noreturn]] void refuse(const ImportResult& result)
{
    for (const QString& row : result.badRows) {
        writePlainMessage(row);
    }
    throw Failure(FailureKind::Other, QStringLiteral("nothing was sent: see the bad rows above") +
                                          optionsThatClear(result.unclear));
}

ImportResult runImport(Session& session, const ImportOptions& options)
{
    std::optional<Progress> bar; // gone before a failure is written
    std::optional<Interruption> interruption;
    ImportCallbacks callbacks;
    callbacks.onProgress = [&](int delivered, int total) {
        if (!bar) {
            bar.emplace(QStringLiteral("samples"), total);
            interruption.emplace(); // before, nothing is in, and it ends at once
        }
        bar->show(delivered);
    };
    callbacks.isCancelled = [&] {
        return interruption && interruption->isAsked();
    };
    callbacks.onNote = [&](const ImportNote& note) {
        note.kind == ImportNote::Kind::Warning ? session.warn(note.text) : session.note(note.text);
    };
    const FileMapping mapping = mappingOf(options.mapping);
    return options.projectFile.isEmpty() ? importFiles(session,
                                                       {options.files, options.cell, options.subCategory,
                                                        mapping, options.badRowsFile, options.isDryRun},
                                                       callbacks)
                                         : importProject(session,
                                                         {options.projectFile, options.files, mapping,
                                                          options.badRowsFile, options.isDryRun,
                                                          [&](const FileMapping& own) {
                                                              return amended(own, options.mapping);
                                                          }},
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
    if (options.cell.isEmpty()) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("where do the readings belong? Give --cell, or --project-file"));
    }
}

ExitCode writeMapping(Session& session, const ImportOptions& options)
{
    if (options.files.size() != 1) {
        throw Failure(FailureKind::BadInput, QStringLiteral("--write-map looks at one file: which one?"));
    }
    const QString& file = options.files.first();
    const FileSource source = sourceOf(file, mappingOf(options.mapping));
    const MappingProposal proposal = proposeMappingOfAny(file, source.content, source.mapping);
    for (const QString& recognised : proposal.recognised) {
        session.note(QStringLiteral("recognised: %1").arg(recognised));
    }
    for (const QString& open : proposal.open) {
        session.warn(QStringLiteral("left open: %1").arg(open));
    }
    session.output().addDocument(proposal.json);
    return ExitCode::Success;
}

ExitCode importPoints(Session& session, const ImportOptions& options)
{
    if (options.writesMap) {
        return writeMapping(session, options);
    }
    requirePlaces(options);
    const ImportResult result = runImport(session, options);
    if (!result.badRows.isEmpty()) {
        refuse(result);
    }
    tellSkippedRows(session, options, result);
    for (const QString& name : result.missingMonitorings) {
        session.note(QStringLiteral("would create monitoring \"%1\"").arg(name));
    }
    if (options.isDryRun) {
        session.note(result.skippedRows.isEmpty()
                         ? QStringLiteral("all rows are good; nothing was sent")
                         : QStringLiteral("the other rows are good; nothing was sent"));
    }
    report(session, result);
    return result.missingRights.isEmpty() ? ExitCode::Success : ExitCode::NotPermitted;
}

} // namespace

void addPointImportCommand(CLI::App& group, Command& chosen)
{
    const auto [app, values] = options::addSubcommand(
        group, "import", "Deliver the readings of files; can be repeated safely", chosen, importPoints);
    options::addFiles(
        app, "FILE", values->files,
        "Files with the columns name, depth, time, count, value and perhaps timeFlag, unless the "
        "options below say otherwise; or AGS 4 files");
    CLI::Option* cell = options::addCell(app, values->cell);
    CLI::Option* subCategory = options::addText(app, "--sub-category", values->subCategory,
                                                "What they measure, where the files do not say it");
    options::addText(app, "--project-file", values->projectFile,
                     "JSON that says which file belongs where; what is missing is created")
        ->type_name("FILE")
        ->excludes(cell)
        ->excludes(subCategory);
    addMappingOptions(app, values->mapping);
    options::addText(app, "--skip-bad-rows", values->badRowsFile,
                     "Write bad rows to this new file and deliver the others")
        ->type_name("FILE");
    app.add_flag("--write-map", values->writesMap,
                 "Propose a mapping for a file on standard output, and send nothing");
    app.add_flag("--dry-run", values->isDryRun,
                 "Check everything, tell what would become of it, and send nothing");
    options::setExamples(app,
                         "  rkmon point import --cell VH --sub-category SM VH-moisture-week1.csv\n"
                         "  rkmon point import --project-file samples/coastal-bluff/project.json\n"
                         "  rkmon point import --map logger.json --cell P1 --sub-category tilt logger.dat\n\n"
                         "rkmon help files has the options for files that are written otherwise, and\n"
                         "rkmon help ags tells of AGS 4 files.");
}
