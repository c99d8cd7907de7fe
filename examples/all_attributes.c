/* Lists every attribute with its value: those of the driver, the session and the instrument, then each channel's. */
#include "KVX2800T.h"

#include <stdio.h>
#include <stdlib.h>

typedef enum
{
    kString,
    kInteger,
    kReal,
    kBoolean
} ValueType;

typedef struct
{
    ViAttr id;
    const char* name;
    ValueType type;
} Attribute;

static const Attribute kSessionAttributes[] = {
    {KVX2800T_ATTR_SPECIFIC_DRIVER_DESCRIPTION, "SPECIFIC_DRIVER_DESCRIPTION", kString},
    {KVX2800T_ATTR_SPECIFIC_DRIVER_PREFIX, "SPECIFIC_DRIVER_PREFIX", kString},
    {KVX2800T_ATTR_SPECIFIC_DRIVER_VENDOR, "SPECIFIC_DRIVER_VENDOR", kString},
    {KVX2800T_ATTR_SPECIFIC_DRIVER_REVISION, "SPECIFIC_DRIVER_REVISION", kString},
    {KVX2800T_ATTR_SPECIFIC_DRIVER_CLASS_SPEC_MAJOR_VERSION, "SPECIFIC_DRIVER_CLASS_SPEC_MAJOR_VERSION", kInteger},
    {KVX2800T_ATTR_SPECIFIC_DRIVER_CLASS_SPEC_MINOR_VERSION, "SPECIFIC_DRIVER_CLASS_SPEC_MINOR_VERSION", kInteger},
    {KVX2800T_ATTR_GROUP_CAPABILITIES, "GROUP_CAPABILITIES", kString},
    {KVX2800T_ATTR_SUPPORTED_INSTRUMENT_MODELS, "SUPPORTED_INSTRUMENT_MODELS", kString},
    {KVX2800T_ATTR_CHANNEL_COUNT, "CHANNEL_COUNT", kInteger},
    {KVX2800T_ATTR_RANGE_CHECK, "RANGE_CHECK", kBoolean},
    {KVX2800T_ATTR_QUERY_INSTRUMENT_STATUS, "QUERY_INSTRUMENT_STATUS", kBoolean},
    {KVX2800T_ATTR_CACHE, "CACHE", kBoolean},
    {KVX2800T_ATTR_SIMULATE, "SIMULATE", kBoolean},
    {KVX2800T_ATTR_RECORD_COERCIONS, "RECORD_COERCIONS", kBoolean},
    {KVX2800T_ATTR_INTERCHANGE_CHECK, "INTERCHANGE_CHECK", kBoolean},
    {KVX2800T_ATTR_LOGICAL_NAME, "LOGICAL_NAME", kString},
    {KVX2800T_ATTR_IO_RESOURCE_DESCRIPTOR, "IO_RESOURCE_DESCRIPTOR", kString},
    {KVX2800T_ATTR_DRIVER_SETUP, "DRIVER_SETUP", kString},
    {KVX2800T_ATTR_INSTRUMENT_MANUFACTURER, "INSTRUMENT_MANUFACTURER", kString},
    {KVX2800T_ATTR_INSTRUMENT_MODEL, "INSTRUMENT_MODEL", kString},
    {KVX2800T_ATTR_INSTRUMENT_FIRMWARE_REVISION, "INSTRUMENT_FIRMWARE_REVISION", kString}};

static const Attribute kChannelAttributes[] = {
    {KVX2800T_ATTR_VOLTAGE_LEVEL, "VOLTAGE_LEVEL", kReal},
    {KVX2800T_ATTR_OVP_ENABLED, "OVP_ENABLED", kBoolean},
    {KVX2800T_ATTR_OVP_LIMIT, "OVP_LIMIT", kReal},
    {KVX2800T_ATTR_CURRENT_LIMIT_BEHAVIOR, "CURRENT_LIMIT_BEHAVIOR", kInteger},
    {KVX2800T_ATTR_CURRENT_LIMIT, "CURRENT_LIMIT", kReal},
    {KVX2800T_ATTR_OUTPUT_ENABLED, "OUTPUT_ENABLED", kBoolean}};

#define COUNT_OF(table) (sizeof(table) / sizeof((table)[0]))

#define ROW "%-41s"

