#!/usr/bin/env python3
"""Works out from a site's files alone what a monitoring service must answer, and compares.

    site_truth.py --service monitor-service --rkmon rkmon --site samples/coastal-bluff --time-zone America/Los_Angeles
    site_truth.py --service monitor-service --rkmon rkmon --generate samples/generate --time-zone Europe/Vienna

Starts a service of its own, imports the site with rkmon, and checks every sample, every day's statistics and every
alarm with its details and depths; then imports it again and checks the same. It shares no code with the product: the
rules are those of docs/service.md, numbers are exact fractions, days are those of zoneinfo. --generate makes an
excavation with inclinometers first. Ends with 0 when all agrees, with 1 and the differences when not."""
import argparse
import collections
import csv
import datetime
import json
import os
import pathlib
import subprocess
import sys
import tempfile
import zoneinfo
from decimal import Decimal
from fractions import Fraction

Sample = collections.namedtuple("Sample", "time count value")  # time aware, with its offset; value Decimal
# A reading by the limits of one group; in_unit is by how much the daily variation is over in the unit of the values.
Judged = collections.namedtuple("Judged", "depth sample total daily total_over daily_over in_unit tolerance")

differences = []


def expect(actual, expected, what):
    if actual != expected:
        differences.append(f"{what}: {actual!r} instead of {expected!r}")


# ---- What the files say -------------------------------------------------------------------------------------------

def depth_text(text):
    """A depth is a number: "10.0" in a file is the depth "10"."""
    return f"{Decimal(text).normalize():f}" if text else ""


def read_site(folder):
    """project.json, and for each of its files (monitoring, alias) with the samples of (name, depth)."""
    project = json.loads((folder / "project.json").read_text(), parse_float=Decimal)
    deliveries = []
    for planned in project["files"]:
        points = collections.defaultdict(list)
        with open(folder / planned["file"], newline="") as lines:
            for row in csv.DictReader(lines):
                points[row["name"], depth_text(row["depth"])].append(
                    Sample(datetime.datetime.fromisoformat(row["time"]), int(row["count"]), Decimal(row["value"])))
        deliveries.append(((planned["monitoring"], planned["subCategory"]), points))
    deliveries.sort(key=lambda delivery: min(sample.time for point in delivery[1].values() for sample in point))
    return project, deliveries


def by_time(samples):
    return sorted(samples, key=lambda sample: (sample.time, sample.count))


def by_depth(key):
    return key[0], Fraction(key[1] or 0)


class Measured:
    """The samples of one monitoring and sub-category, as they grow by deliveries."""

    def __init__(self, zone):
        self.zone = zone
        self.points = collections.defaultdict(list)  # by (name, depth)

    def add(self, points):
        for key, samples in points.items():
            self.points[key] = by_time(self.points[key] + samples)

    def day(self, sample):
        return sample.time.astimezone(self.zone).date()

    def last_of_days(self, key):
        return {self.day(sample): sample for sample in self.points[key]}  # the later sample replaces the earlier

    def initial(self, key):
        """What rkmon gives a new point: its first reading."""
        return self.points[key][0].value


# ---- Alarms -------------------------------------------------------------------------------------------------------

def over(variation, limit, value):
    """By how much a variation passes its limit; what may come of binary fractions does not."""
    excess = abs(variation) - limit
    return excess if limit and excess > Fraction(1, 10**9) * max(limit, abs(value)) else Fraction(0)


def judge(group, depth, reference, sample, before):
    """The variations of a reading by one group. `before`: last sample of the measured day before, and days between."""
    reference, value = Fraction(reference), Fraction(sample.value)
    is_percent = group.get("dailyIn") == "percent"
    total, daily, daily_over, in_unit = value - reference, None, Fraction(0), Fraction(0)
    largest, scale = max(abs(reference), abs(value)), Fraction(1)
    if before is not None and not (is_percent and reference == 0):
        scale = 100 / abs(reference) if is_percent else scale
        largest = max(largest, abs(Fraction(before[0].value)))
        per_day = (value - Fraction(before[0].value)) / before[1]
        in_unit = over(per_day, Fraction(group.get("dailyLimit", 0)) / scale, value)
        daily, daily_over = per_day * scale, in_unit * scale
    # Twelve significant digits of what is subtracted.
    tolerance = Fraction(2, 10**12) * largest * max(scale, 1) * 10
    return Judged(depth, sample, total, daily, over(total, Fraction(group.get("totalLimit", 0)), value), daily_over,
                  in_unit, tolerance)


