#pragma once

#include "store/Grants.h"
#include "store/Tokens.h"
#include "store/postgres/PostgresConnection.h"

namespace monitorservice {

class PostgresTokens final : public Tokens
{
public:
    explicit PostgresTokens(PostgresConnection& connection) : m_connection(connection) {}

    std::optional<Token> find(const std::string& id) const override;
    std::optional<Bearer> findBearer(const std::string& sha256) const override;
    std::string secretHash(const std::string& id) const override;
    std::vector<Token> list() const override;
    void insert(const Token& token, const std::string& sha256) override;
    bool revoke(const std::string& id, Instant when) override;

private:
    PostgresConnection& m_connection;
};

/// Sends for what findBearer() will give, as PostgresConnection::expect().
void expectBearer(PostgresConnection& connection, const std::string& sha256);

class PostgresGrants final : public Grants
{
public:
    explicit PostgresGrants(PostgresConnection& connection) : m_connection(connection) {}

    std::vector<Grant> ofToken(const std::string& token) const override;
    std::vector<Grant> list() const override;
    std::string add(const Grant& grant) override;
    bool remove(const std::string& id) override;

private:
    PostgresConnection& m_connection;
};

} // namespace monitorservice
