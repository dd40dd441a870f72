#pragma once

#include "administration/AdministrationError.h"
#include "domain/Change.h"
#include "store/OpenStore.h"
#include "store/StoreContents.h"
#include "support/TestStore.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace monitorservice::test {

/// A session over data of its own: project "p1" called Pit, category Settlement.
class AdministrationFixture : public ::testing::Test
{
protected:
    AdministrationFixture()
    {
        session->projects().insert({"p1", "Pit", "UTC", 1});
        session->categories().add("Settlement");
    }

    /// Why the action was refused, as its failure, its subject and its message.
    template <typename Action>
    static std::string refusalOf(Action&& action)
    {
        try {
            action();
        } catch (const AdministrationError& error) {
            const char* const failures[] = {"bad", "unknown", "in use", "contradiction"};
            return std::string(failures[static_cast<int>(error.failure())]) + " " + error.subject() + ": " +
                   error.what();
        }
        return "none";
    }

    std::vector<Change> entries() const
    {
        std::vector<Change> entries;
        for (const std::string& entry : entriesOf(*session)) {
            entries.push_back(fromDocument<Change>(entry));
        }
        return entries;
    }

    /// What an entry tells, in one line.
    static std::string told(const Change& entry)
    {
        return entry.action + " of \"" + entry.project + "\", \"" + entry.category + "\": " + entry.before +
               " -> " + entry.after;
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

    TestStore testStore;
    std::unique_ptr<Store> store = openStore(testStore.location(), options());
    std::unique_ptr<Session> session = store->write();
};

} // namespace monitorservice::test
