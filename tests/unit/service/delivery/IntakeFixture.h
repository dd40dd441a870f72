#pragma once

#include "delivery/DeliveryIntake.h"
#include "delivery/DeliveryParser.h"
#include "delivery/DeliveryRefusal.h"
#include "domain/Group.h"
#include "domain/SubCategory.h"
#include "json/JsonText.h"
#include "store/OpenStore.h"
#include "store/StoreContents.h"
#include "support/TestStore.h"

#include <gtest/gtest.h>
#include <simdjson.h>

#include <set>
#include <string>
#include <utility>
#include <vector>

namespace monitorservice::test {

/// A member of an object as JSON text, a text without its quotes.
inline std::string member(const std::string& json, std::string_view name)
{
    simdjson::dom::parser parser;
    const simdjson::dom::element value = parser.parse(json)[name];
    return value.is_string() ? std::string(value.get_string().value()) : simdjson::minify(value);
}

/// A store with project "p1" (monitorings "c1" and "c2" of Settlement, "c3" of Inclinometer; sub-categories
/// "s1" and "s2" of Settlement, "s3" of Inclinometer) and project "p2" (monitoring "d1", sub-category "t1").
class IntakeFixture : public ::testing::Test
{
protected:
    explicit IntakeFixture(const std::string& timeZone = "America/Los_Angeles")
    {
        const auto session = store.write();
        session->projects().insert({"p1", "Bluff", timeZone, 1});
        session->projects().insert({"p2", "Pit", "UTC", 1});
        session->categories().add("Settlement");
        session->categories().add("Inclinometer");
        addCell(*session, "p1", "c1", "Settlement");
        addCell(*session, "p1", "c2", "Settlement");
        addCell(*session, "p1", "c3", "Inclinometer");
        addCell(*session, "p2", "d1", "Settlement");
        addSubCategory(*session, "p1", "s1", "Settlement");
        addSubCategory(*session, "p1", "s2", "Settlement");
        addSubCategory(*session, "p1", "s3", "Inclinometer", SubCategoryKind::Inclinometer);
        addSubCategory(*session, "p2", "t1", "Settlement");
        session->commit();
    }

    /// "changed", "same", or the refusal's message.
    std::string take(const std::string& body)
    {
        now += 1000;
        try {
            const Delivery delivery = parseDelivery(body);
            const auto session = store.write(claimOf(delivery));
            const auto mayDo = [this](Right right, const std::string& project, const std::string&) {
                return lacking.count({right, project}) == 0;
            };
            const IntakeResult result = takeIn(*session, delivery, mayDo, "Ada");
            answer = result.points;
            if (result.changed) {
                session->commit();
            }
            return result.changed ? "changed" : "same";
        } catch (const DeliveryRefusal& refusal) {
            reason = refusal.reason();
            return refusal.what();
        }
    }

    void addGroup(const std::string& id, const std::vector<std::string>& points, int dayVarType,
                  double dayVarValue, double totalVar, const std::string& cell = "c1",
                  const std::string& subCategory = "s1")
    {
        Group group;
        group.id = id;
        group.project = "p1";
        group.cell = cell;
        group.subCategory = subCategory;
        group.name = "group " + id;
        group.points = points;
        group.dayVariationType = dayVarType;
        group.dayVariation = dayVarValue;
        group.totalVariation = totalVar;
        addGroup(group);
    }

    void addGroup(const Group& group)
    {
        const auto session = store.write();
        session->documents(DocumentKind::Group).insert(group.project, group.id, toDocument(group));
        session->commit();
    }

    /// All that the store holds.
    std::vector<std::string> everything() const { return contentsOf(store); }

    /// The documents of a kind, the oldest first.
    std::vector<std::string> documents(DocumentKind kind) const { return documentsOf(store, kind); }
    std::vector<HeldPoint> points() const { return pointsOf(store); }

private:
    StoreOptions options()
    {
        StoreOptions options;
        options.createIfMissing = true;
        options.channels = {Channel::Webhook};
        options.clock = [this] {
            return now;
        };
        return options;
    }

    static void addCell(Session& session, const std::string& project, const std::string& id,
                        const std::string& category)
    {
        session.documents(DocumentKind::Cell)
            .insert(project, id,
                    JsonObjectWriter()
                        .text("_id", id)
                        .text("projectId", project)
                        .text("name", "cell " + id)
                        .text("category", category)
                        .json("alarmTo", "[]")
                        .json("links", "[]")
                        .text("createdAt", "2015-12-01T00:00:00.000Z")
                        .text("createdBy", "Ada")
                        .text("updatedAt", "2015-12-01T00:00:00.000Z")
                        .text("updatedBy", "Ada")
                        .finish());
    }

    static void addSubCategory(Session& session, const std::string& project, const std::string& id,
                               const std::string& category, SubCategoryKind kind = SubCategoryKind::Other)
    {
        const SubCategory subCategory{id, project, "sub " + id, category, "", kind, "mm"};
        session.documents(DocumentKind::SubCategory).insert(project, id, toDocument(subCategory));
    }

protected:
    Instant now = 1450679400123; ///< 2015-12-21T06:30:00.123Z
    TestStore testStore;
    std::unique_ptr<Store> opened{openStore(testStore.location(), options())};
    Store& store = *opened;
    std::set<std::pair<Right, std::string>> lacking; ///< rights that the sender does not have in a project
    std::string answer;
    DeliveryRefusal::Reason reason = DeliveryRefusal::Reason::Malformed;
};

} // namespace monitorservice::test
