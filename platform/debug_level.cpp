#include "include/vornak_host.h"

int g_debug_level = 0;
