#include "tests/support/driver/recorded_error.h"
#include "tests/support/held_allocations.h"
#include "tests/support/open_descriptors.h"

#include "tests/support/processes/virtual_instrument_process.h"
#include "tests/support/shared_library.h"

#include <KVX2800T.h>

#include <gtest/gtest.h>

#include <windows.h>

#include <array>
#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

// What is peculiar to the driver as a DLL: loading and unloading, the search for the platform's libraries, the version
// resource. The folder of this program has none of the platform's libraries.

namespace kvxtest
{
namespace
{

namespace fs = std::filesystem;

constexpr ViStatus kLibraryMissing = status(0xBFFF009E);

/// A folder with a copy of the driver, to which libraries of the platform are added. It is emptied first and not at the
/// end: libraries in use cannot be removed.
class DriverFolder
{
public:
    explicit DriverFolder(const wchar_t* name) : folder_(fs::path(KVX_FOLDER) / name)
    {
        fs::remove_all(folder_);
        fs::create_directories(folder_);
        fs::copy_file(KVX_DRIVER_FILE, driver());
    }

    fs::path driver() const { return folder_ / fs::path(KVX_DRIVER_FILE).filename(); }

    void add(const char* library, const char* as = nullptr) const
    {
        fs::copy_file(library, folder_ / (as == nullptr ? fs::path(library).filename() : fs::path(as)));
    }

