#pragma once

#include "store/DocumentQuery.h"
#include "store/StoreInterface.h"
#include "store/StoredDocument.h"

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

namespace monitorservice {

/// The documents of one kind. What a condition means is what a Matcher says of each document that the query
/// reaches, with the members that its kind has besides those stored; documents out of the query's reach take
/// no steps of its patterns.
///
/// Every member may throw StoreError; those with a query also QueryError: 400 for an order by a path that the
/// kind cannot be ordered by, or by two that are the same, 422 for a pattern that takes too many steps.
class Documents : public StoreInterface
{
public:
    /// Is given each document's text; the view ends with the call. It must not call into the session, which
    /// throws StoreFailure::Internal then: the documents may still be on their way. What it throws ends the
    /// visit and arrives at the caller.
    using Visitor = std::function<void(std::string_view document)>;

    virtual std::optional<StoredDocument> find(const std::string& id) const = 0;
    virtual std::uint64_t count(const DocumentQuery& query) const = 0;
    /// Says that this query is likely to be visited soon, before anything is changed: a database far away
    /// gives what several of them find at once. No answer depends on it.
    virtual void expect(const DocumentQuery& query) const = 0;
    virtual void visit(const DocumentQuery& query, const Visitor& visitor) const = 0;

    /// `text` is the whole document; its "_id" is `id`, and its "projectId", if it has one, `project`. It
    /// comes back byte for byte. StoreFailure::Conflict when the identifier is taken, in whatever project,
    /// when the kind holds something else to be unique, and when what the document refers to does not exist.
    /// Entries of the audit trail refer to nothing: their project may be gone, or be none, an empty text.
    virtual void insert(const std::string& project, const std::string& id, const std::string& text) = 0;
    /// Nothing is changed when there is no such document in the project.
    virtual void replace(const std::string& project, const std::string& id, const std::string& text) = 0;
    /// StoreFailure::Conflict when something refers to the document. Nothing is changed when there is none.
    virtual void remove(const std::string& project, const std::string& id) = 0;
};

} // namespace monitorservice
