#include "import/PointImport.h"

#include "Lookup.h"
#include "extensions/ServiceExtensions.h"
#include "import/BadRowsFile.h"
#include "import/CorrectionsMade.h"
#include "import/DeliverySending.h"
#include "import/HeldComparison.h"
#include "import/KnownPoints.h"
#include "import/MissingRights.h"
#include "import/ProjectClock.h"
#include "import/ProjectFile.h"
#include "import/ProjectSetUp.h"
#include "import/SubCategoryColumn.h"
#include "import/UnitCheck.h"
#include "import/ZeroInitialValues.h"

#include <QFileInfo>

#include <algorithm>
#include <tuple>

namespace {

// A file to read, with its place in the project file when there is one.
struct Source
{
    QString path;
    PlannedFile planned;
    FileMapping mapping;
};

// The planned file that `path` is; files are identified by where they are, not by how they are called.
PlannedFile plannedFor(const ProjectFile& project, const QString& path, const QString& projectPath)
{
    const QFileInfo wanted(path);
    for (const PlannedFile& planned : project.files) {
        if (QFileInfo(planned.path) == wanted) {
            return planned;
        }
    }
    throw Failure(FailureKind::BadInput,
                  QStringLiteral("%1 is not among the files of %2").arg(path, projectPath));
}

FileMapping mappingFor(const PlannedFile& planned, const ProjectImport& order)
{
    const bool isSaid = planned.mapping || !planned.mappingFile.isEmpty();
    if (!isSaid) {
        return order.mapping;
    }
    const FileMapping mapping =
        order.amended(planned.mapping ? *planned.mapping : readFileMapping(planned.mappingFile));
    requireConsistent(mapping);
    return mapping;
}

QList<Source> plannedSources(const ProjectImport& order, const ProjectFile& project)
{
    QList<Source> sources;
    for (const QString& path : order.files) {
        const PlannedFile planned = plannedFor(project, path, order.projectFile);
        sources.append({path, planned, mappingFor(planned, order)});
    }
    if (order.files.isEmpty()) {
        for (const PlannedFile& planned : project.files) {
            sources.append({planned.path, planned, mappingFor(planned, order)});
        }
    }
    return sources;
}

void requireNoDuplicates(const QList<Source>& sources)
{
    for (int i = 0; i < sources.size(); ++i) {
        for (int j = 0; j < i; ++j) {
            if (QFileInfo(sources[i].path) == QFileInfo(sources[j].path)) {
                throw Failure(FailureKind::BadInput,
                              QStringLiteral("%1 is given twice").arg(sources[i].path));
            }
        }
    }
}

void noteOddities(const MeasuredFile& file, const ImportNotes& notes)
{
    for (const QString& column : file.ignoredColumns) {
        notes({ImportNote::Kind::Warning,
               QStringLiteral("%1: the column \"%2\" is not read").arg(file.path, column)});
    }
    if (file.repeatedCount > 0) {
        notes({ImportNote::Kind::Information,
               QStringLiteral("%1: duplicate rows left out: %2").arg(file.path).arg(file.repeatedCount)});
    }
    if (file.withoutReadingCount > 0) {
        notes({ImportNote::Kind::Information, QStringLiteral("%1: cells without a reading left out: %2")
                                                  .arg(file.path)
                                                  .arg(file.withoutReadingCount)});
    }
    if (file.problems.isEmpty() && file.readingCount == 0) {
        notes({ImportNote::Kind::Information, QStringLiteral("%1: no readings").arg(file.path)});
    }
}

// Files to read, and what becomes of their rows.
struct ReadingOrder
{
    QList<Source> sources;
    QString badRowsFile;
};

// Every file, checked; bad rows go to `result`.
QList<PlacedFile> readFiles(ServiceSession& session, const ReadingOrder& order, const ImportNotes& notes,
                            ImportResult& result)
{
    requireNoDuplicates(order.sources);
    const bool skipsBadRows = !order.badRowsFile.isEmpty();
    if (skipsBadRows) {
        requireNewFile(order.badRowsFile);
    }
    QList<PlacedFile> files;
    for (const Source& source : order.sources) {
        const MeasuredFile file =
            readOnProjectClock(session, source.path, source.mapping,
                               skipsBadRows ? BadRowKeeping::Rows : BadRowKeeping::Reasons, notes);
        noteOddities(file, notes);
        const bool isUsable = skipsBadRows && file.isReadable;
        (isUsable ? result.skippedRows : result.badRows).append(file.problems.lines(source.path));
        result.skippedRowCount += file.badRows.rows.size();
        result.unclear.add(file.unclear);
        files.append({file, {}});
    }
    return files;
}

// What is to be written of the bad rows; empty when there are none.
QByteArray skippedRowsOf(const QList<PlacedFile>& files)
{
    QList<const MeasuredFile*> measured;
    for (const PlacedFile& placed : files) {
        measured.append(&placed.file);
    }
    return badRowsText(measured);
}

// Runs what changes the service. After a break it says what is true of everything in an import: whether or
// not the change was carried out, going on with the same import is safe.
template <typename Work>
void changeRepeatably(Work work)
{
    try {
        work();
    } catch (const Failure& failure) {
        if (failure.kind() != FailureKind::NoConnection && failure.kind() != FailureKind::Cancelled) {
            throw;
        }
        throw failure.extended(QStringLiteral("the import can be repeated safely"));
    }
}

// An import whose files have their targets.
struct PlacedImport
{
    QList<PlacedFile> files;
    QSet<QString> categories;       // of their monitorings
    QStringList missingMonitorings; // stand for themselves in targets
};

// Those of the points that the service has. Monitorings that are missing have none.
QSet<PointKey> knownOf(ServiceSession& session, const PlacedImport& import, const ImportNotes& notes)
{
    QSet<PointKey> points;
    for (const PointKey& point : pointsOf(import.files)) {
        if (!import.missingMonitorings.contains(point.target.cellId)) {
            points.insert(point);
        }
    }
    return knownPoints(session, points, notes);
}

QList<PointKey> inOrder(const QSet<PointKey>& points)
{
    QList<PointKey> ordered = points.values();
    std::sort(ordered.begin(), ordered.end(), [](const PointKey& left, const PointKey& right) {
        const auto key = [](const PointKey& point) {
            return std::make_tuple(point.name, point.depth.toDouble(), point.depth, point.target.cellId,
                                   point.target.subCategoryId);
        };
        return key(left) < key(right);
    });
    return ordered;
}

// What the service answered, as far as it tells.
void tellOutcome(ServiceSession& session, const DeliveryAnswers& answers, const ImportNotes& notes,
                 ImportResult& result)
{
    result.outcome = {answers.inserted(), answers.corrected(), answers.unchanged(), {}};
    result.newPoints = inOrder(answers.newPoints());
    result.alarms = answers.alarms();
    if (answers.corrected() == 0 || !session.extensions().has(Extension::Changes)) {
        return;
    }
    try {
        result.outcome->corrections = correctionsMade(session, answers);
    } catch (const Failure& failure) {
        notes({ImportNote::Kind::Warning,
               QStringLiteral("everything was delivered, but: %1").arg(failure.message())});
    }
}

void rehearse(ServiceSession& session, const PlacedImport& import, const QSet<PointKey>& known,
              ImportResult& result)
{
    result.outcome = compareWithHeld(session, import.files, known);
    const bool corrects = !result.outcome || result.outcome->corrected > 0;
    result.missingRights = missingRights(session, import.categories, corrects);
}

// The rest of an import once every file has its target.
template <typename Order>
void deliver(ServiceSession& session, const PlacedImport& import, const Order& order,
             const ImportCallbacks& callbacks, ImportResult& result)
{
    const QByteArray skippedRows = skippedRowsOf(import.files);
    const QSet<PointKey> points = pointsOf(import.files);
    const QSet<PointKey> known = knownOf(session, import, callbacks.onNote);
    const QList<Delivery> deliveries = deliveriesOf(import.files, known);
    QSet<QString> paths;
    for (const PlacedFile& file : import.files) {
        paths.insert(file.file.path);
    }
    result.files = paths.size();
    result.points = points.size();
    result.newPoints = inOrder(QSet<PointKey>(points).subtract(known));
    result.deliveries = deliveries.size();
    for (const Delivery& delivery : deliveries) {
        result.samples += delivery.sampleCount;
    }
    if (order.isDryRun) {
        rehearse(session, import, known, result);
        return;
    }
    std::optional<DeliveryAnswers> answers;
    changeRepeatably([&] {
        answers = sendDeliveries(session, deliveries, callbacks);
        setZeroInitialValues(session, pointsFromZero(import.files).subtract(known), callbacks.onNote);
    });
    result.isSent = true;
    if (!skippedRows.isEmpty()) {
        writeNewFile(order.badRowsFile, skippedRows);
    }
    if (answers) {
        tellOutcome(session, *answers, callbacks.onNote, result);
    }
}

// The files with their targets, those of several sub-categories in parts.
QList<PlacedFile> placed(const QList<PlacedFile>& files, const RKMonitoring& monitoring,
                         const QList<RKMonitoringSubCategory>& known, const QString& subCategory,
                         QStringList& badRows)
{
    const QString expected =
        subCategory.isEmpty() ? QString() : lookup::subCategoryOf(monitoring.category, known, subCategory).id;
    const auto subCategoryOf = [&](const QString& text) -> std::optional<QString> {
        const auto found = lookup::subCategoryAmong(known, text);
        return found ? std::make_optional(found->id) : std::nullopt;
    };
    QList<PlacedFile> parts;
    for (const PlacedFile& file : files) {
        for (const SubCategoryPart& part : cutBySubCategory(file.file, expected, subCategoryOf, badRows)) {
            parts.append({part.file, {monitoring.id, part.subCategory}});
        }
    }
    return parts;
}

// A file of a project, or its part of one sub-category.
struct PlannedPart
{
    MeasuredFile file;
    PlannedFile planned;
};

// The parts of a file, which must be of the sub-category that the project file plans for it, if any.
QList<PlannedPart> plannedParts(const ProjectFile& project, const PlannedFile& planned,
                                const MeasuredFile& file, QStringList& badRows)
{
    const QString category = project.monitoring(planned.monitoring)->category;
    const auto nameOf = [&](const QString& text) -> std::optional<QString> {
        const RKMonitoringSubCategory* found = project.subCategory(category, text);
        return found == nullptr ? std::nullopt : std::make_optional(found->name);
    };
    const bool isKnown = !planned.subCategory.isEmpty() || file.points.isEmpty() || saysSubCategory(file);
    if (!isKnown) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("%1 does not say what its readings measure, nor does its subCategory in "
                                     "the project file")
                          .arg(file.path));
    }
    const QString expected = planned.subCategory.isEmpty() ? QString() : *nameOf(planned.subCategory);
    QList<PlannedPart> parts;
    for (const SubCategoryPart& part : cutBySubCategory(file, expected, nameOf, badRows)) {
        parts.append({part.file, planned});
        parts.last().planned.subCategory = part.subCategory;
    }
    return parts;
}

} // namespace

