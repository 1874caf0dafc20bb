#pragma once
// Asks every node of a map everything, and writes it.

#include "u3v/genapi/NodeMap.h"

namespace Orvi::Fuzz {

/// Only what the map promises to throw may come; it is swallowed. Of a large map the first nodes are enough.
void UseNodes(GenApi::NodeMap &nodes);

} // namespace Orvi::Fuzz
