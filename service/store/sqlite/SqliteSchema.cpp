#include "store/sqlite/SqliteSchema.h"

#include "json/WholeNumbers.h"

#include <array>
#include <string>
#include <thread>
#include <utility>
#include <vector>

namespace monitorservice {

namespace {

// "RKMD": tells the service's files from those of other applications
// (https://www.sqlite.org/pragma.html#pragma_application_id).
constexpr std::int64_t applicationId = 0x524b4d44;

std::string timeColumn(const std::string& name, const std::string& member)
{
    return name + " INTEGER NOT NULL AS (" + instantIn("json_extract(document, '$." + member + "')") +
           ") STORED";
}

// A document's own members are the source of every column that is queried: the two cannot come to differ.
std::string firstVersion()
{
    const std::string createdAt = timeColumn("created_at", "createdAt");
    const std::string updatedAt = timeColumn("updated_at", "updatedAt");
    return R"sql(
CREATE TABLE state (
    key TEXT PRIMARY KEY,
    value TEXT NOT NULL
) STRICT, WITHOUT ROWID;

CREATE TABLE projects (
    id TEXT PRIMARY KEY,
    name TEXT NOT NULL,
    time_zone TEXT NOT NULL,
    created_at INTEGER NOT NULL
) STRICT, WITHOUT ROWID;

CREATE TABLE categories (
    position INTEGER PRIMARY KEY,
    name TEXT NOT NULL UNIQUE
) STRICT;

CREATE TABLE sub_categories (
    project TEXT NOT NULL REFERENCES projects (id),
    id TEXT NOT NULL UNIQUE,
    document TEXT NOT NULL,
    name TEXT NOT NULL AS (json_extract(document, '$.name')) STORED,
    category TEXT NOT NULL AS (json_extract(document, '$.category')) STORED REFERENCES categories (name),
    alias TEXT NOT NULL AS (json_extract(document, '$.alias')) STORED,
    PRIMARY KEY (project, id),
    UNIQUE (project, category, name)
) STRICT;

CREATE TABLE cells (
    project TEXT NOT NULL REFERENCES projects (id),
    id TEXT NOT NULL UNIQUE,
    document TEXT NOT NULL,
    name TEXT NOT NULL AS (json_extract(document, '$.name')) STORED,
    category TEXT NOT NULL AS (json_extract(document, '$.category')) STORED REFERENCES categories (name),
    )sql" + createdAt +
           R"sql(,
    created_by TEXT NOT NULL AS (json_extract(document, '$.createdBy')) STORED,
    )sql" + updatedAt +
           R"sql(,
    updated_by TEXT NOT NULL AS (json_extract(document, '$.updatedBy')) STORED,
    PRIMARY KEY (project, id)
) STRICT;
CREATE INDEX cells_by_name ON cells (project, name, id);
CREATE INDEX cells_by_creation ON cells (project, created_at, id);

CREATE TABLE groups (
    project TEXT NOT NULL REFERENCES projects (id),
    id TEXT NOT NULL UNIQUE,
    document TEXT NOT NULL,
    cell TEXT NOT NULL AS (json_extract(document, '$.cellId')) STORED REFERENCES cells (id),
    sub_category TEXT NOT NULL AS (json_extract(document, '$.subCategoryId')) STORED REFERENCES sub_categories (id),
    name TEXT NOT NULL AS (json_extract(document, '$.groupName')) STORED,
    PRIMARY KEY (project, id)
) STRICT;
CREATE INDEX groups_by_cell ON groups (cell, sub_category, id);

-- A point's own number, not its identifier, is what its samples refer to: it is short. Its columns are written with the
-- document, not generated from it: every delivery rewrites the document, and would rewrite each generated column and its
-- indexes with it.
CREATE TABLE point_locations (
    point INTEGER PRIMARY KEY,
    project TEXT NOT NULL REFERENCES projects (id),
    id TEXT NOT NULL UNIQUE,
    document TEXT NOT NULL,
    cell TEXT NOT NULL REFERENCES cells (id),
    sub_category TEXT NOT NULL REFERENCES sub_categories (id),
    name TEXT NOT NULL,
    depth TEXT NOT NULL,
    last_time INTEGER,
    UNIQUE (project, id),
    UNIQUE (cell, sub_category, name, depth)
) STRICT;
CREATE INDEX point_locations_by_last_time ON point_locations (project, last_time, id);

-- offset_minutes: how far the text of the time was ahead of UTC; NULL when it ended in "Z".
CREATE TABLE samples (
    point INTEGER NOT NULL REFERENCES point_locations (point),
    time INTEGER NOT NULL,
    count INTEGER NOT NULL,
    offset_minutes INTEGER,
    value REAL NOT NULL,
    time_flag TEXT NOT NULL,
    PRIMARY KEY (point, time, count)
) STRICT, WITHOUT ROWID;

-- The last sample of each day and how many samples it has; days are those of the project's time zone, counted from
-- 1970-01-01. Written together with the samples.
CREATE TABLE day_rollup (
    point INTEGER NOT NULL REFERENCES point_locations (point),
    day INTEGER NOT NULL,
    time INTEGER NOT NULL,
    count INTEGER NOT NULL,
    offset_minutes INTEGER,
    value REAL NOT NULL,
    samples INTEGER NOT NULL,
    PRIMARY KEY (point, day)
) STRICT, WITHOUT ROWID;

CREATE TABLE data_manages (
    project TEXT NOT NULL REFERENCES projects (id),
    id TEXT NOT NULL UNIQUE,
    document TEXT NOT NULL,
    cell TEXT NOT NULL AS (json_extract(document, '$.cellId')) STORED REFERENCES cells (id),
    sub_category TEXT NOT NULL AS (json_extract(document, '$.subCategoryId')) STORED REFERENCES sub_categories (id),
    )sql" + createdAt +
           R"sql(,
    )sql" + updatedAt +
           R"sql(,
    PRIMARY KEY (project, id),
    UNIQUE (cell, sub_category)
) STRICT;

