#pragma once

#include <memory>
#include <string>

namespace monitorservice::test {

/// Where the data of one test are, none at first: in a file of its own, or, where the environment variable
/// RK_TEST_STORE is "postgres", in a database of its own. They go with the object.
class TestStore
{
public:
    TestStore();
    /// With the data of the other one, which nobody may have open.
    TestStore(const TestStore& other);
    TestStore& operator=(const TestStore&) = delete;
    ~TestStore();

    bool isInDatabase() const { return m_database != nullptr; }
    /// For openStore().
    const std::string& location() const { return m_location; }
    /// The option of monitor-service that takes the location.
    const char* option() const;

private:
    struct File;
    struct Database;

    std::unique_ptr<File> m_file; ///< either this
    std::unique_ptr<Database> m_database;
    std::string m_location;
};

} // namespace monitorservice::test
