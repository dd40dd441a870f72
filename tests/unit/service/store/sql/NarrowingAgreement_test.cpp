// Random documents and where documents: the rows that SQL selects and the matcher accepts must be the rows
// that the matcher accepts, and where narrowing says that it is exact, SQL alone must select them.

#include "NarrowedTable.h"
#include "query/Matcher.h"
#include "query/PatternSearch.h"
#include "support/Chance.h"
#include "unit/service/query/Document.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <memory>
#include <set>
#include <string>
#include <vector>

namespace monitorservice {
namespace {

using test::Chance;

using Json = std::string;

const std::vector<Json> plainTexts{
    R"("a")", R"("b")",       R"("ab")",      R"("")",        R"("é")",      R"("A")", R"("\ud83d\ude00")",
    R"("z")", R"("2024-03")", R"("\\u0000")", R"("o'clock")", R"("\uff5e")", R"("5")", R"("x\ny")"};
const std::vector<Json> timestamps{R"("2024-03-01T00:00:00Z")",      R"("2024-03-01T08:00:00.000+08:00")",
                                   R"("2024-03-01T08:00:00+0800")",  R"("2024-03-01T00:00:00.0004Z")",
                                   R"("2024-03-01T00:00:00.0009Z")", R"("2024-03-01T00:00:00.001Z")",
                                   R"("2024-02-29T23:59:59.9999Z")", R"("2024-03-02T00:00:00Z")",
                                   R"("1969-12-31T23:59:59.9995Z")", R"("2024-03-01T00:00:00.000900000Z")"};
const std::vector<Json> oddValues{"5",
                                  "5.0",
                                  "9007199254740993",
                                  "true",
                                  "{}",
                                  R"({"b":"a"})",
                                  "[]",
                                  "[null]",
                                  R"(["a"])",
                                  R"(["a","2024-03-01T00:00:00Z"])",
                                  R"([["a"]])",
                                  R"([{"b":"a"},{"b":"b"}])",
                                  R"("a\u0000b")",
                                  R"("\u0000")",
                                  R"("2024-02-30T00:00:00Z")"};

Json anyText(Chance& chance)
{
    return chance.below(3) == 0 ? chance.of(timestamps) : chance.of(plainTexts);
}

Json anyValue(Chance& chance)
{
    switch (chance.below(6)) {
    case 0:
        return "null";
    case 1:
        return chance.of(oddValues);
    default:
        return anyText(chance);
    }
}

void addMember(Json& object, const std::string& member)
{
    object += (object.size() > 1 ? "," : "") + member;
}

// A document whose "name" and "category" are texts and whose "createdAt" and "updatedAt" are timestamps,
// each perhaps null or missing.
Json uniformDocument(Chance& chance)
{
    Json json = "{";
    for (const char* name : {"name", "category"}) {
        const std::size_t kind = chance.below(8);
        if (kind > 0) {
            addMember(json, '"' + std::string(name) + "\":" + (kind == 1 ? "null" : anyText(chance)));
        }
    }
    for (const char* name : {"createdAt", "updatedAt"}) {
        const std::size_t kind = chance.below(8);
        if (kind > 0) {
            addMember(json, '"' + std::string(name) + "\":" + (kind == 1 ? "null" : chance.of(timestamps)));
        }
    }
    addMember(json, R"("alarmTo":[)" + anyText(chance) + "," + anyText(chance) + "]");
    addMember(json, R"("depth":)" + anyValue(chance));
    return json + "}";
}

// A value that has an order.
Json bound(Chance& chance)
{
    if (chance.below(2) == 0) {
        return chance.of(timestamps);
    }
    const Json value = anyValue(chance);
    return value.front() == '[' || value.front() == '{' ? anyText(chance) : value;
}

Json condition(Chance& chance)
{
    static const std::vector<std::string> orders{"$gte", "$gt", "$lte", "$lt"};
    switch (chance.below(10)) {
    case 0:
    case 1:
        return anyValue(chance);
    case 2:
        return R"({"$ne":)" + anyValue(chance) + "}";
    case 3:
    case 4: {
        Json list;
        for (std::size_t i = chance.below(4); i > 0; --i) {
            list += anyValue(chance) + (i > 1 ? "," : "");
        }
        return (chance.below(3) == 0 ? R"({"$nin":[)" : R"({"$in":[)") + list + "]}";
    }
    case 5:
        return R"({"$exists":)" + std::string(chance.below(2) == 0 ? "true}" : "false}");
    case 6:
        return R"({"$regex":")" + chance.of(std::vector<std::string>{"a", "^a", "[bz]", "^$", "2024"}) +
               "\"}";
    case 7:
        return R"({"$gte":)" + bound(chance) + R"(,"$lt":)" + bound(chance) + "}";
    default:
        return "{\"" + chance.of(orders) + "\":" + bound(chance) + "}";
    }
}

Json whereDocument(Chance& chance)
{
    std::vector<std::string> paths{"name",    "category", "createdAt", "updatedAt",
                                   "alarmTo", "depth",    "name.b",    "alarmTo.0"};
    Json json = "{";
    for (std::size_t i = chance.of(std::vector<std::size_t>{1, 1, 1, 2, 2, 3}); i > 0; --i) {
        // The first paths have columns and come more often.
        const std::size_t position = chance.below(chance.below(3) == 0 ? paths.size() : 4);
        addMember(json, '"' + paths[position] + "\":" + condition(chance));
        paths.erase(paths.begin() + static_cast<std::ptrdiff_t>(position));
    }
    return json + "}";
}

// Random documents, and their columns.
class Documents
{
public:
    Documents(std::size_t count, Chance& chance)
    {
        for (std::size_t i = 0; i < count; ++i) {
            m_documents.push_back(std::make_unique<Document>(uniformDocument(chance)));
            m_table.insert(m_documents.back()->root());
        }
    }

