#include "notify/News.h"

#include "AlarmedSite.h"
#include "domain/Document.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace monitorservice {
namespace {

using test::excessOf;
using ::testing::ElementsAre;
using ::testing::IsEmpty;

std::vector<std::string> namesIn(const News& news)
{
    std::vector<std::string> names;
    for (const PointNews& point : news.points) {
        names.push_back(point.point + (point.before ? " again" : " new"));
    }
    return names;
}

struct Case
{
    const char* what;
    AlarmDetail now; ///< of S1; limits 10 and 2
    std::optional<ToldExcess> told;
    bool isNews;
};

TEST(News, NewPointsAndGrownExcessesAreNews)
{
    const std::vector<Case> cases{
        {"never told", excessOf("S1", 0.001), std::nullopt, true},
        {"as told", excessOf("S1", 3), ToldExcess{3, 0}, false},
        {"less than told", excessOf("S1", 2), ToldExcess{3, 0}, false},
        {"grown by less than a tenth of the limit", excessOf("S1", 3.99), ToldExcess{3, 0}, false},
        {"grown by a tenth of the limit", excessOf("S1", 4), ToldExcess{3, 0}, true},
        {"grown by a tenth that binary numbers miss", excessOf("S1", 2.3), ToldExcess{1.3, 0}, true},
        {"grown by more", excessOf("S1", 30), ToldExcess{3, 0}, true},
        {"daily grown by less than a tenth", excessOf("S1", 3, 1.19), ToldExcess{3, 1}, false},
        {"daily grown by a tenth", excessOf("S1", 3, 1.2), ToldExcess{3, 1}, true},
        {"daily new by less than a tenth", excessOf("S1", 3, 0.1), ToldExcess{3, 0}, false},
        {"daily new by a tenth", excessOf("S1", 3, 0.2), ToldExcess{3, 0}, true},
        {"daily gone", excessOf("S1", 3, 0), ToldExcess{3, 1}, false},
        {"total gone, daily grown", excessOf("S1", 0, 1.5), ToldExcess{3, 1}, true},
    };
    for (const Case& one : cases) {
        SCOPED_TRACE(one.what);
        Told told;
        if (one.told) {
            told["S1"] = *one.told;
        }
        EXPECT_EQ(newsOf({one.now}, told).points.size(), one.isNews ? 1U : 0U);
    }
}

TEST(News, SmallGrowthAddsUp)
{
    Told told;
    std::vector<double> toldAt;
    for (int tenths = 10; tenths <= 35; tenths += 5) {
        const double excess = tenths / 10.0;
        const News news = newsOf({excessOf("S1", excess)}, told);
        if (!news.points.empty()) {
            toldAt.push_back(excess);
        }
        told = news.told;
    }
    EXPECT_THAT(toldAt, ElementsAre(1, 2, 3));
}

TEST(News, OnlyWhatIsNewIsToldAndTheRestStaysAsItWasTold)
{
    const Told told{{"S1", {1, 0}}, {"S2", {1, 0}}};
    const News news = newsOf({excessOf("S1", 1.5), excessOf("S2", 5), excessOf("S3", 2)}, told);
    EXPECT_THAT(namesIn(news), ElementsAre("S2 again", "S3 new"));
    EXPECT_EQ(news.pointCount, 3U);
    EXPECT_EQ(news.left, 0U);
    EXPECT_EQ(toText(news.told),
              R"({"S1":{"total":1,"daily":0},"S2":{"total":5,"daily":0},"S3":{"total":2,"daily":0}})");
}

TEST(News, DetailsOfOneNameAreOnePoint)
{
    AlarmDetail total = excessOf("I1", 5);
    total.depth = "2";
    AlarmDetail daily = excessOf("I1", 1, 0.5);
    daily.depth = "4";
    const News news = newsOf({daily, total}, {});
    ASSERT_EQ(news.points.size(), 1U);
    EXPECT_EQ(news.pointCount, 1U);
    EXPECT_EQ(news.points.front().details.size(), 2U);
    EXPECT_EQ(toText(news.told), R"({"I1":{"total":5,"daily":0.5}})");
    EXPECT_THAT(newsOf({daily, total}, news.told).points, IsEmpty());
}

TEST(News, PointThatWasAwayIsNewAgain)
{
    const Told told{{"S1", {1, 0}}, {"S2", {1, 0}}};
    const News away = newsOf({excessOf("S1", 1)}, told);
    EXPECT_THAT(away.points, IsEmpty());
    EXPECT_THAT(namesIn(newsOf({excessOf("S1", 1), excessOf("S2", 1)}, away.told)), ElementsAre("S2 new"));
}

TEST(News, WorstInProportionToItsLimitComesFirst)
{
    AlarmDetail little = excessOf("S1", 5);
    little.totalLimit = 1000;
    EXPECT_THAT(namesIn(newsOf({little, excessOf("S2", 1), excessOf("S3", 0.5, 1.9)}, {})),
                ElementsAre("S3 new", "S2 new", "S1 new"));
}

TEST(News, MessageTellsSoManyPointsAndTheNextOneGoesOn)
{
    std::vector<AlarmDetail> details;
    for (std::size_t i = 0; i < 2 * mostPointsTold + 1; ++i) {
        details.push_back(excessOf("S" + std::to_string(i), static_cast<double>(i + 1)));
    }
    std::vector<std::size_t> lengths;
    Told told;
    std::set<std::string> names;
    for (News news = newsOf(details, told); !news.points.empty(); news = newsOf(details, told)) {
        lengths.push_back(news.points.size());
        EXPECT_EQ(news.left, details.size() - names.size() - news.points.size());
        for (const PointNews& point : news.points) {
            names.insert(point.point);
        }
        told = news.told;
    }
    EXPECT_THAT(lengths, ElementsAre(mostPointsTold, mostPointsTold, 1));
    EXPECT_EQ(names.size(), details.size());
}

TEST(News, ToldIsReadAsItWasWritten)
{
    const Told told{{"", {0, 0.1}}, {"S \"1\"\n", {1e300, 2.5}}};
    EXPECT_EQ(toText(toldFrom(toText(told))), toText(told));
    EXPECT_TRUE(toldFrom("{}").empty());
    for (const char* const damaged : {"", "[]", R"({"S1":{"total":1}})", R"({"S1":1})"}) {
        EXPECT_THROW(toldFrom(damaged), DamagedDocument) << damaged;
    }
}

} // namespace
} // namespace monitorservice
