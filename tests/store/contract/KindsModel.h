#pragma once

#include "domain/DocumentKind.h"
#include "store/Session.h"
#include "support/Chance.h"

#include <map>
#include <string>
#include <variant>
#include <vector>

namespace monitorservice::test {

/// What a path that documents are ordered by holds: nothing stands before everything, texts go byte by byte.
using SortKey = std::variant<std::monostate, double, std::string>;

/// A document as a test knows it.
struct KnownDocument
{
    std::string id;
    std::string project;
    std::string category; ///< by which access to it is decided
    std::string parent;
    std::string text;
    std::string searched; ///< what conditions are asked of
    std::map<std::string, SortKey> keys;
};

/// Random documents of every kind in two projects, and conditions on them.
class KindsModel
{
public:
    KindsModel(Session& session, Chance& chance) : m_session(session), m_chance(chance) { fill(); }

    const std::vector<KnownDocument>& of(DocumentKind kind) const { return m_known.at(kind); }

    /// A where document with up to three conditions, most of them on members that the kind has.
    std::string anyWhere(DocumentKind kind);
    /// Paths that the kind is ordered by, the most significant first.
    std::string anyOrder(DocumentKind kind);

private:
    struct Members;

    void fill();
    void fillProject(const std::string& project);
    void fillMeasured(const std::string& project, const std::string& cell, const std::string& subCategory);
    std::string add(DocumentKind kind, const std::string& project, const Members& members);
    std::string categoryOf(DocumentKind kind, const std::string& id) const;
    const KnownDocument& known(DocumentKind kind, const std::string& id) const;
    std::string anyName() const;
    std::string anyTime() const;
    std::string anyValue();

    Session& m_session;
    Chance& m_chance;
    int m_number = 0;
    std::map<DocumentKind, std::vector<KnownDocument>> m_known;
};

} // namespace monitorservice::test
