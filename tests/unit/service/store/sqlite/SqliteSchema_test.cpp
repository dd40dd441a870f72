#include "store/sqlite/SqliteSchema.h"

#include "domain/Alarm.h"
#include "domain/AlarmDetail.h"
#include "domain/DataManage.h"
#include "domain/Group.h"
#include "domain/History.h"
#include "domain/PointLocation.h"
#include "domain/SubCategory.h"
#include "store/UtcDay.h"
#include "store/sqlite/SqliteDocuments.h"
#include "store/sqlite/SqliteMeasurements.h"
#include "store/sqlite/SqliteOutbox.h"
#include "store/sqlite/SqliteStore.h"
#include "support/TemporaryFolder.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <sqlite3.h>

#include <fstream>
#include <functional>
#include <iostream>

namespace monitorservice {
namespace {

using ::testing::Contains;
using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::Not;

constexpr std::chrono::milliseconds patience(1000);

class SqliteSchema : public ::testing::Test
{
protected:
    SqliteSchema()
    {
        StoreOptions options;
        options.createIfMissing = true;
        SqliteStore store(file, options);
        const auto session = store.write();
        session->projects().insert({"p", "Pit", "UTC", 1});
        session->categories().add("Settlement");
        session->documents(DocumentKind::Cell)
            .insert("p", "c",
                    R"({"_id":"c","projectId":"p","name":"Tower","category":"Settlement",)"
                    R"("alarmTo":[],"links":[],"createdAt":"2015-12-21T00:00:00.000Z",)"
                    R"("createdBy":"","updatedAt":"2015-12-21T00:00:00.000Z","updatedBy":""})");
        session->commit();
    }

    SqliteConnection open() const { return {file, SqliteConnection::Access::Write, patience}; }

    const test::TemporaryFolder folder;
    const std::filesystem::path file = folder.file("data.db");
};

std::vector<std::string> textsOf(SqliteConnection& connection, const std::string& sql, int column)
{
    std::vector<std::string> texts;
    SqliteStatement statement = connection.statement(sql);
    while (statement.step()) {
        texts.push_back(statement.text(column));
    }
    return texts;
}

const std::string grantsOfTheFifthVersion = R"sql(
DROP TABLE grants;
CREATE TABLE grants (
    id TEXT PRIMARY KEY,
    token TEXT NOT NULL REFERENCES tokens (id),
    project TEXT NOT NULL REFERENCES projects (id),
    category TEXT REFERENCES categories (name),
    rights INTEGER NOT NULL,
    created_at INTEGER NOT NULL
) STRICT, WITHOUT ROWID;
CREATE UNIQUE INDEX grants_by_token ON grants (token, project, ifnull(category, x''));
)sql";

const std::string tablesBeforeTheSeventhVersion = R"sql(
ALTER TABLE samples DROP COLUMN delivery;
ALTER TABLE point_locations DROP COLUMN first_delivery;
ALTER TABLE point_locations DROP COLUMN last_delivery;
DROP TABLE last_identifiers;
)sql";

// What the sixth version has made anew, without content, and what later ones have added.
void backToFifthVersion(SqliteConnection& connection)
{
    connection.execute(grantsOfTheFifthVersion + tablesBeforeTheSeventhVersion + R"sql(
DROP TABLE changes;
CREATE TABLE changes (
    project TEXT NOT NULL REFERENCES projects (id),
    id TEXT NOT NULL UNIQUE,
    document TEXT NOT NULL,
    category TEXT NOT NULL AS (json_extract(document, '$.category')) STORED,
    cell TEXT NOT NULL AS (json_extract(document, '$.cellId')) STORED,
    sub_category TEXT NOT NULL AS (json_extract(document, '$.subCategoryId')) STORED,
    action TEXT NOT NULL AS (json_extract(document, '$.action')) STORED,
    subject TEXT NOT NULL AS (json_extract(document, '$.subject')) STORED,
    created_by TEXT NOT NULL AS (json_extract(document, '$.createdBy')) STORED,
    created_at INTEGER NOT NULL AS ()sql" +
                       instantIn("json_extract(document, '$.createdAt')") + R"sql() STORED,
    PRIMARY KEY (project, id)
) STRICT;
CREATE INDEX changes_by_subject ON changes (subject, id);
INSERT INTO sqlite_stat1 (tbl, idx, stat) VALUES
    ('changes', 'sqlite_autoindex_changes_1', '1000000 1'),
    ('changes', 'sqlite_autoindex_changes_2', '1000000 100000 1'),
    ('changes', 'changes_by_subject', '1000000 10 1');
PRAGMA user_version = 5)sql");
}

