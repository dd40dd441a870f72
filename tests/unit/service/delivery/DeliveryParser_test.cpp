#include "delivery/DeliveryParser.h"

#include "delivery/DeliveryRefusal.h"
#include "unit/service/delivery/DeliveryText.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace monitorservice {
namespace {

using test::delivery;
using test::point;
using test::sample;
using ::testing::HasSubstr;

const std::string noon = "2015-12-21T12:00:00.000Z";

std::string refusal(const std::string& body)
{
    try {
        parseDelivery(body);
        return "taken";
    } catch (const DeliveryRefusal& error) {
        return error.what();
    }
}

TEST(DeliveryParser, EverythingSentIsRead)
{
    const Delivery read = parseDelivery(
        R"([{"projectId":"p1","cellId":"c1","name":"W1","alias":"north","subCategoryId":"s1","dataType":3,)"
        R"("initialValue":0.1,"offsetDirection":"down","depth":"2.5","insertCount":7,"lastCount":8,)"
        R"("fileId":"f1","lastDate":"2015-12-21T06:30:00-08:00",)"
        R"("links":[{"type":"model","rId":"m1"},{"type":"plan"}],)"
        R"("data":[{"count":5,"time":"2015-12-21T06:30:00.123-08:00","value":-1.5e-3,"timeFlag":"A"}]}])");
    ASSERT_EQ(read.points.size(), 1U);
    const DeliveredPoint& found = read.points[0];
    EXPECT_EQ(found.project, "p1");
    EXPECT_EQ(found.cell, "c1");
    EXPECT_EQ(found.subCategory, "s1");
    EXPECT_EQ(found.name, "W1");
    EXPECT_EQ(found.depth, "2.5");
    EXPECT_EQ(found.alias, "north");
    EXPECT_EQ(found.dataType, 3);
    EXPECT_EQ(found.initialValue, 0.1);
    EXPECT_EQ(found.offsetDirection, "down");
    EXPECT_EQ(found.fileId, "f1");
    EXPECT_EQ(found.links, R"([{"type":"model","rId":"m1"}])");
    ASSERT_EQ(found.samples.size(), 1U);
    EXPECT_EQ(found.samples[0].time, 1450708200123);
    EXPECT_EQ(found.samples[0].offsetMinutes, -480);
    EXPECT_EQ(found.samples[0].count, 5);
    EXPECT_EQ(found.samples[0].value, -1.5e-3);
    EXPECT_EQ(read.timeFlags.at(found.samples[0].timeFlag), "A");
}

TEST(DeliveryParser, EmptyNullAndZeroAreAsGoodAsNotSent)
{
    const Delivery read = parseDelivery(
        R"([{"projectId":null,"cellId":"c1","name":"W1","alias":"","subCategoryId":"s1","dataType":0,)"
        R"("initialValue":0,"offsetDirection":"","depth":"","insertCount":0,"lastCount":0,"fileId":null,)"
        R"("lastDate":"","links":[],"data":[]}])");
    const DeliveredPoint& found = read.points.at(0);
    EXPECT_FALSE(found.project || found.alias || found.dataType || found.initialValue ||
                 found.offsetDirection || found.fileId || found.links);
    EXPECT_EQ(found.depth, "");
    EXPECT_TRUE(found.samples.empty());
}

TEST(DeliveryParser, NumbersOfAnyLengthAreReadExactly)
{
    const std::vector<std::pair<std::string, double>> numbers{
        {"0.1234567890123456789", 0.1234567890123456789},
        {"0.12345678901234567890", 0.1234567890123456789},
        {"0.5400000000000000000000", 0.54},
        {"-0.540000000000000000000000000000001", -0.54},
        {"0.54000000000000000000000e3", 540.0},
        {"12.5000000000000000000000000", 12.5},
        {"100000000000000000000000", 1e23},
        {"0.000000000000000000000000025", 2.5e-26},
        {"0.5400000000000000000000e-400", 0.0},
        {"0.1000000000000000055511151231257827021181583404541015625", 0.1},
        {"0.0                          ", 0.0},
    };
    for (const auto& [text, number] : numbers) {
        const Delivery read =
            parseDelivery(delivery({point("W1", {sample(noon, 1, text)}, ",\"initialValue\":" + text)}));
        EXPECT_EQ(read.points.at(0).samples.at(0).value, number) << text;
        EXPECT_EQ(read.points[0].initialValue.value_or(0.0), number) << text;
    }
}

TEST(DeliveryParser, EmptyDeliveriesHaveNoPoints)
{
    for (const char* const body : {"[]", " [ ] ", "[[]]", "[[],[]]"}) {
        EXPECT_TRUE(parseDelivery(body).points.empty()) << body;
    }
    EXPECT_TRUE(isNestedDelivery("\n[ [ ] ]"));
    EXPECT_FALSE(isNestedDelivery("[{},[]]"));
    EXPECT_FALSE(isNestedDelivery("[]"));
    EXPECT_FALSE(isNestedDelivery(""));
}

TEST(DeliveryParser, SamplesComeOutInOrderAndOnce)
{
    const Delivery read = parseDelivery(delivery(
        {point("W1", {sample("2015-12-21T13:00:00Z", 1, "3"), sample(noon, 2, "2"), sample(noon, 1, "1")}),
         point("W2", {}),
         point("W1", {sample("2015-12-21T13:00:00+01:00", 2, "2"), sample(noon, 1, "1.0")})}));
    ASSERT_EQ(read.points.size(), 2U);
    const DeliveredPoint& first = read.points[0];
    ASSERT_EQ(first.samples.size(), 3U);
    EXPECT_EQ(first.samples[0].value, 1.0);
    EXPECT_EQ(first.samples[1].value, 2.0);
    EXPECT_EQ(first.samples[2].value, 3.0);
    EXPECT_EQ(first.samples[1].offsetMinutes, DeliveredSample::utc);
    EXPECT_EQ(first.rows, 5U);
}

TEST(DeliveryParser, SameNameAtAnotherDepthIsAnotherPoint)
{
    const Delivery read = parseDelivery(delivery({point("W1", {sample(noon, 1, "1")}, R"(,"depth":"1")"),
                                                  point("W1", {sample(noon, 1, "2")}, R"(,"depth":"2")")}));
    EXPECT_EQ(read.points.size(), 2U);
}

TEST(DeliveryParser, PiecesOfALargeElementMakeOnePoint)
{
    std::vector<std::string> samples;
    for (int count = 0; count < 20'000; ++count) {
        samples.push_back(
            sample(noon, count, std::to_string(count) + ".25", count % 2 == 0 ? "A" : "B\\u00e4"));
    }
    const Delivery read = parseDelivery(delivery({point("W1", samples)}));
    ASSERT_EQ(read.points.at(0).samples.size(), 20'000U);
    for (int count = 0; count < 20'000; ++count) {
        const DeliveredSample& found = read.points[0].samples[static_cast<std::size_t>(count)];
        ASSERT_EQ(found.count, count);
        ASSERT_EQ(found.value, count + 0.25);
        ASSERT_EQ(read.timeFlags[found.timeFlag], count % 2 == 0 ? "A" : "B\u00e4");
    }
    samples[15'000] = sample("yesterday", 1, "1");
    EXPECT_THAT(refusal(delivery({point("W1", samples)})),
                HasSubstr(R"("[0].data[15000].time" must be a time)"));
}

struct Refused
{
    std::string body;
    std::string message;
};

TEST(DeliveryParser, RefusalNamesElementMemberAndReason)
{
    const std::string good = point("W1", {});
    const std::string begin = R"([{"cellId":"c1","subCategoryId":"s1","name":"W1")";
    const auto withSample = [](const std::string& text) {
        return delivery({point("W1", {text})});
    };
    const std::vector<Refused> cases{
        {"", "the body is not a JSON array: an array is expected"},
        {"{}", "the body is not a JSON array"},
        {"[" + good, "the body is not a JSON array: the array does not end"},
        {"[" + good + ",]", "the body is not a JSON array: an element is expected"},
        {"[" + good + "] " + good, "something follows the end"},
        {"[1]", R"("[0]" must be an object)"},
        {"[" + good + ",null]", R"("[1]" must be an object)"},
        {"[" + good + ",[]]", R"("[1]" must be an object)"},
        {"[[]," + good + "]", R"("[1]" must be an array)"},
        {"[[" + good + ",5]]", R"("[0][1]" must be an object)"},
        {R"([{"subCategoryId":"s1","name":"W1"}])", R"("[0].cellId" is missing)"},
        {R"([{"cellId":"c1","name":"W1"}])", R"("[0].subCategoryId" is missing)"},
        {R"([{"cellId":"c1","subCategoryId":"s1"}])", R"("[0].name" is missing)"},
        {R"([{"cellId":"c1","subCategoryId":"s1","name":""}])", R"("[0].name" must not be empty)"},
        {R"([{"cellId":7,"subCategoryId":"s1","name":"W1"}])", R"("[0].cellId" must be a text)"},
        {begin + R"(,"name":"W2"}])", R"("[0].name" is given twice)"},
        {begin + R"(,"n\u0061me":"W2"}])", R"("[0].name" is given twice)"},
        {begin + R"(,"data":[],"data":[]}])", R"("[0].data" is given twice)"},
        {begin + R"(,"_id":"x"}])", R"("[0]._id" is not a member that can be delivered)"},
        {begin + ",\"" + std::string(99, 'x') + "ä\":1}]",
         "\"[0]." + std::string(99, 'x') + "…\" is not a member that can be delivered"},
        {begin + R"(,"depth":2.5}])", R"("[0].depth" must be a text)"},
        {begin + R"(,"depth":null}])", R"("[0].depth" must be a text)"},
        {begin + R"(,"projectId":7}])", R"("[0].projectId" must be a text)"},
        {begin + R"(,"fileId":nope}])", R"("[0].fileId" must be a text or null)"},
        {begin + R"(,"dataType":2147483648}])", R"("[0].dataType" must be a whole number from -2147483648)"},
        {begin + R"(,"dataType":1.5}])", R"("[0].dataType" must be a whole number)"},
        {begin + R"(,"insertCount":"1"}])", R"("[0].insertCount" must be a whole number)"},
        {begin + R"(,"lastCount":-2147483649}])", R"("[0].lastCount" must be a whole number)"},
        {begin + R"(,"lastDate":"soon"}])", R"("[0].lastDate" must be a time or empty)"},
        {begin + R"(,"initialValue":NaN}])", R"("[0].initialValue" must be a finite number)"},
        {begin + R"(,"initialValue":1e999}])", R"("[0].initialValue" must be a finite number)"},
        {begin + R"(,"initialValue":"1"}])", R"("[0].initialValue" must be a finite number)"},
        {begin + R"(,"alias":"\u0000"}])", R"("[0].alias" holds U+0000)"},
        {begin + R"(,"alias":"\ud800"}])", R"("[0].alias")"},
        {begin + ",\"alias\":\"\xff\"}]", R"("[0]" is not valid JSON)"},
        {begin + R"(,"alias":")" + std::string(4097, 'x') + R"("}])",
         R"("[0].alias" is longer than 4096 bytes)"},
        {begin + R"(,"links":{}}])", R"("[0].links" must be an array)"},
        {begin + R"(,"links":["m1"]}])", R"("[0].links[0]" must be an object)"},
        {begin + R"(,"links":[{"rId":"m1"}]}])", R"("[0].links[0].type" is missing)"},
        {begin + R"(,"links":[{"type":"a","x":1}]}])", R"("[0].links[0].x" is not a member)"},
        {begin + R"(,"data":{}}])", R"("[0].data" must be an array)"},
        {begin + R"(,"data":[}}])", R"("[0].data" is not a JSON array: an element is expected)"},
        {begin + R"(,"data":[1,]}])", R"("[0].data" is not a JSON array)"},
        {begin + R"(,}])", R"("[0]" is not valid JSON)"},
        {withSample("5"), R"("[0].data[0]" must be an object)"},
        {withSample(R"({"time":")" + noon + R"(","value":1})"), R"("[0].data[0].count" is missing)"},
        {withSample(R"({"count":1,"value":1})"), R"("[0].data[0].time" is missing)"},
        {withSample(R"({"count":1,"time":")" + noon + R"("})"), R"("[0].data[0].value" is missing)"},
        {withSample(sample(noon, 1, "NaN")), R"("[0].data[0].value" must be a finite number)"},
        {withSample(sample(noon, 1, "Infinity")), R"("[0].data[0].value" must be a finite number)"},
        {withSample(sample(noon, 1, "-Infinity")), R"("[0].data[0].value" must be a finite number)"},
        {withSample(sample(noon, 1, "1e309")), R"("[0].data[0].value" must be a finite number)"},
        {withSample(sample(noon, 1, "0.5400000000000000000000e309")),
         R"("[0].data[0].value" must be a finite number)"},
        {withSample(sample(noon, 1, "-1000000000000000000000e300")),
         R"("[0].data[0].value" must be a finite number)"},
        {withSample(sample(noon, 1, "null")), R"("[0].data[0].value" must be a finite number)"},
        {withSample(sample(noon, 1, "\"1\"")), R"("[0].data[0].value" must be a finite number)"},
        {withSample(sample(noon, 1, "01")), R"("[0].data[0].value" must be a finite number)"},
        {withSample(sample(noon, 1, "1,5")), R"("[0])"},
        {withSample(sample("2015-12-21T12:00:00", 1, "1")), R"("[0].data[0].time" must be a time)"},
        {withSample(sample("2015-02-29T12:00:00Z", 1, "1")), R"("[0].data[0].time" must be a time)"},
        {withSample(sample("", 1, "1")), R"("[0].data[0].time" must be a time)"},
        {withSample(R"({"count":1,"time":5,"value":1})"), R"("[0].data[0].time" must be a text)"},
        {withSample(R"({"count":2147483648,"time":")" + noon + R"(","value":1})"),
         R"("[0].data[0].count" must be a whole number)"},
        {withSample(R"({"count":1,"count":1,"time":")" + noon + R"(","value":1})"),
         R"("[0].data[0].count" is given twice)"},
        {withSample(R"({"count":1,"unit":"mm","time":")" + noon + R"(","value":1})"),
         R"("[0].data[0].unit" is not a member)"},
        {"[[],[" + good + "," + point("W2", {sample(noon, 1, "1"), sample(noon, 2, "x")}) + "]]",
         R"("[1][1].data[1].value" must be a finite number)"},
        {delivery({point("W1", {sample(noon, 1, "1"), sample(noon, 2, "2")}),
                   point("W1", {sample(noon, 2, "3")})}),
         R"("[1].data[0]" contradicts "[0].data[1]": same point, time and count)"},
        {delivery({point("W1", {sample(noon, 1, "1", "A"), sample(noon, 1, "1", "B")})}),
         R"("[0].data[1]" contradicts "[0].data[0]")"},
    };
    for (const Refused& one : cases) {
        EXPECT_THAT(refusal(one.body), HasSubstr(one.message)) << one.body.substr(0, 300);
    }
}

TEST(DeliveryParser, WhatHasNoSamplesMayNotBeHuge)
{
    std::string links;
    for (int i = 0; i < 300; ++i) {
        links += (i == 0 ? "" : ",") + (R"({"type":")" + std::string(4000, 'x') + R"(","rId":"y"})");
    }
    EXPECT_THAT(refusal(delivery({point("W1", {}, R"(,"links":[)" + links + "]")})),
                HasSubstr(R"("[0]" is larger than 1048576 bytes)"));
    std::string many;
    for (int i = 0; i < 1001; ++i) {
        many += (i == 0 ? "" : ",") + std::string(R"({"type":"x","rId":"y"})");
    }
    EXPECT_THAT(refusal(delivery({point("W1", {}, R"(,"links":[)" + many + "]")})),
                HasSubstr(R"("[0].links" has more than 1000 elements)"));
}

TEST(DeliveryParser, DescriptionsTogetherAreBounded)
{
    std::string body = "[" + point("W1", {});
    for (int i = 0; i < 5'000; ++i) {
        body += "," + point("W1", {}, R"(,"alias":")" + std::string(4'000, 'x') + "\"");
    }
    EXPECT_THAT(refusal(body + "]"), HasSubstr("more than 16777216 bytes besides their samples"));
}

TEST(DeliveryParser, NumberOfElementsIsBounded)
{
    std::string body = "[" + point("W1", {});
    for (int i = 1; i < 50'000; ++i) {
        body += "," + point("W1", {});
    }
    EXPECT_EQ(refusal(body + "]"), "taken");
    EXPECT_THAT(refusal(body + "," + point("W1", {}) + "]"), HasSubstr("more than 50000 elements"));
}

} // namespace
} // namespace monitorservice
