/* Sizes and offsets that existing programs are compiled with. Read as C11 and as C++17. */
#include "OrviCamApi.h"

#include <assert.h>
#include <stddef.h>

static_assert(sizeof(CAM_API_STATUS) == 4, "");
static_assert(sizeof(CAM_HANDLE) == 8, "");
static_assert(sizeof(CAM_TYPE) == 4, "");
static_assert(sizeof(CAM_ACCESS_MODE) == 4, "");
static_assert(sizeof(CAM_NODE_TYPE) == 4, "");
static_assert(sizeof(CAM_NODE_ACCESS_MODE) == 4, "");

#define AT(record, field, offset) static_assert(offsetof(record, field) == (offset), #record "." #field)
#define SIZE(record, size) static_assert(sizeof(record) == (size), #record)

SIZE(CAM_SYSTEM_INFO, 448);
AT(CAM_SYSTEM_INFO, szTransportName, 0);
AT(CAM_SYSTEM_INFO, szTransportVersion, 64);
AT(CAM_SYSTEM_INFO, szTransportUsbVersion, 128);
AT(CAM_SYSTEM_INFO, szReserved, 192);
AT(CAM_SYSTEM_INFO, szApiVersion, 384);

SIZE(CAM_INFO, 2044);
AT(CAM_INFO, eCamType, 0);
AT(CAM_INFO, szManufacturer, 4);
AT(CAM_INFO, szModelName, 68);
AT(CAM_INFO, szSerialNumber, 132);
AT(CAM_INFO, szUserDefinedName, 196);
AT(CAM_INFO, szFamilyName, 260);
AT(CAM_INFO, szDeviceVersion, 324);
AT(CAM_INFO, szManufacturerInfo, 388);
AT(CAM_INFO, uiLinkSpeed, 460);

SIZE(CAM_U3V_INFO_EX, 4104);
AT(CAM_U3V_INFO_EX, uiU3vVersion, 0);
AT(CAM_U3V_INFO_EX, uiMaxTransferSize, 4);

SIZE(CAM_STREAM_REQUEST_INFO, 72);
AT(CAM_STREAM_REQUEST_INFO, uiStatus, 0);
AT(CAM_STREAM_REQUEST_INFO, uiPayloadType, 4);
AT(CAM_STREAM_REQUEST_INFO, ullBlockId, 8);
AT(CAM_STREAM_REQUEST_INFO, ullDeviceTimestamp, 16);
AT(CAM_STREAM_REQUEST_INFO, ullHostTimestamp, 24);
AT(CAM_STREAM_REQUEST_INFO, uiPixelFormat, 32);
AT(CAM_STREAM_REQUEST_INFO, uiWidth, 36);
AT(CAM_STREAM_REQUEST_INFO, uiHeight, 40);
AT(CAM_STREAM_REQUEST_INFO, uiOffsetX, 44);
AT(CAM_STREAM_REQUEST_INFO, uiOffsetY, 48);
AT(CAM_STREAM_REQUEST_INFO, uiPaddingX, 52);
AT(CAM_STREAM_REQUEST_INFO, ullValidPayloadSize, 56);
AT(CAM_STREAM_REQUEST_INFO, uiLostBlocks, 64);

SIZE(CAM_EVENT_REQUEST_INFO, 24);
AT(CAM_EVENT_REQUEST_INFO, usEventId, 0);
AT(CAM_EVENT_REQUEST_INFO, usStreamChannel, 2);
AT(CAM_EVENT_REQUEST_INFO, ullTimestamp, 8);
AT(CAM_EVENT_REQUEST_INFO, ullBlockId, 16);

SIZE(CAM_GENICAM_ERROR, 24);
AT(CAM_GENICAM_ERROR, pszMessage, 0);

#undef SIZE
#undef AT

#define VALUE(name, value) static_assert((name) == (value), #name)

VALUE(CAM_TYPE_NONE, 0);
VALUE(CAM_TYPE_U3V, 1);
VALUE(CAM_TYPE_GEV, 2);
VALUE(CAMERA_INDEX_MAX, 64);
VALUE(SYS_INIT_U3V, 1);
VALUE(SYS_INIT_GEV, 2);
VALUE(SYS_INIT_ALL, 0xFFFF);
VALUE(CAM_LOG_LEVEL_DEBUG, 0);
VALUE(CAM_LOG_LEVEL_FATAL, 4);
VALUE(CAM_NODE_ACCESS_MODE_NI, 0);
VALUE(CAM_NODE_ACCESS_MODE_RW, 4);
VALUE(CAM_ACQ_MODE_CONTINUOUS, 8);

#undef VALUE