CREATE TABLE histories (
    project TEXT NOT NULL REFERENCES projects (id),
    id TEXT NOT NULL UNIQUE,
    document TEXT NOT NULL,
    data_manage TEXT NOT NULL AS (json_extract(document, '$.dataManageId')) STORED REFERENCES data_manages (id),
    PRIMARY KEY (project, id)
) STRICT;
CREATE INDEX histories_by_data_manage ON histories (data_manage, id);

CREATE TABLE alarms (
    project TEXT NOT NULL REFERENCES projects (id),
    id TEXT NOT NULL UNIQUE,
    document TEXT NOT NULL,
    cell TEXT NOT NULL AS (json_extract(document, '$.cellId')) STORED REFERENCES cells (id),
    sub_category TEXT NOT NULL AS (json_extract(document, '$.subCategoryId')) STORED REFERENCES sub_categories (id),
    )sql" + createdAt +
           R"sql(,
    PRIMARY KEY (project, id)
) STRICT;
CREATE INDEX alarms_by_cell ON alarms (cell, sub_category, id);

CREATE TABLE alarm_details (
    project TEXT NOT NULL REFERENCES projects (id),
    id TEXT NOT NULL UNIQUE,
    document TEXT NOT NULL,
    alarm TEXT NOT NULL AS (json_extract(document, '$.alarmManId')) STORED REFERENCES alarms (id),
    point_name TEXT NOT NULL AS (json_extract(document, '$.pointName')) STORED,
    PRIMARY KEY (project, id)
) STRICT;
CREATE INDEX alarm_details_by_alarm ON alarm_details (alarm, point_name, id);

CREATE TABLE alarm_depths (
    project TEXT NOT NULL REFERENCES projects (id),
    id TEXT NOT NULL UNIQUE,
    document TEXT NOT NULL,
    detail TEXT NOT NULL AS (json_extract(document, '$.detailId')) STORED REFERENCES alarm_details (id),
    depth TEXT NOT NULL AS (json_extract(document, '$.depth')) STORED,
    PRIMARY KEY (project, id)
) STRICT;
CREATE INDEX alarm_depths_by_detail ON alarm_depths (detail, id);

-- What belongs to a monitoring has its category, which is stored with the monitoring alone. The views
-- add it, and as "searched" the document with the members that conditions may name besides those stored.
CREATE VIEW groups_read AS
    SELECT g.*, c.category AS category, json_set(g.document, '$.category', c.category) AS searched
    FROM groups AS g JOIN cells AS c ON c.id = g.cell;

CREATE VIEW point_locations_read AS
    SELECT p.*, c.category AS category, json_extract(p.document, '$.links') AS links,
        json_set(p.document, '$.category', c.category) AS searched
    FROM point_locations AS p JOIN cells AS c ON c.id = p.cell;

