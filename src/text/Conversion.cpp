#include "text/EncodingTable.h"
#include "text/PageDecoding.h"
#include "text/UnitSearch.h"

#include <QByteArrayView>
#include <QStringDecoder>

#include <unicode/ucnv.h>

#include <algorithm>
#include <memory>

namespace quarry {

namespace {

struct CloseConverter {
    void operator()(UConverter* converter) const { ucnv_close(converter); }
};
using Converter = std::unique_ptr<UConverter, CloseConverter>;

Converter openConverter(const char* name)
{
    UErrorCode status = U_ZERO_ERROR;
    return Converter(ucnv_open(name, &status));
}

/// The converters count in 32 bits.
constexpr qsizetype conversionLimit = qsizetype{512} * 1024 * 1024;

std::optional<QString> convertStrictly(const QByteArray& bytes, const char* name)
{
    const Converter converter = openConverter(name);
    UErrorCode status = U_ZERO_ERROR;
    if (!converter || bytes.size() > conversionLimit)
        return std::nullopt;
    ucnv_setToUCallBack(converter.get(), UCNV_TO_U_CALLBACK_STOP, nullptr, nullptr, nullptr, &status);
    // No encoding of the table makes more units than it has bytes.
    QString text(bytes.size() + 1, Qt::Uninitialized);
    const int32_t units =
        ucnv_toUChars(converter.get(), reinterpret_cast<UChar*>(text.data()), static_cast<int32_t>(text.size()),
                      bytes.constData(), static_cast<int32_t>(bytes.size()), &status);
    if (U_FAILURE(status))
        return std::nullopt;
    text.truncate(units);
    return text;
}

QByteArray convertLossily(const QString& text, const char* name)
{
    const Converter converter = openConverter(name);
    UErrorCode status = U_ZERO_ERROR;
    if (!converter || text.size() > conversionLimit)
        return text.toUtf8();
    ucnv_setFallback(converter.get(), false);
    ucnv_setFromUCallBack(converter.get(), UCNV_FROM_U_CALLBACK_SUBSTITUTE, nullptr, nullptr, nullptr, &status);
    ucnv_setSubstString(converter.get(), u"?", 1, &status);
    const auto* units = reinterpret_cast<const UChar*>(text.utf16());
    const auto count = static_cast<int32_t>(text.size());
    QByteArray bytes(UCNV_GET_MAX_BYTES_FOR_STRING(count, ucnv_getMaxCharSize(converter.get())), Qt::Uninitialized);
    status = U_ZERO_ERROR;
    const int32_t length =
        ucnv_fromUChars(converter.get(), bytes.data(), static_cast<int32_t>(bytes.size()), units, count, &status);
    bytes.truncate(U_FAILURE(status) ? 0 : length);
    return bytes;
}

bool isAscii(QStringView text)
{
    const char16_t* const end = text.utf16() + text.size();
    return findUnit(text.utf16(), end, [](auto unit) { return unit >= u'\x80'; }) == end;
}

bool hasSurrogate(QStringView text)
{
    const char16_t* const end = text.utf16() + text.size();
    return findUnit(text.utf16(), end, [](auto unit) { return (unit >= u'\xD800') & (unit < u'\xE000'); }) != end;
}

} // namespace

std::optional<QString> strictUtf8(const QByteArray& bytes)
{
    QStringDecoder decoder(QStringDecoder::Utf8, QStringConverter::Flag::Stateless);
    QString text = decoder(bytes);
    if (decoder.hasError())
        return std::nullopt;
    return text;
}

std::optional<QString> fromEncoding(const QByteArray& bytes, EncodingNumber encoding)
{
    if (encoding == utf8Encoding)
        return strictUtf8(bytes);
    if (encoding == latin1Encoding)
        return QString::fromLatin1(bytes);
    const Encoding* row = findEncoding(encoding);
    return row != nullptr ? convertStrictly(bytes, row->converter) : std::nullopt;
}

QByteArray toEncoding(const QString& text, EncodingNumber encoding)
{
    const Encoding* row = findEncoding(encoding);
    if (row == nullptr || encoding == utf8Encoding)
        return text.toUtf8();
    return convertLossily(text, row->converter);
}

std::optional<QString> rereadAsUtf8(const QString& text, EncodingNumber encoding)
{
    if (encoding == utf8Encoding && !hasSurrogate(text))
        return text;
    if ((encoding == latin1Encoding || encoding == windows1252Encoding) && isAscii(text))
        return text;
    return strictUtf8(toEncoding(text, encoding));
}

} // namespace quarry
