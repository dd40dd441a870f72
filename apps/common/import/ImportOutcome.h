#pragma once

#include <QDateTime>
#include <QList>
#include <QString>
#include <QStringList>
#include <QVector>

/// A sample held that gets another value or flag.
struct CorrectedSample
{
    QString name; ///< of its point
    QString depth;
    QDateTime time;
    qint32 count = 0;
    double oldValue = 0.0;
    double newValue = 0.0;
    QString oldFlag;
    QString newFlag;
};

/// What becomes of the samples of an import: what would become of them, or what the service said that did.
struct SampleOutcome
{
    /// So many corrections are told one by one.
    static constexpr int keptCorrections = 1000;

    qint64 inserted = 0;
    qint64 corrected = 0;
    qint64 unchanged = 0; ///< held already as they are
    QVector<CorrectedSample> corrections;
};

/// Puts them in order of point, depth, time and count, and keeps as many as are told one by one.
void sortCorrections(QVector<CorrectedSample>& corrections);

/// An alarm in which readings of an import stand that were not beyond a limit before.
struct RaisedAlarm
{
    QString id;
    QStringList points; ///< their names
};
