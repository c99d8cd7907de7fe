#include "tests/support/platform/store_fixture.h"
#include "tests/support/platform/store_listing.h"

#include <array>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace
{

using kvxtest::obtain;
using kvxtest::OwnedHandle;

constexpr const char* kEveryKindStore = R"(<IviConfigStore><Name>Kinds</Name>
<SoftwareModules><IviSoftwareModule id="m"><Name>Module</Name>
  <PhysicalNames><IviPhysicalName><Name>Out1</Name><RCName>Out</RCName></IviPhysicalName></PhysicalNames>
</IviSoftwareModule></SoftwareModules>
<HardwareAssets><IviHardwareAsset id="h"><Name>Asset</Name></IviHardwareAsset></HardwareAssets>
<DriverSessions><IviDriverSession id="s"><Name>Session</Name>
  <DataComponents>
    <IviBoolean><Name>boolean</Name><Value>1</Value></IviBoolean>
    <IviInteger><Name>integer</Name><Value>-7</Value></IviInteger>
    <IviReal><Name>real</Name><Value>-2.5e-3</Value></IviReal>
    <IviString><Name>string</Name><Value>abc</Value></IviString>
    <IviStructure><Name>structure</Name></IviStructure>
    <IviAPIReference><Name>API reference</Name><Value>api</Value></IviAPIReference>
  </DataComponents>
  <IviHardwareAsset idref="h"/><IviSoftwareModuleRef idref="m"/>
  <VirtualNames><IviVirtualName><Name>Rail</Name><MapTo>Out</MapTo>
    <VirtualRanges><IviVirtualRange><Name>r</Name></IviVirtualRange></VirtualRanges></IviVirtualName></VirtualNames>
</IviDriverSession></DriverSessions>
<Sessions><IviSession id="p"><Name>Plain</Name><IviHardwareAsset idref="h"/><IviSoftwareModuleRef idref="m"/></IviSession></Sessions>
<LogicalNames><IviLogicalName><Name>Alias</Name><IviDriverSession idref="s"/></IviLogicalName>
  <IviLogicalName><Name>Other</Name><IviSession idref="p"/></IviLogicalName></LogicalNames></IviConfigStore>)";

using Kinds = std::set<std::string>;

const Kinds kComponents{"boolean", "integer", "real", "string", "structure", "API reference"};

/// Functions that hand out a handle for a handle.
struct Step
{
    const char* name;
    ViStatus(_VI_FUNC* get)(IviConfigHandle, IviConfigHandle*);
    Kinds kinds;
};

const std::vector<Step> kSteps{
    {"driver sessions", IviConfig_GetConfigStoreDriverSessionCollection, {"store"}},
    {"logical names", IviConfig_GetConfigStoreLogicalNameCollection, {"store"}},
    {"modules", IviConfig_GetConfigStoreSoftwareModuleCollection, {"store"}},
    {"physical names", IviConfig_GetSoftwareModulePhysicalNameCollection, {"module"}},
    {"module", IviConfig_GetSessionSoftwareModuleReference, {"session", "plain session"}},
    {"asset", IviConfig_GetSessionHardwareAssetReference, {"session", "plain session"}},
    {"session", IviConfig_GetLogicalNameSessionReference, {"logical name"}},
    {"virtual names", IviConfig_GetSessionVirtualNameCollection, {"session", "plain session"}},
    {"virtual ranges", IviConfig_GetVirtualNameVirtualRangeCollection, {"virtual name"}},
    {"components",
     IviConfig_GetConfigComponentDataComponentCollection,
     {"asset", "module", "session", "plain session"}},
    {"components", IviConfig_GetStructureDataComponentCollection, {"structure"}},
};

/// Functions that look an item up by its name.
struct LookUp
{
    ViStatus(_VI_FUNC* get)(IviConfigHandle, ViConstString, IviConfigHandle*);
    const char* kind;
    const char* name;
    ViUInt32 notFound;
};

