#include "Contract.h"

#include <NetworkEventLoop.h>

Contract::Contract()
{
    actAsEditor();
    data.clear();
}

void Contract::TearDown()
{
    const QStringList left = removeWhatWasCreated(deployment());
    EXPECT_TRUE(left.isEmpty()) << left.join(QLatin1Char('\n')).toStdString();
}

void ReaderContract::SetUp()
{
    if (deployment().readerToken.isEmpty()) {
        GTEST_SKIP() << "needs a token that may only read (RK_CONTRACT_READER_TOKEN_FILE)";
    }
}

QString Contract::mine(const QString& name)
{
    return deployment().run + QLatin1Char(' ') + name;
}

QString Contract::minePattern(const QString& pattern)
{
    return QLatin1Char('^') + deployment().run + QLatin1Char(' ') + pattern;
}

void Contract::actAsEditor()
{
    EXPECT_TRUE(NetworkManager::instance().setBearerToken(deployment().editorToken));
}

void Contract::actAsReader()
{
    EXPECT_TRUE(NetworkManager::instance().setBearerToken(deployment().readerToken));
}

std::string Contract::lastErrorText() const
{
    return m_exchanges.isEmpty() ? "nothing was sent" : m_exchanges.last().errorText.toStdString();
}

RKMonitoring Contract::created(const QString& name, const QString& modelId)
{
    RKMonitoring monitoring;
    monitoring.name = mine(name);
    monitoring.category = category();
    monitoring.modelId = modelId;
    monitoring.alarmTo = QStringList{"ana"_q, "ben"_q};
    EXPECT_TRUE(data.createMonitoring(monitoring)) << lastErrorText();
    return monitoring;
}

QJsonObject Contract::document(const QString& path)
{
    NetworkEventLoop answer(
        NetworkManager::instance().get("%1monitor-service/%2"_q.arg(deployment().baseAddress, path)),
        nullptr);
    answer.exec();
    EXPECT_TRUE(answer.isSuccessful()) << path.toStdString();
    return answer.object();
}

QList<RKMonitoringSubCategory> Contract::subCategories()
{
    QList<RKMonitoringSubCategory> found;
    EXPECT_TRUE(data.getMonitoringSubCategory(category(), found)) << lastErrorText();
    EXPECT_FALSE(found.isEmpty());
    return found;
}

RKPointLocation Contract::point(const QString& cellId, const QString& name, const QString& depth)
{
    RKPointLocation point;
    point.cellId = cellId;
    point.subCategoryId = subCategories().first().id;
    point.name = name;
    point.depth = depth;
    return point;
}

void Contract::deliver(const QList<RKPointLocation>& points)
{
    EXPECT_TRUE(data.createPointLocation(points)) << lastErrorText();
}

RKPointLocationCondition Contract::ofCell(const QString& cellId)
{
    RKPointLocationCondition condition;
    condition.cellId = cellId;
    return condition;
}

QList<RKPointLocation> Contract::pointsOf(const QString& cellId)
{
    RKPointLocationCondition condition = ofCell(cellId);
    QList<RKPointLocation> points;
    EXPECT_TRUE(data.getPointLocation(condition, points, false)) << lastErrorText();
    return points;
}

QList<RKDataManage> Contract::dataManagesOf(const QString& cellId)
{
    RKDataManageCondition condition;
    condition.cellId = cellId;
    QList<RKDataManage> dataManages;
    EXPECT_TRUE(data.getDataManageRangeData(condition, 0, 1000, dataManages)) << lastErrorText();
    return dataManages;
}

QDateTime december(int day, int minute)
{
    return {QDate(2015, 12, day), QTime(10, minute), Qt::UTC};
}

RKPointLocationData sample(int count, const QDateTime& time, double value, const QString& timeFlag)
{
    RKPointLocationData sample;
    sample.count = count;
    sample.time = time;
    sample.value = value;
    sample.timeFlag = timeFlag;
    return sample;
}

bool operator==(const RKPointLocationData& left, const RKPointLocationData& right)
{
    return left.count == right.count && left.time == right.time && left.value == right.value &&
           left.timeFlag == right.timeFlag;
}

void PrintTo(const RKPointLocationData& sample, std::ostream* out)
{
    *out << sample.count << ' ' << sample.time.toString(Qt::ISODateWithMs).toStdString() << ' '
         << sample.value << " \"" << sample.timeFlag.toStdString() << '"';
}

namespace {

void removeMonitoring(RKMonitoringData& data, const RKMonitoring& monitoring, QStringList& left)
{
    const auto check = [&](bool isDone, const QString& what) {
        if (!isDone) {
            left.append("cannot remove %1 of \"%2\""_q.arg(what, monitoring.name));
        }
    };
    QList<PointLocSetting> groups;
    check(data.getGroupsByCellId(monitoring.id, groups, false), "the groups"_q);
    for (const PointLocSetting& group : qAsConst(groups)) {
        check(data.deleteGroup(group.id), "group %1"_q.arg(group.id));
    }

    RKDataManageCondition condition;
    condition.cellId = monitoring.id;
    QList<RKDataManage> dataManages;
    check(data.getDataManageRangeData(condition, 0, 1000, dataManages), "the data"_q);
    for (const RKDataManage& dataManage : qAsConst(dataManages)) {
        check(data.deletePointData(dataManage.id), "data manage %1"_q.arg(dataManage.id));
    }

    check(data.deleteMonitoring(monitoring.id), "monitoring %1"_q.arg(monitoring.id));
}

} // namespace

QStringList removeWhatWasCreated(const Deployment& deployment)
{
    NetworkManager::instance().setBearerToken(deployment.editorToken);
    RKMonitoringData& data = *RKMonitoringData::instance();
    RKMonitoringCondition marked;
    marked.name = deployment.run;
    QStringList left;
    while (left.isEmpty()) {
        int count = -1;
        if (!data.getMonitoringRangeCount(marked, count)) {
            left.append("cannot tell whether anything named \"%1\" is left"_q.arg(deployment.run));
        }
        if (count <= 0) {
            break;
        }
        QList<RKMonitoring> monitorings;
        data.getMonitoringRangeData(marked, 0, 100, monitorings);
        if (monitorings.isEmpty()) {
            left.append("cannot read the monitorings named \"%1\""_q.arg(deployment.run));
        }
        for (const RKMonitoring& monitoring : qAsConst(monitorings)) {
            removeMonitoring(data, monitoring, left);
        }
    }
    return left;
}
