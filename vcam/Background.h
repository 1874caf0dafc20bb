#pragma once
// The background of an image in one go: what every pixel asks for again and again is worked out once for each column,
// line and brightness. Pixels are those of Scene::Background().

#include "vcam/Scene.h"

namespace Orvi::Vcam {

/// Draws all lines; `image` has ImageBytes().
void DrawBackground(const Scene &scene, const PictureSettings &settings, std::span<std::byte> image);

} // namespace Orvi::Vcam
