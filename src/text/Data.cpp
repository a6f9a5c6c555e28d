#include "text/Data.h"

#include "text/PercentEscapes.h"

#include <openssl/evp.h>
#include <zlib.h>

#include <algorithm>
#include <array>

namespace quarry {

namespace {

constexpr qsizetype decompressionLimit = qsizetype{256} * 1024 * 1024;

Bytef* bytes(QByteArray& data)
{
    return reinterpret_cast<Bytef*>(data.data());
}

/// An inflating stream over bytes that outlive it. Ends itself unless `finish` did.
class Inflater final {
public:
    explicit Inflater(const QByteArray& in)
    {
        _stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(in.constData()));
        _stream.avail_in = static_cast<uInt>(in.size());
        _open = inflateInit(&_stream) == Z_OK;
    }
    ~Inflater() { (void)finish(); }
    Inflater(const Inflater&) = delete;
    Inflater& operator=(const Inflater&) = delete;

    [[nodiscard]] bool isOpen() const { return _open; }
    [[nodiscard]] qsizetype written() const { return static_cast<qsizetype>(_stream.total_out); }
    /// Writes behind what was written so far; zlib's return value.
    int inflateInto(QByteArray& out)
    {
        _stream.next_out = bytes(out) + written();
        _stream.avail_out = static_cast<uInt>(out.size() - written());
        return inflate(&_stream, Z_SYNC_FLUSH);
    }
    [[nodiscard]] bool finish()
    {
        const bool ended = _open && inflateEnd(&_stream) == Z_OK;
        _open = false;
        return ended;
    }

private:
    z_stream _stream{};
    bool _open = false;
};

} // namespace

std::optional<QByteArray> compressedData(const QByteArray& data)
{
    if (data.isEmpty())
        return std::nullopt;
    auto size = static_cast<uLongf>(static_cast<double>(data.size()) * 1.001 + 12.0);
    QByteArray out(static_cast<qsizetype>(size), Qt::Uninitialized);
    const auto* in = reinterpret_cast<const Bytef*>(data.constData());
    if (compress(bytes(out), &size, in, static_cast<uLong>(data.size())) != Z_OK)
        return std::nullopt;
    out.resize(static_cast<qsizetype>(size));
    return out;
}

std::optional<QByteArray> decompressedData(const QByteArray& data)
{
    if (data.isEmpty())
        return data;
    if (data.size() > decompressionLimit)
        return std::nullopt;
    Inflater inflater(data);
    if (!inflater.isOpen())
        return std::nullopt;
    const qsizetype step = data.size() / 2;
    QByteArray out(data.size() + step, Qt::Uninitialized);
    int state = Z_OK;
    while (state == Z_OK) {
        // The array's own capacity grows faster than this, so a small stream of a large text costs no copy a step.
        if (inflater.written() == out.size())
            out.resize(std::min(out.size() + step, decompressionLimit));
        state = inflater.inflateInto(out);
    }
    out.truncate(inflater.written());
    if (state != Z_STREAM_END || !inflater.finish())
        return std::nullopt;
    return out;
}

QString hexaString(const QByteArray& data)
{
    return QString::fromLatin1(data.toHex().toUpper());
}

QString md5sum(const QString& text)
{
    const QByteArray utf8 = text.toUtf8();
    QByteArray digest(EVP_MAX_MD_SIZE, '\0');
    unsigned size = 0;
    if (EVP_Digest(utf8.constData(), static_cast<size_t>(utf8.size()), reinterpret_cast<unsigned char*>(digest.data()),
                   &size, EVP_md5(), nullptr) != 1)
        return {};
    digest.truncate(static_cast<qsizetype>(size));
    return QString::fromLatin1(digest.toHex());
}

quint64 hexValue(QStringView text)
{
    quint64 value = 0;
    for (const QChar c : text) {
        const int digit = hexDigitValue(c.unicode());
        if (digit < 0)
            break;
        value = value * 16 + static_cast<quint64>(digit);
    }
    return value;
}

} // namespace quarry
