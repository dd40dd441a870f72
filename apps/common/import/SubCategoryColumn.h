#pragma once

#include "reading/MeasuredFile.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <functional>
#include <optional>

/// The points of a file that are of one sub-category.
struct SubCategoryPart
{
    QString subCategory;
    MeasuredFile file;
};

/// What a text of the column subCategory means; nothing when it means none.
using SubCategoryOf = std::function<std::optional<QString>(const QString& text)>;

/// Whether the readings of the file say what they measure.
bool saysSubCategory(const MeasuredFile& file);

/// The file, cut by what its column subCategory means. A file without the column is all of `expected`. With
/// the column `expected` may be empty; otherwise all its rows must be of it. What is not so is appended to
/// `badRows`, as "FILE:LINE: reason". Throws a Failure (BadInput) for a file without the column when nothing
/// is expected.
QList<SubCategoryPart> cutBySubCategory(const MeasuredFile& file, const QString& expected,
                                        const SubCategoryOf& subCategoryOf, QStringList& badRows);
