#include "domain/PointLocation.h"

#include <gtest/gtest.h>

namespace monitorservice {
namespace {

PointLocation point()
{
    PointLocation point;
    point.id = "0123456789abcdef01234567";
    point.project = "p1";
    point.cell = "c1";
    point.subCategory = "s1";
    point.alias = "north \"edge\"";
    point.name = "W1";
    point.dataType = -3;
    point.initialValue = 0.1;
    point.offsetDirection = "down";
    point.depth = "2.5";
    point.insertCount = 5'000'000'000;
    point.lastCount = 7;
    point.lastDate = "2015-12-21T06:30:00.000-08:00";
    point.fileId = "f1";
    point.links = R"([{"type":"model","rId":"m1"}])";
    point.stamp = {"2026-01-01T00:00:00.000Z", "Ada", "2026-01-02T00:00:00.000Z", "Bob"};
    return point;
}

TEST(PointLocation, DocumentHoldsEveryMember)
{
    EXPECT_EQ(
        toDocument(point()),
        R"({"_id":"0123456789abcdef01234567","projectId":"p1","cellId":"c1","subCategoryId":"s1",)"
        R"("alias":"north \"edge\"","name":"W1","dataType":-3,"initialValue":0.1,"hasInitialValue":true,)"
        R"("offsetDirection":"down","depth":"2.5","insertCount":5000000000,"lastCount":7,)"
        R"("lastDate":"2015-12-21T06:30:00.000-08:00","fileId":"f1",)"
        R"("links":[{"type":"model","rId":"m1"}],"createdAt":"2026-01-01T00:00:00.000Z",)"
        R"("createdBy":"Ada","updatedAt":"2026-01-02T00:00:00.000Z","updatedBy":"Bob"})");
}

TEST(PointLocation, IsReadBackAsItWasWritten)
{
    const std::string document = toDocument(point());
    EXPECT_EQ(toDocument(fromDocument<PointLocation>(document)), document);
}

TEST(PointLocation, WholeInitialValueIsWrittenWithoutAPoint)
{
    PointLocation whole = point();
    whole.initialValue = 12;
    const std::string document = toDocument(whole);
    EXPECT_NE(document.find(R"("initialValue":12,)"), std::string::npos);
    EXPECT_EQ(fromDocument<PointLocation>(document).initialValue, 12.0);
}

TEST(PointLocation, InitialValueOfZeroIsAnotherThanNone)
{
    PointLocation location = point();
    for (const std::optional<double>& initialValue : {std::optional(0.0), std::optional<double>()}) {
        location.initialValue = initialValue;
        const std::string document = toDocument(location);
        EXPECT_NE(document.find(R"("initialValue":0,)"), std::string::npos);
        EXPECT_EQ(fromDocument<PointLocation>(document).initialValue, initialValue);
        EXPECT_EQ(initialValueIn(document), initialValue);
    }
}

TEST(PointLocation, DamagedDocumentIsAnError)
{
    EXPECT_THROW(fromDocument<PointLocation>("{}"), DamagedDocument);
    EXPECT_THROW(fromDocument<PointLocation>("nonsense"), DamagedDocument);
    EXPECT_THROW(initialValueIn(R"({"initialValue":1})"), DamagedDocument);
}

} // namespace
} // namespace monitorservice
