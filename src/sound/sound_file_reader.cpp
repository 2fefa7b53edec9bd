#include "sound/sound_file_reader.h"

#include <algorithm>
#include <cmath>

#ifdef _WIN32
#define ENABLE_SNDFILE_WINDOWS_PROTOTYPES 1
#endif
#include <sndfile.h>

namespace torquil {

namespace fs = std::filesystem;

namespace {

class SoundFile {
public:
    SoundFile(const fs::path& file, SF_INFO& info) {
#ifdef _WIN32
        handle_ = sf_wchar_open(file.c_str(), SFM_READ, &info);
#else
        handle_ = sf_open(file.c_str(), SFM_READ, &info);
#endif
    }
    ~SoundFile() {
        if (handle_) sf_close(handle_);
    }
    SoundFile(const SoundFile&) = delete;
    SoundFile& operator=(const SoundFile&) = delete;
    SNDFILE* get() const {
        return handle_;
    }

private:
    SNDFILE* handle_ = nullptr;
};

} // namespace

bool soundFilesSupported() {
    return true;
}

std::string soundFilesOffReason() {
    return {};
}

Result<DecodedSound> decodeSoundFile(const fs::path& file) {
    DecodedSound out;
    SF_INFO info{};
    const SoundFile sound(file, info);
    if (!sound.get())
        return fail(file.string() + " could not be read as a sound: " + sf_strerror(nullptr) + ".");
    if (info.channels < 1 || info.samplerate < 1)
        return fail(file.string() + " names no channels or no rate.");
    if (info.frames > kMaxImportSamples) {
        return fail(file.string() + " holds " + std::to_string(info.frames) +
                    " samples; a sound of the bank may have at most " +
                    std::to_string(kMaxImportSamples) + ".");
    }
    // Read in blocks, each frame's channels mixed to one.
    constexpr sf_count_t kBlock = 4096;
    std::vector<float> block(static_cast<std::size_t>(kBlock * info.channels));
    out.samples.reserve(static_cast<std::size_t>(std::max<sf_count_t>(info.frames, 0)));
    for (;;) {
        const sf_count_t got = sf_readf_float(sound.get(), block.data(), kBlock);
        for (sf_count_t f = 0; f < got; ++f) {
            double sum = 0;
            for (int c = 0; c < info.channels; ++c)
                sum += block[static_cast<std::size_t>(f * info.channels + c)];
            out.samples.push_back(toBankSample(sum / info.channels));
        }
        if (static_cast<std::int64_t>(out.samples.size()) > kMaxImportSamples)
            return fail(file.string() + " holds more than " + std::to_string(kMaxImportSamples) +
                        " samples, the most a sound of the bank may have.");
        if (got < kBlock) break;
    }
    if (sf_error(sound.get()) != SF_ERR_NO_ERROR)
        return fail(file.string() + " could not be read to its end: " + sf_strerror(sound.get()) +
                    ".");
    if (out.samples.empty()) return fail(file.string() + " holds no sound (no samples).");
    out.rate = info.samplerate;
    out.channels = info.channels;
    return out;
}

} // namespace torquil
