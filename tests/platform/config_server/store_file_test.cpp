#include "tests/support/platform/example_store.h"
#include "tests/support/platform/store_objects_fixture.h"
#include "tests/support/platform/store_texts.h"
#include "tests/support/utf8_path.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace
{

using namespace kvxtest;
using testing::AnyOf;

class MalformedStore : public StoreTest
{
protected:
    /// Loads a text into a store of its own and, when that works, reads everything in it.
    ViStatus tryToLoad(const std::string& text)
    {
        const std::string path = writeFile("mutated.xml", text);
        IviConfigStoreHandle store = nullptr;
        EXPECT_EQ(IviConfig_Initialize(&store), VI_SUCCESS);
        const ViStatus status = IviConfig_Deserialize(store, path.c_str());
        EXPECT_NO_THROW(listStore(store, {{"BenchSupply", "KVX2800T"}, {"KVX2800T"}}));
        EXPECT_EQ(IviConfig_Close(store), VI_SUCCESS);
        return status;
    }
};

TEST_F(MalformedStore, TextsThatAreNoStoreAreRefused)
{
    for (const std::string& text : std::vector<std::string>{"",
                                                            " ",
                                                            "store",
                                                            "<",
                                                            "<>",
                                                            "</>",
                                                            "<a/>",
                                                            "<IviConfigStore>",
                                                            "<IviConfigStore",
                                                            "<IviConfigStore/",
                                                            "</IviConfigStore>",
                                                            "<IviConfigStore></Other>",
                                                            "<IviConfigStore/><IviConfigStore/>",
                                                            "<IviConfigStore/>text",
                                                            "<Other><IviConfigStore/></Other>",
                                                            "<?xml?>",
                                                            "<!-- only -->",
                                                            storeWith("<Name>"),
                                                            storeWith("</Name>"),
                                                            storeWith("<Name a></Name>"),
                                                            storeWith("<Name a=></Name>"),
                                                            storeWith("<Name a=b></Name>"),
                                                            storeWith("<Name a=\"b></Name>"),
                                                            storeWith("<![CDATA["),
                                                            storeWith("<!--"),
                                                            storeWith("<?pi"),
                                                            storeWith("<!x"),
                                                            storeWith("<Name>&#x;</Name>"),
                                                            storeWith("<Name>&#x110000;</Name>"),
                                                            "<!DOCTYPE x [<IviConfigStore/>",
                                                            std::string("<IviConfigStore>\0</IviConfigStore>", 34)})
        EXPECT_EQ(tryToLoad(text), IVICONFIG_ERROR_DESERIALIZE_FAILED) << text;
    EXPECT_EQ(static_cast<ViUInt32>(IVICONFIG_ERROR_DESERIALIZE_FAILED), 0xBFFA1200U);
}

TEST_F(MalformedStore, UnusualButWellFormedTextsAreRead)
{
    for (const std::string& text : std::vector<std::string>{
             "<IviConfigStore/>", "\xEF\xBB\xBF<?xml version=\"1.0\"?>\n<IviConfigStore />\n",
             "<!DOCTYPE IviConfigStore [ <!ELEMENT a (b)> [>] ]><IviConfigStore/>",
             R"(<?pi <a> ?><!-- <a> --><IviConfigStore a='>"' b="/>'"/>)",
             storeWith("<![CDATA[<a></b>]]><Unknown><Deep x='1'/></Unknown>"), storeWith("<!x ><?y <z> ?>")})
        EXPECT_EQ(tryToLoad(text), VI_SUCCESS) << text;
}

TEST_F(MalformedStore, FlagThatIsNoneIsRefused)
{
    for (const std::string value : {"2", "yes", "TRUE", "-1", "0 1", "01"})
        EXPECT_EQ(tryToLoad(storeWith("<DriverSessions><IviDriverSession id='a'><Name>x</Name><Cache>" + value +
                                      "</Cache></IviDriverSession></DriverSessions>")),
                  IVICONFIG_ERROR_DESERIALIZE_FAILED)
            << value;
}

TEST_F(MalformedStore, IdThatIsUsedTwiceIsRefused)
{
    EXPECT_EQ(tryToLoad(storeWith("<A id='p1'/><B id='p1'/>")), IVICONFIG_ERROR_DESERIALIZE_FAILED);
}

TEST_F(MalformedStore, ElementsMayNestSixtyFourDeepAndNoDeeper)
{
    const auto nested = [](std::size_t levels) {
        return storeWith(repeated("<a>", levels - 1) + repeated("</a>", levels - 1));
    };
    EXPECT_EQ(tryToLoad(nested(64)), VI_SUCCESS);
    EXPECT_EQ(tryToLoad(nested(65)), IVICONFIG_ERROR_DESERIALIZE_FAILED);
    EXPECT_EQ(tryToLoad(storeWith(repeated("<a>", 63) + "<b/>" + repeated("</a>", 63))),
              IVICONFIG_ERROR_DESERIALIZE_FAILED);
}

TEST_F(MalformedStore, TwoMillionElementsAreReadAndNoMore)
{
    const std::string most = repeated("<a/>", 1999998);
    EXPECT_EQ(tryToLoad(storeWith(most + "<b></b>")), VI_SUCCESS);
    EXPECT_EQ(tryToLoad(storeWith(most + "<b></b><c/>")), IVICONFIG_ERROR_DESERIALIZE_FAILED);
}

TEST_F(MalformedStore, WhateverCostsMemoryCountsAsAnElementDoes)
{
    EXPECT_EQ(tryToLoad(storeWith(repeated("<!---->x", 2000000))), IVICONFIG_ERROR_DESERIALIZE_FAILED);
    EXPECT_EQ(tryToLoad("<IviConfigStore" + repeated(" a=''", 2000000) + "/>"), IVICONFIG_ERROR_DESERIALIZE_FAILED);
    EXPECT_EQ(tryToLoad("<IviConfigStore" + repeated(" a=''", 100000) + ">" + repeated("<!---->x", 100000) +
                        "</IviConfigStore>"),
              VI_SUCCESS);
}

TEST_F(MalformedStore, DepthCannotBeHidden)
{
    const std::string deep = repeated("<a>", 1000000);
    const auto wrapped = [&deep](std::string before, const std::string& after) {
        return before.append(deep).append(after);
    };
    for (const std::string& text : std::vector<std::string>{
             deep, storeWith(deep), storeWith(wrapped("<b\">", "<c\">")), storeWith(wrapped("<b'>", "<c'>")),
             wrapped("<!DOCTYPE x \">", "\">"), wrapped("<!DOCTYPEx[>", "]>"), wrapped("<!x '>", "'>"),
             storeWith(wrapped(R"(<b a="'">)", R"(<b a='"'>)")), storeWith(wrapped("<!-", "->")),
             storeWith(wrapped("<![CDATA", "]]>")), wrapped("<?>?>", ""), storeWith(wrapped("<b a='/'>", "")),
             storeWith(wrapped("<!--->", "-->").append(deep))})
        EXPECT_EQ(tryToLoad(text), IVICONFIG_ERROR_DESERIALIZE_FAILED) << text.substr(0, 40);
}

TEST_F(MalformedStore, FileOfSixtyFourMebibytesIsReadAndALargerOneIsNot)
{
    constexpr std::size_t kLimit = std::size_t{64} * 1024 * 1024;
    const std::string empty = storeWith("<Name></Name>");
    const std::string full = storeWith("<Name>" + std::string(kLimit - empty.size(), 'x') + "</Name>");
    ASSERT_EQ(full.size(), kLimit);
    EXPECT_EQ(tryToLoad(full), VI_SUCCESS);
    EXPECT_EQ(tryToLoad(full + " "), IVICONFIG_ERROR_DESERIALIZE_FAILED);
}

TEST_F(MalformedStore, FileCutAnywhereIsRefused)
{
    const std::string whole = "<?xml version=\"1.0\"?><IviConfigStore a='b'><Name>N</Name><!-- c --><![CDATA[d]]>"
                              "<DriverSessions><IviDriverSession id=\"s\"><Name>KVX2800T</Name><Cache>1</Cache>"
                              "<VirtualNames><IviVirtualName><Name>V</Name></IviVirtualName></VirtualNames>"
                              "</IviDriverSession></DriverSessions></IviConfigStore>";
    ASSERT_EQ(tryToLoad(whole), VI_SUCCESS);
    for (std::size_t size = 0; size < whole.size(); ++size)
        EXPECT_EQ(tryToLoad(whole.substr(0, size)), IVICONFIG_ERROR_DESERIALIZE_FAILED) << size;
}

TEST_F(MalformedStore, ExampleCutAnywhereIsRefused)
{
    const std::string whole = kExampleStore;
    const std::size_t end = whole.rfind('>');
    for (std::size_t size = 0; size <= end; size += 7)
        EXPECT_EQ(tryToLoad(whole.substr(0, size)), IVICONFIG_ERROR_DESERIALIZE_FAILED) << size;
    EXPECT_EQ(tryToLoad(whole.substr(0, end + 1)), VI_SUCCESS);
}

TEST_F(MalformedStore, ReferencesInACircleLeadNowhereFurther)
{
    EXPECT_EQ(tryToLoad(storeWith("<LogicalNames><IviLogicalName id='l'><Name>BenchSupply</Name>"
                                  "<IviDriverSession id='a' idref='b'/></IviLogicalName></LogicalNames>"
                                  "<DriverSessions><IviDriverSession id='b' idref='a'/>"
                                  "<IviDriverSession id='c' idref='c'/></DriverSessions>"
                                  "<SoftwareModules><IviSoftwareModule id='m' idref='m'><Name>KVX2800T</Name>"
                                  "<DataComponents><IviStructure id='t'><DataComponents><IviStructure idref='t'/>"
                                  "</DataComponents></IviStructure></DataComponents></IviSoftwareModule>"
                                  "</SoftwareModules>")),
              VI_SUCCESS);
}

TEST_F(MalformedStore, EntryWithoutANameIsFoundByTheEmptyOne)
{
    ASSERT_EQ(load(storeWith("<DriverSessions><IviDriverSession id='s'><DriverSetup>nameless</DriverSetup>"
                             "</IviDriverSession></DriverSessions>")),
              VI_SUCCESS);
    const OwnedHandle session = obtain(IviConfig_GetDriverSession, store_, "");
    EXPECT_EQ(sessionText(session, IVICONFIG_VAL_DRIVER_SESSION_DRIVER_SETUP), "nameless");
}

TEST_F(MalformedStore, EntitiesOfADoctypeAreNotExpanded)
{
    ASSERT_EQ(load("<!DOCTYPE IviConfigStore [<!ENTITY a \"aaaaaaaaaa\"><!ENTITY b \"&a;&a;&a;&a;\">]>" +
                   storeWith("<Name>&b;</Name>")),
              VI_SUCCESS);
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_NAME), "&b;");
}

