#pragma once
// A camera's persistent features in a file, and back. The folder's main header.
//
// Saving writes a line for each persistent feature that can be read and written now, one for each value of its
// selectors. Loading is all or nothing: the whole file is checked before the first write, lines are applied in the
// order in which the camera takes them (a mode that unlocks a value may stand below it), and when a line cannot be
// applied all that was changed is put back.

#include <string>

namespace Orvi::U3v {

class Camera;

enum class DefectTable : bool { Leave, Load };

// Both throw GenApi::Error whose text names the file, and the line where there is one, and log it; StatusError when the
// camera is gone or was opened without its description.

void SaveParameters(Camera &camera, const std::string &path);
void LoadParameters(Camera &camera, const std::string &path, DefectTable defects);

} // namespace Orvi::U3v
