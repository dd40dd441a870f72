#include "ags/AgsProposal.h"

#include "Failure.h"
#include "ags/AgsGroups.h"
#include "ags/AgsHeadings.h"
#include "ags/AgsReading.h"
#include "reading/MappingJson.h"
#include "reading/MeasuredFile.h"
#include "reading/MeasuredValues.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QMap>
#include <QStringList>

namespace ags {

namespace {

// What the readings of a type have in common.
struct TypeOfReadings
{
    int count = 0;
    QStringList units;
};

// Looks at the readings of a file, as far as they can be taken apart.
class ReadingsSketch
{
public:
    ReadingsSketch(const QByteArray& text, const Group& readings, const FileMapping& given)
    {
        csv::RecordReader records = recordsOf(text);
        records.skipLines(readings.firstRowLine - 1);
        csv::Record row;
        while (readings.firstRowLine > 0 && records.next(row) && records.position() <= readings.end) {
            if (problemOfData(row, readings.headings.size()).isEmpty()) {
                look({row.line, row.fields.mid(1)}, readings, given);
            }
        }
    }

    const QMap<QString, TypeOfReadings>& types() const { return m_types; }
    /// What stands in place of a reading and is no number.
    const QStringList& words() const { return m_words; }

private:
    void look(const Row& row, const Group& readings, const FileMapping& given)
    {
        const QString type = readings.text(row, QLatin1String(readingTypeHeading));
        if (given.ignored.contains(type)) {
            return;
        }
        TypeOfReadings& found = m_types[type];
        ++found.count;
        const QString unit = readings.text(row, QLatin1String(readingUnitHeading));
        if (!found.units.contains(unit)) {
            found.units.append(unit);
        }
        const QString value = readings.text(row, QLatin1String(readingHeading));
        double number = 0.0;
        const bool isWord = !values::readValue(value, u'.', number).isEmpty();
        if (isWord && !m_words.contains(value.toLower())) {
            m_words.append(value.toLower());
        }
    }

    QMap<QString, TypeOfReadings> m_types;
    QStringList m_words;
};

// Works out a mapping for the text of a file.
class Proposer
{
public:
    Proposer(const QString& path, const QByteArray& text, const FileMapping& given)
        : m_path(path), m_text(text), m_given(given), m_json(jsonOf(given))
    {
        if (given.encoding) {
            m_json.insert(QLatin1String("encoding"), nameOf(*given.encoding));
        }
    }

    MappingProposal propose()
    {
        m_proposal.recognised.append(QStringLiteral("an AGS 4 file"));
        const MeasuredFile file = readAsProposed();
        if (!file.isFormatKnown) {
            throw Failure(FailureKind::BadInput, file.problems.lines(m_path).value(0));
        }
        Problems none; // the file is read
        const Groups groups = readGroups(m_text, none);
        const ReadingsSketch sketch(m_text, *groups.find(QLatin1String(readingGroup)), m_given);
        proposeTypes(sketch);
        proposeNoReading(sketch);
        if (file.unclear.utcOffset) {
            leaveOpen(QStringLiteral("timeZone or utcOffset: the times name no offset from UTC; without "
                                     "either they are those of the project"));
        }
        m_proposal.json = QJsonDocument(m_json).toJson();
        return m_proposal;
    }

private:
    void leaveOpen(const QString& what) { m_proposal.open.append(what); }

    MeasuredFile readUnder(const FileMapping& mapping) const
    {
        MeasuredFile file;
        file.path = m_path;
        readReadings(m_text, mapping, BadRowKeeping::Reasons, file);
        return file;
    }

    // The file under what was given, and a name where that is open.
    MeasuredFile readAsProposed()
    {
        FileMapping mapping = m_given;
        const MeasuredFile file = readUnder(mapping);
        if (!file.unclear.names.isEmpty()) {
            leaveOpen(QStringLiteral("columns.name: points may be named by %1")
                          .arg(file.unclear.names.join(QStringLiteral(" or "))));
            mapping.columns.insert(MeasuredColumn::Name, {file.unclear.names.first(), 0});
            return readUnder(mapping);
        }
        const bool isNameSaid = m_given.columns.contains(MeasuredColumn::Name) ||
                                m_given.constants.contains(MeasuredColumn::Name);
        if (!isNameSaid) {
            // Not in the mapping: a later file may have more installations, which is asked then.
            m_proposal.recognised.append(QStringLiteral("each location has one installation and is a point"));
        }
        return file;
    }

    // What the types are on the service is not in the file.
    void proposeTypes(const ReadingsSketch& sketch)
    {
        for (auto type = sketch.types().cbegin(); type != sketch.types().cend(); ++type) {
            m_proposal.recognised.append(QStringLiteral("the type %1: readings in \"%2\": %3")
                                             .arg(type.key(), type->units.join(QStringLiteral("\" and \"")))
                                             .arg(type->count));
            if (!m_given.types.contains(type.key())) {
                leaveOpen(QStringLiteral("types.%1: its sub-category, unless that has this name or alias; or "
                                         "ignore it")
                              .arg(type.key()));
            }
        }
    }

    void proposeNoReading(const ReadingsSketch& sketch)
    {
        const QStringList given = m_given.noReading.values();
        if (!given.isEmpty()) {
            m_json.insert(QLatin1String("noReading"), QJsonArray::fromStringList(given));
        }
        for (const QString& word : sketch.words()) {
            if (!saysNoReading(word) && !given.contains(word)) {
                leaveOpen(QStringLiteral("noReading: \"%1\" is no number").arg(word));
            }
        }
    }

    QString m_path;
    const QByteArray& m_text;
    const FileMapping& m_given;
    QJsonObject m_json;
    MappingProposal m_proposal;
};

} // namespace

MappingProposal proposeMapping(const QString& path, const QByteArray& text, const FileMapping& given)
{
    return Proposer(path, text, given).propose();
}

} // namespace ags
