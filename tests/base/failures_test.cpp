#include "base/failures.h"

#include "tests/support/thrown.h"

namespace
{

using kvxtest::throwsExactly;

TEST(Failures, OfATableAndOfAReplyAreOutOfRange)
{
    EXPECT_TRUE(throwsExactly<std::out_of_range>("invalid map<K, T> key", [] { base::throwInvalidKey(); }));
    EXPECT_TRUE(throwsExactly<std::out_of_range>("invalid vector subscript", [] { base::throwMissingField(); }));
}

} // namespace
