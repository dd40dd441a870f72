#include "WireOperation.h"

#include "../../support/Text.h"
#include "ScriptServer.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <RKBaseApi.h>

#include <gtest/gtest.h>

namespace {

const QString before = QStringLiteral("before");

// Collects what is not as it should be.
class Deviations
{
public:
    void expect(bool holds, const QString& what)
    {
        if (!holds) {
            m_list.append(what);
        }
    }
    void expectText(const QString& what, const QString& is, const QString& should)
    {
        expect(is == should, "%1 is \"%2\", not \"%3\""_q.arg(what, is, should));
    }
    const QStringList& list() const { return m_list; }

private:
    QStringList m_list;
};

QByteArray filled(const QByteArray& begin, const QByteArray& end, int size)
{
    return begin + QByteArray(qMax(0, size - begin.size() - end.size()), 'x') + end;
}

QByteArray oneMonitoring(int size)
{
    return filled(R"({"_id":"c5","name":"Five","category":"pit","createdBy":")", "\"}", size);
}

QByteArray twoMonitorings(int size)
{
    return filled(R"([{"_id":"c5","name":"Five"},{"_id":"c6","createdBy":")", "\"}]", size);
}

QJsonObject objectIn(const WireOutcome& outcome)
{
    return QJsonDocument::fromJson(outcome.readable).object();
}

RKMonitoring recordBefore(const QString& id)
{
    RKMonitoring monitoring;
    monitoring.id = id;
    monitoring.name = before;
    monitoring.category = before;
    monitoring.projectId = before;
    monitoring.modelId = before;
    monitoring.createdBy = before;
    return monitoring;
}

// The record is overwritten with what the reply holds, the members that no reply carries excepted.
void expectRecord(Deviations& deviations, const RKMonitoring& monitoring, const WireOutcome& outcome)
{
    const QJsonObject object = objectIn(outcome);
    const auto text = [&](const char* key) {
        return object.value(QLatin1String(key)).toString();
    };
    deviations.expectText("id"_q, monitoring.id, text("_id"));
    deviations.expectText("name"_q, monitoring.name, text("name"));
    deviations.expectText("category"_q, monitoring.category, text("category"));
    deviations.expectText("createdBy"_q, monitoring.createdBy, text("createdBy"));
    deviations.expectText("projectId"_q, monitoring.projectId, before);
    deviations.expectText("modelId"_q, monitoring.modelId, before);
}

void expectFlag(Deviations& deviations, bool isSuccess, const WireOutcome& outcome)
{
    deviations.expect(isSuccess == outcome.isSuccess(), isSuccess ? "success"_q : "failure"_q);
}

QStringList readMonitoring(RKMonitoringData& data, const WireOutcome& outcome)
{
    Deviations deviations;
    RKMonitoring monitoring = recordBefore(before);
    expectFlag(deviations, data.getMonitoringById("c9"_q, monitoring, false), outcome);
    expectRecord(deviations, monitoring, outcome);
    if (outcome.isSuccess()) {
        deviations.expectText("the cached name"_q, data.getMonitoringName("c9"_q), monitoring.name);
    }
    return deviations.list();
}

QStringList readMonitorings(RKMonitoringData& data, const WireOutcome& outcome)
{
    Deviations deviations;
    QList<RKMonitoring> monitorings = {recordBefore(before)};
    expectFlag(deviations, data.getMonitoringByModelId("m5"_q, monitorings), outcome);
    const QJsonArray rows = QJsonDocument::fromJson(outcome.readable).array();
    deviations.expect(monitorings.size() == rows.size() + 1, "%1 rows"_q.arg(monitorings.size()));
    deviations.expectText("the first row"_q, monitorings.first().id, before);
    for (int i = 1; i < qMin(monitorings.size(), rows.size() + 1); ++i) {
        deviations.expectText("a row"_q, monitorings.at(i).id,
                              rows.at(i - 1).toObject().value(QLatin1String("_id")).toString());
    }
    return deviations.list();
}

QStringList createMonitoring(RKMonitoringData& data, const WireOutcome& outcome)
{
    Deviations deviations;
    RKMonitoring monitoring = recordBefore(before);
    expectFlag(deviations, data.createMonitoring(monitoring), outcome);
    expectRecord(deviations, monitoring, outcome);
    if (outcome.isSuccess()) {
        deviations.expectText("the cached name"_q, data.getMonitoringName(monitoring.id), monitoring.name);
    }
    return deviations.list();
}

// What becomes of the caller's message.
QString messageAfter(const WireOutcome& outcome)
{
    if (outcome.error == QNetworkReply::InternalServerError) {
        return objectIn(outcome).value(QLatin1String("message")).toString();
    }
    if (outcome.error == QNetworkReply::UnknownServerError) {
        return QStringLiteral("Connection closed prematurely");
    }
    return before;
}

