#pragma once
// What every format routine gets besides the tables and the file it works on: the error state
// it raises run-time errors on, the platform it talks to the user through, and the program's
// options (debug mode, the program's directory, the dump files to write).

#include "base/app_options.h"
#include "base/runtime_error.h"
#include "platform/platform.h"

namespace torquil {

struct FormatContext {
    ErrorState& errors;
    Platform& platform;
    const AppOptions& options;
};

} // namespace torquil
