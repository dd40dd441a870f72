#include "../../support/Text.h"
#include "frame/ProjectIdentifier.h"
#include "frame/RequestFrame.h"

#include <gtest/gtest.h>

namespace {

class RequestUrl : public testing::Test
{
protected:
    RequestUrl()
    {
        RKBaseApi::GetInstance().setBaseApi("http://service.example/"_q);
        GetSoftCache()->setProjectId("p7"_q);
    }
};

TEST_F(RequestUrl, IsBaseAddressServiceAndTemplate)
{
    EXPECT_EQ(rk::resourceUrl("categories"), "http://service.example/monitor-service/categories"_q);
}

TEST_F(RequestUrl, OfAProjectHoldsItsIdentifier)
{
    EXPECT_EQ(rk::projectUrl("projects/%1/cells"),
              "http://service.example/monitor-service/projects/p7/cells"_q);
}

TEST_F(RequestUrl, AsksForTheProjectAnewEveryTime)
{
    EXPECT_TRUE(rk::projectUrl("projects/%1/cells").contains("/p7/"_q));
    GetSoftCache()->setProjectId("p8"_q);
    EXPECT_TRUE(rk::projectUrl("projects/%1/cells").contains("/p8/"_q));
}

TEST_F(RequestUrl, OfNoProjectHasTwoSlashes)
{
    GetSoftCache()->setProjectId(QString());
    EXPECT_EQ(rk::projectUrl("projects/%1/cells"),
              "http://service.example/monitor-service/projects//cells"_q);
}

TEST_F(RequestUrl, PagingNumbersAreDecimalAndAsGiven)
{
    EXPECT_EQ(rk::pagedUrl("skip=%3&limit=%4"_q, 0, 0), "skip=0&limit=0"_q);
    EXPECT_EQ(rk::pagedUrl("skip=%3&limit=%4"_q, -5, 1234567), "skip=-5&limit=1234567"_q);
}

TEST_F(RequestUrl, AWhereTextStandsRaw)
{
    const QString where = "{\"name\":{\"$options\":\"i\",\"$regex\":\"a b&é\"}}"_q;
    EXPECT_EQ(rk::pagedUrl(rk::projectUrl("projects/%1/cells?where=%2&skip=%3&limit=%4").arg(where), 0, 20),
              "http://service.example/monitor-service/projects/p7/cells?where="_q + where +
                  "&skip=0&limit=20"_q);
}

TEST_F(RequestUrl, AMarkerInTheProjectIdentifierIsFilledLikeAnyOther)
{
    GetSoftCache()->setProjectId("x%2y"_q);
    EXPECT_EQ(rk::projectUrl("projects/%1/cells?where=%2").arg("{}"_q),
              "http://service.example/monitor-service/projects/x{}y/cells?where={}"_q);
}

TEST_F(RequestUrl, AMarkerInTheWhereTextIsFilledByAPagingNumber)
{
    const QString url =
        rk::projectUrl("projects/%1/cells?where=%2&skip=%3&limit=%4").arg("{\"name\":\"5%1\"}"_q);
    EXPECT_EQ(
        rk::pagedUrl(url, 40, 20),
        "http://service.example/monitor-service/projects/p7/cells?where={\"name\":\"540\"}&skip=20&limit=%4"_q);
}

TEST(ProjectIdentifier, IsNullInABodyWhenThereIsNoProject)
{
    GetSoftCache()->setProjectId(QString());
    EXPECT_TRUE(rk::projectIdentifierValue().isNull());
    GetSoftCache()->setProjectId("p7"_q);
    EXPECT_EQ(rk::projectIdentifierValue(), QJsonValue("p7"_q));
}

} // namespace
