#include "tests/support/virtual_instrument/manual_instrument.h"
#include "tests/support/virtual_instrument/random_numbers.h"

#include <gtest/gtest.h>

#include <vector>

namespace
{

using namespace kvxtest;

std::string milliseconds(int count)
{
    return std::to_string(count) + "e-3";
}

/// Messages that set up a program and a protection which may or may not trip on it.
std::vector<std::string> randomProgram(RandomNumbers& random)
{
    std::vector<std::string> messages = {
        "*RST;*CLS;:SOUR1:VOLT 6;CURR 1",
        "OUTP:OCP:VAL CH1,0.75;DEL CH1," + milliseconds(random.between(0, 120)) + ";STAT CH1,ON",
        "LIST:CYCLE " + std::to_string(random.between(0, 60)) + ";ENDS " + (random.between(0, 1) == 0 ? "OFF" : "LAST"),
        "DELAY:CYCLE " + std::to_string(random.between(0, 60)) + ";ENDS " + (random.between(0, 1) == 0 ? "ON" : "LAST"),
    };
    const bool delay = random.between(0, 1) == 0;
    const int groups = random.between(1, 6);
    for (int number = 1; number <= groups; ++number) {
        const auto time = milliseconds(random.between(1, 60));
        const auto volts = std::to_string(random.between(4, 9));
        const auto amperes = std::to_string(random.between(5, 10)) + "e-1";
        messages.push_back("LIST:GROUP:PARA " + std::to_string(number) + ',' + volts + ',' + amperes + ',' + time);
        messages.push_back("DELAY:GROUP:PARA " + std::to_string(number) + ',' +
                           (random.between(0, 1) == 0 ? "ON," : "OFF,") + time);
        if (delay)
            messages.push_back("SOUR1:VOLT " + volts);
    }
    messages.emplace_back(delay ? "DELAY:STAT ON" : "OUTP:STAT CH1,ON;:LIST:STAT ON");
    return messages;
}

std::string everythingAbout(ManualInstrument& device)
{
    return device.exchange("LIST:STATUS?;:DELAY:STATUS?;:OUTP:STAT? CH1;:MEAS:ALL? CH1;:SOUR1:VOLT?;CURR?;"
                           ":STAT:QUES:INST:ISUM1:COND?;EVEN?");
}

TEST(Programs, OneLongStepOfTimeComesToTheSameAsManyShortOnes)
{
    RandomNumbers random(20270114);
    int stillActive = 0;
    for (int round = 0; round < 300; ++round) {
        ManualInstrument atOnce;
        ManualInstrument stepByStep;
        atOnce.control("load CH1 10");
        stepByStep.control("load CH1 10");
        for (const auto& message : randomProgram(random)) {
            ASSERT_EQ(atOnce.exchange(message), "") << message;
            ASSERT_EQ(stepByStep.exchange(message), "") << message;
        }
        const int time = random.between(1, 4000);
        atOnce.control("advance " + std::to_string(time));
        for (int i = 0; i < time; ++i)
            stepByStep.control("advance 1");
        const auto state = everythingAbout(atOnce);
        ASSERT_EQ(state, everythingAbout(stepByStep)) << "round " << round << " after " << time << " ms";
        ASSERT_EQ(atOnce.error(), kNoError);
        stillActive += state.find("RUNNING") != std::string::npos ? 1 : 0;
    }
    // Both kinds must come up for the comparison to mean something.
    EXPECT_GT(stillActive, 30);
    EXPECT_LT(stillActive, 270);
}

} // namespace
