#pragma once
// Sprite (or tile) export to a BMP in the program's directory, and import of the edited BMP
// back into the graphics page.

#include <cstdint>
#include <filesystem>
#include <vector>

namespace torquil {

class Platform;
class StyleSession;
struct SpriteRec;

// The sprite's width x height pixels, top row first, copied out of its page. Pixels outside the
// 256 x 256 page (a sprite reaching past the edge) read as 0.
std::vector<std::uint8_t> spritePixels(const StyleSession& session, const SpriteRec& sprite);

// Writes the selected sprite as workDir / bmpFileName(). Returns the full path of the file, or
// an empty path when nothing is selected or the file could not be written.
std::filesystem::path exportSprite(StyleSession& session, Platform& platform);
// The same into a file of the caller's choosing (PNG when its name ends in .png); true when it
// was written.
bool exportSpriteTo(StyleSession& session, Platform& platform, const std::filesystem::path& file);

// Reads workDir / bmpFileName() back into the selected sprite: the pixels go into the page and
// the sprite's rectangle is repainted in the page image. Returns true when the pixels were
// replaced (gPagesChanged is then set); false leaves the page as it was.
bool importSprite(StyleSession& session, Platform& platform);
// The same from a BMP (or a PNG, by the name) somewhere else (the command line names the file).
bool importSpriteFrom(StyleSession& session, Platform& platform, const std::filesystem::path& file);

} // namespace torquil