// Takes away what the fourth version and those after it have added, but for the documents' members.
void backToThirdVersion(SqliteConnection& connection)
{
    connection.execute(
        grantsOfTheFifthVersion + tablesBeforeTheSeventhVersion +
        "DROP TABLE outbox; DROP TABLE changes; DROP TABLE excesses; "
        "DELETE FROM sqlite_stat1 WHERE tbl IN ('changes', 'excesses'); PRAGMA user_version = 3");
}

std::vector<std::string> schemaOf(SqliteConnection& connection)
{
    std::vector<std::string> schema =
        textsOf(connection, "SELECT ifnull(sql, name) FROM sqlite_schema ORDER BY name", 0);
    const std::vector<std::string> figures =
        textsOf(connection, "SELECT idx || ' ' || stat FROM sqlite_stat1 ORDER BY idx", 0);
    schema.insert(schema.end(), figures.begin(), figures.end());
    return schema;
}

TEST_F(SqliteSchema, FileOfTheFirstVersionBecomesTheCurrentOneWithItsData)
{
    SqliteConnection connection = open();
    const std::vector<std::string> current = schemaOf(connection);
    backToThirdVersion(connection);
    // And what the second version has added.
    connection.execute("DROP INDEX point_locations_by_name; DROP INDEX point_locations_by_sub_category; "
                       "DROP TABLE sqlite_stat1; PRAGMA user_version = 1");
    EXPECT_THAT(textsOf(connection, "SELECT name FROM sqlite_schema", 0),
                Not(Contains(HasSubstr("sqlite_stat"))));
    migrate(connection, patience);
    EXPECT_EQ(schemaOf(connection), current);
    EXPECT_EQ(connection.integer("PRAGMA user_version"), 8);
    EXPECT_EQ(SqliteStore(file).read()->documents(DocumentKind::Cell).find("c")->category, "Settlement");
}

// Earlier versions wrote 18446744073709551615 in a form that the reader of documents refuses.
TEST_F(SqliteSchema, NumbersThatCouldNotBeReadCanBeReadAfterwards)
{
    Group group;
    group.id = "g";
    group.project = "p";
    group.cell = "c";
    group.subCategory = "s";
    group.name = "Limit 18446744073709552000";
    group.totalVariation = 18446744073709551615.0;
    group.stamp = Stamp::of({"Ada", "2015-12-21T00:00:00.000Z"});
    std::string damaged = toDocument(group);
    damaged.replace(damaged.find("1.8446744073709552e+19"), 22, "18446744073709552000");
    {
        SqliteStore store(file);
        const auto session = store.write();
        session->documents(DocumentKind::SubCategory)
            .insert("p", "s",
                    R"({"_id":"s","projectId":"p","name":"Level","category":"Settlement","alias":"",)"
                    R"("kind":"other","unit":"","decimals":null})");
        session->documents(DocumentKind::Group).insert("p", "g", damaged);
        session->commit();
    }
    EXPECT_THROW(fromDocument<Group>(damaged), DamagedDocument);
    SqliteConnection connection = open();
    backToThirdVersion(connection);
    connection.execute("PRAGMA user_version = 2");
    migrate(connection, patience);
    EXPECT_EQ(SqliteStore(file).read()->documents(DocumentKind::Group).find("g")->text, toDocument(group));
}

