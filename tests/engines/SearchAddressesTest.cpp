#include "engines/SearchAddresses.h"

#include <gtest/gtest.h>

namespace quarry {
namespace {

SearchAddresses addresses(const QByteArray& yahooLanguage = "yahooLanguageEmptyForEN", SearchServices services = {})
{
    return SearchAddresses(std::move(services), [yahooLanguage](const QString& key) {
        return key == u"100_Yahoo language URL" ? QString::fromUtf8(yahooLanguage) : u"["_qs + key.left(3) + u"]"_qs;
    });
}

TEST(SearchAddresses, BuildTheTemplates)
{
    const SearchAddresses at = addresses();
    EXPECT_EQ(at.googleSearchUrl(false),
              u"https://www.google.com/search?client=safari&rls=[100]&ie=UTF-8&oe=UTF-8&start=^start_&q=^query_");
    EXPECT_EQ(at.googleSearchUrl(true),
              u"https://www.google.com/search?client=safari&rls=[100]&ie=UTF-8&oe=UTF-8&start=^start_");
    EXPECT_EQ(at.bingSearchUrl(false), u"http://www.bing.com/search?q=^query_&setmkt=[130]&go=&filt=all&first=^start_");
    EXPECT_EQ(at.bingSearchUrl(true), u"http://www.bing.com/search?setmkt=[130]&first=^start_");
    EXPECT_EQ(at.yahooSearchUrl(false), u"http://search.yahoo.com/search?ei=UTF-8&xargs=0&b=^start_&p=^query_");
    EXPECT_EQ(addresses("fr.").yahooSearchUrl(true), u"http://fr.search.yahoo.com/search?ei=UTF-8&xargs=0&b=^start_");
    EXPECT_EQ(at.exaleadSearchUrl(false),
              u"http://www.exalead.fr/search/results?q=^query_&b=^start_&searchlanguages=[100]");
    EXPECT_EQ(at.exaleadSearchUrl(true),
              u"http://www.exalead.fr/search/results?mode=allweb&b=^start_&searchlanguages=[100]");
    EXPECT_EQ(at.ixquickSearchUrl(true), at.ixquickSearchUrl(false));
    EXPECT_EQ(at.ixquickSearchUrl(true),
              u"http://www.ixquick.com/do/metasearch.pl?cat=web&cmd=process_search&language=[111]&engine0=v1all&ff=1"
              u"&startat=^start_&query=^query_");
}

TEST(SearchAddresses, AppendTheFragmentsOfAdvancedQueries)
{
    const SearchAddresses at = addresses();
    const struct {
        SearchService service;
        qint64 words;
        bool website;
        const char16_t* fragment;
    } cases[] = {
        {SearchService::Google, 0, false, u""},
        {SearchService::Google, 1, false, u"&q=^query_"},
        {SearchService::Google, 2, true, u"&q=\"^query_\"&as_sitesearch=^website_"},
        {SearchService::Google, 0, true, u"&as_sitesearch=^website_"},
        {SearchService::Yahoo, 3, false, u"&p=\"^query_\""},
        {SearchService::Yahoo, 1, true, u"&p=^query_&vs=^website_"},
        {SearchService::Bing, 3, false, u"&q=\"^query_\""},
        {SearchService::Bing, 3, true, u"&q=^query_+site:^website_"},
        {SearchService::Exalead, 1, true, u"&q=\"^query_\"+site:^website_"},
        {SearchService::Exalead, 0, true, u"&q=\"^query_\"+site:^website_"},
        {SearchService::Ixquick, 2, true, u""},
    };
    for (const auto& c : cases) {
        EXPECT_EQ(at.advancedSearchUrl(c.service, c.words, c.website),
                  at.searchUrl(c.service, true) + QString::fromUtf16(c.fragment))
            << qPrintable(searchServiceName(c.service)) << c.words << c.website;
    }
}

TEST(SearchAddresses, AreFilledAndFinished)
{
    EXPECT_EQ(fillSearchUrl(u"h?q=^query_+site:^website_&r=^query_&^x"_qs, u"a^website_"_qs, u"b^query_"_qs),
              u"h?q=a^website_+site:b^query_&r=a^website_&^x");
    const QString filled =
        fillSearchUrl(addresses().googleSearchUrl(true) + u"&q=^query_"_qs, u"a b _&&&&&_ c\u00E9#%"_qs);
    EXPECT_EQ(finishedSearchUrl(filled, 30, true),
              u"https://www.google.com/search?client=safari&rls=%5B100%5D&ie=UTF-8&oe=UTF-8&start=30"
              u"&q=a%20b%20%26%20c%C3%A9%23%25");
    EXPECT_TRUE(finishedSearchUrl(filled, 0, false).contains(u"_&&&&&_"));
}

QByteArray plist(const char* content)
{
    return QByteArray("<?xml version=\"1.0\" encoding=\"UTF-8\"?><plist version=\"1.0\">") + content + "</plist>";
}

TEST(SearchServices, AreChangedOneAtATime)
{
    const auto loaded = SearchServices::fromPropertyList(
        plist("<dict><key>Yahoo</key><dict><key>host</key><string>127.0.0.1</string><key>port</key>"
              "<integer>8080</integer></dict><key>Google</key><dict><key>scheme</key><string>http</string></dict>"
              "<key>Bing</key><dict><key>enabled</key><false/></dict></dict>"));
    ASSERT_EQ(loaded.error, QString());
    EXPECT_EQ(loaded.services.origin(SearchService::Google), u"http://www.google.com");
    EXPECT_FALSE(loaded.services.isEnabled(SearchService::Bing));
    EXPECT_TRUE(loaded.services.isEnabled(SearchService::Yahoo));
    // Another host has no names by language.
    EXPECT_TRUE(
        addresses("fr.", loaded.services).yahooSearchUrl(false).startsWith(u"http://127.0.0.1:8080/search?ei="));
}

TEST(SearchServices, NameTheFaultOfAFileThatMakesNoSense)
{
    const struct {
        QByteArray file;
        const char* fault;
    } cases[] = {
        {"no property list at all", ""},
        {plist("<array/>"), "must be a dictionary of services"},
        {plist("<dict><key>Gogle</key><dict/></dict>"), "\"Gogle\" is no service"},
        {plist("<dict><key>Bing</key><string>x</string></dict>"), "\"Bing\" must be a dictionary"},
        {plist("<dict><key>Bing</key><dict><key>hots</key><string>x</string></dict></dict>"), "\"hots\" is not known"},
        {plist("<dict><key>Bing</key><dict><key>port</key><integer>65536</integer></dict></dict>"), "\"port\" must"},
        {plist("<dict><key>Bing</key><dict><key>port</key><string>80</string></dict></dict>"), "\"port\" must"},
        {plist("<dict><key>Bing</key><dict><key>scheme</key><string>file</string></dict></dict>"), "\"scheme\" must"},
        {plist("<dict><key>Bing</key><dict><key>host</key><string>a/b</string></dict></dict>"), "\"host\" must"},
        {plist("<dict><key>Bing</key><dict><key>host</key><string>a:80</string></dict></dict>"), "\"host\" must"},
        {plist("<dict><key>Bing</key><dict><key>enabled</key><integer>2</integer></dict></dict>"), "\"enabled\" must"},
    };
    for (const auto& c : cases) {
        const auto loaded = SearchServices::fromPropertyList(c.file);
        EXPECT_TRUE(loaded.error.startsWith(u"SearchServices.plist: ")) << c.file.constData();
        EXPECT_TRUE(loaded.error.contains(QLatin1String(c.fault))) << qPrintable(loaded.error);
        EXPECT_EQ(loaded.services.origin(SearchService::Bing), u"http://www.bing.com");
    }
}

} // namespace
} // namespace quarry
