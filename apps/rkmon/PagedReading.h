#pragma once

#include <QSet>
#include <QString>

#include <optional>

/// Reading a list that others may change meanwhile, page by page.
namespace paging {

template <typename Rows>
bool hasRepeatedIdentifier(const Rows& rows)
{
    QSet<QString> identifiers;
    identifiers.reserve(rows.size());
    for (const auto& row : rows) {
        identifiers.insert(row.id);
    }
    return identifiers.size() != rows.size();
}

/// All rows, or nothing when the list changed in a way that could have lost or doubled one; the caller then
/// begins anew. `readPage(skip, limit)` gives records with a member `id`, fewer than `limit` only at the end;
/// `readCount()` gives the number of all rows. `pageSize` is at least 2.
template <typename ReadPage, typename ReadCount>
auto readOnce(ReadPage readPage, ReadCount readCount, int pageSize) -> std::optional<decltype(readPage(0, 0))>
{
    auto rows = readPage(0, pageSize);
    int received = rows.size();
    while (received == pageSize) {
        // Pages overlap by one row: when it is not the same row in both, rows were inserted or removed before
        // it, which the count alone would not show when one came and another went.
        auto page = readPage(rows.size() - 1, pageSize);
        received = page.size();
        if (page.isEmpty() || page.constFirst().id != rows.constLast().id) {
            return std::nullopt;
        }
        page.removeFirst();
        rows.append(page);
    }
    if (rows.size() != readCount() || hasRepeatedIdentifier(rows)) {
        return std::nullopt;
    }
    return rows;
}

/// readOnce(), begun anew up to `attempts` times in all.
template <typename ReadPage, typename ReadCount>
auto readEverything(ReadPage readPage, ReadCount readCount, int pageSize, int attempts)
    -> std::optional<decltype(readPage(0, 0))>
{
    for (int attempt = 0; attempt < attempts; ++attempt) {
        if (auto rows = readOnce(readPage, readCount, pageSize)) {
            return rows;
        }
    }
    return std::nullopt;
}

} // namespace paging