/* A text of any length: a call without a buffer tells the size that is needed, a second one fetches the text. */
static ViStatus printString(ViSession vi, const char* channel, const Attribute* attribute)
{
    ViChar* text = NULL;
    const ViInt32 size = KVX2800T_GetAttributeViString(vi, channel, attribute->id, 0, NULL);
    ViStatus status = size;
    if (size <= 0)
        return status;
    text = malloc((size_t)size);
    if (text == NULL)
        return IVI_ERROR_CANNOT_RECOVER;
    status = KVX2800T_GetAttributeViString(vi, channel, attribute->id, size, text);
    if (status >= VI_SUCCESS)
        printf(ROW "\"%s\"\n", attribute->name, text);
    free(text);
    return status;
}

static ViStatus printInteger(ViSession vi, const char* channel, const Attribute* attribute)
{
    ViInt32 value = 0;
    const ViStatus status = KVX2800T_GetAttributeViInt32(vi, channel, attribute->id, &value);
    if (status >= VI_SUCCESS)
        printf(ROW "%ld\n", attribute->name, (long)value);
    return status;
}

static ViStatus printReal(ViSession vi, const char* channel, const Attribute* attribute)
{
    ViReal64 value = 0.0;
    const ViStatus status = KVX2800T_GetAttributeViReal64(vi, channel, attribute->id, &value);
    if (status >= VI_SUCCESS)
        printf(ROW "%.3f\n", attribute->name, value);
    return status;
}

static ViStatus printBoolean(ViSession vi, const char* channel, const Attribute* attribute)
{
    ViBoolean value = VI_FALSE;
    const ViStatus status = KVX2800T_GetAttributeViBoolean(vi, channel, attribute->id, &value);
    if (status >= VI_SUCCESS)
        printf(ROW "%s\n", attribute->name, value ? "true" : "false");
    return status;
}

static ViStatus printAttribute(ViSession vi, const char* channel, const Attribute* attribute)
{
    switch (attribute->type) {
    case kString:
        return printString(vi, channel, attribute);
    case kInteger:
        return printInteger(vi, channel, attribute);
    case kReal:
        return printReal(vi, channel, attribute);
    default:
        return printBoolean(vi, channel, attribute);
    }
}

/* Stops at the first attribute that cannot be read. */
static ViStatus printAll(ViSession vi, const char* channel, const Attribute* attributes, size_t count)
{
    ViStatus status = VI_SUCCESS;
    size_t i = 0;
    for (i = 0; i < count && status >= VI_SUCCESS; ++i)
        status = printAttribute(vi, channel, &attributes[i]);
    return status;
}

static ViStatus printChannel(ViSession vi, ViInt32 index)
{
    ViChar channel[256] = "";
    const ViStatus status = KVX2800T_GetChannelName(vi, index, sizeof channel, channel);
    if (status < VI_SUCCESS)
        return status;
    printf("\n%s\n", channel);
    return printAll(vi, channel, kChannelAttributes, COUNT_OF(kChannelAttributes));
}

static ViStatus printChannels(ViSession vi)
{
    ViInt32 count = 0;
    ViInt32 index = 0;
    ViStatus status = KVX2800T_GetAttributeViInt32(vi, "", KVX2800T_ATTR_CHANNEL_COUNT, &count);
    for (index = 1; index <= count && status >= VI_SUCCESS; ++index)
        status = printChannel(vi, index);
    return status;
}

/* After a failed open there is no session: VI_NULL has what was recorded. */
static int fail(ViSession vi, ViStatus status)
{
    ViChar text[1024] = "";
    KVX2800T_GetError(vi, NULL, sizeof text, text);
    fprintf(stderr, "all_attributes: 0x%08lX %s\n", (unsigned long)status & 0xFFFFFFFFUL, text);
    return EXIT_FAILURE;
}

int main(int argc, char* argv[])
{
    ViSession vi = VI_NULL;
    ViStatus status = VI_SUCCESS;
    int result = EXIT_SUCCESS;

    if (argc < 2 || argc > 3) {
        fprintf(stderr, "usage: all_attributes RESOURCE [OPTIONS]\n");
        return EXIT_FAILURE;
    }

    status = KVX2800T_InitWithOptions(argv[1], VI_FALSE, VI_FALSE, argc == 3 ? argv[2] : "", &vi);
    if (status < VI_SUCCESS)
        return fail(VI_NULL, status);

    status = printAll(vi, "", kSessionAttributes, COUNT_OF(kSessionAttributes));
    if (status >= VI_SUCCESS)
        status = printChannels(vi);
    if (status < VI_SUCCESS)
        result = fail(vi, status);
    KVX2800T_close(vi);
    return result;
}
