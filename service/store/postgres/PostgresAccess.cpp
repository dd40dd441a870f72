#include "store/postgres/PostgresAccess.h"

namespace monitorservice {

namespace {

const std::string selectTokens = "SELECT id, owner, name, created_at, expires_at, revoked_at FROM tokens ";
// With a row for each of the grants, or one without any.
const std::string selectBearer =
    "SELECT t.id, t.owner, t.name, t.created_at, t.expires_at, t.revoked_at, "
    "g.id, g.token, g.project, g.category, g.rights, g.created_at "
    "FROM tokens AS t LEFT JOIN grants AS g ON g.token = t.id WHERE t.secret_sha256 = $1";
constexpr int firstOfGrant = 6;
const std::string selectGrants = "SELECT id, token, project, category, rights, created_at FROM grants ";

Token tokenOf(const PostgresResult& rows, int row)
{
    return {rows.text(row, 0),
            rows.text(row, 1),
            rows.text(row, 2),
            rows.integer(row, 3),
            rows.optionalInteger(row, 4),
            rows.optionalInteger(row, 5)};
}

// From this column on.
Grant grantAt(const PostgresResult& rows, int row, int column)
{
    return {rows.text(row, column),
            rows.text(row, column + 1),
            rows.optionalText(row, column + 2),
            rows.optionalText(row, column + 3),
            Rights::ofBits(rows.integer(row, column + 4)),
            rows.integer(row, column + 5)};
}

Grant grantOf(const PostgresResult& rows, int row)
{
    return grantAt(rows, row, 0);
}

} // namespace

std::optional<Token> PostgresTokens::find(const std::string& id) const
{
    const PostgresResult found = m_connection.run(selectTokens + "WHERE id = $1", id);
    return found.isEmpty() ? std::nullopt : std::optional(tokenOf(found, 0));
}

std::optional<Bearer> PostgresTokens::findBearer(const std::string& sha256) const
{
    const PostgresResult found = m_connection.run(selectBearer, PostgresBytes{sha256});
    if (found.isEmpty()) {
        return std::nullopt;
    }
    Bearer bearer{tokenOf(found, 0), {}};
    for (int row = 0; row < found.rows() && !found.isNull(row, firstOfGrant); ++row) {
        bearer.grants.push_back(grantAt(found, row, firstOfGrant));
    }
    return bearer;
}

void expectBearer(PostgresConnection& connection, const std::string& sha256)
{
    connection.expect(selectBearer, PostgresBytes{sha256});
}

std::string PostgresTokens::secretHash(const std::string& id) const
{
    const PostgresResult found = m_connection.run("SELECT secret_sha256 FROM tokens WHERE id = $1", id);
    return found.isEmpty() ? std::string() : found.text(0, 0);
}

std::vector<Token> PostgresTokens::list() const
{
    return m_connection.run(selectTokens + "ORDER BY id").each(tokenOf);
}

void PostgresTokens::insert(const Token& token, const std::string& sha256)
{
    m_connection.post("INSERT INTO tokens (id, owner, name, created_at, expires_at, revoked_at, "
                      "secret_sha256) VALUES ($1, $2, $3, $4, $5, $6, $7)",
                      token.id, token.owner, token.name, token.createdAt, token.expiresAt, token.revokedAt,
                      PostgresBytes{sha256});
}

bool PostgresTokens::revoke(const std::string& id, Instant when)
{
    return m_connection.run("UPDATE tokens SET revoked_at = coalesce(revoked_at, $1) WHERE id = $2", when, id)
               .affected() > 0;
}

std::vector<Grant> PostgresGrants::ofToken(const std::string& token) const
{
    return m_connection.run(selectGrants + "WHERE token = $1", token).each(grantOf);
}

std::vector<Grant> PostgresGrants::list() const
{
    return m_connection.run(selectGrants + "ORDER BY id").each(grantOf);
}

std::string PostgresGrants::add(const Grant& grant)
{
    return m_connection
        .run("INSERT INTO grants (id, token, project, category, rights, created_at) VALUES "
             "($1, $2, $3, $4, $5, $6) ON CONFLICT (token, (project IS NULL), coalesce(project, ''), "
             "(category IS NULL), coalesce(category, '')) DO UPDATE SET "
             "rights = grants.rights | excluded.rights RETURNING id",
             grant.id, grant.token, grant.project, grant.category, grant.rights.bits(), grant.createdAt)
        .text(0, 0);
}

bool PostgresGrants::remove(const std::string& id)
{
    return m_connection.run("DELETE FROM grants WHERE id = $1", id).affected() > 0;
}

} // namespace monitorservice
