#include "tests/support/driver/mock_instrument.h"

#include <utility>

namespace kvxtest
{

MockInstrument::MockInstrument() = default;

MockInstrument::MockInstrument(TSRO::Identity identity)
{
    mutableIdentity() = std::move(identity);
}

MockInstrument::~MockInstrument() = default;

} // namespace kvxtest
