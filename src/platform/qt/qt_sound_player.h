#pragma once
// Plays a WAV file to its end before returning, so the caller may delete the file afterwards;
// without an audio output it plays nothing and returns at once.

#include "platform/platform.h"

namespace torquil {

class QtSoundPlayer : public SoundPlayer {
public:
    bool playWavSync(const std::filesystem::path& wav) override;
};

} // namespace torquil