CREATE VIEW data_manages_read AS
    SELECT d.*, c.category AS category, s.category AS searched_category,
        json_set(d.document, '$.category', s.category) AS searched
    FROM data_manages AS d JOIN cells AS c ON c.id = d.cell JOIN sub_categories AS s ON s.id = d.sub_category;

CREATE VIEW histories_read AS
    SELECT h.*, c.category AS category, h.document AS searched
    FROM histories AS h JOIN data_manages AS d ON d.id = h.data_manage JOIN cells AS c ON c.id = d.cell;

CREATE VIEW alarms_read AS
    SELECT a.*, c.category AS category, c.name AS name,
        json_set(a.document, '$.name', c.name, '$.category', c.category,
            '$.subCategory', json_array(s.id, s.name, s.alias)) AS searched
    FROM alarms AS a JOIN cells AS c ON c.id = a.cell JOIN sub_categories AS s ON s.id = a.sub_category;

CREATE VIEW alarm_details_read AS
    SELECT e.*, c.category AS category, e.document AS searched
    FROM alarm_details AS e JOIN alarms AS a ON a.id = e.alarm JOIN cells AS c ON c.id = a.cell;

CREATE VIEW alarm_depths_read AS
    SELECT t.*, c.category AS category, t.document AS searched
    FROM alarm_depths AS t JOIN alarm_details AS e ON e.id = t.detail JOIN alarms AS a ON a.id = e.alarm
    JOIN cells AS c ON c.id = a.cell;

CREATE TABLE tokens (
    id TEXT PRIMARY KEY,
    owner TEXT NOT NULL,
    name TEXT NOT NULL,
    secret_sha256 BLOB NOT NULL UNIQUE,
    created_at INTEGER NOT NULL,
    expires_at INTEGER,
    revoked_at INTEGER
) STRICT, WITHOUT ROWID;

CREATE TABLE grants (
    id TEXT PRIMARY KEY,
    token TEXT NOT NULL REFERENCES tokens (id),
    project TEXT NOT NULL REFERENCES projects (id),
    category TEXT REFERENCES categories (name),
    rights INTEGER NOT NULL,
    created_at INTEGER NOT NULL
) STRICT, WITHOUT ROWID;
-- A unique index holds two NULLs to be different, so "every category" is written as something that no category is.
CREATE UNIQUE INDEX grants_by_token ON grants (token, project, ifnull(category, x''));
)sql";
}

// Points are asked for by name without their monitoring, and by sub-category.
//
// Without figures of its tables the planner holds any two keys to be equally narrow, and reads all points of
// a project to find those of a monitoring. The figures are given here, as those of a large site: ANALYZE
// would take those of the day, so that the same request might be answered in another way tomorrow.
// (https://www.sqlite.org/optoverview.html#manual_control_of_query_plans_using_sqlite_stat_tables)
std::string secondVersion()
{
    return R"sql(
CREATE INDEX point_locations_by_name ON point_locations (project, name, cell);
CREATE INDEX point_locations_by_sub_category ON point_locations (project, sub_category, id);

ANALYZE sqlite_schema; -- makes sqlite_stat1
DELETE FROM sqlite_stat1;
-- How many rows the index has, and how many of them agree in its first column, its first two columns, …
INSERT INTO sqlite_stat1 (tbl, idx, stat) VALUES
    ('cells', 'sqlite_autoindex_cells_1', '100000 1'),
    ('cells', 'sqlite_autoindex_cells_2', '100000 10000 1'),
    ('cells', 'cells_by_name', '100000 10000 2 1'),
    ('cells', 'cells_by_creation', '100000 10000 2 1'),
    ('groups', 'sqlite_autoindex_groups_1', '100000 1'),
    ('groups', 'sqlite_autoindex_groups_2', '100000 10000 1'),
    ('groups', 'groups_by_cell', '100000 10 5 1'),
    ('point_locations', 'sqlite_autoindex_point_locations_1', '1000000 1'),
    ('point_locations', 'sqlite_autoindex_point_locations_2', '1000000 100000 1'),
    ('point_locations', 'sqlite_autoindex_point_locations_3', '1000000 100 50 2 1'),
    ('point_locations', 'point_locations_by_last_time', '1000000 100000 10 1'),
    ('point_locations', 'point_locations_by_name', '1000000 100000 10 2'),
    ('point_locations', 'point_locations_by_sub_category', '1000000 100000 10000 1'),
    ('data_manages', 'sqlite_autoindex_data_manages_1', '100000 1'),
    ('data_manages', 'sqlite_autoindex_data_manages_2', '100000 10000 1'),
    ('data_manages', 'sqlite_autoindex_data_manages_3', '100000 2 1'),
    ('histories', 'sqlite_autoindex_histories_1', '1000000 1'),
    ('histories', 'sqlite_autoindex_histories_2', '1000000 100000 1'),
    ('histories', 'histories_by_data_manage', '1000000 100 1'),
    ('alarms', 'sqlite_autoindex_alarms_1', '100000 1'),
    ('alarms', 'sqlite_autoindex_alarms_2', '100000 10000 1'),
    ('alarms', 'alarms_by_cell', '100000 20 10 1'),
    ('alarm_details', 'sqlite_autoindex_alarm_details_1', '1000000 1'),
    ('alarm_details', 'sqlite_autoindex_alarm_details_2', '1000000 100000 1'),
    ('alarm_details', 'alarm_details_by_alarm', '1000000 10 1 1'),
    ('alarm_depths', 'sqlite_autoindex_alarm_depths_1', '1000000 1'),
    ('alarm_depths', 'sqlite_autoindex_alarm_depths_2', '1000000 100000 1'),
    ('alarm_depths', 'alarm_depths_by_detail', '1000000 20 1');
ANALYZE sqlite_schema; -- this connection reads them, others do when they open the file
)sql";
}