TEST_F(MalformedStore, OtherEncodingsAreRefused)
{
    const std::string text = storeWith("");
    std::string wide = "\xFF\xFE";
    for (const char c : text)
        wide.append({c, '\0'});
    EXPECT_EQ(tryToLoad(wide), IVICONFIG_ERROR_DESERIALIZE_FAILED);
    EXPECT_EQ(tryToLoad("\xEF\xBB\xBF" + text), VI_SUCCESS) << "a byte order mark of UTF-8";
}

TEST_F(MalformedStore, NulBytesAreRefusedWhereverTheyStand)
{
    const std::string text = storeWith("<Name>N</Name>");
    for (std::size_t at = 0; at <= text.size(); ++at) {
        std::string withNul = text;
        withNul.insert(at, 1, '\0');
        EXPECT_EQ(tryToLoad(withNul), IVICONFIG_ERROR_DESERIALIZE_FAILED) << at;
    }
}

TEST_F(MalformedStore, PlacesThatAreNoFilesAreRefused)
{
    const std::string overlong = "/" + std::string(100000, 'x');
    for (const std::string& location :
         std::vector<std::string>{"", "/", "/dev/zero", "/no/such/file", toUtf8(folder_.path()), overlong})
        EXPECT_EQ(IviConfig_Deserialize(store_, location.c_str()), IVICONFIG_ERROR_DESERIALIZE_FAILED)
            << location.substr(0, 40);
}

