#include "StoreContract.h"
#include "store/postgres/PostgresStore.h"
#include "support/PostgresDatabase.h"

namespace monitorservice::test {

namespace {

class PostgresData final : public StoreData
{
public:
    std::unique_ptr<Store> open(const StoreOptions& options) override
    {
        return std::make_unique<PostgresStore>(m_database.url(), options);
    }

private:
    PostgresDatabase m_database;
};

} // namespace

std::vector<StoreFactory> storeFactories()
{
    return {{"Postgres", [] {
                 return std::make_unique<PostgresData>();
             }}};
}

} // namespace monitorservice::test
