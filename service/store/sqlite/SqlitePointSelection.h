#pragma once

#include "store/DocumentQuery.h"
#include "store/PointSelection.h"
#include "store/sql/PointConditions.h"
#include "store/sql/Sql.h"
#include "store/sqlite/SqliteConnection.h"
#include "store/sqlite/SqliteFunction.h"

#include <limits>
#include <memory>
#include <optional>
#include <string>

namespace monitorservice {

/// Selects in SQL alone: what SQL cannot decide it asks the matcher, through functions that live as long as
/// the selection. One selection at a time on a connection.
class SqlitePointSelection final : public PointSelection
{
public:
    /// The query's condition is copied.
    SqlitePointSelection(SqliteConnection& connection, const DocumentQuery& query);

    std::uint64_t count() override;
    void visit(const PointVisitor& visitor) override;
    void visitSamples(const PointChooser& point, const SampleVisitor& sample) override;
    void visitDays(const PointChooser& point, const DayVisitor& day) override;
    void visitSummaries(const SummaryChooser& point, const SummaryVisitor& summary) override;

private:
    void chooseSamples(const Where& where);
    void choosePoints(const Where& where, const DocumentQuery& query);
    void orderPoints(const DocumentQuery& query);
    std::string pointDocument(const SqliteFunction::Arguments& arguments, bool withSamples);
    void forEachPoint(const PointVisitor& use);
    void visitSamplesOf(std::int64_t point, const SampleVisitor& visitor);
    void visitDaysOfPeriod(std::int64_t point, const Period& period, const DayVisitor& visitor);
    void visitDaysOfSamples(std::int64_t point, const DayVisitor& visitor);
    std::optional<DayValue> lastSampleOfPeriod(std::int64_t point);
    PointSummary summaryOf(std::int64_t point, const SummaryParts& parts);
    std::optional<Sample> latestSampleOf(std::int64_t point);
    SqliteStatement chosenSamplesOf(std::int64_t point, const std::string& text);
    SqliteStatement daysOf(std::int64_t point, std::int64_t first, std::int64_t last);
    bool step(SqliteStatement& statement);

    SqliteConnection& m_connection;
    Sql m_sampleCondition; ///< of a row of samples
    bool m_choosesSamples = false;
    std::string m_samplesText;      ///< what chosenSamplesOf() is asked for: all of them
    std::string m_latestText;       ///< the latest of them
    std::optional<Period> m_period; ///< when the chosen samples are those of a period
    Sql m_points;                   ///< FROM and WHERE
    Sql m_page;                     ///< ORDER BY, LIMIT and OFFSET
    std::unique_ptr<SqliteFunction> m_sampleMatches;
    std::unique_ptr<SqliteFunction> m_pointMatches;
};

} // namespace monitorservice
