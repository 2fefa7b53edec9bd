#pragma once
// Sprite-sized pictures on disk in either of the two formats a paint program takes: the 8-bit BMP
// (the default) or, when the file name ends in .png, an 8-bit palette PNG. The palette goes out as
// the sprite's colours and comes back through the same checks and questions as a BMP's.

#include <cstdint>
#include <filesystem>
#include <span>
#include <vector>

namespace torquil {

class Platform;
class StyleSession;

// Writes width x height indexes with the style's colours for CLUT `clut`: PNG when the name ends
// in .png, else BMP exactly as writeBmp writes it. True when written.
[[nodiscard]] bool writePicture(StyleSession& session, Platform& platform,
                                const std::filesystem::path& file,
                                std::span<const std::uint8_t> pixels, int clut, int width,
                                int height);

// Reads a picture of exactly width x height for CLUT `clut` (BMP, or PNG by the name), with the
// import's messages and palette questions. False, with `pixels` untouched, when it was refused.
[[nodiscard]] bool readPicture(StyleSession& session, Platform& platform,
                               const std::filesystem::path& file, int clut, int width, int height,
                               std::vector<std::uint8_t>& pixels);

// The PNG half of readPicture.
[[nodiscard]] bool readPng(StyleSession& session, Platform& platform,
                           const std::filesystem::path& file, int clut, int width, int height,
                           std::vector<std::uint8_t>& pixels);

} // namespace torquil
