#pragma once

#include <QString>

/// A bar on standard error that grows with the work done; shown on a terminal only, and gone when the object
/// is destroyed.
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
};