const std::vector<LookUp> kLookUps{
    {IviConfig_GetDriverSession, "store", "Session", 0xBFFA1203U},
    {IviConfig_GetSoftwareModuleItemByName, "modules", "Module", 0xBFFA1207U},
    {IviConfig_GetDriverSessionItemByName, "driver sessions", "Session", 0xBFFA1207U},
    {IviConfig_GetLogicalNameItemByName, "logical names", "Other", 0xBFFA1207U},
    {IviConfig_GetDataComponentItemByName, "components", "integer", 0xBFFA1207U},
};

/// The functions of a collection that count and number.
struct Items
{
    const char* kind;
    ViStatus(_VI_FUNC* count)(IviConfigHandle, ViInt32*);
    ViStatus(_VI_FUNC* item)(IviConfigHandle, ViInt32, IviConfigHandle*);
    ViInt32 expected;
};

const std::vector<Items> kItems{
    {"driver sessions", IviConfig_GetDriverSessionCount, IviConfig_GetDriverSessionItemByIndex, 1},
    {"logical names", IviConfig_GetLogicalNameCount, IviConfig_GetLogicalNameItemByIndex, 2},
    {"physical names", IviConfig_GetPhysicalNameCount, IviConfig_GetPhysicalNameItemByIndex, 1},
    {"virtual names", IviConfig_GetVirtualNameCount, IviConfig_GetVirtualNameItemByIndex, 1},
    {"virtual ranges", IviConfig_GetVirtualRangeCount, IviConfig_GetVirtualRangeItemByIndex, 1},
    {"components", IviConfig_GetDataComponentCount, IviConfig_GetDataComponentItemByIndex, 6},
};

using PropertyIds = std::set<ViInt32>;

/// Functions that read properties, with the properties that objects of each kind have.
template <class Getter>
struct Properties
{
    Getter get;
    std::map<std::string, PropertyIds> ids;
};

const std::vector<Properties<kvxtest::TextGetter>> kTexts{
    {IviConfig_GetConfigStorePropertyViString, {{"store", {1, 2, 3, 4, 5, 6, 7}}}},
    {IviConfig_GetPhysicalNamePropertyViString, {{"physical name", {1, 2}}}},
    {IviConfig_GetHardwareAssetPropertyViString, {{"asset", {1, 2, 3}}}},
    {IviConfig_GetDriverSessionPropertyViString, {{"session", {1, 2, 3, 10}}}},
    {IviConfig_GetSessionPropertyViString, {{"session", {1, 2, 3, 10}}, {"plain session", {1, 2, 3}}}},
    {IviConfig_GetLogicalNamePropertyViString, {{"logical name", {1, 2}}}},
    {IviConfig_GetVirtualNamePropertyViString, {{"virtual name", {1, 2}}}},
    {IviConfig_GetDataComponentPropertyViString,
     {{"boolean", {1, 2, 4, 6, 7, 8}},
      {"integer", {1, 2, 4, 6, 7, 8, 10}},
      {"real", {1, 2, 4, 6, 7, 8, 10}},
      {"string", {1, 2, 4, 6, 7, 8, 9}},
      {"structure", {1, 2, 4, 6, 7, 8}},
      {"API reference", {1, 2, 4, 6, 7, 8, 9}}}},
};

template <class Value>
using ValueGetter = ViStatus(_VI_FUNC*)(IviConfigHandle, ViInt32, Value*);

const std::vector<Properties<ValueGetter<ViInt32>>> kIntegers{
    {IviConfig_GetVirtualRangePropertyViInt32, {{"virtual range", {2, 3, 4}}}},
    {IviConfig_GetDataComponentPropertyViInt32,
     {{"boolean", {3}},
      {"integer", {3, 9}},
      {"real", {3}},
      {"string", {3}},
      {"structure", {3}},
      {"API reference", {3}}}},
};

