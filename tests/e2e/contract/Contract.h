#pragma once

#include "CoveredMonitoringData.h"
#include "Deployment.h"
#include "Text.h"

#include <NetworkManager.h>
#include <QJsonObject>
#include <QList>
#include <QStringList>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

/// What the library promises, against the service of Deployment::current(). A test sees, and asserts, only
/// what it has created itself; all of it is deleted at its end, whatever became of the test.
class Contract : public testing::Test
{
protected:
    Contract();

    void TearDown() override;

    static const Deployment& deployment() { return Deployment::current(); }
    static const QString& category() { return deployment().category; }
    /// `name` with the mark of this run before it.
    static QString mine(const QString& name);
    /// A pattern for names that mine() made: `pattern` must hold right after the mark.
    static QString minePattern(const QString& pattern);

    static void actAsEditor();
    /// Only where there is a reader: ReaderContract.
    static void actAsReader();

    int requestCount() const { return m_exchanges.size(); }
    int lastStatus() const { return m_exchanges.isEmpty() ? -1 : m_exchanges.last().httpStatus; }
    std::string lastErrorText() const;

    /// A new monitoring called mine(name) in category().
    RKMonitoring created(const QString& name, const QString& modelId = QString());
    /// The service's document at `path` after "monitor-service/".
    static QJsonObject document(const QString& path);

    /// The sub-categories of category() that deliveries may be for, the first one first; never empty.
    QList<RKMonitoringSubCategory> subCategories();
    /// A point of the first sub-category, to be filled with samples.
    RKPointLocation point(const QString& cellId, const QString& name, const QString& depth = QString());
    /// Delivers the points, which must succeed.
    void deliver(const QList<RKPointLocation>& points);
    static RKPointLocationCondition ofCell(const QString& cellId);
    /// All points of a monitoring, asked of the service.
    QList<RKPointLocation> pointsOf(const QString& cellId);
    QList<RKDataManage> dataManagesOf(const QString& cellId);

    CoveredMonitoringData data;

private:
    QList<NetworkExchange> m_exchanges;
    const NetworkObservation m_observation = NetworkManager::instance().addObserver(
        [this](const NetworkExchange& exchange) { m_exchanges.append(exchange); });
};

/// A test that needs a token that may only read.
class ReaderContract : public Contract
{
protected:
    void SetUp() override;
};

/// 10:00 UTC and later on a day of December 2015. Within ten minutes from then it is the same calendar day in
/// every zone, so the days of a project can be told without its zone.
QDateTime december(int day, int minute = 0);
RKPointLocationData sample(int count, const QDateTime& time, double value,
                           const QString& timeFlag = QString());
bool operator==(const RKPointLocationData& left, const RKPointLocationData& right);
void PrintTo(const RKPointLocationData& sample, std::ostream* out);

/// The names of records, in order.
template <typename Record>
QStringList namesOf(const QList<Record>& records)
{
    QStringList names;
    for (const Record& record : records) {
        names.append(record.name);
    }
    return names;
}

/// The identifiers of records, in order.
template <typename Record>
QStringList idsOf(const QList<Record>& records)
{
    QStringList ids;
    for (const Record& record : records) {
        ids.append(record.id);
    }
    return ids;
}

/// Reads pages of `limit` through `read(skip, limit, list)` until one is not full.
template <typename Record, typename Read>
QList<Record> allPages(int limit, Read read)
{
    QList<Record> records;
    for (int before = -limit; records.size() - before == limit;) {
        before = records.size();
        QList<Record> page;
        EXPECT_TRUE(read(before, limit, page));
        EXPECT_LE(page.size(), limit);
        records += page;
    }
    return records;
}

/// Deletes everything that the run `deployment` has created: monitorings with its mark, with groups and data.
/// Returns what could not be deleted, in words; empty: nothing is left.
QStringList removeWhatWasCreated(const Deployment& deployment);
