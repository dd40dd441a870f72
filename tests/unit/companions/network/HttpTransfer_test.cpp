// A transfer without a driver: its handle is run by libcurl alone.

#include "HttpTransfer.h"

#include "../../../support/Text.h"

#include <QFile>
#include <QTemporaryDir>
#include <QUrl>

#include <gtest/gtest.h>

#include <chrono>
#include <memory>

namespace {

using rk::HttpRequest;
using rk::HttpTransfer;

HttpRequest requestOf(const QByteArray& url)
{
    HttpRequest request;
    request.method = "GET";
    request.url = url;
    request.maximumReplySize = 1000;
    request.deadline = std::chrono::seconds(1);
    request.proxy = "direct";
    return request;
}

// What libcurl says of a GET of this address.
CURLcode resultOf(HttpTransfer& transfer)
{
    EXPECT_TRUE(transfer.prepare(rk::CurlEasy(curl_easy_init())));
    const CURLcode result = curl_easy_perform(transfer.handle());
    transfer.settle(result);
    return result;
}

} // namespace

TEST(HttpTransfer, IsFoundByItsHandle)
{
    HttpTransfer transfer(requestOf("http://h/"), {});
    ASSERT_TRUE(transfer.prepare(rk::CurlEasy(curl_easy_init())));
    EXPECT_EQ(&HttpTransfer::of(transfer.handle()), &transfer);
}

TEST(HttpTransfer, IsNotPreparedWithoutAHandle)
{
    HttpTransfer transfer(requestOf("http://h/"), {});
    EXPECT_FALSE(transfer.prepare(nullptr));
}

TEST(HttpTransfer, ReadsNoFile)
{
    const QTemporaryDir folder;
    QFile file(folder.filePath("secret.json"_q));
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write(R"({"a":"of a file"})");
    file.close();
    HttpTransfer transfer(requestOf(QUrl::fromLocalFile(file.fileName()).toEncoded()), {});
    EXPECT_EQ(resultOf(transfer), CURLE_UNSUPPORTED_PROTOCOL);
    EXPECT_FALSE(transfer.answer().isWhole);
    EXPECT_TRUE(transfer.answer().body.isEmpty());
}

TEST(HttpTransfer, SpeaksNoProtocolButHttp)
{
    for (const char* scheme : {"ftp", "dict", "gopher", "imap", "smtp", "telnet", "tftp", "ldap"}) {
        HttpTransfer transfer(requestOf(QByteArray(scheme) + "://127.0.0.1:1/x"), {});
        EXPECT_EQ(resultOf(transfer), CURLE_UNSUPPORTED_PROTOCOL) << scheme;
    }
}

TEST(HttpTransfer, TellsItsOwnerAlsoWhenThatIsItsEnd)
{
    std::unique_ptr<HttpTransfer> transfer;
    int told = 0;
    transfer = std::make_unique<HttpTransfer>(requestOf("http://h/"), [&transfer, &told] {
        transfer.reset();
        ++told; // what the function holds is still there
    });
    transfer->tellOwner();
    EXPECT_EQ(told, 1);
    EXPECT_FALSE(transfer);
}