// Numbers from 1e17 on were written in digits, and beyond 64 bits in a form that the reader of documents
// refuses.
void rewriteWholeNumbers(SqliteConnection& connection, const std::string& table)
{
    // Two statements and not one that reads while it writes: what is found is few.
    std::vector<std::pair<std::int64_t, std::string>> mended;
    {
        SqliteStatement statement = connection.statement("SELECT rowid, document FROM " + table);
        while (statement.step()) {
            std::string document = withReadableWholeNumbers(statement.view(1));
            if (document != statement.view(1)) {
                mended.emplace_back(statement.integer(0), std::move(document));
            }
        }
    }
    for (const auto& [row, document] : mended) {
        connection.statement("UPDATE " + table + " SET document = ? WHERE rowid = ?")
            .bind(document, row)
            .run();
    }
}

// The audit trail; which readings are beyond a limit, and in which alarm each of them stands; and members
// that documents have from now on.
std::string fourthVersion()
{
    return R"sql(
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
    )sql" + timeColumn("created_at", "createdAt") +
           R"sql(,
    PRIMARY KEY (project, id)
) STRICT;
CREATE INDEX changes_by_subject ON changes (subject, id);

CREATE TABLE excesses (
    point INTEGER NOT NULL REFERENCES point_locations (point),
    time INTEGER NOT NULL,
    count INTEGER NOT NULL,
    alarm TEXT NOT NULL REFERENCES alarms (id),
    PRIMARY KEY (point, time, count)
) STRICT, WITHOUT ROWID;
CREATE INDEX excesses_by_alarm ON excesses (alarm, point);

UPDATE sub_categories SET document =
    json_set(document, '$.kind', 'other', '$.unit', '', '$.decimals', NULL);
UPDATE groups SET document =
    json_set(document, '$.dayVarSide', 'both', '$.totalVarSide', 'both', '$.warningLevel', 80);
UPDATE point_locations SET document =
    json_set(document, '$.hasInitialValue', json(iif(json_extract(document, '$.initialValue') = 0, 'false', 'true')));
UPDATE histories SET document = json_set(document, '$.correctCount', 0);
UPDATE alarms SET document = json_set(document, '$.alarmDay', '');
UPDATE alarm_details SET document =
    json_set(document, '$.value', 0, '$.reference', 0, '$.unit', '', '$.groupId', '', '$.groupName', '',
        '$.totalLimit', 0, '$.dayLimit', 0, '$.totalVarSide', 'both', '$.dayVarSide', 'both', '$.dayVarType', 0);

INSERT INTO sqlite_stat1 (tbl, idx, stat) VALUES
    ('changes', 'sqlite_autoindex_changes_1', '1000000 1'),
    ('changes', 'sqlite_autoindex_changes_2', '1000000 100000 1'),
    ('changes', 'changes_by_subject', '1000000 10 1'),
    ('excesses', 'excesses_by_alarm', '1000000 100 20');
ANALYZE sqlite_schema;
)sql";
}

