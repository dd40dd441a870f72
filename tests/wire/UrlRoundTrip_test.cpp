// Every character typed arrives as typed: raw URLs as the library writes them, sent by the manager over a
// socket, and decoded by the server by the book.

#include "NetworkFixture.h"

#include <QJsonDocument>
#include <QRandomGenerator>

#include <iostream>

namespace {

constexpr int rounds = 700; // of three texts each

// Reserved characters, what JSON escapes, controls, several scripts, emoji, and pieces that look like
// parameters.
const QStringList& pieces()
{
    static const QStringList all = [] {
        QStringList list;
        for (int c = 0; c < 0x80; ++c) {
            list << QString(QChar(c));
        }
        list << QStringLiteral("&key=") << QStringLiteral("&where={") << QStringLiteral("&skip=1")
             << QStringLiteral("?category=") << QStringLiteral("%41") << QStringLiteral("%2F")
             << QStringLiteral("\"}") << QStringLiteral("\\\"") << QStringLiteral("/../")
             << QStringLiteral("é") << QStringLiteral("ß") << QStringLiteral("水平位移")
             << QStringLiteral("沉降") << QStringLiteral("наклон") << QStringLiteral("ميل")
             << QStringLiteral("경사") << QStringLiteral("चौड़ाई") << QStringLiteral("😀")
             << QStringLiteral("👷🏽") << QString(QChar(0x80)) << QString(QChar(0x2028))
             << QString(QChar(0xFEFF)) << QString(QChar(0xFFFF)) << QStringLiteral("a") << QStringLiteral("Z")
             << QStringLiteral("0");
        return list;
    }();
    return all;
}

class UrlRoundTripTest : public NetworkFixture
{
protected:
    UrlRoundTripTest() : seed(environmentSeed()), random(seed)
    {
        std::cout << "RK_TEST_SEED=" << seed << '\n';
    }

    static quint32 environmentSeed()
    {
        const QByteArray text = qgetenv("RK_TEST_SEED");
        return text.isEmpty() ? 20240601U : text.toUInt();
    }

    QString randomText()
    {
        QString text;
        const int length = random.bounded(1, 16);
        for (int i = 0; i < length; ++i) {
            text += pieces().at(random.bounded(pieces().size()));
        }
        return text;
    }

    // The target of the one request that this raw text becomes.
    QByteArray sent(const QString& rest)
    {
        server.answerJson(200, "{}");
        const Outcome outcome = waitFor(manager.get(server.baseAddress() + rest));
        EXPECT_TRUE(outcome.isSuccessful) << outcome.errorText.toStdString();
        return server.requests().last().target;
    }

    const quint32 seed;
    QRandomGenerator random;
};

QString where(const QString& name)
{
    const QJsonObject pattern = {{QStringLiteral("$regex"), name}};
    return QString::fromUtf8(
        QJsonDocument(QJsonObject{{QStringLiteral("name"), pattern}}).toJson(QJsonDocument::Compact));
}

using Query = QList<QPair<QString, QString>>;

} // namespace

TEST_F(UrlRoundTripTest, NamesCategoriesAndIdentifiersArriveAsTyped)
{
    int differences = 0;
    for (int i = 0; i < rounds; ++i) {
        const QString name = where(randomText());
        QByteArray target =
            sent(QStringLiteral("projects/p7/cells?where=") + name + QStringLiteral("&skip=0&limit=20"));
        const Query page = {{QStringLiteral("where"), name},
                            {QStringLiteral("skip"), QStringLiteral("0")},
                            {QStringLiteral("limit"), QStringLiteral("20")}};
        if (ScriptServer::decodedQuery(target) != page) {
            ++differences;
        }

        const QString category = randomText();
        target =
            sent(QStringLiteral("projects/p7/auth?category=") + category + QStringLiteral("&key=create"));
        const Query permission = {{QStringLiteral("category"), category},
                                  {QStringLiteral("key"), QStringLiteral("create")}};
        if (ScriptServer::decodedQuery(target) != permission) {
            ++differences;
        }

        // An identifier in which a parameter begins cannot be told from the parameter.
        QString identifier = randomText();
        identifier.replace(QStringLiteral("?category="), QStringLiteral("?"));
        target = sent(QStringLiteral("dataManages/") + identifier + QStringLiteral("?cascade=true"));
        const Query cascade = {{QStringLiteral("cascade"), QStringLiteral("true")}};
        if (ScriptServer::decodedPath(target) != QStringLiteral("/dataManages/") + identifier ||
            ScriptServer::decodedQuery(target) != cascade) {
            ++differences;
        }
        ASSERT_EQ(differences, 0)
            << "seed " << seed << ", round " << i << ": "
            << QJsonDocument(QJsonArray{name, category, identifier}).toJson().toStdString();
    }
    EXPECT_EQ(server.requestCount(), 3 * rounds);
    EXPECT_TRUE(server.isUsedUp());
}

TEST_F(UrlRoundTripTest, EveryUnicodeCharacterArrivesAsTyped)
{
    constexpr uint step = 2048;
    for (uint begin = 0; begin < 0x110000; begin += step) {
        QString text;
        for (uint c = begin; c < begin + step; ++c) {
            if (!QChar::isSurrogate(c)) {
                text += QString::fromUcs4(&c, 1);
            }
        }
        const QByteArray target = sent(QStringLiteral("auth?category=") + text + QStringLiteral("&key=edit"));
        const Query permission = {{QStringLiteral("category"), text},
                                  {QStringLiteral("key"), QStringLiteral("edit")}};
        ASSERT_EQ(ScriptServer::decodedQuery(target), permission) << "from U+" << std::hex << begin;
    }
    EXPECT_TRUE(server.isUsedUp());
}
