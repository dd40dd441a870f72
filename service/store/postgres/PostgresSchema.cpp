#include "store/postgres/PostgresSchema.h"

#include "store/postgres/LaneLocks.h"

#include <array>
#include <string>

namespace monitorservice {

namespace {

// Held while the tables are made or changed, so that of several services that start at once one does it: the
// letters "RKMD".
constexpr const char* migrationLock = "1380665668";

constexpr int oldestServer = 150000; // 15.0

// Every key begins with the number of the project, four bytes instead of the 24 letters of its identifier;
// numbers are never used twice, and stay when the project goes, as the audit trail does. Texts are compared
// byte by byte whatever the database's own language is. Documents are texts, not jsonb, which would order
// their members anew.
//
// What a document refers to is in its own project: no key reaches into another one.
std::string firstVersion()
{
    return R"sql(
CREATE TABLE monitor_state (
    key text COLLATE "C" PRIMARY KEY,
    value text COLLATE "C" NOT NULL
);
INSERT INTO monitor_state (key, value) VALUES ('lastIdentifier', ''), ('turn', '');

CREATE TABLE project_numbers (
    number integer PRIMARY KEY,
    id text COLLATE "C" NOT NULL UNIQUE,
    points bigint NOT NULL DEFAULT 0 -- the numbers of points given so far
);
INSERT INTO project_numbers (number, id) VALUES (0, ''); -- of the entries of the audit trail that are of none

CREATE TABLE projects (
    project_number integer PRIMARY KEY REFERENCES project_numbers (number),
    id text COLLATE "C" NOT NULL UNIQUE,
    name text COLLATE "C" NOT NULL,
    time_zone text COLLATE "C" NOT NULL,
    created_at bigint NOT NULL
);

CREATE TABLE categories (
    name text COLLATE "C" PRIMARY KEY,
    position bigint NOT NULL
);

CREATE TABLE sub_categories (
    project_number integer NOT NULL REFERENCES projects (project_number),
    id text COLLATE "C" NOT NULL UNIQUE,
    document text COLLATE "C" NOT NULL,
    name text COLLATE "C" NOT NULL,
    category text COLLATE "C" NOT NULL REFERENCES categories (name) DEFERRABLE,
    alias text COLLATE "C" NOT NULL,
    PRIMARY KEY (project_number, id),
    UNIQUE (project_number, category, name)
);

CREATE TABLE cells (
    project_number integer NOT NULL REFERENCES projects (project_number),
    id text COLLATE "C" NOT NULL UNIQUE,
    document text COLLATE "C" NOT NULL,
    name text COLLATE "C" NOT NULL,
    category text COLLATE "C" NOT NULL REFERENCES categories (name) DEFERRABLE,
    created_at bigint NOT NULL,
    created_by text COLLATE "C" NOT NULL,
    updated_at bigint NOT NULL,
    updated_by text COLLATE "C" NOT NULL,
    PRIMARY KEY (project_number, id)
);
CREATE INDEX cells_by_name ON cells (project_number, name, id);
CREATE INDEX cells_by_creation ON cells (project_number, created_at, id);

CREATE TABLE groups (
    project_number integer NOT NULL REFERENCES projects (project_number),
    id text COLLATE "C" NOT NULL UNIQUE,
    document text COLLATE "C" NOT NULL,
    cell text COLLATE "C" NOT NULL,
    sub_category text COLLATE "C" NOT NULL,
    name text COLLATE "C" NOT NULL,
    PRIMARY KEY (project_number, id),
    FOREIGN KEY (project_number, cell) REFERENCES cells (project_number, id),
    FOREIGN KEY (project_number, sub_category) REFERENCES sub_categories (project_number, id)
);
CREATE INDEX groups_by_cell ON groups (project_number, cell, sub_category, id);
CREATE INDEX groups_by_sub_category ON groups (project_number, sub_category);

-- A point's own number, not its identifier, is what its samples refer to: it is short. The project's number is its
-- upper part.
CREATE TABLE point_locations (
    project_number integer NOT NULL REFERENCES projects (project_number),
    point bigint NOT NULL,
    id text COLLATE "C" NOT NULL UNIQUE,
    document text COLLATE "C" NOT NULL,
    cell text COLLATE "C" NOT NULL,
    sub_category text COLLATE "C" NOT NULL,
    name text COLLATE "C" NOT NULL,
    depth text COLLATE "C" NOT NULL,
    depth_number double precision NOT NULL,
    last_time bigint,
    first_delivery bigint NOT NULL,
    last_delivery bigint NOT NULL,
    PRIMARY KEY (project_number, point),
    UNIQUE (project_number, id),
    UNIQUE (project_number, cell, sub_category, name, depth),
    FOREIGN KEY (project_number, cell) REFERENCES cells (project_number, id),
    FOREIGN KEY (project_number, sub_category) REFERENCES sub_categories (project_number, id)
);
CREATE INDEX point_locations_by_last_time ON point_locations (project_number, last_time, id);
CREATE INDEX point_locations_by_name ON point_locations (project_number, name, cell);
CREATE INDEX point_locations_by_sub_category ON point_locations (project_number, sub_category, id);

-- The samples of a point on one day of its project's time zone, counted from 1970-01-01, in parts of bounded size: the
-- first and the last of them in columns, all of them in "content", see SampleSegment. It is compressed already, and small
-- enough to stand in the row.
CREATE TABLE sample_segments (
    project_number integer NOT NULL,
    point bigint NOT NULL,
    day integer NOT NULL,
    part integer NOT NULL,
    samples integer NOT NULL,
    first_time bigint NOT NULL,
    last_time bigint NOT NULL,
    last_count integer NOT NULL,
    last_offset_minutes integer,
    last_value double precision NOT NULL,
    last_delivery bigint NOT NULL, -- the greatest number of a delivery that has inserted one of them
    content bytea NOT NULL,
    PRIMARY KEY (project_number, point, day, part),
    FOREIGN KEY (project_number, point) REFERENCES point_locations (project_number, point)
);
ALTER TABLE sample_segments ALTER COLUMN content SET STORAGE PLAIN;

CREATE TABLE data_manages (
    project_number integer NOT NULL REFERENCES projects (project_number),
    id text COLLATE "C" NOT NULL UNIQUE,
    document text COLLATE "C" NOT NULL,
    cell text COLLATE "C" NOT NULL,
    sub_category text COLLATE "C" NOT NULL,
    created_at bigint NOT NULL,
    updated_at bigint NOT NULL,
    PRIMARY KEY (project_number, id),
    UNIQUE (project_number, cell, sub_category),
    FOREIGN KEY (project_number, cell) REFERENCES cells (project_number, id),
    FOREIGN KEY (project_number, sub_category) REFERENCES sub_categories (project_number, id)
);
CREATE INDEX data_manages_by_sub_category ON data_manages (project_number, sub_category);

CREATE TABLE histories (
    project_number integer NOT NULL REFERENCES projects (project_number),
    id text COLLATE "C" NOT NULL UNIQUE,
    document text COLLATE "C" NOT NULL,
    data_manage text COLLATE "C" NOT NULL,
    PRIMARY KEY (project_number, id),
    FOREIGN KEY (project_number, data_manage) REFERENCES data_manages (project_number, id)
);
CREATE INDEX histories_by_data_manage ON histories (project_number, data_manage, id);

CREATE TABLE alarms (
    project_number integer NOT NULL REFERENCES projects (project_number),
    id text COLLATE "C" NOT NULL UNIQUE,
    document text COLLATE "C" NOT NULL,
    cell text COLLATE "C" NOT NULL,
    sub_category text COLLATE "C" NOT NULL,
    created_at bigint NOT NULL,
    PRIMARY KEY (project_number, id),
    FOREIGN KEY (project_number, cell) REFERENCES cells (project_number, id),
    FOREIGN KEY (project_number, sub_category) REFERENCES sub_categories (project_number, id)
);
CREATE INDEX alarms_by_cell ON alarms (project_number, cell, sub_category, id);
CREATE INDEX alarms_by_sub_category ON alarms (project_number, sub_category);

CREATE TABLE alarm_details (
    project_number integer NOT NULL REFERENCES projects (project_number),
    id text COLLATE "C" NOT NULL UNIQUE,
    document text COLLATE "C" NOT NULL,
    alarm text COLLATE "C" NOT NULL,
    point_name text COLLATE "C" NOT NULL,
    PRIMARY KEY (project_number, id),
    FOREIGN KEY (project_number, alarm) REFERENCES alarms (project_number, id)
);
CREATE INDEX alarm_details_by_alarm ON alarm_details (project_number, alarm, point_name, id);

CREATE TABLE alarm_depths (
    project_number integer NOT NULL REFERENCES projects (project_number),
    id text COLLATE "C" NOT NULL UNIQUE,
    document text COLLATE "C" NOT NULL,
    detail text COLLATE "C" NOT NULL,
    depth text COLLATE "C" NOT NULL,
    depth_number double precision NOT NULL,
    PRIMARY KEY (project_number, id),
    FOREIGN KEY (project_number, detail) REFERENCES alarm_details (project_number, id)
);
CREATE INDEX alarm_depths_by_detail ON alarm_depths (project_number, detail, id);

CREATE TABLE excesses (
    project_number integer NOT NULL,
    point bigint NOT NULL,
    time bigint NOT NULL,
    count integer NOT NULL,
    alarm text COLLATE "C" NOT NULL,
    PRIMARY KEY (project_number, point, time, count),
    FOREIGN KEY (project_number, point) REFERENCES point_locations (project_number, point),
    FOREIGN KEY (project_number, alarm) REFERENCES alarms (project_number, id)
);
CREATE INDEX excesses_by_alarm ON excesses (project_number, alarm, point);

-- Refers to nothing: what it tells of may be gone.
CREATE TABLE changes (
    project_number integer NOT NULL,
    id text COLLATE "C" NOT NULL UNIQUE,
    document text COLLATE "C" NOT NULL,
    category text COLLATE "C" NOT NULL,
    cell text COLLATE "C" NOT NULL,
    sub_category text COLLATE "C" NOT NULL,
    action text COLLATE "C" NOT NULL,
    subject text COLLATE "C" NOT NULL,
    created_by text COLLATE "C" NOT NULL,
    created_at bigint NOT NULL,
    PRIMARY KEY (project_number, id)
);
CREATE INDEX changes_by_subject ON changes (project_number, subject, id);

-- The index serves the sender, which asks each second.
CREATE TABLE outbox (
    project_number integer NOT NULL,
    alarm text COLLATE "C" NOT NULL,
    channel text COLLATE "C" NOT NULL,
    recipient text COLLATE "C" NOT NULL,
    due bigint,
    attempts bigint NOT NULL,
    told text COLLATE "C" NOT NULL,
    PRIMARY KEY (project_number, alarm, channel, recipient),
    FOREIGN KEY (project_number, alarm) REFERENCES alarms (project_number, id) ON DELETE CASCADE
);
CREATE INDEX outbox_by_due ON outbox (channel, due) WHERE due IS NOT NULL;

CREATE TABLE tokens (
    id text COLLATE "C" PRIMARY KEY,
    owner text COLLATE "C" NOT NULL,
    name text COLLATE "C" NOT NULL,
    secret_sha256 bytea NOT NULL UNIQUE,
    created_at bigint NOT NULL,
    expires_at bigint,
    revoked_at bigint
);

CREATE TABLE grants (
    id text COLLATE "C" PRIMARY KEY,
    token text COLLATE "C" NOT NULL REFERENCES tokens (id),
    project text COLLATE "C" REFERENCES projects (id),
    category text COLLATE "C" REFERENCES categories (name) DEFERRABLE,
    rights bigint NOT NULL,
    created_at bigint NOT NULL,
    CHECK (project IS NOT NULL OR category IS NULL)
);
CREATE UNIQUE INDEX grants_by_token ON grants (token, (project IS NULL), coalesce(project, ''),
    (category IS NULL), coalesce(category, ''));

-- What is read: the rows with their project's identifier; with the category of what belongs to a monitoring, which is
-- stored with the monitoring alone; and as "searched" the document with the members that conditions may name besides
-- those stored.
CREATE VIEW cells_read AS
    SELECT t.*, n.id AS project FROM cells AS t JOIN project_numbers AS n ON n.number = t.project_number;

CREATE VIEW sub_categories_read AS
    SELECT t.*, n.id AS project FROM sub_categories AS t JOIN project_numbers AS n ON n.number = t.project_number;

CREATE VIEW changes_read AS
    SELECT t.*, n.id AS project FROM changes AS t JOIN project_numbers AS n ON n.number = t.project_number;

CREATE VIEW groups_read AS
    SELECT t.*, n.id AS project, c.category AS category,
        left(t.document, -1) || ',"category":' || to_json(c.category) || '}' AS searched
    FROM groups AS t JOIN project_numbers AS n ON n.number = t.project_number
    JOIN cells AS c ON c.project_number = t.project_number AND c.id = t.cell;

CREATE VIEW point_locations_read AS
    SELECT t.*, n.id AS project, c.category AS category,
        left(t.document, -1) || ',"category":' || to_json(c.category) || '}' AS searched
    FROM point_locations AS t JOIN project_numbers AS n ON n.number = t.project_number
    JOIN cells AS c ON c.project_number = t.project_number AND c.id = t.cell;

CREATE VIEW data_manages_read AS
    SELECT t.*, n.id AS project, c.category AS category, s.category AS searched_category,
        left(t.document, -1) || ',"category":' || to_json(s.category) || '}' AS searched
    FROM data_manages AS t JOIN project_numbers AS n ON n.number = t.project_number
    JOIN cells AS c ON c.project_number = t.project_number AND c.id = t.cell
    JOIN sub_categories AS s ON s.project_number = t.project_number AND s.id = t.sub_category;

CREATE VIEW histories_read AS
    SELECT t.*, n.id AS project, c.category AS category, t.document AS searched
    FROM histories AS t JOIN project_numbers AS n ON n.number = t.project_number
    JOIN data_manages AS d ON d.project_number = t.project_number AND d.id = t.data_manage
    JOIN cells AS c ON c.project_number = d.project_number AND c.id = d.cell;

CREATE VIEW alarms_read AS
    SELECT t.*, n.id AS project, c.category AS category, c.name AS name,
        left(t.document, -1) || ',"name":' || to_json(c.name) || ',"category":' || to_json(c.category) ||
        ',"subCategory":[' || to_json(s.id) || ',' || to_json(s.name) || ',' || to_json(s.alias) || ']}' AS searched
    FROM alarms AS t JOIN project_numbers AS n ON n.number = t.project_number
    JOIN cells AS c ON c.project_number = t.project_number AND c.id = t.cell
    JOIN sub_categories AS s ON s.project_number = t.project_number AND s.id = t.sub_category;

CREATE VIEW alarm_details_read AS
    SELECT t.*, n.id AS project, c.category AS category, t.document AS searched
    FROM alarm_details AS t JOIN project_numbers AS n ON n.number = t.project_number
    JOIN alarms AS a ON a.project_number = t.project_number AND a.id = t.alarm
    JOIN cells AS c ON c.project_number = a.project_number AND c.id = a.cell;

CREATE VIEW alarm_depths_read AS
    SELECT t.*, n.id AS project, c.category AS category, t.document AS searched
    FROM alarm_depths AS t JOIN project_numbers AS n ON n.number = t.project_number
    JOIN alarm_details AS e ON e.project_number = t.project_number AND e.id = t.detail
    JOIN alarms AS a ON a.project_number = e.project_number AND a.id = e.alarm
    JOIN cells AS c ON c.project_number = a.project_number AND c.id = a.cell;
)sql";
}

// Turns to write are locks that are no rows, and identifiers rise by lanes. Whoever has the turn now is
// waited for, so that the last identifier is the last one.
std::string secondVersion()
{
    return R"sql(
DELETE FROM monitor_state WHERE key = 'turn';

CREATE TABLE last_identifiers (
    lane integer PRIMARY KEY,
    value text COLLATE "C" NOT NULL
);
INSERT INTO last_identifiers (lane, value) SELECT 0, value FROM monitor_state WHERE key = 'lastIdentifier';
DELETE FROM monitor_state WHERE key = 'lastIdentifier';

-- The server takes no statistics of a table by itself before 50 rows have changed. It then guesses how many there
-- are, and of few monitorings it guesses so many that it reads all points of a project for a page of them.
ALTER TABLE project_numbers SET (autovacuum_analyze_threshold = 1);
ALTER TABLE projects SET (autovacuum_analyze_threshold = 1);
ALTER TABLE categories SET (autovacuum_analyze_threshold = 1);
ALTER TABLE sub_categories SET (autovacuum_analyze_threshold = 1);
ALTER TABLE cells SET (autovacuum_analyze_threshold = 1);
ALTER TABLE groups SET (autovacuum_analyze_threshold = 1);
ALTER TABLE tokens SET (autovacuum_analyze_threshold = 1);
ALTER TABLE grants SET (autovacuum_analyze_threshold = 1);
)sql";
}

