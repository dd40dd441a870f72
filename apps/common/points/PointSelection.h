#pragma once

#include "extensions/Projects.h"
#include "points/PointDirectory.h"

#include <QList>
#include <QSet>
#include <QString>
#include <QStringList>

/// The points of a monitoring that the user wants, by sub-category, and what they measure. Points of equal
/// name and depth in different sub-categories are different points.
class PointSelection
{
public:
    /// Of the points with these names, or of all without names; in the sub-categories with these identifiers,
    /// names or aliases, or in all. To be made after the points were read, which are then all known. Throws a
    /// Failure (NotFound) for a sub-category that there is not.
    PointSelection(ServiceSession& session, const RKMonitoring& monitoring, const QStringList& names,
                   const QStringList& subCategories);

    /// Whether the point is wanted. Throws a Failure (Other) when its sub-category matters and cannot be
    /// told; `label` is what the point is called.
    bool holds(const QString& pointId, const QString& label) const;

    /// What the point measures; with an empty identifier when that cannot be told.
    MeasuredSubCategory subCategoryOf(const QString& pointId) const;

    /// The same; throws a Failure (Other) when it cannot be told.
    MeasuredSubCategory requiredSubCategoryOf(const QString& pointId, const QString& label) const;

    /// The sub-category of the monitoring's category with this identifier; with an empty one when there is
    /// none.
    MeasuredSubCategory known(const QString& subCategoryId) const;

    PointDirectory& directory() { return m_directory; }
    const PointDirectory& directory() const { return m_directory; }

private:
    [[noreturn]] void refuse(const QString& label) const;

    QString m_baseApi;
    QList<MeasuredSubCategory> m_subCategories;
    QSet<QString> m_wanted; // identifiers; empty: all
    PointDirectory m_directory;
};
