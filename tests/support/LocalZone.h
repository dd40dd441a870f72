#pragma once

#include <QByteArray>
#include <QtGlobal>

#include <ctime>

#ifdef Q_OS_UNIX // where the process's time zone can be chosen by name

/// The process's local time zone for as long as this lives.
class LocalZone
{
public:
    explicit LocalZone(const char* name) : m_hadOne(qEnvironmentVariableIsSet("TZ")), m_earlier(qgetenv("TZ"))
    {
        qputenv("TZ", name);
        tzset();
    }
    ~LocalZone()
    {
        if (m_hadOne) {
            qputenv("TZ", m_earlier);
        } else {
            qunsetenv("TZ");
        }
        tzset();
    }
    LocalZone(const LocalZone&) = delete;
    LocalZone& operator=(const LocalZone&) = delete;

private:
    bool m_hadOne;
    QByteArray m_earlier;
};

#endif
