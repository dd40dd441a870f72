#include "Program.h"
#include "SvgDrawing.h"
#include "Text.h"
#include "Transcript.h"

#include <QDate>
#include <QDir>
#include <QFile>
#include <QRegularExpression>

#include <gtest/gtest.h>

#ifdef Q_OS_UNIX

// docs/tour.md: its commands are run in their order, and must print what the page shows. What is to be shown
// otherwise from now on is written there anew, with its pictures, with RK_WRITE_GOLDEN=1, and to be read.

namespace {

const QString pagePath = QStringLiteral(RK_DOCS "/tour.md");

QString contentOf(const QString& path)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::ReadOnly)) << path.toStdString();
    return QString::fromUtf8(file.readAll());
}

void write(const QString& path, const QByteArray& content)
{
    QFile file(path);
    EXPECT_TRUE(file.open(QIODevice::WriteOnly) && file.write(content) == content.size())
        << path.toStdString();
}

const QRegularExpression& recordingDay()
{
    static const QRegularExpression form("recorded on (\\d{4}-\\d\\d-\\d\\d)"_q);
    return form;
}

QString withoutBlanksAtLineEnds(QString text)
{
    return text.replace(QRegularExpression(" +$"_q, QRegularExpression::MultilineOption), QString());
}

// `text` without what differs from one run to the next: identifiers, the times of the days on which the page
// was recorded and is read, the service's port; and without blanks at the ends of lines.
QString comparable(QString text, const QVector<QDate>& days)
{
    text.replace(QRegularExpression("\\b[0-9a-f]{24}\\b"_q), "IDENTIFIER"_q);
    text.replace(QRegularExpression("http://127\\.0\\.0\\.1:\\d+/"_q), "ADDRESS"_q);
    for (const QDate& day : days) {
        for (const int shift : {-1, 0, 1}) { // of another zone
            text.replace(
                QRegularExpression("%1[ T]\\d\\d:\\d\\d:\\d\\d(\\.\\d+)?( ?[+-]\\d\\d:\\d\\d|Z)?"_q.arg(
                    day.addDays(shift).toString(Qt::ISODate))),
                "TIME"_q);
        }
    }
    return withoutBlanksAtLineEnds(text);
}

class Tour : public testing::Test
{
protected:
    Tour()
    {
        EXPECT_TRUE(folder.isValid());
        EXPECT_TRUE(QFile::link(QStringLiteral(RK_SAMPLES), folder.filePath("samples"_q)));
    }

    // What each command prints. One shell runs them all, as variables and the service in its background go
    // on.
    QStringList run(const QVector<Transcript::Step>& steps) const
    {
        QString script = "cd '%1'\nexec 2>&1\n"_q.arg(folder.path());
        for (const Transcript::Step& step : steps) {
            script += step.command + "\nprintf '\\036%d\\036' $?\n"_q;
        }
        const QStringList parts = Program().runShell(script).output.split(QChar(0x1e));
        QStringList outputs;
        for (int i = 0; i < steps.size(); ++i) {
            outputs.append(parts.value(2 * i));
            EXPECT_EQ(parts.value(2 * i + 1), "0"_q) << steps[i].command.toStdString() << "\n"
                                                     << outputs.last().toStdString();
        }
        return outputs;
    }

    QTemporaryDir folder;
};

// Files of docs/images that a page shows, and which the tour writes into its folder.
QStringList picturesOf(const QString& page)
{
    static const QRegularExpression form("\\(images/tour-([a-z-]+\\.svg)\\)"_q);
    QStringList names;
    QRegularExpressionMatchIterator matches = form.globalMatch(page);
    while (matches.hasNext()) {
        names.append(matches.next().captured(1));
    }
    return names;
}

} // namespace

TEST_F(Tour, PrintsWhatThePageShows)
{
    const QString page = contentOf(pagePath);
    const Transcript transcript(page);
    ASSERT_FALSE(transcript.steps().isEmpty());
    const QStringList outputs = run(transcript.steps());
    const QStringList pictures = picturesOf(page);
    EXPECT_FALSE(pictures.isEmpty());
    const auto drawnAt = [&](const QString& name) {
        return folder.filePath("tour/"_q + name);
    };
    const auto shownAt = [](const QString& name) {
        return QStringLiteral(RK_DOCS "/images/tour-") + name;
    };

    const QDate today = QDateTime::currentDateTimeUtc().date();
    if (qEnvironmentVariableIsSet("RK_WRITE_GOLDEN") && !HasFailure()) {
        QString recorded = withoutBlanksAtLineEnds(transcript.pageWith(outputs));
        recorded.replace(recordingDay(), "recorded on "_q + today.toString(Qt::ISODate));
        write(pagePath, recorded.toUtf8());
        for (const QString& name : pictures) {
            write(shownAt(name), contentOf(drawnAt(name)).toUtf8());
        }
        return;
    }
    const QDate recorded = QDate::fromString(recordingDay().match(page).captured(1), Qt::ISODate);
    ASSERT_TRUE(recorded.isValid());
    for (int i = 0; i < outputs.size(); ++i) {
        const Transcript::Step& step = transcript.steps()[i];
        EXPECT_EQ(comparable(step.output, {recorded, today}).toStdString(),
                  comparable(outputs[i], {recorded, today}).toStdString())
            << step.command.toStdString();
    }
    for (const QString& name : pictures) {
        const SvgDrawing drawn = readSvg(drawnAt(name));
        const SvgDrawing shown = readSvg(shownAt(name));
        EXPECT_EQ(drawn.allTexts(), shown.allTexts()) << name.toStdString();
        EXPECT_EQ(drawn.lines.size(), shown.lines.size()) << name.toStdString();
    }
}

#endif

TEST(Transcript, HasCommandsWithTheirOutputs)
{
    const Transcript transcript(
        "A page.\n```sh\n$ not run\n```\n```console\n$ echo a \\\n    b\na b\n$ true\n```\nend"_q);
    ASSERT_EQ(transcript.steps().size(), 2);
    EXPECT_EQ(transcript.steps()[0].command, "echo a \\\n    b"_q);
    EXPECT_EQ(transcript.steps()[0].output, "a b\n"_q);
    EXPECT_EQ(transcript.steps()[1].command, "true"_q);
    EXPECT_EQ(transcript.steps()[1].output, QString());
}

TEST(Transcript, ChangesNothingButOutputs)
{
    const QString page =
        "A page.\n```console\n$ one\n1\n$ two\n2\n2\n```\nProse.\n```console\n$ three\n```\n"_q;
    EXPECT_EQ(Transcript(page).pageWith({"1\n"_q, "2\n2\n"_q, QString()}), page);
    EXPECT_EQ(Transcript(page).pageWith({QString(), "b\n"_q, "c\n"_q}),
              "A page.\n```console\n$ one\n$ two\nb\n```\nProse.\n```console\n$ three\nc\n```\n"_q);
}
