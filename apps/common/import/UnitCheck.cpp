#include "import/UnitCheck.h"

#include "extensions/ServiceExtensions.h"

#include <QHash>

#include <algorithm>

namespace {

// By identifier of the sub-category; without those that have none, and empty where the service tells none.
QHash<QString, QString> unitsOnService(ServiceSession& session)
{
    QHash<QString, QString> units;
    if (!session.extensions().has(Extension::SubCategoryKinds)) {
        return units;
    }
    for (const MeasuredSubCategory& known : session.extensions().subCategories(session.project())) {
        if (!known.unit.isEmpty()) {
            units.insert(known.id, known.unit);
        }
    }
    return units;
}

} // namespace

QStringList unitProblems(ServiceSession& session, const QList<PlacedFile>& files)
{
    const bool isSaid = std::any_of(files.cbegin(), files.cend(),
                                    [](const PlacedFile& placed) { return !placed.file.units.isEmpty(); });
    if (!isSaid) {
        return {};
    }
    QHash<QString, QString> units = unitsOnService(session);
    QStringList lines;
    for (const PlacedFile& placed : files) {
        Problems problems;
        const QMultiMap<QString, WrittenUnit>& written = placed.file.units;
        for (auto unit = written.cbegin(); unit != written.cend(); ++unit) {
            const QString& subCategory = placed.target.subCategoryId;
            if (!units.contains(subCategory)) {
                units.insert(subCategory, unit->unit);
            } else if (units.value(subCategory) != unit->unit) {
                problems.add(
                    unit->line,
                    QStringLiteral("the unit of \"%1\" is \"%2\" here, and \"%3\" otherwise; nothing "
                                   "is converted, but a mapping can say that it is the same")
                        .arg(unit.key(), unit->unit, units.value(subCategory)));
            }
        }
        lines.append(problems.lines(placed.file.path));
    }
    return lines;
}