    const std::vector<std::unique_ptr<Document>>& all() const { return m_documents; }
    NarrowedTable& table() { return m_table; }

private:
    std::vector<std::unique_ptr<Document>> m_documents;
    NarrowedTable m_table;
};

// Whether the patterns that were left are found in the texts that the columns of the document hold.
bool holdsPatterns(const Narrowing& narrowing, const Document& document)
{
    return std::all_of(narrowing.patterns.begin(), narrowing.patterns.end(),
                       [&document](const ColumnPattern& one) {
                           const std::optional<std::string> text = textOf(one, document.root()).text;
                           return text && PatternSearch().finds(*one.pattern, *text);
                       });
}

struct Tally
{
    int wheres = 0;
    int exact = 0;
    int byPatterns = 0;
    int narrowed = 0;
    int matched = 0;
    int unmatched = 0;
};

void compareOnce(Documents& documents, const Json& json, Tally& tally)
{
    SCOPED_TRACE(json);
    const Where where = Where::parse(json);
    const Narrowing narrowing = NarrowedTable::narrowed(where);
    SCOPED_TRACE(narrowing.condition.text(Dialect()));
    const std::set<std::size_t> selected = documents.table().select(narrowing);

    Matcher matcher(where);
    for (std::size_t i = 0; i < documents.all().size(); ++i) {
        const Document& document = *documents.all()[i];
        const bool matches = matcher.matches(document.root());
        const bool isSelected = selected.count(i) > 0;
        ASSERT_TRUE(isSelected || !matches) << "SQL lost " << document.json();
        if (narrowing.exact) {
            ASSERT_EQ(isSelected, matches) << "not exact for " << document.json();
        }
        if (!narrowing.patterns.empty()) {
            ASSERT_EQ(isSelected && holdsPatterns(narrowing, document), matches)
                << "patterns alone do not tell for " << document.json();
        }
        ++(matches ? tally.matched : tally.unmatched);
    }
    ++tally.wheres;
    tally.exact += narrowing.exact ? 1 : 0;
    tally.byPatterns += narrowing.patterns.empty() ? 0 : 1;
    tally.narrowed += selected.size() < documents.all().size() ? 1 : 0;
}

// Prints what was compared; RK_TEST_LONG in the environment compares ten times as much.
Tally compare(unsigned seed)
{
    const int tables = std::getenv("RK_TEST_LONG") != nullptr ? 100 : 10;
    constexpr std::size_t documentsPerTable = 100;
    constexpr int wheresPerTable = 800;
    Chance chance(seed);
    Tally tally;
    for (int i = 0; i < tables && !testing::Test::HasFatalFailure(); ++i) {
        Documents documents(documentsPerTable, chance);
        for (int j = 0; j < wheresPerTable && !testing::Test::HasFatalFailure(); ++j) {
            compareOnce(documents, whereDocument(chance), tally);
        }
    }
    std::cout << tally.matched + tally.unmatched << " pairs of " << tally.wheres << " where documents with "
              << documentsPerTable << " documents each, seed " << seed << ": " << tally.matched << " match; "
              << tally.narrowed << " where documents narrowed by SQL, " << tally.exact
              << " decided by SQL alone, " << tally.byPatterns << " by SQL and patterns\n";
    return tally;
}

TEST(NarrowingAgreement, RandomDocuments)
{
    const Tally tally = compare(20240301);
    // The test is worth something only when all kinds occur often.
    EXPECT_GT(tally.exact, 1'000);
    EXPECT_GT(tally.byPatterns, 200);
    EXPECT_GT(tally.narrowed, 2'000);
    EXPECT_GT(tally.matched, 50'000);
    EXPECT_GT(tally.unmatched, 50'000);
}

} // namespace
} // namespace monitorservice