// Documents as the third version wrote them.
TEST_F(SqliteSchema, DocumentsOfTheThirdVersionGetTheMembersOfTheFourth)
{
    SqliteConnection connection = open();
    backToThirdVersion(connection);
    const std::string stamp = R"("createdAt":"2015-12-21T00:00:00.000Z","createdBy":"Ada",)"
                              R"("updatedAt":"2015-12-21T00:00:00.000Z","updatedBy":"Ada"})";
    const auto insert = [&connection](const std::string& table, const std::string& id,
                                      const std::string& document) {
        connection.statement("INSERT INTO " + table + " (project, id, document) VALUES ('p', ?, ?)")
            .bind(id, document)
            .run();
    };
    insert("sub_categories", "s",
           R"({"_id":"s","projectId":"p","name":"Level","category":"Settlement","alias":""})");
    insert("groups", "g",
           R"({"_id":"g","projectId":"p","cellId":"c","subCategoryId":"s","groupName":"G","groupPoint":[],)"
           R"("dayVarType":0,"dayVarValue":1,"totalVar":2,"viewPortId":"",)" +
               stamp);
    for (const char* const initialValue : {"0", "2.5"}) {
        connection
            .statement("INSERT INTO point_locations (project, id, document, cell, sub_category, name, depth) "
                       "VALUES ('p', ?1, ?2, 'c', 's', ?1, '')")
            .bind(std::string(initialValue),
                  std::string(R"({"_id":")") + initialValue +
                      R"(","projectId":"p","cellId":"c","subCategoryId":"s","alias":"","name":")" +
                      initialValue + R"(","dataType":0,"initialValue":)" + initialValue +
                      R"(,"offsetDirection":"","depth":"","insertCount":0,"lastCount":0,"lastDate":"",)"
                      R"("fileId":"","links":[],)" +
                      stamp)
            .run();
    }
    insert("data_manages", "d",
           R"({"_id":"d","projectId":"p","cellId":"c","subCategoryId":"s","lastDate":"","lastCount":0,)"
           R"("fileId":"",)" +
               stamp);
    insert("histories", "h",
           R"({"_id":"h","dataManageId":"d","lastDate":"","lastCount":12,"insertCount":7,"fileId":"",)" +
               stamp);
    insert("alarms", "a",
           R"({"_id":"a","projectId":"p","cellId":"c","cellName":"Tower","subCategoryId":"s",)"
           R"("alarmTime":"2015-12-21T00:00:00.000Z","pointCounts":1,)" +
               stamp);
    insert("alarm_details", "e",
           R"({"_id":"e","alarmManId":"a","pointName":"W1","totalVar":"3","dayVar":"","totalBeyound":1,)"
           R"("dayBeyound":0,"isThreeVar":false,"isInclinometer":false,"monitorCount":1,)"
           R"("monitorTime":"2015-12-21T00:00:00.000Z","depth":"","alarmTime":"2015-12-21T00:00:00.000Z",)" +
               stamp);
    migrate(connection, patience);
    const auto document = [&connection](const std::string& table, const std::string& id) {
        SqliteStatement statement = connection.statement("SELECT document FROM " + table + " WHERE id = ?");
        statement.bind(id).step();
        return statement.text(0);
    };
    const auto subCategory = fromDocument<SubCategory>(document("sub_categories", "s"));
    EXPECT_EQ(subCategory.kind, SubCategoryKind::Other);
    EXPECT_EQ(subCategory.decimals, std::nullopt);
    const auto group = fromDocument<Group>(document("groups", "g"));
    EXPECT_EQ(group.daySide, LimitSide::Both);
    EXPECT_EQ(group.totalSide, LimitSide::Both);
    EXPECT_EQ(group.warningLevel, 80);
    EXPECT_EQ(fromDocument<PointLocation>(document("point_locations", "0")).initialValue, std::nullopt);
    EXPECT_EQ(fromDocument<PointLocation>(document("point_locations", "2.5")).initialValue, 2.5);
    const auto history = fromDocument<History>(document("histories", "h"));
    EXPECT_EQ(history.correctCount, 0);
    EXPECT_EQ(history.number, 0);
    EXPECT_EQ(history.sentCount, 7);
    const auto dataManage = fromDocument<DataManage>(document("data_manages", "d"));
    EXPECT_EQ(dataManage.deliveries, 0);
    EXPECT_EQ(dataManage.sampleCount, 12);
    EXPECT_EQ(fromDocument<Alarm>(document("alarms", "a")).day, "");
    const auto detail = fromDocument<AlarmDetail>(document("alarm_details", "e"));
    EXPECT_EQ(detail.group, "");
    EXPECT_EQ(detail.totalLimit, 0);
    EXPECT_EQ(detail.stamp.createdBy, "Ada");
}

