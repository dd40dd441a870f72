#include "import/DeliverySending.h"

#include "extensions/DeliveryResults.h"
#include "extensions/ServiceExtensions.h"

#include <QRegularExpression>

#include <numeric>

namespace {

// The service's words about element [i][j] of a request, with the file that element i comes from.
QString explained(const QString& message, const QList<Delivery>& request)
{
    static const QRegularExpression element(QStringLiteral("\\[(\\d+)\\]\\[\\d+\\]"));
    const QRegularExpressionMatch match = element.match(message);
    const int index = match.hasMatch() ? match.captured(1).toInt() : -1;
    return index >= 0 && index < request.size()
               ? QStringLiteral("%1 ([%2] is %3)").arg(message).arg(index).arg(request[index].path)
               : message;
}

// The files that the deliveries come from.
QString pathsOf(const QList<Delivery>& request)
{
    QStringList paths;
    for (const Delivery& delivery : request) {
        paths.append(delivery.path);
    }
    paths.removeDuplicates();
    constexpr int shown = 3;
    const QString more =
        paths.size() > shown ? QStringLiteral(" and %1 more").arg(paths.size() - shown) : QString();
    return paths.mid(0, shown).join(QStringLiteral(", ")) + more;
}

// The answer of the service.
QByteArray send(ServiceSession& session, const QString& purpose, const QList<Delivery>& request)
{
    QList<QList<RKPointLocation>> batches;
    for (const Delivery& delivery : request) {
        batches.append(delivery.points);
    }
    QString message;
    try {
        const QByteArray answer = session.answerTo(
            purpose, [&] { return session.projectData().createPointLocation(batches, message); },
            Repetition::IsHarmless);
        // What was delivered stays in the library's cache, which nothing here reads.
        session.data().clear();
        return answer;
    } catch (const Failure& failure) {
        // A refused delivery is the one internal server error whose words are meant for the sender.
        if (failure.kind() != FailureKind::Refused || message.isEmpty()) {
            throw;
        }
        throw Failure(
            FailureKind::Refused,
            QStringLiteral("the service refused %1: %2").arg(pathsOf(request), explained(message, request)));
    }
}

int sampleCountOf(const QList<Delivery>& deliveries)
{
    return std::accumulate(deliveries.cbegin(), deliveries.cend(), 0,
                           [](int sum, const Delivery& delivery) { return sum + delivery.sampleCount; });
}

// The same failure with how far the deliveries are.
Failure withProgress(const Failure& failure, int sent, int underWay, int total)
{
    if (failure.kind() == FailureKind::Cancelled) {
        const QString unclear =
            underWay == 0 ? QString() : QStringLiteral(", and the %1 under way may be").arg(underWay);
        return failure.extended(
            QStringLiteral("%1 of %2 samples are in%3").arg(sent).arg(total).arg(unclear));
    }
    return sent == 0 ? failure
                     : failure.extended(
                           QStringLiteral("%1 of %2 samples had been delivered before").arg(sent).arg(total));
}

} // namespace

std::optional<DeliveryAnswers> sendDeliveries(ServiceSession& session, const QList<Delivery>& deliveries,
                                              const ImportCallbacks& callbacks)
{
    std::optional<DeliveryAnswers> answers;
    if (session.extensions().has(Extension::DeliveryResults)) {
        answers.emplace();
    }
    const int total = sampleCountOf(deliveries);
    int sent = 0;
    callbacks.onProgress(sent, total);
    for (const QList<Delivery>& request : requestsOf(deliveries)) {
        const QString purpose = QStringLiteral("deliver %1").arg(pathsOf(request));
        if (callbacks.isCancelled()) {
            const Failure ended(FailureKind::Cancelled, QStringLiteral("the import was cancelled"));
            throw withProgress(ended, sent, 0, total);
        }
        try {
            const QByteArray answer = send(session, purpose, request);
            if (answers) {
                answers->add(extensions::deliveredPoints(purpose, answer));
            }
        } catch (const Failure& failure) {
            throw withProgress(failure, sent, sampleCountOf(request), total);
        }
        sent += sampleCountOf(request);
        callbacks.onProgress(sent, total);
    }
    return answers;
}
