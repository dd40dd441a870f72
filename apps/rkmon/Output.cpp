#include "Output.h"

#include "CommaSeparatedValues.h"
#include "DisplayText.h"
#include "Failure.h"
#include "Table.h"
#include "Terminal.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStringList>
#include <RKPub.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <utility>

QString shownTime(const QDateTime& time, const QTimeZone& zone)
{
    // YYYY-MM-DDThh:mm:ss.zzz and the offset
    constexpr int dateLength = 10;
    constexpr int timeBegin = 11;
    constexpr int timeLength = 8;
    constexpr int offsetBegin = 23;
    if (!time.isValid()) {
        return QString();
    }
    const QString text = RKPub::getQStringByDateTime(time.toTimeZone(zone));
    return QStringLiteral("%1 %2 %3")
        .arg(text.left(dateLength), text.mid(timeBegin, timeLength), text.mid(offsetBegin));
}

namespace {

using Zone = std::function<QTimeZone()>;

// The number in twelve digits; a text that is none as it is.
QString roundedText(const QVariant& cell)
{
    constexpr int digits = 12;
    bool isNumber = false;
    const double number = cell.toDouble(&isNumber);
    return isNumber ? QString::number(number, 'g', digits) : cell.toString();
}

QString tableText(const QVariant& cell, const Column& column, const Zone& zone)
{
    if (cell.canConvert<ShownCell>()) {
        return cell.value<ShownCell>().text;
    }
    if (column.isComputed) {
        return roundedText(cell);
    }
    switch (static_cast<QMetaType::Type>(cell.type())) {
    case QMetaType::QDateTime: // the zone is asked for only where there is a time
        return cell.toDateTime().isValid() ? shownTime(cell.toDateTime(), zone()) : QString();
    case QMetaType::QStringList:
        return cell.toStringList().join(QLatin1String(", "));
    case QMetaType::Bool:
        return cell.toBool() ? QStringLiteral("yes") : QStringLiteral("no");
    default:
        return cell.toString();
    }
}

QString csvText(const QVariant& cell)
{
    if (cell.canConvert<ShownCell>()) {
        return csvText(cell.value<ShownCell>().value);
    }
    switch (static_cast<QMetaType::Type>(cell.type())) {
    case QMetaType::QDateTime:
        return RKPub::getQStringByDateTime(cell.toDateTime());
    case QMetaType::QStringList:
        return cell.toStringList().join(QLatin1Char(';'));
    case QMetaType::QVariantMap:
    case QMetaType::QVariantList:
        return QString::fromUtf8(QJsonDocument::fromVariant(cell).toJson(QJsonDocument::Compact));
    default:
        return cell.toString();
    }
}

QJsonValue jsonValue(const QVariant& cell)
{
    if (cell.canConvert<ShownCell>()) {
        return jsonValue(cell.value<ShownCell>().value);
    }
    switch (static_cast<QMetaType::Type>(cell.type())) {
    case QMetaType::QDateTime: {
        const QString text = RKPub::getQStringByDateTime(cell.toDateTime());
        return text.isEmpty() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
    }
    case QMetaType::QString: {
        const QString text = cell.toString();
        return text.isNull() ? QJsonValue(QJsonValue::Null) : QJsonValue(text);
    }
    default:
        return QJsonValue::fromVariant(cell);
    }
}

QJsonObject jsonObject(const Sheet& sheet, const QVariantList& row)
{
    QJsonObject object;
    for (int column = 0; column < sheet.columns.size(); ++column) {
        object.insert(sheet.columns[column].key, jsonValue(row[column]));
    }
    return object;
}

QByteArray csvLines(const Sheet& sheet)
{
    QStringList heading;
    for (const Column& column : sheet.columns) {
        heading.append(column.key);
    }
    QString lines = csv::record(heading);
    for (const QVariantList& row : sheet.rows) {
        QStringList fields;
        for (const QVariant& cell : row) {
            fields.append(csvText(cell));
        }
        lines += csv::record(fields);
    }
    return lines.toUtf8();
}

// Where the columns with these keys stand.
QVector<int> columnIndexes(const QVector<Column>& columns, const QStringList& keys)
{
    QStringList known;
    for (const Column& column : columns) {
        known.append(column.key);
    }
    QVector<int> indexes;
    for (const QString& key : keys) {
        const int index = known.indexOf(key);
        if (index < 0) {
            throw Failure(FailureKind::BadInput,
                          QStringLiteral("--columns: there is no column \"%1\"; known are %2")
                              .arg(key, known.join(QStringLiteral(", "))));
        }
        indexes.append(index);
    }
    return indexes;
}

table::Layout tableLayout()
{
    return {terminal::isTerminal(stdout) ? terminal::width() : 0, terminal::hasColour()};
}

QByteArray tableLines(const Sheet& sheet, const Zone& zone)
{
    QVector<table::Heading> headings;
    for (const Column& column : sheet.columns) {
        if (column.isListed) {
            headings.append({column.title, column.isFixed, column.dispensability});
        }
    }
    QVector<QStringList> rows;
    rows.reserve(sheet.rows.size());
    for (const QVariantList& row : sheet.rows) {
        QStringList texts;
        for (int column = 0; column < sheet.columns.size(); ++column) {
            if (sheet.columns[column].isListed) {
                texts.append(tableText(row[column], sheet.columns[column], zone));
            }
        }
        rows.append(texts);
    }
    return table::listLines(headings, rows, tableLayout()).toUtf8();
}

QByteArray recordLines(const Sheet& sheet, const Zone& zone)
{
    QStringList titles;
    QStringList texts;
    for (int column = 0; column < sheet.columns.size(); ++column) {
        if (!sheet.columns[column].title.isEmpty()) {
            titles.append(sheet.columns[column].title);
            texts.append(tableText(sheet.rows.constFirst()[column], sheet.columns[column], zone));
        }
    }
    return table::recordLines(titles, texts, tableLayout()).toUtf8();
}

} // namespace

