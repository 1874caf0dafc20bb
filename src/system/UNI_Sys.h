#pragma once
// Start and end of the library: what its steps share.

#include "transport/InitState.h"

#include <string>

namespace Orvi {

ORVI_EXPORT extern bool s_bInit;

/// Reads "OrviCamSDK.cfg" and starts the log that it asks for.
ORVI_EXPORT void LoadConfiguration();

/// Sets ORVICAMSDK and GENICAM_CACHE_V3_0 for the transport, and makes the folder that the second one names.
ORVI_EXPORT void SetEnvVariable();

/// Lets all users share the files of the GenICam cache folder.
ORVI_EXPORT void ChangeMode_GenicamCache();

/// What the configuration file said.
struct Configuration {
    bool s_bUseGenICamCache = true;
    std::string s_camLogPath;       ///< file of the log, or of the ring's dump at the end
    bool s_bCamMemoryType = false;  ///< the log is a ring
    bool s_bCamOutDebugLog = false; ///< the file started the log, so the end of the library ends it
};
extern Configuration s_configuration;

} // namespace Orvi
