#include "tools/store/element_rules.h"

#include <algorithm>
#include <array>

namespace store_tool
{
namespace
{

constexpr ItemRule definition(std::string_view element)
{
    return {element, false};
}

constexpr ItemRule reference(std::string_view element)
{
    return {element, true};
}

constexpr std::array kApis{definition("IviPublishedAPI")};
constexpr std::array kApiReferences{reference("IviPublishedAPI")};
constexpr std::array kSoftwareModules{definition("IviSoftwareModule")};
constexpr std::array kHardwareAssets{definition("IviHardwareAsset")};
constexpr std::array kDriverSessions{definition("IviDriverSession")};
constexpr std::array kSessions{reference("IviDriverSession"), definition("IviSession")};
constexpr std::array kLogicalNames{definition("IviLogicalName")};
constexpr std::array kPhysicalNames{definition("IviPhysicalName")};
constexpr std::array kPhysicalRanges{definition("IviPhysicalRange")};
constexpr std::array kVirtualNames{definition("IviVirtualName")};
constexpr std::array kVirtualRanges{definition("IviVirtualRange")};
constexpr std::array kDataComponents{definition("IviBoolean"),   definition("IviInteger"),
                                     definition("IviReal"),      definition("IviString"),
                                     definition("IviStructure"), definition("IviAPIReference")};

constexpr std::array<ChildRule, 15> kStore{{
    {"Name", Content::Text},
    {"Description", Content::Text},
    {"Vendor", Content::Text},
    {"Revision", Content::Text},
    {"SpecificationMajorVersion", Content::Integer},
    {"SpecificationMinorVersion", Content::Integer},
    {"MasterLocation", Content::Text},
    {"ProcessDefaultLocation", Content::Text},
    {"ActualLocation", Content::Text},
    {"PublishedAPIs", Content::Collection, kApis},
    {"SoftwareModules", Content::Collection, kSoftwareModules},
    {"HardwareAssets", Content::Collection, kHardwareAssets},
    {"DriverSessions", Content::Collection, kDriverSessions},
    {"Sessions", Content::Collection, kSessions},
    {"LogicalNames", Content::Collection, kLogicalNames},
}};

constexpr std::array<ChildRule, 4> kApi{{
    {"Name", Content::Required},
    {"MajorVersion", Content::Integer},
    {"MinorVersion", Content::Integer},
    {"Type", Content::Text},
}};

constexpr std::array<ChildRule, 11> kSoftwareModule{{
    {"Name", Content::Required},
    {"Description", Content::Text},
    {"DataComponents", Content::Collection, kDataComponents},
    {"ModulePath", Content::Text},
    {"Prefix", Content::Text},
    {"ProgID", Content::Text},
    {"SupportedInstrumentModels", Content::Text},
    {"PhysicalNames", Content::Collection, kPhysicalNames},
    {"PublishedAPIs", Content::Collection, kApiReferences},
    {"ModulePath64", Content::Text},
    {"AssemblyQualifiedClassName", Content::Text},
}};

constexpr std::array<ChildRule, 4> kPhysicalName{{
    {"Name", Content::Identifier},
    {"RCName", Content::Text},
    {"PhysicalNames", Content::Collection, kPhysicalNames},
    {"PhysicalRanges", Content::Collection, kPhysicalRanges},
}};

constexpr std::array<ChildRule, 3> kPhysicalRange{{
    {"Name", Content::Required},
    {"Max", Content::Index},
    {"Min", Content::Index},
}};

constexpr std::array<ChildRule, 4> kHardwareAsset{{
    {"Name", Content::Required},
    {"Description", Content::Text},
    {"DataComponents", Content::Collection, kDataComponents},
    {"IOResourceDescriptor", Content::Required},
}};

constexpr std::array<ChildRule, 14> kDriverSession{{
    {"Name", Content::Required},
    {"Description", Content::Text},
    {"DataComponents", Content::Collection, kDataComponents},
    {"IviHardwareAsset", Content::Reference},
    {"IviSoftwareModuleRef", Content::Reference},
    {"VirtualNames", Content::Collection, kVirtualNames},
    {"SoftwareModuleName", Content::Text},
    {"Cache", Content::Boolean},
    {"DriverSetup", Content::Text},
    {"InterchangeCheck", Content::Boolean},
    {"QueryInstrStatus", Content::Boolean},
    {"RangeCheck", Content::Boolean},
    {"RecordCoercions", Content::Boolean},
    {"Simulate", Content::Boolean},
}};

/// A session that is no driver session has the same beginning.
constexpr auto kSession = std::span(kDriverSession).first<7>();

constexpr std::array<ChildRule, 3> kVirtualName{{
    {"Name", Content::Identifier},
    {"MapTo", Content::Target},
    {"VirtualRanges", Content::Collection, kVirtualRanges},
}};

constexpr std::array<ChildRule, 4> kVirtualRange{{
    {"Name", Content::Required},
    {"Max", Content::Index},
    {"Min", Content::Index},
    {"StartingPhysicalIndex", Content::Index},
}};

constexpr std::array<ChildRule, 4> kLogicalName{{
    {"Name", Content::Required},
    {"Description", Content::Text},
    {"IviDriverSession", Content::Reference},
    {"IviSession", Content::Reference},
}};

constexpr std::array<ChildRule, 8> kHeading{{
    {"Name", Content::Required},
    {"Description", Content::Text},
    {"ReadOnly", Content::Boolean},
    {"UsedInSession", Content::Usage},
    {"Type", Content::TypeName, {}, true},
    {"HelpContextID", Content::Integer},
    {"HelpFilePath", Content::Text},
    {"SoftwareModuleKey", Content::Text},
}};

template <std::size_t Count>
consteval auto afterHeading(const std::array<ChildRule, Count>& rest)
{
    std::array<ChildRule, kHeading.size() + Count> all{};
    std::copy(kHeading.begin(), kHeading.end(), all.begin());
    std::copy(rest.begin(), rest.end(), all.begin() + kHeading.size());
    return all;
}

/// Unlike a string's, a value that is left out is none of its type.
consteval ChildRule obligatoryValue(Content content)
{
    return {"Value", content, {}, true};
}

constexpr auto kBoolean = afterHeading(std::array{obligatoryValue(Content::Boolean)});
constexpr auto kInteger =
    afterHeading(std::array{ChildRule{"Units", Content::Text}, obligatoryValue(Content::Integer)});
constexpr auto kReal = afterHeading(std::array{ChildRule{"Units", Content::Text}, obligatoryValue(Content::Real)});
constexpr auto kString = afterHeading(std::array{ChildRule{"Value", Content::Text}});
constexpr auto kStructure = afterHeading(std::array{ChildRule{"DataComponents", Content::Collection, kDataComponents}});
constexpr auto kApiReference =
    afterHeading(std::array{ChildRule{"IviPublishedAPI", Content::Reference}, ChildRule{"Value", Content::Text}});

struct ElementRule
{
    std::string_view element;
    std::span<const ChildRule> children;
};

constexpr std::array<ElementRule, 17> kElements{{
    {"IviConfigStore", kStore},
    {"IviPublishedAPI", kApi},
    {"IviSoftwareModule", kSoftwareModule},
    {"IviPhysicalName", kPhysicalName},
    {"IviPhysicalRange", kPhysicalRange},
    {"IviHardwareAsset", kHardwareAsset},
    {"IviDriverSession", kDriverSession},
    {"IviSession", kSession},
    {"IviVirtualName", kVirtualName},
    {"IviVirtualRange", kVirtualRange},
    {"IviLogicalName", kLogicalName},
    {"IviBoolean", kBoolean},
    {"IviInteger", kInteger},
    {"IviReal", kReal},
    {"IviString", kString},
    {"IviStructure", kStructure},
    {"IviAPIReference", kApiReference},
}};

} // namespace

std::span<const ChildRule> rulesFor(std::string_view element)
{
    const auto* const rule = std::find_if(kElements.begin(), kElements.end(),
                                          [element](const ElementRule& row) { return row.element == element; });
    return rule == kElements.end() ? std::span<const ChildRule>() : rule->children;
}

std::size_t positionInRoot(std::string_view child)
{
    const auto* const rule =
        std::find_if(kStore.begin(), kStore.end(), [child](const ChildRule& row) { return row.element == child; });
    return static_cast<std::size_t>(rule - kStore.begin());
}

std::string_view referredElement(std::string_view reference)
{
    constexpr std::string_view kSuffix = "Ref";
    if (reference.ends_with(kSuffix))
        reference.remove_suffix(kSuffix.size());
    return reference;
}

} // namespace store_tool
