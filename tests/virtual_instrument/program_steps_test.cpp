#include "manual_instrument.h"

#include <gtest/gtest.h>
#include <initializer_list>
#include <random>
#include <vector>

namespace
{

using namespace kvxtest;

/// The same sequence on every host: a distribution of the standard library would not be.
class Random
{
public:
    int between(int least, int most)
    {
        return least + static_cast<int>(engine_() % static_cast<unsigned int>(most - least + 1));
    }

private:
    std::mt19937 engine_{20270114};
};

std::string milliseconds(int count)
{
    return std::to_string(count) + "e-3";
}

std::string oneOf(Random& random, const char* one, const char* other)
{
    return random.between(0, 1) == 0 ? one : other;
}

/// Words joined by "," behind a header.
std::string message(const std::string& header, std::initializer_list<std::string> words)
{
    std::string text = header;
    char separator = ' ';
    for (const auto& word : words) {
        text += separator;
        text += word;
        separator = ',';
    }
    return text;
}

/// Messages that set up a program and a protection which may or may not trip on it.
std::vector<std::string> randomProgram(Random& random)
{
    std::vector<std::string> messages = {
        "*CLS;:SOUR1:VOLT 6;CURR 1;:OUTP:OCP:VAL CH1,0.75;STAT CH1,ON",
        message("OUTP:OCP:DEL", {"CH1", milliseconds(random.between(0, 120))}),
        message("LIST:CYCLE", {std::to_string(random.between(0, 60))}),
        message("LIST:ENDS", {oneOf(random, "OFF", "LAST")}),
        message("DELAY:CYCLE", {std::to_string(random.between(0, 60))}),
        message("DELAY:ENDS", {oneOf(random, "ON", "LAST")}),
        message("SOUR1:VOLT", {oneOf(random, "7", "8")}),
    };
    const int groups = random.between(1, 6);
    for (int i = 1; i <= groups; ++i) {
        const auto number = std::to_string(i);
        const auto time = milliseconds(random.between(1, 60));
        const auto volts = std::to_string(random.between(4, 9));
        const auto amperes = std::to_string(random.between(5, 10)) + "e-1";
        messages.push_back(message("LIST:GROUP:PARA", {number, volts, amperes, time}));
        messages.push_back(message("DELAY:GROUP:PARA", {number, oneOf(random, "ON", "OFF"), time}));
    }
    messages.push_back(oneOf(random, "DELAY:STAT ON", "OUTP:STAT CH1,ON;:LIST:STAT ON"));
    return messages;
}

std::string everythingAbout(ManualInstrument& device)
{
    return device.exchange("LIST:STATUS?;:DELAY:STATUS?;:OUTP:STAT? CH1;:MEAS:ALL? CH1;:SOUR1:VOLT?;CURR?;"
                           ":STAT:QUES:INST:ISUM1:COND?;EVEN?");
}

TEST(Programs, OneLongStepOfTimeComesToTheSameAsManyShortOnes)
{
    Random random;
    int stillActive = 0;
    for (int round = 0; round < 300; ++round) {
        ManualInstrument atOnce;
        ManualInstrument stepByStep;
        atOnce.control("load CH1 10");
        stepByStep.control("load CH1 10");
        for (const auto& sent : randomProgram(random)) {
            ASSERT_EQ("", atOnce.exchange(sent)) << sent;
            ASSERT_EQ("", stepByStep.exchange(sent)) << sent;
        }
        const int time = random.between(1, 4000);
        atOnce.control("advance " + std::to_string(time));
        for (int i = 0; i < time; ++i)
            stepByStep.control("advance 1");
        const auto state = everythingAbout(atOnce);
        ASSERT_EQ(everythingAbout(stepByStep), state) << "round " << round << " after " << time << " ms";
        ASSERT_EQ(kNoError, atOnce.error());
        stillActive += state.find("RUNNING") != std::string::npos ? 1 : 0;
    }
    // Both kinds must come up for the comparison to mean something.
    EXPECT_GT(stillActive, 30);
    EXPECT_LT(stillActive, 270);
}

} // namespace
