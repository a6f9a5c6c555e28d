#pragma once

namespace quarry {

/// C0, DEL and C1: what could drive a terminal.
[[nodiscard]] constexpr bool isControl(char16_t c)
{
    return c < 0x20 || (c >= 0x7f && c <= 0x9f);
}

/// Marks that turn the direction of what follows, and the separators that break lines.
[[nodiscard]] constexpr bool isLayoutMark(char16_t c)
{
    return (c >= 0x2028 && c <= 0x202e) || (c >= 0x2066 && c <= 0x2069) || c == 0x200e || c == 0x200f || c == 0x061c;
}

} // namespace quarry
