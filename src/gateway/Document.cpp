#include "gateway/Document.h"

#include "gateway/DocumentTitle.h"
#include "gateway/Gzip.h"
#include "gateway/HtmlText.h"
#include "gateway/Markup.h"
#include "text/CharsetDeclaration.h"
#include "text/PageDecoding.h"

#include <QList>
#include <QString>

#include <algorithm>

namespace quarry {

namespace {

QByteArray withoutGzip(const QByteArray& path)
{
    return path.endsWith(".gz") ? path.chopped(3) : path;
}

QByteArray extension(const QByteArray& path)
{
    const qsizetype dot = path.lastIndexOf('.');
    return dot > path.lastIndexOf('/') ? path.mid(dot + 1).toLower() : QByteArray();
}

bool isHtmlName(const QByteArray& path)
{
    static const QList<QByteArray> extensions = {"html", "htm", "xhtml"};
    return extensions.contains(extension(path));
}

bool hasUtf16Mark(const QByteArray& bytes)
{
    return bytes.startsWith("\xFF\xFE") || bytes.startsWith("\xFE\xFF");
}

bool isBinary(const QByteArray& bytes)
{
    return !hasUtf16Mark(bytes) && (bytes.startsWith("%PDF-") || bytes.contains('\0'));
}

/// The text itself, without the part of a character that a cut may leave at its end; none when it is not UTF-8.
std::optional<QByteArray> asUtf8(const QByteArray& bytes)
{
    if (bytes.isValidUtf8())
        return bytes;
    constexpr qsizetype longestCharacter = 4;
    for (qsizetype end = bytes.size() - 1; end >= 0 && bytes.size() - end < longestCharacter; --end) {
        const bool isLead = (bytes[end] & 0xC0) == 0xC0;
        if (isLead && bytes.first(end).isValidUtf8())
            return bytes.first(end);
    }
    return std::nullopt;
}

/// By the declared encoding; of an encoding of several bytes a character the cut may have taken some.
std::optional<QString> asDeclared(const QByteArray& bytes)
{
    const auto encoding = encodingForCharset(charsetDeclaredInPage(bytes));
    constexpr qsizetype mostBytesCut = 3;
    for (qsizetype cut = 0; encoding && cut <= std::min(mostBytesCut, bytes.size()); ++cut) {
        if (auto text = fromEncoding(bytes.chopped(cut), *encoding))
            return text;
    }
    return std::nullopt;
}

/// A document is always shown, if need be with a wrong letter.
QByteArray decoded(const QByteArray& bytes, Document::Kind kind)
{
    const QByteArray content = bytes.startsWith("\xEF\xBB\xBF") ? bytes.mid(3) : bytes;
    if (const std::optional<QByteArray> utf8 = asUtf8(content))
        return *utf8;
    if (const auto declared = kind == Document::Kind::Html ? asDeclared(content) : std::nullopt)
        return declared->toUtf8();
    if (const std::optional<DecodedPage> guessed = decodePageByBytes(content))
        return guessed->text.toUtf8();
    return QString::fromLatin1(content).toUtf8();
}

} // namespace

std::optional<Document> Document::fromFile(const QByteArray& path, const QByteArray& bytes, qsizetype limit)
{
    QByteArray content = bytes;
    if (path.endsWith(".gz")) {
        const std::optional<QByteArray> expanded = gunzipped(bytes, limit + 1);
        if (!expanded)
            return std::nullopt;
        content = *expanded;
    }
    const bool isCut = content.size() > limit;
    content.truncate(limit);
    const QByteArray name = withoutGzip(path);
    if (!isCandidate(name) || isBinary(content))
        return std::nullopt;
    Document result;
    result.isCut = isCut;
    result.kind = isHtmlName(name) ? Kind::Html : Kind::Text;
    result.text = decoded(content, result.kind);
    result.title = documentTitle(result, name);
    return result;
}

bool Document::isCandidate(const QByteArray& name)
{
    static const QList<QByteArray> others = {"css", "js",  "map", "svg", "png", "gif", "jpg", "jpeg",
                                             "ico", "pdf", "ps",  "zip", "tar", "tgz", "bz2", "xz",
                                             "zst", "so",  "o",   "a",   "db",  "ttf"};
    return !others.contains(extension(withoutGzip(name)));
}

QByteArray Document::plainText() const
{
    return collapsed(kind == Kind::Html ? HtmlText::fromPage(text).body : text);
}

QByteArray Document::page() const
{
    if (kind == Kind::Html)
        return text;
    return "<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>" + escapedMarkup(title) +
           "</title></head>\n<body><pre>\n" + escapedMarkup(text) + "</pre>" +
           (isCut ? "<p>The document goes on; only its beginning is shown here.</p>" : "") + "</body></html>\n";
}

QByteArray collapsed(const QByteArray& text)
{
    QByteArray result(text.size(), Qt::Uninitialized);
    char* to = result.data();
    bool pendingSpace = false;
    for (const char c : text) {
        if (static_cast<unsigned char>(c) <= 0x20 || c == 0x7F) {
            pendingSpace = to != result.data();
            continue;
        }
        if (pendingSpace)
            *to++ = ' ';
        pendingSpace = false;
        *to++ = c;
    }
    result.truncate(to - result.data());
    return result;
}

} // namespace quarry
