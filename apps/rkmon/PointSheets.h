#pragma once

#include "Output.h"
#include "Session.h"
#include "extensions/Projects.h"
#include "points/PointSelection.h"

#include <QHash>
#include <QList>
#include <QString>
#include <RKPointLocation.h>

#include <optional>

/// What the values of a point mean, as far as the service tells it.
struct PointMeaning
{
    MeasuredSubCategory subCategory;
    /// What its variations count from.
    std::optional<double> reference;
    /// As it was given; nothing when none was.
    std::optional<double> initialValue;
};

using PointMeanings = QHash<QString, PointMeaning>; // by point

/// What each of the points of a selection measures.
PointMeanings meaningsOf(const QList<RKPointLocation>& points, const PointSelection& selection);

/// The same of points of any monitorings, which it asks for.
PointMeanings meaningsOf(Session& session, const QList<RKPointLocation>& points);

/// Points as rows, without their samples but the latest one. Asks for the names of their monitorings.
Sheet pointSheet(Session& session, const QList<RKPointLocation>& points, const PointMeanings& meanings);

/// One row per sample, with the columns of a file that `point import` reads.
Sheet sampleSheet(const QList<RKPointLocation>& points, const PointMeanings& meanings);
