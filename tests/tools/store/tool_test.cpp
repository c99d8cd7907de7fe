#include "platform/config_server/store_file.h"
#include "tests/support/processes/child_process.h"
#include "tests/support/store/program_fixture.h"

#include <memory>

namespace
{

using namespace kvxtest;
using testing::HasSubstr;
using testing::StartsWith;

TEST_F(Program, ListsAStore)
{
    const Outcome outcome = run({"list"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.output, "store " + path_ + R"(
driver sessions
  KVX2800T
    hardware asset   Bench supply 1 (TCPIP0::127.0.0.1::5025::SOCKET)
    software module  KVX2800T
    virtual name     Core -> OutputChannel1
    virtual name     Pair -> OutputChannel1,OutputChannel2
    virtual names    Rail -> OutputChannel, 1 to 3 from 2 on
    setting          model (string) = "KVX2833T"
    flags            Cache=1 InterchangeCheck=0 QueryInstrStatus=0 RangeCheck=1 RecordCoercions=0 Simulate=0
other sessions
  (none)
logical names
  BenchSupply -> KVX2800T
software modules
  KVX2800T - IVI-C Driver for KVX2800T
    prefix           KVX2800T
    models           KVX2833T
    physical names   OutputChannel1 OutputChannel2 OutputChannel3 OutputChannel4 OutputChannel5 OutputChannel6
    setting          model (string) = ""
)");
}

TEST_F(Program, ListsSettingsOfEveryType)
{
    writeFile(path_, settingsStore());
    EXPECT_EQ(run({"list"}).output, "store " + path_ + R"(
driver sessions
  Meter 1
    hardware asset   Bench meter (GPIB0::7::INSTR)
    software module  Meter
    setting          Trace (boolean) = 1
    setting          Retries (integer) = 3
    setting          Settling Time (real) = 0.25
    setting          Station (string) = "line 4"
    flags            Cache=1 InterchangeCheck=0 QueryInstrStatus=0 RangeCheck=1 RecordCoercions=0 Simulate=0
other sessions
  (none)
logical names
  (none)
software modules
  Meter - A driver that reads settings of every type
    prefix           Meter
    setting          Trace (boolean) = 0
    setting          Retries (integer) = 0
    setting          Settling Time (real) = 0.1
    setting          Station (string) = ""
)");
}

TEST_F(Program, ListsWhatLeadsNowhereAndWhatTerminalsWouldObey)
{
    writeFile(
        path_,
        storeWith(
            "<DriverSessions><IviDriverSession id='a'><Name>A\x1B[2J</Name></IviDriverSession></DriverSessions>"
            "<Sessions><IviSession id='b'><Name>B</Name><Description>plain</Description></IviSession></Sessions>"
            "<LogicalNames><IviLogicalName id='c'><Name>C</Name><IviSession idref='b'/></IviLogicalName>"
            "<IviLogicalName id='d'><Name>D</Name><IviDriverSession idref='x'/></IviLogicalName></LogicalNames>"));
    EXPECT_EQ(run({"list"}).output, "store " + path_ + R"(
driver sessions
  A\x1B[2J
    hardware asset   (none)
    software module  (none)
    flags            Cache= InterchangeCheck= QueryInstrStatus= RangeCheck= RecordCoercions= Simulate=
other sessions
  B - plain
    hardware asset   (none)
    software module  (none)
logical names
  C -> B
  D -> (none)
software modules
  (none)
)");
}

TEST_F(Program, AddsAndRemovesASession)
{
    Outcome outcome = run(kRack);
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.output,
              "added hardware asset 'Rack'\nadded driver session 'Rack'\nadded logical name 'RackSupply'\n");
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(run({"check"}).output, path_ + ": no findings\n");
    outcome = run({"remove", "Rack"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.output,
              "removed driver session 'Rack'\nremoved logical name 'RackSupply'\nremoved hardware asset 'Rack'\n");
    EXPECT_EQ(readFile(path_), exampleStore());
}

TEST_F(Program, RemovesALogicalNameOnly)
{
    EXPECT_EQ(run({"remove", "--logical", "BenchSupply"}).output, "removed logical name 'BenchSupply'\n");
    expectRefusal({"remove", "--logical", "KVX2800T"}, 1, "kvx2800t-store: there is no logical name 'KVX2800T'\n");
}

TEST_F(Program, CreatesAStoreOnlyWhenAsked)
{
    const std::string path = folder_ / "a/new.xml";
    Outcome outcome = runStoreTool({"--store", path, "add", "Rack", "--resource", "x"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.errors, "kvx2800t-store: cannot open " + (folder_ / "a") + ": No such file or directory\n");
    outcome = runStoreTool({"add", "Rack", "--resource", "x", "--create", "--store", path});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.output,
              "added software module 'KVX2800T'\nadded hardware asset 'Rack'\nadded driver session 'Rack'\n");
    EXPECT_EQ(runStoreTool({"--store", path, "check"}).exitCode, 0);
    outcome = runStoreTool({"remove", "Rack", "--store", folder_ / "none.xml"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.errors,
              "kvx2800t-store: cannot read " + (folder_ / "none.xml") + ": No such file or directory\n");
}

TEST_F(Program, LeavesNoFolderBehindWhenNothingIsWritten)
{
    const Outcome outcome = runStoreTool({"--store", folder_ / "a/b/new.xml", "add", "Rack", "--create", "--resource",
                                          "x", "--virtual", "OutputChannel1=OutputChannel2"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_THAT(outcome.errors, HasSubstr("which is a physical name\n"));
    EXPECT_FALSE(std::filesystem::exists(folder_ / "a"));
}

TEST_F(Program, ReplacesOnlyWhenAsked)
{
    ASSERT_EQ(run(kRack).exitCode, 0);
    expectRefusal(kRack, 1, "kvx2800t-store: there is a driver session 'Rack' already\n");
    std::vector<std::string> arguments = kRack;
    arguments.emplace_back("--replace");
    const std::string before = readFile(path_);
    EXPECT_EQ(run(arguments).exitCode, 0);
    EXPECT_EQ(runStoreTool({"--store", path_, "check"}).exitCode, 0);
    EXPECT_EQ(readFile(path_).size(), before.size());
}

TEST_F(Program, PrintsEveryFindingWithItsPlace)
{
    writeFile(path_,
              replaced(replaced(exampleStore(), "<Cache>1<", "<Cache>maybe<"), "idref=\"p15\"", "idref=\"p99\""));
    const Outcome outcome = run({"check"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(
        outcome.output,
        path_ +
            ":44: DriverSessions/IviDriverSession 'KVX2800T'/IviHardwareAsset: refers to 'p99', which is nowhere\n" +
            path_ + ":51: DriverSessions/IviDriverSession 'KVX2800T'/Cache: 'maybe' is not a boolean\n");
}

TEST_F(Program, WritesNothingThatItsOwnCheckWouldRefuse)
{
    expectRefusal({"add", "Rack", "--resource", "x", "--virtual", "OutputChannel1=OutputChannel2"}, 1,
                  "kvx2800t-store: nothing is written, since the store would get faults:\n"
                  "  DriverSessions/IviDriverSession 'Rack'/VirtualNames/IviVirtualName 'OutputChannel1': stands for "
                  "'OutputChannel1', which is a physical name\n");
    expectRefusal({"add", "Rack", "--resource", "x", "--logical", "L", "--logical", "L"}, 1,
                  "LogicalNames/IviLogicalName 'L': has the name 'L' of another one\n");
    expectRefusal({"add", "Rack", "--resource", "x", "--set", "string:a=1", "--set", "string:a=2"}, 1,
                  "kvx2800t-store: the setting 'a' is given twice\n");
    expectRefusal({"add", "Rack", "--resource", "x", "--virtual-range", "R=C:1-3@1", "--virtual-range", "R=C:3-4@1"}, 1,
                  "IviVirtualName 'R': has ranges that overlap: 'R 1-3' and 'R 3-4'\n");
    writeFile(path_, replaced(exampleStore(), "<HardwareAssets>", "<Own idref=\"p16\"/><HardwareAssets>"));
    expectRefusal({"remove", "KVX2800T"}, 1, "  Own: refers to 'p16', which is nowhere\n");
}

TEST_F(Program, WarnsOfWhatFailsOrHasNoEffectInWhatItHasWritten)
{
    writeFile(path_, replaced(exampleStore(), "<DriverSetup></DriverSetup>", "<DriverSetup>BaudRate:x</DriverSetup>"));
    const Outcome outcome = run({"add", "Rack", "--resource", "TCPIP0::10.0.0.5::SOCKET", "--driver-setup",
                                 "IoTimeout:x", "--interchange-check", "1", "--virtual", "Core=CH7", "--virtual-range",
                                 "Rail=OutputChannel:1-4@4", "--set", "boolean:Trace=1"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.output, "added hardware asset 'Rack'\nadded driver session 'Rack'\n");
    const std::string warning = "kvx2800t-store: warning: ";
    const std::string inRack = warning + "DriverSessions/IviDriverSession 'Rack'/";
    EXPECT_EQ(outcome.errors,
              warning +
                  "HardwareAssets/IviHardwareAsset 'Rack'/IOResourceDescriptor: 'TCPIP0::10.0.0.5::SOCKET' is no VISA "
                  "resource name\n" +
                  inRack +
                  "DataComponents/IviStructure 'Configurable Initial Settings'/DataComponents/IviBoolean 'Trace': has "
                  "no effect: the driver reads the string 'model' alone\n" +
                  inRack + "VirtualNames/IviVirtualName 'Core': maps to 'CH7', which is no channel\n" + inRack +
                  "VirtualNames/IviVirtualName 'Rail': maps 'Rail4' to 'OutputChannel7', which is no channel\n" +
                  inRack +
                  "DriverSetup: no session opens with it: 'x' is no value of its key (IVI_ERROR_BAD_OPTION_VALUE)\n" +
                  inRack +
                  "InterchangeCheck: no session opens with it: the driver has no such check "
                  "(IVI_ERROR_BAD_OPTION_VALUE)\n");
    EXPECT_THAT(readFile(path_), HasSubstr("<MapTo>CH7</MapTo>"));
    EXPECT_EQ(run({"remove", "Rack"}).errors, "");
    EXPECT_EQ(run({"check"}).exitCode, 1);
}

TEST_F(Program, PrintsWhatFailsLaterAmongTheFaultsOfTheFormat)
{
    writeFile(path_, replaced(replaced(exampleStore(), "<Cache>1<", "<Cache>maybe<"), "<MapTo>OutputChannel1</MapTo>",
                              "<MapTo>Output7</MapTo>"));
    const Outcome outcome = run({"check"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.errors, "");
    EXPECT_EQ(outcome.output,
              path_ +
                  ":46: DriverSessions/IviDriverSession 'KVX2800T'/VirtualNames/IviVirtualName 'Core': maps to "
                  "'Output7', which is no channel\n" +
                  path_ + ":51: DriverSessions/IviDriverSession 'KVX2800T'/Cache: 'maybe' is not a boolean\n");
}

TEST_F(Program, SaysWhatCanBeDoneAboutAStoreThatCannotBeRead)
{
    const auto expectError = [this](const std::string& complaint, const std::string& remedy) {
        for (const std::string command : {"check", "list"}) {
            const Outcome outcome = run({command});
            EXPECT_EQ(outcome.exitCode, 1) << complaint;
            EXPECT_EQ(outcome.output, "");
            EXPECT_EQ(outcome.errors, "kvx2800t-store: " + path_ + complaint + "\n  " + remedy + "\n");
        }
    };
    const std::string mend = "drivers cannot read it either: mend it with a text editor, or put a copy back";
    const std::string save = "save it as UTF-8 with an editor, and let its first line say encoding=\"UTF-8\"";
    writeFile(path_, "no XML");
    expectError(": not well-formed XML: line 1: expected <", mend);
    writeFile(path_, "<IviConfigStore>\n<a></b></IviConfigStore>");
    expectError(": not well-formed XML: line 2: invalid closing tag name", mend);
    writeFile(path_, std::string("<IviConfigStore>\0</IviConfigStore>", 34));
    expectError(": not well-formed XML: it has a zero byte", mend);
    writeFile(path_, storeWith(repeated("<a/>", config_server::kMostElements)));
    expectError(": not well-formed XML, or more than " + std::to_string(config_server::kMostElements) +
                    " elements or " + std::to_string(config_server::kDeepestNesting) + " levels",
                mend);
    writeFile(path_, "<?xml version='1.0' encoding='ISO-8859-1'?><IviConfigStore/>");
    expectError(": the encoding 'ISO-8859-1' is not UTF-8", save);
    for (const std::string mark : {"\xFF\xFE", "\xFE\xFF"}) {
        writeFile(path_, mark + std::string("<\0?\0", 4));
        expectError(": the encoding UTF-16 is not UTF-8", save);
    }
    writeFile(path_, "<settings/>");
    expectError(": not a configuration store: the root element is <settings>",
                "name the file of the store with --store; its root element is <IviConfigStore>");
    std::filesystem::remove(path_);
    std::filesystem::create_directory(path_);
    expectError(" is not a file",
                "name the file of the store with --store, such as IviConfigurationStore.xml in a folder");
}

TEST_F(Program, FindsBytesThatAreNotUtf8)
{
    writeFile(path_, replaced(exampleStore(), "<Description>Example store<", "<Description>caf\xE9<"));
    const Outcome outcome = run({"check"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.output, path_ + ":3: Description: has control characters or is not UTF-8\n");
}

TEST_F(Program, ChangesStoresThatHadFindingsBefore)
{
    writeFile(path_, replaced(exampleStore(), "<Simulate>0</Simulate>", "<Simulate>maybe</Simulate><Own/>"));
    const std::string before = readFile(path_);
    EXPECT_EQ(run(kRack).exitCode, 0);
    EXPECT_EQ(run({"remove", "Rack"}).exitCode, 0);
    EXPECT_EQ(readFile(path_), before);
    EXPECT_EQ(run({"remove", "KVX2800T"}).exitCode, 0);
    EXPECT_EQ(run({"check"}).exitCode, 0);
}

TEST_F(Program, RefusesBadCommandLines)
{
    expectRefusal({}, 2, "A subcommand is required");
    expectRefusal({"nonsense"}, 2, "A subcommand is required");
    expectRefusal({"list", "--nonsense"}, 2, "--nonsense");
    expectRefusal({"list", "check"}, 2, "");
    expectRefusal({"add"}, 2, "NAME is required");
    expectRefusal({"add", "Rack"}, 2, "needs --resource, or --asset of a hardware asset that the store has");
    expectRefusal({"add", "", "--resource", "x"}, 2, "is empty");
    expectRefusal({"add", "Rack", "--resource", ""}, 2, "is empty");
    expectRefusal({"add", "Ra\nck", "--resource", "x"}, 2, "control characters or not UTF-8: 'Ra\\x0Ack'");
    expectRefusal({"add", "Rack", "--resource", "\x1B[31m"}, 2, "'\\x1B[31m'");
    expectRefusal({"add", std::string(100'000, 'x'), "--resource", "x"}, 2, "longer than 1023 bytes");
    expectRefusal({"add", "Rack", "--resource", "x", "--cache", "yes"}, 2, "not 0 or 1: 'yes'");
    expectRefusal({"add", "Rack", "--resource", "x", "--virtual", "a"}, 2, "not Name=MapTo: 'a'");
    expectRefusal({"add", "Rack", "--resource", "x", "--virtual", "A= OutputChannel1 "}, 2,
                  "not Name=MapTo: 'A= OutputChannel1 '");
    expectRefusal({"add", "Rack", "--resource", "x", "--virtual-range", "a=b"}, 2,
                  "not Name=MapTo:min-max@start: 'a=b'");
    expectRefusal({"add", "Rack", "--resource", "x", "--set", "real:a=b"}, 2, "not type:Name=Value: 'real:a=b'");
    expectRefusal({"add", "Rack", "--resource", "x", "--set", "string:a=\x01"}, 2, "control characters");
    expectRefusal({"remove"}, 2, "NAME is required");
    EXPECT_EQ(runStoreTool({"--store", "", "list"}).exitCode, 2);
}

TEST_F(Program, TakesTextsThatLookLikeListsAsTheyStand)
{
    EXPECT_EQ(
        run({"add", "[a,b]", "--resource", "x", "--logical", "[c,d]", "--virtual", "E=[OutputChannel1,OutputChannel2]"})
            .output,
        "added hardware asset '[a,b]'\nadded driver session '[a,b]'\nadded logical name '[c,d]'\n");
    EXPECT_THAT(readFile(path_), HasSubstr("<MapTo>[OutputChannel1,OutputChannel2]</MapTo>"));
}

TEST_F(Program, TakesShortNamesOfChannelsAsTargetsOfVirtualNames)
{
    EXPECT_EQ(
        run({"add", "Rack", "--resource", "x", "--virtual", "Aux=CH4", "--virtual-range", "Rail=CH:1-3@2"}).output,
        "added hardware asset 'Rack'\nadded driver session 'Rack'\n");
    EXPECT_THAT(readFile(path_), HasSubstr("<MapTo>CH4</MapTo>"));
    EXPECT_EQ(run({"check"}).exitCode, 0);
}

TEST_F(Program, ExplainsItself)
{
    for (const std::vector<std::string>& arguments : std::vector<std::vector<std::string>>{{"--help"},
                                                                                           {"list", "--help"},
                                                                                           {"add", "--help"},
                                                                                           {"remove", "--help"},
                                                                                           {"check", "--help"},
                                                                                           {"register", "--help"},
                                                                                           {"unregister", "--help"}})
    {
        const Outcome outcome = runStoreTool(arguments);
        EXPECT_EQ(outcome.exitCode, 0);
        EXPECT_THAT(outcome.output, HasSubstr("Usage: kvx2800t-store"));
        EXPECT_EQ(outcome.errors, "");
    }
    EXPECT_THAT(runStoreTool({"--version"}).output, StartsWith("kvx2800t-store "));
}

TEST_F(Program, RefusesHostileFiles)
{
    const std::string notXml = "kvx2800t-store: " + path_ + ": not well-formed XML";
    for (const std::string& text :
         std::vector<std::string>{"", "PK\x03\x04 no text", exampleStore().substr(0, 4000),
                                  storeWith(repeated("<a>", 100'000)), std::string("<IviConfigStore>\0", 17)})
    {
        writeFile(path_, text);
        for (const std::vector<std::string>& arguments : {{"list"}, {"check"}, kRack, {"remove", "KVX2800T"}})
            expectRefusal(arguments, 1, notXml);
    }
    EXPECT_EQ(folder_.count(), 1U);
}

TEST_F(Program, RefusesFilesBeyondTheLimits)
{
    writeFile(path_, storeWith(repeated("<a/>", config_server::kMostElements)));
    EXPECT_THAT(run({"list"}).errors, StartsWith("kvx2800t-store: " + path_ + ": not well-formed XML, or more than "));
    std::filesystem::resize_file(path_, config_server::kLargestFile + 1);
    const Outcome outcome = run({"check"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.errors, "kvx2800t-store: " + path_ + " is larger than " +
                                  std::to_string(config_server::kLargestFile) +
                                  " bytes\n  drivers cannot read it either: take out what nothing needs\n");
}

TEST_F(Program, FindsTheStoreAsTheConfigurationServerDoes)
{
    const auto firstLine = [] {
        const Outcome outcome = runStoreTool({"list"});
        return outcome.exitCode == 0 ? outcome.output.substr(0, outcome.output.find('\n')) : outcome.errors;
    };
    const EnvironmentVariable master("IVI_MASTER_STORE", path_.c_str());
    EXPECT_EQ(firstLine(), "store " + path_);
    const EnvironmentVariable chosen("IVICONFIGSERVERDEFAULT", (folder_ / "no.xml").c_str());
    EXPECT_EQ(firstLine(), "kvx2800t-store: cannot read " + (folder_ / "no.xml") + ": No such file or directory\n");
    EXPECT_EQ(run({"list"}).output.substr(0, path_.size() + 6), "store " + path_);
}

TEST_F(Program, TakesAndShowsPathsAndNamesWithLettersOfAnyScript)
{
    const std::string name = "\xCE\xA4\xCF\x81\xCE\xBF\xCF\x86\xCE\xAE \xE9\x9B\xBB\xE6\xBA\x90";
    const std::string path = folder_ / (name + "/store.xml");
    const Outcome outcome = runStoreTool({"--store", path, "add", name, "--create", "--resource", "x"});
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_THAT(outcome.output, HasSubstr("added driver session '" + name + "'\n"));
    EXPECT_THAT(runStoreTool({"--store", path, "list"}).output,
                StartsWith("store " + path + "\ndriver sessions\n  " + name + "\n"));
    const EnvironmentVariable master("IVI_MASTER_STORE", path.c_str());
    EXPECT_THAT(runStoreTool({"list"}).output, StartsWith("store " + path + "\n"));
}

TEST_F(Program, TakesTextsThatBeginWithASlash)
{
    EXPECT_EQ(run({"add", "/rack", "--resource", "/dev/x", "--description", "/"}).output,
              "added hardware asset '/rack'\nadded driver session '/rack'\n");
    EXPECT_EQ(run({"remove", "/rack"}).exitCode, 0);
}

TEST_F(Program, SaysThatTheMasterStoreIsMissing)
{
    const EnvironmentVariable master("IVI_MASTER_STORE", (folder_ / "no.xml").c_str());
    const Outcome outcome = runStoreTool({"list"});
    EXPECT_EQ(outcome.exitCode, 1);
    EXPECT_EQ(outcome.errors, "kvx2800t-store: IVI_MASTER_STORE names a file that is missing\n");
}

TEST_F(Program, CreatesTheMasterStoreThatIsMissing)
{
    const std::string path = folder_ / "a/master.xml";
    const EnvironmentVariable master("IVI_MASTER_STORE", path.c_str());
    const Outcome outcome = runStoreTool(kRackToCreate);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_THAT(runStoreTool({"list"}).output, StartsWith("store " + path + "\ndriver sessions\n  Rack\n"));
}

TEST_F(Program, CreatesTheProcessDefaultThatIsMissing)
{
    const std::string path = folder_ / "a/chosen.xml";
    const EnvironmentVariable master("IVI_MASTER_STORE", path_.c_str());
    const EnvironmentVariable chosen("IVICONFIGSERVERDEFAULT", path.c_str());
    const Outcome outcome = runStoreTool(kRackToCreate);
    EXPECT_EQ(outcome.exitCode, 0) << outcome.errors;
    EXPECT_THAT(runStoreTool({"list"}).output, StartsWith("store " + path + "\ndriver sessions\n  Rack\n"));
    EXPECT_EQ(readFile(path_), exampleStore());
}

TEST_F(Program, RegistersTheDriverAndTakesItBack)
{
    Outcome outcome = run({"unregister"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.output, "removed software module 'KVX2800T'\nkept session 'KVX2800T', which remembers it\n");
    EXPECT_EQ(outcome.errors, "");
    expectRefusal({"unregister"}, 1, "kvx2800t-store: there is no software module 'KVX2800T'\n");
    outcome = run({"register"});
    EXPECT_EQ(outcome.exitCode, 0);
    EXPECT_EQ(outcome.output, "added software module 'KVX2800T'\nconnected session 'KVX2800T' with it\n");
    EXPECT_EQ(run({"check"}).exitCode, 0);
    expectRefusal({"register", "Other"}, 2, "Other");
}

TEST_F(Program, AddingASessionBringsBackTheSessionsOfTheDriver)
{
    ASSERT_EQ(run({"unregister"}).exitCode, 0);
    EXPECT_EQ(run({"add", "Rack", "--resource", "x"}).output,
              "added software module 'KVX2800T'\nconnected session 'KVX2800T' with it\nadded hardware asset 'Rack'\n"
              "added driver session 'Rack'\n");
}

TEST_F(Program, RegistersTheDriverInTheMasterStoreWhateverTheProcessUses)
{
    const std::string path = folder_ / "a/master.xml";
    const EnvironmentVariable chosen("IVICONFIGSERVERDEFAULT", path_.c_str());
    const EnvironmentVariable master("IVI_MASTER_STORE", path.c_str());
    EXPECT_EQ(runStoreTool({"register"}).errors, "kvx2800t-store: IVI_MASTER_STORE names a file that is missing\n");
    EXPECT_EQ(runStoreTool({"register", "--create"}).output, "added software module 'KVX2800T'\n");
    EXPECT_THAT(readFile(path), HasSubstr("<Prefix>KVX2800T</Prefix>"));
    EXPECT_EQ(runStoreTool({"unregister"}).output, "removed software module 'KVX2800T'\n");
    EXPECT_EQ(readFile(path_), exampleStore());
}

TEST_F(Program, LosesNoChangeOfProgramsAtTheSameTime)
{
    std::vector<std::unique_ptr<ChildProcess>> programs;
    programs.reserve(8);
    for (int i = 0; i < 8; ++i)
        programs.push_back(std::make_unique<ChildProcess>(
            storeToolPath(),
            std::vector<std::string>{"--store", path_, "add", "S" + std::to_string(i), "--resource", "x"}));
    for (const auto& program : programs)
        EXPECT_EQ(program->wait(), 0) << program->errorOutput();
    EXPECT_EQ(run({"check"}).exitCode, 0);
    const std::string listing = run({"list"}).output;
    for (int i = 0; i < 8; ++i)
        EXPECT_THAT(listing, HasSubstr("\n  S" + std::to_string(i) + "\n"));
    EXPECT_EQ(folder_.count(), 1U);
}

} // namespace