TEST_F(MalformedStore, MutatedFilesAreReadOrRefused)
{
    const std::string original(kExampleStore);
    const std::string alphabet("<>/=\"'&;![]-? \n\xFF"
                               "aI0");
    std::mt19937 random(20240607); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same files each time
    const auto below = [&random](std::size_t limit) { return random() % limit; };
    for (int round = 0; round < 1500; ++round) {
        std::string text = original;
        for (std::size_t change = 1 + below(5); change > 0 && !text.empty(); --change) {
            const std::size_t at = below(text.size());
            switch (below(5)) {
            case 0:
                text[at] = alphabet[below(alphabet.size())];
                break;
            case 1:
                text.insert(at, 1, alphabet[below(alphabet.size())]);
                break;
            case 2:
                text.erase(at, 1 + below(40));
                break;
            case 3:
                text.insert(at, text.substr(below(text.size()), below(200)));
                break;
            default:
                text.resize(std::max<std::size_t>(at, 1));
                break;
            }
        }
        EXPECT_THAT(tryToLoad(text), AnyOf(VI_SUCCESS, IVICONFIG_ERROR_DESERIALIZE_FAILED)) << text;
    }
}

/// The content of a component that is none.
struct UnreadableCase
{
    const char* element;
    const char* content;
};

class UnreadableValue : public StoreObjects, public testing::WithParamInterface<UnreadableCase>
{
};

