#include "import/SubCategoryColumn.h"

#include "Failure.h"

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

QList<SubCategoryPart> cutBySubCategory(const MeasuredFile& file, const QString& expected,
                                        const SubCategoryOf& subCategoryOf, QStringList& badRows)
{
    if (file.points.isEmpty()) {
        return expected.isEmpty() ? QList<SubCategoryPart>() : QList<SubCategoryPart>{{expected, file}};
    }
    const bool isSaid = std::any_of(file.points.cbegin(), file.points.cend(),
                                    [](const MeasuredPoint& point) { return !point.subCategory.isEmpty(); });
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
    QList<SubCategoryPart> parts;
    for (const MeasuredPoint& point : file.points) {
        const std::optional<QString> subCategory = subCategoryOf(point.subCategory);
        if (!subCategory) {
            problems.add(firstLineOf(point),
                         QStringLiteral("there is no sub-category \"%1\"").arg(point.subCategory));
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
    badRows.append(problems.lines(file.path));
    return parts;
}
