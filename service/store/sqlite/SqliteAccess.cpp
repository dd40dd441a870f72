#include "store/sqlite/SqliteAccess.h"

namespace monitorservice {

namespace {

const std::string selectTokens = "SELECT id, owner, name, created_at, expires_at, revoked_at FROM tokens ";
const std::string selectGrants = "SELECT id, token, project, category, rights, created_at FROM grants ";

Token tokenOf(const SqliteStatement& row)
{
    return {row.text(0),           row.text(1), row.text(2), row.integer(3), row.optionalInteger(4),
            row.optionalInteger(5)};
}

std::vector<Grant> allGrants(SqliteStatement& statement)
{
    std::vector<Grant> grants;
    while (statement.step()) {
        grants.push_back({statement.text(0), statement.text(1), statement.optionalText(2),
                          statement.optionalText(3), Rights::ofBits(statement.integer(4)),
                          statement.integer(5)});
    }
    return grants;
}

} // namespace

std::optional<Token> SqliteTokens::find(const std::string& id) const
{
    SqliteStatement statement = m_connection.statement(selectTokens + "WHERE id = ?");
    return statement.bind(id).step() ? std::optional(tokenOf(statement)) : std::nullopt;
}

std::optional<Bearer> SqliteTokens::findBearer(const std::string& sha256) const
{
    SqliteStatement statement = m_connection.statement(selectTokens + "WHERE secret_sha256 = ?");
    statement.bindBlob(sha256);
    if (!statement.step()) {
        return std::nullopt;
    }
    const Token token = tokenOf(statement);
    return Bearer{token, SqliteGrants(m_connection).ofToken(token.id)};
}

std::string SqliteTokens::secretHash(const std::string& id) const
{
    SqliteStatement statement = m_connection.statement("SELECT secret_sha256 FROM tokens WHERE id = ?");
    return statement.bind(id).step() ? statement.text(0) : std::string();
}

std::vector<Token> SqliteTokens::list() const
{
    SqliteStatement statement = m_connection.statement(selectTokens + "ORDER BY id");
    std::vector<Token> tokens;
    while (statement.step()) {
        tokens.push_back(tokenOf(statement));
    }
    return tokens;
}

void SqliteTokens::insert(const Token& token, const std::string& sha256)
{
    SqliteStatement statement = m_connection.statement(
        "INSERT INTO tokens (id, owner, name, created_at, expires_at, revoked_at, secret_sha256)"
        " VALUES (?, ?, ?, ?, ?, ?, ?)");
    statement.bind(token.id, token.owner, token.name, token.createdAt, token.expiresAt, token.revokedAt);
    statement.bindBlob(sha256);
    statement.run();
}

bool SqliteTokens::revoke(const std::string& id, Instant when)
{
    SqliteStatement statement =
        m_connection.statement("UPDATE tokens SET revoked_at = ifnull(revoked_at, ?) WHERE id = ?");
    return statement.bind(when, id).run() > 0;
}

std::vector<Grant> SqliteGrants::ofToken(const std::string& token) const
{
    SqliteStatement statement = m_connection.statement(selectGrants + "WHERE token = ?");
    return allGrants(statement.bind(token));
}

std::vector<Grant> SqliteGrants::list() const
{
    SqliteStatement statement = m_connection.statement(selectGrants + "ORDER BY id");
    return allGrants(statement);
}

std::string SqliteGrants::add(const Grant& grant)
{
    m_connection
        .statement(
            "INSERT INTO grants (id, token, project, category, rights, created_at) VALUES (?, ?, ?, ?, ?, ?)"
            " ON CONFLICT (token, ifnull(project, x''), ifnull(category, x'')) DO UPDATE SET rights = rights "
            "| "
            "excluded.rights")
        .bind(grant.id, grant.token, grant.project, grant.category, grant.rights.bits(), grant.createdAt)
        .run();
    SqliteStatement statement =
        m_connection.statement("SELECT id FROM grants WHERE token = ? AND project IS ? AND category IS ?");
    statement.bind(grant.token, grant.project, grant.category).step();
    return statement.text(0);
}

bool SqliteGrants::remove(const std::string& id)
{
    SqliteStatement statement = m_connection.statement("DELETE FROM grants WHERE id = ?");
    return statement.bind(id).run() > 0;
}

} // namespace monitorservice
