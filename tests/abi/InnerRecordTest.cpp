// Records behind the public interface whose layout others know: the registry's lists are reached from outside by name,
// and signals are set by the transport.

#include "foundation/HandleRegistry.h"
#include "foundation/SignalRecord.h"
#include "tests/support/StatusTable.h"

#include <gtest/gtest.h>

#include <cstddef>

namespace Orvi {

static_assert(sizeof(_CAMERA_HANDLE_INFO) == 32);
static_assert(offsetof(_CAMERA_HANDLE_INFO, eCamType) == 0);
static_assert(offsetof(_CAMERA_HANDLE_INFO, uiCamIdx) == 4);
static_assert(offsetof(_CAMERA_HANDLE_INFO, uiDevNum) == 8);
static_assert(offsetof(_CAMERA_HANDLE_INFO, hCam) == 16);
static_assert(offsetof(_CAMERA_HANDLE_INFO, uiMaxPacketSize) == 24);

static_assert(sizeof(_STREAM_HANDLE_INFO) == 24);
static_assert(offsetof(_STREAM_HANDLE_INFO, hCam) == 8);
static_assert(offsetof(_STREAM_HANDLE_INFO, hStrm) == 16);

static_assert(sizeof(_EVENT_HANDLE_INFO) == 24);
static_assert(offsetof(_EVENT_HANDLE_INFO, hCam) == 8);
static_assert(offsetof(_EVENT_HANDLE_INFO, hEvt) == 16);

static_assert(sizeof(CAMERA_INDEX_INFO) == 12);
static_assert(offsetof(CAMERA_INDEX_INFO, iDevIdx) == 4);
static_assert(offsetof(CAMERA_INDEX_INFO, bUseGenICam) == 8);
static_assert(sizeof(g_camInfo) == 64 * sizeof(CAMERA_INDEX_INFO));

static_assert(offsetof(SignalRecord, cond) == sizeof(pthread_mutex_t));
static_assert(offsetof(SignalRecord, signalled) == sizeof(pthread_mutex_t) + sizeof(pthread_cond_t));
static_assert(offsetof(SignalRecord, magic) == offsetof(SignalRecord, signalled) + 4);
static_assert(SignalRecord::validMagic == 0x54321);

namespace Testing {

TEST(HeaderStatuses, HaveTheValuesOfTheTable)
{
    std::size_t count = 0;
#define STATUS(code)                                                                                                   \
    ASSERT_NE(FindStatusRow(code), nullptr) << #code;                                                                  \
    EXPECT_STREQ(FindStatusRow(code)->name, #code);                                                                    \
    ++count
    STATUS(CAM_API_STS_SUCCESS);
    STATUS(CAM_API_STS_NOT_INITIALIZED);
    STATUS(CAM_API_STS_ALREADY_INITIALIZED);
    STATUS(CAM_API_STS_NOT_FOUND);
    STATUS(CAM_API_STS_ALREADY_OPENED);
    STATUS(CAM_API_STS_ALREADY_ACTIVATED);
    STATUS(CAM_API_STS_INVALID_CAMERA_INDEX);
    STATUS(CAM_API_STS_INVALID_CAMERA_HANDLE);
    STATUS(CAM_API_STS_INVALID_NODE_HANDLE);
    STATUS(CAM_API_STS_INVALID_STREAM_HANDLE);
    STATUS(CAM_API_STS_INVALID_REQUEST_HANDLE);
    STATUS(CAM_API_STS_INVALID_EVENT_HANDLE);
    STATUS(CAM_API_STS_INVALID_IMAGE_HANDLE);
    STATUS(CAM_API_STS_INVALID_PARAMETER);
    STATUS(CAM_API_STS_BUFFER_TOO_SMALL);
    STATUS(CAM_API_STS_NO_MEMORY);
    STATUS(CAM_API_STS_MEMORY_NO_ACCESS);
    STATUS(CAM_API_STS_NOT_IMPLEMENTED);
    STATUS(CAM_API_STS_TIMEOUT);
    STATUS(CAM_API_STS_CAMERA_NOT_RESPONDING);
    STATUS(CAM_API_STS_EMPTY_COMPLETE_QUEUE);
    STATUS(CAM_API_STS_NOT_READY);
    STATUS(CAM_API_STS_ACCESS_MODE_SET_ERR);
    STATUS(CAM_API_STS_XML_LOAD_ERR);
    STATUS(CAM_API_STS_GENICAM_ERR);
    STATUS(CAM_API_STS_DLL_LOAD_ERR);
    STATUS(CAM_API_STS_INVALID_ADDRESS);
    STATUS(CAM_API_STS_WRITE_PROTECT);
    STATUS(CAM_API_STS_BAD_ALIGNMENT);
    STATUS(CAM_API_STS_ACCESS_DENIED);
    STATUS(CAM_API_STS_BUSY);
    STATUS(CAM_API_STS_NOT_READABLE);
    STATUS(CAM_API_STS_NOT_WRITABLE);
    STATUS(CAM_API_STS_NOT_AVAILABLE);
    STATUS(CAM_API_STS_REQUEST_TIMEOUT);
    STATUS(CAM_API_STS_RESEND_TIMEOUT);
    STATUS(CAM_API_STS_RESPONSE_TIMEOUT);
    STATUS(CAM_API_STS_BUFFER_FULL);
    STATUS(CAM_API_STS_UNEXPECTED_BUFFER_SIZE);
    STATUS(CAM_API_STS_UNEXPECTED_NUMBER);
    STATUS(CAM_API_STS_PACKET_STATUS_ERROR);
    STATUS(CAM_API_STS_RESEND_NOT_IMPLEMENTED);
    STATUS(CAM_API_STS_PACKET_UNAVAILABLE);
    STATUS(CAM_API_STS_MISSING_PACKETS);
    STATUS(CAM_API_STS_FLUSH_REQUESTED);
    STATUS(CAM_API_STS_TOO_MANY_PACKET_MISSING);
    STATUS(CAM_API_STS_FLUSHED_BY_D0EXIT);
    STATUS(CAM_API_STS_FLUSHED_BY_CAMERA_REMOVE);
    STATUS(CAM_API_STS_FILE_OPEN_ERROR);
    STATUS(CAM_API_STS_FILE_WRITE_ERROR);
    STATUS(CAM_API_STS_FILE_READ_ERROR);
    STATUS(CAM_API_STS_FILE_NOT_FOUND);
    STATUS(CAM_API_STS_DATA_DISCARDED);
    STATUS(CAM_API_STS_UNSUCCESSFUL);
#undef STATUS
    EXPECT_EQ(count, StatusRows().size());
}

} // namespace Testing
} // namespace Orvi