const std::vector<Properties<ValueGetter<ViBoolean>>> kFlags{
    {IviConfig_GetDriverSessionPropertyViBoolean, {{"session", {4, 5, 6, 7, 8, 9}}}},
    {IviConfig_GetDataComponentPropertyViBoolean,
     {{"boolean", {5, 9}},
      {"integer", {5}},
      {"real", {5}},
      {"string", {5}},
      {"structure", {5}},
      {"API reference", {5}}}},
};

const std::vector<Properties<ValueGetter<ViReal64>>> kReals{
    {IviConfig_GetDataComponentPropertyViReal64,
     {{"boolean", {}}, {"integer", {}}, {"real", {9}}, {"string", {}}, {"structure", {}}, {"API reference", {}}}},
};

template <class Getter>
Kinds kindsOf(const Properties<Getter>& properties)
{
    Kinds kinds;
    for (const auto& entry : properties.ids)
        kinds.insert(entry.first);
    return kinds;
}

ViUInt32 pattern(ViStatus status)
{
    return static_cast<ViUInt32>(status);
}

constexpr ViUInt32 kNullPointer = 0xBFFA0058U;
constexpr ViUInt32 kNotExist = 0xBFFA1207U;
constexpr ViUInt32 kInvalidHandle = 0xBFFA1220U;
constexpr ViUInt32 kInvalidProperty = 0xBFFA1221U;

/// Holds one handle of every kind that the C interface hands out.
class EveryKind : public kvxtest::StoreTest
{
protected:
    void SetUp() override
    {
        StoreTest::SetUp();
        ASSERT_EQ(load(kEveryKindStore), VI_SUCCESS);
        keep("session", obtain(IviConfig_GetDriverSession, store_, "Session"));
        keep("asset", obtain(IviConfig_GetSessionHardwareAssetReference, handle("session")));
        keep("module", obtain(IviConfig_GetSessionSoftwareModuleReference, handle("session")));
        keep("modules", obtain(IviConfig_GetConfigStoreSoftwareModuleCollection, store_));
        keep("driver sessions", obtain(IviConfig_GetConfigStoreDriverSessionCollection, store_));
        keep("logical names", obtain(IviConfig_GetConfigStoreLogicalNameCollection, store_));
        keep("logical name", obtain(IviConfig_GetLogicalNameItemByIndex, handle("logical names"), 2));
        keep("plain session", obtain(IviConfig_GetLogicalNameSessionReference, handle("logical name")));
        keep("physical names", obtain(IviConfig_GetSoftwareModulePhysicalNameCollection, handle("module")));
        keep("physical name", obtain(IviConfig_GetPhysicalNameItemByIndex, handle("physical names"), 1));
        keep("virtual names", obtain(IviConfig_GetSessionVirtualNameCollection, handle("session")));
        keep("virtual name", obtain(IviConfig_GetVirtualNameItemByIndex, handle("virtual names"), 1));
        keep("virtual ranges", obtain(IviConfig_GetVirtualNameVirtualRangeCollection, handle("virtual name")));
        keep("virtual range", obtain(IviConfig_GetVirtualRangeItemByIndex, handle("virtual ranges"), 1));
        keep("components", obtain(IviConfig_GetConfigComponentDataComponentCollection, handle("session")));
        for (const std::string& name : kComponents)
            keep(name, obtain(IviConfig_GetDataComponentItemByName, handle("components"), name.c_str()));
    }

    void TearDown() override
    {
        objects_.clear();
        StoreTest::TearDown();
    }

    IviConfigHandle handle(const std::string& kind) const
    {
        return kind == "store" ? store_ : static_cast<IviConfigHandle>(objects_.at(kind));
    }

    /// Handles that a function for these kinds has to refuse: those of all other kinds, and what is no handle.
    std::vector<IviConfigHandle> refused(const Kinds& kinds) const
    {
        std::vector<IviConfigHandle> handles = handlesOfNothing();
        if (!kinds.contains("store"))
            handles.push_back(store_);
        for (const auto& object : objects_) {
            if (!kinds.contains(object.first))
                handles.push_back(object.second);
        }
        return handles;
    }

