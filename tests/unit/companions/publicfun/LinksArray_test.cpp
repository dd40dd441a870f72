#include <QJsonDocument>
#include <RKPub.h>

#include <gtest/gtest.h>

#include <random>

using Links = QMap<QString, QStringList>;

namespace {

QJsonArray jsonArray(const char* text)
{
    const QJsonDocument document = QJsonDocument::fromJson(text);
    EXPECT_TRUE(document.isArray()) << text;
    return document.array();
}

Links linksOf(const char* text)
{
    return RKPub::jsonArrayToLinksEntity(jsonArray(text));
}

QString randomText(std::mt19937& random)
{
    static const QStringList pieces{QStringLiteral("model"), QStringLiteral("沉降"), QStringLiteral("\""),
                                    QStringLiteral(" "),     QStringLiteral("type"), QString(QChar(0))};
    QString text;
    for (auto pieceCount = random() % 4; pieceCount > 0; --pieceCount) {
        text += pieces.at(static_cast<int>(random() % static_cast<unsigned>(pieces.size())));
    }
    return text;
}

Links randomLinks(std::mt19937& random)
{
    Links links;
    for (auto relationCount = random() % 6; relationCount > 0; --relationCount) {
        QStringList& identifiers = links[randomText(random)];
        for (auto identifierCount = random() % 5; identifierCount > 0; --identifierCount) {
            identifiers.append(randomText(random));
        }
    }
    return links;
}

} // namespace

TEST(LinksArray, OneObjectPerIdentifier)
{
    const Links links{{QStringLiteral("model"), {QStringLiteral("b"), QStringLiteral("a")}},
                      {QStringLiteral("drawing"), {QStringLiteral("c")}}};
    EXPECT_EQ(RKPub::linksEntityToJsonArray(links), jsonArray(R"([{"type": "drawing", "rId": "c"},
                                                                 {"type": "model", "rId": "b"},
                                                                 {"type": "model", "rId": "a"}])"));
}

TEST(LinksArray, ARelationWithoutIdentifiersIsKept)
{
    const Links links{{QStringLiteral("model"), {}}};
    const QJsonArray array = RKPub::linksEntityToJsonArray(links);
    EXPECT_EQ(array, jsonArray(R"([{"type": "model"}])"));
    EXPECT_EQ(RKPub::jsonArrayToLinksEntity(array), links);
}

TEST(LinksArray, NothingGivesNothing)
{
    EXPECT_TRUE(RKPub::linksEntityToJsonArray({}).isEmpty());
    EXPECT_TRUE(RKPub::jsonArrayToLinksEntity({}).isEmpty());
}

TEST(LinksArray, IdentifiersKeepTheArraysOrderAndRepeats)
{
    EXPECT_EQ(
        linksOf(R"([{"type": "m", "rId": "2"}, {"type": "d", "rId": "9"}, {"type": "m", "rId": "1"},
                          {"type": "m", "rId": "2"}])"),
        (Links{{QStringLiteral("d"), {QStringLiteral("9")}},
               {QStringLiteral("m"), {QStringLiteral("2"), QStringLiteral("1"), QStringLiteral("2")}}}));
}

TEST(LinksArray, EmptyTextsAreNames)
{
    EXPECT_EQ(linksOf(R"([{"type": "", "rId": ""}])"), (Links{{QString(), {QString()}}}));
}

TEST(LinksArray, ABareRelationAddsNothingToItsIdentifiers)
{
    EXPECT_EQ(linksOf(R"([{"type": "m"}, {"type": "m", "rId": "1"}, {"type": "m"}])"),
              (Links{{QStringLiteral("m"), {QStringLiteral("1")}}}));
}

TEST(LinksArray, ElementsThatNameNoRelationArePassedOver)
{
    EXPECT_EQ(linksOf(R"([null, 1, "m", ["m"], {}, {"rId": "1"}, {"type": 5, "rId": "1"}, {"type": null},
                          {"type": "m", "rId": "1"}])"),
              (Links{{QStringLiteral("m"), {QStringLiteral("1")}}}));
}

TEST(LinksArray, AnIdentifierThatIsNoTextCountsAsAbsent)
{
    EXPECT_EQ(linksOf(R"([{"type": "m", "rId": 7}, {"type": "n", "rId": null}])"),
              (Links{{QStringLiteral("m"), {}}, {QStringLiteral("n"), {}}}));
}

TEST(LinksArray, OtherMembersAreNotRead)
{
    EXPECT_EQ(linksOf(R"([{"type": "m", "rId": "1", "name": "x", "_id": "y"}])"),
              (Links{{QStringLiteral("m"), {QStringLiteral("1")}}}));
}

TEST(LinksArray, EveryMapSurvivesTheWayThereAndBack)
{
    std::mt19937 random(11);
    for (int i = 0; i < 2000; ++i) {
        const Links links = randomLinks(random);
        const QByteArray sent = QJsonDocument(RKPub::linksEntityToJsonArray(links)).toJson();
        EXPECT_EQ(RKPub::jsonArrayToLinksEntity(QJsonDocument::fromJson(sent).array()), links)
            << sent.toStdString();
    }
}
