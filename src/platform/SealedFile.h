#pragma once

#include <QByteArrayView>
#include <QString>

#include <cstdint>
#include <optional>

namespace quarry {

/// A copy of a file in memory that nobody can change any more, this process included: what was checked is what is used.
/// Movable; thread-safe.
class SealedFile final {
public:
    /// None for a file that is longer than the limit or cannot be read; `error` gets one line for a person.
    [[nodiscard]] static std::optional<SealedFile> copyOf(const QString& path, std::int64_t limit, QString* error);

    SealedFile(SealedFile&& other) noexcept;
    SealedFile& operator=(SealedFile&& other) noexcept;
    SealedFile(const SealedFile&) = delete;
    SealedFile& operator=(const SealedFile&) = delete;
    ~SealedFile();

    /// Valid as long as the object.
    [[nodiscard]] QByteArrayView bytes() const { return {_bytes, _size}; }
    /// The open file, for a program that is started with it.
    [[nodiscard]] int descriptor() const { return _descriptor; }

private:
    SealedFile() = default;

    int _descriptor = -1;
    const char* _bytes = nullptr;
    qsizetype _size = 0;
};

} // namespace quarry
