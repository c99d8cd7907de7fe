#include "tests/support/driver/runtime_fixture.h"

namespace
{

using namespace kvxtest;
using testing::ElementsAre;
using testing::Pair;

using Getter = bool (drivekit::DriverSession::*)() const;
using Setter = void (drivekit::DriverSession::*)(bool);

/// An inherent option: as callers write it, and where the session keeps it.
struct Option
{
    const char* name;
    Getter get;
    Setter set;
};

const Option kOptions[] = {
    {"Cache", &drivekit::DriverSession::cache, &drivekit::DriverSession::setCache},
    {"InterchangeCheck", &drivekit::DriverSession::interchangeCheck, &drivekit::DriverSession::setInterchangeCheck},
    {"QueryInstrStatus", &drivekit::DriverSession::queryInstrumentStatus,
     &drivekit::DriverSession::setQueryInstrumentStatus},
    {"RangeCheck", &drivekit::DriverSession::rangeCheck, &drivekit::DriverSession::setRangeCheck},
    {"RecordCoercions", &drivekit::DriverSession::recordCoercions, &drivekit::DriverSession::setRecordCoercions},
    {"Simulate", &drivekit::DriverSession::simulate, &drivekit::DriverSession::setSimulate},
};

class OptionParsing : public RuntimeTest
{
public:
    ViStatus parse(const std::string& text) { return session.ParseOptionString(text); }

    /// Expects that `text` fails with this status and exactly this record.
    void expectFailure(const std::string& text, ViStatus status, const std::string& description)
    {
        EXPECT_EQ(parse(text), status) << text;
        EXPECT_EQ(recorded(), (ErrorEntry{status, description})) << text;
        EXPECT_EQ(timesRecorded(), 1U) << text;
    }

