// Built without libsndfile (TORQUIL_SNDFILE=OFF): no recording can be read, and every attempt says
// why.
#include "sound/sound_file_reader.h"

#include <algorithm>
#include <cmath>

namespace torquil {

bool soundFilesSupported() {
    return false;
}

std::string soundFilesOffReason() {
    return "Sound import is off in this build of Torquil: it was built without libsndfile, which "
           "reads the recordings (WAV, FLAC, Ogg).";
}

Result<DecodedSound> decodeSoundFile(const std::filesystem::path& file) {
    return fail(soundFilesOffReason() + " " + file.string() + " was not read.");
}

} // namespace torquil
