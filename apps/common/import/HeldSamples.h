#pragma once

#include "ServiceSession.h"
#include "import/Deliveries.h"
#include "points/PointDirectory.h"

#include <QHash>
#include <QMap>
#include <QPair>
#include <QSet>

#include <map>
#include <optional>

/// What tells samples of a point apart: time in milliseconds since 1970, and count.
using SampleSlot = QPair<qint64, qint32>;

SampleSlot slotOf(const RKPointLocationData& sample);

/// Samples of one point.
using SamplesHeld = QHash<SampleSlot, RKPointLocationData>;

/// Which samples are read at once.
struct HeldRequest
{
    QString cellId;
    QStringList names; ///< of points
    QDateTime first;
    QDateTime last;
};

/// Reads the samples that the service holds of points that it has.
class HeldSamples
{
public:
    /// Of other points than `points` nothing need be asked for.
    HeldSamples(ServiceSession& session, const QSet<PointKey>& points);

    /// Those from the first time to the last, and of some hours behind. Nothing where it cannot be told which
    /// sub-category one of the points is of.
    std::optional<QHash<PointKey, SamplesHeld>> read(const HeldRequest& request);

private:
    const PointDirectory& directoryOf(const QString& cellId);

    ServiceSession& m_session;
    QMap<QString, QStringList> m_names; // by monitoring
    std::map<QString, PointDirectory> m_directories;
};