// What recipients are told of alarms. The index serves the sender, which asks each second.
std::string fifthVersion()
{
    return R"sql(
CREATE TABLE outbox (
    alarm TEXT NOT NULL REFERENCES alarms (id) ON DELETE CASCADE,
    channel TEXT NOT NULL,
    recipient TEXT NOT NULL,
    due INTEGER,
    attempts INTEGER NOT NULL,
    told TEXT NOT NULL,
    PRIMARY KEY (alarm, channel, recipient)
) STRICT, WITHOUT ROWID;
CREATE INDEX outbox_by_due ON outbox (channel, due) WHERE due IS NOT NULL;
)sql";
}

// Grants may be of no project, and entries of the audit trail refer to none: a column's reference can only be
// taken away with its table.
std::string sixthVersion()
{
    return R"sql(
CREATE TABLE grants_made_anew (
    id TEXT PRIMARY KEY,
    token TEXT NOT NULL REFERENCES tokens (id),
    project TEXT REFERENCES projects (id),
    category TEXT REFERENCES categories (name),
    rights INTEGER NOT NULL,
    created_at INTEGER NOT NULL,
    CHECK (project IS NOT NULL OR category IS NULL)
) STRICT, WITHOUT ROWID;
INSERT INTO grants_made_anew (id, token, project, category, rights, created_at)
    SELECT id, token, project, category, rights, created_at FROM grants;
DROP TABLE grants;
ALTER TABLE grants_made_anew RENAME TO grants;
CREATE UNIQUE INDEX grants_by_token ON grants (token, ifnull(project, x''), ifnull(category, x''));

CREATE TABLE changes_made_anew (
    project TEXT NOT NULL,
    id TEXT NOT NULL UNIQUE,
    document TEXT NOT NULL,
    category TEXT NOT NULL AS (json_extract(document, '$.category')) STORED,
    cell TEXT NOT NULL AS (json_extract(document, '$.cellId')) STORED,
    sub_category TEXT NOT NULL AS (json_extract(document, '$.subCategoryId')) STORED,
    action TEXT NOT NULL AS (json_extract(document, '$.action')) STORED,
    subject TEXT NOT NULL AS (json_extract(document, '$.subject')) STORED,
    created_by TEXT NOT NULL AS (json_extract(document, '$.createdBy')) STORED,
    )sql" + timeColumn("created_at", "createdAt") +
           R"sql(,
    PRIMARY KEY (project, id)
) STRICT;
INSERT INTO changes_made_anew (project, id, document) SELECT project, id, document FROM changes;
DROP TABLE changes; -- and its figures
ALTER TABLE changes_made_anew RENAME TO changes;
CREATE INDEX changes_by_subject ON changes (subject, id);

INSERT INTO sqlite_stat1 (tbl, idx, stat) VALUES
    ('changes', 'sqlite_autoindex_changes_1', '1000000 1'),
    ('changes', 'sqlite_autoindex_changes_2', '1000000 100000 1'),
    ('changes', 'changes_by_subject', '1000000 10 1');
ANALYZE sqlite_schema;
)sql";
}

// Which delivery of its data manage inserted each sample, and what deliveries did besides, so that they can
// be taken back. Those made before are not counted: they have the number 0.
std::string seventhVersion()
{
    return R"sql(
ALTER TABLE samples ADD COLUMN delivery INTEGER NOT NULL DEFAULT 0;
ALTER TABLE point_locations ADD COLUMN first_delivery INTEGER NOT NULL DEFAULT 0;
ALTER TABLE point_locations ADD COLUMN last_delivery INTEGER NOT NULL DEFAULT 0;

UPDATE histories SET document = json_set(document, '$.number', 0,
    '$.sentCount', json_extract(document, '$.insertCount') + json_extract(document, '$.correctCount'));
UPDATE data_manages SET document = json_set(document, '$.deliveries', 0, '$.sampleCount',
    ifnull((SELECT json_extract(h.document, '$.lastCount') FROM histories AS h
        WHERE h.data_manage = data_manages.id ORDER BY h.id DESC LIMIT 1), 0));
UPDATE changes SET document = json_set(document, '$.delivery', '');
)sql";
}

// Identifiers rise by lanes.
std::string eighthVersion()
{
    return R"sql(
CREATE TABLE last_identifiers (
    lane INTEGER PRIMARY KEY,
    value TEXT NOT NULL
) STRICT;
INSERT INTO last_identifiers (lane, value) SELECT 0, value FROM state WHERE key = 'lastIdentifier';
DELETE FROM state WHERE key = 'lastIdentifier';
)sql";
}

