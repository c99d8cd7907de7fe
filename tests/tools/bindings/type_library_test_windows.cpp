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

/// The members of the library's types of a kind, by name.
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

    std::multiset<std::string> members(TYPEKIND kind) const
    {
        std::multiset<std::string> names;
        for (UINT i = 0; i < library_->GetTypeInfoCount(); ++i) {
            TYPEKIND each = TKIND_MAX;
            library_->GetTypeInfoType(i, &each);
            ITypeInfo* type = nullptr;
            if (each != kind || FAILED(library_->GetTypeInfo(i, &type)))
                continue;
            addMembers(*type, names);
            type->Release();
        }
        return names;
    }

private:
    static void addMembers(ITypeInfo& type, std::multiset<std::string>& names)
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

std::multiset<std::string> exportedFunctions()
{
    std::multiset<std::string> names;
    std::ifstream file(KVX_EXPORTS);
    for (std::string name; file >> name;)
        names.insert(name);
    return names;
}

TEST(TypeLibrary, HasEveryExportedFunction)
{
    const TypeLibrary library;
    ASSERT_EQ(library.status(), S_OK);
    EXPECT_EQ(exportedFunctions().size(), 169U);
    EXPECT_EQ(library.members(TKIND_MODULE), exportedFunctions());
}

TEST(TypeLibrary, HasConstantsAsEnumerations)
{
    const TypeLibrary library;
    ASSERT_EQ(library.status(), S_OK);
    const std::multiset<std::string> constants = library.members(TKIND_ENUM);
    EXPECT_EQ(constants.count("KVX2800T_ATTR_VOLTAGE_LEVEL"), 1U);
    EXPECT_EQ(constants.count("KVX2800T_VAL_CURRENT_TRIP"), 1U);
    EXPECT_EQ(constants.count("KVX2800T_ERROR_IO"), 1U);
    EXPECT_EQ(constants.count("IVI_WARN_NSUP_RESET"), 1U);
}

} // namespace
} // namespace kvxtest
