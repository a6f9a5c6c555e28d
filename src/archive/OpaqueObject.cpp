#include "archive/OpaqueObject.h"

namespace quarry {

static bool same(const std::shared_ptr<const OpaqueObject>& a, const std::shared_ptr<const OpaqueObject>& b)
{
    return a == b || (a && b && *a == *b);
}

bool operator==(const OpaqueObject& a, const OpaqueObject& b)
{
    return a._archive == b._archive && a._plistIndex == b._plistIndex;
}

bool operator==(const OpaqueEntry& a, const OpaqueEntry& b)
{
    return a.key == b.key && same(a.keyObject, b.keyObject) && same(a.value, b.value);
}

} // namespace quarry
