#pragma once

#include "reading/MeasuredFile.h"
#include "reading/MeasuredValues.h"
#include "reading/RowSource.h"
#include "reading/TableColumns.h"
#include "reading/TimeFormatDetection.h"
#include "reading/TimeReader.h"

#include <QHash>
#include <QMap>
#include <QPair>

#include <optional>

/// Reads the rows of a file as readings of its points.
class RowReader
{
public:
    /// Keeps references to all of them.
    RowReader(RowSource& rows, const FileMapping& mapping, const TableColumns& columns, MeasuredFile& file);

    /// With `keeping`, the bad rows go to the file, too.
    void read(BadRowKeeping keeping);

private:
    // What the rows, or the titles above them, say of a value.
    struct Cell
    {
        int field = -1;
        QString title;
        QString name;
        QString depth;
        QDateTime time;
    };

    // Name, depth and sub-category tell points apart.
    using PointName = QPair<QString, QPair<QString, QString>>;

    struct RowReading
    {
        QString name;
        QString depth;
        QString subCategory;
        std::optional<double> initialValue;
        RKPointLocationData sample;
    };

    QString field(const csv::Record& record, MeasuredColumn column) const;
    QString timeText(const csv::Record& record) const;
    bool isNoReading(const QString& text) const;
    bool isWhole(const csv::Record& record) const;
    bool hasTimesInRows() const { return m_mapping.layout != TableLayout::ColumnPerDate; }

    void detectFormats();
    void lookAt(const csv::Record& record, values::DecimalSignDetection& signs,
                TimeFormatDetection& times) const;
    void lookAtTitles(values::DecimalSignDetection& signs, TimeFormatDetection& times) const;
    void readTitles();
    QString readTitle(const ValueColumn& column, Cell& cell);

    QString formProblem(const csv::Record& record) const;
    void readRow(const csv::Record& record);
    QString readCommon(const csv::Record& record, RowReading& reading);
    QString readCells(const csv::Record& record, const RowReading& common);
    void addProblem(int line, const QString& reason);

    MeasuredPoint& pointOf(const RowReading& reading);
    QString readMeaning(const csv::Record& record, RowReading& reading);
    QString initialValueProblem(const RowReading& reading) const;
    void sortReadings(MeasuredPoint& point);
    void reportConflict(const MeasuredPoint& point, const Reading& first, const Reading& second);

    RowSource& m_rows;
    const FileMapping& m_mapping;
    const TableColumns& m_columns;
    MeasuredFile& m_file;
    QChar m_decimalSign = u'.';
    TimeReader m_times;
    QVector<Cell> m_cells;
    QVector<RowReading> m_readings; // of the row that is read
    QHash<PointName, int> m_indexes;
    bool m_keepsReasons = false;
    QMap<int, QString> m_reasons; // by line
};
