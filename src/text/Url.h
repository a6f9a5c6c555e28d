#pragma once

#include "text/PercentEscapes.h"
#include "text/UrlSplit.h"

#include <QByteArray>
#include <QString>
#include <QStringView>

#include <optional>

namespace quarry {

/// An address, split once. Two addresses are equal when their texts are equal. A cheap, implicitly shared value.
///
/// An address that came from a file keeps its text exactly as it was. One made from text that a person typed or
/// that was found in a page has the characters which RFC 2396 does not allow percent-escaped as UTF-8, the "%" of
/// a broken escape included.
class Url final {
public:
    /// No address: every part is empty.
    Url() = default;

    /// As stored: nothing is changed. The text may be no valid address; then host() is empty.
    [[nodiscard]] static Url fromStored(const QString& text);
    /// From typed or found text. None for an empty text and for one whose host or port cannot be read.
    [[nodiscard]] static std::optional<Url> fromText(const QString& text);
    /// A reference resolved against a base (RFC 3986, section 5.2), escaped as by fromText. An empty reference is
    /// the base without its fragment. None as for fromText.
    [[nodiscard]] static std::optional<Url> resolved(const Url& base, const QString& reference);

    [[nodiscard]] bool isEmpty() const { return _text.isEmpty(); }
    [[nodiscard]] const QString& absoluteString() const { return _text; }
    /// Without the ":"; empty when there is none.
    [[nodiscard]] QStringView scheme() const { return part(_parts.scheme); }
    /// As written, without user and port; brackets of an IPv6 host included.
    [[nodiscard]] QStringView host() const { return part(_parts.host); }
    /// As written, escapes kept; empty for a bare host.
    [[nodiscard]] QStringView path() const { return part(_parts.path); }
    /// Without the "?"; empty when there is none.
    [[nodiscard]] QStringView query() const { return part(_parts.query); }
    /// The text after the last "." of the path's last component, escapes undone. A "/" at the path's end does not
    /// count; a name that only begins with a dot (".profile") or ends with one has no extension. Empty when there is
    /// none.
    [[nodiscard]] QString pathExtension() const;
    /// For the wire: the text as bytes, the fragment left out, a host outside ASCII in its ASCII form, every other
    /// character that is no visible ASCII percent-escaped.
    [[nodiscard]] QByteArray requestBytes() const;

    friend bool operator==(const Url& a, const Url& b) { return a._text == b._text; }

private:
    [[nodiscard]] QStringView part(UrlParts::Range r) const { return QStringView(_text).mid(r.begin, r.length); }
    [[nodiscard]] qsizetype fragmentBegin() const;

    QString _text;
    UrlParts _parts;
};

} // namespace quarry
