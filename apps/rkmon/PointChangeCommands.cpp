#include "PointChangeCommands.h"

#include "CommandOptions.h"
#include "Confirmation.h"
#include "Lookup.h"
#include "PointTarget.h"
#include "extensions/ServiceRequest.h"

#include <QLocale>

namespace {

struct ReferenceOptions
{
    PointTarget target;
    std::optional<double> value;
    bool isCleared = false;
    Confirmation confirmation;
};

struct PointDeleteOptions
{
    PointTarget target;
    Confirmation confirmation;
};

// What the values of a sub-category are, as far as the service tells.
MeasuredSubCategory measuredSubCategory(Session& session, const QString& id)
{
    if (session.extensions().has(Extension::SubCategoryKinds)) {
        const QList<MeasuredSubCategory> known = session.extensions().subCategories(session.project());
        for (const MeasuredSubCategory& subCategory : known) {
            if (subCategory.id == id) {
                return subCategory;
            }
        }
    }
    return MeasuredSubCategory();
}

QVariant valueCell(const std::optional<double>& value, const MeasuredSubCategory& subCategory)
{
    return value ? cell::number(*value, subCategory.decimals) : QVariant(QString());
}

Sheet referenceSheet(Session& session, const PointSummary& point)
{
    const MeasuredSubCategory measured = measuredSubCategory(session, point.subCategoryId);
    return {{column::fixed("ID", "id"), column::text("NAME", "name"), column::fixed("DEPTH", "depth"),
             column::text("MONITORING", "cellName"), column::text("SUB-CATEGORY", "subCategoryName"),
             column::text("UNIT", "unit"), column::fixed("INITIAL VALUE", "initialValue"),
             column::fixed("REFERENCE", "reference"), column::fixed("SAMPLES", "samples")},
            {{point.id, point.name, noneIfEmpty(point.depth), lookup::monitoringName(session, point.cellId),
              lookup::subCategoryName(session, point.subCategoryId), noneIfEmpty(measured.unit),
              valueCell(point.initialValue, measured), valueCell(point.reference, measured), point.samples}}};
}

QString questionOf(Session& session, const PointSummary& point, const ReferenceOptions& options)
{
    const QString from = options.value ? QString::number(*options.value, 'g', QLocale::FloatingPointShortest)
                                       : QStringLiteral("the earliest reading");
    return QStringLiteral("Count the variations of all %1 samples of point %2 of \"%3\" from %4, and judge "
                          "them anew?")
        .arg(point.samples)
        .arg(titleOf(point), lookup::monitoringName(session, point.cellId), from);
}

ExitCode showReference(Session& session, const ReferenceOptions& options)
{
    const PointSummary before = findPoint(session, options.target);
    if (!options.value && !options.isCleared) {
        session.output().addRecord(referenceSheet(session, before));
        return ExitCode::Success;
    }
    if (options.value == before.initialValue) {
        session.note(QStringLiteral("nothing to change"));
        session.output().addRecord(referenceSheet(session, before));
        return ExitCode::Success;
    }
    if (!isConfirmed(session, options.confirmation, [&] { return questionOf(session, before, options); })) {
        return ExitCode::Failed;
    }
    PointChange change;
    change.initialValue = options.value;
    change.removesInitialValue = options.isCleared;
    session.extensions().changePoint(before.id, change);
    try {
        PointTarget changed;
        changed.point = before.id;
        session.output().addRecord(referenceSheet(session, findPoint(session, changed)));
    } catch (const Failure& failure) {
        throw extensions::afterChange(failure);
    }
    return ExitCode::Success;
}

ExitCode deletePoint(Session& session, const PointDeleteOptions& options)
{
    const PointSummary point = findPoint(session, options.target);
    const auto question = [&] {
        return QStringLiteral("Delete point %1 of \"%2\" with its %3 samples?")
            .arg(titleOf(point), lookup::monitoringName(session, point.cellId))
            .arg(point.samples);
    };
    if (!isConfirmed(session, options.confirmation, question)) {
        return ExitCode::Failed;
    }
    const DeletedPoint deleted = session.extensions().deletePoint(point.id);
    session.note(QStringLiteral("deleted point %1 with %2 samples; alarms that changed or went: %3")
                     .arg(titleOf(deleted))
                     .arg(deleted.removedSamples)
                     .arg(deleted.alarms.size()));
    return ExitCode::Success;
}

} // namespace

void addPointChangeCommands(CLI::App& group, Command& chosen)
{
    const auto [reference, referred] = options::addSubcommand(
        group, "reference", "Show or change what a point's variations are counted from", chosen,
        showReference);
    addPointTargetOptions(reference, referred->target);
    CLI::Option* value = options::addNumber(reference, "--set", referred->value, "New initial value");
    reference
        .add_flag("--clear", referred->isCleared,
                  "No initial value: variations are counted from the earliest reading")
        ->excludes(value);
    addConfirmation(reference, referred->confirmation);
    options::setExamples(reference, "  rkmon point reference VH-W1 --cell VH\n"
                                    "  rkmon point reference 6745d2f0a1b2c3d4e5f60718 --set 0.26");

    const auto [remove, removed] =
        options::addSubcommand(group, "delete", "Delete a point with its samples", chosen, deletePoint);
    addPointTargetOptions(remove, removed->target);
    addConfirmation(remove, removed->confirmation);
    options::setExamples(remove, "  rkmon point delete VH-W1 --cell VH --depth 20\n"
                                 "  rkmon point delete --yes 6745d2f0a1b2c3d4e5f60718");
}
