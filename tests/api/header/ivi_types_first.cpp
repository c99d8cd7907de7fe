#include "tests/api/header/ivi_types_first.c"
