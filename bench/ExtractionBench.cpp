// From the loaded bytes of a result page to its records: our scanners, and libxml2's HTML parser with XPath, on the
// same pages. Both must find the same; then the median of the runs is printed for each.

#include "ResultPageMaker.h"
#include "Times.h"
#include "TreeExtraction.h"
#include "engines/PageExtraction.h"
#include "engines/ServiceFetcher.h"

#include <algorithm>
#include <cstdio>

namespace {

using namespace quarry;

constexpr qsizetype Sizes[] = {60'000, 300'000, 1'000'000};
constexpr int Runs = 41;
const Date Now(800000000.0);

ResultList scannedRecords(SearchService service, const QByteArray& bytes)
{
    static const DescriptionPlaceholders placeholders = {QStringLiteral("none"), QStringLiteral("PDF")};
    DecodedPage page = decodeResultPage(bytes, u"text/html; charset=UTF-8");
    const ExtractedPage extracted = extractPage(service, std::move(page), 0, placeholders);
    ResultList records;
    qint64 rank = 0;
    for (const FoundLink& link : extracted.links)
        records.append(resultRecord(service, link, ++rank, Now));
    return records;
}

bool sameRecords(const ResultList& scanned, const ResultList& parsed, const QByteArray& page)
{
    const bool isSame = scanned.size() == parsed.size() && scanned.size() == page.count("_r=[]") &&
                        std::equal(scanned.begin(), scanned.end(), parsed.begin());
    if (!isSame)
        std::printf("The two sides differ: %lld and %lld records\n", static_cast<long long>(scanned.size()),
                    static_cast<long long>(parsed.size()));
    return isSame;
}

bool measure(SearchService service, qsizetype size)
{
    const QByteArray page = bench::makeResultPage(service, size);
    const bench::TreeExtraction tree(service);
    const ResultList scanned = scannedRecords(service, page);
    if (!sameRecords(scanned, tree.records(page, Now), page))
        return false;
    qsizetype found = 0;
    // Not in turn: memory that one side frees in small pieces is tidied at the other's expense.
    const double ours = bench::Times(Runs, [&] { found += scannedRecords(service, page).size(); }).median();
    const double theirs = bench::Times(Runs, [&] { found += tree.records(page, Now).size(); }).median();
    const double megabytes = static_cast<double>(page.size()) / 1e6;
    std::printf("%-8s %8.0f KB %5lld results  scan %8.3f ms %6.0f MB/s   libxml2 %8.3f ms %6.0f MB/s   %5.1f times\n",
                qPrintable(searchServiceName(service)), megabytes * 1e3, static_cast<long long>(scanned.size()),
                ours * 1e3, megabytes / ours, theirs * 1e3, megabytes / theirs, theirs / ours);
    return found == scanned.size() * 2 * Runs;
}

} // namespace

int main()
{
    bool isSame = true;
    for (const SearchService service :
         {SearchService::Google, SearchService::Yahoo, SearchService::Bing, SearchService::Ixquick}) {
        for (const qsizetype size : Sizes)
            isSame = measure(service, size) && isSame;
    }
    return isSame ? 0 : 1;
}