// The step at index n leads from version n to version n + 1. Steps that were released are never changed.
constexpr std::array migrations{firstVersion, secondVersion};

std::int64_t versionOf(PostgresConnection& connection)
{
    const PostgresResult found =
        connection.run("SELECT value::bigint FROM monitor_state WHERE key = 'version'");
    return found.isEmpty() ? 0 : found.integer(0, 0);
}

// In the schema in which tables would be made.
bool hasOtherTables(PostgresConnection& connection)
{
    return connection
        .run("SELECT EXISTS (SELECT 1 FROM pg_class WHERE relkind IN ('r', 'p') AND "
             "relnamespace = (SELECT oid FROM pg_namespace WHERE nspname = current_schema()))")
        .boolean(0, 0);
}

void checkServer(const PostgresConnection& connection)
{
    if (connection.serverVersion() < oldestServer) {
        throw StoreError(StoreFailure::CannotOpen, "is on a server before PostgreSQL 15");
    }
    if (connection.parameter("server_encoding") != "UTF8") {
        throw StoreError(StoreFailure::CannotOpen, "has the encoding " +
                                                       connection.parameter("server_encoding") +
                                                       ", but must be made with ENCODING 'UTF8'");
    }
}

void checkVersion(std::int64_t version)
{
    if (version > knownVersion()) {
        throw StoreError(StoreFailure::CannotOpen,
                         "has data of version " + std::to_string(version) +
                             ", written by a later monitor-service; this one knows versions up to " +
                             std::to_string(knownVersion()));
    }
}

} // namespace

