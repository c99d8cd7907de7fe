#include "tests/support/processes/own_network.h"

namespace kvxtest
{

std::string enterOwnNetwork()
{
    return "Windows has no networks for single programs";
}

} // namespace kvxtest
