#include <QJsonDocument>
#include <RKPub.h>

#include <gtest/gtest.h>

namespace {

QJsonObject json(const char* text)
{
    const QJsonDocument document = QJsonDocument::fromJson(text);
    EXPECT_TRUE(document.isObject()) << text;
    return document.object();
}

// What is left of `after`, as compact text.
std::string left(const char* before, const char* after)
{
    const QJsonObject earlier = json(before);
    QJsonObject changed = json(after);
    RKPub::removeCommonJsonValue(earlier, changed);
    EXPECT_EQ(earlier, json(before));
    return QJsonDocument(changed).toJson(QJsonDocument::Compact).toStdString();
}

} // namespace

TEST(JsonDifference, EqualMembersGoAndChangedOnesStay)
{
    EXPECT_EQ(left(R"({"name": "a", "depth": 1, "on": true})", R"({"name": "b", "depth": 1, "on": false})"),
              R"({"name":"b","on":false})");
}

TEST(JsonDifference, EqualObjectsLeaveNothing)
{
    EXPECT_EQ(
        left(R"({"a": 1, "b": [1, {"c": null}], "d": {}})", R"({"d": {}, "b": [1, {"c": null}], "a": 1})"),
        "{}");
    EXPECT_EQ(left("{}", "{}"), "{}");
}

TEST(JsonDifference, NewMembersStayAndMissingOnesAreNotAdded)
{
    EXPECT_EQ(left(R"({"a": 1, "gone": 2})", R"({"a": 1, "new": 3})"), R"({"new":3})");
}

TEST(JsonDifference, NullIsAValueAndNotAnAbsentMember)
{
    EXPECT_EQ(left("{}", R"({"a": null})"), R"({"a":null})");
    EXPECT_EQ(left(R"({"a": null})", R"({"a": null})"), "{}");
    EXPECT_EQ(left(R"({"a": ""})", R"({"a": null})"), R"({"a":null})");
}

TEST(JsonDifference, TypesAreNotMixed)
{
    EXPECT_EQ(left(R"({"a": 1, "b": 0, "c": "true"})", R"({"a": "1", "b": false, "c": true})"),
              R"({"a":"1","b":false,"c":true})");
}

TEST(JsonDifference, NumbersAreEqualByValueHoweverWritten)
{
    EXPECT_EQ(left(R"({"a": 1.0, "b": 1e2, "c": 0.5})", R"({"a": 1, "b": 100, "c": 5e-1})"), "{}");
    EXPECT_EQ(left(R"({"a": 0.1})", R"({"a": 0.10000000000000002})"), R"({"a":0.10000000000000002})");
}

TEST(JsonDifference, NestedValuesStayWholeWhenTheyDifferAnywhere)
{
    EXPECT_EQ(left(R"({"o": {"x": 1, "y": 2}, "l": [1, 2]})", R"({"o": {"x": 1, "y": 3}, "l": [2, 1]})"),
              R"({"l":[2,1],"o":{"x":1,"y":3}})");
}

TEST(JsonDifference, AnObjectComparedWithItselfIsEmptied)
{
    QJsonObject object = json(R"({"a": 1, "b": {"c": 2}})");
    RKPub::removeCommonJsonValue(object, object);
    EXPECT_TRUE(object.isEmpty());
}
