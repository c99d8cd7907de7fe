/**
 * @file IviConfigServer.h
 * C interface of the IVI configuration server (IVI-3.5): reading of the configuration store.
 *
 * Every handle has the same C type; its kind is checked at run time. Each Get...Session, ...Reference, ...Collection
 * and ...Item call hands out a handle of its own, which the caller returns with IviConfig_DisposeHandle; on a failure
 * it stores null. A handle of another kind gives IVICONFIG_ERROR_INVALID_HANDLE, a property that the object lacks or
 * that is of another type IVICONFIG_ERROR_INVALID_PROPERTY_ID, an item that a collection lacks
 * IVICONFIG_ERROR_NOT_EXIST. Indexes run from 1 to the count. Failures are recorded in the calling thread's error
 * record, which the session service shares. The property functions with a buffer follow IviSession_GetError: a size of
 * 0 asks for the size needed, a negative size means "large enough", and a text that does not fit is cut and its size
 * returned.
 */
#ifndef KVX_IVI_CONFIG_SERVER_H
#define KVX_IVI_CONFIG_SERVER_H

#include "IviVisaType.h"

#if defined(__cplusplus)
extern "C" {
#endif

/** @name Handles @{ */
typedef void* IviConfigHandle;
typedef IviConfigHandle IviConfigStoreHandle;
typedef IviConfigHandle IviConfigComponentHandle;
typedef IviConfigHandle IviHardwareAssetHandle;
typedef IviConfigHandle IviSoftwareModuleHandle;
typedef IviConfigHandle IviSoftwareModuleCollectionHandle;
typedef IviConfigHandle IviSessionHandle;
typedef IviConfigHandle IviDriverSessionHandle;
typedef IviConfigHandle IviDriverSessionCollectionHandle;
typedef IviConfigHandle IviLogicalNameHandle;
typedef IviConfigHandle IviLogicalNameCollectionHandle;
typedef IviConfigHandle IviPhysicalNameHandle;
typedef IviConfigHandle IviPhysicalNameCollectionHandle;
typedef IviConfigHandle IviPhysicalRangeHandle;
typedef IviConfigHandle IviPhysicalRangeCollectionHandle;
typedef IviConfigHandle IviVirtualNameHandle;
typedef IviConfigHandle IviVirtualNameCollectionHandle;
typedef IviConfigHandle IviVirtualRangeHandle;
typedef IviConfigHandle IviVirtualRangeCollectionHandle;
typedef IviConfigHandle IviDataComponentHandle;
typedef IviConfigHandle IviDataComponentCollectionHandle;
typedef IviConfigHandle IviStructureHandle;
typedef IviConfigHandle IviPublishedAPIHandle;
/** @} */

/** @name Status codes @{ */
#define IVICONFIG_ERROR_DESERIALIZE_FAILED ((ViStatus)0xBFFA1200)
#define IVICONFIG_ERROR_ALREADY_DESERIALIZED ((ViStatus)0xBFFA1201)
#define IVICONFIG_ERROR_SERIALIZE_FAILED ((ViStatus)0xBFFA1202)
#define IVICONFIG_ERROR_SESSION_NOT_FOUND ((ViStatus)0xBFFA1203)
#define IVICONFIG_ERROR_NOT_IN_GLOBAL ((ViStatus)0xBFFA1204)
#define IVICONFIG_ERROR_ALREADY_EXIST ((ViStatus)0xBFFA1205)
#define IVICONFIG_ERROR_MASTER_NOT_FOUND ((ViStatus)0xBFFA1206)
#define IVICONFIG_ERROR_NOT_EXIST ((ViStatus)0xBFFA1207)
#define IVICONFIG_ERROR_INVALID_DATA_COMPONENT ((ViStatus)0xBFFA1208)
#define IVICONFIG_ERROR_LOCAL_REFERENCE_EXIST ((ViStatus)0xBFFA1209)
#define IVICONFIG_ERROR_INVALID_HANDLE ((ViStatus)0xBFFA1220)
#define IVICONFIG_ERROR_INVALID_PROPERTY_ID ((ViStatus)0xBFFA1221)
#define IVICONFIG_ERROR_NOT_SUPPORTED ((ViStatus)0xBFFA1222)
#define IVICONFIG_ERROR_MASTER_REGISTRY_CONFLICT ((ViStatus)0xBFFA1223)
#define IVICONFIG_ERROR_DATA_DIR_REGISTRY_CONFLICT ((ViStatus)0xBFFA1224)
/** @} */

/** @name Properties of the store @{ */
#define IVICONFIG_VAL_CONFIG_STORE_NAME 1
#define IVICONFIG_VAL_CONFIG_STORE_DESCRIPTION 2
#define IVICONFIG_VAL_CONFIG_STORE_MASTER_LOCATION 3
#define IVICONFIG_VAL_CONFIG_STORE_ACTUAL_LOCATION 4
#define IVICONFIG_VAL_CONFIG_STORE_PROC_DEFAULT_LOCATION 5
#define IVICONFIG_VAL_CONFIG_STORE_REVISION 6
#define IVICONFIG_VAL_CONFIG_STORE_VENDOR 7
#define IVICONFIG_VAL_CONFIG_STORE_SPEC_MAJOR_VERSION 8
#define IVICONFIG_VAL_CONFIG_STORE_SPEC_MINOR_VERSION 9
/** @} */

/** @name Properties that hardware assets, software modules, sessions and driver sessions share @{ */
#define IVICONFIG_VAL_CONFIG_COMPONENT_NAME 1
#define IVICONFIG_VAL_CONFIG_COMPONENT_DESCRIPTION 2
/** @} */

/** @name Properties of a hardware asset @{ */
#define IVICONFIG_VAL_HARDWARE_ASSET_IO_DESCRIPTOR 3
/** @} */

/** @name Properties of a session @{ */
#define IVICONFIG_VAL_SESSION_SOFTWARE_MODULE_NAME 3
/** @} */

/** @name Properties of a driver session @{ */
#define IVICONFIG_VAL_DRIVER_SESSION_CACHE 4
#define IVICONFIG_VAL_DRIVER_SESSION_INTERCHANGE_CHECK 5
#define IVICONFIG_VAL_DRIVER_SESSION_QUERY_INSTR_STATUS 6
#define IVICONFIG_VAL_DRIVER_SESSION_RANGE_CHECK 7
#define IVICONFIG_VAL_DRIVER_SESSION_RECORD_COERCIONS 8
#define IVICONFIG_VAL_DRIVER_SESSION_SIMULATE 9
#define IVICONFIG_VAL_DRIVER_SESSION_DRIVER_SETUP 10
/** @} */

/** @name Properties of a software module @{ */
#define IVICONFIG_VAL_SW_MODULE_PATH 3
#define IVICONFIG_VAL_SW_MODULE_PREFIX 4
#define IVICONFIG_VAL_SW_MODULE_PROGID 5
#define IVICONFIG_VAL_SW_MODULE_SUPPORTED_INSTR_MODELS 6
#define IVICONFIG_VAL_SW_MODULE_PATH_32 7
#define IVICONFIG_VAL_SW_MODULE_PATH_64 8
#define IVICONFIG_VAL_SW_MODULE_ASMBLY_QLFD_CLASS_NAME 9
/** @} */

/** @name Properties of a logical name @{ */
#define IVICONFIG_VAL_LOGICAL_NAME_NAME 1
#define IVICONFIG_VAL_LOGICAL_NAME_DESCRIPTION 2
/** @} */

/** @name Properties of a virtual name @{ */
#define IVICONFIG_VAL_VIRTUAL_NAME_NAME 1
#define IVICONFIG_VAL_VIRTUAL_NAME_MAPTO 2
/** @} */

/** @name Properties of a virtual range @{ */
#define IVICONFIG_VAL_VIRTUAL_RANGE_NAME 1
#define IVICONFIG_VAL_VIRTUAL_RANGE_MIN 2
#define IVICONFIG_VAL_VIRTUAL_RANGE_MAX 3
#define IVICONFIG_VAL_VIRTUAL_RANGE_START_PHYSICAL_INDEX 4
/** @} */

/** @name Properties of a physical name @{ */
#define IVICONFIG_VAL_PHYSICAL_NAME_NAME 1
#define IVICONFIG_VAL_PHYSICAL_NAME_RCNAME 2
/** @} */

/** @name Properties of a physical range @{ */
#define IVICONFIG_VAL_PHYSICAL_RANGE_NAME 1
#define IVICONFIG_VAL_PHYSICAL_RANGE_MIN 2
#define IVICONFIG_VAL_PHYSICAL_RANGE_MAX 3
/** @} */

/** @name Properties of a published API @{ */
#define IVICONFIG_VAL_PUBLISHED_API_NAME 1
#define IVICONFIG_VAL_PUBLISHED_API_TYPE 2
#define IVICONFIG_VAL_PUBLISHED_API_MAJOR_VERSION 3
#define IVICONFIG_VAL_PUBLISHED_API_MINOR_VERSION 4
/** @} */

/** @name Properties of a data component @{ */
#define IVICONFIG_VAL_DATA_COMPONENT_NAME 1
#define IVICONFIG_VAL_DATA_COMPONENT_DESCRIPTION 2
#define IVICONFIG_VAL_DATA_COMPONENT_HELP_CONTEXT_ID 3
#define IVICONFIG_VAL_DATA_COMPONENT_HELP_FILE_PATH 4
#define IVICONFIG_VAL_DATA_COMPONENT_READ_ONLY 5
#define IVICONFIG_VAL_DATA_COMPONENT_SW_MODULE_KEY 6
#define IVICONFIG_VAL_DATA_COMPONENT_TYPE 7
#define IVICONFIG_VAL_DATA_COMPONENT_USED_IN_SESSION 8
#define IVICONFIG_VAL_DATA_COMPONENT_VALUE 9
#define IVICONFIG_VAL_DATA_COMPONENT_UNITS 10
/** @} */

/** @name Types of data components @{ */
#define IVICONFIG_VAL_TYPE_BOOLEAN 1
#define IVICONFIG_VAL_TYPE_INTEGER 2
#define IVICONFIG_VAL_TYPE_REAL 3
#define IVICONFIG_VAL_TYPE_STRING 4
/** @} */

/** @name Life cycle and errors @{ */

/** Makes a new, empty store. Each success is paired with one IviConfig_Close. */
ViStatus _VI_FUNC IviConfig_Initialize(IviConfigStoreHandle* store);

/** Ends a store. Handles of its objects stay readable until they are disposed. */
ViStatus _VI_FUNC IviConfig_Close(IviConfigStoreHandle store);

/** Gives a handle back; every handle but a store's. */
ViStatus _VI_FUNC IviConfig_DisposeHandle(IviConfigHandle handle);

/** Clears the calling thread's error record. */
ViStatus _VI_FUNC IviConfig_ClearError(void);

/** Reads the text of the thread's first failure and clears it unless bufferSize is 0. */
ViStatus _VI_FUNC IviConfig_GetError(ViInt32 bufferSize, ViChar errorDescription[]);

/** @} */
/** @name Store @{ */

/** Loads the file with this full path, once per store; after a failure the store is as new. */
ViStatus _VI_FUNC IviConfig_Deserialize(IviConfigStoreHandle store, ViConstString location);

/** Reads a text of the store. */
ViStatus _VI_FUNC IviConfig_GetConfigStorePropertyViString(IviConfigStoreHandle store, ViInt32 propertyID,
                                                           ViInt32 bufferSize, ViChar value[]);

/** Finds a driver session: by logical name first, then by its own name. Null is stored when there is none. */
ViStatus _VI_FUNC IviConfig_GetDriverSession(IviConfigStoreHandle store, ViConstString name,
                                             IviDriverSessionHandle* driverSession);

/** Hands out the store's driver sessions. */
ViStatus _VI_FUNC IviConfig_GetConfigStoreDriverSessionCollection(IviConfigStoreHandle store,
                                                                  IviDriverSessionCollectionHandle* driverSessions);

/** Hands out the store's logical names. */
ViStatus _VI_FUNC IviConfig_GetConfigStoreLogicalNameCollection(IviConfigStoreHandle store,
                                                                IviLogicalNameCollectionHandle* logicalNames);

/** Hands out the store's software modules. */
ViStatus _VI_FUNC IviConfig_GetConfigStoreSoftwareModuleCollection(IviConfigStoreHandle store,
                                                                   IviSoftwareModuleCollectionHandle* softwareModules);

/** @} */
/** @name Software modules and physical names @{ */

/** Hands out the item with exactly this name. */
ViStatus _VI_FUNC IviConfig_GetSoftwareModuleItemByName(IviSoftwareModuleCollectionHandle softwareModules,
                                                        ViConstString name, IviSoftwareModuleHandle* softwareModule);

/** Hands out the module's physical names. */
ViStatus _VI_FUNC IviConfig_GetSoftwareModulePhysicalNameCollection(IviSoftwareModuleHandle softwareModule,
                                                                    IviPhysicalNameCollectionHandle* physicalNames);

/** Stores the number of items in *count. */
ViStatus _VI_FUNC IviConfig_GetPhysicalNameCount(IviPhysicalNameCollectionHandle physicalNames, ViInt32* count);

/** Hands out item number index (1 to count). */
ViStatus _VI_FUNC IviConfig_GetPhysicalNameItemByIndex(IviPhysicalNameCollectionHandle physicalNames, ViInt32 index,
                                                       IviPhysicalNameHandle* physicalName);

/** Reads a text of a physical name. */
ViStatus _VI_FUNC IviConfig_GetPhysicalNamePropertyViString(IviPhysicalNameHandle physicalName, ViInt32 propertyID,
                                                            ViInt32 bufferSize, ViChar value[]);

/** @} */
/** @name Sessions, driver sessions and hardware assets @{ */

/** Hands out the session's software module; null is stored when it has none. */
ViStatus _VI_FUNC IviConfig_GetSessionSoftwareModuleReference(IviSessionHandle session,
                                                              IviSoftwareModuleHandle* softwareModule);

/** Hands out the session's hardware asset; null is stored when it has none. */
ViStatus _VI_FUNC IviConfig_GetSessionHardwareAssetReference(IviSessionHandle session,
                                                             IviHardwareAssetHandle* hardwareAsset);

/** Reads a text of a session, or of a driver session. */
ViStatus _VI_FUNC IviConfig_GetSessionPropertyViString(IviSessionHandle session, ViInt32 propertyID, ViInt32 bufferSize,
                                                       ViChar value[]);

/** Reads a text of a hardware asset. */
ViStatus _VI_FUNC IviConfig_GetHardwareAssetPropertyViString(IviHardwareAssetHandle hardwareAsset, ViInt32 propertyID,
                                                             ViInt32 bufferSize, ViChar value[]);

/** Stores the number of items in *count. */
ViStatus _VI_FUNC IviConfig_GetDriverSessionCount(IviDriverSessionCollectionHandle driverSessions, ViInt32* count);

/** Hands out item number index (1 to count). */
ViStatus _VI_FUNC IviConfig_GetDriverSessionItemByIndex(IviDriverSessionCollectionHandle driverSessions, ViInt32 index,
                                                        IviDriverSessionHandle* driverSession);

/** Hands out the item with exactly this name. */
ViStatus _VI_FUNC IviConfig_GetDriverSessionItemByName(IviDriverSessionCollectionHandle driverSessions,
                                                       ViConstString name, IviDriverSessionHandle* driverSession);

/** Reads a flag of a driver session. */
ViStatus _VI_FUNC IviConfig_GetDriverSessionPropertyViBoolean(IviDriverSessionHandle driverSession, ViInt32 propertyID,
                                                              ViBoolean* value);

/** Reads a text of a driver session. */
ViStatus _VI_FUNC IviConfig_GetDriverSessionPropertyViString(IviDriverSessionHandle driverSession, ViInt32 propertyID,
                                                             ViInt32 bufferSize, ViChar value[]);

/** @} */
/** @name Logical names @{ */

/** Stores the number of items in *count. */
ViStatus _VI_FUNC IviConfig_GetLogicalNameCount(IviLogicalNameCollectionHandle logicalNames, ViInt32* count);

/** Hands out item number index (1 to count). */
ViStatus _VI_FUNC IviConfig_GetLogicalNameItemByIndex(IviLogicalNameCollectionHandle logicalNames, ViInt32 index,
                                                      IviLogicalNameHandle* logicalName);

/** Hands out the item with exactly this name. */
ViStatus _VI_FUNC IviConfig_GetLogicalNameItemByName(IviLogicalNameCollectionHandle logicalNames, ViConstString name,
                                                     IviLogicalNameHandle* logicalName);

/** Reads a text of a logical name. */
ViStatus _VI_FUNC IviConfig_GetLogicalNamePropertyViString(IviLogicalNameHandle logicalName, ViInt32 propertyID,
                                                           ViInt32 bufferSize, ViChar value[]);

/** Hands out the session or driver session that the name leads to; null is stored when it leads to none. */
ViStatus _VI_FUNC IviConfig_GetLogicalNameSessionReference(IviLogicalNameHandle logicalName, IviSessionHandle* session);

/** @} */
/** @name Virtual names and ranges @{ */

/** Hands out the session's virtual names. */
ViStatus _VI_FUNC IviConfig_GetSessionVirtualNameCollection(IviSessionHandle session,
                                                            IviVirtualNameCollectionHandle* virtualNames);

/** Stores the number of items in *count. */
ViStatus _VI_FUNC IviConfig_GetVirtualNameCount(IviVirtualNameCollectionHandle virtualNames, ViInt32* count);

/** Hands out item number index (1 to count). */
ViStatus _VI_FUNC IviConfig_GetVirtualNameItemByIndex(IviVirtualNameCollectionHandle virtualNames, ViInt32 index,
                                                      IviVirtualNameHandle* virtualName);

/** Reads a text of a virtual name. */
ViStatus _VI_FUNC IviConfig_GetVirtualNamePropertyViString(IviVirtualNameHandle virtualName, ViInt32 propertyID,
                                                           ViInt32 bufferSize, ViChar value[]);

/** Hands out the virtual name's ranges. */
ViStatus _VI_FUNC IviConfig_GetVirtualNameVirtualRangeCollection(IviVirtualNameHandle virtualName,
                                                                 IviVirtualRangeCollectionHandle* virtualRanges);

/** Stores the number of items in *count. */
ViStatus _VI_FUNC IviConfig_GetVirtualRangeCount(IviVirtualRangeCollectionHandle virtualRanges, ViInt32* count);

/** Hands out item number index (1 to count). */
ViStatus _VI_FUNC IviConfig_GetVirtualRangeItemByIndex(IviVirtualRangeCollectionHandle virtualRanges, ViInt32 index,
                                                       IviVirtualRangeHandle* virtualRange);

/** Reads a number of a virtual range. */
ViStatus _VI_FUNC IviConfig_GetVirtualRangePropertyViInt32(IviVirtualRangeHandle virtualRange, ViInt32 propertyID,
                                                           ViInt32* value);

/** @} */
/** @name Data components @{ */

/** Hands out the data components of a hardware asset, software module, session or driver session. */
ViStatus _VI_FUNC IviConfig_GetConfigComponentDataComponentCollection(IviConfigComponentHandle component,
                                                                      IviDataComponentCollectionHandle* dataComponents);

/** Hands out the data components inside a structure. */
ViStatus _VI_FUNC IviConfig_GetStructureDataComponentCollection(IviStructureHandle structure,
                                                                IviDataComponentCollectionHandle* dataComponents);

/** Hands out the item with exactly this name. */
ViStatus _VI_FUNC IviConfig_GetDataComponentItemByName(IviDataComponentCollectionHandle dataComponents,
                                                       ViConstString name, IviDataComponentHandle* dataComponent);

/** Stores the number of items in *count. */
ViStatus _VI_FUNC IviConfig_GetDataComponentCount(IviDataComponentCollectionHandle dataComponents, ViInt32* count);

/** Hands out item number index (1 to count). */
ViStatus _VI_FUNC IviConfig_GetDataComponentItemByIndex(IviDataComponentCollectionHandle dataComponents, ViInt32 index,
                                                        IviDataComponentHandle* dataComponent);

/** Reads a text of a data component. */
ViStatus _VI_FUNC IviConfig_GetDataComponentPropertyViString(IviDataComponentHandle dataComponent, ViInt32 propertyID,
                                                             ViInt32 bufferSize, ViChar value[]);

/** Reads a number of a data component. */
ViStatus _VI_FUNC IviConfig_GetDataComponentPropertyViInt32(IviDataComponentHandle dataComponent, ViInt32 propertyID,
                                                            ViInt32* value);

/** Reads a real number of a data component. */
ViStatus _VI_FUNC IviConfig_GetDataComponentPropertyViReal64(IviDataComponentHandle dataComponent, ViInt32 propertyID,
                                                             ViReal64* value);

/** Reads a flag of a data component. */
ViStatus _VI_FUNC IviConfig_GetDataComponentPropertyViBoolean(IviDataComponentHandle dataComponent, ViInt32 propertyID,
                                                              ViBoolean* value);

/** @} */

#if defined(__cplusplus)
}
#endif

#endif
