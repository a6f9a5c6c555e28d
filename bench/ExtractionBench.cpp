// From the loaded bytes of a result page to its records: our scanners, and libxml2's HTML parser with XPath, on the
// same pages. Both must find the same; then the median of the runs is printed for each.

#include "ResultPageMaker.h"
#include "TreeExtraction.h"
#include "engines/PageExtraction.h"
#include "engines/ServiceFetcher.h"

#include <algorithm>
#include <cstdio>
#include <ctime>
#include <vector>

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

/// Processor time: what else runs on the machine does not count.
template <typename Work>
double secondsOf(const Work& work)
{
    const std::clock_t begin = std::clock();
    work();
    return static_cast<double>(std::clock() - begin) / CLOCKS_PER_SEC;
}

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

bool measure(SearchService service, qsizetype size)
{
    const QByteArray page = bench::makeResultPage(service, size);
    const bench::TreeExtraction tree(service);
    const ResultList scanned = scannedRecords(service, page);
    if (!sameRecords(scanned, tree.records(page, Now), page))
        return false;
    std::vector<double> ours, theirs;
    qsizetype found = 0;
    // Not in turn: memory that one side frees in small pieces is tidied at the other's expense.
    for (int run = 0; run < Runs; ++run)
        ours.push_back(secondsOf([&] { found += scannedRecords(service, page).size(); }));
    for (int run = 0; run < Runs; ++run)
        theirs.push_back(secondsOf([&] { found += tree.records(page, Now).size(); }));
    const double megabytes = static_cast<double>(page.size()) / 1e6;
    std::printf("%-8s %8.0f KB %5lld results  scan %8.3f ms %6.0f MB/s   libxml2 %8.3f ms %6.0f MB/s   %5.1f times\n",
                qPrintable(searchServiceName(service)), megabytes * 1e3, static_cast<long long>(scanned.size()),
                median(ours) * 1e3, megabytes / median(ours), median(theirs) * 1e3, megabytes / median(theirs),
                median(theirs) / median(ours));
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
