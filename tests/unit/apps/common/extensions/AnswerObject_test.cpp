#include "extensions/AnswerObject.h"

#include "Failure.h"
#include "Json.h"
#include "Text.h"

#include <QJsonArray>
#include <QJsonDocument>

#include <gmock/gmock.h>

namespace {

AnswerObject answerOf(const char* json)
{
    return {"list points"_q, jsonObject(json)};
}

template <typename Read>
std::string refusalOf(Read read)
{
    try {
        read();
    } catch (const Failure& failure) {
        EXPECT_EQ(failure.kind(), FailureKind::BadAnswer);
        return failure.message().toStdString();
    }
    return "no failure";
}

std::string refusal(const std::string& member, const std::string& what)
{
    return "cannot list points: in the answer \"" + member + "\" is " + what;
}

} // namespace

TEST(AnswerObject, GivesWhatItHolds)
{
    const AnswerObject object = answerOf(
        R"({"text":"a","empty":"","null":null,"texts":["x",""],"flag":true,"number":-0.5,"whole":3,
            "time":"2015-12-21T06:30:00.000-08:00","objects":[{"text":"inner"}]})");
    EXPECT_EQ(object.text("text"), "a"_q);
    EXPECT_EQ(object.text("empty"), QString());
    EXPECT_EQ(object.identifier("text"), "a"_q);
    EXPECT_EQ(object.textOrNull("text"), "a"_q);
    EXPECT_EQ(object.textOrNull("null"), std::nullopt);
    EXPECT_EQ(object.texts("texts"), (QStringList{"x"_q, QString()}));
    EXPECT_TRUE(object.flag("flag"));
    EXPECT_EQ(object.number("number"), -0.5);
    EXPECT_EQ(object.numberOrNull("number"), -0.5);
    EXPECT_EQ(object.numberOrNull("null"), std::nullopt);
    EXPECT_EQ(object.integer("whole"), 3);
    EXPECT_EQ(object.smallInteger("whole"), 3);
    EXPECT_EQ(object.smallIntegerOrNull("whole"), 3);
    EXPECT_EQ(object.smallIntegerOrNull("null"), std::nullopt);
    EXPECT_EQ(object.time("time").offsetFromUtc(), -8 * 3600);
    EXPECT_EQ(object.time("time"), QDateTime(QDate(2015, 12, 21), QTime(14, 30), Qt::UTC));
    EXPECT_FALSE(object.timeOrEmpty("empty").isValid());
    EXPECT_TRUE(object.timeOrEmpty("time").isValid());
    EXPECT_EQ(object.objects("objects").constFirst().text("text"), "inner"_q);
    EXPECT_TRUE(object.value("null").isNull());
    EXPECT_TRUE(object.has("null"));
    EXPECT_FALSE(object.has("none"));
}

TEST(AnswerObject, NamesAMemberThatIsMissing)
{
    const AnswerObject object = answerOf("{}");
    const std::string expected = refusal("a", "missing");
    EXPECT_EQ(refusalOf([&] { object.text("a"); }), expected);
    EXPECT_EQ(refusalOf([&] { object.textOrNull("a"); }), expected);
    EXPECT_EQ(refusalOf([&] { object.texts("a"); }), expected);
    EXPECT_EQ(refusalOf([&] { object.flag("a"); }), expected);
    EXPECT_EQ(refusalOf([&] { object.numberOrNull("a"); }), expected);
    EXPECT_EQ(refusalOf([&] { object.smallIntegerOrNull("a"); }), expected);
    EXPECT_EQ(refusalOf([&] { object.timeOrEmpty("a"); }), expected);
    EXPECT_EQ(refusalOf([&] { object.objects("a"); }), expected);
    EXPECT_EQ(refusalOf([&] { object.value("a"); }), expected);
}

TEST(AnswerObject, NamesAMemberOfAnotherType)
{
    const AnswerObject object = answerOf(
        R"({"number":1,"text":"1","empty":"","list":["a",2],"half":2.5,"large":3000000000,"huge":1e300})");
    EXPECT_EQ(refusalOf([&] { object.text("number"); }), refusal("number", "not a text"));
    EXPECT_EQ(refusalOf([&] { object.identifier("empty"); }), refusal("empty", "empty"));
    EXPECT_EQ(refusalOf([&] { object.texts("list"); }), refusal("list", "not a list of texts"));
    EXPECT_EQ(refusalOf([&] { object.flag("number"); }), refusal("number", "neither true nor false"));
    EXPECT_EQ(refusalOf([&] { object.number("text"); }), refusal("text", "not a number"));
    EXPECT_EQ(refusalOf([&] { object.integer("half"); }), refusal("half", "not a whole number"));
    EXPECT_EQ(refusalOf([&] { object.integer("huge"); }), refusal("huge", "not a whole number"));
    EXPECT_EQ(object.integer("large"), Q_INT64_C(3000000000));
    EXPECT_EQ(refusalOf([&] { object.smallInteger("large"); }), refusal("large", "too large"));
    EXPECT_EQ(refusalOf([&] { object.time("text"); }), refusal("text", "not a time"));
    EXPECT_EQ(refusalOf([&] { object.time("empty"); }), refusal("empty", "not a time"));
    EXPECT_EQ(refusalOf([&] { object.objects("text"); }), refusal("text", "not a list"));
}

TEST(AnswerObject, SaysWhereInAListTheMemberStands)
{
    const QJsonArray list =
        QJsonDocument::fromJson(R"([{"data":[{"value":1}]},{"data":[{"value":1},{"value":"x"}]},7])").array();
    EXPECT_EQ(refusalOf([&] { objectsOf("list points"_q, list); }), refusal("[2]", "not an object"));
    const AnswerObject second("list points"_q, list.at(1).toObject(), "[1]"_q);
    EXPECT_EQ(refusalOf([&] { second.objects("data").at(1).number("value"); }),
              refusal("[1].data[1].value", "not a number"));
}
