#pragma once
// The public header with its functions exported: everything is hidden unless it is declared between these two lines or
// marked ORVI_EXPORT, and the version script then decides in which node it appears.

#pragma GCC visibility push(default)
#include "OrviCamApi.h"
#pragma GCC visibility pop

/// Visible outside although no application may rely on it: the private node of the version script.
#define ORVI_EXPORT __attribute__((visibility("default")))
