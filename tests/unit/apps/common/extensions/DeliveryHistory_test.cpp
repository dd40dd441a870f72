#include "extensions/DeliveryHistory.h"

#include "ScriptedExtensions.h"

namespace {

class DeliveryHistory : public ScriptedExtensions
{
protected:
    DeliveryHistory() { announceAll(); }

    const QJsonObject undone =
        jsonObject(R"({"_id":"h1","dataManageId":"m1","lastDate":"2026-03-06T08:00:00.000+01:00",
                       "lastCount":90,"insertCount":40,"correctCount":2,"fileId":"week1.csv","number":3,"sentCount":44,
                       "createdAt":"2026-03-06T09:00:00.000Z","createdBy":"Ana",
                       "updatedAt":"2026-03-06T09:00:01.000Z","updatedBy":"Ben","removed":40,"restored":2,
                       "removedPoints":3,"alarms":["a1"]})");
};

} // namespace

TEST_F(DeliveryHistory, SaysWhatWasTakenBack)
{
    answer(undone);
    const UndoneDelivery result = service.undoDelivery("h1"_q);
    EXPECT_EQ(result.delivery.id, "h1"_q);
    EXPECT_EQ(result.delivery.lastDate, QDateTime(QDate(2026, 3, 6), QTime(7, 0), Qt::UTC));
    EXPECT_EQ(result.delivery.lastCount, 90);
    EXPECT_EQ(result.delivery.insertCount, 40);
    EXPECT_EQ(result.delivery.fileId, "week1.csv"_q);
    EXPECT_EQ(result.delivery.createdAt, QDateTime(QDate(2026, 3, 6), QTime(9, 0), Qt::UTC));
    EXPECT_EQ(result.delivery.createdBy, "Ana"_q);
    EXPECT_EQ(result.delivery.updatedAt, QDateTime(QDate(2026, 3, 6), QTime(9, 0, 1), Qt::UTC));
    EXPECT_EQ(result.delivery.updatedBy, "Ben"_q);
    EXPECT_EQ(result.delivery.correctCount, 2);
    EXPECT_EQ(result.delivery.dataManageId, "m1"_q);
    EXPECT_EQ(result.delivery.number, 3);
    EXPECT_EQ(result.delivery.sentCount, 44);
    EXPECT_EQ(result.removed, 40);
    EXPECT_EQ(result.restored, 2);
    EXPECT_EQ(result.removedPoints, 3);
    EXPECT_EQ(result.alarms, QStringList{"a1"_q});
    EXPECT_EQ(lastRequest(), "DELETE historyDatas/h1");
}

TEST_F(DeliveryHistory, IsReadPageByPageWithIdentifiers)
{
    answer(QJsonArray{undone});
    const QList<DeliveryEntry> deliveries = service.deliveries("m1"_q, 20, 10);
    ASSERT_EQ(deliveries.size(), 1);
    EXPECT_EQ(deliveries[0].id, "h1"_q);
    EXPECT_EQ(deliveries[0].number, 3);
    EXPECT_EQ(lastRequest(), "GET dataManages/m1/historyDatas");
    EXPECT_EQ(lastQuery(), (Query{{"where"_q, "{}"_q}, {"skip"_q, "20"_q}, {"limit"_q, "10"_q}}));
}

TEST_F(DeliveryHistory, OlderThanTheLatestEntryIsRefusedInTheServicesWords)
{
    server.answerJson(409, R"({"message":"a later delivery stands on this one","status":409})");
    const auto undo = [&] {
        service.undoDelivery("h1"_q);
    };
    EXPECT_EQ(messageOf(undo), "cannot undo delivery h1: a later delivery stands on this one");
    server.answerJson(409, R"({"message":"a later delivery stands on this one","status":409})");
    EXPECT_EQ(failureOf(undo), FailureKind::Refused);
}

TEST_F(DeliveryHistory, EntryWhoseAnswerIsLostMayBeTakenBack)
{
    server.answerRaw({ScriptServer::Step::reset()});
    EXPECT_THAT(messageOf([&] { service.undoDelivery("h1"_q); }),
                testing::HasSubstr("it may have been carried out all the same"));
}

TEST_F(DeliveryHistory, EntryWhoseAnswerMakesNoSenseIsTakenBack)
{
    const auto undo = [&] {
        service.undoDelivery("h1"_q);
    };
    QJsonObject document = undone;
    document.remove("restored"_q);
    answer(document);
    EXPECT_EQ(messageOf(undo),
              "cannot undo delivery h1: in the answer \"restored\" is missing; the service has "
              "carried it out all the same");
    server.answerJson(200, "[]");
    EXPECT_EQ(messageOf(undo),
              "cannot undo delivery h1: the answer is not an object; the service has carried "
              "it out all the same");
    server.answerRaw({ScriptServer::Step::bytes(ScriptServer::httpAnswer(204, {}, {}))});
    EXPECT_EQ(messageOf(undo),
              "cannot undo delivery h1: the answer is not an object; the service has carried "
              "it out all the same");
}

TEST_F(DeliveryHistory, IsCheckedMemberByMember)
{
    expectMembersAreChecked(
        undone, [&](const QJsonObject& document) { answer(document); },
        [&] { service.undoDelivery("h1"_q); });
}
