#pragma once
// A feature's value as the text of a parameter file: numbers so that they read back to the last bit, entries by name,
// strings in quotes, registers as 0x and their bytes.

#include "u3v/genapi/NodeMap.h"

#include <string>
#include <string_view>

namespace Orvi::U3v {

/// Whether the node's kind has a value that a file can hold.
bool HasText(const GenApi::NodeMap &nodes, GenApi::NodeId id);

// These throw GenApi::Error.
std::string ReadText(const GenApi::NodeMap &nodes, GenApi::NodeId id);
void WriteText(GenApi::NodeMap &nodes, GenApi::NodeId id, std::string_view text);
/// Whether the text can be a value of the feature at some time; its present range is not looked at.
void CheckText(const GenApi::NodeMap &nodes, GenApi::NodeId id, std::string_view text);

} // namespace Orvi::U3v
