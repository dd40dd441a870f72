#include "points/PointDirectory.h"

#include "ScriptedSession.h"
#include "points/PointSelection.h"

#include <QUrl>

namespace {

const QByteArray about = R"({"name":"monitor-service","version":"1","extensions":["pointSummaries"],
                             "owner":"a","rights":[]})";
const QByteArray nothing = R"({"message":"nothing here","status":404})";

class PointDirectoryTest : public ScriptedSession
{
protected:
    static QByteArray summary(const char* id, const char* subCategory, const char* more)
    {
        return QByteArray(R"({"_id":")") + id + R"(","cellId":"c","subCategoryId":")" + subCategory +
               R"(","name":"P1","depth":"","alias":"","dataType":0,"offsetDirection":"","insertCount":1,
               "lastDate":"2026-03-01T00:00:00Z","category":"Slope","data":[],)" +
               more + "}";
    }

    PointDirectory directory(const QStringList& names = {}) { return {session, monitoring(), names}; }

    // What was asked for, without percent signs.
    QString lastRequest() const { return QUrl::fromPercentEncoding(server.requests().last().target); }
};

} // namespace

TEST_F(PointDirectoryTest, TellsWhatTheServiceTells)
{
    server.answerJson(200, about);
    server.answerJson(
        200, "[" + summary("a", "s1", R"("reference":0.25,"initialValue":0.25,"hasInitialValue":true)") +
                 "," + summary("b", "s2", R"("reference":7,"initialValue":0,"hasInitialValue":false)") + "," +
                 summary("c", "s2", R"("reference":null,"initialValue":0,"hasInitialValue":false)") + "]");
    server.answerJson(200, R"({"count":3})");
    PointDirectory told = directory({"P1"_q});
    EXPECT_TRUE(told.isTold());
    EXPECT_EQ(told.subCategoryOf("a"_q), "s1"_q);
    EXPECT_EQ(told.subCategoryOf("b"_q), "s2"_q);
    EXPECT_EQ(told.subCategoryOf("unknown"_q), QString());
    EXPECT_EQ(told.referenceOf("a"_q)->value, 0.25);
    EXPECT_FALSE(told.referenceOf("a"_q)->isGuessed);
    EXPECT_EQ(told.toldReferenceOf("b"_q)->value, 7.0);
    EXPECT_FALSE(told.referenceOf("c"_q));
    EXPECT_EQ(told.initialValueOf("a"_q), 0.25);
    EXPECT_FALSE(told.initialValueOf("b"_q));
    EXPECT_TRUE(lastRequest().contains(R"({"cellId":"0123456789abcdef01234567","name":{"$in":["P1"]}})"_q))
        << lastRequest().toStdString();
}

TEST_F(PointDirectoryTest, AsksForAllPointsWhenTheNamesAreTooMany)
{
    QStringList names;
    for (int i = 0; i < 500; ++i) {
        names.append("point %1"_q.arg(i));
    }
    server.answerJson(200, about);
    server.answerJson(200, "[]");
    server.answerJson(200, R"({"count":0})");
    directory(names);
    EXPECT_TRUE(lastRequest().contains(R"(where={"cellId":"0123456789abcdef01234567"})"_q))
        << lastRequest().toStdString();
}

TEST_F(PointDirectoryTest, ElsewhereTheOnlySubCategoryWithDataIsThatOfAllPoints)
{
    server.answerJson(404, nothing);
    server.answerJson(200, R"([{"_id":"d1","cellId":"c","subCategoryId":"s1"}])");
    server.answerJson(200, R"({"count":1})");
    const PointDirectory workedOut = directory();
    EXPECT_FALSE(workedOut.isTold());
    EXPECT_EQ(workedOut.subCategoryOf("any"_q), "s1"_q);
    EXPECT_FALSE(workedOut.toldReferenceOf("any"_q));
}

TEST_F(PointDirectoryTest, ElsewhereTheDeliveryThatMadeAPointTellsItsSubCategory)
{
    server.answerJson(404, nothing);
    server.answerJson(200, R"([{"_id":"d1","cellId":"c","subCategoryId":"s1"},
                               {"_id":"d2","cellId":"c","subCategoryId":"s2"}])");
    server.answerJson(200, R"({"count":2})");
    server.answerJson(200, R"([{"_id":"a","name":"P1","createdAt":"2026-03-01T00:00:00Z","data":[]},
                               {"_id":"b","name":"P1","createdAt":"2026-03-02T00:00:00Z","data":[]},
                               {"_id":"c","name":"P1","createdAt":"2026-03-03T00:00:00Z","data":[]}])");
    server.answerJson(200, R"([{"createdAt":"2026-03-01T00:00:00Z"},{"createdAt":"2026-03-03T00:00:00Z"}])");
    server.answerJson(200, R"([{"createdAt":"2026-03-02T00:00:00Z"},{"createdAt":"2026-03-03T00:00:00Z"}])");
    const PointDirectory workedOut = directory();
    EXPECT_EQ(workedOut.subCategoryOf("a"_q), "s1"_q);
    EXPECT_EQ(workedOut.subCategoryOf("b"_q), "s2"_q);
    EXPECT_EQ(workedOut.subCategoryOf("c"_q), QString()); // made when both were delivered to
}

