#pragma once

namespace kvxtest
{

/// Raises a signal, handled by the function, unless it is called again within five minutes; on hosts without such a
/// signal the program's own time limit has to do.
void restartTimeLimit(void (*handler)(int signal));

} // namespace kvxtest
