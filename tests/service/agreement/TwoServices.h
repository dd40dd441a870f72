#pragma once

#include "Question.h"
#include "access/Rights.h"
#include "api/Api.h"
#include "store/Store.h"
#include "store/StoreOptions.h"
#include "support/PostgresDatabase.h"
#include "support/TemporaryFolder.h"

#include <functional>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace monitorservice::test {

/// One service over a file and one over a PostgreSQL database, at the same time of day: what both are asked
/// and what both are given is the same, so they give the same identifiers.
class TwoServices
{
public:
    TwoServices();

    /// What the first one answers. The running test fails when the second one answers otherwise.
    HttpResponse ask(const Question& question);
    /// Does the same in both stores.
    void write(const std::function<void(Session& session)>& action);
    /// The text of the token is "rkm_" and its name, the identifier the name.
    void addToken(const std::string& name);
    void grant(const std::string& token, const std::optional<std::string>& project,
               const std::optional<std::string>& category, Rights rights);
    /// The running test fails when the stores hold different data.
    void compareContents();

    /// For what requests cannot do.
    Store& first() { return *m_first.store; }
    Store& second() { return *m_second->store; }
    std::string firstFile() const { return m_folder.file("data.db").string(); }
    /// From now on the second service is over the data at this location.
    void moveSecond(const std::string& location);
    /// As the services open theirs.
    StoreOptions options() const;

    void wait(Instant milliseconds) { m_now += milliseconds; }
    Instant now() const { return m_now; }

private:
    struct Service
    {
        Service(const std::string& location, const StoreOptions& options);

        HttpResponse answer(const Question& question) const;

        std::unique_ptr<Store> store;
        Api api;
    };

    Instant m_now = 1445716800123; ///< 2015-10-24T20:00:00.123Z, some hours before clocks are put back
    TemporaryFolder m_folder;
    PostgresDatabase m_database;
    Service m_first;
    std::unique_ptr<Service> m_second;
};

} // namespace monitorservice::test