QStringList createPointLocations(RKMonitoringData& data, const WireOutcome& outcome)
{
    Deviations deviations;
    RKPointLocation point;
    point.cellId = "c1"_q;
    point.name = "W2"_q;
    QString message = before;
    expectFlag(deviations, data.createPointLocation({{point}, {point}}, message), outcome);
    deviations.expectText("message"_q, message, messageAfter(outcome));
    if (outcome.isSuccess()) {
        RKPointLocationCondition condition;
        condition.cellId = "c1"_q;
        QList<RKPointLocation> points;
        data.getPointLocation(condition, points, true);
        deviations.expect(points.size() == 3, "%1 cached points"_q.arg(points.size()));
    }
    return deviations.list();
}

QStringList updateMonitoring(RKMonitoringData& data, const WireOutcome& outcome)
{
    Deviations deviations;
    RKMonitoring monitoring = recordBefore("c1"_q);
    expectFlag(deviations, data.updateMonitoring(monitoring), outcome);
    expectRecord(deviations, monitoring, outcome);
    if (outcome.isSuccess()) {
        deviations.expectText("the cached name"_q, data.getMonitoringName(monitoring.id), monitoring.name);
    }
    return deviations.list();
}

QStringList deleteMonitoring(RKMonitoringData& data, const WireOutcome& outcome)
{
    Deviations deviations;
    expectFlag(deviations, data.deleteMonitoring("c1"_q), outcome);
    deviations.expectText("the cached name"_q, data.getMonitoringName("c1"_q), "Pit"_q);
    return deviations.list();
}

} // namespace

const std::vector<WireOperation>& wireOperations()
{
    static const std::vector<WireOperation> operations = {
        {"getMonitoringById", "GET", oneMonitoring, readMonitoring},
        {"getMonitoringByModelId", "GET", twoMonitorings, readMonitorings},
        {"createMonitoring", "POST", oneMonitoring, createMonitoring},
        {"createPointLocation", "POST", oneMonitoring, createPointLocations},
        {"updateMonitoring", "PUT", oneMonitoring, updateMonitoring, true},
        {"deleteMonitoring", "DELETE", oneMonitoring, deleteMonitoring},
    };
    return operations;
}

void fillCaches(RKMonitoringData& data)
{
    ScriptServer server;
    RKBaseApi::GetInstance().setBaseApi(server.baseAddress());
    data.clear();
    server.answerJson(200, R"({"_id":"c1","name":"Pit"})");
    data.getMonitoringName("c1"_q);
    server.answerJson(200, R"([{"_id":"s1","name":"Rain"}])");
    QList<RKMonitoringSubCategory> subCategories;
    data.getMonitoringSubCategory("slope"_q, subCategories);
    server.answerJson(200, R"([{"_id":"g1","cellId":"c1"}])");
    QList<PointLocSetting> groups;
    data.getGroupsByCellId("c1"_q, groups, false);
    server.answerJson(200, R"([{"_id":"w1","cellId":"c1","name":"W1"}])");
    RKPointLocationCondition condition;
    condition.cellId = "c1"_q;
    QList<RKPointLocation> points;
    data.getPointLocation(condition, points, false);
    server.answerJson(200, R"([{"_id":"d1","fileId":"f1"}])");
    QList<RKDataManage> dataManages;
    data.getDataManageRangeData({}, 0, 10, dataManages);
    EXPECT_TRUE(server.isUsedUp());
    EXPECT_EQ(cacheDeviations(data), QStringList());
}

QStringList cacheDeviations(RKMonitoringData& data)
{
    Deviations deviations;
    deviations.expectText("the cached name"_q, data.getMonitoringName("c1"_q), "Pit"_q);
    RKMonitoringSubCategory subCategory;
    data.getSubCategoryById("s1"_q, subCategory);
    deviations.expectText("the cached sub-category"_q, subCategory.name, "Rain"_q);
    QList<PointLocSetting> groups;
    data.getGroupsByCellId("c1"_q, groups, true);
    deviations.expect(groups.size() == 1, "%1 cached groups"_q.arg(groups.size()));
    RKPointLocationCondition condition;
    condition.cellId = "c1"_q;
    QList<RKPointLocation> points;
    data.getPointLocation(condition, points, true);
    deviations.expect(points.size() == 1, "%1 cached points"_q.arg(points.size()));
    RKDataManage dataManage;
    data.getDataManageById("d1"_q, dataManage);
    deviations.expectText("the cached data manage"_q, dataManage.fileId, "f1"_q);
    return deviations.list();
}
