#include "StoreContract.h"
#include "store/sqlite/SqliteStore.h"
#include "support/TemporaryFolder.h"

namespace monitorservice::test {

namespace {

class SqliteData final : public StoreData
{
public:
    std::unique_ptr<Store> open(const StoreOptions& options) override
    {
        return std::make_unique<SqliteStore>(m_folder.file("data.db"), options);
    }

private:
    TemporaryFolder m_folder;
};

} // namespace

std::vector<StoreFactory> storeFactories()
{
    return {{"Sqlite", [] {
                 return std::make_unique<SqliteData>();
             }}};
}

} // namespace monitorservice::test
