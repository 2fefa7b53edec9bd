// Fuzzes the sound bank reader and the WAV writer: any SDT and RAW pair must end in a WAV, "Sound
// is out of range." or the general error message, never a crash or a read outside a buffer.

#include "fake_platform.h"
#include "fuzz_support.h"
#include "session/load_sequence.h"
#include "session/session_io.h"
#include "sound/sound_preview.h"

#include <cstdint>
#include <filesystem>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    using namespace torquil;
    if (size < 4) return 0;
    // Byte 0: the SDT's share of the rest; byte 1: sound number; byte 2: rate and repeats.
    const std::size_t sdtSize = std::min<std::size_t>(data[0] * 2u, size - 3);
    std::filesystem::create_directories(fuzz::scratchDir() / "audio");
    fuzz::writeScratch("audio/LEVEL001.SDT", data + 3, sdtSize);
    fuzz::writeScratch("audio/LEVEL001.RAW", data + 3 + sdtSize, size - 3 - sdtSize);

    // One session for the whole run: the preview only reads its level, folder and options.
    static StyleSession session = [] {
        AppOptions options;
        options.workDir = fuzz::scratchDir();
        return StyleSession(options);
    }();
    prepareStyle(session.style, fuzz::scratchDir() / "STYLE001.G24", kLoadSprites);
    testing::FakePlatform platform;
    const auto number = static_cast<std::int16_t>(static_cast<std::int8_t>(data[1]));
    const double rate = 0.25 + (data[2] & 15) * 0.25;
    const auto repeats = static_cast<std::int16_t>(1 + (data[2] >> 4) % 4);
    // Any outcome will do: the bank must only never crash the reader.
    (void)writeSoundWav(session, platform, number, rate, repeats, fuzz::scratchDir() / "out.wav");
    (void)playSound(session, platform, number, rate, repeats);
    return 0;
}
