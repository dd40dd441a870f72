#pragma once

#include "Json.h"
#include "ScriptedSession.h"
#include "extensions/ServiceExtensions.h"

#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <gmock/gmock.h>

#include <functional>

/// A test of what a service can beyond the operations of the library, of a scripted service.
class ScriptedExtensions : public ScriptedSession
{
protected:
    /// The document of GET about, with these extensions.
    static QByteArray about(const QByteArray& names)
    {
        return R"({"name":"monitor-service","version":"1.2.3","extensions":[)" + names +
               R"(],"owner":"Ana","rights":[]})";
    }

    /// Has the service say that it can everything.
    void announceAll()
    {
        server.answerJson(200,
                          about(R"("about","alarmReasons","changes","deliveryUndo","groupSides",)"
                                R"("openAlarms","pointChanges","pointDeletion","pointSummaries","projects",)"
                                R"("subCategoryKinds")"));
        EXPECT_TRUE(service.has(Extension::About));
    }

    void answer(const QJsonObject& document) { server.answerJson(200, QJsonDocument(document).toJson()); }
    void answer(const QJsonArray& list) { server.answerJson(200, QJsonDocument(list).toJson()); }

    /// The message of the failure that `work` ends with; empty without one.
    template <typename Work>
    static std::string messageOf(Work work)
    {
        try {
            work();
        } catch (const Failure& failure) {
            return failure.message().toStdString();
        }
        return {};
    }

    /// Method and path of the last request, as in "GET projects/p7".
    std::string lastRequest() const
    {
        const ScriptServer::Request request = server.requests().constLast();
        const QString path = ScriptServer::decodedPath(request.target);
        EXPECT_TRUE(path.startsWith("/monitor-service/"_q)) << path.toStdString();
        return request.method.toStdString() + ' ' + path.section(QLatin1Char('/'), 2).toStdString();
    }
    using Query = QList<QPair<QString, QString>>;
    Query lastQuery() const { return ScriptServer::decodedQuery(server.requests().constLast().target); }
    QByteArray lastBody() const { return server.requests().constLast().body; }

    /// Expects that an answer is refused, and the member named, when a member of `document` is missing, or is
    /// of a type that none has. `answerWith` answers a document, `work` asks for it. `anything` are the
    /// members that may be of every type, `optional` those that may be missing.
    void expectMembersAreChecked(const QJsonObject& document,
                                 const std::function<void(const QJsonObject&)>& answerWith,
                                 const std::function<void()>& work, const QStringList& anything = {},
                                 const QStringList& optional = {})
    {
        const auto expectRefused = [&](const QJsonObject& wrong, const QString& member) {
            answerWith(wrong);
            try {
                work();
                ADD_FAILURE() << member.toStdString() << " is not checked";
            } catch (const Failure& failure) {
                EXPECT_EQ(failure.kind(), FailureKind::BadAnswer);
                EXPECT_THAT(failure.message().toStdString(),
                            testing::HasSubstr(member.toStdString() + "\" is"));
            }
        };
        const QStringList members = document.keys();
        for (const QString& member : members) {
            QJsonObject wrong = document;
            if (!anything.contains(member)) {
                wrong[member] = QJsonObject{{"not"_q, "expected"_q}};
                expectRefused(wrong, member);
            }
            wrong.remove(member);
            if (!optional.contains(member)) {
                expectRefused(wrong, member);
            }
        }
    }

    ServiceExtensions& service = session.extensions();
};