    /// What is no handle, or none any more.
    std::vector<IviConfigHandle> handlesOfNothing() const
    {
        return {nullptr, disposedHandle(), closedStore(), &dummy_};
    }

    /// Every function that takes a handle of a store, or of an object, refuses these.
    template <class Function>
    void expectRefused(const Kinds& kinds, Function function) const
    {
        for (const IviConfigHandle other : refused(kinds)) {
            EXPECT_EQ(pattern(function(other)), kInvalidHandle);
            EXPECT_EQ(errorText().substr(0, 34), "IviConfigServer.IviConfigStore.1: ");
        }
    }

    template <class Value>
    void expectKindsChecked(const std::vector<Properties<ValueGetter<Value>>>& table) const
    {
        for (const auto& properties : table)
            expectRefused(kindsOf(properties), [&](IviConfigHandle other) {
                Value value{77};
                const ViStatus status = properties.get(other, 5, &value);
                EXPECT_EQ(value, Value{77});
                return status;
            });
    }

    template <class Value>
    void expectPropertiesChecked(const std::vector<Properties<ValueGetter<Value>>>& table) const
    {
        for (const auto& properties : table) {
            for (const auto& [kind, ids] : properties.ids) {
                EXPECT_EQ(pattern(properties.get(handle(kind), 3, nullptr)), kNullPointer);
                for (const ViInt32 id : kAnyIds) {
                    Value value{77};
                    const ViStatus status = properties.get(handle(kind), id, &value);
                    EXPECT_EQ(pattern(status), ids.contains(id) ? 0U : kInvalidProperty) << kind << ' ' << id;
                    EXPECT_EQ(value == Value{77}, !ids.contains(id)) << kind << ' ' << id;
                }
            }
        }
    }

    static constexpr std::array<ViInt32, 17> kAnyIds{0,
                                                     1,
                                                     2,
                                                     3,
                                                     4,
                                                     5,
                                                     6,
                                                     7,
                                                     8,
                                                     9,
                                                     10,
                                                     11,
                                                     1000,
                                                     -1,
                                                     std::numeric_limits<ViInt32>::max(),
                                                     std::numeric_limits<ViInt32>::min(),
                                                     256 + 1};

private:
    void keep(const std::string& kind, OwnedHandle owned)
    {
        ASSERT_NE(static_cast<IviConfigHandle>(owned), nullptr) << kind;
        objects_.emplace(kind, std::move(owned));
    }

    IviConfigHandle disposedHandle() const
    {
        IviDriverSessionHandle session = nullptr;
        EXPECT_EQ(IviConfig_GetDriverSession(store_, "Session", &session), VI_SUCCESS);
        EXPECT_EQ(IviConfig_DisposeHandle(session), VI_SUCCESS);
        return session;
    }

    static IviConfigHandle closedStore()
    {
        IviConfigStoreHandle store = nullptr;
        EXPECT_EQ(IviConfig_Initialize(&store), VI_SUCCESS);
        EXPECT_EQ(IviConfig_Close(store), VI_SUCCESS);
        return store;
    }

    mutable int dummy_ = 0;
    std::map<std::string, OwnedHandle> objects_;
};

TEST_F(EveryKind, StepsWorkFromTheirKindsOnly)
{
    for (const Step& step : kSteps) {
        for (const std::string& kind : step.kinds)
            EXPECT_NE(static_cast<IviConfigHandle>(obtain(step.get, handle(kind))), nullptr) << step.name;
        expectRefused(step.kinds, [&](IviConfigHandle other) {
            IviConfigHandle result = store_;
            const ViStatus status = step.get(other, &result);
            EXPECT_EQ(result, nullptr) << step.name;
            return status;
        });
    }
}

