#include "engines/OfflineCopy.h"

#include "Records.h"
#include "support/FakePageLoader.h"
#include "support/TemporaryHome.h"

#include <QDir>

#include <gtest/gtest.h>

namespace quarry {
namespace {

using test::FakePageLoader;

class OfflineCopy : public ::testing::Test {
protected:
    OfflineCopy()
    {
        ResultList records;
        for (const auto& [uuid, path] : {std::pair("A", "a"), std::pair("B", "b.PDF"), std::pair("C", "gone"),
                                         std::pair("../D", "a"), std::pair("E", "e.zip")})
            records.append(linkTo(u"http://h/"_qs + QLatin1String(path))
                               .withLinkUuid(QString::fromLatin1(uuid))
                               .withVisible(true));
        EXPECT_TRUE(query->replaceResultsIfUnchanged(query->snapshot().generation, records, Date::reference()));
    }
    OfflineCopyEnd copy()
    {
        return createCacheAtPath(query, home.path(),
                                 {loaders, files, notifications, [this] { ++replies; },
                                  [this](const CopiedPage& page, qsizetype done, qsizetype) {
                                      states.push_back(page.state);
                                      if (done == stopAfter)
                                          notifications.post(u"appwantsquit"_qs);
                                  }});
    }
    QByteArray content(const QString& name) { return test::contentOf(folder + name); }
    QStringList names() { return QDir(folder).entryList(QDir::Files | QDir::Hidden, QDir::Name); }

    test::TemporaryHome home;
    DiskFileStore files;
    NotificationCenter notifications;
    FakePageLoader loader{[](const QByteArray& address) {
        return address.endsWith("gone") ? FakePageLoader::failure(u"HTTP status 404"_qs)
                                        : FakePageLoader::page("<body>caf\xC3\xA9 <b>open</b>\n</body>");
    }};
    ResultPageLoaders loaders{loader, loader, SearchServices(), [](const QString&) { return false; }};
    QueryCorePtr query = QueryCore::initWithQuery(u"q"_qs);
    QString folder = home.path() + u"/"_qs + query->UUID() + u"/"_qs;
    std::vector<CopiedPage::State> states;
    qsizetype stopAfter = 0;
    int replies = 0;
};

TEST_F(OfflineCopy, HoldsTheTextOfEachPageAndIsMadeOnce)
{
    notifications.post(u"appwantsquit"_qs); // Nobody copies yet.
    query->setSearchString(u"searched in the window meanwhile"_qs);
    EXPECT_EQ(copy(), OfflineCopyEnd::Made);
    EXPECT_EQ(names(), QStringList({u"A"_qs, u"B"_qs, u"C"_qs, u"E"_qs}));
    using State = CopiedPage::State;
    EXPECT_EQ(states,
              (std::vector{State::Copied, State::WithoutText, State::Unreadable, State::Unnamed, State::Copied}));
    EXPECT_EQ(content(u"A"_qs), "caf\xC3\xA9 open");
    EXPECT_EQ(content(u"B"_qs) + content(u"C"_qs), "");
    EXPECT_FALSE(content(u"E"_qs).isEmpty());
    EXPECT_FALSE(QFile::exists(home.path() + u"/D"_qs));
    const std::size_t loads = loader.requests().size();
    EXPECT_EQ(loads, 3U);
    EXPECT_EQ(copy(), OfflineCopyEnd::AlreadyThere);
    EXPECT_EQ(loader.requests().size(), loads);
    EXPECT_EQ(replies, 0);
}

TEST_F(OfflineCopy, StopsAfterTheCurrentPageAndLetsTheProgramEnd)
{
    stopAfter = 1;
    EXPECT_EQ(copy(), OfflineCopyEnd::Stopped);
    EXPECT_EQ(names(), QStringList({u"A"_qs}));
    EXPECT_EQ(replies, 1);
    EXPECT_FALSE(query->mustStopCacheCreation());
}

} // namespace
} // namespace quarry
