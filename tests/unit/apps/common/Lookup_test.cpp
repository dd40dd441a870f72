#include "Lookup.h"

#include "ScriptedSession.h"

namespace {

class Lookup : public ScriptedSession
{
};

} // namespace

TEST_F(Lookup, FindsAMonitoringByNameOrIdentifier)
{
    server.answerJson(200, R"([{"_id":"0123456789abcdef01234567","name":"VH","category":"Slope"}])");
    EXPECT_EQ(lookup::monitoring(session, "VH"_q).id, "0123456789abcdef01234567"_q);
    server.answerJson(200, R"({"_id":"0123456789abcdef01234567","name":"VH","category":"Slope"})");
    EXPECT_EQ(lookup::monitoring(session, "0123456789ABCDEF01234567"_q).name, "VH"_q);
}

TEST_F(Lookup, SaysWhyAMonitoringIsNotFound)
{
    const auto find = [&](const char* text) {
        return failureOf([&] { lookup::monitoring(session, QString::fromUtf8(text)); });
    };
    server.answerJson(200, "[]");
    EXPECT_EQ(find("VH"), FailureKind::NotFound);
    server.answerJson(200, R"([{"_id":"a","name":"VH"},{"_id":"b","name":"VH"}])");
    EXPECT_EQ(find("VH"), FailureKind::BadInput);
    server.answerJson(200, R"({"_id":"ffffffffffffffffffffffff","name":"another"})");
    EXPECT_EQ(find("0123456789abcdef01234567"), FailureKind::BadAnswer);
    server.answerJson(404, R"({"message":"no such monitoring","status":404})");
    EXPECT_EQ(find("0123456789abcdef01234567"), FailureKind::NotFound);
    server.answerJson(403, R"({"message":"no","status":403})");
    EXPECT_EQ(find("VH"), FailureKind::NotPermitted);
    server.answerJson(503, R"({"message":"busy","status":503})");
    EXPECT_EQ(find("VH"), FailureKind::Refused);
    server.answerRaw({ScriptServer::Step::reset()});
    server.answerRaw({ScriptServer::Step::reset()});
    EXPECT_EQ(find("VH"), FailureKind::NoConnection);
}

TEST_F(Lookup, FindsASubCategoryByIdentifierNameOrAlias)
{
    RKMonitoringSubCategory moisture;
    moisture.id = "s1"_q;
    moisture.name = "Soil moisture"_q;
    moisture.alias = "SM"_q;
    RKMonitoringSubCategory rain;
    rain.id = "s2"_q;
    rain.name = "Rain"_q;
    rain.alias = "SM"_q;
    for (const char* text : {"s1", "Soil moisture", "SM"}) {
        EXPECT_EQ(
            lookup::subCategoryAmong(QList<RKMonitoringSubCategory>{moisture}, QString::fromUtf8(text))->id,
            "s1"_q)
            << text;
    }
    EXPECT_FALSE(lookup::subCategoryAmong(QList<RKMonitoringSubCategory>{moisture}, "sm"_q));
    EXPECT_EQ(failureOf([&] {
                  lookup::subCategoryAmong(QList<RKMonitoringSubCategory>{moisture, rain}, "SM"_q);
              }),
              FailureKind::BadInput);
}

TEST_F(Lookup, ReadsNoNameForNoIdentifier)
{
    EXPECT_EQ(lookup::monitoringName(session, QString()), QString());
    EXPECT_EQ(lookup::subCategoryName(session, QString()), QString());
    EXPECT_EQ(server.requestCount(), 0);
}
