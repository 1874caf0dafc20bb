#pragma once
// The frame that every exported call runs in: an ENTER line, the checks that all share, the body, an EXIT line with the
// status. No exception leaves it. What a function does beyond the frame stands in its own body; a body that differs
// from the rule says so with a word of CallFrame.
//
//     FramedCall(name, enter, body)               lines and exceptions
//     GuardedCall(name, enter, body)              and refuses while the library is not initialised
//     CameraCall, NodeCall, StreamCall, EventCall and resolves the handle to a kind of camera that is served
//
// enter and exit are texts after the function's name (LogText.h); exit is written on success only. A body takes
// nothing or a CallFrame &.

#include "foundation/HandleRegistry.h"
#include "log/UNI_Log.h"
#include "transport/InitState.h"
#include "transport/LogText.h"
#include "transport/TransportCall.h"

namespace Orvi {

/// One call under way. Its words let a body speak about its own EXIT line.
class CallFrame {
  public:
    explicit CallFrame(const char *name) : name_(name) {}
    CallFrame(const CallFrame &) = delete;
    CallFrame &operator=(const CallFrame &) = delete;

    /// Writes the EXIT line now, with more than the name.
    template <class Text>
    CAM_API_STATUS Exit(CAM_API_STATUS status, const Text &text)
    {
        return ExitAs(name_, status, text);
    }

    /// Writes the EXIT line now, under another name.
    template <class Text>
    CAM_API_STATUS ExitAs(const char *name, CAM_API_STATUS status, const Text &text)
    {
        hasExitLine_ = true;
        if (g_bUniLogInit) [[unlikely]]
            WriteLine("EXIT: ", name, status, text);
        return status;
    }

    /// Writes the EXIT line now with a status that is not the one returned.
    CAM_API_STATUS ExitLoggedAs(CAM_API_STATUS logged, CAM_API_STATUS returned)
    {
        Exit(logged, s_nameOnly);
        return returned;
    }

    /// Writes no EXIT line at all.
    CAM_API_STATUS WithoutExitLine(CAM_API_STATUS status)
    {
        hasExitLine_ = true;
        return status;
    }

    /// The frame's own end: writes the plain EXIT line unless the body has spoken.
    CAM_API_STATUS Finish(CAM_API_STATUS status) { return hasExitLine_ ? status : Exit(status, s_nameOnly); }

    template <class Text>
    void Enter(const Text &text) const
    {
        if (g_bUniLogInit) [[unlikely]]
            WriteLine("ENTER: ", name_, CAM_API_STS_SUCCESS, text);
    }

  private:
    template <class Text>
    [[gnu::noinline]] static void WriteLine(const char *kind, const char *name, CAM_API_STATUS status, const Text &text)
    {
        LogWriter line;
        line.Append(kind);
        line.Append(name);
        text(line);
        Uni_OutLog(status, line);
    }

