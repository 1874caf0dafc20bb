#pragma once
// Getters and setters of enumerations with plain words, so that tables hold functions of one type and tests may give
// values that are none.

#include "OrviCamApi.h"

namespace Orvi::Testing {

template <class Enum>
Enum EnumOfGetter(CAM_API_STATUS (*)(CAM_HANDLE, Enum *));
template <class Enum>
Enum EnumOfSetter(CAM_API_STATUS (*)(CAM_HANDLE, Enum));

/// What the function leaves alone stays in *value.
template <auto get>
CAM_API_STATUS GetPlain(CAM_HANDLE hCam, uint32_t *value)
{
    auto typed = static_cast<decltype(EnumOfGetter(get))>(*value);
    const CAM_API_STATUS status = get(hCam, &typed);
    *value = typed;
    return status;
}

template <auto set>
CAM_API_STATUS SetPlain(CAM_HANDLE hCam, uint32_t value)
{
    return set(hCam, static_cast<decltype(EnumOfSetter(set))>(value));
}

} // namespace Orvi::Testing
