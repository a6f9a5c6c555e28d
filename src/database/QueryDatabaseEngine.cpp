#include "database/QueryDatabaseEngine.h"
