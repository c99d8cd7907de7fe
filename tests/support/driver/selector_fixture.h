#pragma once

#include "tests/support/driver/selector_result.h"

#include <string>
#include <utility>
#include <vector>

namespace kvxtest
{

inline constexpr const char* kBadlyFormed = "The repeated capability selector is badly-formed.";
inline constexpr const char* kOverlap = "An identifier in the range overlaps with another range.";
inline constexpr const char* kBaseNames = "The base names do not match.";
inline constexpr const char* kStartIndex = "The start index must be less than the end index.";
inline constexpr const char* kSingle =
    "Only a single repeated capability identifier can be specified for the current operation.";
inline constexpr const char* kNone =
    "No selector was specified for repeated capability 'OutputChannel'.  The repeated "
    "capability identifier can be null "
    "or empty only when there is exactly one physical name defined.  Repeated capability "
    "'OutputChannel' has 6 physical "
    "names defined.";
inline constexpr const char* kLevels =
    "The number of levels in the selector is not valid for the 'OutputChannel' repeated capability.";

/// A session whose selectors a test resolves.
class SelectorTest : public RuntimeTest
{
public:
    void expectNames(const std::string& selector, const std::vector<std::string>& names)
    {
        EXPECT_EQ(resolve(session, selector.c_str()), namesAre(names)) << selector.substr(0, 80);
        EXPECT_EQ(timesRecorded(), 0U);
    }

    void expectError(const char* selector, ViStatus status, const std::string& text)
    {
        EXPECT_EQ(resolve(session, selector), refusal(status, text))
            << std::string(selector == nullptr ? "null" : selector).substr(0, 80);
        EXPECT_EQ(timesRecorded(), 1U);
        clearLog();
    }

    void expectError(const std::string& selector, ViStatus status, const std::string& text)
    {
        expectError(selector.c_str(), status, text);
    }

    void expectUnknown(const std::string& selector, const std::string& name)
    {
        expectError(selector, code(0xBFFA0067),
                    "The identifier '" + name + "' is not defined for repeated capability 'OutputChannel'.");
    }

    /// Lets the configuration store give the session these virtual names.
    void setVirtualNames(std::vector<StoredVirtualName> names)
    {
        configurationStore().driverSession.emplace().virtualNames = std::move(names);
        ASSERT_EQ(session.ResolveConfiguration("", ""), VI_SUCCESS);
        clearLog();
    }

    TestSession session{vi};
};

} // namespace kvxtest
