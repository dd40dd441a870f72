#include "KindsModel.h"
#include "StoreContract.h"
#include "query/Matcher.h"

#include <simdjson.h>

#include <algorithm>
#include <cstdlib>

namespace monitorservice::test {
namespace {

class Kinds : public StoreContract
{
};

// The documents that the matcher finds among those in reach, in the order of the query.
std::vector<std::string> expected(const std::vector<KnownDocument>& documents, const DocumentQuery& query)
{
    std::vector<const KnownDocument*> found;
    Matcher matcher(*query.where);
    simdjson::dom::parser parser;
    for (const KnownDocument& document : documents) {
        const auto& categories = query.categories;
        const bool isInReach = (query.everyProject || document.project == query.project) &&
                               (!query.parent || *query.parent == document.parent) &&
                               (!categories || std::find(categories->begin(), categories->end(),
                                                         document.category) != categories->end());
        if (isInReach && matcher.matches(parser.parse(document.searched))) {
            found.push_back(&document);
        }
    }
    std::sort(found.begin(), found.end(), [&query](const KnownDocument* left, const KnownDocument* right) {
        for (const OrderTerm& term : query.order) {
            const SortKey& one = left->keys.at(term.path);
            const SortKey& other = right->keys.at(term.path);
            if (one != other) {
                return (one < other) != term.descending;
            }
        }
        return left->id < right->id;
    });
    std::vector<std::string> texts;
    for (const KnownDocument* const document : found) {
        texts.push_back(document->text);
    }
    return texts;
}

std::vector<std::string> visited(const Documents& documents, const DocumentQuery& query)
{
    std::vector<std::string> texts;
    documents.visit(query, [&texts](std::string_view document) { texts.emplace_back(document); });
    return texts;
}

template <typename Item>
std::vector<Item> pageOf(const std::vector<Item>& all, std::size_t skip, std::size_t limit)
{
    const std::size_t from = std::min(skip, all.size());
    const std::size_t to = std::min(from + limit, all.size());
    return {all.begin() + static_cast<std::ptrdiff_t>(from), all.begin() + static_cast<std::ptrdiff_t>(to)};
}

// Random documents and where documents of every kind: what is visited and counted, and in which order and
// pages, is what the matcher and a sort of what it finds give. RK_TEST_LONG in the environment tries more.
TEST_P(Kinds, AreFoundAsTheMatcherFindsThem)
{
    Chance chance(20240301);
    const auto session = store->write();
    KindsModel model(*session, chance);
    const int rounds = std::getenv("RK_TEST_LONG") != nullptr ? 5000 : 300;
    for (const DocumentKind kind : allDocumentKinds) {
        const Documents& documents = session->documents(kind);
        std::size_t found = 0;
        for (int round = 0; round < rounds; ++round) {
            const std::string json = model.anyWhere(kind);
            const std::string order = chance.once(5) ? "" : model.anyOrder(kind);
            SCOPED_TRACE("kind " + std::to_string(static_cast<int>(kind)) + " where " + json + " order " +
                         order);
            const Where where = Where::parse(json);
            DocumentQuery query;
            query.project = chance.once(2) ? "p1" : "p2";
            query.everyProject = chance.once(4);
            query.where = &where;
            query.order = order.empty() ? std::vector<OrderTerm>() : parseOrder(order);
            if (chance.once(3)) {
                query.categories = chance.once(2)
                                       ? std::vector<std::string>{"Settlement"}
                                       : std::vector<std::string>{"Strain", "Inclinometer", "Unheard"};
            }
            if (const std::string parent = chance.of(model.of(kind)).parent;
                !parent.empty() && chance.once(4)) {
                query.parent = parent;
            }
            const std::vector<std::string> all = expected(model.of(kind), query);
            ASSERT_EQ(visited(documents, query), all);
            ASSERT_EQ(documents.count(query), all.size());
            query.skip = chance.below(6);
            query.limit = chance.below(6);
            ASSERT_EQ(visited(documents, query), pageOf(all, query.skip, query.limit));
            ASSERT_EQ(documents.count(query), all.size()) << "counting knows no pages";
            found += all.empty() ? 0 : 1;
        }
        EXPECT_GT(found, static_cast<std::size_t>(rounds / 10)) << static_cast<int>(kind);
    }
}

TEST_P(Kinds, AreFoundByTheirIdentifier)
{
    Chance chance(20240302);
    const auto session = store->write();
    const KindsModel model(*session, chance);
    for (const DocumentKind kind : allDocumentKinds) {
        for (const KnownDocument& known : model.of(kind)) {
            const auto stored = session->documents(kind).find(known.id);
            ASSERT_TRUE(stored) << known.id;
            EXPECT_EQ(stored->id, known.id);
            EXPECT_EQ(stored->project, known.project);
            EXPECT_EQ(stored->category, known.category);
            EXPECT_EQ(stored->text, known.text);
        }
        EXPECT_FALSE(session->documents(kind).find("none"));
    }
}

RK_EVERY_STORE(Kinds);

} // namespace
} // namespace monitorservice::test
