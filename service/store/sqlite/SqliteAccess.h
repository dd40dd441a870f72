#pragma once

#include "store/Grants.h"
#include "store/Tokens.h"
#include "store/sqlite/SqliteConnection.h"

namespace monitorservice {

class SqliteTokens final : public Tokens
{
public:
    explicit SqliteTokens(SqliteConnection& connection) : m_connection(connection) {}

    std::optional<Token> find(const std::string& id) const override;
    std::optional<Bearer> findBearer(const std::string& sha256) const override;
    std::string secretHash(const std::string& id) const override;
    std::vector<Token> list() const override;
    void insert(const Token& token, const std::string& sha256) override;
    bool revoke(const std::string& id, Instant when) override;

private:
    SqliteConnection& m_connection;
};

class SqliteGrants final : public Grants
{
public:
    explicit SqliteGrants(SqliteConnection& connection) : m_connection(connection) {}

    std::vector<Grant> ofToken(const std::string& token) const override;
    std::vector<Grant> list() const override;
    std::string add(const Grant& grant) override;
    bool remove(const std::string& id) override;

private:
    SqliteConnection& m_connection;
};

} // namespace monitorservice
