#include "ReferenceValues.h"

#include "ScriptedSession.h"

namespace {

class ReferenceValues : public ScriptedSession
{
};

} // namespace

TEST_F(ReferenceValues, AreInitialValuesOrFirstReadings)
{
    const QByteArray samples = R"("data":[{"time":"2026-03-01T00:00:00Z","value":0.25,"count":1},
                                          {"time":"2026-03-02T00:00:00Z","value":0.5,"count":2}])";
    server.answerJson(200, R"([{"_id":"a","name":"W1","depth":"20","initialValue":3,)" + samples +
                               R"(},{"_id":"b","name":"W2","initialValue":0,)" + samples +
                               R"(},{"_id":"c","name":"W3","initialValue":0,"data":[]}])");
    const auto references = readReferenceValues(session, monitoring(), {"W1"_q, "W2"_q, "W3"_q});
    ASSERT_EQ(QStringList(references.keys()), (QStringList{"W1, 20"_q, "W2"_q}));
    EXPECT_EQ(references["W1, 20"_q].value, 3.0);
    EXPECT_FALSE(references["W1, 20"_q].isFirstReading);
    EXPECT_EQ(references["W2"_q].value, 0.25);
    EXPECT_TRUE(references["W2"_q].isFirstReading);
}

TEST_F(ReferenceValues, FailWithTheRequest)
{
    server.answerJson(403, R"({"message":"no","status":403})");
    EXPECT_EQ(failureOf([&] { readReferenceValues(session, monitoring(), {"W1"_q}); }),
              FailureKind::NotPermitted);
}
