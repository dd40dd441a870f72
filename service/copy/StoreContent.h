#pragma once

#include "access/Grant.h"
#include "access/Token.h"
#include "domain/DocumentKind.h"
#include "domain/Project.h"
#include "domain/Sample.h"
#include "store/Excesses.h"
#include "store/Outbox.h"
#include "store/Session.h"
#include "store/StoredDocument.h"

#include <cstdint>
#include <functional>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// Is given what a store holds, piece by piece. Views end with the call. It must not call into the session
/// that the pieces come from.
class ContentVisitor
{
public:
    ContentVisitor() = default;
    ContentVisitor(const ContentVisitor&) = delete;
    ContentVisitor& operator=(const ContentVisitor&) = delete;
    virtual ~ContentVisitor() = default;

    virtual void category(const std::string& name) = 0;
    virtual void project(const Project& project) = 0;
    /// `sha256`: of the token's text.
    virtual void token(const Token& token, const std::string& sha256) = 0;
    virtual void grant(const Grant& grant) = 0;
    /// A document of any kind but a point location. The project of an entry of the audit trail may be none,
    /// an empty text.
    virtual void document(DocumentKind kind, const std::string& project, std::string_view text) = 0;
    virtual void notice(const Notice& notice) = 0;
    /// A point location; its samples and readings in excess follow.
    virtual void point(const std::string& project, const DeliveredTo& point) = 0;
    virtual void sample(const KeptSample& sample) = 0;
    virtual void excess(const ReadingInExcess& reading) = 0;
    virtual void pointEnds() = 0;
};

/// Of all projects: categories, the projects with their sub-categories, tokens and grants. Pieces come in an
/// order that is the same for every store; so they do below.
void visitBase(const Session& session, ContentVisitor& visitor);

/// The identifiers of a project's monitorings, rising.
std::vector<std::string> monitoringsOf(const Session& session, const std::string& project);

/// A monitoring with all that is of it, the audit trail excepted.
void visitMonitoring(const Session& session, const std::string& project, const std::string& cell,
                     ContentVisitor& visitor);

using EntryVisitor = std::function<void(const std::string& project, std::string_view text)>;

/// The audit trail of all projects, of those that are gone and of none, without its first entries.
void visitTrail(const Session& session, std::uint64_t skip, const EntryVisitor& visitor);

/// How many entries the audit trail has.
std::uint64_t trailLength(const Session& session);

} // namespace monitorservice
