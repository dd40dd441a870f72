#pragma once

#include "access/Grant.h"
#include "access/Token.h"
#include "domain/DocumentKind.h"
#include "domain/Project.h"
#include "domain/Sample.h"
#include "query/Where.h"
#include "store/PointSelection.h"
#include "store/StoreError.h"
#include "store/StoreInterface.h"
#include "store/StoredDocument.h"

#include <cstdint>
#include <functional>
#include <limits>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace monitorservice {

/// Which documents of a project, in which order, and which page of them.
struct DocumentQuery
{
    std::string project;
    std::optional<std::vector<std::string>> categories; ///< only these; nothing: every category
    /// Only those that belong to this document: to a monitoring, a data manage, an alarm or an alarm detail,
    /// as the kind says. Not for cells and sub-categories.
    std::optional<std::string> parent = std::nullopt;
    const Where* where = nullptr; ///< null: no condition
    /// As parseOrder() reads it; ties, and no order at all, are settled by rising identifier.
    std::optional<std::string> order;
    std::uint64_t skip = 0;
    /// The most documents given; all of them unless it is set. count() reads neither skip nor limit.
    std::uint64_t limit = std::numeric_limits<std::uint64_t>::max();
};

/// The documents of one kind. Every member may throw StoreError; those with a condition also QueryError.
class Documents : public StoreInterface
{
public:
    /// Is given each document's text; the view ends with the call.
    using Visitor = std::function<void(std::string_view document)>;

    virtual std::optional<StoredDocument> find(const std::string& id) const = 0;
    virtual std::uint64_t count(const DocumentQuery& query) const = 0;
    virtual void visit(const DocumentQuery& query, const Visitor& visitor) const = 0;

    /// `text` is the whole document; its "_id" and "projectId" are `id` and `project`.
    virtual void insert(const std::string& project, const std::string& id, const std::string& text) = 0;
    virtual void replace(const std::string& project, const std::string& id, const std::string& text) = 0;
    virtual void remove(const std::string& project, const std::string& id) = 0;
};

class Projects : public StoreInterface
{
public:
    virtual std::optional<Project> find(const std::string& id) const = 0;
    /// In the order of their identifiers.
    virtual std::vector<Project> list() const = 0;
    virtual void insert(const Project& project) = 0;
};

/// The texts that monitorings are classified by, the same for every project.
class Categories : public StoreInterface
{
public:
    virtual bool contains(const std::string& category) const = 0;
    /// In the order in which they were added.
    virtual std::vector<std::string> list() const = 0;
    /// False when the category was there already.
    virtual bool add(const std::string& category) = 0;
};

class Tokens : public StoreInterface
{
public:
    virtual std::optional<Token> find(const std::string& id) const = 0;
    /// Expired and revoked ones are found too.
    virtual std::optional<Token> findBySecretHash(const std::string& sha256) const = 0;
    /// In the order of their identifiers.
    virtual std::vector<Token> list() const = 0;
    virtual void insert(const Token& token, const std::string& sha256) = 0;
    /// False when there is no such token; a token revoked earlier keeps its first time.
    virtual bool revoke(const std::string& id, Instant when) = 0;
};

class Grants : public StoreInterface
{
public:
    virtual std::vector<Grant> ofToken(const std::string& token) const = 0;
    /// In the order of their identifiers.
    virtual std::vector<Grant> list() const = 0;
    /// Adds the rights to the grant of the same token, project and category when there is one; gives the
    /// identifier of the grant that holds them now.
    virtual std::string add(const Grant& grant) = 0;
    /// False when there is no such grant.
    virtual bool remove(const std::string& id) = 0;
};

/// The samples of the point locations, and what is kept of each day. Every member may throw StoreError.
class Measurements : public StoreInterface
{
public:
    using SampleVisitor = std::function<void(const Sample& sample)>;
    using DayVisitor = std::function<void(const DaySummary& day)>;
    using PointVisitor = std::function<void(const StoredPoint& point)>;

