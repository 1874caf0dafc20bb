#pragma once
// What a feature wants of a register block or a node.

namespace Orvi {

enum class Access { Read, Write };

} // namespace Orvi
