#pragma once

#include "archive/PlistWriter.h"
#include "exchange/Exports.h"
#include "exchange/Imports.h"
#include "exchange/TreeWalk.h"
#include "model/QueryArchive.h"
#include "support/QtPrinting.h"

#include <gtest/gtest.h>

namespace quarry::test {

using namespace Qt::Literals::StringLiterals;

inline QByteArray exported(const QueryCorePtr& node, ExportFormat format, ExportedResults which = ExportedResults::All)
{
    MemorySink sink;
    EXPECT_TRUE(exportNode(node, format, which, sink));
    return sink.bytes;
}

inline QueryCorePtr newRoot()
{
    return QueryCore::initWithQueryFolder(u""_s);
}

/// A root that holds what the bytes hold; the first fault shows.
inline QueryCorePtr rootWith(const QByteArray& bytes, QueryCorePtr root = newRoot())
{
    const ImportedForest forest = readImport(bytes, u"unnamed"_s);
    EXPECT_EQ(forest.fault, QString());
    EXPECT_EQ(graft(forest, root, root).fault, QString());
    return root;
}

/// Everything that XML, CSV and terminals stumble over.
inline const QString OddText = QStringLiteral("a\x01\x0b\x1b[0m\t \"q\" <b>&amp; ' \\ \\u0041 \u05e9\u05dc\u202e\u05d5 "
                                              "\U0001f50e e\u0301\r\nend\ufffe\u2028 ") +
                               QChar(0xd83d) + QChar(0xdd0e + 0x1000) + QChar(0xdc00);

inline void setResults(const QueryCorePtr& query, const ResultList& records)
{
    EXPECT_TRUE(query->replaceResultsIfUnchanged(query->snapshot().generation, records, Date(500000000)));
}

inline ResultRecord record(const QString& title, const QString& address, qint64 rank)
{
    return ResultRecord()
        .withTitle(title)
        .withUrl(Url::fromStored(address))
        .withRank(rank)
        .withDateOfFind(Date(500000000.5 + double(rank)))
        .withLinkUuid(u"51515151-0A1B-4C2D-8E3F-%1"_s.arg(rank, 12, 10, QLatin1Char('0')))
        .withEngineId(u"1"_s);
}

/// Folders in folders, every kind of query, odd texts, and results of which one is hidden.
inline QueryCorePtr oddTree()
{
    QueryCorePtr root = newRoot();
    const QueryCorePtr folder = QueryCore::initWithQueryFolder(OddText);
    const QueryCorePtr inner = QueryCore::initWithQueryFolder(u"inner"_s);
    const QueryCorePtr plain = QueryCore::initWithQuery(u"sourdough hydration"_s);
    const QueryCorePtr advanced = QueryCore::initWithAdvancedQuery(OddText, 3, u"s.example"_s, u"[a-z]+\\.(x|y)"_s);
    const QueryCorePtr combined =
        QueryCore::initWithAdvancedCombinedQuery({u"a\nb"_s, u""_s, OddText, u""_s}, 2, u""_s);
    root->addChild(folder);
    folder->addChild(inner);
    inner->addChild(plain);
    inner->addChild(advanced);
    folder->addChild(combined);
    folder->addChild(QueryCore::init());
    root->addChild(QueryCore::initWithQueryFolder(std::nullopt));
    plain->setTitle(OddText);
    plain->setHighlight(u"dough"_s);
    plain->setMustHighlight(true);
    plain->setComputeChecksum(true);
    plain->excludeURLString(u"shop.example"_s);
    advanced->setEnabled(false);
    advanced->setCheckBlacklist(true);
    setResults(plain, {record(u"new"_s, u"http://a.example/1"_s, 1).withNewSincePrevious(true),
                       record(u"=1+1"_s, u"http://a.example/?a=1&b=2"_s, 2).withUserSaw(true),
                       record(OddText, u"javascript:alert(1)"_s, 3).withTextFromPage(OddText),
                       record(u"hidden"_s, u"http://a.example/4"_s, 4).withParentQueryUuid(plain->UUID())});
    plain->setHidden(true, plain->results()->last());
    return root;
}

} // namespace quarry::test
