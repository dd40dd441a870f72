#pragma once

#include "RKMonitoringData.h"

#include <QByteArray>
#include <QNetworkReply>
#include <QStringList>

#include <functional>
#include <vector>

/// What became of an exchange, as the library may know it.
struct WireOutcome
{
    QNetworkReply::NetworkError error = QNetworkReply::NoError;
    QByteArray readable; ///< the JSON text that the operation may read; empty when there is none

    bool isSuccess() const { return error == QNetworkReply::NoError; }
};

/// An operation of the library that stands for its kind of request.
struct WireOperation
{
    const char* name;
    QByteArray method;
    /// A good answer of the service, of `size` bytes.
    std::function<QByteArray(int size)> answer;
    /// Runs it on outputs that hold something, and tells where its result, its outputs or, after a success,
    /// the caches are not what the outcome promises.
    std::function<QStringList(RKMonitoringData&, const WireOutcome&)> deviations;
    /// Looks the caller's record up with an entry of its own in the monitoring cache, whatever comes of the
    /// request.
    bool looksUpItsRecord = false;

    bool isRead() const { return method == "GET"; }
};

/// A read of one record, a read of a list, and every kind of write: POST of an object and of an array, PUT,
/// DELETE.
const std::vector<WireOperation>& wireOperations();

/// Fills every cache: the monitoring "c1" called "Pit", and one record of each other kind.
void fillCaches(RKMonitoringData& data);
/// Where the caches do not hold what fillCaches put there; sends nothing when they do.
QStringList cacheDeviations(RKMonitoringData& data);
