#pragma once
// How the scripted transport shows the arguments of a call: handles, addresses and other 64-bit values as 0x11, 32-bit
// values in decimal, texts in quotes, flags as true and false, an address that the test has named by that name, a size
// passed by address as its value, every other address as "ptr" or "null".

#include "tests/stub/StubTransport.h"

#include <cstdio>
#include <string_view>
#include <type_traits>

namespace Orvi::Stub {

inline std::string Hex(uint64_t value)
{
    char text[24];
    std::snprintf(text, sizeof text, "0x%llX", static_cast<unsigned long long>(value));
    return text;
}

/// Sizes go in as well as out, so their value at the call is worth showing.
inline bool IsSize(std::string_view parameter) { return parameter.find("Size") != std::string_view::npos; }

template <class T>
std::string PointerText(std::string_view parameter, T *pointer)
{
    if (pointer == nullptr)
        return "null";
    const void *address;
    if constexpr (std::is_function_v<T>)
        address = reinterpret_cast<const void *>(pointer);
    else
        address = pointer;
    if (std::string name = Transport::Instance().PointerName(address); !name.empty())
        return name;
    if constexpr (std::is_same_v<T, const char>)
        return '"' + std::string(pointer) + '"';
    else if constexpr (std::is_same_v<T, uint32_t> || std::is_same_v<T, uint64_t>) {
        if (IsSize(parameter))
            return std::to_string(*pointer);
    }
    return "ptr";
}

template <class T>
std::string ArgumentText(std::string_view parameter, T value)
{
    if constexpr (std::is_pointer_v<T>)
        return PointerText(parameter, value);
    else if constexpr (std::is_same_v<T, bool>)
        return value ? "true" : "false";
    else if constexpr (std::is_floating_point_v<T>) {
        char text[32];
        std::snprintf(text, sizeof text, "%.10g", value);
        return text;
    } else if constexpr (sizeof(T) == 8)
        return Hex(static_cast<uint64_t>(value));
    else
        return std::to_string(static_cast<uint32_t>(value));
}

} // namespace Orvi::Stub
