#include "ags/AgsGroups.h"

#include <algorithm>

namespace ags {

namespace {

constexpr const char* groupDescriptor = "GROUP";
constexpr const char* headingDescriptor = "HEADING";
constexpr const char* unitDescriptor = "UNIT";
constexpr const char* typeDescriptor = "TYPE";

// What stood for GROUP in the edition before.
const char* const olderGroupMark = "**";

bool isDescribing(const QString& group)
{
    return group == QLatin1String(locationGroup) || group == QLatin1String(installationGroup) ||
           group == QLatin1String(dictionaryGroup);
}

bool isHead(const QString& descriptor)
{
    return descriptor == QLatin1String(headingDescriptor) || descriptor == QLatin1String(unitDescriptor) ||
           descriptor == QLatin1String(typeDescriptor);
}

// Goes through the rows of a file and gathers them in groups.
class GroupReader
{
public:
    GroupReader(const QByteArray& text, Problems& problems) : m_text(text), m_problems(problems) {}

    Groups read()
    {
        csv::RecordReader records = recordsOf(m_text);
        csv::Record record;
        for (int begin = 0; !m_isOlder && records.next(record); begin = records.position()) {
            readRecord(record, begin);
        }
        endGroup(m_text.size());
        if (m_groups.groups.isEmpty() && m_problems.isEmpty()) {
            m_problems.add(1, QStringLiteral("the file is empty; it must begin with a GROUP"));
        }
        return m_groups;
    }

private:
    Group& group() { return m_groups.groups.last(); }

    void readRecord(const csv::Record& record, int begin)
    {
        const QString descriptor = record.fields.value(0);
        if (m_groups.groups.isEmpty() && descriptor.startsWith(QLatin1String(olderGroupMark))) {
            m_isOlder = true;
            m_problems.add(record.line, QStringLiteral("this is a file of AGS 3: only AGS 4 is read"));
        } else if (descriptor == QLatin1String(groupDescriptor)) {
            endGroup(begin);
            beginGroup(record, begin);
        } else if (m_groups.groups.isEmpty()) {
            if (m_problems.isEmpty()) {
                m_problems.add(record.line, record.problem.isEmpty()
                                                ? QStringLiteral("the file must begin with a GROUP")
                                                : record.problem);
            }
        } else if (isHead(descriptor)) {
            readHead(record, descriptor);
        } else {
            readData(record, descriptor);
        }
    }

    void beginGroup(const csv::Record& record, int begin)
    {
        const QString name = record.fields.value(1);
        const Group* other = m_groups.find(name);
        if (!record.problem.isEmpty()) {
            m_problems.add(record.line, record.problem);
        } else if (record.fields.size() != 2 || name.isEmpty()) {
            m_problems.add(record.line, QStringLiteral("GROUP must be followed by a name, and nothing else"));
        } else if (other != nullptr) {
            m_problems.add(
                record.line,
                QStringLiteral("the group %1 stands on line %2 already").arg(name).arg(other->line));
        }
        Group begun;
        begun.name = name;
        begun.line = record.line;
        begun.begin = begin;
        m_groups.groups.append(begun);
        m_seen.clear();
    }

    void endGroup(int end)
    {
        if (m_groups.groups.isEmpty()) {
            return;
        }
        group().end = end;
        QStringList missing;
        for (const char* descriptor : {headingDescriptor, unitDescriptor, typeDescriptor}) {
            if (!m_seen.contains(QLatin1String(descriptor))) {
                missing.append(QLatin1String(descriptor));
            }
        }
        if (!missing.isEmpty()) {
            m_problems.add(group().line, QStringLiteral("the group %1 has no %2")
                                             .arg(group().name, missing.join(QStringLiteral(" and no "))));
        }
    }

    void readHead(const csv::Record& record, const QString& descriptor)
    {
        const QString problem = problemOfHead(record, descriptor);
        m_seen.append(descriptor);
        const QStringList fields = record.fields.mid(1);
        if (descriptor == QLatin1String(headingDescriptor) && group().headings.isEmpty()) {
            group().headings = fields;
            group().headingLine = record.line;
        }
        if (!problem.isEmpty()) {
            m_problems.add(record.line, problem);
        } else if (descriptor == QLatin1String(unitDescriptor)) {
            group().units = fields;
        } else if (descriptor == QLatin1String(typeDescriptor)) {
            group().types = fields;
        }
    }

