#pragma once

#include "store/Excesses.h"
#include "store/sqlite/SqliteConnection.h"

namespace monitorservice {

class SqliteExcesses final : public Excesses
{
public:
    explicit SqliteExcesses(SqliteConnection& connection) : m_connection(connection) {}

    void visit(std::int64_t point, Instant from, Instant before, const Visitor& visitor) const override;
    void visitOfAlarm(std::int64_t point, const std::string& alarm, const Visitor& visitor) const override;
    std::vector<std::string> openAlarms(const std::string& project) const override;
    void insert(std::int64_t point, const ReadingInExcess& reading) override;
    void remove(std::int64_t point, Instant time, std::int32_t count) override;

private:
    void show(SqliteStatement& statement, const Visitor& visitor) const;

    SqliteConnection& m_connection;
};

} // namespace monitorservice
