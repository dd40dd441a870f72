#pragma once

#include "reading/FileMapping.h"

#include <QByteArray>
#include <QList>
#include <QString>
#include <QStringList>
#include <RKMonitoring.h>
#include <RKMonitoringSubCategory.h>

#include <PointLocSetting.h>

#include <optional>

/// A threshold group as a project file describes it.
struct PlannedGroup
{
    QString monitoring;
    QString subCategory;
    /// Without identifiers.
    PointLocSetting setting;
};

/// A file of readings and where they belong.
struct PlannedFile
{
    /// Beside the project file unless absolute.
    QString path;
    QString monitoring;
    /// Name or alias; empty where the file says it.
    QString subCategory;
    /// How it is written, or the file that says it; neither: as the import says.
    std::optional<FileMapping> mapping;
    QString mappingFile;
};

/// What a site consists of and which file holds which readings.
struct ProjectFile
{
    QStringList categories;
    QList<RKMonitoringSubCategory> subCategories; // without identifiers
    QList<RKMonitoring> monitorings;              // without identifiers
    QList<PlannedGroup> groups;
    QList<PlannedFile> files;

    const RKMonitoring* monitoring(const QString& name) const;
    /// The sub-category of `category` that `text` names, by name or alias.
    const RKMonitoringSubCategory* subCategory(const QString& category, const QString& text) const;
};

/// Reads the JSON of a project file; `path` is for messages and for finding the files beside it. Throws a
/// Failure (BadInput) that names the member when something is missing, of the wrong kind, unknown, or refers
/// to nothing.
ProjectFile readProjectFile(const QString& path, const QByteArray& content);

/// The same from the file itself.
ProjectFile readProjectFile(const QString& path);