    TestSession session{vi};
};

TEST_F(OptionParsing, EveryFlagIsOffBeforeAnythingIsResolved)
{
    for (const Option& option : kOptions)
        EXPECT_FALSE((session.*option.get)()) << option.name;
}

TEST_F(OptionParsing, EachOptionTakesEachValueWordInAnyLetterCase)
{
    const std::pair<const char*, bool> words[] = {{"True", true},   {"VI_TRUE", true},   {"1", true},
                                                  {"FALSE", false}, {"vi_false", false}, {"0", false}};
    for (const Option& option : kOptions)
        for (const auto& [word, value] : words) {
            TestSession fresh(vi);
            (fresh.*option.set)(!value);
            EXPECT_EQ(fresh.ParseOptionString(std::string(option.name) + "=" + word), VI_SUCCESS);
            EXPECT_EQ((fresh.*option.get)(), value) << option.name << '=' << word;
        }
}

TEST_F(OptionParsing, AnOptionChangesItsOwnFlagOnly)
{
    for (const Option& chosen : kOptions) {
        TestSession fresh(vi);
        fresh.ParseOptionString(std::string(chosen.name) + "=1");
        for (const Option& other : kOptions)
            EXPECT_EQ((fresh.*other.get)(), other.get == chosen.get) << chosen.name << ' ' << other.name;
    }
}

TEST_F(OptionParsing, NamesAndValuesIgnoreLetterCase)
{
    EXPECT_EQ(parse("SIMULATE=VI_TRUE"), VI_SUCCESS);
    EXPECT_TRUE(session.simulate());
}

TEST_F(OptionParsing, BlanksMayStandAroundEverything)
{
    EXPECT_EQ(parse("  Simulate \t=\n 1 ,  Cache = true  , RangeCheck=1"), VI_SUCCESS);
    EXPECT_TRUE(session.simulate());
    EXPECT_TRUE(session.cache());
    EXPECT_TRUE(session.rangeCheck());
}

TEST_F(OptionParsing, OptionsNeedNoCommaBetweenThem)
{
    EXPECT_EQ(parse("Simulate=1 Cache=1"), VI_SUCCESS);
    EXPECT_TRUE(session.simulate());
    EXPECT_TRUE(session.cache());
}

TEST_F(OptionParsing, AnEmptyStringSetsNothing)
{
    EXPECT_EQ(parse(""), VI_SUCCESS);
    EXPECT_EQ(session.driverSetup(), "");
    EXPECT_THAT(calls(), testing::IsEmpty());
}

TEST_F(OptionParsing, PiecesThatFormNoOptionAreSkipped)
{
    session.setRangeCheck(true);
    EXPECT_EQ(parse("Simulate, RangeCheck=0"), VI_SUCCESS);
    EXPECT_FALSE(session.simulate());
    EXPECT_FALSE(session.rangeCheck());
    EXPECT_EQ(parse("Simulate="), VI_SUCCESS);
    EXPECT_EQ(parse("Simulate==1"), VI_SUCCESS);
    EXPECT_EQ(parse("=1,,;%s"), VI_SUCCESS);
    EXPECT_FALSE(session.simulate());
    EXPECT_EQ(timesRecorded(), 0U);
}

TEST_F(OptionParsing, AnUnknownNameIsReportedInLowerCase)
{
    expectFailure("Foo=1", code(0xBFFA004B), "The 'foo' name in the option string is unknown.");
}

TEST_F(OptionParsing, AnUnknownValueIsReportedInLowerCase)
{
    expectFailure("Simulate=YES", code(0xBFFA004C), "The 'yes' value in the option string is unknown.");
    EXPECT_FALSE(session.simulate());
}

TEST_F(OptionParsing, AnUnknownNameEndsTheParsing)
{
    expectFailure("Cache=1, Foo=1, Simulate=1", code(0xBFFA004B), "The 'foo' name in the option string is unknown.");
    EXPECT_TRUE(session.cache());
    EXPECT_FALSE(session.simulate());
}

TEST_F(OptionParsing, ARepeatedOptionTakesEffectAndFails)
{
    expectFailure("Cache=1, Cache=0, Simulate=1", code(0xBFFA0000),
                  "Failure cannot recover.  Inherent option 'cache' appears more than once.");
    EXPECT_FALSE(session.cache());
    EXPECT_FALSE(session.simulate());
}

TEST_F(OptionParsing, ARepeatedOptionWithABadValueIsABadValue)
{
    expectFailure("Cache=1, CACHE=x", code(0xBFFA004C), "The 'x' value in the option string is unknown.");
    EXPECT_TRUE(session.cache());
}

TEST_F(OptionParsing, OptionsOfAnEarlierParseCountAsGiven)
{
    EXPECT_EQ(parse("Cache=1"), VI_SUCCESS);
    expectFailure("cache=0", code(0xBFFA0000),
                  "Failure cannot recover.  Inherent option 'cache' appears more than once.");
}

TEST_F(OptionParsing, DriverSetupIsSplitOffWithEverythingBehindIt)
{
    session.setRangeCheck(true);
    EXPECT_EQ(parse("RangeCheck=0, DriverSetup=Model:KVX2833T, Foo=Bar"), VI_SUCCESS);
    EXPECT_FALSE(session.rangeCheck());
    EXPECT_EQ(session.driverSetup(), "Model:KVX2833T, Foo=Bar");
    EXPECT_EQ(session.model(), "KVX2833T");
}

TEST_F(OptionParsing, DriverSetupIsFoundInAnyLetterCaseAndWithBlanks)
{
    for (const char* text : {"driversetup=Model:A", "DRIVERSETUP =Model:A", "x DriverSetup\t = Model:A"}) {
        TestSession fresh(vi);
        EXPECT_EQ(fresh.ParseOptionString(text), VI_SUCCESS) << text;
        EXPECT_EQ(fresh.model(), "A") << text;
    }
}

TEST_F(OptionParsing, TheDriverSetupTextKeepsItsBlanks)
{
    EXPECT_EQ(parse("DriverSetup=  Model : A "), VI_SUCCESS);
    EXPECT_EQ(session.driverSetup(), "  Model : A ");
    EXPECT_EQ(session.model(), "A ");
}

TEST_F(OptionParsing, DriverSetupEndsWithTheLine)
{
    EXPECT_EQ(parse("DriverSetup=Model:A\nModel:B"), VI_SUCCESS);
    EXPECT_EQ(session.driverSetup(), "Model:A");
    EXPECT_EQ(session.model(), "A");
}

TEST_F(OptionParsing, DriverSetupMayBeEmpty)
{
    EXPECT_EQ(parse("Cache=1,DriverSetup="), VI_SUCCESS);
    EXPECT_EQ(session.driverSetup(), "");
    EXPECT_TRUE(session.cache());
}

TEST_F(OptionParsing, WithoutAnEqualsSignItIsNoDriverSetup)
{
    EXPECT_EQ(parse("DriverSetup, Simulate=1"), VI_SUCCESS);
    EXPECT_EQ(session.driverSetup(), "");
    EXPECT_TRUE(session.simulate());
}

TEST_F(OptionParsing, InherentOptionsBehindDriverSetupAreItsText)
{
    EXPECT_EQ(parse("DriverSetup=Model:A, Simulate=1"), VI_SUCCESS);
    EXPECT_FALSE(session.simulate());
    EXPECT_EQ(session.driverSetup(), "Model:A, Simulate=1");
}

TEST_F(OptionParsing, TheModelKeyIgnoresLetterCase)
{
    EXPECT_EQ(parse("DriverSetup=model=KVX2803T"), VI_SUCCESS);
    EXPECT_EQ(session.model(), "KVX2803T");
}

TEST_F(OptionParsing, AModelKeepsItsLetterCaseAndInnerBlanks)
{
    EXPECT_EQ(parse("DriverSetup=Model: a B c ,Other:1"), VI_SUCCESS);
    EXPECT_EQ(session.model(), "a B c ");
}

TEST_F(OptionParsing, SetupNamesMayHoldPlusSigns)
{
    expectFailure("DriverSetup=A+_1:x,A+_1:y", code(0xBFFA0000),
                  "Failure cannot recover.  DriverSetup option 'A+_1' appears more than once.");
}

TEST_F(OptionParsing, ARepeatedSetupOptionTakesEffectAndFails)
{
    expectFailure("DriverSetup=Model:A,Model:B,Model:C", code(0xBFFA0000),
                  "Failure cannot recover.  DriverSetup option 'Model' appears more than once.");
    EXPECT_EQ(session.model(), "B");
}

TEST_F(OptionParsing, SetupNamesOfDifferentLetterCaseAreDifferentOptions)
{
    EXPECT_EQ(parse("DriverSetup=Model:A,model:B"), VI_SUCCESS);
    EXPECT_EQ(session.model(), "B");
}

TEST_F(OptionParsing, DriverSetupIsParsedBeforeTheOptionsInFrontOfIt)
{
    expectFailure("Foo=1, Simulate=1, DriverSetup=A:1,A:2", code(0xBFFA0000),
                  "Failure cannot recover.  DriverSetup option 'A' appears more than once.");
    EXPECT_FALSE(session.simulate());
}

TEST_F(OptionParsing, SetupOptionsOfAnEarlierParseAreForgotten)
{
    EXPECT_EQ(session.ParseDriverSetup("Model:A"), VI_SUCCESS);
    EXPECT_EQ(session.ParseDriverSetup("Model:B"), VI_SUCCESS);
    EXPECT_EQ(session.model(), "B");
    EXPECT_EQ(session.driverSetup(), "Model:B");
}

TEST_F(OptionParsing, ASetupTextWithoutPairsIsKeptAndSetsNothing)
{
    EXPECT_EQ(session.ParseDriverSetup(",,; Model"), VI_SUCCESS);
    EXPECT_EQ(session.driverSetup(), ",,; Model");
    EXPECT_EQ(session.model(), "");
}

TEST_F(OptionParsing, OtherSetupOptionsAreAcceptedAndIgnored)
{
    EXPECT_EQ(session.ApplyDriverSetupOption("Trace", "1"), VI_SUCCESS);
    EXPECT_EQ(session.ApplyDriverSetupOption("Models", "1"), VI_SUCCESS);
    EXPECT_EQ(session.model(), "");
    EXPECT_EQ(session.ApplyDriverSetupOption("mODEL", "X"), VI_SUCCESS);
    EXPECT_EQ(session.model(), "X");
}

TEST_F(OptionParsing, ABooleanValueThatFailsLeavesTheFlag)
{
    for (const bool before : {false, true}) {
        bool flag = before;
        EXPECT_EQ(session.ParseBooleanOptionValue("simulate", "maybe", flag), code(0xBFFA004C));
        EXPECT_EQ(flag, before);
    }
    EXPECT_EQ(recorded(), (ErrorEntry{code(0xBFFA004C), "The 'maybe' value in the option string is unknown."}));
}

TEST_F(OptionParsing, AFailureToRecordIsReturned)
{
    failCall("IviSession_SetError", code(0xBFFA0056));
    EXPECT_EQ(parse("Foo=1"), code(0xBFFA0056));
}

TEST_F(OptionParsing, TheTableOfGivenOptionsKeepsThemInLowerCaseUpToTheOneThatFails)
{
    EXPECT_EQ(parse("Cache=VI_TRUE, SIMULATE=0, Foo=1, RangeCheck=1"), code(0xBFFA004B));
    EXPECT_THAT(session.inherentOptionTable(), ElementsAre(Pair("cache", "vi_true"), Pair("simulate", "0")));
}

TEST_F(OptionParsing, ARepeatedOptionKeepsItsFirstPlaceInTheTable)
{
    EXPECT_EQ(parse("Cache=1, Cache=0"), code(0xBFFA0000));
    EXPECT_THAT(session.inherentOptionTable(), ElementsAre(Pair("cache", "1")));
}

TEST_F(OptionParsing, TheTableOfSetupOptionsKeepsThemAsWritten)
{
    EXPECT_EQ(parse("DriverSetup=Model: a B ,tRACE=1,model=c"), VI_SUCCESS);
    EXPECT_THAT(session.driverSetupOptions(),
                ElementsAre(Pair("Model", "a B "), Pair("model", "c"), Pair("tRACE", "1")));
    EXPECT_THAT(session.driverSetupOption("tRACE"), testing::Pointee(std::string("1")));
    for (const char* name : {"", "trace", "TRACE", "Foo"})
        EXPECT_EQ(session.driverSetupOption(name), nullptr) << name;
}

TEST_F(OptionParsing, AnOptionStringWithoutDriverSetupLeavesTheTableOfSetupOptions)
{
    EXPECT_EQ(parse("DriverSetup=Trace:1"), VI_SUCCESS);
    EXPECT_EQ(parse("Cache=1"), VI_SUCCESS);
    EXPECT_THAT(session.driverSetupOptions(), ElementsAre(Pair("Trace", "1")));
    EXPECT_EQ(parse("DriverSetup="), VI_SUCCESS);
    EXPECT_THAT(session.driverSetupOptions(), testing::IsEmpty());
    EXPECT_EQ(session.driverSetup(), "");
}

TEST_F(OptionParsing, VeryLongTextsEndInAStatus)
{
    constexpr std::size_t kLength = 10U << 20U;
    EXPECT_EQ(parse(std::string(kLength, ' ')), VI_SUCCESS);
    EXPECT_EQ(parse(std::string(kLength, '=')), VI_SUCCESS);
    EXPECT_EQ(parse(std::string(kLength, 'a')), VI_SUCCESS);
    EXPECT_EQ(parse("DriverSetup=Model:" + std::string(kLength, 'm')), VI_SUCCESS);
    EXPECT_EQ(session.model().size(), kLength);
    EXPECT_EQ(parse(std::string(kLength, '1')), VI_SUCCESS);
    EXPECT_EQ(parse("DriverSetup=" + std::string(kLength, ' ')), VI_SUCCESS);
    EXPECT_EQ(parse("DriverSetup=" + std::string(kLength, '+')), VI_SUCCESS);
    EXPECT_EQ(parse("DriverSetup=" + std::string(kLength, ',') + "Model:A"), VI_SUCCESS);
    EXPECT_EQ(session.model(), "A");
    EXPECT_EQ(parse(std::string(kLength, 'N') + "=1"), code(0xBFFA004B));
    EXPECT_EQ(recorded().text, "The '" + std::string(1023 - 5, 'n'));
}

TEST_F(OptionParsing, AnOptionThatIsRepeatedVeryOftenFailsTheSecondTime)
{
    std::string text;
    for (int i = 0; i < 1'000'000; ++i)
        text += "Cache=1, ";
    expectFailure(text, code(0xBFFA0000), "Failure cannot recover.  Inherent option 'cache' appears more than once.");
}

TEST_F(OptionParsing, DriverSetupInsideOfDriverSetupIsItsText)
{
    std::string text;
    for (int i = 0; i < 500'000; ++i)
        text += "DriverSetup=";
    EXPECT_EQ(parse(text + "Model:A"), VI_SUCCESS);
    EXPECT_EQ(session.driverSetup().size(), text.size() - std::string("DriverSetup=").size() + 7);
    EXPECT_EQ(session.model(), "");
}

} // namespace
