// Writing pal24 back into the CLUT section of a .G24 file.

#include "sprites/clut.h"

#include "base/binary_file.h"
#include "base/checked.h"
#include "platform/format_context.h"
#include "platform/platform.h"
#include "platform/progress_scope.h"
#include "sprites/colour_tables.h"
#include "style/pages.h"
#include "style/style_file.h"

#include <algorithm>
#include <array>
#include <string>

namespace torquil {

int saveCLUT(const ColourTables& c, StyleFileState& style, BinaryFile& file, FormatContext& ctx) {
    Platform& platform = ctx.platform;
    if (!style.gIs24Bit) {
        platform.message("Cannot save Clut on 8bit style.");
        return -1;
    }
    ErrorState& errors = ctx.errors;
    const PendingErrorScope fresh(errors);
    const std::int32_t avail = c.gClutsAvail;
    {
        ProgressScope progress(platform.progress(), "Saving CLUT",
                               "Saving 24bit Color Look Up Table", std::max(0, avail));
        const std::int64_t start = clutSectionStart(style);
        const std::int64_t pages =
            std::max<std::int64_t>(1, (avail + kClutsPerPage - 1) / kClutsPerPage);
        // The section is rewritten in place: a header that puts it outside the file would
        // make the file grow by the gap instead.
        if (start < 1 || start - 1 + pages * kPageBytes > file.length()) {
            errors.raise(err::BadRecordNumber, "CLUT section at " + std::to_string(start));
            style.gClutChanged = false;
            return errors.pending();
        }
        std::int64_t base = 0;
        std::array<std::uint8_t, 256> row{};
        do {
            file.seek(start + (base / kClutsPerPage) * kPageBytes);
            for (int colour = 0; colour < 256; ++colour) {
                // Byte 4k + 3 of every group is never filled: it is written as 0.
                row.fill(0);
                for (int k = 0; k < kClutsPerPage; ++k) {
                    const auto& e = checkedAt(c.pal24, (base + k) * 256 + colour, errors, "pal24");
                    row[4 * k] = e[2];
                    row[4 * k + 1] = e[1];
                    row[4 * k + 2] = e[0];
                }
                file.write(row);
            }
            base += kClutsPerPage;
            progress.setValue(static_cast<int>(base));
            platform.doEvents();
        } while (base < avail);
    }
    // Cleared before the error is looked at: a failed CLUT save is not retried by the next save
    // unless the colours change again.
    style.gClutChanged = false;
    return errors.pending();
}

} // namespace torquil
