#include "tests/support/time_limit.h"

#include <csignal>

#include <unistd.h>

void kvxtest::restartTimeLimit(void (*handler)(int signal))
{
    constexpr unsigned kSeconds = 300;
    std::signal(SIGALRM, handler);
    ::alarm(kSeconds);
}
