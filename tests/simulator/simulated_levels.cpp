// Prints the first voltage levels of a simulated instrument, in a process whose generator nobody has seeded.

#include "simulator/kvx2800t_simulator.h"

#include <cstdio>

int main()
{
    TSRO::KVX2800TSimulator simulator;
    for (ViInt32 channel = 1; channel <= 6; ++channel) {
        double volts = 0.0;
        if (simulator.voltageLevel(channel, volts) != 0)
            return 1;
        std::printf("%.17g\n", volts);
    }
    return 0;
}
