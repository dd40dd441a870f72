#include "extensions/ServiceAbout.h"

#include "extensions/ServiceRequest.h"

namespace extensions {

namespace {

// A service that knows nothing of it says so in one of these ways, or answers with what it gives to
// everybody: a page for people, a document about something else.
bool hasNoAbout(const ServiceReply& reply)
{
    switch (reply.exchange.error) {
    case QNetworkReply::ContentNotFoundError:
    case QNetworkReply::ContentOperationNotPermittedError:
    case QNetworkReply::OperationNotImplementedError:
        return true;
    case QNetworkReply::ProtocolFailure:
        return reply.hasBody; // whole, but no JSON
    case QNetworkReply::NoError:
        return !reply.object.contains(QLatin1String("extensions"));
    default:
        return false;
    }
}

HeldRights rightsOf(const AnswerObject& object)
{
    HeldRights held;
    held.project = object.textOrNull("projectId");
    held.category = object.textOrNull("category");
    held.rights = object.texts("rights");
    return held;
}

} // namespace

std::optional<ServiceAbout> readAbout(const RequestContext& context)
{
    const ServiceReply reply = tryToGet(context, QStringLiteral("about"));
    if (hasNoAbout(reply)) {
        return std::nullopt;
    }
    if (reply.exchange.error != QNetworkReply::NoError) {
        throw requestFailure(reply.exchange, context);
    }
    const AnswerObject object(context.purpose, reply.object);
    ServiceAbout about;
    about.version = object.text("version");
    about.extensions = object.texts("extensions");
    about.owner = object.text("owner");
    const QList<AnswerObject> rights = object.objects("rights");
    for (const AnswerObject& held : rights) {
        about.rights.append(rightsOf(held));
    }
    return about;
}

} // namespace extensions
