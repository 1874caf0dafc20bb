#pragma once
// What every exported camera, node, stream and event function promises alike, tested from one row per function. A
// folder lists its rows and instantiates the suite:
//
//     INSTANTIATE_TEST_SUITE_P(Stream, FrameContract, ::testing::ValuesIn(StreamRows()), RowName);

#include "tests/support/ApiTest.h"

#include <array>
#include <functional>

namespace Orvi::Testing {

/// What a function's first argument is.
enum class Family { Camera, Stream, Event };

/// What calls read from and write to, in one place so that it can be compared byte by byte. Each member's address is
/// known to the stub by the member's name.
struct Arguments {
    uint32_t words[2];
    uint32_t uiSize;  ///< in: 64
    uint64_t ullSize; ///< in: 64
    uint32_t number;
    int64_t integer;
    uint64_t longNumber;
    double real;
    bool flag;
    char text[64]; ///< in: "before"
    CAM_HANDLE handle;
    void *pointer;
    CAM_NODE_TYPE nodeType;
    CAM_NODE_ACCESS_MODE accessMode;
    CAM_NODE_VISIBILITY visibility;
    CAM_NODE_CACHING_MODE cachingMode;
    CAM_NODE_REPRESENTATION representation;
    CAM_NODE_DISPLAY_NOTATION notation;
    CAM_STREAM_REQUEST_INFO requestInfo;
    CAM_EVENT_REQUEST_INFO eventInfo;
    unsigned char buffer[16];
};
extern Arguments arg;

/// All bytes of arg, padding included.
struct SavedArguments {
    std::array<unsigned char, sizeof(Arguments)> bytes;
};
SavedArguments SaveArguments();

/// One exported function.
struct FrameRow {
    const char *name; ///< as exported, and as in its log lines
    Family family;
    std::function<CAM_API_STATUS(CAM_HANDLE)> call;      ///< with good arguments from arg
    std::function<CAM_API_STATUS(CAM_HANDLE)> callEmpty; ///< with null and zero arguments
    Stub::Entry entry;
    Lines calls;            ///< what the transport sees of a success
    std::string enter;      ///< what follows the name in the ENTER line, for the family's good handle
    std::string exit = "";  ///< what follows the name in the EXIT line of a success
    std::string diagnostic; ///< "(_Uc_Nd_GetType)"
    std::function<void(Stub::Hooks &)> answer = nullptr;              ///< makes the transport fill the outputs
    CAM_API_STATUS gevStatus = CAM_API_STS_INVALID_CAMERA_HANDLE;     ///< for a GigE Vision camera
    CAM_API_STATUS unknownStatus = CAM_API_STS_INVALID_CAMERA_HANDLE; ///< for a camera of no known kind
    bool refusesSilently = false;                                     ///< no EXIT line for those two
    bool refreshesGenICamError = false;
    std::function<void(Arguments &)> presets = nullptr; ///< what the function itself writes before it can fail
    CAM_API_STATUS emptyStatus = CAM_API_STS_SUCCESS;   ///< of callEmpty when the transport accepts everything
    bool emptyFaults = false;                           ///< null arguments are the caller's fault here
};

class FrameContract : public ApiTest, public ::testing::WithParamInterface<FrameRow> {
  protected:
    FrameContract();

    const FrameRow &row = GetParam();

    CAM_HANDLE Good() const { return Pick(hCamera, hStream, hEvent); }
    CAM_HANDLE Gev() const { return Pick(hCameraGev, hStreamGev, hEventGev); }
    CAM_HANDLE Unknown() const { return Pick(hCameraUnknown, hStreamUnknown, hEventUnknown); }
    CAM_API_STATUS ForeignStatus() const;

    std::string Enter(CAM_HANDLE handle) const;
    std::string Exit(CAM_API_STATUS status) const;

    void ExpectRefused(CAM_HANDLE handle, CAM_API_STATUS expected);
    void ExpectOutputsUntouched(const SavedArguments &before) const;

  private:
    CAM_HANDLE Pick(CAM_HANDLE camera, CAM_HANDLE stream, CAM_HANDLE event) const;
};

std::string RowName(const ::testing::TestParamInfo<FrameRow> &info);

/// Rows print as their names.
void PrintTo(const FrameRow &row, std::ostream *out);

} // namespace Orvi::Testing
