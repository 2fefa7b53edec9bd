#pragma once
// Reading the graphics pages into memory (and painting them) and writing them back in place.

namespace torquil {

class BinaryFile;
class Platform;
class StyleSession;
class PagePainter;

// Reads pages 0 .. the highest page index (at most 25) between gSeekGraphicsStart and
// gSeekGraphicsEnd into gPixels and paints them into the page image.
void loadBlocks(StyleSession& session, BinaryFile& file, Platform& platform,
                const PagePainter& painter);
// Writes the pages back row for row; returns 0 or the run-time error number.
int savePages(StyleSession& session, BinaryFile& file, Platform& platform);
// Repaints every loaded page into the page image (after colours or pixels changed).
void repaintPages(StyleSession& session, const PagePainter& painter);
// Repaints one rectangle of a page into the page image.
void repaintRect(StyleSession& session, const PagePainter& painter, int page, int x, int y, int w,
                 int h);

} // namespace torquil
