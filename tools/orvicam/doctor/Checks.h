#pragma once
// What orvicam doctor looks at. MachineChecks.cpp: kernel, udev and cameras on the bus; LibraryChecks.cpp: the library
// and its environment.

#include "Finding.h"
#include "Machine.h"
#include "UdevRule.h"
#include "UsbCameras.h"

#include "tools/orvicam/Session.h"

#include <string>
#include <vector>

namespace Orvi::Tool {

/// What cameras the user wants to work with.
enum class Wanted { RealCameras, VirtualCameras };

Finding CheckKernel(const Machine &machine, Wanted wanted);
Finding CheckVirtualBus(const Machine &machine);
Finding CheckUdevRule(const UdevRule &rule, const std::vector<UsbCamera> &cameras, const Machine &machine,
                      const std::string &sdk);
/// One for each question about a camera: who may open it, its link, who holds it.
Findings CheckUsbCamera(const UsbCamera &camera, const Machine &machine, const UdevRule &rule, const std::string &sdk);
Finding CheckUsbMemory(const Machine &machine, std::size_t cameras);

/// Whether cameras that the kernel sees reach the library.
Finding CheckCameras(const std::vector<CameraEntry> &listed, const std::vector<UsbCamera> &cameras);
Finding CheckConfiguration(const std::string &sdk);
Finding CheckCache();
Findings CheckVariables();

} // namespace Orvi::Tool
