#pragma once
// Where the bundled sample level is, for the open dialog's first run.

#include <QString>

namespace torquil {

// The folder holding the sample level (STYLE001.G24) for a program in `appDir`: beside it
// ("samples"), in an installed layout ("../share/torquil/samples"), in the build tree (the
// source folder's "samples", three levels up), or under `currentDir` ("samples"). Empty when
// none holds it.
[[nodiscard]] QString sampleFolderBeside(const QString& appDir, const QString& currentDir);

} // namespace torquil