bool isSetUp(PostgresConnection& connection)
{
    // Not by to_regclass(), which may remember that there was none after another connection has made it.
    return connection
        .run("SELECT EXISTS (SELECT 1 FROM pg_class WHERE relname = 'monitor_state' AND "
             "relkind IN ('r', 'p') AND pg_table_is_visible(oid))")
        .boolean(0, 0);
}

std::int64_t knownVersion()
{
    return static_cast<std::int64_t>(migrations.size());
}

bool isUpToDate(PostgresConnection& connection)
{
    return isSetUp(connection) && versionOf(connection) == knownVersion();
}

bool isUnfinishedCopy(PostgresConnection& connection)
{
    return !connection.run("SELECT 1 FROM monitor_state WHERE key = 'unfinishedCopy'").isEmpty();
}

void migrate(PostgresConnection& connection)
{
    checkServer(connection);
    if (isUpToDate(connection)) {
        return;
    }
    connection.execute(std::string("BEGIN; SELECT pg_advisory_xact_lock(") + migrationLock + ")");
    // Looked at now, as another process may have been faster.
    const bool isNew = !isSetUp(connection);
    if (isNew && hasOtherTables(connection)) {
        throw StoreError(StoreFailure::CannotOpen, "is a database of another application");
    }
    const std::int64_t version = isNew ? 0 : versionOf(connection);
    checkVersion(version);
    lockLanes(connection, {allLanes});
    for (auto step = static_cast<std::size_t>(version); step < migrations.size(); ++step) {
        connection.execute(migrations.at(step)());
    }
    connection.run("INSERT INTO monitor_state (key, value) VALUES ('version', $1) "
                   "ON CONFLICT (key) DO UPDATE SET value = excluded.value",
                   std::to_string(knownVersion()));
    connection.execute("COMMIT");
}

} // namespace monitorservice
