#include "exchange/delta_frame_edit.h"

#include <algorithm>
#include <limits>
#include <map>
#include <string>

namespace torquil {

namespace {

// Position (row * 256 + column from the sprite's top-left pixel) -> value of every pixel the
// delta stores, inside the sprite or not; a later run wins where two cover the same pixel.
std::map<std::int64_t, std::uint8_t> storedPixels(const DeltaRec& delta) {
    std::map<std::int64_t, std::uint8_t> pixels;
    std::int64_t position = 0; // where the previous run ended
    for (const RunLine& run : usedRuns(delta)) {
        position += run.offset;
        for (std::size_t k = 0; k < run.length; ++k)
            pixels[position + static_cast<std::int64_t>(k)] =
                k < run.data.size() ? run.data[k] : std::uint8_t{0};
        position += run.length;
    }
    return pixels;
}

std::string at(std::int64_t position) {
    return "(" + std::to_string(position % kDeltaRowPitch) + "," +
           std::to_string(position / kDeltaRowPitch) + ")";
}

// The pixels as run lines in position order: touching pixels share a run of at most 255.
FrameRuns encodeRuns(const std::map<std::int64_t, std::uint8_t>& pixels) {
    FrameRuns out;
    std::int64_t previousEnd = 0;
    for (auto it = pixels.begin(); it != pixels.end();) {
        const std::int64_t start = it->first;
        // An offset of 0 ends a delta when it is saved, and an offset is 16 bits.
        if (start - previousEnd == 0) {
            out.reason = previousEnd == 0
                             ? "its first changed pixel is the sprite's top-left pixel (0,0), "
                               "where no delta can start"
                             : "its pixels up to " + at(start) +
                                   " touch for more than 255 "
                                   "pixels, more than one run can hold";
            return out;
        }
        if (start - previousEnd > std::numeric_limits<std::uint16_t>::max()) {
            out.reason = "its pixel at " + at(start) +
                         " lies too far after the one before it for "
                         "a run's offset (65535)";
            return out;
        }
        RunLine run;
        run.offset = static_cast<std::uint16_t>(start - previousEnd);
        std::int64_t next = start;
        while (it != pixels.end() && it->first == next && run.data.size() < 255) {
            run.data.push_back(it->second);
            ++it;
            ++next;
        }
        run.length = static_cast<std::uint8_t>(run.data.size());
        out.bytes += run.length + 3;
        out.runs.push_back(std::move(run));
        previousEnd = next;
    }
    return finishFrameRuns(std::move(out));
}

} // namespace

FrameRuns runsFromEditedFrame(const DeltaRec& delta, std::span<const std::uint8_t> base,
                              std::span<const std::uint8_t> frame, int width, int height) {
    const std::size_t size = static_cast<std::size_t>(std::max(width, 0)) *
                             static_cast<std::size_t>(std::max(height, 0));
    if (width > 255 || base.size() < size || frame.size() < size) {
        FrameRuns out;
        out.reason = "the frame does not fit the sprite";
        return out;
    }
    std::map<std::int64_t, std::uint8_t> pixels = storedPixels(delta);
    for (int y = 0; y < height; ++y) {
        for (int x = 0; x < width; ++x) {
            const std::size_t i = static_cast<std::size_t>(y) * static_cast<std::size_t>(width) +
                                  static_cast<std::size_t>(x);
            const std::int64_t position = std::int64_t{y} * kDeltaRowPitch + x;
            const auto stored = pixels.find(position);
            const std::uint8_t shown = stored != pixels.end() ? stored->second : base[i];
            if (frame[i] == shown) continue; // as exported: kept as it is, stored or not
            if (frame[i] == base[i])
                pixels.erase(position); // the modder painted the background (or the car) back
            else
                pixels[position] = frame[i];
        }
    }
    return encodeRuns(pixels);
}

} // namespace torquil