void toFirstVersion(SqliteConnection& connection)
{
    connection.execute(firstVersion());
}

void toSecondVersion(SqliteConnection& connection)
{
    connection.execute(secondVersion());
}

void toThirdVersion(SqliteConnection& connection)
{
    for (const char* const table : {"groups", "point_locations", "alarm_details", "alarm_depths"}) {
        rewriteWholeNumbers(connection, table);
    }
}

void toFourthVersion(SqliteConnection& connection)
{
    connection.execute(fourthVersion());
}

void toFifthVersion(SqliteConnection& connection)
{
    connection.execute(fifthVersion());
}

void toSixthVersion(SqliteConnection& connection)
{
    connection.execute(sixthVersion());
}

void toSeventhVersion(SqliteConnection& connection)
{
    connection.execute(seventhVersion());
}

void toEighthVersion(SqliteConnection& connection)
{
    connection.execute(eighthVersion());
}

// The step at index n leads from version n to version n + 1. Steps that were released are never changed.
constexpr std::array migrations{toFirstVersion, toSecondVersion, toThirdVersion,   toFourthVersion,
                                toFifthVersion, toSixthVersion,  toSeventhVersion, toEighthVersion};

// In one statement, as between two of them another process may set the file up.
void checkOwnership(SqliteConnection& connection)
{
    SqliteStatement found = connection.statement(
        "SELECT (SELECT application_id FROM pragma_application_id), "
        "(SELECT user_version FROM pragma_user_version), EXISTS (SELECT 1 FROM sqlite_schema)");
    found.step();
    const std::int64_t owner = found.integer(0);
    const std::int64_t version = found.integer(1);
    const bool isEmpty = found.integer(2) == 0;
    if (owner != applicationId && !(owner == 0 && isEmpty)) {
        throw StoreError(StoreFailure::CannotOpen, "is a database of another application");
    }
    if (version > static_cast<std::int64_t>(migrations.size())) {
        throw StoreError(StoreFailure::CannotOpen, "has data of version " + std::to_string(version) +
                                                       ", written by a later monitor-service; " +
                                                       "this one knows versions up to " +
                                                       std::to_string(migrations.size()));
    }
}

// The change to the write-ahead log does not wait for other connections by itself.
void useWriteAheadLog(SqliteConnection& connection, std::chrono::milliseconds patience)
{
    const auto deadline = std::chrono::steady_clock::now() + patience;
    for (;;) {
        try {
            SqliteStatement statement = connection.statement("PRAGMA journal_mode = WAL");
            if (statement.step() && statement.text(0) == "wal") {
                return;
            }
            throw StoreError(StoreFailure::CannotOpen,
                             "lies on a file system without shared memory, such as a network drive");
        } catch (const StoreError& error) {
            if (error.failure() != StoreFailure::Busy || std::chrono::steady_clock::now() >= deadline) {
                throw;
            }
        }
        std::this_thread::sleep_for(std::chrono::milliseconds(10));
    }
}

} // namespace

std::string instantIn(const std::string& text)
{
    // julianday() would round, so seconds and milliseconds are read apart.
    return "CAST(strftime('%s', " + text + ") AS INTEGER) * 1000 + CAST(substr(" + text +
           ", 21, 3) AS INTEGER)";
}

void requireKnown(SqliteConnection& connection)
{
    checkOwnership(connection);
    if (connection.integer("PRAGMA application_id") != applicationId) {
        throw StoreError(StoreFailure::CannotOpen, "is empty");
    }
}

bool isUnfinishedCopy(SqliteConnection& connection)
{
    return connection.statement("SELECT 1 FROM state WHERE key = 'unfinishedCopy'").step();
}

void migrate(SqliteConnection& connection, std::chrono::milliseconds patience)
{
    checkOwnership(connection);
    useWriteAheadLog(connection, patience);
    try {
        SQLite::Transaction transaction(connection.database(), SQLite::TransactionBehavior::IMMEDIATE);
        // Once more, now that nobody else can write: another process may have been faster.
        checkOwnership(connection);
        for (auto version = static_cast<std::size_t>(connection.integer("PRAGMA user_version"));
             version < migrations.size(); ++version) {
            migrations.at(version)(connection);
        }
        connection.execute("PRAGMA application_id = " + std::to_string(applicationId));
        connection.execute("PRAGMA user_version = " + std::to_string(migrations.size()));
        transaction.commit();
    } catch (const SQLite::Exception& error) {
        throw storeError(error);
    }
}

} // namespace monitorservice
