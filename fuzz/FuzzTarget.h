#pragma once

#include <QByteArray>

#include <cstdint>
#include <cstdio>
#include <cstdlib>

/// What the fuzzer calls with bytes of its making.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

inline QByteArray inputOf(const std::uint8_t* data, std::size_t size)
{
    return {reinterpret_cast<const char*>(data), static_cast<qsizetype>(size)};
}

/// Ends the program, which the fuzzer takes for a find.
inline void require(bool holds, const char* what)
{
    if (!holds) {
        std::fprintf(stderr, "%s\n", what);
        std::abort();
    }
}
