#pragma once

#include <libpq-fe.h>

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// The rows that a statement gave, as the server sends them in binary
/// (https://www.postgresql.org/docs/15/protocol-overview.html#PROTOCOL-FORMAT-CODES): whole numbers and
/// floating-point numbers with the most significant byte first, texts as their bytes.
class PostgresResult
{
public:
    /// Owns the result.
    explicit PostgresResult(PGresult* result) : m_result(result) {}

    /// Whether it is none at all: the server has given all that a statement gives.
    bool isNothing() const { return m_result == nullptr; }
    ExecStatusType status() const { return PQresultStatus(m_result.get()); }
    const char* errorMessage() const { return PQresultErrorMessage(m_result.get()); }
    /// One of PG_DIAG_…; empty when the server has not said it.
    std::string_view errorField(int field) const;

    int rows() const { return PQntuples(m_result.get()); }
    bool isEmpty() const { return rows() == 0; }
    /// How many rows the statement has changed.
    std::int64_t affected() const;

    bool isNull(int row, int column) const { return PQgetisnull(m_result.get(), row, column) != 0; }
    /// Of two, four or eight bytes.
    std::int64_t integer(int row, int column) const;
    double real(int row, int column) const;
    bool boolean(int row, int column) const { return view(row, column) == std::string_view("\1", 1); }
    std::string text(int row, int column) const { return std::string(view(row, column)); }
    /// The text in the first column.
    static std::string firstText(const PostgresResult& rows, int row) { return rows.text(row, 0); }
    /// Valid as long as the result.
    std::string_view view(int row, int column) const;
    std::optional<std::int64_t> optionalInteger(int row, int column) const;
    std::optional<std::string> optionalText(int row, int column) const;

    /// What a function makes of each row, called with the result and the row's number.
    template <typename Function>
    auto each(const Function& function) const
    {
        std::vector<decltype(function(*this, 0))> all;
        all.reserve(static_cast<std::size_t>(rows()));
        for (int row = 0; row < rows(); ++row) {
            all.push_back(function(*this, row));
        }
        return all;
    }

private:
    struct Clear
    {
        void operator()(PGresult* result) const { PQclear(result); }
    };

    std::unique_ptr<PGresult, Clear> m_result;
};

} // namespace monitorservice
