#pragma once

#include <QString>
#include <QStringList>
#include <QVector>

/// A page of documentation whose blocks ```console show commands, each after "$ ", and what they print.
class Transcript
{
public:
    struct Step
    {
        /// May go on over several lines, each but the last with a backslash at its end.
        QString command;
        /// Standard output and standard error as they come.
        QString output;
    };

    explicit Transcript(const QString& page);

    const QVector<Step>& steps() const { return m_steps; }

    /// The page with these outputs instead of its own, one for each step.
    QString pageWith(const QStringList& outputs) const;

private:
    void readLine(const QString& line);

    // What stands around the outputs, one more than there are.
    QStringList m_texts{QString()};
    QVector<Step> m_steps;
    bool m_isInBlock = false;
    bool m_isCommandOpen = false;
};
