#include "import/SubCategoryColumn.h"

#include "Failure.h"

#include <QSet>

#include <algorithm>

namespace {

// The first line of the file that tells of the point.
int firstLineOf(const MeasuredPoint& point)
{
    const auto first =
        std::min_element(point.readings.cbegin(), point.readings.cend(),
                         [](const Reading& left, const Reading& right) { return left.line < right.line; });
    return first == point.readings.cend() ? 1 : first->line;
}

MeasuredFile withoutPoints(const MeasuredFile& file)
{
    MeasuredFile rest = file;
    rest.points.clear();
    rest.readingCount = 0;
    return rest;
}

// The units that are said of one sub-category.
QMultiMap<QString, WrittenUnit> unitsOf(const MeasuredFile& file, const QString& subCategory,
                                        const SubCategoryOf& subCategoryOf)
{
    QMultiMap<QString, WrittenUnit> units;
    for (auto unit = file.units.cbegin(); unit != file.units.cend(); ++unit) {
        if (subCategoryOf(unit.key()) == subCategory) {
            units.insert(unit.key(), *unit);
        }
    }
    return units;
}

MeasuredFile& partOf(QList<SubCategoryPart>& parts, const QString& subCategory, const MeasuredFile& file)
{
    for (SubCategoryPart& part : parts) {
        if (part.subCategory == subCategory) {
            return part.file;
        }
    }
    MeasuredFile part = withoutPoints(file);
    if (!parts.isEmpty()) {
        part.badRows = {}; // they are written once
    }
    parts.append({subCategory, part});
    return parts.last().file;
}

} // namespace

bool saysSubCategory(const MeasuredFile& file)
{
    return std::any_of(file.points.cbegin(), file.points.cend(),
                       [](const MeasuredPoint& point) { return !point.subCategory.isEmpty(); });
}

QList<SubCategoryPart> cutBySubCategory(const MeasuredFile& file, const QString& expected,
                                        const SubCategoryOf& subCategoryOf, QStringList& badRows)
{
    if (file.points.isEmpty()) {
        return {{expected, file}};
    }
    const bool isSaid = saysSubCategory(file);
    if (!isSaid && expected.isEmpty()) {
        throw Failure(
            FailureKind::BadInput,
            QStringLiteral("%1 does not say what its readings measure: it has no column subCategory")
                .arg(file.path),
            Remedy::GiveSubCategory);
    }
    if (!isSaid) {
        return {{expected, file}};
    }
    Problems problems;
    QSet<QString> unknown; // each is told of once
    QList<SubCategoryPart> parts;
    for (const MeasuredPoint& point : file.points) {
        const std::optional<QString> subCategory = subCategoryOf(point.subCategory);
        if (!subCategory && unknown.contains(point.subCategory)) {
            continue;
        }
        if (!subCategory) {
            unknown.insert(point.subCategory);
            const QString remedy =
                file.hasTypes ? QStringLiteral("; a mapping can say which one the type is") : QString();
            problems.add(firstLineOf(point),
                         QStringLiteral("there is no sub-category \"%1\"").arg(point.subCategory) + remedy);
        } else if (!expected.isEmpty() && *subCategory != expected) {
            problems.add(firstLineOf(point),
                         QStringLiteral("the row is of \"%1\", which is another sub-category than was "
                                        "given for the file")
                             .arg(point.subCategory));
        } else {
            MeasuredFile& part = partOf(parts, *subCategory, file);
            part.points.append(point);
            part.readingCount += point.readings.size();
        }
    }
    for (SubCategoryPart& part : parts) {
        part.file.units = unitsOf(file, part.subCategory, subCategoryOf);
    }
    badRows.append(problems.lines(file.path));
    return parts;
}