def judge_point(measured, key, groups):
    """Every reading of a point by every group that lists it, when it is over a limit."""
    last = measured.last_of_days(key)
    measured_days = sorted(last)
    place = {day: number for number, day in enumerate(measured_days)}
    for sample in measured.points[key]:
        number = place[measured.day(sample)]
        before = None
        if number:
            day_before = measured_days[number - 1]
            before = last[day_before], (measured_days[number] - day_before).days
        for group in groups:
            if key[0] in group["points"]:
                one = judge(group, key[1], measured.initial(key), sample, before)
                if one.total_over or one.daily_over:
                    yield one


def excesses_of(measured, groups):
    """All that is over a limit, by point name."""
    found = collections.defaultdict(list)
    for key in measured.points:
        for one in judge_point(measured, key, groups):
            found[key[0]].append(one)
    return found


def depths_at(measured, name, measurement):
    """(depth, sample, total) of each depth, rising, as of a measurement: the sample of its time and count, or the last
    one by that day."""
    found = []
    for key in sorted((key for key in measured.points if key[0] == name), key=by_depth):
        same = [sample for sample in measured.points[key]
                if (sample.time, sample.count) == (measurement.time, measurement.count)]
        by_then = [sample for of_day, sample in sorted(measured.last_of_days(key).items())
                   if of_day <= measured.day(measurement)]
        for sample in (same or by_then)[-1:]:
            found.append((key[1], sample, Fraction(sample.value) - Fraction(measured.initial(key))))
    return found


# ---- The service and rkmon ----------------------------------------------------------------------------------------

def kind_of(sub_category):
    return "inclinometer" if sub_category["alias"] == "IN" else "other"


