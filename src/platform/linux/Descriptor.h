#pragma once

#include <unistd.h>

#include <utility>

namespace quarry {

/// A file descriptor that closes itself; negative when there is none.
class Descriptor final {
public:
    explicit Descriptor(int value) : _value(value) {}
    Descriptor(Descriptor&& other) noexcept : _value(other.release()) {}
    Descriptor& operator=(Descriptor&& other) noexcept
    {
        std::swap(_value, other._value);
        return *this;
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    ~Descriptor() { close(); }

    [[nodiscard]] int get() const { return _value; }
    [[nodiscard]] bool isOpen() const { return _value >= 0; }
    /// Without closing it.
    [[nodiscard]] int release() { return std::exchange(_value, -1); }
    /// False when the file system reports a fault only now, as network file systems do.
    bool close() { return _value < 0 || ::close(std::exchange(_value, -1)) == 0; }

private:
    int _value;
};

} // namespace quarry
