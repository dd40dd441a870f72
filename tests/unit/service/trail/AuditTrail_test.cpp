#include "trail/AuditTrail.h"

#include "store/OpenStore.h"
#include "store/StoreContents.h"
#include "support/TestStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace monitorservice {
namespace {

using ::testing::ElementsAre;
using ::testing::IsEmpty;
using ::testing::SizeIs;

class AuditTrail : public ::testing::Test
{
protected:
    AuditTrail()
    {
        const auto session = store->write();
        session->projects().insert({"p1", "Pit", "UTC", 1});
        session->commit();
    }

    static StoreOptions options()
    {
        StoreOptions options;
        options.createIfMissing = true;
        options.clock = [] {
            return Instant{1450679400123}; // 2015-12-21T06:30:00.123Z
        };
        return options;
    }

    static Change change(const std::string& action)
    {
        Change change;
        change.project = "p1";
        change.category = "Settlement";
        change.cell = "c1";
        change.subCategory = "s1";
        change.action = action;
        change.subject = "x1";
        change.name = "S1";
        change.before = R"({"value":1.5})";
        change.author.name = "Ada";
        return change;
    }

    std::vector<std::string> entries() const { return test::documentsOf(*store, DocumentKind::Change); }

    test::TestStore testStore;
    std::unique_ptr<Store> store = openStore(testStore.location(), options());
};

TEST_F(AuditTrail, AnEntryHasTheTimeOfItsSessionAndAnIdentifierOfItsOwn)
{
    const auto session = store->write();
    record(*session, change("sample.corrected"));
    record(*session, change("alarm.withdrawn"));
    session->commit();
    const std::vector<std::string> held = entries();
    ASSERT_THAT(held, SizeIs(2));
    const auto first = fromDocument<Change>(held[0]);
    const auto second = fromDocument<Change>(held[1]);
    EXPECT_LT(first.id, second.id);
    EXPECT_EQ(first.action, "sample.corrected");
    EXPECT_EQ(second.action, "alarm.withdrawn");
    EXPECT_EQ(first.project, "p1");
    EXPECT_EQ(first.category, "Settlement");
    EXPECT_EQ(first.cell, "c1");
    EXPECT_EQ(first.subCategory, "s1");
    EXPECT_EQ(first.subject, "x1");
    EXPECT_EQ(first.name, "S1");
    EXPECT_EQ(first.before, R"({"value":1.5})");
    EXPECT_EQ(first.after, "null");
    EXPECT_EQ(first.author.name, "Ada");
    EXPECT_EQ(first.author.time, "2015-12-21T06:30:00.123Z");
}

TEST_F(AuditTrail, WhatGoesToAnotherCategoryHasAnEntryInEach)
{
    Change was = change("group.changed");
    was.before = "1";
    Change is = change("group.changed");
    is.before = "null";
    is.after = "2";
    const auto session = store->write();
    recordReplaced(*session, was, is);
    is.category = "Inclinometer";
    recordReplaced(*session, was, is);
    session->commit();
    std::vector<std::string> told;
    for (const std::string& entry : entries()) {
        const auto held = fromDocument<Change>(entry);
        told.push_back(held.category + ": " + held.before + " -> " + held.after);
    }
    EXPECT_THAT(told, ElementsAre("Settlement: 1 -> 2", "Settlement: 1 -> null", "Inclinometer: null -> 2"));
}

TEST_F(AuditTrail, WhatIsNotCommittedLeavesNoEntry)
{
    record(*store->write(), change("sample.corrected"));
    EXPECT_THAT(entries(), IsEmpty());
}

} // namespace
} // namespace monitorservice
