#pragma once

#include "store/Measurements.h"
#include "store/postgres/ExpectedPoints.h"
#include "store/postgres/PostgresConnection.h"
#include "store/postgres/PostgresSamples.h"
#include "store/postgres/ProjectNumbers.h"

#include <string>
#include <vector>

namespace monitorservice {

class PostgresMeasurements final : public Measurements
{
public:
    PostgresMeasurements(PostgresConnection& connection, ProjectNumbers& projects, PostgresSamples& samples)
        : m_connection(connection), m_projects(projects), m_samples(samples)
    {
    }

    void expect(const std::string& cell, const std::string& subCategory,
                const std::vector<ExpectedPoint>& points) override;
    std::optional<StoredPoint> findPoint(const std::string& cell, const std::string& subCategory,
                                         const std::string& name, const std::string& depth) const override;
    void visitPoints(const std::string& cell, const std::string& subCategory, const std::string& name,
                     const PointVisitor& visitor) const override;
    std::optional<StoredPoint> latestPoint(const std::string& cell,
                                           const std::string& subCategory) const override;
    void visitDeliveredTo(const std::string& cell, const std::string& subCategory, std::int64_t delivery,
                          const DeliveredToVisitor& visitor) const override;
    std::int64_t insertPoint(const std::string& project, const std::string& id, const std::string& document,
                             std::int64_t delivery) override;
    void replacePoint(std::int64_t point, const std::string& document, const std::optional<Instant>& lastTime,
                      const std::optional<std::int64_t>& delivery) override;
    void removePoint(std::int64_t point) override;
    bool replaceLinks(std::int64_t point, const std::string& links, Instant when,
                      const std::string& who) override;
    std::unique_ptr<PointSelection> select(const DocumentQuery& query) const override;

    std::optional<Sample> earliestSample(std::int64_t point) const override;
    std::optional<Sample> latestSample(std::int64_t point) const override;
    std::optional<Sample> findSample(std::int64_t point, Instant time, std::int32_t count) const override;
    void visitSamples(std::int64_t point, Instant from, Instant before,
                      const SampleVisitor& visitor) const override;
    void visitKept(std::int64_t point, const KeptVisitor& visitor) const override;
    void visitSamplesOf(std::int64_t point, std::int64_t delivery,
                        const SampleVisitor& visitor) const override;
    std::vector<std::int64_t> deliveriesOf(std::int64_t point) const override;
    bool insertSample(std::int64_t point, const DayPeriod& day, const Sample& sample,
                      std::int64_t delivery) override;
    void replaceSample(std::int64_t point, const DayPeriod& day, const Sample& sample) override;
    void removeSample(std::int64_t point, const DayPeriod& day, Instant time, std::int32_t count) override;

    void visitDays(std::int64_t point, std::int64_t first, std::int64_t last,
                   const DayVisitor& visitor) const override;
    std::optional<DaySummary> latestDayBefore(std::int64_t point, std::int64_t day) const override;
    std::optional<DaySummary> earliestDayAfter(std::int64_t point, std::int64_t day) const override;

    void removeDelivered(const std::string& cell, const std::string& subCategory) override;

private:
    // Numbers of points that no point has yet.
    struct NewPoints
    {
        std::int64_t project = 0;
        std::int64_t last = 0; // the one given last
        std::int64_t left = 0;
    };

    std::int64_t newPoint(std::int64_t number, const std::string& project);
    std::optional<StoredPoint> findPointSpeltOtherwise(const std::string& cell,
                                                       const std::string& subCategory,
                                                       const std::string& name,
                                                       const std::string& settled) const;

    PostgresConnection& m_connection;
    ProjectNumbers& m_projects;
    PostgresSamples& m_samples; ///< changed by reading too: what is pending is written first
    mutable ExpectedPoints m_expected{m_connection}; ///< given once each
    NewPoints m_newPoints;
};

} // namespace monitorservice
