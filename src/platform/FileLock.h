#pragma once

#include <QString>

#include <chrono>
#include <optional>

namespace quarry {

/// An advisory lock on a file (flock, close-on-exec), let go when the object goes away or the process ends
/// however it ends. Movable; held by one owner.
class FileLock final {
public:
    FileLock() = default;
    FileLock(FileLock&& other) noexcept;
    FileLock& operator=(FileLock&& other) noexcept;
    FileLock(const FileLock&) = delete;
    FileLock& operator=(const FileLock&) = delete;
    ~FileLock();

    /// Takes the lock if nobody holds it. The file is created when missing (its folder must exist). `fault` (may be
    /// null) gets one line for a person when it cannot be taken at all; it stays as it is when somebody holds it.
    [[nodiscard]] static std::optional<FileLock> tryAcquire(const QString& path, QString* fault = nullptr);
    /// Waits for the lock, at most that long. `error` (may be null) gets one line for a person on failure.
    [[nodiscard]] static std::optional<FileLock> acquire(const QString& path, std::chrono::milliseconds timeout,
                                                         QString* error = nullptr);

private:
    explicit FileLock(int descriptor) : _descriptor(descriptor) {}
    int _descriptor = -1;
};

} // namespace quarry
