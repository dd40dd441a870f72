#!/usr/bin/env python3
"""How many bytes a sample takes in a file and in a PostgreSQL database, and how many of the database's log.

  stored_bytes.py SERVICE BIN    SERVICE: monitor-service; BIN: the folder with initdb and postgres

A hundred points settle by chance, 0.03 mm from one reading to the next, written with two decimals; the chance is the
same in each run. The server is one of tests/support/postgres_server.py, and goes with its data.
"""

import contextlib
import datetime
import http.client
import json
import os
import pathlib
import random
import subprocess
import sys
import tempfile

POINTS = 100
BEGIN = datetime.datetime(2015, 12, 18, tzinfo=datetime.timezone.utc)
HOUR = 3600
# What is measured: seconds between readings, days, readings of each point in a delivery.
SERIES = {
    "hourly, 100 a delivery": (HOUR, 400, 100),
    "hourly, 1 a delivery": (HOUR, 40, 1),
    "each 15 minutes, 100 a delivery": (HOUR // 4, 100, 100),
    "each 15 minutes, 1 a delivery": (HOUR // 4, 10, 1),
}


@contextlib.contextmanager
def server(binaries):
    script = pathlib.Path(__file__).parents[1] / "tests" / "support" / "postgres_server.py"
    with subprocess.Popen([sys.executable, script, "durable", binaries, str(os.getpid())], stdout=subprocess.PIPE,
                          text=True) as runs:
        try:
            yield runs.stdout.readline().strip()
        finally:
            runs.terminate()


def ask(folder, database, statement):
    return subprocess.run(["psql", "-h", folder, "-U", "postgres", "-d", database, "-qAtc", statement], check=True,
                          stdout=subprocess.PIPE, text=True).stdout.strip()


class Site:
    """A service on an empty store, with one monitoring."""

    def __init__(self, service, location):
        def admin(*arguments):
            return subprocess.run([service, "admin", *location, *arguments], check=True, stdout=subprocess.PIPE,
                                  text=True).stdout.strip()

        self.project = admin("project", "create", "--name", "Harbour tunnel", "--time-zone", "Europe/Vienna")
        admin("category", "add", "Settlement")
        self.sub_category = admin("subcategory", "create", "--project", self.project, "--category", "Settlement",
                                  "--name", "Ground level")
        token = json.loads(admin("token", "create", "--owner", "A. Engineer", "--json"))
        self.token = token["token"]
        admin("grant", "--token", token["_id"], "--project", self.project, "--role", "editor")
        self.process = subprocess.Popen([service, "serve", *location, "--listen", "127.0.0.1:0"],
                                        stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True)
        port = int(self.process.stdout.readline().rstrip("/\n").rpartition(":")[2].partition("/")[0])
        self.connection = http.client.HTTPConnection("127.0.0.1", port)
        self.cell = self.post("cells", {"projectId": self.project, "name": "Tower 1", "category": "Settlement"})["_id"]

    def post(self, path, body):
        self.connection.request("POST", f"/monitor-service/{path}", json.dumps(body),
                                {"Authorization": f"Bearer {self.token}"})
        answer = self.connection.getresponse()
        text = answer.read()
        if answer.status >= 300:
            raise RuntimeError(text.decode())
        return json.loads(text)

    def deliver(self, seconds, days, at_once):
        """How many deliveries it were."""
        chance = random.Random(1)
        levels = [chance.uniform(-5, 5) for _ in range(POINTS)]
        total = days * 24 * HOUR // seconds
        for first in range(0, total, at_once):
            points = []
            for i in range(POINTS):
                data = []
                for number in range(first, min(first + at_once, total)):
                    levels[i] += chance.gauss(0, 0.03)
                    time = BEGIN + datetime.timedelta(seconds=number * seconds)
                    data.append({"count": number, "time": time.strftime("%Y-%m-%dT%H:%M:%SZ"),
                                 "value": round(levels[i], 2), "timeFlag": ""})
                points.append({"projectId": self.project, "cellId": self.cell, "subCategoryId": self.sub_category,
                               "name": f"P{i}", "initialValue": 0, "data": data})
            self.post("pointLocations", points)
        return -(-total // at_once)

    def stop(self):
        self.process.terminate()
        self.process.wait()


def main():
    if len(sys.argv) != 3:
        sys.exit(__doc__)
    service, binaries = sys.argv[1:]
    with tempfile.TemporaryDirectory() as folder, server(binaries) as host:
        for number, (name, (seconds, days, at_once)) in enumerate(SERIES.items()):
            samples = POINTS * days * 24 * HOUR // seconds
            file = os.path.join(folder, f"{number}.db")
            site = Site(service, ["--data", file])
            site.deliver(seconds, days, at_once)
            site.stop()

            database = f"stored_{number}"
            ask(host, "postgres", f"CREATE DATABASE {database}")
            site = Site(service, ["--store", f"postgresql:///{database}?host={host}&user=postgres"])
            before = ask(host, database, "SELECT pg_current_wal_lsn()")
            deliveries = site.deliver(seconds, days, at_once)
            log = int(ask(host, database, f"SELECT pg_current_wal_lsn() - '{before}'"))
            site.stop()
            size = "SELECT pg_total_relation_size('{}')"
            written = int(ask(host, database, size.format("sample_segments")))
            history = int(ask(host, database, size.format("histories")))
            ask(host, database, "VACUUM FULL sample_segments")
            packed = int(ask(host, database, size.format("sample_segments")))
            print(f"{name}, {samples} samples: file {os.path.getsize(file) / samples:.1f} bytes a sample; "
                  f"database {written / samples:.1f}, rewritten {packed / samples:.1f}, log {log / samples:.1f}; "
                  f"history {history / deliveries:.0f} a delivery", flush=True)


main()