TEST_F(EveryKind, StepsNeedAPlaceForTheHandle)
{
    for (const Step& step : kSteps)
        EXPECT_EQ(pattern(step.get(handle(*step.kinds.begin()), nullptr)), kNullPointer) << step.name;
}

TEST_F(EveryKind, EachStepHandsOutAHandleOfItsOwn)
{
    for (const Step& step : kSteps) {
        IviConfigHandle first = nullptr;
        IviConfigHandle second = nullptr;
        EXPECT_EQ(step.get(handle(*step.kinds.begin()), &first), VI_SUCCESS);
        EXPECT_EQ(step.get(handle(*step.kinds.begin()), &second), VI_SUCCESS);
        EXPECT_NE(first, second) << step.name;
        EXPECT_EQ(IviConfig_DisposeHandle(first), VI_SUCCESS);
        EXPECT_EQ(pattern(IviConfig_DisposeHandle(first)), kInvalidHandle);
        EXPECT_EQ(IviConfig_DisposeHandle(second), VI_SUCCESS);
    }
}

TEST_F(EveryKind, NamesAreLookedUpInTheirCollectionsOnly)
{
    for (const LookUp& lookUp : kLookUps) {
        EXPECT_NE(static_cast<IviConfigHandle>(obtain(lookUp.get, handle(lookUp.kind), lookUp.name)), nullptr);
        expectRefused({lookUp.kind}, [&](IviConfigHandle other) {
            IviConfigHandle result = store_;
            const ViStatus status = lookUp.get(other, lookUp.name, &result);
            EXPECT_EQ(result, nullptr) << lookUp.name;
            return status;
        });
    }
}

TEST_F(EveryKind, NamesAreComparedExactly)
{
    for (const LookUp& lookUp : kLookUps) {
        std::string otherCase = lookUp.name;
        otherCase[1] = 'X';
        std::string upper = lookUp.name;
        upper[0] = upper[0] == 'i' ? 'I' : 's';
        const std::string longer = std::string(lookUp.name) + std::string(100000, 'x');
        for (const std::string& name :
             {std::string(), otherCase, upper, lookUp.name + std::string(" "), " " + std::string(lookUp.name), longer})
        {
            IviConfigHandle result = store_;
            EXPECT_EQ(pattern(lookUp.get(handle(lookUp.kind), name.c_str(), &result)), lookUp.notFound) << name;
            EXPECT_EQ(result, nullptr);
        }
    }
}

TEST_F(EveryKind, LookUpsNeedANameAndAPlaceForTheHandle)
{
    for (const LookUp& lookUp : kLookUps) {
        IviConfigHandle result = store_;
        EXPECT_EQ(pattern(lookUp.get(handle(lookUp.kind), nullptr, &result)), kNullPointer);
        EXPECT_EQ(result, nullptr);
        EXPECT_EQ(pattern(lookUp.get(handle(lookUp.kind), lookUp.name, nullptr)), kNullPointer);
        EXPECT_EQ(pattern(lookUp.get(handle(lookUp.kind), nullptr, nullptr)), kNullPointer);
    }
}

TEST_F(EveryKind, ItemsAreCountedInTheirCollectionsOnly)
{
    for (const Items& items : kItems) {
        ViInt32 count = -1;
        EXPECT_EQ(items.count(handle(items.kind), &count), VI_SUCCESS);
        EXPECT_EQ(count, items.expected) << items.kind;
        EXPECT_EQ(pattern(items.count(handle(items.kind), nullptr)), kNullPointer);
        expectRefused({items.kind}, [&](IviConfigHandle other) {
            ViInt32 untouched = -1;
            const ViStatus status = items.count(other, &untouched);
            EXPECT_EQ(untouched, -1);
            return status;
        });
    }
}

