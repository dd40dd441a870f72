#include "import/PointImport.h"

#include "CommandOptions.h"
#include "Failure.h"
#include "Lookup.h"
#include "Messages.h"
#include "Progress.h"
#include "import/Deliveries.h"
#include "import/KnownPoints.h"
#include "import/MeasuredFile.h"
#include "import/MeasuredValues.h"
#include "import/ProjectFile.h"
#include "import/ProjectSetUp.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <algorithm>

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

// A file to read, with its place in the project file when there is one.
struct Source
{
    QString path;
    PlannedFile planned;
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
            ExitCode::Usage,
            QStringLiteral("--utc-offset: \"%1\" is not an offset like +01:00").arg(options.utcOffset));
    }
    format.utcOffset = options.utcOffset;
    return format;
}

// The planned files that `path` could be; files are told apart by where they are, not by how they are called.
PlannedFile plannedFor(const ProjectFile& project, const QString& path, const QString& projectPath)
{
    const QFileInfo wanted(path);
    for (const PlannedFile& planned : project.files) {
        if (QFileInfo(planned.path) == wanted) {
            return planned;
        }
    }
    throw Failure(ExitCode::Usage, QStringLiteral("%1 is not among the files of %2").arg(path, projectPath));
}

QList<Source> plannedSources(const ImportOptions& options, const ProjectFile& project)
{
    QList<Source> sources;
    for (const QString& path : options.files) {
        sources.append({path, plannedFor(project, path, options.projectFile)});
    }
    if (options.files.isEmpty()) {
        for (const PlannedFile& planned : project.files) {
            sources.append({planned.path, planned});
        }
    }
    return sources;
}

void requireEachOnce(const QList<Source>& sources)
{
    for (int i = 0; i < sources.size(); ++i) {
        for (int j = 0; j < i; ++j) {
            if (QFileInfo(sources[i].path) == QFileInfo(sources[j].path)) {
                throw Failure(ExitCode::Usage, QStringLiteral("%1 is named twice").arg(sources[i].path));
            }
        }
    }
}

[[noreturn]] void refuse(const QStringList& problems)
{
    for (const QString& problem : problems) {
        writePlainMessage(problem);
    }
    throw Failure(ExitCode::Failed, QStringLiteral("nothing was sent: see the bad rows above"));
}

// Every file, checked; ends the command when a row of any is bad.
QList<PlacedFile> readFiles(Session& session, const QList<Source>& sources, const ImportOptions& options)
{
    const MeasuredFileFormat format = formatOf(options);
    QList<PlacedFile> files;
    QStringList problems;
    for (const Source& source : sources) {
        const MeasuredFile file = readMeasuredFile(source.path, format);
        problems.append(file.problems.lines(source.path));
        for (const QString& column : file.ignoredColumns) {
            session.note(
                QStringLiteral("warning: %1: the column \"%2\" is not read").arg(source.path, column));
        }
        if (file.repeatedCount > 0) {
            session.note(
                QStringLiteral("%1: %2 rows repeat others").arg(source.path).arg(file.repeatedCount));
        }
        if (file.problems.isEmpty() && file.readingCount == 0) {
            session.note(QStringLiteral("%1: no readings").arg(source.path));
        }
        files.append({file, {}});
    }
    if (!problems.isEmpty()) {
        refuse(problems);
    }
    return files;
}

// What was or would be sent.
struct Summary
{
    int files = 0;
    int points = 0;
    int samples = 0;
    int deliveries = 0;
    // Unknown in a dry run.
    std::optional<int> newPoints;
    bool isSent = false;
};

