#include "archive/OpaqueObject.h"
