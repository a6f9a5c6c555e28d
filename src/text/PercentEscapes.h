#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <optional>

namespace quarry {

/// The whole text percent-escaped as UTF-8: everything outside RFC 2396's reserved and unreserved characters,
/// "%" and "#" included. For the finished search address. Escapes are upper-case.
[[nodiscard]] QString percentEscaped(const QString& text);

/// Percent escapes undone and read as UTF-8; none when the bytes are not UTF-8. A "%" that begins no escape stays.
[[nodiscard]] std::optional<QString> percentUnescaped(const QString& text);

/// What has to be escaped for a text to be an address: what RFC 2396 does not allow, "%" where it begins no
/// escape, "#" after the first one, and brackets outside `literalHost` (an IPv6 host, as a range of `text`).
[[nodiscard]] QString escapedForAddress(const QString& text, QStringView literalHost);

inline constexpr std::array<bool, 128> addressCharacters = [] {
    std::array<bool, 128> allowed{};
    for (const char* p = "abcdefghijklmnopqrstuvwxyzABCDEFGHIJKLMNOPQRSTUVWXYZ0123456789;/?:@&=+$,-_.!~*'()";
         *p != '\0'; ++p)
        allowed[static_cast<unsigned char>(*p)] = true;
    return allowed;
}();

/// RFC 2396's reserved and unreserved characters.
[[nodiscard]] constexpr bool isAddressCharacter(char16_t c)
{
    return c < addressCharacters.size() && addressCharacters[c];
}

/// The value of a hexadecimal digit, or -1.
[[nodiscard]] constexpr int hexDigitValue(char16_t c)
{
    if (c >= u'0' && c <= u'9')
        return c - u'0';
    if (c >= u'A' && c <= u'F')
        return c - u'A' + 10;
    if (c >= u'a' && c <= u'f')
        return c - u'a' + 10;
    return -1;
}

/// True when "%" and two hexadecimal digits stand at the position.
[[nodiscard]] bool isPercentEscape(QStringView text, qsizetype at);

/// Appends the UTF-8 form of a code point, percent-escaped.
void appendPercentEscaped(QString& out, char32_t codePoint);

/// The code point at `at`, which is moved past it. Half of a surrogate pair reads as U+FFFD.
[[nodiscard]] char32_t nextCodePoint(QStringView text, qsizetype& at);

} // namespace quarry
