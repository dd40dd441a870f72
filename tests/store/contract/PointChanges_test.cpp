#include "StoreContract.h"
#include "json/JsonText.h"
#include "time/Instant.h"

#include <algorithm>
#include <map>
#include <string>
#include <vector>

namespace monitorservice::test {
namespace {

using ::testing::ElementsAre;

// Two projects "p" and "q", each with one monitoring "c…" and one sub-category "s…".
class PointChanges : public StoreContract
{
protected:
    PointChanges()
    {
        session->categories().add("Settlement");
        for (const std::string project : {"p", "q"}) {
            session->projects().insert({project, "Pit", "UTC", 1});
            session->documents(DocumentKind::Cell)
                .insert(project, "c" + project,
                        R"({"_id":"c)" + project + R"(","projectId":")" + project +
                            R"(","name":"North","category":"Settlement",)"
                            R"("createdAt":"2026-01-01T00:00:00.000Z","createdBy":"a",)"
                            R"("updatedAt":"2026-01-01T00:00:00.000Z","updatedBy":"a"})");
            session->documents(DocumentKind::SubCategory)
                .insert(project, "s" + project,
                        R"({"_id":"s)" + project + R"(","projectId":")" + project +
                            R"(","name":"Level","category":"Settlement","alias":"L"})");
        }
    }

    // A document of a point named like its identifier.
    static std::string document(const std::string& project, const std::string& id, Instant lastTime,
                                const std::string& alias = {})
    {
        return JsonObjectWriter()
            .text("_id", id)
            .text("projectId", project)
            .text("cellId", "c" + project)
            .text("subCategoryId", "s" + project)
            .text("name", id)
            .text("depth", "1.50")
            .text("alias", alias)
            .json("links", "[]")
            .text("lastDate", isoText(lastTime))
            .text("updatedAt", isoText(0))
            .text("updatedBy", "a")
            .finish();
    }

    // What the session has written is lost, unless it was committed.
    void beginAnew()
    {
        session.reset();
        session = store->write();
    }

    Measurements& measurements() { return session->measurements(); }

    std::string found(const std::string& project, const std::string& id)
    {
        const auto point = measurements().findPoint("c" + project, "s" + project, id, "1.5");
        return point ? point->document : "none";
    }

    // By identifier, in the order of their latest times.
    std::vector<std::string> newestFirst(const std::string& project, std::uint64_t limit)
    {
        DocumentQuery query;
        query.project = project;
        query.order = parseOrder("-data.time");
        query.limit = limit;
        std::vector<std::string> documents;
        session->documents(DocumentKind::PointLocation).visit(query, [&documents](std::string_view one) {
            documents.emplace_back(one);
        });
        return documents;
    }

    std::unique_ptr<Session> session = store->write();
};

TEST_P(PointChanges, AreSeenByWhateverReadsThem)
{
    const std::int64_t point = measurements().insertPoint("p", "w", document("p", "w", 1000), 1);
    EXPECT_EQ(found("p", "w"), document("p", "w", 1000));
    Instant time = 1000;
    const auto change = [&] {
        ++time;
        measurements().replacePoint(point, document("p", "w", time), time, std::nullopt);
        return document("p", "w", time);
    };
    std::string now = change();
    EXPECT_EQ(found("p", "w"), now);
    now = change();
    measurements().visitPoints("cp", "sp", "w",
                               [&now](const StoredPoint& one) { EXPECT_EQ(one.document, now); });
    now = change();
    EXPECT_EQ(measurements().latestPoint("cp", "sp").value().document, now);
    now = change();
    measurements().visitDeliveredTo("cp", "sp", 1, [&now](const DeliveredTo& one) {
        EXPECT_EQ(one.point.document, now);
        EXPECT_EQ(one.made, 1);
        EXPECT_EQ(one.changed, 1);
    });
    now = change();
    EXPECT_EQ(session->documents(DocumentKind::PointLocation).find("w").value().text, now);
    now = change();
    EXPECT_THAT(newestFirst("p", 10), ElementsAre(now));
    now = change();
    EXPECT_TRUE(measurements().replaceLinks(point, R"(["other"])", 5, "a"));
    EXPECT_NE(found("p", "w").find(R"("links":["other"])"), std::string::npos);
    now = change();
    EXPECT_EQ(measurements().deliveriesOf(point), std::vector<std::int64_t>{1});
    EXPECT_EQ(found("p", "w"), now);
    now = change();
    session->commit();
    EXPECT_EQ(store->read()->documents(DocumentKind::PointLocation).find("w").value().text, now);
}

