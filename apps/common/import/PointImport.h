#pragma once

#include "ServiceSession.h"
#include "import/Deliveries.h"
#include "import/ImportCallbacks.h"
#include "import/ImportOutcome.h"
#include "reading/MeasuredFile.h"

#include <QString>
#include <QStringList>

#include <optional>

/// Files of readings that belong to one monitoring and sub-category.
struct FileImport
{
    QStringList files;
    /// Identifier or exact name.
    QString monitoring;
    /// Identifier, name or alias; may be empty where the column subCategory of the files says it.
    QString subCategory;
    FileMapping mapping;
    /// A file that does not exist yet: bad rows go there, and the others are delivered. Empty: a bad row
    /// keeps everything from being sent.
    QString badRowsFile;
    /// Check everything and send nothing.
    bool isDryRun = false;
};

/// Files of readings whose places a project file knows.
struct ProjectImport
{
    QString projectFile;
    /// Some of its files; none: all of them.
    QStringList files;
    /// Of the files that have none in the project file.
    FileMapping mapping;
    /// As in FileImport.
    QString badRowsFile;
    bool isDryRun = false;
    /// A mapping of the project file, with what holds instead.
    std::function<FileMapping(const FileMapping&)> amended = [](const FileMapping& own) {
        return own;
    };
};

/// What an import did, or would do.
struct ImportResult
{
    /// Rows that are bad, as "FILE:LINE: reason". When there are any, nothing was sent and the numbers below
    /// are 0.
    QStringList badRows;
    /// Rows that are bad and were left out, in the same words.
    QStringList skippedRows;
    int skippedRowCount = 0;
    /// What must be given so that the bad rows can be read.
    UnclearFormat unclear;
    int files = 0;
    int points = 0;
    /// Those of `points` that the service did not have, by name and depth.
    QList<PointKey> newPoints;
    int samples = 0;
    /// What became of the samples, as the service says, or would become of them as far as that can be told.
    std::optional<SampleOutcome> outcome;
    int deliveries = 0;
    bool isSent = false;
    /// Alarms in which readings of it stand, as far as the service tells.
    QList<RaisedAlarm> alarms;
    /// Names of the monitorings that a dry run would have created.
    QStringList missingMonitorings;
    /// Why the service would refuse what a dry run did not send.
    QStringList missingRights;
};

/// Checks every row of every file and, when all are good, delivers the readings. Doing it again changes
/// nothing that was taken in. Throws a Failure when a file cannot be read, what it needs is not there, or a
/// request fails; what was delivered before stays.
ImportResult importFiles(ServiceSession& session, const FileImport& order,
                         const ImportCallbacks& callbacks = {});

/// The same for the files of a project; creates its monitorings and threshold groups that are missing.
ImportResult importProject(ServiceSession& session, const ProjectImport& order,
                           const ImportCallbacks& callbacks = {});
