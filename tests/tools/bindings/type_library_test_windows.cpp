// The type library in the driver's DLL, as Windows itself reads it.
#include <gtest/gtest.h>

#include <ole2.h>

#include <fstream>
#include <set>
#include <string>
#include <vector>

namespace kvxtest
{
namespace
{

std::string asciiOf(BSTR text)
{
    std::string ascii;
    for (UINT i = 0; i < SysStringLen(text); ++i)
        ascii += static_cast<char>(text[i]);
    SysFreeString(text);
    return ascii;
}

/// What a type library calls its types of a kind and their members, and where functions are.
class TypeLibrary
{
public:
    TypeLibrary() { status_ = LoadTypeLibEx(L"" KVX_DRIVER_FILE, REGKIND_NONE, &library_); }

    ~TypeLibrary()
    {
        if (library_ != nullptr)
            library_->Release();
    }

    TypeLibrary(const TypeLibrary&) = delete;
    TypeLibrary& operator=(const TypeLibrary&) = delete;

    HRESULT status() const { return status_; }

    using Names = std::multiset<std::string>;

    Names types(TYPEKIND kind) const
    {
        return collect(kind, [](ITypeInfo& type, Names& names) { names.insert(nameOf(type, MEMBERID_NIL)); });
    }

    Names members(TYPEKIND kind) const { return collect(kind, addMembers); }

    /// With the DLL in front, "dll!name".
    Names entryPoints() const { return collect(TKIND_MODULE, addEntryPoints); }

private:
    template <class Add>
    Names collect(TYPEKIND kind, Add add) const
    {
        Names names;
        for (UINT i = 0; i < library_->GetTypeInfoCount(); ++i) {
            TYPEKIND each = TKIND_MAX;
            library_->GetTypeInfoType(i, &each);
            ITypeInfo* type = nullptr;
            if (each != kind || FAILED(library_->GetTypeInfo(i, &type)))
                continue;
            add(*type, names);
            type->Release();
        }
        return names;
    }

    static void addEntryPoints(ITypeInfo& type, Names& names)
    {
        TYPEATTR* counts = nullptr;
        type.GetTypeAttr(&counts);
        for (UINT i = 0; i < counts->cFuncs; ++i) {
            FUNCDESC* function = nullptr;
            type.GetFuncDesc(i, &function);
            BSTR dll = nullptr;
            BSTR name = nullptr;
            type.GetDllEntry(function->memid, function->invkind, &dll, &name, nullptr);
            names.insert(asciiOf(dll) + "!" + asciiOf(name));
            type.ReleaseFuncDesc(function);
        }
        type.ReleaseTypeAttr(counts);
    }

    static void addMembers(ITypeInfo& type, Names& names)
    {
        TYPEATTR* counts = nullptr;
        type.GetTypeAttr(&counts);
        for (UINT i = 0; i < counts->cFuncs; ++i) {
            FUNCDESC* function = nullptr;
            type.GetFuncDesc(i, &function);
            names.insert(nameOf(type, function->memid));
            type.ReleaseFuncDesc(function);
        }
        for (UINT i = 0; i < counts->cVars; ++i) {
            VARDESC* value = nullptr;
            type.GetVarDesc(i, &value);
            names.insert(nameOf(type, value->memid));
            type.ReleaseVarDesc(value);
        }
        type.ReleaseTypeAttr(counts);
    }

    static std::string nameOf(ITypeInfo& type, MEMBERID member)
    {
        BSTR name = nullptr;
        type.GetDocumentation(member, &name, nullptr, nullptr, nullptr);
        return asciiOf(name);
    }

    ITypeLib* library_ = nullptr;
    HRESULT status_ = E_FAIL;
};

/// With something in front of each.
TypeLibrary::Names exportedFunctions(const std::string& place = "")
{
    TypeLibrary::Names names;
    std::ifstream file(KVX_EXPORTS);
    for (std::string name; file >> name;)
        names.insert(place + name);
    return names;
}

TEST(TypeLibrary, HasEveryExportedFunction)
{
    const TypeLibrary library;
    ASSERT_EQ(library.status(), S_OK);
    EXPECT_EQ(exportedFunctions().size(), 170U);
    EXPECT_EQ(library.members(TKIND_MODULE), exportedFunctions());
}

TEST(TypeLibrary, SaysWhereTheFunctionsAre)
{
    const TypeLibrary library;
    ASSERT_EQ(library.status(), S_OK);
    EXPECT_EQ(library.entryPoints(), exportedFunctions(KVX_DRIVER_NAME "!"));
}

TEST(TypeLibrary, HasConstantsAsEnumerations)
{
    const TypeLibrary library;
    ASSERT_EQ(library.status(), S_OK);
    const TypeLibrary::Names enumerations = library.types(TKIND_ENUM);
    EXPECT_EQ(enumerations.size(), 22U);
    EXPECT_EQ(enumerations.count("KVX2800T_Attribute"), 1U);
    EXPECT_EQ(enumerations.count("KVX2800T_CurrentLimitBehavior"), 1U);
    const TypeLibrary::Names constants = library.members(TKIND_ENUM);
    EXPECT_EQ(constants.count("KVX2800T_ATTR_VOLTAGE_LEVEL"), 1U);
    EXPECT_EQ(constants.count("KVX2800T_VAL_CURRENT_TRIP"), 1U);
    EXPECT_EQ(constants.count("KVX2800T_ERROR_IO"), 1U);
    EXPECT_EQ(constants.count("IVI_WARN_NSUP_RESET"), 1U);
}

} // namespace
} // namespace kvxtest
