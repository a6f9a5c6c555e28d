#include "text/Uuid.h"

#include <QRandomGenerator>

#include <array>

namespace quarry {

namespace {

/// The system is asked for a seed once a thread: asking it takes much longer than everything else.
std::array<quint32, 4> randomBits()
{
    thread_local QRandomGenerator64 generator = QRandomGenerator64::securelySeeded();
    std::array<quint32, 4> bits = {};
    generator.fillRange(bits.data(), qsizetype(bits.size()));
    return bits;
}

} // namespace

QString UUIDString()
{
    std::array<quint32, 4> bits = randomBits();
    bits[1] = (bits[1] & 0xffff0fffU) | 0x4000U;     // version 4: random
    bits[2] = (bits[2] & 0x3fffffffU) | 0x80000000U; // the usual variant
    QString text(36, u'-');
    QChar* out = text.data();
    for (int digit = 0; digit < 32; ++digit) {
        if (digit == 8 || digit == 12 || digit == 16 || digit == 20)
            ++out;
        const quint32 value = (bits[static_cast<std::size_t>(digit / 8)] >> (28 - 4 * (digit % 8))) & 0xfU;
        *out++ = QChar(u"0123456789ABCDEF"[value]);
    }
    return text;
}

} // namespace quarry
