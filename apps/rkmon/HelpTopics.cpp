#include "HelpTopics.h"

namespace {

const char* const configurationText =
    R"(Each setting is taken from the first of these that gives it: the option, the
variable of the environment, the profile in use, the rest of the file.

  --base-api URL     RKMON_BASE_API     base-api     address of the service
  --project PROJECT  RKMON_PROJECT      project      its identifier, or its name
  --token-file FILE  RKMON_TOKEN_FILE   token-file   file that holds the token
  --ca-file FILE     RKMON_CA_FILE      ca-file      certificates to trust
  --deadline SECONDS                    deadline     longest time of a request
  --profile NAME     RKMON_PROFILE      default-profile

The file is rkmon/config.ini in the configuration folder (as a rule ~/.config),
or the one after --config. Files that it names are relative to its folder:

  base-api = https://monitoring.example:8443/
  token-file = token

  [profile quarry]
  project = 6745d2f0a1b2c3d4e5f60718

What a profile sets that is named by --profile goes before the environment.
"rkmon project use NAME" writes a project into the file.
)";

const char* const timesText =
    R"(A time is given in one of these forms; without an offset it is of the project's
time zone, whatever machine rkmon runs on:

  2026-03-01                   the beginning of that day
  2026-03-01T08:00:00          a time of that day
  2026-03-01T08:00:00+01:00    the same with its offset from UTC; Z is UTC

--since TIME is the first moment of a period. --until DAY is its last day, which
belongs to it: 2026-03-31, or the midnight of another zone,
2026-03-31T00:00:00+01:00. A day is one of the project:

  rkmon stats normal --cell VH --since 2015-12-20 --until 2015-12-21

Where the service does not tell the project's zone, it is the machine's (TZ),
and a message says so. Tables show times of that zone with their offset; JSON
and CSV those of the service.
)";

const char* const exitCodesText =
    R"(Scripts can tell from the exit status how a command ended:

  0    done
  1    refused by the service, or failed for another reason
  2    wrong use or configuration; nothing was changed
  3    not permitted: the token is not accepted or does not allow it; also
       when "can" answers no
  4    not found, or hidden from this token
  5    no connection, a connection that broke, or no answer in time
  130  interrupted by Ctrl-C

After 5 or 130 a change may have been made: look before you repeat it. An import
can always be repeated.
)";

const char* const filesText =
    R"(Options of "point import" for files that are written otherwise; a mapping after
--map says the same, and --write-map proposes one for a file.

  --layout LAYOUT      rows (one reading each), column-per-point,
                       column-per-depth or column-per-date
  --column C=TITLE     which column is name, depth, time, date, clock, count,
                       value or timeFlag: by its title, or as #NUMBER
  --constant C=TEXT    what holds for every row; or --without depth or count
  --no-reading WORD    what stands where there is no value: NAN, DRY, -9999
  --skip-lines N       lines above the header; --skip-lines-below-header N
  --no-header          columns go by #NUMBER
  --encoding E         utf-8, utf-16le, utf-16be, gb18030, windows-1252
  --delimiter D        comma, semicolon, tab; --decimal point or comma
  --sheet NAME         of a spreadsheet with several
  --time-format F      year-month-day, day-month-year, month-day-year,
                       excel-1900, excel-1904, unix-seconds, unix-milliseconds
  --time-zone ZONE     of times without an offset, or --utc-offset +01:00
  --doubled-hour H     first or second: when the clock is put back
)";

const char* const agsText =
    R"("point import" reads AGS 4 files as they are. Of each row of MOND

  LOCA_ID     is the name of the point, as long as a location has one MONG_ID;
              otherwise say it: --column name=LOCA_ID/MONG_ID
  MONG_DIS    is its depth
  MOND_TYPE   is the name or alias of the sub-category, or --type says which:
              --type WDEP=WL, once for each
  MOND_DTIM   is the time, as its UNIT says; of the project's time zone unless
              it has an offset or --time-zone says another
  MOND_RDNG   is the value; where it is empty or "Dry" there is no reading, and
              --no-reading gives further words
  MOND_UNIT   must be the unit of the sub-category, or "types" in a mapping says
              that it is the same: nothing is converted

Types that a mapping's "ignore" names are not read. "rkmon help files" has the
other options, and --write-map proposes a mapping.

  rkmon point import --cell P1 --type WDEP=WL site.ags
  rkmon point list --cell P1 --ags > P1.ags
)";

const char* const importText =
    R"(A file of readings is UTF-8 text, whose first line names its columns: name,
depth, time, count, value and perhaps timeFlag, in any order; or a spreadsheet,
or an AGS 4 file (rkmon help ags).

  name,depth,time,count,value
  VH-W1,20,2015-12-18T00:00:00-08:00,11652,0.26

"rkmon help files" has the options for files that are written otherwise. What
can be read in several ways is refused with the ways, never guessed.

Every row of every file is checked before anything is sent: bad rows are listed
as FILE:LINE, and nothing is sent at all, unless --skip-bad-rows takes them out.
--dry-run only checks. Each file is taken in whole or not at all, and an import
can be repeated safely.

  rkmon point import --cell VH --sub-category SM VH-moisture-week1.csv
  rkmon point import --project-file project.json
  rkmon data undo --cell VH --sub-category SM
)";

const char* const outputText =
    R"(Results go to standard output, messages to standard error. A command that
fails or is interrupted writes no result.

Tables are for people: on a terminal, columns that are needed least are left out
where it is narrow, and then long texts are cut. --json and --csv are for
programs: they have every column, times as the service has them and numbers with
all their digits. --columns chooses the columns of a list by their keys:

  rkmon monitoring list --columns name,category
  rkmon alarm list --csv --columns alarmTime,cellName > alarms.csv
)";

} // namespace

const QVector<HelpTopic>& helpTopics()
{
    static const QVector<HelpTopic> topics{
        {QStringLiteral("ags"), QStringLiteral("AGS 4 files"), QString::fromUtf8(agsText)},
        {QStringLiteral("configuration"), QStringLiteral("Where the settings come from"),
         QString::fromUtf8(configurationText)},
        {QStringLiteral("exit-codes"), QStringLiteral("What the exit status says"),
         QString::fromUtf8(exitCodesText)},
        {QStringLiteral("files"), QStringLiteral("How files of readings are written"),
         QString::fromUtf8(filesText)},
        {QStringLiteral("import"), QStringLiteral("Files of readings"), QString::fromUtf8(importText)},
        {QStringLiteral("output"), QStringLiteral("Tables, JSON and CSV"), QString::fromUtf8(outputText)},
        {QStringLiteral("times"), QStringLiteral("Times, days and periods"), QString::fromUtf8(timesText)}};
    return topics;
}
