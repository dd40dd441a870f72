#pragma once

#include "store/DocumentQuery.h"
#include "store/PointSelection.h"
#include "store/postgres/PostgresConnection.h"
#include "store/postgres/PostgresCursor.h"
#include "store/postgres/ProjectNumbers.h"
#include "store/postgres/SampleChoice.h"
#include "store/postgres/SegmentRows.h"
#include "store/sql/Narrowing.h"
#include "store/sql/Sql.h"
#include "store/sql/TextMatcher.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace monitorservice {

/// Where the database can say which points are chosen, it selects the page; otherwise the points that may be
/// come here, those that are chosen are told by their documents and samples, and the page is selected among
/// them. What is wanted of samples is read for many points of the page at once.
class PostgresPointSelection final : public PointSelection
{
public:
    /// The query's condition is copied.
    PostgresPointSelection(PostgresConnection& connection, ProjectNumbers& projects,
                           const DocumentQuery& query);

    std::uint64_t count() override;
    void visit(const PointVisitor& visitor) override;
    void visitSamples(const PointChooser& point, const SampleVisitor& sample) override;
    void visitDays(const PointChooser& point, const DayVisitor& day) override;
    void visitSummaries(const SummaryChooser& point, const SummaryVisitor& summary) override;

private:
    // A point on its way to the visitor.
    struct PagePoint
    {
        std::int64_t key = 0;
        std::string id;
        std::string category;
        std::string name;
        std::string depth;
        std::string links;
        std::string document;

        FoundPoint found() const { return {key, id, category, name, depth, links, document}; }
    };
    using PagePoints = std::vector<PagePoint>;

    // The points chosen, and the time of the newest chosen sample of each.
    struct Chosen
    {
        std::vector<std::int64_t> keys;
        std::vector<std::optional<Instant>> newest;
    };

    // A point that may be chosen.
    struct Candidate
    {
        std::int64_t key = 0;
        bool isChosen = true; ///< by its document
    };

    class Summaries;

    bool isExact() const { return m_narrowing.exact && m_choice.choosesAll(); }
    // What "data.time" orders by.
    const char* newestColumn() const { return m_choice.choosesAll() ? "last_time" : "newest"; }
    Chosen choose(std::uint64_t enough);
    void addChosen(Chosen& chosen, const std::vector<std::int64_t>& candidates);
    std::vector<std::optional<Instant>> newestChosen(const std::vector<std::int64_t>& points);
    std::string pointDocument(std::int64_t point, std::string_view category, std::string_view document);
    std::unique_ptr<PostgresCursor> page();
    std::unique_ptr<PostgresCursor> pageOf(const Chosen& chosen);
    template <typename Use>
    void forEachBatch(const Use& use);

    PostgresConnection& m_connection;
    SampleChoice m_choice;
    Where m_ofPoints;
    bool m_asksSamples; ///< whether the conditions on a point ask for its samples
    TextMatcher m_matcher;
    DocumentQuery m_query; ///< for its order and page
    Narrowing m_narrowing;
    Sql m_points; ///< FROM and WHERE
};

} // namespace monitorservice
