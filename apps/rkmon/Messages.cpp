#include "Messages.h"

#include "DisplayText.h"

#include <QByteArray>

#include <cstdio>

void writeMessage(const QString& message)
{
    writePlainMessage(QStringLiteral("rkmon: ") + message);
}

void writePlainMessage(const QString& message)
{
    const QByteArray line = display::escaped(message).toUtf8() + '\n';
    // Nobody can be told when standard error itself is closed.
    (void)std::fwrite(line.constData(), 1, static_cast<std::size_t>(line.size()), stderr);
}