TEST_F(EveryKind, ItemsAreNumberedFromOneToTheCount)
{
    for (const Items& items : kItems) {
        for (ViInt32 index = 1; index <= items.expected; ++index)
            EXPECT_NE(static_cast<IviConfigHandle>(obtain(items.item, handle(items.kind), index)), nullptr);
        for (const ViInt32 index : {ViInt32{0}, ViInt32{-1}, items.expected + 1, std::numeric_limits<ViInt32>::max(),
                                    std::numeric_limits<ViInt32>::min()})
        {
            IviConfigHandle result = store_;
            EXPECT_EQ(pattern(items.item(handle(items.kind), index, &result)), kNotExist) << items.kind << index;
            EXPECT_EQ(result, nullptr);
        }
        EXPECT_EQ(pattern(items.item(handle(items.kind), 1, nullptr)), kNullPointer);
        expectRefused({items.kind}, [&](IviConfigHandle other) {
            IviConfigHandle result = store_;
            const ViStatus status = items.item(other, 1, &result);
            EXPECT_EQ(result, nullptr);
            return status;
        });
    }
}

TEST_F(EveryKind, ValuesAreReadFromTheirKindsOnly)
{
    expectKindsChecked(kIntegers);
    expectKindsChecked(kFlags);
    expectKindsChecked(kReals);
}

TEST_F(EveryKind, ValuesAreThoseThatObjectsOfTheKindHave)
{
    expectPropertiesChecked(kIntegers);
    expectPropertiesChecked(kFlags);
    expectPropertiesChecked(kReals);
}

TEST_F(EveryKind, TextsAreReadFromTheirKindsOnly)
{
    for (const auto& texts : kTexts)
        expectRefused(kindsOf(texts), [&](IviConfigHandle other) {
            std::array<ViChar, 8> text{"before"};
            const ViStatus status = texts.get(other, 1, 8, text.data());
            EXPECT_STREQ(text.data(), "before");
            return status;
        });
}

TEST_F(EveryKind, TextsAreThoseThatObjectsOfTheKindHave)
{
    for (const auto& texts : kTexts) {
        for (const auto& [kind, ids] : texts.ids) {
            for (const ViInt32 id : kAnyIds) {
                std::array<ViChar, 300> text{"before"};
                const ViStatus status = texts.get(handle(kind), id, static_cast<ViInt32>(text.size()), text.data());
                EXPECT_EQ(pattern(status), ids.contains(id) ? 0U : kInvalidProperty) << kind << ' ' << id;
                EXPECT_EQ(std::string(text.data()) == "before", !ids.contains(id)) << kind << ' ' << id;
            }
        }
    }
}

TEST_F(EveryKind, TextsFollowTheBufferRules)
{
    for (const auto& texts : kTexts) {
        for (const auto& entry : texts.ids) {
            const IviConfigHandle object = handle(entry.first);
            const std::string name = kvxtest::readText(texts.get, object, 1);
            const auto needed = static_cast<ViInt32>(name.size()) + 1;
            ASSERT_GT(needed, 3);
            std::array<ViChar, 32> text{};
            const auto read = [&](ViInt32 size) {
                text.fill('#');
                return texts.get(object, 1, size, text.data());
            };
            EXPECT_EQ(read(0), needed);
            EXPECT_EQ(text.front(), '#');
            EXPECT_EQ(read(1), needed);
            EXPECT_EQ(std::string(text.data(), 2), std::string("\0#", 2));
            EXPECT_EQ(read(needed - 1), needed);
            EXPECT_EQ(text.data(), name.substr(0, name.size() - 1));
            EXPECT_EQ(text.at(name.size()), '#');
            for (const ViInt32 size : {needed, needed + 1, ViInt32{-1}, std::numeric_limits<ViInt32>::min()}) {
                EXPECT_EQ(read(size), VI_SUCCESS);
                EXPECT_EQ(text.data(), name);
                EXPECT_EQ(text.at(name.size() + 1), '#');
            }
            EXPECT_EQ(texts.get(object, 1, 0, nullptr), needed);
            for (const ViInt32 size : {ViInt32{1}, needed, ViInt32{-1}})
                EXPECT_EQ(pattern(texts.get(object, 1, size, nullptr)), kNullPointer);
        }
    }
    IviConfig_ClearError();
}

