#pragma once

#include "domain/DocumentKind.h"
#include "store/Categories.h"
#include "store/Documents.h"
#include "store/Excesses.h"
#include "store/Grants.h"
#include "store/Measurements.h"
#include "store/Outbox.h"
#include "store/Projects.h"
#include "store/StoreInterface.h"
#include "store/Tokens.h"

#include <string>

namespace monitorservice {

/// One transaction: everything it writes comes to be at once with commit(), or not at all. A session that
/// only reads sees everything as of one moment, that of its first reading; one that writes sees what it wrote
/// itself and what others had committed when its claim was had, and may see of what it has not claimed what
/// others commit meanwhile. To be used and
/// destroyed by the thread that began it, by one call at a time: what is given to a visitor may still be on
/// its way from a database, so a visitor must not call into the session that it visits.
///
/// What a change is refused for may be told by a later call that does not say so, by commit() at the latest:
/// a database far away is not waited for after each of them. Calls that give something tell at once.
///
/// A call that throws StoreError leaves a session in an unknown state: it is to be destroyed without
/// commit(), and nothing that it wrote comes to be. QueryError, and what a visitor throws, leave it as it
/// was.
class Session : public StoreInterface
{
public:
    virtual const Documents& documents(DocumentKind kind) const = 0;
    virtual const Measurements& measurements() const = 0;
    virtual const Excesses& excesses() const = 0;
    virtual const Projects& projects() const = 0;
    virtual const Categories& categories() const = 0;
    virtual const Tokens& tokens() const = 0;
    virtual const Grants& grants() const = 0;
    virtual const Outbox& outbox() const = 0;

    virtual Documents& documents(DocumentKind kind) = 0;
    virtual Measurements& measurements() = 0;
    virtual Excesses& excesses() = 0;
    virtual Projects& projects() = 0;
    virtual Categories& categories() = 0;
    virtual Tokens& tokens() = 0;
    virtual Grants& grants() = 0;
    virtual Outbox& outbox() = 0;

    /// The time at which the session began.
    virtual Instant now() const = 0;
    /// An identifier that no other session gives, by whatever process: greater than every one that was given
    /// before to sessions with a target in common with this one's claim; so greater than all when that, or
    /// theirs, is of everything. Lost with the session if that is not committed, and perhaps given anew then.
    virtual std::string newIdentifier() = 0;
    /// The greatest one given; empty when none was.
    virtual std::string lastIdentifier() const = 0;
    /// Those given from now on come after this one.
    virtual void skipIdentifiers(const std::string& last) = 0;
    /// Whether the store lacks a part of what is being copied into it; it is then opened by who says
    /// StoreOptions::mayBeUnfinished alone.
    virtual bool isUnfinished() const = 0;
    virtual void setUnfinished(bool isUnfinished) = 0;
    /// Returns when the changes survive a loss of power and every session that begins reading from now on
    /// sees them, whatever process it is of. The session is over then.
    virtual void commit() = 0;
};

} // namespace monitorservice
