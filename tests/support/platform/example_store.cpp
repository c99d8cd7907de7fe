#include "tests/support/platform/example_store.h"

namespace kvxtest
{

const char* const kExampleStore = R"(<?xml version="1.0" encoding="UTF-8"?>
<IviConfigStore xmlns:dt="urn:schemas-microsoft-com:datatypes">
  <Name>IVI Configuration Server</Name><Description>Example store</Description><Vendor>IVI Foundation, Inc.</Vendor><Revision>1.0.0.0</Revision>
  <SpecificationMajorVersion>2</SpecificationMajorVersion><SpecificationMinorVersion>0</SpecificationMinorVersion>
  <MasterLocation></MasterLocation><ProcessDefaultLocation></ProcessDefaultLocation><ActualLocation></ActualLocation>
  <PublishedAPIs>
    <IviPublishedAPI id="p1"><Name>IviDriver</Name><MajorVersion>2</MajorVersion><MinorVersion>1</MinorVersion><Type>IVI-C</Type></IviPublishedAPI>
    <IviPublishedAPI id="p2"><Name>IviDCPwr</Name><MajorVersion>3</MajorVersion><MinorVersion>0</MinorVersion><Type>IVI-C</Type></IviPublishedAPI>
  </PublishedAPIs>
  <SoftwareModules>
    <IviSoftwareModule id="p3"><Name>KVX2800T</Name><Description>IVI-C Driver for KVX2800T</Description>
      <DataComponents><IviStructure id="p4"><Name>Configurable Initial Settings</Name><Description></Description><ReadOnly>1</ReadOnly><UsedInSession>Required</UsedInSession><Type>Structure</Type><HelpContextID>0</HelpContextID><HelpFilePath></HelpFilePath><SoftwareModuleKey></SoftwareModuleKey>
        <DataComponents>
          <IviBoolean id="p5"><Name>Trace</Name><Description>log each call</Description><ReadOnly>1</ReadOnly><UsedInSession>Required</UsedInSession><Type>Boolean</Type><HelpContextID>0</HelpContextID><HelpFilePath></HelpFilePath><SoftwareModuleKey>TRACE</SoftwareModuleKey><Value>0</Value></IviBoolean>
          <IviInteger id="p6"><Name>Retries</Name><Description></Description><ReadOnly>1</ReadOnly><UsedInSession>Required</UsedInSession><Type>Integer</Type><HelpContextID>0</HelpContextID><HelpFilePath></HelpFilePath><SoftwareModuleKey>RETRIES</SoftwareModuleKey><Units></Units><Value>0</Value></IviInteger>
          <IviReal id="p7"><Name>Settling Time</Name><Description></Description><ReadOnly>1</ReadOnly><UsedInSession>Required</UsedInSession><Type>Real</Type><HelpContextID>0</HelpContextID><HelpFilePath></HelpFilePath><SoftwareModuleKey>SETTLE</SoftwareModuleKey><Units>s</Units><Value>0.1</Value></IviReal>
          <IviString id="p8"><Name>Station</Name><Description></Description><ReadOnly>1</ReadOnly><UsedInSession>Required</UsedInSession><Type>String</Type><HelpContextID>0</HelpContextID><HelpFilePath></HelpFilePath><SoftwareModuleKey>STATION</SoftwareModuleKey><Value></Value></IviString>
        </DataComponents>
      </IviStructure></DataComponents>
      <ModulePath>KVX2800T.dll</ModulePath><Prefix>KVX2800T</Prefix><ProgID></ProgID><SupportedInstrumentModels>KVX2833T</SupportedInstrumentModels>
      <PhysicalNames>
        <IviPhysicalName id="p9"><Name>OutputChannel1</Name><RCName>OutputChannel</RCName><PhysicalNames/><PhysicalRanges/></IviPhysicalName>
        <IviPhysicalName id="p10"><Name>OutputChannel2</Name><RCName>OutputChannel</RCName><PhysicalNames/><PhysicalRanges/></IviPhysicalName>
        <IviPhysicalName id="p11"><Name>OutputChannel3</Name><RCName>OutputChannel</RCName><PhysicalNames/><PhysicalRanges/></IviPhysicalName>
        <IviPhysicalName id="p12"><Name>OutputChannel4</Name><RCName>OutputChannel</RCName><PhysicalNames/><PhysicalRanges/></IviPhysicalName>
        <IviPhysicalName id="p13"><Name>OutputChannel5</Name><RCName>OutputChannel</RCName><PhysicalNames/><PhysicalRanges/></IviPhysicalName>
        <IviPhysicalName id="p14"><Name>OutputChannel6</Name><RCName>OutputChannel</RCName><PhysicalNames/><PhysicalRanges/></IviPhysicalName>
      </PhysicalNames>
      <PublishedAPIs><IviPublishedAPI idref="p1"/><IviPublishedAPI idref="p2"/></PublishedAPIs><ModulePath64>KVX2800T_64.dll</ModulePath64>
    </IviSoftwareModule></SoftwareModules>
  <HardwareAssets>
    <IviHardwareAsset id="p15"><Name>Bench supply 1</Name><Description></Description><DataComponents/><IOResourceDescriptor>TCPIP0::127.0.0.1::5025::SOCKET</IOResourceDescriptor></IviHardwareAsset>
  </HardwareAssets>
  <DriverSessions>
    <IviDriverSession id="p16"><Name>KVX2800T</Name><Description></Description>
      <DataComponents><IviStructure id="p17"><Name>Configurable Initial Settings</Name><Description></Description><ReadOnly>0</ReadOnly><UsedInSession>Required</UsedInSession><Type>Structure</Type><HelpContextID>0</HelpContextID><HelpFilePath></HelpFilePath><SoftwareModuleKey></SoftwareModuleKey>
        <DataComponents>
          <IviBoolean id="p18"><Name>Trace</Name><Description>log each call</Description><ReadOnly>0</ReadOnly><UsedInSession>Required</UsedInSession><Type>Boolean</Type><HelpContextID>0</HelpContextID><HelpFilePath></HelpFilePath><SoftwareModuleKey>TRACE</SoftwareModuleKey><Value>1</Value></IviBoolean>
          <IviInteger id="p19"><Name>Retries</Name><Description></Description><ReadOnly>0</ReadOnly><UsedInSession>Required</UsedInSession><Type>Integer</Type><HelpContextID>0</HelpContextID><HelpFilePath></HelpFilePath><SoftwareModuleKey>RETRIES</SoftwareModuleKey><Units></Units><Value>3</Value></IviInteger>
          <IviReal id="p20"><Name>Settling Time</Name><Description></Description><ReadOnly>0</ReadOnly><UsedInSession>Required</UsedInSession><Type>Real</Type><HelpContextID>0</HelpContextID><HelpFilePath></HelpFilePath><SoftwareModuleKey>SETTLE</SoftwareModuleKey><Units>s</Units><Value>0.25</Value></IviReal>
          <IviString id="p21"><Name>Station</Name><Description></Description><ReadOnly>0</ReadOnly><UsedInSession>Required</UsedInSession><Type>String</Type><HelpContextID>0</HelpContextID><HelpFilePath></HelpFilePath><SoftwareModuleKey>STATION</SoftwareModuleKey><Value>line 4</Value></IviString>
        </DataComponents>
      </IviStructure></DataComponents>
      <IviHardwareAsset idref="p15"/><IviSoftwareModuleRef idref="p3"/>
      <VirtualNames>
        <IviVirtualName id="p22"><Name>Core</Name><MapTo>OutputChannel1</MapTo><VirtualRanges/></IviVirtualName>
        <IviVirtualName id="p23"><Name>Pair</Name><MapTo>OutputChannel1,OutputChannel2</MapTo><VirtualRanges/></IviVirtualName>
        <IviVirtualName id="p24"><Name>Rail</Name><MapTo>OutputChannel</MapTo><VirtualRanges>
          <IviVirtualRange id="p25"><Name>Rails 1-3</Name><Max>3</Max><Min>1</Min><StartingPhysicalIndex>2</StartingPhysicalIndex></IviVirtualRange>
        </VirtualRanges></IviVirtualName></VirtualNames>
      <SoftwareModuleName>KVX2800T</SoftwareModuleName><Cache>1</Cache><DriverSetup></DriverSetup><InterchangeCheck>0</InterchangeCheck>
      <QueryInstrStatus>0</QueryInstrStatus><RangeCheck>1</RangeCheck><RecordCoercions>0</RecordCoercions><Simulate>0</Simulate>
    </IviDriverSession></DriverSessions>
  <Sessions><IviDriverSession idref="p16"/></Sessions>
  <LogicalNames>
    <IviLogicalName id="p26"><Name>BenchSupply</Name><Description></Description><IviDriverSession idref="p16"/></IviLogicalName>
  </LogicalNames></IviConfigStore>
)";

} // namespace kvxtest
