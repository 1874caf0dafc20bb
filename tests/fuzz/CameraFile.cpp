#include "vcam/config/ConfigFile.h"

#include "tests/fuzz/Bytes.h"

#include <algorithm>

namespace Orvi::Fuzz {

void CameraFile(Input input)
{
    using namespace Vcam;
    const std::string_view text = TextOf(input);
    const auto lines = static_cast<unsigned>(std::count(text.begin(), text.end(), '\n')) + 1;
    const ConfigFile file = ReadConfig(text, "folder", Disk::Untouched);
    Require(!file.isUnreadable, "a text can be read");
    Require(file.cameras.size() <= s_maxCameras, "there are no more cameras than can be");
    Require(!file.mistakes.empty() || !file.cameras.empty(), "a file without mistakes describes a camera");
    for (const Mistake &mistake : file.mistakes) {
        Require(!mistake.text.empty(), "a mistake is told in words");
        Require(mistake.place.line <= lines, "a mistake lies in the file");
    }
    if (!file.mistakes.empty())
        return;
    for (const CameraConfig &camera : file.cameras) {
        Require(!camera.serial.empty(), "a camera has a serial number");
        Require(camera.sensorWidth != 0 && camera.sensorHeight != 0, "a sensor has pixels");
    }
}

} // namespace Orvi::Fuzz
