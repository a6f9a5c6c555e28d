#include "engines/ServiceFetcher.h"
#include "gateway/ResultPage.h"
#include "gateway/RunningGateway.h"
#include "gateway/ServicesFile.h"
#include "platform/CurlPageLoader.h"
#include "support/RecordingPauser.h"
#include "support/SettableClock.h"

#include <map>
#include <set>

namespace quarry {

namespace {

/// A real gateway with 25 documents, some with names and titles that are hard to carry.
class ServicePages : public testing::Test {
protected:
    void SetUp() override
    {
        add("a b#1?c%41&d'e\"f.txt", R"(R&D says "100%" & Tom's 5 > 4)");
        add("gr\u00FCn/caf\u00E9 +1.txt", "Gr\u00FCn & gut");
        add("sub/one.txt", "First below");
        add("sub/two.txt", "Second below");
        add("subway.txt", "Not below");
        for (int i = 0; i < 20; ++i)
            add("plain/" + QByteArray::number(i) + ".txt", "Plain document number " + QByteArray::number(i));
        gateway.start();
        const QString file = gateway.outside(QStringLiteral("SearchServices.plist"));
        ASSERT_EQ(writeServicesFile(file, "127.0.0.1", gateway.port()), QString());
        const SearchServices::Loaded loaded = SearchServices::load(file);
        ASSERT_EQ(loaded.error, QString());
        services = loaded.services;
    }

    void add(const QByteArray& name, const QByteArray& title)
    {
        // Longer and longer, and with more and more of the words, so that each service has an order of its own.
        const int number = static_cast<int>(titles.size());
        const QByteArray filler =
            QByteArray("filler ").repeated(1 + (number * 7) % 25) + QByteArray("needle ").repeated(1 + number % 3);
        gateway.write(QString::fromUtf8(name), title + "\n\nHay and a \"sharp needle\" <in> it; " + filler + '\n');
        titles[QString::fromUtf8(documentAddress(name))] = QString::fromUtf8(title);
    }

    RunningGateway gateway;
    SearchServices services;
    std::map<QString, QString> titles; ///< By the document's path in its address.
};

/// The readers of the services' pages.
class ServiceResults : public ServicePages, public testing::WithParamInterface<SearchService> {
protected:
    [[nodiscard]] FetchOutcome ask(const QString& address, const QString& query, const QString& website = {})
    {
        ServiceFetcher fetcher({loader, pauser, clock, files, lookup, QString(), 30}, query, QStringLiteral("uuid"));
        return fetcher.update(GetParam(), fillSearchUrl(address, query, website));
    }
    [[nodiscard]] SearchAddresses addresses() const { return {services, lookup}; }
    [[nodiscard]] std::set<QString> pathsOf(const FetchOutcome& outcome) const
    {
        std::set<QString> paths;
        for (const ResultRecord& record : outcome.records.value_or(ResultList()))
            paths.insert(record.url()->absoluteString().mid(gateway.base().size()));
        return paths;
    }

