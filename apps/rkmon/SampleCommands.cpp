#include "CommandOptions.h"
#include "Commands.h"
#include "Confirmation.h"
#include "PointTarget.h"
#include "RecordChecks.h"
#include "SampleCondition.h"

#include <algorithm>

namespace {

struct SampleDeleteOptions
{
    PointTarget target;
    SampleConditionOptions condition;
    Confirmation confirmation;
};

// The samples of a point that meet the condition.
int matchingSamples(Session& session, const PointDetails& point, const SampleCondition& condition)
{
    const QString purpose = QStringLiteral("read point %1").arg(point.id);
    RKPointLocation read;
    session.ask(purpose, [&] { return session.data().getPointLocationByPointId(point.id, read); });
    requireIdentifier(read, purpose, QStringLiteral("a point"));
    return static_cast<int>(
        std::count_if(read.data.cbegin(), read.data.cend(),
                      [&](const RKPointLocationData& sample) { return condition.isMetBy(sample); }));
}

ExitCode deleteSamples(Session& session, const SampleDeleteOptions& options)
{
    const SampleCondition condition(options.condition, session.zoneOf());
    const PointSummary point = findPoint(session, options.target);
    const int count = matchingSamples(session, point, condition);
    if (count == 0) {
        throw Failure(FailureKind::NotFound,
                      QStringLiteral("no sample of point %1 matches").arg(titleOf(point)));
    }
    const auto question = [&] {
        return QStringLiteral("Delete %1 of the %2 samples of point %3?")
            .arg(count)
            .arg(point.samples)
            .arg(titleOf(point));
    };
    if (!isConfirmed(session, options.confirmation, question)) {
        return ExitCode::Failed;
    }
    const DeletedSamples deleted = session.extensions().deleteSamples(point.id, condition.where());
    session.note(QStringLiteral("deleted %1 of the %2 samples of point %3; alarms that changed or went: %4")
                     .arg(deleted.removed)
                     .arg(point.samples)
                     .arg(titleOf(point))
                     .arg(deleted.alarms.size()));
    return ExitCode::Success;
}

} // namespace

void addSampleCommands(CLI::App& root, Command& chosen)
{
    CLI::App& group = options::addCommandGroup(root, "sample", "Delete single readings of points");
    const auto [app, values] = options::addSubcommand(
        group, "delete", "Delete those samples of a point that meet all conditions", chosen, deleteSamples);
    addPointTargetOptions(app, values->target);
    addSampleConditionOptions(app, values->condition);
    addConfirmation(app, values->confirmation);
    options::setExamples(app,
                         "  rkmon sample delete VH-W1 --cell VH --time 2015-12-21T07:30:00+01:00 --count 1\n"
                         "  rkmon sample delete --cell VH --name VH-W1 --since 2015-12-20 --above 9000");
    options::setExamples(group, "  rkmon sample delete VH-W1 --cell VH --count 11652\n"
                                "  rkmon sample delete VH-W1 --cell VH --above 9000 --yes");
}
