#include "session/picture_file.h"

#include "base/atomic_file.h"
#include "base/binary_file.h"
#include "exchange/bmp.h"
#include "exchange/png_codec.h"
#include "platform/platform.h"
#include "session/edits.h"
#include "session/session_io.h"

#include <fstream>

namespace torquil {

namespace fs = std::filesystem;

namespace {

constexpr std::int64_t kPngMaxFileBytes = std::int64_t{1} << 28;

// The colours a PNG carries, with the entries past its PLTE taken from `own`: paint programs may
// write only the colours in use, and those entries say nothing against the sprite's palette.
BmpColourTable completed(const IndexedPicture& picture, const BmpColourTable& own) {
    BmpColourTable colours = own;
    for (int i = 0; i < picture.colourCount; ++i)
        colours[static_cast<std::size_t>(i)] = picture.colours[static_cast<std::size_t>(i)];
    return colours;
}

} // namespace

bool writePicture(StyleSession& session, Platform& platform, const fs::path& file,
                  std::span<const std::uint8_t> pixels, int clut, int width, int height) {
    if (!hasPngExtension(file.filename().string()))
        return writeBmp(session, platform, file, pixels, clut, width, height);
    session.errors.clear();
    const BmpColourTable colours =
        session.style.gIs24Bit ? clutColourTable(session, clut) : palette8ColourTable(session);
    const auto encoded = encodeIndexedPng(pixels, width, height, colours);
    if (!encoded) {
        platform.message("The picture " + file.string() +
                             " could not be written: " + encoded.error().cause,
                         Buttons::Ok, Icon::Warning);
        return false;
    }
    const std::vector<std::uint8_t>& bytes = *encoded;
    // Written whole in one replace: the old picture or the new one.
    if (const ReplaceResult written = replaceFileAtomically(file, bytes); !written) {
        session.errors.raise(err::PathFileAccess, file.string() + ": " + written.error().cause);
        return false;
    }
    return true;
}

bool readPicture(StyleSession& session, Platform& platform, const fs::path& file, int clut,
                 int width, int height, std::vector<std::uint8_t>& pixels) {
    if (hasPngExtension(file.filename().string()))
        return readPng(session, platform, file, clut, width, height, pixels);
    return readBmp(session, platform, file, clut, width, height, pixels);
}

bool readPng(StyleSession& session, Platform& platform, const fs::path& file, int clut, int width,
             int height, std::vector<std::uint8_t>& pixels) {
    session.errors.clear();
    std::error_code ec;
    if (!fs::is_regular_file(file, ec)) {
        platform.message("Sprite to be imported named " + file.string() + " was not found.");
        return false;
    }
    const auto length = fs::file_size(file, ec);
    if (ec || length > static_cast<std::uintmax_t>(kPngMaxFileBytes)) {
        platform.message("Imported sprite file " + file.string() + " cannot be read.");
        return false;
    }
    std::vector<std::uint8_t> bytes(static_cast<std::size_t>(length));
    {
        std::ifstream in(file, std::ios::binary);
        if (!in.read(reinterpret_cast<char*>(bytes.data()),
                     static_cast<std::streamsize>(bytes.size()))) {
            platform.message("Imported sprite file " + file.string() + " cannot be read.");
            return false;
        }
    }
    const PngDecoded decoded = decodeIndexedPng(bytes, width, height);
    switch (decoded.status) {
    case PngStatus::Ok:
        break;
    case PngStatus::NotPng:
        platform.message(bytes.size() < 33 ? std::string("Imported sprite file size is too small.")
                                           : "Imported sprite must be a PNG file.");
        return false;
    case PngStatus::NotIndexed8:
        platform.message("Imported sprite must be 8 bit palette PNG file.");
        return false;
    case PngStatus::WrongSize:
        platform.message("Imported sprite must be of the exact same size as sprite.\rPNG image "
                         "should be (" +
                         std::to_string(width) + "," + std::to_string(height) + ") but is (" +
                         std::to_string(decoded.fileWidth) + "," +
                         std::to_string(decoded.fileHeight) + ")");
        return false;
    case PngStatus::Damaged:
        platform.message("Imported sprite PNG file is damaged or incomplete.\r" + decoded.detail);
        return false;
    }

    if (!session.style.gIs24Bit) {
        const BmpColourTable own = palette8ColourTable(session);
        if (!sameColours(completed(decoded.picture, own), own)) {
            platform.progress().close();
            const Answer a = platform.message(
                "Warning: Imported Sprite palette does not match 8bit KRB palette.\r"
                "The imported palette will be ignored in favor of the correct KRB8bit palette.",
                Buttons::OkCancel, Icon::Warning, "Import GRY Palette");
            if (a != Answer::Ok) return false;
        }
    } else {
        const BmpColourTable own = clutColourTable(session, clut);
        if (session.errors.hasPending()) return false;
        if (!comparePalette(session, platform, clut, completed(decoded.picture, own))) return false;
    }
    pixels = decoded.picture.pixels;
    return true;
}

} // namespace torquil