    CurlPageLoader loader;
    test::RecordingPauser pauser;
    test::SettableClock clock;
    DiskFileStore files;
    TextLookup lookup = [](const QString& key) { return key; };
};

TEST_P(ServiceResults, EveryDocumentIsReadFromThePages)
{
    const FetchOutcome outcome = ask(addresses().searchUrl(GetParam(), false), QStringLiteral("sharp+needle"));
    ASSERT_TRUE(outcome.records);
    ASSERT_EQ(outcome.pages.size(), 3);
    for (const PageFacts& page : outcome.pages) {
        EXPECT_EQ(page.items, page.results) << page.start;
        EXPECT_EQ(page.items, page.start < 20 ? 10 : outcome.records->size() - 20) << page.start;
    }
    std::set<QString> expected;
    for (const auto& [path, title] : titles)
        expected.insert(path);
    EXPECT_EQ(pathsOf(outcome), expected);
    // Where results are counted from 1, the tenth stands on two pages.
    const bool countsFromOne = GetParam() == SearchService::Yahoo || GetParam() == SearchService::Bing;
    EXPECT_EQ(outcome.records->size(), countsFromOne ? 26 : 25);
    for (const ResultRecord& record : *outcome.records) {
        const QString path = record.url()->absoluteString().mid(gateway.base().size());
        EXPECT_EQ(record.title(), titles[path]);
        EXPECT_TRUE(record.textFromPage()->contains(QStringLiteral("\"sharp needle\"")))
            << qPrintable(*record.textFromPage());
        EXPECT_EQ(gateway.get(path.toUtf8()).status, 200) << qPrintable(path);
    }
}

TEST_P(ServiceResults, APageThatSaysThereIsNothingIsUnderstood)
{
    const FetchOutcome outcome = ask(addresses().searchUrl(GetParam(), false), QStringLiteral("astrolabe"));
    ASSERT_EQ(outcome.pages.size(), 3);
    for (const PageFacts& page : outcome.pages)
        EXPECT_EQ(page.sign, PageSign::NoResults) << page.start;
}

/// Those that have a form for them.
class ServiceRestrictions : public ServiceResults {};

TEST_P(ServiceRestrictions, PhraseAndPlaceRestrictWhatIsFound)
{
    const QString address = addresses().advancedSearchUrl(GetParam(), 2, true);
    const QString host = QString::fromUtf8(gateway.base().mid(7));
    const std::set<QString> below = {QStringLiteral("/doc/sub/one.txt"), QStringLiteral("/doc/sub/two.txt")};
    EXPECT_EQ(pathsOf(ask(address, QStringLiteral("sharp needle"), host + QStringLiteral("/doc/sub"))), below);
    EXPECT_EQ(pathsOf(ask(address, QStringLiteral("sharp needle"), QStringLiteral("sub"))), below);
    EXPECT_EQ(pathsOf(ask(address, QStringLiteral("sharp needle"), QStringLiteral("www.example.com"))),
              std::set<QString>());
    // Bing's form for a place drops the quotes.
    const FetchOutcome reversed =
        ask(addresses().advancedSearchUrl(GetParam(), 2, false), QStringLiteral("needle sharp"));
    EXPECT_EQ(pathsOf(reversed), std::set<QString>());
    EXPECT_EQ(reversed.pages.size(), 3);
}

const auto nameOfParameter = [](const auto& service) { return searchServiceName(service.param).toStdString(); };

INSTANTIATE_TEST_SUITE_P(Services, ServiceResults,
                         testing::Values(SearchService::Google, SearchService::Yahoo, SearchService::Bing,
                                         SearchService::Ixquick),
                         nameOfParameter);
INSTANTIATE_TEST_SUITE_P(Services, ServiceRestrictions,
                         testing::Values(SearchService::Google, SearchService::Yahoo, SearchService::Bing),
                         nameOfParameter);

TEST_F(ServicePages, NoTwoServicesRankAlike)
{
    std::set<QByteArray> orders;
    for (const char* const target : {"/search?start=0&q=needle", "/search?first=0&q=needle", "/search?b=0&p=needle",
                                     "/search/results?q=needle", "/do/metasearch.pl?query=needle"}) {
        // The addresses in their order, whatever stands around them.
        const QByteArray body = gateway.get(target).body;
        QByteArray order;
        for (qsizetype at = body.indexOf("<h3"); at >= 0; at = body.indexOf("<h3", at + 1)) {
            const qsizetype link = body.indexOf("/doc/", at);
            order += body.mid(link, body.indexOf(".txt", link) - link) + '\n';
        }
        EXPECT_EQ(order.count('\n'), 10) << target;
        orders.insert(order);
    }
    EXPECT_EQ(orders.size(), 5U);
}

} // namespace

} // namespace quarry
