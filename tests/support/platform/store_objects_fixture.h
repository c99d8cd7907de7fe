#pragma once

#include "tests/support/platform/store_fixture.h"
#include "tests/support/platform/store_listing.h"

#include <string>
#include <vector>

namespace kvxtest
{

/// A store with one driver session "S" of this content.
inline std::string sessionOf(const std::string& content)
{
    return "<IviConfigStore><DriverSessions><IviDriverSession id='s'><Name>S</Name>" + content +
           "</IviDriverSession></DriverSessions></IviConfigStore>";
}

inline std::string component(const std::string& element, const std::string& content)
{
    return "<" + element + "><Name>" + element + "</Name>" + content + "</" + element + ">";
}

/// Loads stores of a few objects and reads these.
class StoreObjects : public StoreTest
{
protected:
    /// The names of a collection's items in order.
    template <class Count, class Item>
    static std::vector<std::string> namesOf(const OwnedHandle& collection, Count getCount, Item getItem,
                                            TextGetter getText)
    {
        ViInt32 count = -1;
        EXPECT_EQ(getCount(collection, &count), VI_SUCCESS);
        std::vector<std::string> names;
        for (ViInt32 index = 1; index <= count; ++index)
            names.push_back(readText(getText, obtain(getItem, collection, index), 1));
        return names;
    }

    static std::vector<std::string> componentNames(const OwnedHandle& collection)
    {
        return namesOf(collection, IviConfig_GetDataComponentCount, IviConfig_GetDataComponentItemByIndex,
                       IviConfig_GetDataComponentPropertyViString);
    }

    static std::vector<std::string> virtualNames(IviSessionHandle session)
    {
        return namesOf(obtain(IviConfig_GetSessionVirtualNameCollection, session), IviConfig_GetVirtualNameCount,
                       IviConfig_GetVirtualNameItemByIndex, IviConfig_GetVirtualNamePropertyViString);
    }

    static std::vector<std::string> physicalNames(IviSoftwareModuleHandle module)
    {
        return namesOf(obtain(IviConfig_GetSoftwareModulePhysicalNameCollection, module),
                       IviConfig_GetPhysicalNameCount, IviConfig_GetPhysicalNameItemByIndex,
                       IviConfig_GetPhysicalNamePropertyViString);
    }

    std::vector<std::string> driverSessions() const
    {
        return namesOf(obtain(IviConfig_GetConfigStoreDriverSessionCollection, store_), IviConfig_GetDriverSessionCount,
                       IviConfig_GetDriverSessionItemByIndex, IviConfig_GetDriverSessionPropertyViString);
    }

    std::vector<std::string> logicalNames() const
    {
        return namesOf(obtain(IviConfig_GetConfigStoreLogicalNameCollection, store_), IviConfig_GetLogicalNameCount,
                       IviConfig_GetLogicalNameItemByIndex, IviConfig_GetLogicalNamePropertyViString);
    }

    OwnedHandle session() const { return obtain(IviConfig_GetDriverSession, store_, "S"); }

    /// The first data component of the driver session "S".
    OwnedHandle firstComponent() const
    {
        return obtain(IviConfig_GetDataComponentItemByIndex,
                      obtain(IviConfig_GetConfigComponentDataComponentCollection, session()), 1);
    }

    ViStatus loadComponent(const std::string& element, const std::string& content)
    {
        return load(sessionOf("<DataComponents>" + component(element, content) + "</DataComponents>"));
    }
};

} // namespace kvxtest