TEST_F(PointDirectoryTest, ElsewhereReferencesAreInitialValuesOrFirstReadings)
{
    const QByteArray samples = R"("data":[{"time":"2026-03-01T00:00:00Z","value":0.25,"count":1},
                                          {"time":"2026-03-02T00:00:00Z","value":0.5,"count":2}])";
    server.answerJson(404, nothing);
    server.answerJson(200, "[]");
    server.answerJson(200, R"({"count":0})");
    server.answerJson(200, R"([{"_id":"a","name":"W1","depth":"20","initialValue":3,)" + samples +
                               R"(},{"_id":"b","name":"W2","initialValue":0,)" + samples +
                               R"(},{"_id":"c","name":"W3","initialValue":0,"data":[]}])");
    PointDirectory workedOut = directory({"W1"_q, "W2"_q, "W3"_q});
    EXPECT_EQ(workedOut.referenceOf("a"_q)->value, 3.0);
    EXPECT_FALSE(workedOut.referenceOf("a"_q)->isGuessed);
    EXPECT_EQ(workedOut.referenceOf("b"_q)->value, 0.25);
    EXPECT_TRUE(workedOut.referenceOf("b"_q)->isGuessed);
    EXPECT_FALSE(workedOut.referenceOf("c"_q));
}

TEST_F(PointDirectoryTest, FailsWithTheRequest)
{
    server.answerJson(200, about);
    server.answerJson(403, R"({"message":"no","status":403})");
    EXPECT_EQ(failureOf([&] { directory(); }), FailureKind::NotPermitted);
}

TEST_F(PointDirectoryTest, ASelectionHoldsThePointsOfItsSubCategories)
{
    server.answerJson(200, about);
    server.answerJson(200, R"([{"_id":"s1","name":"Soil moisture","alias":"SM"},
                               {"_id":"s2","name":"Rainfall","alias":"RF"}])");
    server.answerJson(
        200, "[" + summary("a", "s1", R"("reference":1,"initialValue":0,"hasInitialValue":false)") + "," +
                 summary("b", "s2", R"("reference":1,"initialValue":0,"hasInitialValue":false)") + "]");
    server.answerJson(200, R"({"count":2})");
    const PointSelection selection(session, monitoring(), {}, {"RF"_q});
    EXPECT_FALSE(selection.holds("a"_q, "P1"_q));
    EXPECT_TRUE(selection.holds("b"_q, "P1"_q));
    EXPECT_FALSE(selection.holds("deleted meanwhile"_q, "P1"_q));
    EXPECT_EQ(selection.subCategoryOf("a"_q).name, "Soil moisture"_q);
    EXPECT_EQ(selection.known("s2"_q).alias, "RF"_q);
}

TEST_F(PointDirectoryTest, ASelectionRefusesToGuessASubCategory)
{
    server.answerJson(404, nothing);
    server.answerJson(200, R"([{"_id":"s1","name":"Soil moisture","alias":"SM"},
                               {"_id":"s2","name":"Rainfall","alias":"RF"}])");
    server.answerJson(200, R"([{"_id":"d1","cellId":"c","subCategoryId":"s1"},
                               {"_id":"d2","cellId":"c","subCategoryId":"s2"}])");
    server.answerJson(200, R"({"count":2})");
    server.answerJson(200, R"([{"_id":"a","name":"P1","createdAt":"2026-03-01T00:00:00Z","data":[]}])");
    server.answerJson(200, R"([{"createdAt":"2026-03-01T00:00:00Z"}])");
    server.answerJson(200, R"([{"createdAt":"2026-03-01T00:00:00Z"}])");
    const PointSelection selection(session, monitoring(), {}, {"RF"_q});
    EXPECT_EQ(failureOf([&] { selection.holds("a"_q, "P1"_q); }), FailureKind::Other);
    EXPECT_EQ(failureOf([&] { selection.requiredSubCategoryOf("a"_q, "P1"_q); }), FailureKind::Other);
}

TEST_F(PointDirectoryTest, ASelectionOfAnUnknownSubCategoryIsRefused)
{
    server.answerJson(200, about);
    server.answerJson(200, R"([{"_id":"s1","name":"Soil moisture","alias":"SM"}])");
    server.answerJson(200, "[]");
    server.answerJson(200, R"({"count":0})");
    EXPECT_EQ(failureOf([&] { PointSelection(session, monitoring(), {}, {"XX"_q}); }), FailureKind::NotFound);
}