// By the numbers that the longest lived data manages have.
TEST_F(SqliteSchema, KnowingWhichDeliveryASampleIsOfCostsAtMostFourBytes)
{
    constexpr int pointCount = 100;
    constexpr int samplesEach = 1'000;
    SqliteStore(file).write()->commit();
    SqliteConnection connection = open();
    SqliteMeasurements measurements(connection);
    connection.execute("BEGIN");
    connection.execute(
        R"(INSERT INTO sub_categories (project, id, document) VALUES ('p', 's',
           '{"_id":"s","projectId":"p","name":"Level","category":"Settlement","alias":""}'))");
    for (int number = 0; number < pointCount; ++number) {
        PointLocation location;
        location.id = "point " + std::to_string(number);
        location.project = "p";
        location.cell = "c";
        location.subCategory = "s";
        location.name = location.id;
        const std::int64_t point =
            measurements.insertPoint("p", location.id, toDocument(location), 8'000'000);
        for (int sample = 0; sample < samplesEach; ++sample) {
            const Instant time = 1'450'000'000'000 + sample * 3'600'000LL;
            measurements.insertSample(point, test::utcDayOf(time), {time, sample, 480, 0.1 * sample, "A"},
                                      8'000'000 + sample / 10);
        }
    }
    measurements.finish();
    connection.execute("COMMIT; VACUUM");
    const auto bytes = [&connection] {
        return connection.integer("PRAGMA page_count") * connection.integer("PRAGMA page_size");
    };
    const std::int64_t with = bytes();
    connection.execute(tablesBeforeTheSeventhVersion + "VACUUM");
    const double perSample = static_cast<double>(with - bytes()) / (pointCount * samplesEach);
    EXPECT_GT(perSample, 3);
    EXPECT_LE(perSample, 4);
    std::cout << "bytes a sample: " << perSample << '\n';
}

TEST_F(SqliteSchema, GrantsAndEntriesOfTheFifthVersionStay)
{
    SqliteConnection connection = open();
    const std::vector<std::string> current = schemaOf(connection);
    backToFifthVersion(connection);
    connection.execute("INSERT INTO tokens (id, owner, name, secret_sha256, created_at) "
                       "VALUES ('t', 'Ada', '', x'01', 1);"
                       "INSERT INTO grants (id, token, project, category, rights, created_at) "
                       "VALUES ('g1', 't', 'p', NULL, 15, 2), ('g2', 't', 'p', 'Settlement', 1, 3)");
    const std::string entry = R"({"_id":"h","projectId":"p","category":"Settlement","cellId":"c",)"
                              R"("subCategoryId":"","action":"cell.changed","subject":"c","name":"Tower",)"
                              R"("before":{"name":"Mast"},"after":null,)"
                              R"("createdAt":"2015-12-21T06:30:00.123Z","createdBy":"Ada"})";
    connection.statement("INSERT INTO changes (project, id, document) VALUES ('p', 'h', ?)")
        .bind(entry)
        .run();
    migrate(connection, patience);
    EXPECT_EQ(schemaOf(connection), current);
    EXPECT_THAT(textsOf(connection, "SELECT * FROM pragma_foreign_key_check", 0), ElementsAre());

    SqliteStore store(file);
    const auto session = store.write();
    const std::vector<Grant> grants = session->grants().list();
    ASSERT_EQ(grants.size(), 2U);
    EXPECT_EQ(grants[0].project, "p");
    EXPECT_EQ(grants[0].category, std::nullopt);
    EXPECT_EQ(grants[0].rights.names(), "read,create,edit,delete");
    EXPECT_EQ(grants[0].createdAt, 2);
    EXPECT_EQ(grants[1].category, "Settlement");
    EXPECT_EQ(session->documents(DocumentKind::Change).find("h")->text,
              entry.substr(0, entry.size() - 1) + R"(,"delivery":""})");
}

TEST_F(SqliteSchema, IdentifiersOfTheSeventhVersionAreFollowed)
{
    const std::string last = "fff000000000000000000007"; // later than any clock
    {
        SqliteConnection connection = open();
        connection.execute("DROP TABLE last_identifiers; PRAGMA user_version = 7; "
                           "INSERT INTO state (key, value) VALUES ('lastIdentifier', '" +
                           last + "')");
        migrate(connection, patience);
        EXPECT_THAT(textsOf(connection, "SELECT key FROM state", 0), Not(Contains("lastIdentifier")));
    }
    SqliteStore store(file);
    EXPECT_EQ(store.read()->lastIdentifier(), last);
    EXPECT_GT(store.write()->newIdentifier(), last);
    EXPECT_GT(store.write(Claim{{{{"c", "s"}}}})->newIdentifier(), last);
}

