#include "platform/FileStore.h"

namespace quarry {

Date FileStamp::modificationDate() const
{
    return Date::fromUnixSeconds(static_cast<double>(modifiedNanoseconds) / 1e9);
}

FileStore::WriteResult FileStore::replace(const QString& path, const QString& temporaryPrefix, unsigned mode,
                                          const QByteArray& bytes)
{
    return replace(path, temporaryPrefix, mode, [&bytes](ByteSink& sink) {
        return sink.append(bytes.constData(), static_cast<std::size_t>(bytes.size()));
    });
}

} // namespace quarry
