#include "tests/support/temporary_folder.h"
#include "visa/transport/serial/serial_ports_posix.h"

#include <gmock/gmock.h>

#include <array>
#include <filesystem>
#include <fstream>

namespace
{

using testing::ElementsAre;
using testing::IsEmpty;

/// Folders that look like the host's; their devices are those that every host has.
class SerialPorts : public testing::Test
{
protected:
    void SetUp() override
    {
        std::filesystem::create_directories(places_.devices);
        std::filesystem::create_directories(places_.facts);
    }

    void addDevice(const std::string& name, const std::string& device)
    {
        std::filesystem::create_symlink(device, places_.devices + '/' + name);
    }

    void setType(const std::string& name, const std::string& type)
    {
        std::filesystem::create_directories(places_.facts + '/' + name);
        std::ofstream(places_.facts + '/' + name + "/type") << type << '\n';
    }

    std::vector<std::string> names(const std::vector<std::string>& environment = {})
    {
        std::vector<const char*> entries;
        entries.reserve(environment.size() + 1);
        for (const std::string& entry : environment)
            entries.push_back(entry.c_str());
        entries.push_back(nullptr);
        places_.environment = entries.data();
        return visa::serialPortNames(places_);
    }

    kvxtest::TemporaryFolder folder_;
    visa::SerialPlaces places_{(folder_.path() / "dev").string(), (folder_.path() / "tty").string(), nullptr};
};

TEST_F(SerialPorts, AreNamedByTheirNumbersOrTheirDevices)
{
    addDevice("ttyUSB10", "/dev/null");
    addDevice("ttyUSB2", "/dev/zero");
    addDevice("ttyACM0", "/dev/full");
    addDevice("ttyS0", "/dev/random");
    addDevice("ttyS11", "/dev/urandom");
    EXPECT_THAT(names(), ElementsAre("ASRL1::INSTR", "ASRL12::INSTR", "ASRL/dev/ttyUSB2::INSTR",
                                     "ASRL/dev/ttyUSB10::INSTR", "ASRL/dev/ttyACM0::INSTR"));
}

TEST_F(SerialPorts, VariablesComeFirstAndTakeTheNumber)
{
    addDevice("ttyS0", "/dev/random");
    addDevice("ttyUSB0", "/dev/zero");
    const std::string variable = "VISA_ASRL1=" + places_.devices + "/ttyUSB0";
    EXPECT_THAT(names({"VISA_ASRL20=/dev/null", variable, "HOME=/"}),
                ElementsAre("ASRL1::INSTR", "ASRL20::INSTR", "ASRL/dev/ttyS0::INSTR"));
}

TEST_F(SerialPorts, OneDeviceHasOneName)
{
    addDevice("ttyUSB0", "/dev/zero");
    EXPECT_THAT(names({"VISA_ASRL7=/dev/zero", "VISA_ASRL8=/dev/zero"}), ElementsAre("ASRL7::INSTR"));
}

TEST_F(SerialPorts, WhatIsNoDeviceOrHasNoHardwareIsLeftOut)
{
    addDevice("ttyS0", "/dev/random");
    addDevice("ttyS1", "/dev/zero");
    addDevice("ttyS2", "/no/such/device");
    addDevice("ttyS", "/dev/null");
    addDevice("ttyS03", "/dev/null");
    addDevice("ttyUSBx", "/dev/null");
    addDevice("tty1", "/dev/null");
    addDevice("ttyS70000", "/dev/null");
    std::ofstream(places_.devices + "/ttyUSB0") << "a file";
    setType("ttyS0", "0");
    setType("ttyS1", "4");
    EXPECT_THAT(names({"VISA_ASRL3=/no/such/device", "VISA_ASRL4=", "VISA_ASRL05=/dev/null", "VISA_ASRL=/dev/null",
                       "VISA_ASRLx=/dev/null", "VISA_ASRL6", "XVISA_ASRL6=/dev/null"}),
                ElementsAre("ASRL2::INSTR"));
}

TEST_F(SerialPorts, FoldersThatAreNotThereHaveNone)
{
    places_ = {"/no/such/folder", "/no/such/folder", nullptr};
    EXPECT_THAT(visa::serialPortNames(places_), IsEmpty());
}

} // namespace