TEST_F(EveryKind, EmptyTextNeedsRoomForItsTerminator)
{
    std::array<ViChar, 2> text{'#', '#'};
    const IviConfigHandle asset = handle("asset");
    EXPECT_EQ(IviConfig_GetHardwareAssetPropertyViString(asset, 3, 0, nullptr), 1);
    EXPECT_EQ(IviConfig_GetHardwareAssetPropertyViString(asset, 3, 1, text.data()), VI_SUCCESS);
    EXPECT_EQ(text[0], '\0');
    EXPECT_EQ(text[1], '#');
}

TEST_F(EveryKind, OnlyStoresAreClosedAndLoaded)
{
    expectRefused({"store"}, [](IviConfigHandle other) { return IviConfig_Close(other); });
    expectRefused({"store"}, [](IviConfigHandle other) { return IviConfig_Deserialize(other, "/x"); });
}

TEST_F(EveryKind, EverythingButAStoreIsDisposed)
{
    EXPECT_EQ(pattern(IviConfig_DisposeHandle(store_)), kInvalidHandle);
    for (const IviConfigHandle other : handlesOfNothing())
        EXPECT_EQ(pattern(IviConfig_DisposeHandle(other)), kInvalidHandle);
    for (const Step& step : kSteps) {
        IviConfigHandle object = nullptr;
        ASSERT_EQ(step.get(handle(*step.kinds.begin()), &object), VI_SUCCESS);
        EXPECT_EQ(IviConfig_DisposeHandle(object), VI_SUCCESS) << step.name;
    }
}

TEST_F(EveryKind, ReadingASizeOrACutTextIsNoFailure)
{
    std::array<ViChar, 2> text{};
    EXPECT_EQ(IviConfig_GetPhysicalNamePropertyViString(handle("physical name"), 1, 2, text.data()), 5);
    EXPECT_EQ(errorText(), "");
}

TEST_F(EveryKind, FailuresNameTheFunctionAndTheItem)
{
    IviConfigHandle result = nullptr;
    IviConfig_GetDataComponentItemByName(handle("components"), "Gone", &result);
    EXPECT_EQ(errorText(), "IviConfigServer.IviConfigStore.1: GetDataComponentItemByName 'Gone': the collection has no "
                           "such item");
    IviConfig_GetLogicalNameItemByName(handle("logical names"), "Gone", &result);
    EXPECT_EQ(errorText(),
              "IviConfigServer.IviConfigStore.1: GetLogicalNameItemByName 'Gone': the collection has no such item");
    IviConfig_GetDriverSessionItemByIndex(handle("driver sessions"), 2, &result);
    EXPECT_EQ(errorText(),
              "IviConfigServer.IviConfigStore.1: GetDriverSessionItemByIndex '2': the collection has no such item");
    IviConfig_GetVirtualNameItemByIndex(handle("virtual names"), 2, &result);
    EXPECT_EQ(errorText(),
              "IviConfigServer.IviConfigStore.1: GetVirtualNameItemByIndex '2': the collection has no such item");
    IviConfig_GetStructureDataComponentCollection(handle("string"), &result);
    EXPECT_EQ(errorText(),
              "IviConfigServer.IviConfigStore.1: GetStructureDataComponentCollection: the handle is not valid here");
}

TEST_F(EveryKind, ObjectsOutliveTheirStoreAndEachOther)
{
    IviConfigStoreHandle store = nullptr;
    ASSERT_EQ(IviConfig_Initialize(&store), VI_SUCCESS);
    ASSERT_EQ(IviConfig_Deserialize(store, writeFile("other.xml", kEveryKindStore).c_str()), VI_SUCCESS);
    std::vector<OwnedHandle> chain;
    chain.push_back(obtain(IviConfig_GetDriverSession, store, "Session"));
    ASSERT_EQ(IviConfig_Close(store), VI_SUCCESS);
    OwnedHandle names = [&chain] {
        const OwnedHandle session = std::move(chain.back());
        return obtain(IviConfig_GetSessionVirtualNameCollection, session);
    }();
    const OwnedHandle rail = [&names] {
        const OwnedHandle collection = std::move(names);
        return obtain(IviConfig_GetVirtualNameItemByIndex, collection, 1);
    }();
    EXPECT_EQ(kvxtest::readText(IviConfig_GetVirtualNamePropertyViString, rail, 2), "Out");
}

