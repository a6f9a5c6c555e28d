#include "platform/LargePages.h"

#include <sys/mman.h>

#include <cstdint>

namespace quarry {

void preferLargePages(void* memory, std::size_t size)
{
    constexpr std::uintptr_t LargePage = std::uintptr_t(2) << 20;
    constexpr std::uintptr_t Page = 4096;
    // Smaller blocks gain nothing and would be rounded up.
    if (size < 4 * LargePage)
        return;
    const auto begin = (reinterpret_cast<std::uintptr_t>(memory) + Page - 1) / Page * Page;
    const auto end = (reinterpret_cast<std::uintptr_t>(memory) + size) / Page * Page;
    ::madvise(reinterpret_cast<void*>(begin), end - begin, MADV_HUGEPAGE);
}

} // namespace quarry
