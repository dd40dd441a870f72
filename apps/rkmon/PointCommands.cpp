#include "AgsFile.h"
#include "CommandOptions.h"
#include "Commands.h"
#include "Lookup.h"
#include "PointChangeCommands.h"
#include "PointFilter.h"
#include "PointImportCommand.h"
#include "PointNames.h"
#include "PointSheets.h"
#include "RecordChecks.h"
#include "points/PointSelection.h"

#include <algorithm>

namespace {

struct PointListOptions
{
    PointFilter filter;
    bool hasSamples = false;
    bool isAgs = false;
};

struct PointShowOptions
{
    QString id;
    bool hasSamples = false;
};

struct FindOptions
{
    QString uuid;
    bool hasSamples = false;
};

struct LatestOptions
{
    PointFilter filter;
};

struct LinkOptions
{
    QString cell;
    QStringList names;
    bool isEveryPoint = false;
    QStringList links;
    bool isUnlinked = false;
};

void addPoints(Session& session, const QList<RKPointLocation>& points, const PointMeanings& meanings,
               bool hasSamples)
{
    session.output().addList(hasSamples ? sampleSheet(points, meanings)
                                        : pointSheet(session, points, meanings));
}

// The points of a monitoring that the user wants.
QList<RKPointLocation> readPoints(Session& session, const PointFilter& filter, const RKMonitoring& monitoring,
                                  PointMeanings& meanings)
{
    RKPointLocationCondition condition = conditionOf(session, filter, monitoring);
    const QString purpose = QStringLiteral("list the points of \"%1\"").arg(monitoring.name);
    QList<RKPointLocation> points;
    session.ask(purpose, [&] { return session.projectData().getPointLocation(condition, points, false); });
    requireIdentifiers(points, purpose, QStringLiteral("points"));
    const PointSelection selection = selectionOf(session, filter, monitoring);
    points.erase(std::remove_if(points.begin(), points.end(),
                                [&](const RKPointLocation& point) {
                                    return !selection.holds(point.id, pointLabel(point.name, point.depth));
                                }),
                 points.end());
    meanings = meaningsOf(points, selection);
    return points;
}

ExitCode listPoints(Session& session, const PointListOptions& options)
{
    const RKMonitoring monitoring = monitoringOf(session, options.filter);
    PointMeanings meanings;
    const QList<RKPointLocation> points = readPoints(session, options.filter, monitoring, meanings);
    if (options.isAgs) {
        addAgsFile(session, monitoring, points, meanings);
    } else {
        addPoints(session, points, meanings, options.hasSamples);
    }
    return ExitCode::Success;
}

ExitCode showPoint(Session& session, const PointShowOptions& options)
{
    const QString purpose = QStringLiteral("read point %1").arg(options.id);
    RKPointLocation point;
    session.ask(purpose, [&] { return session.data().getPointLocationByPointId(options.id, point); });
    requireIdentifier(point, purpose, QStringLiteral("a point"));
    const PointMeanings meanings = meaningsOf(session, {point});
    if (options.hasSamples) {
        session.output().addList(sampleSheet({point}, meanings));
    } else {
        session.output().addRecord(pointSheet(session, {point}, meanings));
    }
    return ExitCode::Success;
}

RKPointLocation newestOf(const QList<RKPointLocation>& points)
{
    RKPointLocation newest;
    for (const RKPointLocation& point : points) {
        if (!point.data.isEmpty() &&
            (newest.data.isEmpty() || point.data.constLast().time > newest.data.constLast().time)) {
            newest = point;
        }
    }
    return newest;
}

// The library finds the newest point of a monitoring, whatever it measures; among those of a sub-category it
// is looked for here.
ExitCode showLatest(Session& session, const LatestOptions& options)
{
    const RKMonitoring monitoring = monitoringOf(session, options.filter);
    RKPointLocation point;
    if (options.filter.subCategories.isEmpty()) {
        RKPointLocationCondition condition = conditionOf(session, options.filter, monitoring);
        const QString purpose = QStringLiteral("find the newest point of \"%1\"").arg(monitoring.name);
        session.ask(purpose,
                    [&] { return session.projectData().getPointLocationByTimeOrder(condition, point); });
    } else {
        PointMeanings meanings;
        point = newestOf(readPoints(session, options.filter, monitoring, meanings));
    }
    if (point.id.isEmpty()) {
        throw Failure(FailureKind::NotFound,
                      QStringLiteral("no point of \"%1\" matches").arg(monitoring.name));
    }
    session.output().addRecord(pointSheet(session, {point}, meaningsOf(session, {point})));
    return ExitCode::Success;
}

ExitCode findPoints(Session& session, const FindOptions& options)
{
    const QString purpose = QStringLiteral("find the points related to %1").arg(options.uuid);
    QList<RKPointLocation> points;
    session.ask(purpose, [&] { return session.projectData().getPointLocationByGuid(options.uuid, points); });
    requireIdentifiers(points, purpose, QStringLiteral("points"));
    addPoints(session, points, meaningsOf(session, points), options.hasSamples);
    return ExitCode::Success;
}

QMap<QString, QStringList> linksOf(const QStringList& texts)
{
    QMap<QString, QStringList> links;
    for (const QString& text : texts) {
        const int equals = text.indexOf(QLatin1Char('='));
        const QString relation = text.left(equals).trimmed();
        const QString id = text.mid(equals + 1).trimmed();
        if (equals <= 0 || relation.isEmpty() || id.isEmpty()) {
            throw Failure(FailureKind::BadInput,
                          QStringLiteral("--link: \"%1\" is not RELATION=IDENTIFIER").arg(text));
        }
        links[relation].append(id);
    }
    return links;
}

ExitCode linkPoints(Session& session, const LinkOptions& options)
{
    const QMap<QString, QStringList> links = linksOf(options.links);
    if (options.names.isEmpty() && !options.isEveryPoint) {
        throw Failure(FailureKind::BadInput, QStringLiteral("which points? Give --name or --every-point"));
    }
    if (links.isEmpty() && !options.isUnlinked) {
        throw Failure(FailureKind::BadInput, QStringLiteral("which relations? Give --link or --no-links"));
    }
    const RKMonitoring monitoring = lookup::monitoring(session, options.cell);
    RKPointLocationCondition condition;
    condition.cellId = monitoring.id;
    condition.names = options.names;
    session.ask(QStringLiteral("replace the relations of points of \"%1\"").arg(monitoring.name),
                [&] { return session.data().updatePointLocation(condition, links); });
    session.note(
        QStringLiteral("replaced the relations of the points of \"%1\" that match").arg(monitoring.name));
    return ExitCode::Success;
}

void addSamplesOption(CLI::App& app, bool& hasSamples)
{
    app.add_flag("--samples", hasSamples, "One row per sample; as CSV what rkmon point import reads");
}

void addListCommands(CLI::App& group, Command& chosen)
{
    const auto [list, listed] =
        options::addSubcommand(group, "list", "List the points of a monitoring", chosen, listPoints);
    addPointFilterOptions(list, listed->filter);
    addSamplesOption(list, listed->hasSamples);
    list.add_flag("--ags", listed->isAgs, "The samples as an AGS 4 file, which rkmon point import reads");
    options::setExamples(list, "  rkmon point list --cell VH\n"
                               "  rkmon point list --cell VH --name VH-W1 --samples --csv > VH-W1.csv\n"
                               "  rkmon point list --cell VH --ags > VH.ags\n"
                               "  rkmon point list --cell VH --since 2015-12-21 --until 2015-12-21");

    const auto [latest, newest] =
        options::addSubcommand(group, "latest", "Show the point that was measured last", chosen, showLatest);
    addPointFilterOptions(latest, newest->filter);
    options::setExamples(latest, "  rkmon point latest --cell VH\n"
                                 "  rkmon point latest --cell VH --sub-category SM --json");
}

void addPointReadingCommands(CLI::App& group, Command& chosen)
{
    const auto [show, shown] = options::addSubcommand(group, "show", "Show one point", chosen, showPoint);
    options::addIdentifier(show, "ID", shown->id, "Identifier of the point")->required();
    addSamplesOption(show, shown->hasSamples);
    options::setExamples(show, "  rkmon point show 6745d2f0a1b2c3d4e5f60718\n"
                               "  rkmon point show 6745d2f0a1b2c3d4e5f60718 --samples --csv");

    const auto [find, found] =
        options::addSubcommand(group, "find", "List the points related to something", chosen, findPoints);
    options::addText(find, "UUID", found->uuid,
                     "Identifier of what they are related to, as of a model's element")
        ->required()
        ->type_name("UUID");
    addSamplesOption(find, found->hasSamples);
    options::setExamples(find, "  rkmon point find 7f1c2a9e-5b1d-4c0e-9f63-2d1f0c9b8a77\n"
                               "  rkmon point find 7f1c2a9e-5b1d-4c0e-9f63-2d1f0c9b8a77 --json");
}

void addLinkCommand(CLI::App& group, Command& chosen)
{
    const auto [app, values] = options::addSubcommand(
        group, "link", "Replace the relations of points of a monitoring", chosen, linkPoints);
    options::addCell(app, values->cell)->required();
    CLI::Option* names =
        options::addTexts(app, "--name", values->names, "The point of this name; once for each")
            ->type_name("NAME");
    app.add_flag("--every-point", values->isEveryPoint, "All points of the monitoring")->excludes(names);
    CLI::Option* links = options::addTexts(app, "--link", values->links, "A relation; once for each")
                             ->type_name("RELATION=ID");
    app.add_flag("--no-links", values->isUnlinked, "No relations from now on")->excludes(links);
    options::setExamples(app, "  rkmon point link --cell VH --name VH-W1 --link model=7f1c2a9e\n"
                              "  rkmon point link --cell VH --every-point --no-links");
}

} // namespace

void addPointCommands(CLI::App& root, Command& chosen)
{
    CLI::App& group =
        options::addCommandGroup(root, "point", "List points with their samples, and import readings");
    addListCommands(group, chosen);
    addPointReadingCommands(group, chosen);
    addLinkCommand(group, chosen);
    addPointImportCommand(group, chosen);
    addPointChangeCommands(group, chosen);
    options::setExamples(group, "  rkmon point list --cell VH\n"
                                "  rkmon point import --cell VH --sub-category SM VH-moisture-week1.csv");
}
