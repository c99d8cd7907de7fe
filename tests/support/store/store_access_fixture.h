#pragma once

#include "tests/support/store/store_tool_fixture.h"
#include "tests/support/utf8_path.h"
#include "tools/store/store_access.h"

#include <gtest/gtest.h>

#include <string>

namespace kvxtest
{

/// A store file in a folder of its own.
class StoreAccess : public testing::Test
{
protected:
    void SetUp() override { writeFile(fromUtf8(path_), "old"); }

    void replace(const std::string& text) const
    {
        store_tool::StoreChange change(path_, store_tool::WhenMissing::Refuse);
        change.replaceBy(text);
    }

    TemporaryFolder folder_;
    std::string path_ = folder_ / "store.xml";
};

} // namespace kvxtest
