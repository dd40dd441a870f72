#include "api/Authentication.h"

#include "access/Secret.h"

#include <algorithm>
#include <cctype>
#include <string_view>

namespace monitorservice {

namespace {

bool isScheme(std::string_view text)
{
    constexpr std::string_view scheme = "bearer";
    return std::equal(text.begin(), text.end(), scheme.begin(), scheme.end(), [](char given, char wanted) {
        return std::tolower(static_cast<unsigned char>(given)) == wanted;
    });
}

std::string_view tokenIn(const std::optional<std::string>& authorization)
{
    if (!authorization) {
        throw AuthenticationError("a token is needed: send \"Authorization: Bearer TOKEN\"");
    }
    std::string_view text = *authorization;
    const std::size_t blank = text.find(' ');
    if (blank == std::string_view::npos || !isScheme(text.substr(0, blank))) {
        throw AuthenticationError("Authorization must be \"Bearer TOKEN\"");
    }
    text.remove_prefix(std::min(text.find_first_not_of(' ', blank), text.size()));
    return text;
}

} // namespace

std::string secretHashOf(const std::optional<std::string>& authorization)
{
    return sha256(tokenIn(authorization));
}

// Found by its hash: how long the search takes tells nothing about the tokens there are.
Principal authenticate(const Session& session, const std::string& secretHash)
{
    const std::optional<Bearer> bearer = session.tokens().findBearer(secretHash);
    if (!bearer) {
        throw AuthenticationError("the token is not known");
    }
    const Token& token = bearer->token;
    if (token.revokedAt) {
        throw AuthenticationError("the token has been revoked", token.id);
    }
    if (token.expiresAt && session.now() >= *token.expiresAt) {
        throw AuthenticationError("the token has expired", token.id);
    }
    return {token.owner, bearer->grants, token.id};
}

} // namespace monitorservice
