#pragma once
// What every entry of the transport shares: its body throws, its caller gets a status.
//
//     CAM_API_STATUS UC_Nd_GetIntMin(CAM_HANDLE hNode, int64_t *pllMin)
//     {
//         return ApiCall([&] {
//             Require(pllMin);
//             const NodeRef node = ResolveNode(hNode);
//             *pllMin = node.camera->Nodes().IntMin(node.id);
//         });
//     }

#include "u3v/core/LastError.h"
#include "u3v/core/Status.h"
#include "u3v/genapi/Error.h"
#include "u3v/protocol/Camera.h"
#include "u3v/protocol/CameraTable.h"

#include <cstdint>
#include <cstring>
#include <new>
#include <string_view>
#include <type_traits>

namespace Orvi::U3v {

/// The status for the exception that is being handled; a GenICam failure is recorded.
CAM_API_STATUS StatusOfException() noexcept;

/// A body may also return a status, for outcomes too frequent to be thrown.
template <class Body>
CAM_API_STATUS ApiCall(Body &&body) noexcept
{
    using Result = decltype(body());
    static_assert(std::is_void_v<Result> || std::is_same_v<Result, CAM_API_STATUS>);
    try {
        if constexpr (std::is_void_v<Result>) {
            body();
            return CAM_API_STS_SUCCESS;
        } else {
            return body();
        }
    } catch (...) {
        return StatusOfException();
    }
}

inline void Require(const void *pointer)
{
    if (pointer == nullptr)
        throw StatusError(CAM_API_STS_INVALID_PARAMETER, "null pointer");
}

/// Copies bytes out: a null buffer asks for the size, too small a one is refused; *size then tells the size needed.
template <class Size>
void CopyBytes(const void *bytes, std::size_t length, void *buffer, Size *size)
{
    Require(size);
    const Size capacity = *size;
    *size = static_cast<Size>(length);
    if (buffer == nullptr)
        return;
    if (capacity < length)
        throw StatusError(CAM_API_STS_BUFFER_TOO_SMALL, "buffer too small");
    if (length != 0)
        std::memcpy(buffer, bytes, length);
}

/// Copies a text out with its closing NUL, by the rules of CopyBytes.
inline void CopyText(std::string_view text, char *buffer, std::uint32_t *size)
{
    Require(size);
    const std::uint32_t capacity = *size;
    *size = static_cast<std::uint32_t>(text.size() + 1);
    if (buffer == nullptr)
        return;
    if (capacity < text.size() + 1)
        throw StatusError(CAM_API_STS_BUFFER_TOO_SMALL, "buffer too small");
    if (!text.empty())
        std::memcpy(buffer, text.data(), text.size());
    buffer[text.size()] = '\0';
}

} // namespace Orvi::U3v