class Service:
    def __init__(self, arguments, folder):
        self.program, self.rkmon_program, self.folder = arguments.service, arguments.rkmon, folder
        self.data = str(folder / "data.db")
        self.process = None
        self.environment = {name: text for name, text in os.environ.items() if not name.startswith("RKMON_")}
        # Far from every site: days must be those of the project, not of whoever asks.
        self.environment.update(TZ="Pacific/Auckland", XDG_CONFIG_HOME=str(folder))

    def admin(self, *command):
        return subprocess.run([self.program, "admin", "--data", self.data, *command], check=True,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True).stdout.rstrip("\n")

    def set_up(self, site, time_zone):
        project = self.admin("project", "create", "--name", "Site", "--time-zone", time_zone)
        self.admin("category", "add", *site["categories"])
        for known in site["subCategories"]:
            self.admin("subcategory", "create", "--project", project, "--category", known["category"],
                       "--name", known["name"], "--alias", known["alias"], "--kind", kind_of(known))
        token = json.loads(self.admin("token", "create", "--owner", "Surveyor", "--json"))
        self.admin("grant", "--token", token["_id"], "--project", project, "--role", "editor")
        token_file = self.folder / "token"
        token_file.touch(mode=0o600)
        token_file.write_text(token["token"])
        self.environment.update(RKMON_PROJECT=project, RKMON_TOKEN_FILE=str(token_file))

    def __enter__(self):
        self.process = subprocess.Popen(
            [self.program, "serve", "--data", self.data, "--listen", "127.0.0.1:0"],
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
        self.environment["RKMON_BASE_API"] = self.process.stdout.readline().split()[-1]
        return self

    def __exit__(self, *_):
        self.process.terminate()
        expect(self.process.wait(), 0, "exit status of the service")
        self.process.stdout.close()

    def rkmon(self, *command):
        """What a command prints as JSON; numbers are kept as they are written."""
        result = subprocess.run([self.rkmon_program, *command, "--json"], env=self.environment, check=True,
                                stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True)
        return json.loads(result.stdout, parse_float=Decimal, parse_int=Decimal)


def told(time):
    """A time's instant and offset."""
    time = datetime.datetime.fromisoformat(time) if isinstance(time, str) else time
    return time.timestamp(), time.utcoffset()


# ---- Comparing ----------------------------------------------------------------------------------------------------

def compare_samples(service, monitoring, expected):
    held = collections.defaultdict(list)
    for row in service.rkmon("point", "list", "--cell", monitoring, "--samples"):
        held[row["name"], row["depth"] or ""].append(Sample(row["time"], row["count"], row["value"]))
    expect(sorted(held), sorted(expected), f"points of {monitoring}")
    for key, samples in expected.items():
        what = f"{monitoring}, {key[0]} at depth \"{key[1]}\""
        expect(len(held[key]), len(samples), f"number of samples of {what}")
        expect(sum(sample.value for sample in held[key]), sum(sample.value for sample in samples),
               f"sum of the values of {what}")
        for actual, wanted in zip(held[key], samples):
            expect((told(actual.time), *actual[1:]), (told(wanted.time), *wanted[1:]), f"sample of {what}")
    return sum(len(samples) for samples in held.values())


def compare_statistics(service, monitoring, statistic, lasts):
    """`lasts`: the last sample by (name, depth) and day."""
    expected = sorted((day, *by_depth(key), told(sample.time), sample.count, sample.value)
                      for key, days in lasts.items() for day, sample in days.items()
                      if key[1] or statistic == "normal")
    answered = [(datetime.date.fromisoformat(row["day"]), row["name"], Fraction(row["depth"] or 0),
                 told(row["time"]), row["count"], row["value"])
                for row in service.rkmon("stats", statistic, "--cell", monitoring)]
    expect(len(answered), len(expected), f"number of values in stats {statistic} of {monitoring}")
    for row, wanted in zip(answered, expected):
        expect(row, wanted, f"stats {statistic} of {monitoring}")
    return len(answered)


def is_near(actual, expected, tolerance):
    if expected is None or actual in (None, ""):
        return expected is None and actual in (None, "")
    return abs(Fraction(actual) - expected) <= tolerance


def is_detail(detail, one):
    return ((detail["depth"] or "") == one.depth and told(detail["monitorTime"]) == told(one.sample.time)
            and detail["monitorCount"] == one.sample.count
            and is_near(detail["totalVar"], one.total, one.tolerance)
            and is_near(detail["dayVar"], one.daily, one.tolerance)
            and is_near(detail["totalBeyound"], one.total_over, one.tolerance)
            and is_near(detail["dayBeyound"], one.daily_over, one.tolerance)
            and bool(detail["totalBeyound"]) == bool(one.total_over)
            and bool(detail["dayBeyound"]) == bool(one.daily_over))


def compare_depths(service, detail, expected, is_inclinometer, what):
    has_depths = len(expected) > 1 or (is_inclinometer and bool(detail["depth"]))
    expect((detail["isThreeVar"], detail["isInclinometer"]), (has_depths, is_inclinometer), f"depth marks of {what}")
    answered = service.rkmon("alarm", "depths", detail["id"])
    expected = expected if has_depths else []
    expect([(row["pointName"], row["depth"], told(row["monitorTime"]), row["monitorCount"]) for row in answered],
           [(detail["pointName"], depth, told(sample.time), sample.count) for depth, sample, _ in expected],
           f"depths of {what}")
    for row, (depth, sample, total) in zip(answered, expected):
        tolerance = Fraction(2, 10**11) * (abs(Fraction(sample.value)) + abs(total))
        if not is_near(row["totalValue"], total, tolerance):
            expect(row["totalValue"], float(total), f"total variation at depth {depth} of {what}")
    return len(answered)


def compare_name(details, judged, what):
    """The details of one point name in one alarm: the worst of its readings by the total and by the daily variation."""
    total, in_unit = max(one.total_over for one in judged), max(one.in_unit for one in judged)
    told_of = [[one for one in judged if is_detail(detail, one)] for detail in details]
    expect([bool(found) for found in told_of], [True] * len(details), f"details that are in excess, of {what}")
    shown = [found[0] for found in told_of if found]
    tolerance = max(one.tolerance for one in judged)
    expect(max((one.total_over for one in shown), default=0) >= total - tolerance, True, f"greatest total of {what}")
    expect(max((one.in_unit for one in shown), default=0) >= in_unit - tolerance, True, f"greatest daily of {what}")
    expect(len(details) <= 2, True, f"two details at most of {what}")
    if len(shown) == 2:
        expect(all(one.total_over < total - tolerance or one.in_unit < in_unit - tolerance for one in shown), True,
               f"one detail where one reading is the worst in both ways, of {what}")


def compare_alarms(service, target, judged, depths, is_inclinometer):
    """`judged`: what is over a limit by point name. Readings stand in the alarm of the day on which they were found:
    of a site that was delivered around midnight only what its alarms say together is known."""
    alarms = service.rkmon("alarm", "list", "--cell", target[0], "--sub-category", target[1])
    expect(bool(alarms), bool(judged), f"alarms of {target}")
    expect(len(alarms) <= 2, True, f"one alarm of {target} a day")
    detail_count = depth_count = 0
    by_name = collections.defaultdict(list)
    for alarm in alarms:
        details = service.rkmon("alarm", "detail", alarm["id"])
        expect((alarm["cellName"], alarm["pointCounts"]), (target[0], len({one["pointName"] for one in details})),
               f"alarm of {target}")
        expect([one["pointName"] for one in details], sorted(one["pointName"] for one in details),
               f"order of the details of {target}")
        for detail in details:
            name, what = detail["pointName"], f"{detail['pointName']} in an alarm of {target}"
            by_name[name].append(detail)
            matching = [one for one in judged.get(name, []) if is_detail(detail, one)]
            if matching:
                depth_count += compare_depths(service, detail, depths(name, matching[0].sample), is_inclinometer, what)
            detail_count += 1
    expect(sorted(by_name), sorted(judged), f"points in alarms of {target}")
    if len(alarms) == 1:
        for name, details in by_name.items():
            compare_name(details, judged.get(name, []), f"{name} of {target}")
    return len(alarms), detail_count, depth_count


class Expectation:
    """Everything the service must answer once the site is in."""

    def __init__(self, site, deliveries, zone):
        self.measured = collections.defaultdict(lambda: Measured(zone))  # by (monitoring, alias)
        for target, points in deliveries:
            self.measured[target].add(points)
        self.judged = {target: excesses_of(measured, [group for group in site["groups"] if
                                                      (group["monitoring"], group["subCategory"]) == target])
                       for target, measured in self.measured.items()}
        self.kinds = {known["alias"]: kind_of(known) for known in site["subCategories"]}

    def compare(self, service):
        counts = collections.Counter()
        monitorings = sorted({target[0] for target in self.measured})
        for monitoring in monitorings:
            own = [measured for target, measured in self.measured.items() if target[0] == monitoring]
            counts["samples"] += compare_samples(
                service, monitoring, {key: samples for one in own for key, samples in one.points.items()})
            lasts = {key: one.last_of_days(key) for one in own for key in one.points}
            for statistic in "normal", "depth":
                counts["daily values"] += compare_statistics(service, monitoring, statistic, lasts)
        for target, measured in self.measured.items():
            alarms, details, depths = compare_alarms(
                service, target, self.judged[target],
                lambda name, sample, measured=measured: depths_at(measured, name, sample),
                self.kinds[target[1]] == "inclinometer")
            counts.update({"alarms": alarms, "details": details, "depths": depths})
        return counts


# ---- The whole ----------------------------------------------------------------------------------------------------

def generate(generator, folder):
    """An excavation, with a second and a third group over the inclinometers, so that the worst of several counts."""
    subprocess.run([generator, "--points", "6", "--inclinometers", "2", "--days", "24", "--out", str(folder)], check=True)
    path = folder / "project.json"
    site = json.loads(path.read_text())
    common = {"monitoring": "Excavation", "subCategory": "IN", "points": ["IN001", "IN002"]}
    site["groups"] += [{**common, "name": "Speed", "dailyLimit": 2.5},
                       {**common, "name": "Relative speed", "dailyLimit": 30000, "dailyIn": "percent"}]
    path.write_text(json.dumps(site))
    return folder


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("--service", required=True, help="the program monitor-service")
    parser.add_argument("--rkmon", required=True, help="the program rkmon")
    parser.add_argument("--time-zone", required=True, help="where the project's days begin")
    which = parser.add_mutually_exclusive_group(required=True)
    which.add_argument("--site", type=pathlib.Path, help="folder with project.json and its files")
    which.add_argument("--generate", metavar="GENERATOR", help="the program samples/generate")
    arguments = parser.parse_args()

    with tempfile.TemporaryDirectory() as temporary:
        folder = pathlib.Path(temporary)
        site_folder = arguments.site or generate(arguments.generate, folder / "site")
        site, deliveries = read_site(site_folder)
        rows = sum(len(samples) for _, points in deliveries for samples in points.values())
        expectation = Expectation(site, deliveries, zoneinfo.ZoneInfo(arguments.time_zone))
        service = Service(arguments, folder)
        service.set_up(site, arguments.time_zone)
        with service:
            for repetition in range(2):
                summary = service.rkmon("point", "import", "--project-file", str(site_folder / "project.json"))
                expect((summary["samples"], summary["deliveries"]), (rows, len(deliveries)), "what the import sent")
                counts = expectation.compare(service)
                expect(counts["samples"], rows, f"samples held after import {repetition + 1}")
                print(f"import {repetition + 1}: {rows} rows in {len(deliveries)} files; compared "
                      + ", ".join(f"{count} {what}" for what, count in counts.items()))
    for difference in differences[:20]:
        print(difference, file=sys.stderr)
    if differences:
        print(f"{len(differences)} differences", file=sys.stderr)
    return 1 if differences else 0


if __name__ == "__main__":
    sys.exit(main())