// Sets a file up from another connection, as soon as it can, from a certain statement of the first one on.
class SetUpMeanwhile
{
public:
    SetUpMeanwhile(SqliteConnection& first, std::filesystem::path file, int statement)
        : m_first(first.database().getHandle()), m_file(std::move(file)), m_left(statement)
    {
        sqlite3_trace_v2(m_first, SQLITE_TRACE_STMT, &SetUpMeanwhile::atStatement, this);
    }
    ~SetUpMeanwhile() { sqlite3_trace_v2(m_first, 0, nullptr, nullptr); }
    SetUpMeanwhile(const SetUpMeanwhile&) = delete;
    SetUpMeanwhile& operator=(const SetUpMeanwhile&) = delete;

    bool isDone() const { return m_isDone; }
    bool wasReached() const { return m_left <= 0; }

private:
    static int atStatement(unsigned /*event*/, void* self, void* /*statement*/, void* /*text*/)
    {
        static_cast<SetUpMeanwhile*>(self)->next();
        return 0;
    }

    void next()
    {
        if (m_isDone || --m_left > 0) {
            return;
        }
        constexpr std::chrono::milliseconds atOnce(0);
        try {
            SqliteConnection other(m_file, SqliteConnection::Access::Write, atOnce);
            migrate(other, atOnce);
            m_isDone = true;
        } catch (const StoreError& error) {
            EXPECT_EQ(error.failure(), StoreFailure::Busy) << error.what();
        }
    }

    sqlite3* m_first;
    std::filesystem::path m_file;
    int m_left;
    bool m_isDone = false;
};

TEST(SqliteSchemaOfTwo, FileThatIsSetUpByAnotherMeanwhileIsUsed)
{
    int done = 0;
    bool isOver = false;
    for (int statement = 1; !isOver; ++statement) {
        const test::TemporaryFolder folder;
        const std::filesystem::path file = folder.file("data.db");
        std::ofstream(file).close();
        SqliteConnection connection(file, SqliteConnection::Access::Write, patience);
        const SetUpMeanwhile meanwhile(connection, file, statement);
        EXPECT_NO_THROW(migrate(connection, patience)) << "another one at statement " << statement;
        EXPECT_NO_THROW(requireKnown(connection));
        done += meanwhile.isDone() ? 1 : 0;
        isOver = !meanwhile.wasReached();
    }
    EXPECT_GT(done, 1);
}

TEST_F(SqliteSchema, EveryIndexOfATableWithFiguresHasThem)
{
    SqliteConnection connection = open();
    EXPECT_THAT(
        textsOf(connection,
                "SELECT name FROM sqlite_schema WHERE type = 'index' AND tbl_name IN (SELECT tbl FROM "
                "sqlite_stat1) AND name NOT IN (SELECT idx FROM sqlite_stat1)",
                0),
        ElementsAre());
    EXPECT_THAT(textsOf(connection,
                        "SELECT idx FROM sqlite_stat1 WHERE idx NOT IN (SELECT name FROM sqlite_schema WHERE "
                        "tbl_name = tbl)",
                        0),
                ElementsAre());
}

// How SQLite goes about the statements that the action runs.
std::vector<std::string> plansOf(SqliteConnection& connection, const std::function<void()>& action)
{
    std::vector<std::string> statements;
    const auto note = [](unsigned /*event*/, void* list, void* statement, void* /*text*/) {
        static_cast<std::vector<std::string>*>(list)->emplace_back(
            sqlite3_sql(static_cast<sqlite3_stmt*>(statement)));
        return 0;
    };
    sqlite3_trace_v2(connection.database().getHandle(), SQLITE_TRACE_STMT, note, &statements);
    action();
    sqlite3_trace_v2(connection.database().getHandle(), 0, nullptr, nullptr);
    std::vector<std::string> plans;
    for (const std::string& statement : statements) {
        for (const std::string& step : textsOf(connection, "EXPLAIN QUERY PLAN " + statement, 3)) {
            plans.push_back(step);
        }
    }
    return plans;
}

struct Key
{
    const char* where;
    const char* order;
    const char* used; // part of the plan
};

