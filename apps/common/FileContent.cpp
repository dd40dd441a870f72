#include "FileContent.h"

#include "Failure.h"

#include <QFile>

QByteArray contentOfFile(const QString& path)
{
    QFile source(path);
    if (!source.open(QIODevice::ReadOnly)) {
        throw Failure(FailureKind::BadInput,
                      QStringLiteral("cannot open \"%1\": %2").arg(path, source.errorString()));
    }
    const QByteArray content = source.readAll();
    if (source.error() != QFileDevice::NoError) {
        throw Failure(FailureKind::Other,
                      QStringLiteral("cannot read \"%1\": %2").arg(path, source.errorString()));
    }
    return content;
}
