#pragma once
// A picture as PNG. Samples of more than 8 bits are stored in 16, shifted up so that viewers show them at full
// brightness (Mono12: value times 16); the sBIT chunk tells how many bits are significant.

#include "Picture.h"

#include <cstdio>
#include <string>
#include <utility>
#include <vector>

namespace Orvi::Tool {

/// Keys and values that a file tells about its image; the PNG's text chunks.
using Labels = std::vector<std::pair<std::string, std::string>>;

/// Throws Failure(File) when libpng gives up; errors of the file show in std::ferror().
void WritePng(std::FILE *file, const Picture &picture, const Labels &labels);

} // namespace Orvi::Tool
