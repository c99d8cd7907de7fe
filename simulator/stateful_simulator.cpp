#include "simulator/stateful_simulator.h"

#include "instrument/kvx2800t.h"
#include "io/logged_connection.h"
#include "simulator/virtual_connection.h"

#include <utility>

namespace TSRO
{
namespace
{

std::chrono::nanoseconds steadyTime()
{
    return std::chrono::steady_clock::now().time_since_epoch();
}

class StatefulSimulator : public KVX2800T
{
public:
    explicit StatefulSimulator(SimulatedTime time) : time_(std::move(time)) {}

protected:
    ViStatus connect(const std::string& /*resource*/) override
    {
        port().connect(InstLink::makeConnectionWith<VirtualConnection>(port().messageLog(), time_));
        return VI_SUCCESS;
    }

private:
    SimulatedTime time_;
};

} // namespace

std::shared_ptr<InstBase> makeStatefulSimulator(SimulatedTime time)
{
    return std::make_shared<StatefulSimulator>(time ? std::move(time) : steadyTime);
}

} // namespace TSRO
