#include "platform/qt/wav_length.h"

#include <array>
#include <fstream>
#include <string_view>

namespace torquil {

namespace {

std::uint32_t le32(const unsigned char* p) {
    return p[0] | (p[1] << 8) | (p[2] << 16) | (static_cast<std::uint32_t>(p[3]) << 24);
}

} // namespace

std::optional<std::int64_t> wavDurationMs(const std::filesystem::path& wav) {
    std::ifstream in(wav, std::ios::binary);
    std::array<unsigned char, 12> riff{};
    if (!in.read(reinterpret_cast<char*>(riff.data()), riff.size())) return std::nullopt;
    if (std::string_view(reinterpret_cast<char*>(riff.data()), 4) != "RIFF" ||
        std::string_view(reinterpret_cast<char*>(riff.data()) + 8, 4) != "WAVE")
        return std::nullopt;

    std::uint32_t byteRate = 0;
    // Chunks are walked by their declared sizes; a bounded count keeps a corrupt file short.
    for (int chunk = 0; chunk < 64; ++chunk) {
        std::array<unsigned char, 8> head{};
        if (!in.read(reinterpret_cast<char*>(head.data()), head.size())) return std::nullopt;
        const std::string_view id(reinterpret_cast<char*>(head.data()), 4);
        const std::uint32_t size = le32(head.data() + 4);
        if (id == "fmt ") {
            std::array<unsigned char, 16> fmt{};
            if (size < fmt.size() || !in.read(reinterpret_cast<char*>(fmt.data()), fmt.size()))
                return std::nullopt;
            byteRate = le32(fmt.data() + 8);
            in.seekg(static_cast<std::streamoff>(size - fmt.size() + (size & 1)), std::ios::cur);
        } else if (id == "data") {
            if (byteRate == 0) return std::nullopt;
            return static_cast<std::int64_t>(size) * 1000 / byteRate;
        } else {
            in.seekg(static_cast<std::streamoff>(size) + (size & 1), std::ios::cur);
        }
        if (!in) return std::nullopt;
    }
    return std::nullopt;
}

} // namespace torquil
