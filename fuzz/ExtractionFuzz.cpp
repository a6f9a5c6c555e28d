// Arbitrary bytes as a result page of every service: nothing may go wrong, and the scan copy must be what the six
// passes give one after the other.

#include "FuzzTarget.h"
#include "engines/NaiveScanning.h"
#include "engines/PageExtraction.h"
#include "engines/ScanCopy.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace quarry;
    // The naive passes start over after every removal.
    if (size > 4096)
        return 0;
    const DecodedPage page = decodeResultPage(inputOf(data, size), u"text/html");
    require(ScanCopy(page.text).text().toString() + QLatin1Char(' ') == naive::scanCopy(page.text),
            "the scan copy is not what the passes give");
    for (const SearchService service : AllSearchServices) {
        for (const qint64 start : {0, 10})
            (void)extractPage(service, page, start, {});
    }
    return 0;
}
