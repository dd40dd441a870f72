#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// What is wrong with a file, by line: the first ones in words, the rest counted.
class Problems
{
public:
    /// Words are kept for so many.
    static constexpr int bound = 20;

    void add(int line, const QString& reason);

    bool isEmpty() const { return m_count == 0; }
    int count() const { return m_count; }

    /// "FILE:LINE: reason" for each that is kept, by line, and a last line that counts the others.
    QStringList lines(const QString& file) const;

private:
    struct Problem
    {
        int line;
        QString reason;
    };

    QVector<Problem> m_first;
    int m_count = 0;
};
