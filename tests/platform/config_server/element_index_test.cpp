#include "platform/config_server/element_index.h"

#include <gtest/gtest.h>

namespace
{

using config_server::Element;
using config_server::ElementIndex;

TEST(ElementIndex, EmptyOneFindsNothing)
{
    EXPECT_EQ(ElementIndex().find(""), nullptr);
    EXPECT_FALSE(ElementIndex().hasDuplicates());
}

TEST(ElementIndex, FindsByTheWholeTextInItsCase)
{
    const Element a;
    const Element b;
    const ElementIndex index({{"beta", &b}, {"alpha", &a}});
    EXPECT_EQ(index.find("alpha"), &a);
    EXPECT_EQ(index.find("beta"), &b);
    for (const char* const other : {"", "alph", "alphaa", "Alpha", "zeta"})
        EXPECT_EQ(index.find(other), nullptr) << other;
    EXPECT_FALSE(index.hasDuplicates());
}

TEST(ElementIndex, FirstEntryOfAKeyCounts)
{
    const Element first;
    const Element second;
    const ElementIndex index({{"b", &second}, {"a", &first}, {"a", &second}});
    EXPECT_EQ(index.find("a"), &first);
    EXPECT_TRUE(index.hasDuplicates());
}

} // namespace
