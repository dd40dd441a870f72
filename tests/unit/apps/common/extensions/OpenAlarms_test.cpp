#include "extensions/OpenAlarms.h"

#include "PagedReading.h"
#include "ScriptedExtensions.h"

namespace {

class OpenAlarms : public ScriptedExtensions
{
protected:
    OpenAlarms() { announceAll(); }

    static QJsonObject alarm(const QString& id) { return {{"_id"_q, id}, {"cellName"_q, "Pit"_q}}; }
};

} // namespace

TEST_F(OpenAlarms, AreAskedForByTheirFlagAlsoWhenTheyAreCounted)
{
    answer(QJsonArray{alarm("a2"_q), alarm("a1"_q)});
    answer(QJsonObject{{"count"_q, 2}});
    EXPECT_EQ(service.openAlarms("p7"_q), (QSet<QString>{"a1"_q, "a2"_q}));
    EXPECT_EQ(lastRequest(), "GET projects/p7/alarmManages");
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, "{}"_q}, {"only_count"_q, "true"_q}, {"open"_q, "true"_q}}));
    EXPECT_EQ(ScriptServer::decodedQuery(server.requests().at(1).target),
              (Query{{"where"_q, "{}"_q}, {"skip"_q, "0"_q}, {"limit"_q, "1000"_q}, {"open"_q, "true"_q}}));
}

TEST_F(OpenAlarms, AreReadPageByPage)
{
    QJsonArray first;
    for (int number = 0; number < paging::pageRows; ++number) {
        first.append(alarm(QString::number(number)));
    }
    answer(first);
    answer(QJsonArray{first.last(), alarm("last"_q)});
    answer(QJsonObject{{"count"_q, paging::pageRows + 1}});
    const QSet<QString> alarms = service.openAlarms("p7"_q);
    EXPECT_EQ(alarms.size(), paging::pageRows + 1);
    EXPECT_TRUE(alarms.contains("last"_q));
}

TEST_F(OpenAlarms, MayBeNone)
{
    answer(QJsonArray());
    answer(QJsonObject{{"count"_q, 0}});
    EXPECT_TRUE(service.openAlarms("p7"_q).isEmpty());
}

TEST_F(OpenAlarms, AreCheckedMemberByMember)
{
    expectMembersAreChecked(
        QJsonObject{{"_id"_q, "a1"_q}}, [&](const QJsonObject& document) { answer(QJsonArray{document}); },
        [&] { service.openAlarms("p7"_q); });
}
