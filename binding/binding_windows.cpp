/// The platform's C functions, for the driver on Windows: each is bound by its name when it is first called, so that
/// the driver loads, and simulates without VISA, on a machine that lacks them.
///
/// While a library (platform_library_windows.h) or its function is missing, a call returns VI_ERROR_LIBRARY_NFOUND and
/// does nothing else, and the next call searches anew. Any thread may call.

#include "binding/platform_library_windows.h"

#include <IviCShared.h>
#include <IviConfigServer.h>
#include <visa.h>

#include <windows.h>

#include <atomic>
#include <cstddef>
#include <string>

namespace
{

using binding::configServer;
using binding::kIs64Bit;
using binding::PlatformLibrary;
using binding::sessionService;
using binding::visa;

/// A function of the platform, bound by the first call that finds it.
template <class Function>
class Import;

template <class... Parameters>
class Import<ViStatus _VI_FUNC(Parameters...)>
{
public:
    constexpr Import(PlatformLibrary& library, const char* name) : library_(library), name_(name) {}

    ViStatus operator()(Parameters... arguments)
    {
        auto* function = function_.load(std::memory_order_acquire);
        if (function == nullptr) {
            function = bind();
            if (function == nullptr)
                return VI_ERROR_LIBRARY_NFOUND;
            function_.store(function, std::memory_order_release);
        }
        return function(arguments...);
    }

private:
    using Pointer = ViStatus(_VI_FUNC*)(Parameters...);

    Pointer bind() const
    {
        FARPROC found = library_.find(name_);
        // A library for x86 that was built without plain names has those that __stdcall makes.
        if (found == nullptr && !kIs64Bit)
            found = library_.find(decoratedName().c_str());
        return reinterpret_cast<Pointer>(reinterpret_cast<void*>(found));
    }

    std::string decoratedName() const
    {
        constexpr std::size_t kStackSlot = 4;
        constexpr std::size_t kStackBytes =
            (std::size_t{0} + ... + ((sizeof(Parameters) + kStackSlot - 1) / kStackSlot * kStackSlot));
        return '_' + std::string(name_) + '@' + std::to_string(kStackBytes);
    }

    PlatformLibrary& library_;
    const char* name_;
    std::atomic<Pointer> function_ = nullptr;
};

} // namespace

