#include "MeasuredFixture.h"
#include "http/RequestTarget.h"
#include "store/CountingStore.h"

namespace monitorservice {
namespace {

// Which turns requests wait for: a claim of more than is needed changes no answer, and holds up others.
class RequestClaims : public test::MeasuredFixture
{
protected:
    // The answer's body.
    std::string send(const std::string& method, const std::string& path, const std::string& body = {})
    {
        RequestTarget target = parseRequestTarget("/monitor-service/" + path);
        HttpRequest request;
        request.method = method;
        request.path = std::move(target.path);
        request.parameters = std::move(target.parameters);
        request.authorization = "Bearer " + editor;
        request.body = body;
        return claiming.answer(request).body;
    }

    std::string deliver(const std::vector<std::pair<std::string, std::string>>& targets)
    {
        now += 1000;
        std::string points;
        for (const auto& [cell, subCategory] : targets) {
            points += points.empty() ? "" : ",";
            points += R"({"cellId":")" + cell + R"(","subCategoryId":")" + subCategory +
                      R"(","name":"S1","data":[{"count":1,"time":"2015-12-20T06:00:00Z","value":)" +
                      std::to_string(++m_value) + "}]}";
        }
        return send("POST", "pointLocations", "[" + points + "]");
    }

    // Of the latest request.
    std::string claimed() const
    {
        const Claim claim = counted.claims().back();
        std::string text = claim.targets ? "" : "everything";
        for (const ClaimedTarget& target : claim.targets.value_or(std::vector<ClaimedTarget>())) {
            text += (text.empty() ? "" : " ") + target.cell + "/" + target.subCategory;
        }
        return text;
    }

    test::CountingStore counted{openStore(testStore.location(), {})};
    Api claiming{counted, std::make_shared<HttpCounters>()};

private:
    int m_value = 0;
};

TEST_F(RequestClaims, DeliveryClaimsTheSubCategoriesOfItsMonitoring)
{
    newSubCategory({"wells", "p1", "Wells", "Settlement", "W"});
    deliver({{tower, "ground"}});
    EXPECT_EQ(claimed(), tower + "/ground");
    deliver({{tower, "wells"}, {tower, "ground"}});
    EXPECT_EQ(claimed(), tower + "/ground " + tower + "/wells");
}

TEST_F(RequestClaims, DeliveryForSeveralMonitoringsClaimsEverything)
{
    deliver({{tower, "ground"}, {wall, "casing"}});
    EXPECT_EQ(claimed(), "everything");
}

TEST_F(RequestClaims, WhatConcernsAPointClaimsItsTarget)
{
    const std::string target = tower + "/ground";
    const std::string point = "pointLocations/" + test::membersOf(deliver({{tower, "ground"}}), "_id").at(0);
    send("PATCH", point, R"({"alias":"north"})");
    EXPECT_EQ(claimed(), target);
    send("DELETE", "historyDatas/" + test::membersOf(deliver({{tower, "ground"}}), "deliveryId").at(0));
    EXPECT_EQ(claimed(), target);
    send("DELETE", point + "/samples?where=" + test::percentEncoded(R"({"value":1})"));
    EXPECT_EQ(claimed(), target);
    send("DELETE", point);
    EXPECT_EQ(claimed(), target);
    EXPECT_EQ(counted.commits(), 6);
}

TEST_F(RequestClaims, WhateverElseIsWrittenClaimsEverything)
{
    send("POST", "cells", R"({"projectId":"p1","name":"Quay","category":"Settlement"})");
    EXPECT_EQ(claimed(), "everything");
    send("DELETE", "pointLocations/none");
    EXPECT_EQ(claimed(), "everything");
    send("DELETE", "historyDatas/none");
    EXPECT_EQ(claimed(), "everything");
}

} // namespace
} // namespace monitorservice