namespace cell {

QVariant shownAs(const QVariant& value, const QString& text)
{
    return QVariant::fromValue(ShownCell{value, text});
}

QVariant number(double value, std::optional<qint32> decimals)
{
    if (!decimals) {
        return value;
    }
    const QString text = QString::number(value, 'f', *decimals);
    const bool isNegativeZero = text.startsWith(QLatin1Char('-')) && text.toDouble() == 0.0;
    return shownAs(value, isNegativeZero ? text.mid(1) : text);
}

} // namespace cell

Output::Output(OutputForm form, QStringList columns) : m_form(form), m_columns(std::move(columns)) {}

Sheet Output::chosen(const Sheet& sheet) const
{
    if (m_columns.isEmpty()) {
        return sheet;
    }
    const QVector<int> indexes = columnIndexes(sheet.columns, m_columns);
    Sheet result;
    for (const int index : indexes) {
        Column column = sheet.columns[index];
        column.isListed = true;
        column.dispensability = 0;
        result.columns.append(column);
    }
    for (const QVariantList& row : sheet.rows) {
        QVariantList cells;
        for (const int index : indexes) {
            cells.append(row[index]);
        }
        result.rows.append(cells);
    }
    return result;
}

void Output::addList(const Sheet& everything)
{
    const Sheet sheet = chosen(everything);
    m_hasList = true;
    switch (m_form) {
    case OutputForm::Table:
        m_content += tableLines(sheet, m_zone);
        return;
    case OutputForm::Json: {
        QJsonArray array;
        for (const QVariantList& row : sheet.rows) {
            array.append(jsonObject(sheet, row));
        }
        m_content += QJsonDocument(array).toJson();
        return;
    }
    case OutputForm::Csv:
        m_content += csvLines(sheet);
        return;
    }
}

void Output::addRecord(const Sheet& sheet)
{
    switch (m_form) {
    case OutputForm::Table:
        m_content += recordLines(sheet, m_zone);
        return;
    case OutputForm::Json:
        m_content += QJsonDocument(jsonObject(sheet, sheet.rows.constFirst())).toJson();
        return;
    case OutputForm::Csv:
        m_content += csvLines(sheet);
        return;
    }
}

void Output::addTexts(const Sheet& sheet, const QStringList& texts)
{
    if (m_form == OutputForm::Table) {
        addLines(texts);
    } else {
        addList(sheet);
    }
}

void Output::addText(const Sheet& sheet, const QString& text)
{
    if (m_form == OutputForm::Table) {
        addLines({text});
    } else {
        addRecord(sheet);
    }
}

void Output::addPlainTexts(const QString& key, const QStringList& texts)
{
    switch (m_form) {
    case OutputForm::Table:
        addLines(texts);
        return;
    case OutputForm::Json:
        m_content += QJsonDocument(QJsonArray::fromStringList(texts)).toJson();
        return;
    case OutputForm::Csv:
        m_content += csv::record({key}).toUtf8();
        for (const QString& text : texts) {
            m_content += csv::record({text}).toUtf8();
        }
        return;
    }
}

void Output::addLines(const QStringList& texts)
{
    for (const QString& text : texts) {
        m_content += display::escaped(text).toUtf8() + '\n';
    }
}

void Output::flush()
{
    const QByteArray content = qExchange(m_content, QByteArray());
    const auto length = static_cast<std::size_t>(content.size());
    errno = 0;
    const bool isWritten =
        std::fwrite(content.constData(), 1, length, stdout) == length && std::fflush(stdout) == 0;
    if (!isWritten && errno != EPIPE) {
        throw Failure(
            FailureKind::Other,
            QStringLiteral("cannot write the result: %1").arg(QString::fromLocal8Bit(std::strerror(errno))));
    }
}
