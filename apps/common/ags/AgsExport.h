#pragma once

#include <QByteArray>
#include <QDate>
#include <QList>
#include <QString>
#include <RKPointLocation.h>

#include <optional>

namespace ags {

/// What a point measures, and its readings.
struct MeasuredSeries
{
    /// Name, depth and samples.
    RKPointLocation point;
    /// Name and alias of the sub-category.
    QString subCategory;
    QString alias;
    QString unit;
    /// As it was given; nothing when none was.
    std::optional<double> initialValue;
};

/// What stands in an AGS file of a monitoring.
struct Monitored
{
    QString projectId;
    /// Not empty.
    QString projectName;
    /// The program that writes it.
    QString producer;
    QString monitoring;
    /// The day of the export.
    QDate day;
    QList<MeasuredSeries> series;
};

/// An AGS 4 file that an import reads as the same points and samples: a point is a location with one
/// installation of the same name, and the type of a reading is the alias of its sub-category, or its name.
/// Count, time flag and initial value stand under headings of this system's own, which the file declares.
/// UTF-8; ASCII where all texts are. Throws a Failure (Other) for a text that AGS cannot hold: a control
/// character, or blanks at its ends.
QByteArray fileOf(const Monitored& monitored);

} // namespace ags
