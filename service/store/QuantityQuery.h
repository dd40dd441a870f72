#pragma once

#include "domain/MonitoredQuantity.h"
#include "store/DocumentQuery.h"

#include <cstdint>
#include <limits>

namespace monitorservice {

/// The documents of one quantity, of a kind that belongs to a monitoring: its data manage, groups and alarms.
class QuantityQuery
{
public:
    explicit QuantityQuery(const MonitoredQuantity& quantity,
                           std::uint64_t limit = std::numeric_limits<std::uint64_t>::max())
        : m_where(Where::equals("subCategoryId", quantity.subCategory))
    {
        m_query.project = quantity.project;
        m_query.parent = quantity.cell;
        m_query.where = &m_where;
        m_query.limit = limit;
    }
    QuantityQuery(const QuantityQuery&) = delete;
    QuantityQuery& operator=(const QuantityQuery&) = delete;
    ~QuantityQuery() = default;

    /// Valid as long as this is.
    const DocumentQuery& query() const { return m_query; }

private:
    Where m_where;
    DocumentQuery m_query;
};

} // namespace monitorservice