    const char *name_;
    bool hasExitLine_ = false;
};

template <class Body>
CAM_API_STATUS RunBody(const Body &body, CallFrame &frame)
{
    if constexpr (std::is_invocable_v<const Body &, CallFrame &>)
        return body(frame);
    else
        return body();
}

template <class Enter, class Body>
CAM_API_STATUS FramedCall(const char *name, const Enter &enter, const Body &body)
{
    CallFrame frame(name);
    frame.Enter(enter);
    try {
        return frame.Finish(RunBody(body, frame));
    } catch (...) {
        return frame.Finish(CAM_API_STS_UNSUCCESSFUL);
    }
}

template <class Enter, class Body>
CAM_API_STATUS GuardedCall(const char *name, const Enter &enter, const Body &body)
{
    return FramedCall(name, enter, [&](CallFrame &frame) -> CAM_API_STATUS {
        if (!GetInitFlg())
            return CAM_API_STS_NOT_INITIALIZED;
        return RunBody(body, frame);
    });
}

/// Which kinds of camera a function serves: a status for each kind.
using CameraTypeRule = CAM_API_STATUS (*)(CAM_TYPE);

constexpr CAM_API_STATUS U3vOnly(CAM_TYPE eCamType)
{
    return eCamType == CAM_TYPE_U3V ? CAM_API_STS_SUCCESS : CAM_API_STS_INVALID_CAMERA_HANDLE;
}

constexpr CAM_API_STATUS U3vOnlyGevUnsuccessful(CAM_TYPE eCamType)
{
    return eCamType == CAM_TYPE_GEV ? CAM_API_STS_UNSUCCESSFUL : U3vOnly(eCamType);
}

constexpr CAM_API_STATUS U3vOnlyGevNotImplemented(CAM_TYPE eCamType)
{
    return eCamType == CAM_TYPE_GEV ? CAM_API_STS_NOT_IMPLEMENTED : U3vOnly(eCamType);
}

inline CAM_API_STATUS TypeOfStream(CAM_HANDLE hStrm, CAM_TYPE *peCamType)
{
    unsigned long hCam;
    return GetInfoFromStrmHandle(hStrm, peCamType, &hCam);
}

inline CAM_API_STATUS TypeOfEvent(CAM_HANDLE hEvt, CAM_TYPE *peCamType)
{
    unsigned long hCam;
    return GetInfoFromEvtHandle(hEvt, peCamType, &hCam);
}

template <CameraTypeRule rule = U3vOnly>
CAM_API_STATUS CheckStream(CAM_HANDLE hStrm)
{
    CAM_TYPE eCamType;
    if (const CAM_API_STATUS status = TypeOfStream(hStrm, &eCamType))
        return status;
    return rule(eCamType);
}

template <CameraTypeRule rule = U3vOnly>
CAM_API_STATUS CheckEvent(CAM_HANDLE hEvt)
{
    CAM_TYPE eCamType;
    if (const CAM_API_STATUS status = TypeOfEvent(hEvt, &eCamType))
        return status;
    return rule(eCamType);
}

/// A body behind a check of the handle, with an EXIT text for success.
template <class Check, class Body, class Exit>
auto CheckedBody(const Check &check, const Body &body, const Exit &exit)
{
    return [&](CallFrame &frame) -> CAM_API_STATUS {
        if (const CAM_API_STATUS status = check())
            return status;
        const CAM_API_STATUS status = RunBody(body, frame);
        return status == CAM_API_STS_SUCCESS ? frame.Exit(status, exit) : status;
    };
}

template <class Enter, class Body, class Exit = decltype(s_nameOnly)>
CAM_API_STATUS CameraCall(const char *name, CAM_HANDLE hCam, const Enter &enter, const Body &body,
                          const Exit &exit = s_nameOnly)
{
    return GuardedCall(name, enter, CheckedBody([&] { return U3vOnly(TypeOfCamera(hCam)); }, body, exit));
}

/// A call whose ENTER line shows its two handles and nothing else.
template <class Body, class Exit = decltype(s_nameOnly)>
CAM_API_STATUS NodeCall(const char *name, CAM_HANDLE hCam, CAM_HANDLE hNode, const Body &body,
                        const Exit &exit = s_nameOnly)
{
    return CameraCall(name, hCam, LOG_TEXT("hCam=0x%llX, hNode=0x%llX", hCam, hNode), body, exit);
}

template <CameraTypeRule rule = U3vOnly, class Enter, class Body, class Exit = decltype(s_nameOnly)>
CAM_API_STATUS StreamCall(const char *name, CAM_HANDLE hStrm, const Enter &enter, const Body &body,
                          const Exit &exit = s_nameOnly)
{
    return GuardedCall(name, enter, CheckedBody([&] { return CheckStream<rule>(hStrm); }, body, exit));
}

/// Every event call shows its channel in the ENTER line and nothing else.
template <CameraTypeRule rule = U3vOnly, class Body>
CAM_API_STATUS EventCall(const char *name, CAM_HANDLE hEvt, const Body &body)
{
    return GuardedCall(name, LOG_TEXT("hEvt=0x%llX", hEvt),
                       CheckedBody([&] { return CheckEvent<rule>(hEvt); }, body, s_nameOnly));
}

} // namespace Orvi
