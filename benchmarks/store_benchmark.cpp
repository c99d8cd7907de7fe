#include "tests/support/platform/generated_store.h"

#include <IviConfigServer.h>

#include <benchmark/benchmark.h>

#include <unistd.h>

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

namespace
{

constexpr std::size_t kBenches = 10000;

/// A store of ten thousand driver sessions in a file of its own.
class StoreFile
{
public:
    StoreFile()
    {
        std::ofstream file(path_, std::ios::binary);
        file << kvxtest::generateStore(kBenches);
        if (!file.flush())
            std::abort();
    }
    StoreFile(const StoreFile&) = delete;
    StoreFile& operator=(const StoreFile&) = delete;
    ~StoreFile()
    {
        std::error_code ignored;
        std::filesystem::remove(path_, ignored);
    }

    const std::string& path() const { return path_; }
    std::size_t size() const { return std::filesystem::file_size(path_); }

private:
    std::string path_ =
        std::filesystem::temp_directory_path() / ("kvx-store-benchmark-" + std::to_string(::getpid()) + ".xml");
};

const StoreFile& storeFile()
{
    static const StoreFile file;
    return file;
}

IviConfigStoreHandle openStore()
{
    IviConfigStoreHandle store = nullptr;
    if (IviConfig_Initialize(&store) < 0 || IviConfig_Deserialize(store, storeFile().path().c_str()) < 0)
        std::abort();
    return store;
}

void loadStoreBaseline(benchmark::State& state)
{
    const std::size_t size = storeFile().size();
    for (auto _ : state) {
        std::string text(size, '\0');
        std::ifstream file(storeFile().path(), std::ios::binary);
        benchmark::DoNotOptimize(file.read(text.data(), static_cast<std::streamsize>(size)).gcount());
    }
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * size));
}
BENCHMARK(loadStoreBaseline)->Unit(benchmark::kMillisecond);

void loadStore(benchmark::State& state)
{
    for (auto _ : state)
        IviConfig_Close(openStore());
    state.SetBytesProcessed(static_cast<std::int64_t>(state.iterations() * storeFile().size()));
}
BENCHMARK(loadStore)->Unit(benchmark::kMillisecond);

void findDriverSession(benchmark::State& state, const char* name)
{
    const IviConfigStoreHandle store = openStore();
    for (auto _ : state) {
        IviDriverSessionHandle session = nullptr;
        if (IviConfig_GetDriverSession(store, name, &session) < 0)
            std::abort();
        IviConfig_DisposeHandle(session);
    }
    IviConfig_Close(store);
}
BENCHMARK_CAPTURE(findDriverSession, first, "Bench1");
BENCHMARK_CAPTURE(findDriverSession, last, "Session10000");

} // namespace
