#pragma once

#include <QElapsedTimer>
#include <QString>

/// A bar on standard error that grows with the work done, with the rate and the time that is left at that
/// rate; shown on a terminal only, and gone when the object is destroyed.
class Progress
{
public:
    /// `total` steps of `unit`.
    Progress(const QString& unit, int total);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

    /// Shows that `done` steps are done.
    void show(int done);

private:
    QString m_unit;
    int m_total;
    bool m_isShown;
    QElapsedTimer m_clock;
};

/// What the line says of `done` steps after so many milliseconds.
QString progressText(int done, int total, const QString& unit, qint64 milliseconds);
