// The same checks in C++.
#include "values.c" // NOLINT(bugprone-suspicious-include)
