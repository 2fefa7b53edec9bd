#include "platform/console_sound.h"

#if defined(_WIN32)
#include <windows.h>

#include <mmsystem.h>
#else
#include <cstdlib>
#endif

namespace torquil {

Result<void> playWavFileSync(const std::filesystem::path& wav) {
#if defined(_WIN32)
    if (PlaySoundW(wav.c_str(), nullptr, SND_FILENAME | SND_SYNC | SND_NODEFAULT)) return {};
    return fail("Windows could not play the sound (no sound device, or the device is busy)");
#else
#if defined(__APPLE__)
    const std::string player = "afplay";
#else
    const std::string player = "aplay -q";
#endif
    // The name goes in single quotes; a quote inside it is closed, escaped and reopened.
    std::string quoted = "'";
    for (char c : wav.string()) quoted += c == '\'' ? std::string("'\\''") : std::string(1, c);
    quoted += "'";
    const std::string command = player + " " + quoted + " >/dev/null 2>&1";
    if (std::system(command.c_str()) == 0) return {};
    return fail("the system's sound player (" + player.substr(0, player.find(' ')) +
                ") is missing or could not play the sound");
#endif
}

} // namespace torquil
