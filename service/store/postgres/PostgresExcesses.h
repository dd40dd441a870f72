#pragma once

#include "store/Excesses.h"
#include "store/postgres/PostgresConnection.h"
#include "store/postgres/PostgresSamples.h"
#include "store/postgres/ProjectNumbers.h"

namespace monitorservice {

class PostgresExcesses final : public Excesses
{
public:
    PostgresExcesses(PostgresConnection& connection, ProjectNumbers& projects, PostgresSamples& samples)
        : m_connection(connection), m_projects(projects), m_samples(samples)
    {
    }

    void visit(std::int64_t point, Instant from, Instant before, const Visitor& visitor) const override;
    void visitOfAlarm(std::int64_t point, const std::string& alarm, const Visitor& visitor) const override;
    std::vector<std::string> openAlarms(const std::string& project) const override;
    void insert(std::int64_t point, const ReadingInExcess& reading) override;
    void remove(std::int64_t point, Instant time, std::int32_t count) override;

private:
    void show(const PostgresResult& rows, const Visitor& visitor) const;

    PostgresConnection& m_connection;
    ProjectNumbers& m_projects;
    PostgresSamples& m_samples;
};

} // namespace monitorservice