    QString problemOfHead(const csv::Record& record, const QString& descriptor)
    {
        const bool isHeading = descriptor == QLatin1String(headingDescriptor);
        if (!record.problem.isEmpty()) {
            return record.problem;
        }
        if (m_seen.contains(descriptor)) {
            return QStringLiteral("the group %1 has a second %2").arg(group().name, descriptor);
        }
        if (group().firstRowLine > 0 || (!isHeading && group().headings.isEmpty())) {
            return QStringLiteral("%1 must stand %2")
                .arg(descriptor, group().firstRowLine > 0 ? QStringLiteral("above the DATA of its group")
                                                          : QStringLiteral("below the HEADING of its group"));
        }
        return isHeading ? problemOfHeadings(record.fields.mid(1))
                         : problemOfData(record, group().headings.size());
    }

    static QString problemOfHeadings(QStringList headings)
    {
        if (headings.isEmpty() || headings.contains(QString())) {
            return QStringLiteral("a heading has no name");
        }
        std::sort(headings.begin(), headings.end());
        const auto twice = std::adjacent_find(headings.cbegin(), headings.cend());
        return twice == headings.cend() ? QString()
                                        : QStringLiteral("the heading %1 is given twice").arg(*twice);
    }

    void readData(const csv::Record& record, const QString& descriptor)
    {
        if (group().firstRowLine == 0) {
            group().firstRowLine = record.line;
        }
        if (!isDescribing(group().name)) {
            return;
        }
        const QString problem = descriptor == QLatin1String(dataDescriptor) && group().headings.isEmpty()
                                    ? QString() // the group has a problem
                                    : problemOfData(record, group().headings.size());
        if (!problem.isEmpty()) {
            m_groups.isForeign = m_groups.isForeign || record.isForeign;
            m_problems.add(record.line, problem);
            return;
        }
        group().rows.append({record.line, record.fields.mid(1)});
    }

    const QByteArray& m_text;
    Problems& m_problems;
    Groups m_groups;
    QStringList m_seen; // descriptors of the head of the group
    bool m_isOlder = false;
};

} // namespace

const Group* Groups::find(const QString& name) const
{
    const auto found =
        std::find_if(groups.cbegin(), groups.cend(), [&](const Group& group) { return group.name == name; });
    return found == groups.cend() ? nullptr : &*found;
}

bool isAgs(const QString& path, const QByteArray& text)
{
    if (path.endsWith(QLatin1String(".ags"), Qt::CaseInsensitive)) {
        return true;
    }
    csv::RecordReader records = recordsOf(text);
    csv::Record first;
    csv::Record second;
    const bool hasTwo = records.next(first) && records.next(second);
    const bool isOlder =
        first.fields.size() == 1 && first.fields[0].startsWith(QLatin1String(olderGroupMark));
    return isOlder || (hasTwo && first.fields.value(0) == QLatin1String(groupDescriptor) &&
                       second.fields.value(0) == QLatin1String(headingDescriptor));
}

Groups readGroups(const QByteArray& text, Problems& problems)
{
    return GroupReader(text, problems).read();
}

QString problemOfData(const csv::Record& record, int headingCount)
{
    if (!record.problem.isEmpty()) {
        return record.problem;
    }
    const QString descriptor = record.fields.value(0);
    if (descriptor != QLatin1String(dataDescriptor) && !isHead(descriptor)) {
        return QStringLiteral("a row begins with \"%1\" in place of GROUP, HEADING, UNIT, TYPE or DATA")
            .arg(descriptor);
    }
    const int fieldCount = record.fields.size() - 1;
    return fieldCount == headingCount
               ? QString()
               : QStringLiteral("%1 fields, but HEADING names %2").arg(fieldCount).arg(headingCount);
}

} // namespace ags
