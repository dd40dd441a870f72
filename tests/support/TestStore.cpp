#include "support/TestStore.h"

#include "support/TemporaryFolder.h"
#ifdef RK_HAS_POSTGRES_SERVER
#include "support/PostgresDatabase.h"
#endif

#include <cstdlib>
#include <filesystem>
#include <stdexcept>

namespace monitorservice::test {

namespace {

bool isWanted(const char* store)
{
    const char* const wanted = std::getenv("RK_TEST_STORE");
    return wanted != nullptr && std::string(wanted) == store;
}

} // namespace

struct TestStore::File
{
    TemporaryFolder folder;
};

#ifdef RK_HAS_POSTGRES_SERVER
struct TestStore::Database
{
    PostgresDatabase database;
};
#else
struct TestStore::Database
{
    struct
    {
        std::string url() const { throw std::runtime_error("there is no PostgreSQL server for tests here"); }
    } database;
};
#endif

TestStore::TestStore()
{
    if (isWanted("postgres")) {
        m_database = std::make_unique<Database>();
        m_location = m_database->database.url();
    } else {
        m_file = std::make_unique<File>();
        m_location = m_file->folder.file("data.db").string();
    }
}

TestStore::TestStore(const TestStore& other)
{
    if (other.m_file) {
        m_file = std::make_unique<File>();
        m_location = m_file->folder.file("data.db").string();
        if (std::filesystem::exists(other.m_location)) {
            std::filesystem::copy_file(other.m_location, m_location);
        }
    } else {
        m_database = std::make_unique<Database>(*other.m_database);
        m_location = m_database->database.url();
    }
}

TestStore::~TestStore() = default;

const char* TestStore::option() const
{
    return m_file ? "--data" : "--store";
}

} // namespace monitorservice::test
