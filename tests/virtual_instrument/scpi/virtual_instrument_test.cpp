#include "tests/support/virtual_instrument/manual_instrument.h"
#include "tests/support/virtual_instrument/random_numbers.h"
#include "virtual_instrument/scpi/command_table.h"
#include "virtual_instrument/scpi/line_assembler.h"

#include <gtest/gtest.h>

namespace
{

using namespace kvxtest;

std::vector<std::string_view> allPatterns()
{
    std::vector<std::string_view> patterns;
    for (const auto part : kvxvirtual::commandTable())
        for (const kvxvirtual::Command& command : part)
            patterns.push_back(command.pattern);
    return patterns;
}

std::string validMessage(RandomNumbers& random)
{
    static const auto kPatterns = allPatterns();
    const auto pattern = kPatterns[random.below(kPatterns.size())];
    std::string message(pattern.substr(0, pattern.find('|')));
    if (const auto suffix = message.find("<n>"); suffix != std::string::npos)
        message.replace(suffix, 3, 1, static_cast<char>('1' + random.below(6)));
    const char* const kParameters[] = {"", " CH1", " CH1,ON", " ALL,OFF", " 5", " 1,2,3", " SER", " CH5,1e3"};
    return message + kParameters[random.below(std::size(kParameters))];
}

std::string mutated(std::string message, RandomNumbers& random)
{
    for (auto changes = random.below(4); changes > 0 && !message.empty(); --changes) {
        const auto at = random.below(message.size());
        switch (random.below(4)) {
        case 0:
            message[at] = static_cast<char>(random.below(256));
            break;
        case 1:
            message.erase(at, 1 + random.below(3));
            break;
        case 2:
            message.insert(at, 1, ":;,\"'?* \t\0#+-9"[random.below(14)]);
            break;
        default:
            message += message.substr(at);
            break;
        }
    }
    return message;
}

TEST(Garbage, LeavesTheInstrumentWellAndAnswering)
{
    RandomNumbers random(20261121);
    ManualInstrument device;
    for (int round = 0; round < 20'000; ++round) {
        const auto message = mutated(validMessage(random), random);
        const auto reply = device.exchange(message);
        if (!reply.empty()) {
            ASSERT_EQ(reply.back(), '\n') << message;
            ASSERT_EQ(reply.find('\n'), reply.size() - 1) << message;
        }
        if (round % 100 == 0)
            device.control("advance 1000");
    }
    device.exchange("*CLS;*RST");
    EXPECT_EQ(device.exchange("*IDN?"), "Tessaro Instruments,KVX2833T,VIRT0000001,V1.00\n");
    EXPECT_EQ(device.exchange("*ESR?;:SYST:ERR?"), "0;0,\"No error\"\n");
}

TEST(Garbage, LongMessagesOfEveryCharacterAreSurvived)
{
    ManualInstrument device;
    for (int byte = 0; byte < 256; ++byte)
        device.exchange(std::string(kvxvirtual::LineAssembler::kLongestLine, static_cast<char>(byte)));
    EXPECT_EQ(device.exchange("*OPC?"), "1\n");
}

TEST(Garbage, MutatedControlLinesAreAnsweredWithOkOrError)
{
    RandomNumbers random(20261121);
    ManualInstrument device;
    const char* const kLines[] = {"load CH1 10",      "inject -350 \"text\"",
                                  "answer a\\r\\x41", "swallow 1",
                                  "delay 1",          "power-cycle",
                                  "advance 10",       "esr 4",
                                  "clear-log",        "help"};
    for (int round = 0; round < 5'000; ++round) {
        const auto line = mutated(kLines[random.below(std::size(kLines))], random);
        const auto answer = device.control(line);
        ASSERT_TRUE(answer.starts_with("ok") || answer.starts_with("error ")) << line;
        ASSERT_EQ(answer.back(), '\n') << line;
    }
}

} // namespace