TEST_F(EveryKind, StoresAndTheirFilesNeedAPlaceAndAName)
{
    EXPECT_EQ(pattern(IviConfig_Initialize(nullptr)), kNullPointer);
    EXPECT_EQ(pattern(IviConfig_Deserialize(store_, nullptr)), kNullPointer);
}

using ConfigServerErrors = kvxtest::StoreTest;

TEST_F(ConfigServerErrors, FailuresAreToldInTheThreadsRecordFirstOneFirst)
{
    EXPECT_EQ(IviConfig_Deserialize(store_, "/no/such/store.xml"), IVICONFIG_ERROR_DESERIALIZE_FAILED);
    IviDriverSessionHandle found = nullptr;
    EXPECT_EQ(IviConfig_GetDriverSession(store_, "Gone", &found), IVICONFIG_ERROR_SESSION_NOT_FOUND);
    EXPECT_EQ(errorText(), "IviConfigServer.IviConfigStore.1: Deserialize '/no/such/store.xml': the file is missing or "
                           "not a configuration store");
    EXPECT_EQ(errorText(), "");
    EXPECT_EQ(IviConfig_GetDriverSession(store_, "Gone", &found), IVICONFIG_ERROR_SESSION_NOT_FOUND);
    EXPECT_EQ(errorText(),
              "IviConfigServer.IviConfigStore.1: GetDriverSession 'Gone': no driver session has this name");
}

TEST_F(ConfigServerErrors, RecordIsSharedWithTheSessionService)
{
    IviDriverSessionHandle found = nullptr;
    EXPECT_EQ(IviConfig_GetDriverSession(store_, "Gone", &found), IVICONFIG_ERROR_SESSION_NOT_FOUND);
    ViStatus code = 0;
    EXPECT_GT(IviSession_GetError(VI_NULL, 0, &code, nullptr), 1);
    EXPECT_EQ(code, IVICONFIG_ERROR_SESSION_NOT_FOUND);
    EXPECT_EQ(IviConfig_ClearError(), VI_SUCCESS);
    EXPECT_EQ(IviSession_GetError(VI_NULL, 0, &code, nullptr), 1);
    EXPECT_EQ(code, IVI_SUCCESS);
    IviSession_SetError(VI_NULL, -3, "from elsewhere");
    EXPECT_EQ(errorText(), "from elsewhere");
}

TEST_F(ConfigServerErrors, GetErrorFollowsTheBufferRules)
{
    IviSession_SetError(VI_NULL, -3, "abcdef");
    std::array<ViChar, 8> text{};
    EXPECT_EQ(IviConfig_GetError(0, nullptr), 7);
    EXPECT_EQ(IviConfig_GetError(4, nullptr), IVI_ERROR_NULL_POINTER);
    EXPECT_EQ(IviConfig_GetError(4, text.data()), 7);
    EXPECT_STREQ(text.data(), "abc");
    EXPECT_EQ(errorText(), "");
}

TEST_F(ConfigServerErrors, ThreadsHaveErrorTextsOfTheirOwn)
{
    IviDriverSessionHandle found = nullptr;
    EXPECT_EQ(IviConfig_GetDriverSession(store_, "Gone", &found), IVICONFIG_ERROR_SESSION_NOT_FOUND);
    std::thread([] { EXPECT_EQ(errorText(), ""); }).join();
    EXPECT_NE(errorText(), "");
}

} // namespace