TEST_F(SqliteSchema, PointsAreReadByTheNarrowestKey)
{
    SqliteConnection connection = open();
    const SqliteMeasurements measurements(connection);
    const char* const newest = "-data.time";
    for (const Key& key : std::vector<Key>{
             {R"({"cellId":"c"})", nullptr, "(cell=?)"},
             {R"({"cellId":"c"})", newest, "(cell=?)"},
             {R"({"cellId":"c","time":{"$gte":"2015-12-21T00:00:00Z"}})", nullptr, "(cell=?)"},
             {R"({"cellId":"c","time":{"$gte":"2015-12-21T00:00:00Z"}})", newest, "(cell=?)"},
             {R"({"cellId":"c","name":{"$in":["S1","S2"]}})", nullptr, "(project=? AND name=? AND cell=?)"},
             {R"({"cellId":"c","name":{"$in":["S1","S2"]}})", newest, "(project=? AND name=? AND cell=?)"},
             {R"({"name":{"$in":["S1","S2"]}})", nullptr, "(project=? AND name=?)"},
             {R"({"name":{"$in":["S1","S2"]}})", newest, "(project=? AND name=?)"},
             {R"({"subCategoryId":"s"})", nullptr, "(project=? AND sub_category=?)"},
             {R"({"subCategoryId":"s"})", newest, "(project=? AND sub_category=?)"},
             {R"({"_id":"x"})", nullptr, "(project=? AND id=?)"},
         }) {
        SCOPED_TRACE(std::string(key.where) + (key.order == nullptr ? "" : key.order));
        const Where where = Where::parse(key.where);
        DocumentQuery query;
        query.project = "p";
        query.where = &where;
        query.limit = 100;
        if (key.order != nullptr) {
            query.order = parseOrder(key.order);
        }
        const std::vector<std::string> plans = plansOf(connection, [&] {
            const auto selection = measurements.select(query);
            selection->count();
            selection->visit([](const FoundPoint& /*point*/) {});
        });
        EXPECT_THAT(plans, Contains(HasSubstr(key.used)).Times(2));
        EXPECT_THAT(plans, Not(Contains(HasSubstr("SCAN"))));
    }
}

TEST_F(SqliteSchema, DueNoticesAreFoundByTheirTime)
{
    SqliteConnection connection = open();
    const SqliteOutbox outbox(connection, 0, {Channel::Mail});
    EXPECT_THAT(plansOf(connection, [&outbox] { outbox.nextDue(Channel::Mail, 1); }),
                ElementsAre(HasSubstr("USING INDEX outbox_by_due (channel=? AND due<?)")));
}

TEST_F(SqliteSchema, LatestEntriesOfAllProjectsAreReadByTheirIdentifiers)
{
    SqliteConnection connection = open();
    const SqliteDocuments changes(connection, sqliteTable(DocumentKind::Change));
    DocumentQuery query;
    query.everyProject = true;
    query.order = parseOrder("-_id");
    query.limit = 20;
    EXPECT_THAT(plansOf(connection, [&] { changes.visit(query, [](std::string_view /*document*/) {}); }),
                ElementsAre(HasSubstr("USING INDEX sqlite_autoindex_changes_1")));
}

TEST_F(SqliteSchema, WhatBelongsToADocumentIsReadByIt)
{
    SqliteConnection connection = open();
    struct Table
    {
        const DocumentTable& table;
        const char* used;
    };
    for (const Table& one : std::vector<Table>{{sqliteTable(DocumentKind::Group), "(cell=?)"},
                                               {sqliteTable(DocumentKind::PointLocation), "(cell=?)"},
                                               {sqliteTable(DocumentKind::DataManage), "(cell=?)"},
                                               {sqliteTable(DocumentKind::History), "(data_manage=?)"},
                                               {sqliteTable(DocumentKind::Alarm), "(cell=?)"},
                                               {sqliteTable(DocumentKind::AlarmDetail), "(alarm=?)"},
                                               {sqliteTable(DocumentKind::AlarmDepth), "(detail=?)"}}) {
        SCOPED_TRACE(one.table.name);
        const SqliteDocuments documents(connection, one.table);
        DocumentQuery query;
        query.project = "p";
        query.parent = "x";
        const std::vector<std::string> plans = plansOf(connection, [&] {
            documents.count(query);
            documents.visit(query, [](std::string_view /*document*/) {});
        });
        EXPECT_THAT(plans, Contains(HasSubstr(one.used)).Times(2));
        EXPECT_THAT(plans, Not(Contains(HasSubstr("SCAN"))));
    }
}

} // namespace
} // namespace monitorservice
