#include "domain/Alarm.h"
#include "domain/AlarmDepth.h"
#include "domain/AlarmDetail.h"
#include "domain/Cell.h"
#include "domain/Change.h"
#include "domain/DataManage.h"
#include "domain/Group.h"
#include "domain/History.h"
#include "domain/PointLocation.h"
#include "domain/SubCategory.h"

#include <gtest/gtest.h>
#include <simdjson.h>

#include <string>
#include <vector>

namespace monitorservice {
namespace {

const std::string stampMembers = R"("createdAt":"2026-01-01T00:00:00.000Z","createdBy":"Ada",)"
                                 R"("updatedAt":"2026-01-02T00:00:00.000Z","updatedBy":"Ben")";

// A document of each kind as it is stored, no two members alike.
template <typename Document>
std::string example();

template <>
std::string example<Cell>()
{
    return R"({"_id":"c1","projectId":"p1","name":"Pit \"K1\"","category":"pit","alarmTo":["Ann","Bob"],)"
           R"("links":[{"type":"model","rId":"m1"},{"type":"plan","rId":"n2"}],)" +
           stampMembers + "}";
}

template <>
std::string example<SubCategory>()
{
    return R"({"_id":"s1","projectId":"p1","name":"Level","category":"pit","alias":"L","kind":"water level",)"
           R"("unit":"mm","decimals":2})";
}

template <>
std::string example<Group>()
{
    return R"({"_id":"g1","projectId":"p1","cellId":"c1","subCategoryId":"s1","groupName":"G",)"
           R"("groupPoint":["W1","W2"],"dayVarType":1,"dayVarValue":0.25,"totalVar":1e+19,"viewPortId":"v1",)"
           R"("dayVarSide":"rising","totalVarSide":"falling","warningLevel":75,)" +
           stampMembers + "}";
}

template <>
std::string example<PointLocation>()
{
    return R"({"_id":"l1","projectId":"p1","cellId":"c1","subCategoryId":"s1","alias":"a","name":"W1",)"
           R"("dataType":2,"initialValue":-0.5,"hasInitialValue":true,"offsetDirection":"down","depth":"2.5","insertCount":5000000000,)"
           R"("lastCount":7,"lastDate":"2015-12-21T06:30:00.000-08:00","fileId":"f1",)"
           R"("links":[{"type":"model","rId":"m1"}],)" +
           stampMembers + "}";
}

template <>
std::string example<DataManage>()
{
    return R"({"_id":"d1","projectId":"p1","cellId":"c1","subCategoryId":"s1",)"
           R"("lastDate":"2015-12-21T06:30:00.000-08:00","lastCount":672,"sampleCount":1344,"deliveries":2,"fileId":"f1",)" +
           stampMembers + "}";
}

template <>
std::string example<History>()
{
    return R"({"_id":"h1","dataManageId":"d1","number":2,"lastDate":"2015-12-21T06:30:00.000-08:00",)"
           R"("lastCount":1344,"sentCount":700,"insertCount":672,"correctCount":5,"fileId":"f1",)" +
           stampMembers + "}";
}

template <>
std::string example<Alarm>()
{
    return R"({"_id":"a1","projectId":"p1","cellId":"c1","cellName":"Pit","subCategoryId":"s1",)"
           R"("alarmTime":"2026-01-03T00:00:00.000Z","alarmDay":"2026-01-02","pointCounts":3,)" +
           stampMembers + "}";
}

template <>
std::string example<AlarmDetail>()
{
    return R"({"_id":"e1","alarmManId":"a1","pointName":"W1","totalVar":"-0.6","dayVar":"",)"
           R"("totalBeyound":0.1,"dayBeyound":0,"isThreeVar":true,"isInclinometer":false,"monitorCount":4,)"
           R"("monitorTime":"2015-12-21T06:30:00.000-08:00","depth":"2.5",)"
           R"("alarmTime":"2026-01-03T00:00:00.000Z","value":9.4,"reference":10,"unit":"mm","groupId":"g1",)"
           R"("groupName":"Corner","totalLimit":0.5,"dayLimit":2,"totalVarSide":"falling","dayVarSide":"both",)"
           R"("dayVarType":1,)" +
           stampMembers + "}";
}

template <>
std::string example<Change>()
{
    return R"({"_id":"x1","projectId":"p1","category":"pit","cellId":"c1","subCategoryId":"s1",)"
           R"("action":"alarm.withdrawn","subject":"e1","name":"W1","before":{"totalVar":"-0.6"},"after":[7],)"
           R"("delivery":"h1","createdAt":"2026-01-01T00:00:00.000Z","createdBy":"Ada"})";
}

template <>
std::string example<AlarmDepth>()
{
    return R"({"_id":"t1","detailId":"e1","pointName":"W1","monitorCount":4,)"
           R"("monitorTime":"2015-12-21T06:30:00.000-08:00","totalValue":-0.6,"depth":"2.5"})";
}

template <typename Document>
bool isKeptAsItStands(std::string_view member)
{
    return (std::is_same_v<Document, PointLocation> && member == "links") ||
           (std::is_same_v<Document, Change> && (member == "before" || member == "after"));
}

template <typename Document>
class Documents : public ::testing::Test
{
};

using Kinds = ::testing::Types<Cell, SubCategory, Group, PointLocation, DataManage, History, Alarm,
                               AlarmDetail, AlarmDepth, Change>;
TYPED_TEST_SUITE(Documents, Kinds);

TYPED_TEST(Documents, AreWrittenAsTheyWereRead)
{
    const std::string document = example<TypeParam>();
    EXPECT_EQ(toDocument(fromDocument<TypeParam>(document)), document);
}

TYPED_TEST(Documents, WithoutAnyOneOfTheirMembersAreDamaged)
{
    simdjson::dom::parser parser;
    const simdjson::dom::object members = parser.parse(example<TypeParam>());
    for (const auto missing : members) {
        std::string others = "{";
        for (const auto member : members) {
            if (member.key != missing.key) {
                others += (others.size() > 1 ? ",\"" : "\"") + std::string(member.key) +
                          "\":" + simdjson::minify(member.value);
            }
        }
        try {
            fromDocument<TypeParam>(others + "}");
            ADD_FAILURE() << missing.key << " is not missed";
        } catch (const DamagedDocument& error) {
            const std::string message = error.what();
            EXPECT_EQ(message.rfind("a stored ", 0), 0U) << message;
            EXPECT_NE(message.find("\"" + std::string(missing.key) + "\""), std::string::npos) << message;
        }
    }
}

TYPED_TEST(Documents, WithAnyMemberOfAnotherTypeAreDamaged)
{
    simdjson::dom::parser parser;
    const simdjson::dom::object members = parser.parse(example<TypeParam>());
    for (const auto wrong : members) {
        if (isKeptAsItStands<TypeParam>(wrong.key)) {
            continue;
        }
        std::string document = "{";
        for (const auto member : members) {
            document += (document.size() > 1 ? ",\"" : "\"") + std::string(member.key) + "\":" +
                        (member.key == wrong.key ? std::string("{}") : simdjson::minify(member.value));
        }
        EXPECT_THROW(fromDocument<TypeParam>(document + "}"), DamagedDocument) << wrong.key;
    }
}

TYPED_TEST(Documents, WhatIsNoDocumentIsDamaged)
{
    for (const char* const text : {"", "nonsense", "[]", "{}", "7", "{\"_id\":\"x\""}) {
        EXPECT_THROW(fromDocument<TypeParam>(text), DamagedDocument) << text;
    }
}

TEST(Document, IsOpenedWhereMembersCanFollow)
{
    EXPECT_EQ(openedDocument(R"({"a":"}"})"), R"({"a":"}")");
    EXPECT_THROW(openedDocument(""), DamagedDocument);
    EXPECT_THROW(openedDocument(R"({"a":1)"), DamagedDocument);
}

} // namespace
} // namespace monitorservice
