#include "text/EncodingTable.h"

#include <unicode/ucnv.h>

#include <algorithm>
#include <iterator>
#include <string_view>

namespace quarry {

namespace {

constexpr EncodingNumber coreFoundation = 0x80000000U;

// What pages call gb2312 is usually its superset, whose converter reads both.
constexpr Encoding encodings[] = {
    {utf8Encoding, "UTF-8"},
    {latin1Encoding, "ISO-8859-1"},
    {9, "ISO-8859-2"},
    {10, "UTF-16"},
    {11, "windows-1251"},
    {windows1252Encoding, "windows-1252"},
    {15, "windows-1250"},
    {coreFoundation + 0x0203, "ISO-8859-3"},
    {coreFoundation + 0x0204, "ISO-8859-4"},
    {coreFoundation + 0x0205, "ISO-8859-5"},
    {coreFoundation + 0x0206, "ISO-8859-6"},
    {coreFoundation + 0x0207, "ISO-8859-7"},
    {coreFoundation + 0x0208, "ISO-8859-8"},
    {coreFoundation + 0x0209, "ISO-8859-9"},
    {coreFoundation + 0x020A, "ISO-8859-10"},
    {coreFoundation + 0x020B, "ISO-8859-11"},
    {coreFoundation + 0x020D, "ISO-8859-13"},
    {coreFoundation + 0x020E, "ISO-8859-14"},
    {coreFoundation + 0x020F, "ISO-8859-15"},
    {coreFoundation + 0x0210, "ISO-8859-16"},
    {coreFoundation + 0x0412, "IBM852"},
    {coreFoundation + 0x0413, "IBM855"},
    {coreFoundation + 0x041B, "IBM866"},
    {coreFoundation + 0x041D, "windows-874"},
    {coreFoundation + 0x0422, "windows-949"},
    {coreFoundation + 0x0503, "windows-1253"},
    {coreFoundation + 0x0504, "windows-1254"},
    {coreFoundation + 0x0505, "windows-1255"},
    {coreFoundation + 0x0506, "windows-1256"},
    {coreFoundation + 0x0507, "windows-1257"},
    {coreFoundation + 0x0508, "windows-1258"},
    {coreFoundation + 0x0600, "US-ASCII"},
    {coreFoundation + 0x0631, "GBK"},
    {coreFoundation + 0x0630, "GBK"},
    {coreFoundation + 0x0632, "GB18030"},
    {coreFoundation + 0x0820, "ISO-2022-JP"},
    {coreFoundation + 0x0840, "ISO-2022-KR"},
    {coreFoundation + 0x0920, "EUC-JP"},
    {coreFoundation + 0x0931, "EUC-TW"},
    {coreFoundation + 0x0940, "EUC-KR"},
    {coreFoundation + 0x0A01, "Shift_JIS"},
    {coreFoundation + 0x0A02, "KOI8-R"},
    {coreFoundation + 0x0A03, "Big5"},
    {coreFoundation + 0x0A05, "HZ"},
    {coreFoundation + 0x0A08, "KOI8-U"},
    {coreFoundation, "macintosh"},
    {coreFoundation + 0x0007, "x-mac-cyrillic"},
    {coreFoundation + 0x001D, "x-mac-centraleurroman"},
    {coreFoundation + 0x10000100, "UTF-16BE"},
    {coreFoundation + 0x14000100, "UTF-16LE"},
    {coreFoundation + 0x0C000100, "UTF-32"},
};

/// Short numbers that other writers of the caches use for encodings of the table.
constexpr struct {
    EncodingNumber from;
    EncodingNumber to;
} shortNumbers[] = {
    {1, coreFoundation + 0x0600},  {3, coreFoundation + 0x0920},  {8, coreFoundation + 0x0A01},
    {13, coreFoundation + 0x0503}, {14, coreFoundation + 0x0504}, {21, coreFoundation + 0x0820},
    {30, coreFoundation},
};

/// Names that pages use and the converter library does not know, or knows as something narrower.
constexpr struct {
    QStringView name;
    EncodingNumber number;
} webNames[] = {
    {u"utf-8", utf8Encoding},
    {u"gb2312", coreFoundation + 0x0630},
    {u"gb_2312-80", coreFoundation + 0x0630},
    {u"x-gbk", coreFoundation + 0x0631},
    {u"uhc", coreFoundation + 0x0422},
    {u"x-x-big5", coreFoundation + 0x0A03},
    {u"x-cp1250", 15},
    {u"x-cp1251", 11},
    {u"x-cp1252", windows1252Encoding},
    {u"mac-centraleurope", coreFoundation + 0x001D},
};

/// The library's own name for any alias; none for a name it does not know.
std::string_view converterName(const char* alias)
{
    UErrorCode status = U_ZERO_ERROR;
    const char* name = ucnv_getAlias(alias, 0, &status);
    return U_SUCCESS(status) && name != nullptr ? name : std::string_view();
}

} // namespace

std::optional<EncodingNumber> encodingForCharset(QStringView name)
{
    constexpr qsizetype longestName = 40;
    const QString trimmed = name.trimmed().toString();
    if (trimmed.isEmpty() || trimmed.size() > longestName)
        return std::nullopt;
    for (const auto& webName : webNames) {
        if (trimmed.compare(webName.name, Qt::CaseInsensitive) == 0)
            return webName.number;
    }
    const std::string_view wanted = converterName(trimmed.toLatin1().constData());
    if (wanted.empty())
        return std::nullopt;
    const auto* at = std::find_if(std::begin(encodings), std::end(encodings), [&](const Encoding& encoding) {
        return converterName(encoding.converter) == wanted;
    });
    return at != std::end(encodings) ? std::optional(at->number) : std::nullopt;
}

const Encoding* findEncoding(EncodingNumber number)
{
    for (const auto& shortNumber : shortNumbers) {
        if (shortNumber.from == number)
            number = shortNumber.to;
    }
    const auto* at = std::find_if(std::begin(encodings), std::end(encodings),
                                  [&](const Encoding& encoding) { return encoding.number == number; });
    return at != std::end(encodings) ? at : nullptr;
}

} // namespace quarry
