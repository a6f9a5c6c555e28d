#include "platform/Memory.h"

#include <malloc.h>

namespace quarry {

void returnFreeMemory()
{
#ifdef __GLIBC__
    ::malloc_trim(0);
#endif
}

} // namespace quarry
