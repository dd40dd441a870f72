#include "extensions/AuditTrail.h"

#include "ScriptedExtensions.h"

namespace {

class AuditTrail : public ScriptedExtensions
{
protected:
    AuditTrail() { announceAll(); }

    const QJsonObject entry =
        jsonObject(R"({"_id":"e1","category":"Settlement","cellId":"c1","subCategoryId":"s1",
                       "action":"initialValue.changed","subject":"pt1","name":"S1","before":null,"after":12.5,
                       "delivery":"h1","createdAt":"2026-11-20T18:46:18.219Z","createdBy":"Ana"})");
};

} // namespace

TEST_F(AuditTrail, IsReadPageByPage)
{
    answer(QJsonArray{entry});
    AuditQuery query;
    query.where = QJsonObject{{"action"_q, "initialValue.changed"_q}};
    query.order = "createdBy"_q;
    const QList<AuditEntry> entries = service.changes("p7"_q, query, 40, 20);
    ASSERT_EQ(entries.size(), 1);
    EXPECT_EQ(entries[0].id, "e1"_q);
    EXPECT_EQ(entries[0].category, "Settlement"_q);
    EXPECT_EQ(entries[0].cellId, "c1"_q);
    EXPECT_EQ(entries[0].subCategoryId, "s1"_q);
    EXPECT_EQ(entries[0].action, "initialValue.changed"_q);
    EXPECT_EQ(entries[0].subject, "pt1"_q);
    EXPECT_EQ(entries[0].name, "S1"_q);
    EXPECT_TRUE(entries[0].before.isNull());
    EXPECT_EQ(entries[0].after.toDouble(), 12.5);
    EXPECT_EQ(entries[0].deliveryId, "h1"_q);
    EXPECT_EQ(entries[0].time, QDateTime(QDate(2026, 11, 20), QTime(18, 46, 18, 219), Qt::UTC));
    EXPECT_EQ(entries[0].author, "Ana"_q);
    EXPECT_EQ(lastRequest(), "GET projects/p7/changes");
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, R"({"action":"initialValue.changed"})"_q},
                                  {"order"_q, "createdBy"_q},
                                  {"skip"_q, "40"_q},
                                  {"limit"_q, "20"_q}}));
}

TEST_F(AuditTrail, IsCounted)
{
    server.answerJson(200, R"({"count":3})");
    AuditQuery query;
    query.where = QJsonObject{{"subject"_q, "pt1"_q}};
    EXPECT_EQ(service.changeCount("p7"_q, query), 3);
    EXPECT_EQ(lastRequest(), "GET projects/p7/changes");
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, R"({"subject":"pt1"})"_q}, {"only_count"_q, "true"_q}}));
}

TEST_F(AuditTrail, IsCheckedMemberByMember)
{
    expectMembersAreChecked(
        entry, [&](const QJsonObject& document) { answer(QJsonArray{document}); },
        [&] { service.changes("p7"_q, {}, 0, 10); }, {"before"_q, "after"_q});
}