TEST_P(UnreadableValue, MakesTheStoreUnreadable)
{
    EXPECT_EQ(loadComponent(GetParam().element, GetParam().content), IVICONFIG_ERROR_DESERIALIZE_FAILED);
    EXPECT_EQ(storeText(IVICONFIG_VAL_CONFIG_STORE_ACTUAL_LOCATION), "");
}

INSTANTIATE_TEST_SUITE_P(Values, UnreadableValue,
                         testing::Values(UnreadableCase{"IviBoolean", "<Value>yes</Value>"},
                                         UnreadableCase{"IviBoolean", "<ReadOnly>2</ReadOnly>"},
                                         UnreadableCase{"IviInteger", "<Value>1.5</Value>"},
                                         UnreadableCase{"IviInteger", "<Value>2147483648</Value>"},
                                         UnreadableCase{"IviString", "<HelpContextID>x</HelpContextID>"},
                                         UnreadableCase{"IviReal", "<Value>0,5</Value>"},
                                         UnreadableCase{"IviReal", "<Value>nan</Value>"},
                                         UnreadableCase{"IviString", "<Value>a&#0;b</Value>"}));

TEST_F(StoreObjects, UnreadableRangeOrVersionMakesTheStoreUnreadable)
{
    EXPECT_EQ(load(sessionOf("<VirtualNames><IviVirtualName><VirtualRanges><IviVirtualRange><Min>one</Min>"
                             "</IviVirtualRange></VirtualRanges></IviVirtualName></VirtualNames>")),
              IVICONFIG_ERROR_DESERIALIZE_FAILED);
    EXPECT_EQ(load("<IviConfigStore><SpecificationMajorVersion>two</SpecificationMajorVersion></IviConfigStore>"),
              IVICONFIG_ERROR_DESERIALIZE_FAILED);
}

} // namespace