    virtual std::optional<StoredPoint> findPoint(const std::string& cell, const std::string& subCategory,
                                                 const std::string& name, const std::string& depth) const = 0;
    /// The points of this name, by rising depth as text.
    virtual void visitPoints(const std::string& cell, const std::string& subCategory, const std::string& name,
                             const PointVisitor& visitor) const = 0;
    /// Gives the point's key. The document's "_id" and "projectId" are `id` and `project`.
    virtual std::int64_t insertPoint(const std::string& project, const std::string& id,
                                     const std::string& document) = 0;
    /// `lastTime` is the time of the point's latest sample, "lastDate" in the document; nothing when it has
    /// none.
    virtual void replacePoint(std::int64_t point, const std::string& document,
                              const std::optional<Instant>& lastTime) = 0;
    /// Gives the point these relations, a JSON array as it is stored, and writes the change down; false when
    /// it has them already and nothing is changed. A clock that was set back does not make a change older
    /// than the one before.
    virtual bool replaceLinks(std::int64_t point, const std::string& links, Instant when,
                              const std::string& who) = 0;
    /// Points and samples by a condition. The session must outlive the selection, and has one at a time.
    virtual std::unique_ptr<PointSelection> select(const DocumentQuery& query) const = 0;

    virtual std::optional<Sample> findSample(std::int64_t point, Instant time, std::int32_t count) const = 0;
    /// Samples from the first instant to before the second, in the order of time and count; a call ends
    /// before the next one of this kind on the same session begins.
    virtual void visitSamples(std::int64_t point, Instant from, Instant before,
                              const SampleVisitor& visitor) const = 0;
    /// False when the point has a sample of this time and count; nothing is changed then.
    virtual bool insertSample(std::int64_t point, const Sample& sample) = 0;
    /// Gives the sample of this time and count the value and the flag.
    virtual void replaceSample(std::int64_t point, const Sample& sample) = 0;

    /// Days from the first to the last one named, both included, rising.
    virtual void visitDays(std::int64_t point, std::int64_t first, std::int64_t last,
                           const DayVisitor& visitor) const = 0;
    /// The latest day before the one named that has samples.
    virtual std::optional<DaySummary> latestDayBefore(std::int64_t point, std::int64_t day) const = 0;
    /// Adds samples to a day: their number to its own; the last of them becomes the day's last one unless
    /// that is later. One that is as late replaces it: it is the same sample with a corrected value.
    virtual void addToDay(std::int64_t point, const DaySummary& added) = 0;

    /// Removes all that was delivered for the monitoring and sub-category or followed from it: points,
    /// samples, days, the data manage with its history, alarms with their details. Groups stay.
    virtual void removeDelivered(const std::string& cell, const std::string& subCategory) = 0;
};

/// One transaction: everything it reads is of one moment, everything it writes comes to be at once with
/// commit(), or not at all. To be used and destroyed by the thread that began it.
class Session : public StoreInterface
{
public:
    virtual const Documents& documents(DocumentKind kind) const = 0;
    virtual const Measurements& measurements() const = 0;
    virtual const Projects& projects() const = 0;
    virtual const Categories& categories() const = 0;
    virtual const Tokens& tokens() const = 0;
    virtual const Grants& grants() const = 0;

    virtual Documents& documents(DocumentKind kind) = 0;
    virtual Measurements& measurements() = 0;
    virtual Projects& projects() = 0;
    virtual Categories& categories() = 0;
    virtual Tokens& tokens() = 0;
    virtual Grants& grants() = 0;

    /// The time at which the session began.
    virtual Instant now() const = 0;
    /// An identifier greater than every one given before, by whatever process. Lost with the session if that
    /// is not committed, and given anew then.
    virtual std::string newIdentifier() = 0;
    /// Returns when the changes survive a loss of power. The session is over then.
    virtual void commit() = 0;
};

/// All that the service keeps. Safe to use from several threads at once.
class Store : public StoreInterface
{
public:
    /// A session that only reads; it neither waits for writers nor holds them up.
    virtual std::unique_ptr<const Session> read() = 0;
    /// A session that may write. There is one at a time: waits for its turn, which goes in the order of
    /// asking, then StoreFailure::Busy.
    virtual std::unique_ptr<Session> write() = 0;
};

} // namespace monitorservice
