// The store that the tool takes when the registry names it.

#include "tests/support/environment.h"
#include "tests/support/platform/own_registry_windows.h"
#include "tests/support/store/store_tool_fixture.h"
#include "tests/support/utf8_path.h"
#include "tools/store/exit_codes.h"
#include "tools/store/tool.h"

#include <gmock/gmock.h>

#include <sstream>
#include <vector>

namespace
{

using namespace kvxtest;
using testing::StartsWith;

class RegisteredStore : public testing::Test
{
protected:
    /// Runs the tool in this process, which has the registry.
    int run(std::vector<const char*> arguments)
    {
        output_.str("");
        errors_.str("");
        arguments.insert(arguments.begin(), "kvx2800t-store");
        return store_tool::runTool(static_cast<int>(arguments.size()), arguments.data(), output_, errors_);
    }

    int add() { return run({"add", "Rack", "--create", "--resource", "x"}); }

    std::wstring wide(const std::string& name) const { return fromUtf8(folder_ / name).wstring(); }

    TemporaryFolder folder_;
    std::ostringstream output_;
    std::ostringstream errors_;

private:
    EnvironmentVariable noMaster_{"IVI_MASTER_STORE", nullptr};
    EnvironmentVariable noProcessDefault_{"IVICONFIGSERVERDEFAULT", nullptr};
    OwnRegistry registry_;
};

TEST_F(RegisteredStore, IsListed)
{
    writeFile(wide("bench.xml"), exampleStore());
    OwnRegistry::setStore(View::Bits32, wide("bench.xml"));
    EXPECT_EQ(run({"list"}), store_tool::kSuccess);
    EXPECT_THAT(output_.str(), StartsWith("store " + (folder_ / "bench.xml") + "\ndriver sessions\n  KVX2800T\n"));
    EXPECT_EQ(errors_.str(), "");
}

TEST_F(RegisteredStore, IsMade)
{
    OwnRegistry::setStore(View::Bits64, wide("ivi\\bench.xml"));
    EXPECT_EQ(add(), store_tool::kSuccess);
    EXPECT_EQ(errors_.str(), "");
    EXPECT_EQ(run({"list"}), store_tool::kSuccess);
    EXPECT_THAT(output_.str(), StartsWith("store " + (folder_ / "ivi\\bench.xml") + "\ndriver sessions\n  Rack\n"));
}

TEST_F(RegisteredStore, IsSaidToBeMissing)
{
    OwnRegistry::setStore(View::Bits64, wide("missing.xml"));
    EXPECT_EQ(run({"list"}), store_tool::kFailure);
    EXPECT_EQ(errors_.str(), "kvx2800t-store: the registry names a file that is missing\n");
}

TEST_F(RegisteredStore, IsNoneWhenTheViewsDiffer)
{
    if (!OwnRegistry::hasTwoViews())
        GTEST_SKIP() << "this host has one view of the test's registry";
    OwnRegistry::setStore(View::Bits32, wide("32.xml"));
    OwnRegistry::setStore(View::Bits64, wide("64.xml"));
    const std::string complaint =
        "kvx2800t-store: the registry names different stores for programs of 32 and 64 bits\n";
    EXPECT_EQ(run({"list"}), store_tool::kFailure);
    EXPECT_EQ(errors_.str(), complaint);
    EXPECT_EQ(add(), store_tool::kFailure);
    EXPECT_EQ(errors_.str(), complaint);
    EXPECT_EQ(folder_.count(), 0U);
}

} // namespace
