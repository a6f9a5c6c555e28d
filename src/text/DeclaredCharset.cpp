#include "text/DeclaredCharset.h"

#include "platform/SystemLog.h"
#include "text/EncodingTable.h"
#include "text/FoldedSearch.h"

#include <algorithm>
#include <span>

namespace quarry {

namespace {

constexpr EncodingNumber coreFoundation = 0x80000000U;

struct NamedEncoding {
    QStringView name;
    EncodingNumber number;
};

/// Latin-1 stands in for Latin-9. The short table leaves out the first.
constexpr NamedEncoding usualNames[] = {
    {u"latin1", latin1Encoding},
    {u"iso-8859-1", latin1Encoding},
    {u"iso8859-1", latin1Encoding},
    {u"iso8859-2", 9},
    {u"iso-8859-2", 9},
    {u"iso-8859-15", latin1Encoding},
    {u"utf-8", utf8Encoding},
    {u"windows-1252", windows1252Encoding},
    {u"windows-1250", 15},
    {u"windows-1251", 11},
};

/// With the numbers of their CoreFoundation encodings.
constexpr NamedEncoding furtherNames[] = {
    {u"iso-8859-9", 521}, {u"shift_jis", 2561}, {u"gb2312", 1584}, {u"euc-jp", 2336}, {u"windows-8859", 1280},
};

std::optional<EncodingNumber> numberOf(QStringView name, std::span<const NamedEncoding> table)
{
    const auto at = std::find_if(table.begin(), table.end(), [&](const NamedEncoding& row) {
        return name.compare(row.name, Qt::CaseInsensitive) == 0;
    });
    return at != table.end() ? std::optional(at->number) : std::nullopt;
}

/// The number under which texts are kept for one of CoreFoundation's; none for an encoding that is not there.
std::optional<EncodingNumber> converted(EncodingNumber ofCoreFoundation)
{
    constexpr EncodingNumber windowsLatin1 = 1280;
    const EncodingNumber number =
        ofCoreFoundation == windowsLatin1 ? windows1252Encoding : coreFoundation + ofCoreFoundation;
    return findEncoding(number) != nullptr ? std::optional(number) : std::nullopt;
}

} // namespace

std::optional<QStringView> declaredCharset(QStringView page)
{
    constexpr QStringView plain = u" charset=";
    constexpr QStringView quoted = u" charset=\"";
    constexpr qsizetype longest = 20;
    qsizetype at = indexOfFolded(page, plain);
    if (at < 0)
        return std::nullopt;
    at += plain.size();
    if (at < page.size() && page[at] == u'"') {
        at = indexOfFolded(page, quoted);
        if (at < 0)
            return std::nullopt;
        at += quoted.size();
    }
    if (at + longest > page.size())
        return std::nullopt;
    const QStringView span = page.mid(at, longest);
    const qsizetype end = span.indexOf(u'"');
    return end < 0 ? std::nullopt : std::optional(span.left(end));
}

EncodingNumber encodingOrEquivalent(QStringView charset)
{
    if (const auto usual = numberOf(charset, usualNames))
        return *usual;
    systemLog(QStringLiteral("Unknown encoding %1. Try to find equivalent..").arg(charset));
    const auto further = numberOf(charset, furtherNames);
    const auto equivalent = further ? converted(*further) : std::nullopt;
    if (!equivalent) {
        systemLog(QStringLiteral("  -> No equivalent. Default to UTF-8"));
        return utf8Encoding;
    }
    systemLog(QStringLiteral("  -> Found equivalent %1. ").arg(*equivalent));
    return *equivalent;
}

EncodingNumber encodingOrUtf8(QStringView charset)
{
    if (const auto known = numberOf(charset, std::span(usualNames).subspan(1)))
        return *known;
    systemLog(QStringLiteral("Unknown encoding %1. Default to UTF-8").arg(charset));
    return utf8Encoding;
}

} // namespace quarry
