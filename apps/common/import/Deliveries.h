#pragma once

#include "reading/MeasuredFile.h"

#include <QHash>
#include <QList>
#include <QSet>
#include <QString>
#include <QVector>
#include <RKPointLocation.h>

/// Where the readings of a file belong.
struct DeliveryTarget
{
    QString cellId;
    QString subCategoryId;

    bool operator==(const DeliveryTarget& other) const
    {
        return cellId == other.cellId && subCategoryId == other.subCategoryId;
    }
};

/// A file that may be used, and its target.
struct PlacedFile
{
    MeasuredFile file;
    DeliveryTarget target;
};

/// Readings that the service takes in, or refuses, as one.
struct Delivery
{
    /// The file it comes from.
    QString path;
    DeliveryTarget target;
    QList<RKPointLocation> points;
    int sampleCount = 0;
    QDateTime firstTime;
};

/// Names a point of a sub-category: a monitoring's points of equal name and depth in different sub-categories
/// are different points.
struct PointKey
{
    DeliveryTarget target;
    QString name;
    QString depth;

    bool operator==(const PointKey& other) const
    {
        return target == other.target && name == other.name && depth == other.depth;
    }
};

uint qHash(const PointKey& key, uint seed = 0);

/// Samples that go into one request at most.
constexpr int largestRequest = 50'000;

/// The deliveries of all files, oldest readings first: one per file. A delivery of more than `largest`
/// samples is split in time order. A point that is not in `known` gets the initial value that its file says,
/// or its earliest reading of all files where it says none; the others get none, which leaves theirs alone.
QList<Delivery> deliveriesOf(const QList<PlacedFile>& files, const QSet<PointKey>& known,
                             int largest = largestRequest);

/// The same deliveries by request: in order, at most `largest` samples each, and never two of one monitoring:
/// the service takes a request as one delivery per target, and the time of a point's creation identifies its
/// sub-category only if it was made alone (PointOrigins).
QList<QList<Delivery>> requestsOf(const QList<Delivery>& deliveries, int largest = largestRequest);

/// A reading that another file of the same target contradicts: "FILE:LINE: reason"; as many as Problems
/// keeps.
QStringList contradictions(const QList<PlacedFile>& files);

/// Points of all files whose initial value is said to be 0, which no delivery can say.
QSet<PointKey> pointsFromZero(const QList<PlacedFile>& files);

/// Points of all files, those of several files once.
QSet<PointKey> pointsOf(const QList<PlacedFile>& files);