// One row for each function that the driver calls.
#define FORWARD(library, function, parameters, arguments)                                                              \
    ViStatus _VI_FUNC function parameters                                                                              \
    {                                                                                                                  \
        static constinit Import<decltype(function)> import(library, #function);                                        \
        return import arguments;                                                                                       \
    }

FORWARD(sessionService, IviSession_New, (ViSession * handle), (handle))
FORWARD(sessionService, IviSession_Dispose, (ViSession handle), (handle))
FORWARD(sessionService, IviSession_SetDataPtr, (ViSession handle, ViAddr dataPtr), (handle, dataPtr))
FORWARD(sessionService, IviSession_GetDataPtr, (ViSession handle, ViAddr* dataPtr), (handle, dataPtr))
FORWARD(sessionService, IviSession_Lock, (ViSession handle, ViBoolean* hasLock), (handle, hasLock))
FORWARD(sessionService, IviSession_Unlock, (ViSession handle, ViBoolean* hasLock), (handle, hasLock))
FORWARD(sessionService, IviSession_SetError, (ViSession handle, ViStatus code, ViConstString description),
        (handle, code, description))
FORWARD(sessionService, IviSession_GetError,
        (ViSession handle, ViInt32 bufferSize, ViStatus* code, ViChar description[]),
        (handle, bufferSize, code, description))
FORWARD(sessionService, IviSession_ClearError, (ViSession handle), (handle))

FORWARD(configServer, IviConfig_Initialize, (IviConfigStoreHandle * store), (store))
FORWARD(configServer, IviConfig_Close, (IviConfigStoreHandle store), (store))
FORWARD(configServer, IviConfig_DisposeHandle, (IviConfigHandle handle), (handle))
FORWARD(configServer, IviConfig_ClearError, (), ())
FORWARD(configServer, IviConfig_Deserialize, (IviConfigStoreHandle store, ViConstString location), (store, location))
FORWARD(configServer, IviConfig_GetConfigStorePropertyViString,
        (IviConfigStoreHandle store, ViInt32 propertyID, ViInt32 bufferSize, ViChar value[]),
        (store, propertyID, bufferSize, value))
FORWARD(configServer, IviConfig_GetDriverSession,
        (IviConfigStoreHandle store, ViConstString name, IviDriverSessionHandle* driverSession),
        (store, name, driverSession))
FORWARD(configServer, IviConfig_GetConfigStoreSoftwareModuleCollection,
        (IviConfigStoreHandle store, IviSoftwareModuleCollectionHandle* softwareModules), (store, softwareModules))
FORWARD(configServer, IviConfig_GetSoftwareModuleItemByName,
        (IviSoftwareModuleCollectionHandle softwareModules, ViConstString name,
         IviSoftwareModuleHandle* softwareModule),
        (softwareModules, name, softwareModule))
FORWARD(configServer, IviConfig_GetSoftwareModulePhysicalNameCollection,
        (IviSoftwareModuleHandle softwareModule, IviPhysicalNameCollectionHandle* physicalNames),
        (softwareModule, physicalNames))
FORWARD(configServer, IviConfig_GetPhysicalNameCount, (IviPhysicalNameCollectionHandle physicalNames, ViInt32* count),
        (physicalNames, count))
FORWARD(configServer, IviConfig_GetPhysicalNameItemByIndex,
        (IviPhysicalNameCollectionHandle physicalNames, ViInt32 index, IviPhysicalNameHandle* physicalName),
        (physicalNames, index, physicalName))
FORWARD(configServer, IviConfig_GetPhysicalNamePropertyViString,
        (IviPhysicalNameHandle physicalName, ViInt32 propertyID, ViInt32 bufferSize, ViChar value[]),
        (physicalName, propertyID, bufferSize, value))
FORWARD(configServer, IviConfig_GetSessionSoftwareModuleReference,
        (IviSessionHandle session, IviSoftwareModuleHandle* softwareModule), (session, softwareModule))
FORWARD(configServer, IviConfig_GetSessionHardwareAssetReference,
        (IviSessionHandle session, IviHardwareAssetHandle* hardwareAsset), (session, hardwareAsset))
FORWARD(configServer, IviConfig_GetHardwareAssetPropertyViString,
        (IviHardwareAssetHandle hardwareAsset, ViInt32 propertyID, ViInt32 bufferSize, ViChar value[]),
        (hardwareAsset, propertyID, bufferSize, value))
FORWARD(configServer, IviConfig_GetDriverSessionPropertyViBoolean,
        (IviDriverSessionHandle driverSession, ViInt32 propertyID, ViBoolean* value),
        (driverSession, propertyID, value))
FORWARD(configServer, IviConfig_GetDriverSessionPropertyViString,
        (IviDriverSessionHandle driverSession, ViInt32 propertyID, ViInt32 bufferSize, ViChar value[]),
        (driverSession, propertyID, bufferSize, value))
FORWARD(configServer, IviConfig_GetSessionVirtualNameCollection,
        (IviSessionHandle session, IviVirtualNameCollectionHandle* virtualNames), (session, virtualNames))
FORWARD(configServer, IviConfig_GetVirtualNameCount, (IviVirtualNameCollectionHandle virtualNames, ViInt32* count),
        (virtualNames, count))
FORWARD(configServer, IviConfig_GetVirtualNameItemByIndex,
        (IviVirtualNameCollectionHandle virtualNames, ViInt32 index, IviVirtualNameHandle* virtualName),
        (virtualNames, index, virtualName))
FORWARD(configServer, IviConfig_GetVirtualNamePropertyViString,
        (IviVirtualNameHandle virtualName, ViInt32 propertyID, ViInt32 bufferSize, ViChar value[]),
        (virtualName, propertyID, bufferSize, value))
FORWARD(configServer, IviConfig_GetVirtualNameVirtualRangeCollection,
        (IviVirtualNameHandle virtualName, IviVirtualRangeCollectionHandle* virtualRanges),
        (virtualName, virtualRanges))
FORWARD(configServer, IviConfig_GetVirtualRangeCount, (IviVirtualRangeCollectionHandle virtualRanges, ViInt32* count),
        (virtualRanges, count))
FORWARD(configServer, IviConfig_GetVirtualRangeItemByIndex,
        (IviVirtualRangeCollectionHandle virtualRanges, ViInt32 index, IviVirtualRangeHandle* virtualRange),
        (virtualRanges, index, virtualRange))
FORWARD(configServer, IviConfig_GetVirtualRangePropertyViInt32,
        (IviVirtualRangeHandle virtualRange, ViInt32 propertyID, ViInt32* value), (virtualRange, propertyID, value))
FORWARD(configServer, IviConfig_GetConfigComponentDataComponentCollection,
        (IviConfigComponentHandle component, IviDataComponentCollectionHandle* dataComponents),
        (component, dataComponents))
FORWARD(configServer, IviConfig_GetStructureDataComponentCollection,
        (IviStructureHandle structure, IviDataComponentCollectionHandle* dataComponents), (structure, dataComponents))
FORWARD(configServer, IviConfig_GetDataComponentItemByName,
        (IviDataComponentCollectionHandle dataComponents, ViConstString name, IviDataComponentHandle* dataComponent),
        (dataComponents, name, dataComponent))
FORWARD(configServer, IviConfig_GetDataComponentCount,
        (IviDataComponentCollectionHandle dataComponents, ViInt32* count), (dataComponents, count))
FORWARD(configServer, IviConfig_GetDataComponentItemByIndex,
        (IviDataComponentCollectionHandle dataComponents, ViInt32 index, IviDataComponentHandle* dataComponent),
        (dataComponents, index, dataComponent))
FORWARD(configServer, IviConfig_GetDataComponentPropertyViString,
        (IviDataComponentHandle dataComponent, ViInt32 propertyID, ViInt32 bufferSize, ViChar value[]),
        (dataComponent, propertyID, bufferSize, value))
FORWARD(configServer, IviConfig_GetDataComponentPropertyViInt32,
        (IviDataComponentHandle dataComponent, ViInt32 propertyID, ViInt32* value), (dataComponent, propertyID, value))
FORWARD(configServer, IviConfig_GetDataComponentPropertyViReal64,
        (IviDataComponentHandle dataComponent, ViInt32 propertyID, ViReal64* value), (dataComponent, propertyID, value))
FORWARD(configServer, IviConfig_GetDataComponentPropertyViBoolean,
        (IviDataComponentHandle dataComponent, ViInt32 propertyID, ViBoolean* value),
        (dataComponent, propertyID, value))

FORWARD(visa, viOpenDefaultRM, (ViPSession sesn), (sesn))
FORWARD(visa, viOpen, (ViSession sesn, ViConstRsrc name, ViAccessMode mode, ViUInt32 timeout, ViPSession vi),
        (sesn, name, mode, timeout, vi))
FORWARD(visa, viClose, (ViObject vi), (vi))
FORWARD(visa, viSetAttribute, (ViObject vi, ViAttr attrName, ViAttrState attrValue), (vi, attrName, attrValue))
FORWARD(visa, viRead, (ViSession vi, ViPBuf buf, ViUInt32 cnt, ViPUInt32 retCnt), (vi, buf, cnt, retCnt))
FORWARD(visa, viWrite, (ViSession vi, ViConstBuf buf, ViUInt32 cnt, ViPUInt32 retCnt), (vi, buf, cnt, retCnt))
FORWARD(visa, viSetBuf, (ViSession vi, ViUInt16 mask, ViUInt32 size), (vi, mask, size))
