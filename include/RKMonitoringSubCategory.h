#pragma once

#include <QString>

/// One sub-category, defined per project below a category.
struct RKMonitoringSubCategory
{
    QString id;
    QString name;
    /// The category that it belongs to.
    QString category;
    /// Short alternative name.
    QString alias;
};
