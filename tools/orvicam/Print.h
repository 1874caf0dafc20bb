#pragma once
// Output for people and for programs.

#include <nlohmann/json.hpp>

#include <cstdio>
#include <string>

namespace Orvi::Tool {

using Json = nlohmann::ordered_json;

/// Cameras may tell texts that are no UTF-8; they must not break the output.
inline std::string Dump(const Json &json) { return json.dump(2, ' ', false, Json::error_handler_t::replace); }

inline void PrintLine(const std::string &line) { std::printf("%s\n", line.c_str()); }

} // namespace Orvi::Tool
