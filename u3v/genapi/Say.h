#pragma once
// Messages out of pieces.

#include <string>
#include <string_view>

namespace Orvi::GenApi {

template <class... Parts>
std::string Say(const Parts &...parts)
{
    std::string text;
    (text.append(std::string_view(parts)), ...);
    return text;
}

} // namespace Orvi::GenApi
