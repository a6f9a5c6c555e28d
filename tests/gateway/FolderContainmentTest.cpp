#include "gateway/RunningGateway.h"

#include <QProcess>

namespace quarry {

namespace {

constexpr const char* secret = "the secret outside";

class FolderContainment : public testing::Test {
protected:
    void SetUp() override
    {
        gateway.write(QStringLiteral("inside.txt"), "An ordinary document\nwith a word\n");
        gateway.write(QStringLiteral("sub/below.txt"), "Another ordinary document\n");
        gateway.write(QStringLiteral("../secret.txt"), secret);
        gateway.write(QStringLiteral("../elsewhere/secret.txt"), secret);
        gateway.write(QStringLiteral(".hidden.txt"), secret);
        gateway.write(QStringLiteral("sub/.git/config"), secret);
        link("secret.txt", "toFile.txt");
        link("elsewhere", "toFolder");
        link("docs/../secret.txt", "overParent.txt");
        ASSERT_EQ(QProcess::execute(QStringLiteral("mkfifo"), {gateway.path(QStringLiteral("pipe.txt"))}), 0);
        gateway.start();
    }
    void link(const char* target, const char* name) const
    {
        ASSERT_TRUE(QFile::link(gateway.outside(QString::fromUtf8(target)), gateway.path(QString::fromUtf8(name))));
    }

    RunningGateway gateway;
};

TEST_F(FolderContainment, NoPathLeadsOutOfTheFolder)
{
    EXPECT_EQ(gateway.get("/doc/inside.txt").status, 200);
    EXPECT_EQ(gateway.get("/doc/sub%2Fbelow.txt").status, 200);
    const QByteArray absolute = gateway.outside(QStringLiteral("secret.txt")).toUtf8();
    QByteArrayList targets = {"/doc/" + absolute, "/doc/" + absolute.mid(1)};
    for (const char* target : {"/doc/../secret.txt",
                               "/doc/%2e%2e/secret.txt",
                               "/doc/%2E%2E%2Fsecret.txt",
                               "/doc/..%2fsecret.txt",
                               "/doc/sub/../../secret.txt",
                               "/doc/./../secret.txt",
                               "/doc//../secret.txt",
                               "/doc/%252e%252e/secret.txt",
                               "/doc/..%5csecret.txt",
                               "/doc/%c0%ae%c0%ae/secret.txt",
                               "/doc/inside.txt%00",
                               "/doc/%00/../../secret.txt",
                               "/doc/toFile.txt",
                               "/doc/toFolder/secret.txt",
                               "/doc/overParent.txt",
                               "/doc/toFolder",
                               "/doc/",
                               "/doc/.",
                               "/doc/sub",
                               "/doc/sub/",
                               "/doc/inside.txt/",
                               "/doc/%u002e%u002e/secret.txt",
                               "/doc/pipe.txt",
                               "/../secret.txt",
                               "/docs/inside.txt",
                               "/doc/.hidden.txt",
                               "/doc/sub/.git/config"})
        targets.append(target);
    for (const QByteArray& target : targets) {
        const RunningGateway::Page page = gateway.get(target);
        EXPECT_GE(page.status, 400) << target.constData();
        EXPECT_FALSE(page.body.contains(secret)) << target.constData();
    }
}

TEST_F(FolderContainment, TheIndexTakesInNothingFromOutside)
{
    EXPECT_EQ(gateway.found("query=ordinary"), QStringLiteral("inside.txt sub/below.txt"));
    EXPECT_EQ(gateway.found("query=secret"), QString());
    gateway.write(QStringLiteral("sub/.git/more"), secret);
    gateway.write(QStringLiteral(".new/more"), secret);
    EXPECT_EQ(gateway.found("query=secret"), QString());
}

TEST_F(FolderContainment, ADocumentThatBecomesALinkIsGone)
{
    ASSERT_TRUE(QFile::remove(gateway.path(QStringLiteral("inside.txt"))));
    link("secret.txt", "inside.txt");
    EXPECT_EQ(gateway.get("/doc/inside.txt").status, 404);
    EXPECT_EQ(gateway.found("query=secret"), QString());
    EXPECT_EQ(gateway.found("query=ordinary"), QStringLiteral("sub/below.txt"));
}

TEST_F(FolderContainment, RedirectsLeadToOwnDocumentsOnly)
{
    const QByteArray base = gateway.base();
    const RunningGateway::Page good = gateway.get("/url?q=" + base + "/doc/sub/below.txt&sa=U");
    EXPECT_EQ(good.status, 302);
    EXPECT_EQ(good.header("Location"), "/doc/sub/below.txt");
    for (const QByteArray& target :
         {QByteArray("http://example.com/"), QByteArray("//example.com/doc/"), base + ".example.com/doc/x",
          base + "@example.com/doc/", QByteArray("/doc/inside.txt"), QByteArray()}) {
        EXPECT_EQ(gateway.get("/url?q=" + target).status, 404) << target.constData();
        EXPECT_EQ(gateway.get("/track/yahoo.com/click?u=" + target).status, 404) << target.constData();
    }
    const RunningGateway::Page broken = gateway.get("/url?q=" + base + "/doc/x%250d%250aSet-Cookie:a=b");
    EXPECT_EQ(broken.header("Set-Cookie"), "");
}

TEST_F(FolderContainment, OnlyReadingOnlyFromThisMachine)
{
    httplib::Client client("127.0.0.1", gateway.port());
    EXPECT_EQ(client.Post("/doc/inside.txt", "x", "text/plain")->status, 405);
    EXPECT_EQ(client.Delete("/doc/inside.txt")->status, 405);
    EXPECT_EQ(client.Head("/doc/inside.txt")->status, 200);
    for (const char* host : {"example.com", "example.com:80", "127.0.0.1.example.com", "127.evil", "a b"})
        EXPECT_EQ(gateway.get("/doc/inside.txt", {{"Host", host}}).status, 421) << host;
    for (const char* host : {"localhost", "LOCALHOST:99", "127.0.0.1", "[::1]:80"})
        EXPECT_EQ(gateway.get("/doc/inside.txt", {{"Host", host}}).status, 200) << host;
}

} // namespace

} // namespace quarry