ImportResult importFiles(ServiceSession& session, const FileImport& order, const ImportCallbacks& callbacks)
{
    QList<Source> sources;
    for (const QString& path : order.files) {
        sources.append({path, {}, order.mapping});
    }
    ImportResult result;
    QList<PlacedFile> files = readFiles(session, {sources, order.badRowsFile}, callbacks.onNote, result);
    if (!result.badRows.isEmpty()) {
        return result;
    }
    const RKMonitoring monitoring = lookup::monitoring(session, order.monitoring);
    files = placed(files, monitoring, lookup::subCategories(session, monitoring.category), order.subCategory,
                   result.badRows);
    if (!result.badRows.isEmpty()) {
        return result;
    }
    result.badRows = unitProblems(session, files) + contradictions(files);
    if (result.badRows.isEmpty()) {
        deliver(session, {files, {monitoring.category}, {}}, order, callbacks, result);
    }
    return result;
}

ImportResult importProject(ServiceSession& session, const ProjectImport& order,
                           const ImportCallbacks& callbacks)
{
    const ProjectFile project = readProjectFile(order.projectFile);
    const QList<Source> sources = plannedSources(order, project);
    ImportResult result;
    const QList<PlacedFile> whole =
        readFiles(session, {sources, order.badRowsFile}, callbacks.onNote, result);
    QList<PlannedPart> parts;
    for (int i = 0; i < whole.size() && result.badRows.isEmpty(); ++i) {
        parts += plannedParts(project, sources[i].planned, whole[i].file, result.badRows);
    }
    if (!result.badRows.isEmpty()) {
        return result;
    }
    ProjectSetUp setUp(session, project, callbacks.onNote);
    setUp.find();
    QList<PlacedFile> files;
    const auto place = [&] {
        files.clear();
        for (const PlannedPart& part : qAsConst(parts)) {
            const bool isEmpty = part.planned.subCategory.isEmpty(); // without readings
            files.append({part.file, isEmpty ? DeliveryTarget() : setUp.target(part.planned)});
        }
    };
    place();
    result.badRows = unitProblems(session, files) + contradictions(files);
    if (!result.badRows.isEmpty()) {
        return result;
    }
    if (order.isDryRun) {
        result.missingMonitorings = setUp.missingMonitorings();
    } else {
        changeRepeatably([&] { setUp.createMissing(); });
        place();
    }
    QSet<QString> categories;
    for (const PlannedPart& part : qAsConst(parts)) {
        categories.insert(project.monitoring(part.planned.monitoring)->category);
    }
    deliver(session, {files, categories, result.missingMonitorings}, order, callbacks, result);
    return result;
}
