#pragma once
// Reading the graphics pages into memory (and painting them) and writing them back in place.

namespace torquil {

class BinaryFile;
class ErrorState;
class Platform;
class PagePainter;
struct Pages;
struct PageImage;
struct StyleFileState;

// Reads pages 0 .. the highest page index (at most kMaxPages - 1) between gSeekGraphicsStart and
// gSeekGraphicsEnd into gPixels and paints them into the page image. False when a page starts
// past the end of the file (after the message; the pages before it stay loaded).
[[nodiscard]] bool loadBlocks(Pages& pages, PageImage& image, const StyleFileState& style,
                              BinaryFile& file, Platform& platform, const PagePainter& painter);
// Writes the pages back row for row; returns 0 or the run-time error number.
[[nodiscard]] int savePages(const Pages& pages, StyleFileState& style, BinaryFile& file,
                            ErrorState& errors, Platform& platform);
// Repaints every loaded page into the page image (after colours or pixels changed).
void repaintPages(const Pages& pages, PageImage& image, const PagePainter& painter);
// Repaints one rectangle of a page into the page image.
void repaintRect(const Pages& pages, PageImage& image, const PagePainter& painter, int page, int x,
                 int y, int w, int h);

} // namespace torquil
