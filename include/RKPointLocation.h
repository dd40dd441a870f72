#pragma once

#include <QDateTime>
#include <QList>
#include <QMap>
#include <QString>
#include <QStringList>

/// One measured sample of a point location.
struct RKPointLocationData
{
    /// Number of the reading.
    qint32 count = 0;
    QDateTime time;
    /// Measured value, in the unit of the point's kind of data.
    double value = 0.0;
    /// Time-slot marker, as the service gives it ("A", for example).
    QString timeFlag;
};

/// One entry of a normal or depth statistic: the value of one point at one time. Only ever read.
struct RKPointLocationChartData
{
    /// Identifier of the point location.
    QString id;
    QString name;
    /// Depth as text; empty where the point has none.
    QString depth;
    qint32 count = 0;
    double value = 0.0;
    QDateTime time;
    /// Relations of the point: relation name to identifiers.
    QMap<QString, QStringList> entity;
};

/// One measuring point of a monitoring with its samples.
struct RKPointLocation
{
    /// The service's identifier; empty until read back.
    QString id;
    /// Identifier of the monitoring that the point belongs to.
    QString cellId;
    QString name;
    /// Category of the point; read, never written.
    QString category;
    /// Identifier of its sub-category; written, never read.
    QString subCategoryId;
    /// Alternative name; written, never read.
    QString alias;
    /// Kind of data measured at the point.
    qint32 dataType = 0;
    /// Reference value that the total variation counts from. Written as it is, but read as an integer: a
    /// value with a fraction reads as 0.
    double initialValue = 0.0;
    /// Direction in which offsets count.
    QString offsetDirection;
    /// Depth as text; empty where the point has none.
    QString depth;
    /// Number of samples inserted.
    qint32 insertCount = 0;
    /// Count of the latest sample.
    qint32 lastCount = 0;
    /// Time of the latest sample.
    QDateTime lastDate;
    QList<RKPointLocationData> data;
    /// Relations to other entities: relation name to identifiers.
    QMap<QString, QStringList> links;
    /// Identifier of an attached file; written, never read.
    QString fileId;
    // Kept by the service, never sent.
    QDateTime createdAt;
    QString createdBy;
    QDateTime updatedAt;
    QString updatedBy;
};
