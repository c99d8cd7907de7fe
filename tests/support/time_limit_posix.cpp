#include "tests/support/time_limit.h"

#include <csignal>

#include <unistd.h>

void kvxtest::restartTimeLimit(void (*handler)(int signal))
{
    constexpr unsigned kSeconds = 120;
    std::signal(SIGALRM, handler);
    ::alarm(kSeconds);
}