Sheet summarySheet(const Summary& summary)
{
    const QVariant newPoints = summary.newPoints ? QVariant(*summary.newPoints) : QVariant(QString());
    return {
        {{QStringLiteral("FILES"), QStringLiteral("files")},
         {QStringLiteral("POINTS"), QStringLiteral("points")},
         {QStringLiteral("NEW POINTS"), QStringLiteral("newPoints")},
         {QStringLiteral("SAMPLES"), QStringLiteral("samples")},
         {QStringLiteral("DELIVERIES"), QStringLiteral("deliveries")},
         {QStringLiteral("SENT"), QStringLiteral("sent")}},
        {{summary.files, summary.points, newPoints, summary.samples, summary.deliveries, summary.isSent}}};
}

// The service's words about element [i][j] of a request, with the file that element i comes from.
QString explained(const QString& message, const QList<Delivery>& request)
{
    static const QRegularExpression element(QStringLiteral("\\[(\\d+)\\]\\[\\d+\\]"));
    const QRegularExpressionMatch match = element.match(message);
    const int index = match.hasMatch() ? match.captured(1).toInt() : -1;
    return index >= 0 && index < request.size()
               ? QStringLiteral("%1 ([%2] is %3)").arg(message).arg(index).arg(request[index].path)
               : message;
}

// The files that the deliveries come from.
QString pathsOf(const QList<Delivery>& request)
{
    QStringList paths;
    for (const Delivery& delivery : request) {
        paths.append(delivery.path);
    }
    paths.removeDuplicates();
    constexpr int shown = 3;
    const QString more =
        paths.size() > shown ? QStringLiteral(" and %1 more").arg(paths.size() - shown) : QString();
    return paths.mid(0, shown).join(QStringLiteral(", ")) + more;
}

void send(Session& session, const QList<Delivery>& request)
{
    QList<QList<RKPointLocation>> batches;
    for (const Delivery& delivery : request) {
        batches.append(delivery.points);
    }
    QString message;
    try {
        session.ask(
            QStringLiteral("deliver %1").arg(pathsOf(request)),
            [&] { return session.projectData().createPointLocation(batches, message); },
            Repetition::IsHarmless);
    } catch (const Failure& failure) {
        // A refused delivery is the one internal server error whose words are meant for the sender.
        if (failure.code() != ExitCode::Failed || message.isEmpty()) {
            throw;
        }
        throw Failure(
            ExitCode::Failed,
            QStringLiteral("the service refused %1: %2").arg(pathsOf(request), explained(message, request)));
    }
    // What was delivered stays in the library's cache, which nothing here reads.
    session.data().clear();
}

void sendAll(Session& session, const QList<Delivery>& deliveries, int sampleCount)
{
    Progress progress(QStringLiteral("samples"), sampleCount);
    int sent = 0;
    for (const QList<Delivery>& request : requestsOf(deliveries)) {
        try {
            send(session, request);
        } catch (const Failure& failure) {
            if (sent == 0) {
                throw;
            }
            throw Failure(failure.code(), QStringLiteral("%1; %2 of %3 samples had been delivered before")
                                              .arg(failure.message())
                                              .arg(sent)
                                              .arg(sampleCount));
        }
        for (const Delivery& delivery : request) {
            sent += delivery.sampleCount;
        }
        progress.show(sent);
    }
}

// Runs what changes the service. After a break it says what is true of everything in an import: whether or
// not the change was carried out, going on with the same import is safe.
template <typename Work>
void changeRepeatably(Work work)
{
    try {
        work();
    } catch (const Failure& failure) {
        if (failure.code() != ExitCode::NoConnection) {
            throw;
        }
        throw Failure(failure.code(),
                      failure.message() + QStringLiteral("; the import can be repeated safely"));
    }
}

