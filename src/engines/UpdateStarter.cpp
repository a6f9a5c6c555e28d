#include "engines/UpdateStarter.h"
