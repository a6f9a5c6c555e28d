#include "gateway/Gzip.h"

#include <zlib.h>

#include <algorithm>
#include <memory>

namespace quarry {

std::optional<QByteArray> gunzipped(const QByteArray& file, qsizetype limit)
{
    z_stream stream = {};
    constexpr int gzipOnly = 15 + 16;
    if (inflateInit2(&stream, gzipOnly) != Z_OK)
        return std::nullopt;
    const auto end = [](z_stream* s) { inflateEnd(s); };
    const std::unique_ptr<z_stream, decltype(end)> ender(&stream, end);

    QByteArray input = file; // zlib asks for bytes it may change, and does not.
    QByteArray result;
    stream.next_in = reinterpret_cast<Bytef*>(input.data());
    stream.avail_in = static_cast<uInt>(input.size());
    int status = Z_OK;
    while (status == Z_OK && result.size() < limit) {
        const qsizetype had = result.size();
        result.resize(std::min(limit, std::max<qsizetype>(2 * had, qsizetype(64) * 1024)));
        stream.next_out = reinterpret_cast<Bytef*>(result.data() + had);
        stream.avail_out = static_cast<uInt>(result.size() - had);
        status = inflate(&stream, Z_NO_FLUSH);
        result.truncate(result.size() - stream.avail_out);
        // One file may hold several streams, one after the other.
        if (status == Z_STREAM_END && stream.avail_in > 0 && *stream.next_in == 0x1F)
            status = inflateReset(&stream);
    }
    if (status == Z_DATA_ERROR && result.isEmpty())
        return std::nullopt;
    return result;
}

} // namespace quarry
