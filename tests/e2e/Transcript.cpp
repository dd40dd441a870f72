#include "Transcript.h"

#include "Text.h"

Transcript::Transcript(const QString& page)
{
    QStringList lines = page.split(QLatin1Char('\n'));
    const QString last = lines.takeLast(); // behind the last line end
    for (const QString& line : qAsConst(lines)) {
        readLine(line);
    }
    m_texts.last() += last;
}

void Transcript::readLine(const QString& line)
{
    const QString withEnd = line + QLatin1Char('\n');
    const bool isCommand = m_isInBlock && (m_isCommandOpen || line.startsWith("$ "_q));
    const bool isFence = line.startsWith("```"_q);
    if (isCommand && !m_isCommandOpen) {
        m_steps.append(Step());
        m_texts.append(QString());
    }
    if (isCommand) {
        m_steps.last().command += m_isCommandOpen ? QLatin1Char('\n') + line : line.mid(2);
        m_isCommandOpen = line.endsWith(QLatin1Char('\\'));
        // A command stands before its output, so with the text before that.
        m_texts[m_texts.size() - 2] += withEnd;
    } else if (m_isInBlock && !isFence && !m_steps.isEmpty()) {
        m_steps.last().output += withEnd;
    } else {
        m_texts.last() += withEnd;
    }
    if (isFence) {
        m_isInBlock = line == "```console"_q;
    }
}

QString Transcript::pageWith(const QStringList& outputs) const
{
    QString page = m_texts.constFirst();
    for (int i = 0; i < m_steps.size(); ++i) {
        page += outputs.value(i) + m_texts[i + 1];
    }
    return page;
}
