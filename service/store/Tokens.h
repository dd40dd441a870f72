#pragma once

#include "access/Bearer.h"
#include "store/StoreInterface.h"

#include <optional>
#include <string>
#include <vector>

namespace monitorservice {

/// Every member may throw StoreError.
class Tokens : public StoreInterface
{
public:
    virtual std::optional<Token> find(const std::string& id) const = 0;
    /// Of the token with this hash, expired or revoked as it may be. The hash is 32 bytes, any of which may
    /// be zero.
    virtual std::optional<Bearer> findBearer(const std::string& sha256) const = 0;
    /// The hash of the token's text; empty when there is no such token.
    virtual std::string secretHash(const std::string& id) const = 0;
    /// In the order of their identifiers.
    virtual std::vector<Token> list() const = 0;
    /// StoreFailure::Conflict when the identifier or the hash is taken.
    virtual void insert(const Token& token, const std::string& sha256) = 0;
    /// False when there is no such token; a token revoked earlier keeps its first time.
    virtual bool revoke(const std::string& id, Instant when) = 0;
};

} // namespace monitorservice
