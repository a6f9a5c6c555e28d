#include "engines/LinkAddress.h"

#include "model/RecordData.h"
#include "text/PercentEscapes.h"

#include <QHashFunctions>

#include <algorithm>
#include <array>
#include <cstdint>
#include <cstring>
#include <string>

namespace quarry {

namespace {

constexpr char WideMark = '\xff';

bool isAscii(std::string_view bytes)
{
    // Without a way out in the middle, so that the compiler takes many bytes at a time.
    unsigned bits = 0;
    for (const char c : bytes)
        bits |= static_cast<unsigned char>(c);
    return bits < 0x80;
}

bool isAscii(QStringView text)
{
    return std::all_of(text.begin(), text.end(), [](QChar c) { return c.unicode() < 0x80; });
}

/// The same bytes for the same text, and for no other.
QByteArray bytesOf(QStringView text)
{
    if (isAscii(text))
        return text.toLatin1();
    return WideMark +
           QByteArray(reinterpret_cast<const char*>(text.utf16()), text.size() * qsizetype(sizeof(char16_t)));
}

std::string_view part(std::string_view text, UrlParts::Range range)
{
    return text.substr(static_cast<std::size_t>(range.begin), static_cast<std::size_t>(range.length));
}

__extension__ typedef unsigned __int128 Wide;

/// Both halves of the product.
std::uint64_t mixed(std::uint64_t a, std::uint64_t b)
{
    const Wide product = Wide(a) * b;
    return static_cast<std::uint64_t>(product) ^ static_cast<std::uint64_t>(product >> 64);
}

std::uint64_t wordAt(const char* bytes)
{
    std::uint64_t word = 0;
    std::memcpy(&word, bytes, sizeof word);
    return word;
}

/// Addresses are short and many, and Qt's own function takes longer than all the rest of the look-up.
std::size_t hashOf(std::string_view bytes)
{
    static const std::uint64_t seed = QHashSeed::globalSeed() * 0x9e3779b97f4a7c15U;
    static const std::uint64_t secret = seed ^ 0xd6e8feb86659fd93U;
    constexpr std::size_t Step = 16;
    std::array<char, Step> shortText = {};
    const char* at = bytes.data();
    std::size_t left = bytes.size();
    std::uint64_t hash = seed ^ left;
    for (; left > Step; at += Step, left -= Step)
        hash = mixed(wordAt(at) ^ secret, wordAt(at + 8) ^ hash);
    if (bytes.size() < Step)
        at = std::copy_n(at, left, shortText.data()) - left;
    else
        at -= Step - left; // the last bytes, some of them once more
    hash = mixed(wordAt(at) ^ secret, wordAt(at + 8) ^ hash);
    return mixed(hash ^ secret, 0xa0761d6478bd642fU);
}

bool isAmong(const QString& extension, std::span<const QLatin1String> types)
{
    return std::any_of(types.begin(), types.end(),
                       [&](QLatin1String type) { return extension.compare(type, Qt::CaseInsensitive) == 0; });
}

} // namespace

LinkAddress::LinkAddress(const ResultRecord& record)
{
    const RecordData& data = record.data();
    if (!data.has(RecordKey::Url))
        return;
    const StoredText& text = data.text(RecordKey::Url);
    if (text.encoding() == StoredText::Encoding::Ascii && isAscii(text.bytes()))
        takeAscii(text.bytes());
    else
        take(Url::fromStored(text.toString()));
}

LinkAddress::LinkAddress(const Url& url)
{
    take(url);
}

void LinkAddress::takeAscii(std::string_view text)
{
    const UrlParts parts = splitUrl(QLatin1String(text.data(), static_cast<qsizetype>(text.size())));
    _host = part(text, parts.host);
    _name = part(text, parts.path);
    _path = _host.empty() ? text : _name;
    finish();
}

void LinkAddress::take(const Url& url)
{
    _url = url;
    const QByteArray host = bytesOf(url.host());
    _own = host + bytesOf(url.host().isEmpty() ? QStringView(url.absoluteString()) : url.path());
    const std::string_view own(_own.constData(), static_cast<std::size_t>(_own.size()));
    _host = own.substr(0, static_cast<std::size_t>(host.size()));
    _path = own.substr(_host.size());
    finish();
}

void LinkAddress::finish()
{
    _exists = true;
    if (!_host.empty() && _path.empty())
        _path = "/";
    // Mostly the path follows the host at once.
    if (_host.data() + _host.size() == _path.data())
        _hash = hashOf({_host.data(), _host.size() + _path.size()});
    else
        _hash = hashOf(std::string(_host).append(_path));
}

QString LinkAddress::host() const
{
    return _url.isEmpty() ? QString::fromLatin1(_host.data(), static_cast<qsizetype>(_host.size()))
                          : _url.host().toString();
}

bool LinkAddress::hasExtensionAmong(std::span<const QLatin1String> types) const
{
    if (!_url.isEmpty())
        return isAmong(_url.pathExtension(), types);
    std::string_view name = _name.substr(0, _name.find_last_not_of('/') + 1);
    name = name.substr(name.rfind('/') + 1);
    const std::size_t dot = name.rfind('.');
    if (dot == std::string_view::npos || dot == 0)
        return false;
    const QLatin1String extension(name.data() + dot + 1, static_cast<qsizetype>(name.size() - dot - 1));
    if (extension.contains(u'%'))
        return isAmong(percentUnescaped(extension).value_or(extension), types);
    return std::any_of(types.begin(), types.end(), [&](QLatin1String type) {
        return type.size() == extension.size() && type.compare(extension, Qt::CaseInsensitive) == 0;
    });
}

} // namespace quarry
