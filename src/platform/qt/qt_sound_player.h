#pragma once
// Plays a WAV file to its end before returning, so the caller may delete the file afterwards;
// without an audio output it plays nothing and returns at once.

#include "platform/platform.h"

#include <optional>

namespace torquil {

class QtSoundPlayer : public SoundPlayer {
public:
    [[nodiscard]] bool playWavSync(const std::filesystem::path& wav) override;
    [[nodiscard]] bool hasOutput() const override;
    // Tests decide whether a device is there.
    std::optional<bool> outputOverride;
};

} // namespace torquil
