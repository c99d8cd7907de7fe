#include "platform/config_server/nesting.h"

#include <gtest/gtest.h>

#include <string>

namespace
{

using config_server::staysWithin;

TEST(Nesting, DepthIsThatOfElements)
{
    EXPECT_TRUE(staysWithin("<a><b><c/></b></a>", {3, 100}));
    EXPECT_FALSE(staysWithin("<a><b><c/></b></a>", {2, 100}));
    EXPECT_FALSE(staysWithin("<a><b><c></c></b></a>", {2, 100}));
}

TEST(Nesting, ElementsThatAreNotClosedAreRefused)
{
    for (const char* const text : {"<a>", "<a><b></a>", "</a>", "<a></a></a>", "<a", "<a b", "<a b='"})
        EXPECT_FALSE(staysWithin(text, {10, 100})) << text;
}

TEST(Nesting, ElementsAttributesAndOtherMarkupCountTogether)
{
    struct Text
    {
        const char* xml;
        std::size_t pieces;
    };
    for (const Text& text :
         {Text{"<a></a>", 1}, Text{"<a/>", 1}, Text{"<a b='' c=\"<\"/>", 3}, Text{"<a><!-- <b> --></a>", 2},
          Text{"<a><![CDATA[<b>]]></a>", 2}, Text{"<?xml b='c'?><a/>", 2}, Text{"<!DOCTYPE a [<!ELEMENT b c>]><a/>", 2},
          Text{"<a>x<b/>y</a>", 2}})
    {
        EXPECT_TRUE(staysWithin(text.xml, {10, text.pieces})) << text.xml;
        EXPECT_FALSE(staysWithin(text.xml, {10, text.pieces - 1})) << text.xml;
    }
}

} // namespace