    /// Where an installation of which this is Bin has libraries of our own.
    void addToInstallation(const char* library) const
    {
        const fs::path platform =
            folder_.parent_path() / "Drivers/KVX2800T/Platform" / (sizeof(void*) == 8 ? "x64" : "x86");
        fs::create_directories(platform);
        fs::copy_file(library, platform / fs::path(library).filename(), fs::copy_options::overwrite_existing);
    }

private:
    const fs::path folder_;
};

std::string utf8(const fs::path& path)
{
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

/// The process's current folder, and PATH, as a test wants them.
class Surroundings
{
public:
    Surroundings(const fs::path& currentFolder, const std::wstring& path) : before_(fs::current_path())
    {
        pathBefore_.resize(
            GetEnvironmentVariableW(L"PATH", pathBefore_.data(), static_cast<DWORD>(pathBefore_.size())));
        fs::current_path(currentFolder);
        SetEnvironmentVariableW(L"PATH", path.c_str());
    }
    Surroundings(const Surroundings&) = delete;
    Surroundings& operator=(const Surroundings&) = delete;
    ~Surroundings()
    {
        fs::current_path(before_);
        SetEnvironmentVariableW(L"PATH", pathBefore_.c_str());
    }

private:
    fs::path before_;
    std::wstring pathBefore_ = std::wstring(32767, L'\0');
};

/// Init of a simulated session by a driver in a folder that has none of the platform's libraries.
ViStatus simulateAlone(const DriverFolder& folder)
{
    const SharedLibrary library(utf8(folder.driver()));
    ViSession vi = VI_NULL;
    char resource[] = "";
    const ViStatus opened = library.find<decltype(KVX2800T_InitWithOptions)>("KVX2800T_InitWithOptions")(
        resource, VI_FALSE, VI_FALSE, "Simulate=1", &vi);
    library.find<decltype(KVX2800T_close)>("KVX2800T_close")(vi);
    return opened;
}

// Ahead of the tests that find libraries, which stay loaded.
TEST(DriverDll, LoadsNoLibraryFromTheCurrentFolderNorFromARelativeOneOfPath)
{
    const DriverFolder driver(L"driver alone");
    const DriverFolder planted(L"planted");
    planted.add(KVX_SESSION_SERVICE);
    planted.add(KVX_CONFIG_SERVER);
    for (const wchar_t* const path : {L"", L".", L".;;.\\", L"planted;..\\planted"}) {
        const Surroundings surroundings(planted.driver().parent_path(), path);
        EXPECT_EQ(simulateAlone(driver), kLibraryMissing);
    }
    const Surroundings above(planted.driver().parent_path().parent_path(), L"planted");
    EXPECT_EQ(simulateAlone(driver), kLibraryMissing);
}

TEST(DriverDll, LooksForThePlatformsLibrariesBesideItselfAndInItsInstallationOnEachCallThatNeedsThem)
{
    const VirtualInstrumentProcess instrument;
    fs::remove_all(fs::path(KVX_FOLDER) / L"from none to all \u03A9\u65E5");
    const DriverFolder folder(L"from none to all \u03A9\u65E5\\Bin");
    const SharedLibrary library(utf8(folder.driver()));
    auto* const init = library.find<decltype(KVX2800T_InitWithOptions)>("KVX2800T_InitWithOptions");
    auto* const close = library.find<decltype(KVX2800T_close)>("KVX2800T_close");
    auto* const getError = library.find<decltype(KVX2800T_GetError)>("KVX2800T_GetError");
    std::string resource = instrument.resource();
    ViSession vi = 4711;

    EXPECT_EQ(init(resource.data(), VI_FALSE, VI_FALSE, "Simulate=1", &vi), kLibraryMissing);
    EXPECT_EQ(vi, ViSession{VI_NULL});
    EXPECT_EQ(close(vi), status(0xBFFA1190));
    EXPECT_EQ(getError(VI_NULL, nullptr, 0, nullptr), kLibraryMissing);

    folder.add(KVX_SESSION_SERVICE);
    EXPECT_EQ(init(resource.data(), VI_FALSE, VI_FALSE, "Simulate=1", &vi), kLibraryMissing);
    EXPECT_EQ(vi, ViSession{VI_NULL});
    ViStatus code = VI_SUCCESS;
    EXPECT_EQ(getError(VI_NULL, &code, -1, std::array<ViChar, 256>().data()), VI_SUCCESS);
    EXPECT_EQ(code, kLibraryMissing);

    folder.add(KVX_CONFIG_SERVER, KVX_OTHER_CONFIG_SERVER_NAME);
    EXPECT_EQ(init(resource.data(), VI_FALSE, VI_FALSE, "", &vi), KVX2800T_ERROR_IO);
    EXPECT_EQ(vi, ViSession{VI_NULL});
    ASSERT_EQ(init(resource.data(), VI_FALSE, VI_FALSE, "Simulate=1", &vi), VI_SUCCESS);
    EXPECT_EQ(close(vi), VI_SUCCESS);

    folder.addToInstallation(KVX_VISA);
    ASSERT_EQ(init(resource.data(), VI_TRUE, VI_FALSE, "", &vi), VI_SUCCESS);
    EXPECT_EQ(close(vi), VI_SUCCESS);
}

TEST(DriverDll, LoadingItAHundredTimesLeavesNothingBehind)
{
    const auto loadMany = [](int count) {
        for (int i = 0; i < count; ++i)
            const SharedLibrary library(KVX_DRIVER_FILE);
    };
    loadMany(10);
    const std::size_t descriptors = openDescriptors();
    const std::size_t allocations = heldAllocations();
    const DWORD threadLocal = TlsAlloc();
    TlsFree(threadLocal);
    loadMany(100);
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_EQ(heldAllocations(), allocations);
    const DWORD nextThreadLocal = TlsAlloc();
    TlsFree(nextThreadLocal);
    EXPECT_EQ(nextThreadLocal, threadLocal);
    EXPECT_EQ(GetModuleHandleW(fs::path(KVX_DRIVER_FILE).filename().c_str()), nullptr);
}

TEST(DriverDll, SimulatingWithItLeavesNothingBehindEither)
{
    const DriverFolder folder(L"simulating");
    folder.add(KVX_SESSION_SERVICE);
    folder.add(KVX_CONFIG_SERVER);
    const auto simulateMany = [&folder](int count) {
        for (int i = 0; i < count; ++i) {
            const SharedLibrary library(utf8(folder.driver()));
            ViSession vi = VI_NULL;
            ViReal64 volts = 0.0;
            char resource[] = "";
            EXPECT_EQ(library.find<decltype(KVX2800T_InitWithOptions)>("KVX2800T_InitWithOptions")(
                          resource, VI_FALSE, VI_FALSE, "Simulate=1", &vi),
                      VI_SUCCESS);
            EXPECT_EQ(library.find<decltype(KVX2800T_Measure)>("KVX2800T_Measure")(
                          vi, "OutputChannel3", KVX2800T_VAL_MEASURE_VOLTAGE, &volts),
                      VI_SUCCESS);
            EXPECT_EQ(library.find<decltype(KVX2800T_close)>("KVX2800T_close")(vi), VI_SUCCESS);
        }
    };
    // The session service makes a table for each of the first sessions.
    simulateMany(100);
    const std::size_t descriptors = openDescriptors();
    const std::size_t allocations = heldAllocations();
    simulateMany(100);
    EXPECT_EQ(openDescriptors(), descriptors);
    EXPECT_EQ(heldAllocations(), allocations);
}

// Behind the tests that must find nothing: libraries that have been loaded stay.
TEST(DriverDll, LoadsLibrariesAndWhatTheyNeedFromTheFoldersOfPath)
{
    const DriverFolder driver(L"driver alone again");
    const DriverFolder services(L"session service");
    const DriverFolder servers(L"configuration server");
    services.add(KVX_SESSION_SERVICE);
    servers.add(KVX_CONFIG_SERVER);
    const std::wstring path = servers.driver().parent_path().make_preferred().wstring() + L";." + L";" +
                              services.driver().parent_path().make_preferred().wstring();
    const Surroundings surroundings(driver.driver().parent_path(), path);
    EXPECT_EQ(simulateAlone(driver), VI_SUCCESS);
}

/// A text of the version resource of the driver's file.
std::wstring versionText(const std::wstring& name)
{
    const fs::path file = fs::path(KVX_DRIVER_FILE).make_preferred();
    std::vector<std::byte> version(GetFileVersionInfoSizeW(file.c_str(), nullptr));
    EXPECT_NE(GetFileVersionInfoW(file.c_str(), 0, static_cast<DWORD>(version.size()), version.data()), 0);
    void* text = nullptr;
    UINT size = 0;
    const std::wstring key = L"\\StringFileInfo\\040904B0\\" + name;
    EXPECT_NE(VerQueryValueW(version.data(), key.c_str(), &text, &size), 0);
    return text == nullptr ? std::wstring() : static_cast<const wchar_t*>(text);
}

TEST(DriverDll, ItsVersionResourceHasTheDriversIdentity)
{
    EXPECT_EQ(versionText(L"CompanyName"), L"Tessaro Instruments");
    EXPECT_EQ(versionText(L"FileDescription"), L"IVI-C Driver for KVX2800T");
    EXPECT_EQ(versionText(L"FileVersion"), L"1.0.0.0");
    EXPECT_EQ(versionText(L"ProductName"), L"KVX2800T");
    EXPECT_EQ(versionText(L"OriginalFilename"), fs::path(KVX_DRIVER_FILE).filename().wstring());
}

} // namespace
} // namespace kvxtest
