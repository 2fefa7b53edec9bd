#include "style/page_io.h"

#include "base/binary_file.h"
#include "platform/platform.h"
#include "style/pages.h"
#include "style/style_file.h"

#include <algorithm>
#include <span>
#include <string>

namespace torquil {

void BackgroundPainter::paintRow(int, int, const std::uint8_t*, std::uint32_t* out) const {
    std::fill(out, out + kPageSize, background_);
}

bool loadBlocks(Pages& pages, PageImage& image, const StyleFileState& style, BinaryFile& file,
                Platform& platform, const PagePainter& painter) {
    BusyCursor busy(platform);
    ProgressSink& progress = platform.progress();
    pages.gNumLinesLoaded = 0;

    int n = 0;
    bool stopped = false;
    for (;;) {
        if (n > kMaxPages - 1) {
            pages.gNumBlockLoaded = static_cast<std::int16_t>(n - 1);
            break;
        }
        const std::int64_t pageStart = style.gSeekGraphicsStart + std::int64_t{n} * kPageBytes;
        if (file.length() < pageStart) {
            platform.message("Tried to loadBlock " + std::to_string(n) +
                             " which is past the end of the file!");
            return false;
        }
        file.seek(pageStart);
        progress.open("Load Page " + std::to_string(n),
                      "Loading Graphics Page " + std::to_string(n) + "...", kPageSize - 1);
        std::int64_t rowStart = pageStart;
        for (int r = 0; r < kPageSize; ++r) {
            std::uint8_t* bytes = pages.row(n, r);
            file.read(std::span<std::uint8_t>(bytes, kPageSize));
            ++pages.gNumLinesLoaded;
            painter.paintRow(n, r, bytes, image.row(r) + n * kPageSize);
            progress.setValue(r);
            platform.doEvents();
            if (progress.stopRequested()) {
                stopped = true;
                break;
            }
            rowStart += kPageSize;
            // A row that starts exactly at the end of the page area is still read: only a
            // start strictly past it ends the page.
            if (rowStart > style.gSeekGraphicsEnd) break;
        }
        progress.close();
        if (stopped) {
            pages.gNumBlockLoaded = static_cast<std::int16_t>(n - 1);
            break;
        }
        pages.gBoardOffset = static_cast<std::int16_t>(n * kPageSize);
        platform.doEvents();
        platform.desktop().refreshBoard();
        if (n < pages.highestPage) {
            ++n;
            continue;
        }
        pages.gNumBlockLoaded = static_cast<std::int16_t>(n);
        break;
    }
    pages.gBoardOffset = 0;
    platform.desktop().refreshBoard();

    platform.detail("LoadBlocks final seek:" + std::to_string(file.position()));
    platform.detail("gSeekGraphicsEnd:" + std::to_string(style.gSeekGraphicsEnd));
    platform.detail("gNumBlockLoaded:" + std::to_string(pages.gNumBlockLoaded));
    platform.detail("gNumLinesLoaded:" + std::to_string(pages.gNumLinesLoaded));
    return true;
}

int savePages(const Pages& pages, StyleFileState& style, BinaryFile& file, ErrorState& errors,
              Platform& platform) {
    ProgressSink& progress = platform.progress();
    const PendingErrorScope fresh(errors);
    progress.open("Saving", "KRB Data File Saving Pages...",
                  std::max<int>(0, pages.gNumBlockLoaded));

    file.seek(style.gSeekGraphicsStart);
    std::int64_t saved = 0;
    int n = 0;
    for (; n <= pages.gNumBlockLoaded; ++n) {
        if (saved + kPageSize > pages.gNumLinesLoaded) {
            platform.detail("Lines Saved by blocks:" + std::to_string(saved));
            break;
        }
        file.write(std::span<const std::uint8_t>(pages.row(n, 0), kPageBytes));
        saved += kPageSize;
        progress.setValue(n);
    }
    // The rest of a partial page (or of the page a Stop cut short), row by row.
    if (n < kMaxPages) {
        for (int r = 0; r < kPageSize && saved < pages.gNumLinesLoaded; ++r) {
            file.write(std::span<const std::uint8_t>(pages.row(n, r), kPageSize));
            ++saved;
        }
    }

    platform.detail("Lines Saved total:" + std::to_string(saved));
    platform.detail("SavePages final seek:" + std::to_string(file.position()));
    platform.detail("gSeekGraphicsEnd:" + std::to_string(style.gSeekGraphicsEnd));
    if (errors.debugMode() && style.loadOption == kLoadTiles && saved != pages.gNumLinesLoaded)
        platform.message("Debug mode only warning: linesSaved != gNumLinesLoaded");

    progress.close();
    if (!errors.hasPending()) style.gPagesChanged = false;
    return errors.pending();
}

void repaintPages(const Pages& pages, PageImage& image, const PagePainter& painter) {
    for (int n = 0; n <= pages.gNumBlockLoaded && n < kMaxPages; ++n)
        repaintRect(pages, image, painter, n, 0, 0, kPageSize, kPageSize);
}

void repaintRect(const Pages& pages, PageImage& image, const PagePainter& painter, int page, int x,
                 int y, int w, int h) {
    if (page < 0 || page >= kMaxPages) return;
    const int x0 = std::clamp(x, 0, kPageSize), x1 = std::clamp(x + w, 0, kPageSize);
    const int y0 = std::clamp(y, 0, kPageSize), y1 = std::clamp(y + h, 0, kPageSize);
    if (x0 >= x1) return;
    std::uint32_t rowOut[kPageSize];
    for (int r = y0; r < y1; ++r) {
        painter.paintRow(page, r, pages.row(page, r), rowOut);
        std::copy(rowOut + x0, rowOut + x1, image.row(r) + page * kPageSize + x0);
    }
}

} // namespace torquil
