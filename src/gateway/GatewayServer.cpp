#include <httplib.h>
