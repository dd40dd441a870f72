#pragma once

#include "access/Token.h"
#include "store/Session.h"

#include <optional>
#include <string>

namespace monitorservice {

/// What a new token is told by.
struct TokenDescription
{
    std::string owner;
    std::string name;                 ///< what it is for; may be empty
    std::optional<Instant> expiresAt; ///< nothing: never
};

/// A token that was just made, the only moment at which its secret is there.
struct NewToken
{
    Token token;
    std::string secret; ///< what its bearer shows; kept nowhere
};

/// Makes and revokes tokens, in a session that the caller commits. The audit trail tells of it, as of the
/// whole service and never with a secret; a change that changes nothing leaves no entry. Every member throws
/// AdministrationError.
class TokenAdministration
{
public:
    /// The session must outlive the object. `author` is who the trail names.
    TokenAdministration(Session& session, std::string author);

    /// What can be said against a description before there are data.
    static void check(const TokenDescription& description);

    NewToken create(const TokenDescription& description);
    /// The token is refused from now on; gives what it is.
    Token revoke(const std::string& id);

private:
    Session& m_session;
    std::string m_author;
};

/// The document under which a token is told of; it has no secret.
std::string toDocument(const Token& token);

} // namespace monitorservice