// The rest of an import once every file has its target.
ExitCode deliver(Session& session, const QList<PlacedFile>& files, bool isDryRun)
{
    const QSet<PointKey> points = pointsOf(files);
    const QSet<PointKey> known = isDryRun ? QSet<PointKey>() : knownPoints(session, points);
    const QList<Delivery> deliveries = deliveriesOf(files, known);
    Summary summary;
    summary.files = files.size();
    summary.points = points.size();
    if (!isDryRun) {
        summary.newPoints = points.size() - known.size();
    }
    summary.deliveries = deliveries.size();
    for (const Delivery& delivery : deliveries) {
        summary.samples += delivery.sampleCount;
    }
    if (isDryRun) {
        session.note(QStringLiteral("all rows are good; nothing was sent"));
    } else {
        changeRepeatably([&] { sendAll(session, deliveries, summary.samples); });
    }
    summary.isSent = !isDryRun;
    session.output().addRecord(summarySheet(summary));
    return ExitCode::Success;
}

void requireNoContradiction(const QList<PlacedFile>& files)
{
    const QStringList problems = contradictions(files);
    if (!problems.isEmpty()) {
        refuse(problems);
    }
}

ExitCode importProject(Session& session, const ImportOptions& options)
{
    const ProjectFile project = readProjectFile(options.projectFile);
    const QList<Source> sources = plannedSources(options, project);
    requireEachOnce(sources);
    QList<PlacedFile> files = readFiles(session, sources, options);
    ProjectSetUp setUp(session, project);
    setUp.find();
    const auto place = [&] {
        for (int i = 0; i < files.size(); ++i) {
            files[i].target = setUp.target(sources[i].planned);
        }
    };
    place();
    requireNoContradiction(files);
    if (options.isDryRun) {
        for (const QString& name : setUp.missingMonitorings()) {
            session.note(QStringLiteral("would create monitoring \"%1\"").arg(name));
        }
    } else {
        changeRepeatably([&] { setUp.createMissing(); });
        place();
    }
    return deliver(session, files, options.isDryRun);
}

ExitCode importFiles(Session& session, const ImportOptions& options)
{
    QList<Source> sources;
    for (const QString& path : options.files) {
        sources.append({path, {}});
    }
    requireEachOnce(sources);
    QList<PlacedFile> files = readFiles(session, sources, options);
    const RKMonitoring monitoring = lookup::monitoring(session, options.cell);
    const QString subCategory = lookup::subCategory(session, monitoring.category, options.subCategory).id;
    for (PlacedFile& file : files) {
        file.target = {monitoring.id, subCategory};
    }
    requireNoContradiction(files);
    return deliver(session, files, options.isDryRun);
}

ExitCode importPoints(Session& session, const ImportOptions& options)
{
    if (!options.projectFile.isEmpty()) {
        return importProject(session, options);
    }
    if (options.files.isEmpty()) {
        throw Failure(ExitCode::Usage, QStringLiteral("which files? Name them, or a --project-file"));
    }
    if (options.cell.isEmpty() || options.subCategory.isEmpty()) {
        throw Failure(ExitCode::Usage,
                      QStringLiteral("where do the readings belong? --cell and --sub-category "
                                     "say it, or --project-file"));
    }
    return importFiles(session, options);
}

void addFormatOptions(CLI::App& app, ImportOptions& values)
{
    options::addText(app, "--delimiter", values.delimiter, "What parts the fields; found out unless given")
        ->type_name("comma|semicolon|tab")
        ->check(CLI::IsMember({"comma", "semicolon", "tab"}).description(""));
    options::addText(app, "--decimal", values.decimal, "The decimal sign; found out unless given")
        ->type_name("point|comma")
        ->check(CLI::IsMember({"point", "comma"}).description(""));
    options::addText(app, "--utc-offset", values.utcOffset, "Offset from UTC of times that name none")
        ->type_name("+HH:MM");
}

} // namespace

void addPointImportCommand(CLI::App& group, Command& chosen)
{
    const auto [app, values] = options::addSubcommand(
        group, "import", "Deliver the readings of CSV files; can be repeated safely", chosen, importPoints);
    options::addFiles(app, "FILE", values->files,
                      "Files with the columns name, depth, time, count, value and perhaps timeFlag");
    CLI::Option* cell = lookup::addCellOption(app, values->cell);
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
