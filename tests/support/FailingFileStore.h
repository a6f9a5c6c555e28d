#pragma once

#include "platform/FileStore.h"

#include <atomic>
#include <functional>

namespace quarry::test {

/// The real file store, until it is told to fail. Thread-safe but for the functions, which are set first.
class FailingFileStore final : public FileStore {
public:
    using FileStore::replace;

    std::atomic<bool> failReads{false};
    std::atomic<bool> failWrites{false};
    mutable std::atomic<int> stamps{0};
    mutable std::atomic<int> reads{0};
    std::atomic<int> replacements{0};
    /// Called before each replacement, with its path.
    std::function<void(const QString&)> beforeReplace;

    /// Called after each reading, before its result is given out.
    std::function<void(const QString&)> afterRead;

    [[nodiscard]] std::optional<FileStamp> stamp(const QString& path) const override
    {
        ++stamps;
        return _disk.stamp(path);
    }
    [[nodiscard]] ReadResult read(const QString& path) const override
    {
        ++reads;
        if (failReads)
            return {{}, {}, QStringLiteral("cannot read %1: Input/output error").arg(path)};
        ReadResult result = _disk.read(path);
        if (afterRead)
            afterRead(path);
        return result;
    }
    [[nodiscard]] WriteResult replace(const QString& path, const QString& temporaryPrefix, unsigned mode,
                                      const Producer& producer) override
    {
        if (beforeReplace)
            beforeReplace(path);
        ++replacements;
        return failWrites ? full(path) : _disk.replace(path, temporaryPrefix, mode, producer);
    }
    [[nodiscard]] WriteResult create(const QString& path, const QString& temporaryPrefix, unsigned mode,
                                     const QByteArray& bytes) override
    {
        return failWrites ? full(path) : _disk.create(path, temporaryPrefix, mode, bytes);
    }

private:
    static WriteResult full(const QString& path)
    {
        WriteResult result;
        result.error = QStringLiteral("cannot write %1: No space left on device").arg(path);
        return result;
    }

    DiskFileStore _disk;
};

} // namespace quarry::test
