#include "session/shrink_style_file.h"

#include "base/binary_file.h"
#include "base/runtime_error.h"
#include "platform/platform.h"

#include <string>

namespace torquil {

int shrinkStyleContent(BinaryFile& content, std::int64_t endPosition, Platform& platform) {
    const std::int64_t length = content.length();
    // "Not greater": content whose length equals endPosition keeps its one byte past the sprite
    // numbers record; only longer content is cut.
    if (length <= endPosition) return err::None;
    const std::int64_t keep = endPosition - 1;
    if (keep < 1) return err::InvalidCall; // never cut a style file down to nothing
    ProgressSink& progress = platform.progress();
    progress.open(
        "Shrinking STYLE file",
        "From:" + std::to_string(length) + " to " + std::to_string(endPosition) + " bytes.", 10);
    progress.setValue(4);
    content.truncateInMemory(keep);
    progress.setValue(7);
    progress.setValue(9);
    progress.close();
    return err::None;
}

} // namespace torquil
