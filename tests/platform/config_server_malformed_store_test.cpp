#include "store_fixture.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

namespace
{

using kvxtest::kBenchStore;
using testing::AnyOf;

class MalformedStore : public kvxtest::StoreTest
{
protected:
    /// Loads a text into a store of its own and, when that works, reads some of it.
    ViStatus tryToLoad(const std::string& text)
    {
        const std::string path = writeFile("mutated.xml", text);
        IviConfigStoreHandle store = nullptr;
        EXPECT_EQ(IviConfig_Initialize(&store), VI_SUCCESS);
        const ViStatus status = IviConfig_Deserialize(store, path.c_str());
        IviDriverSessionHandle found = nullptr;
        EXPECT_THAT(IviConfig_GetDriverSession(store, "BenchSupply", &found),
                    AnyOf(VI_SUCCESS, IVICONFIG_ERROR_SESSION_NOT_FOUND));
        if (found != nullptr)
            readAll(found);
        EXPECT_EQ(IviConfig_Close(store), VI_SUCCESS);
        return status;
    }

    static void readAll(IviDriverSessionHandle session)
    {
        std::string text(64, '\0');
        ViBoolean flag = VI_FALSE;
        EXPECT_GE(IviConfig_GetDriverSessionPropertyViString(session, 10, 64, text.data()), 0);
        EXPECT_EQ(IviConfig_GetDriverSessionPropertyViBoolean(session, 4, &flag), VI_SUCCESS);
        IviHardwareAssetHandle asset = nullptr;
        EXPECT_EQ(IviConfig_GetSessionHardwareAssetReference(session, &asset), VI_SUCCESS);
        if (asset != nullptr) {
            EXPECT_GE(IviConfig_GetHardwareAssetPropertyViString(asset, 3, 64, text.data()), 0);
            EXPECT_EQ(IviConfig_DisposeHandle(asset), VI_SUCCESS);
        }
        EXPECT_EQ(IviConfig_DisposeHandle(session), VI_SUCCESS);
    }
};

std::string repeated(const std::string& text, std::size_t times)
{
    std::string all;
    all.reserve(text.size() * times);
    for (std::size_t i = 0; i < times; ++i)
        all += text;
    return all;
}

std::string inStore(const std::string& content)
{
    return "<IviConfigStore>" + content + "</IviConfigStore>";
}

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
                                                            inStore("<Name>"),
                                                            inStore("</Name>"),
                                                            inStore("<Name a></Name>"),
                                                            inStore("<Name a=></Name>"),
                                                            inStore("<Name a=b></Name>"),
                                                            inStore("<Name a=\"b></Name>"),
                                                            inStore("<![CDATA["),
                                                            inStore("<!--"),
                                                            inStore("<?pi"),
                                                            inStore("<!x"),
                                                            inStore("<Name>&#x;</Name>"),
                                                            inStore("<Name>&#x110000;</Name>"),
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
             inStore("<![CDATA[<a></b>]]><Unknown><Deep x='1'/></Unknown>"), inStore("<!x ><?y <z> ?>")})
        EXPECT_EQ(tryToLoad(text), VI_SUCCESS) << text;
}

TEST_F(MalformedStore, FlagThatIsNoneIsRefused)
{
    for (const std::string value : {"2", "yes", "TRUE", "-1", "0 1", "01"})
        EXPECT_EQ(tryToLoad(inStore("<DriverSessions><IviDriverSession id='a'><Name>x</Name><Cache>" + value +
                                    "</Cache></IviDriverSession></DriverSessions>")),
                  IVICONFIG_ERROR_DESERIALIZE_FAILED)
            << value;
}

TEST_F(MalformedStore, IdThatIsUsedTwiceIsRefused)
{
    EXPECT_EQ(tryToLoad(inStore("<A id='p1'/><B id='p1'/>")), IVICONFIG_ERROR_DESERIALIZE_FAILED);
}

