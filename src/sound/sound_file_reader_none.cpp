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

bool decodeSoundFile(const std::filesystem::path& file, DecodedSound& out, std::string& why) {
    out = DecodedSound{};
    why = soundFilesOffReason() + " " + file.string() + " was not read.";
    return false;
}

} // namespace torquil