TEST_P(PointChanges, OfOnePointComeOneAfterTheOther)
{
    const std::int64_t made = measurements().insertPoint("p", "made", document("p", "made", 1), 3);
    const std::int64_t held = measurements().insertPoint("p", "held", document("p", "held", 1), 3);
    found("p", "held");
    for (const std::int64_t point : {made, held}) {
        const std::string id = point == made ? "made" : "held";
        measurements().replacePoint(point, document("p", id, 5), Instant{5}, 7);
        measurements().replacePoint(point, document("p", id, 4, "last"), Instant{4}, std::nullopt);
    }
    std::vector<std::string> seen;
    measurements().visitDeliveredTo("cp", "sp", 7, [&seen](const DeliveredTo& one) {
        seen.push_back(one.point.id + " " + std::to_string(one.made) + " " + std::to_string(one.changed));
    });
    EXPECT_THAT(seen, ElementsAre("held 3 7", "made 3 7"));
    EXPECT_EQ(found("p", "made"), document("p", "made", 4, "last"));
    EXPECT_EQ(found("p", "held"), document("p", "held", 4, "last"));
}

TEST_P(PointChanges, MayBeManyAndOfSeveralProjects)
{
    constexpr int many = 2500;
    std::map<std::string, std::vector<std::int64_t>> points;
    for (int i = 0; i < many; ++i) {
        for (const std::string project : {"p", "q"}) {
            const std::string id = project + std::to_string(i);
            points[project].push_back(measurements().insertPoint(project, id, document(project, id, 0), 1));
            if (i % 2 == 1) {
                // The one before, made already.
                const std::string before = project + std::to_string(i - 1);
                measurements().replacePoint(points[project][static_cast<std::size_t>(i - 1)],
                                            document(project, before, i, "changed"), Instant{i}, 2);
            }
        }
    }
    for (const std::string project : {"p", "q"}) {
        for (int i = 1; i < many; i += 2) {
            const std::string id = project + std::to_string(i);
            measurements().replacePoint(points[project][static_cast<std::size_t>(i)],
                                        document(project, id, many + i, std::string(3000, 'x')),
                                        Instant{many + i}, 3);
        }
    }
    session->commit();
    beginAnew();
    for (const std::string project : {"p", "q"}) {
        std::vector<std::string> expected;
        for (int i = many - 1; i > 0; i -= 2) {
            expected.push_back(
                document(project, project + std::to_string(i), many + i, std::string(3000, 'x')));
        }
        for (int i = many - 1; i > 0; i -= 2) {
            expected.push_back(document(project, project + std::to_string(i - 1), i, "changed"));
        }
        EXPECT_EQ(newestFirst(project, many), expected);
    }
}

TEST_P(PointChanges, AreLostWithTheirSession)
{
    const std::int64_t point = measurements().insertPoint("p", "w", document("p", "w", 1), 1);
    session->commit();
    for (const bool isRead : {false, true}) {
        beginAnew();
        measurements().replacePoint(point, document("p", "w", 2), Instant{2}, 2);
        measurements().insertPoint("p", "other", document("p", "other", 2), 2);
        if (isRead) {
            EXPECT_EQ(found("p", "w"), document("p", "w", 2));
            measurements().replacePoint(point, document("p", "w", 3), Instant{3}, 2);
        }
        beginAnew();
        EXPECT_EQ(found("p", "w"), document("p", "w", 1));
        EXPECT_EQ(found("p", "other"), "none");
    }
}

TEST_P(PointChanges, AreRefusedToAVisitor)
{
    const std::int64_t point = measurements().insertPoint("p", "w", document("p", "w", 1), 1);
    const auto visit = [&] {
        measurements().visitPoints("cp", "sp", "w", [&](const StoredPoint& /*one*/) {
            measurements().replacePoint(point, document("p", "w", 2), Instant{2}, 2);
        });
    };
    EXPECT_EQ(failureOf(visit), "internal");
}

RK_EVERY_STORE(PointChanges);

} // namespace
} // namespace monitorservice::test