TEST_F(MalformedStore, ElementsMayNestSixtyFourDeepAndNoDeeper)
{
    const auto nested = [](std::size_t levels) {
        return inStore(repeated("<a>", levels - 1) + repeated("</a>", levels - 1));
    };
    EXPECT_EQ(tryToLoad(nested(64)), VI_SUCCESS);
    EXPECT_EQ(tryToLoad(nested(65)), IVICONFIG_ERROR_DESERIALIZE_FAILED);
    EXPECT_EQ(tryToLoad(inStore(repeated("<a>", 63) + "<b/>" + repeated("</a>", 63))),
              IVICONFIG_ERROR_DESERIALIZE_FAILED);
}

TEST_F(MalformedStore, HundredThousandElementsAreReadAndNoMore)
{
    const std::string most = repeated("<a/>", 99998);
    EXPECT_EQ(tryToLoad(inStore(most + "<b></b>")), VI_SUCCESS);
    EXPECT_EQ(tryToLoad(inStore(most + "<b></b><c/>")), IVICONFIG_ERROR_DESERIALIZE_FAILED);
    EXPECT_EQ(tryToLoad(inStore(most + "<b></b><c></c>")), IVICONFIG_ERROR_DESERIALIZE_FAILED);
}

TEST_F(MalformedStore, DepthCannotBeHidden)
{
    const std::string deep = repeated("<a>", 1000000);
    const auto wrapped = [&deep](std::string before, const std::string& after) {
        return before.append(deep).append(after);
    };
    for (const std::string& text : std::vector<std::string>{
             deep, inStore(deep), inStore(wrapped("<b\">", "<c\">")), inStore(wrapped("<b'>", "<c'>")),
             wrapped("<!DOCTYPE x \">", "\">"), wrapped("<!DOCTYPEx[>", "]>"), wrapped("<!x '>", "'>"),
             inStore(wrapped(R"(<b a="'">)", R"(<b a='"'>)")), inStore(wrapped("<!-", "->")),
             inStore(wrapped("<![CDATA", "]]>")), wrapped("<?>?>", ""), inStore(wrapped("<b a='/'>", "")),
             inStore(wrapped("<!--->", "-->").append(deep))})
        EXPECT_EQ(tryToLoad(text), IVICONFIG_ERROR_DESERIALIZE_FAILED) << text.substr(0, 40);
}

TEST_F(MalformedStore, FileOfSixteenMebibytesIsReadAndALargerOneIsNot)
{
    constexpr std::size_t kLimit = std::size_t{16} * 1024 * 1024;
    const std::string empty = inStore("<Name></Name>");
    const std::string full = inStore("<Name>" + std::string(kLimit - empty.size(), 'x') + "</Name>");
    ASSERT_EQ(full.size(), kLimit);
    EXPECT_EQ(tryToLoad(full), VI_SUCCESS);
    EXPECT_EQ(tryToLoad(full + " "), IVICONFIG_ERROR_DESERIALIZE_FAILED);
}

TEST_F(MalformedStore, PlacesThatAreNoFilesAreRefused)
{
    const std::string overlong = "/" + std::string(100000, 'x');
    for (const std::string& location :
         std::vector<std::string>{"", "/", "/dev/zero", "/no/such/file", folder_.string(), overlong})
        EXPECT_EQ(IviConfig_Deserialize(store_, location.c_str()), IVICONFIG_ERROR_DESERIALIZE_FAILED)
            << location.substr(0, 40);
}

TEST_F(MalformedStore, MutatedFilesAreReadOrRefused)
{
    const std::string original(kBenchStore);
    const std::string alphabet("<>/=\"'&;![]-? \n\xFF"
                               "aI0");
    std::mt19937 random(20240607); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same files each time
    const auto below = [&random](std::size_t limit) { return random() % limit; };
    for (int round = 0; round < 3000; ++round) {
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

} // namespace
