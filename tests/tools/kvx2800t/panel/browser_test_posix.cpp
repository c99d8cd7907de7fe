#include "tests/support/environment.h"
#include "tests/support/processes/child_process.h"
#include "tests/support/temporary_folder.h"
#include "tools/kvx2800t/panel/host.h"

#include <filesystem>
#include <fstream>
#include <gtest/gtest.h>
#include <string>
#include <thread>
#include <unistd.h>

namespace fs = std::filesystem;

// An xdg-open of the test's own: it writes the address down, and whether it has a descriptor of this program.
TEST(PanelBrowser, IsStartedWithTheAddressAndNothingOfThePanels)
{
    const kvxtest::TemporaryFolder folder;
    const fs::path program = folder.path() / "xdg-open";
    const fs::path written = folder.path() / "written";
    constexpr int kDescriptor = 200;
    ASSERT_EQ(::dup2(STDOUT_FILENO, kDescriptor), kDescriptor);
    std::ofstream(program) << "#!/bin/sh\n[ -e /proc/$$/fd/200 ] && had=inherited || had=nothing\n"
                           << "echo \"$1 $had\" >'" << written.string() << ".new'\n"
                           << "mv '" << written.string() << ".new' '" << written.string() << "'\n";
    fs::permissions(program, fs::perms::owner_all);
    const std::string folders = folder.path().string() + ":/usr/bin:/bin";
    const kvxtest::EnvironmentVariable path("PATH", folders.c_str());
    panel::openBrowser("http://127.0.0.1:80/?token=1&x='2'");
    while (!fs::exists(written))
        std::this_thread::sleep_for(kvxtest::kPollInterval);
    ::close(kDescriptor);
    std::string line;
    std::getline(std::ifstream(written), line);
    EXPECT_EQ(line, "http://127.0.0.1:80/?token=1&x='2' nothing");
}
