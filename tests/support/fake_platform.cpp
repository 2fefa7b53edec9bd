#include "fake_platform.h"

#include <fstream>
#include <iterator>

namespace torquil::testing {

bool FakePlatform::playWavSync(const std::filesystem::path& wav) {
    playedSounds.push_back(wav);
    std::ifstream in(wav, std::ios::binary);
    playedSoundBytes.emplace_back(std::istreambuf_iterator<char>(in),
                                  std::istreambuf_iterator<char>());
    return soundPlays;
}

} // namespace torquil::testing
