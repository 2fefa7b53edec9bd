#include "exchange/delta_frames.h"

#include <algorithm>

namespace torquil {

namespace {

// Calls put(x, y, value) for every pixel of the delta that falls inside the sprite; returns how
// many fell outside.
template <typename Put> int forEachPixel(const DeltaRec& delta, int width, int height, Put put) {
    int outside = 0;
    std::int64_t position = 0; // where the previous run ended
    for (const RunLine& run : usedRuns(delta)) {
        position += run.offset;
        const std::size_t length = std::min<std::size_t>(run.length, run.data.size());
        for (std::size_t k = 0; k < run.length; ++k) {
            const std::int64_t at = position + static_cast<std::int64_t>(k);
            const int x = static_cast<int>(at % kDeltaRowPitch);
            const std::int64_t y = at / kDeltaRowPitch;
            if (x >= width || y >= height) {
                ++outside;
                continue;
            }
            put(x, static_cast<int>(y), k < length ? run.data[k] : std::uint8_t{0});
        }
        position += run.length;
    }
    return outside;
}

} // namespace

std::span<const RunLine> usedRuns(const DeltaRec& delta) {
    const auto end = std::find_if(delta.runLine.begin(), delta.runLine.end(),
                                  [](const RunLine& r) { return r.offset == 0; });
    return {delta.runLine.data(), static_cast<std::size_t>(end - delta.runLine.begin())};
}

int drawDelta(const DeltaRec& delta, int width, int height, std::span<std::uint8_t> frame) {
    if (width <= 0 || height <= 0 ||
        frame.size() < static_cast<std::size_t>(width) * static_cast<std::size_t>(height))
        return 0;
    return forEachPixel(delta, width, height, [&](int x, int y, std::uint8_t v) {
        frame[static_cast<std::size_t>(y) * width + x] = v;
    });
}

std::vector<std::uint8_t> deltaSetPicture(std::span<const std::uint8_t> sprite, int width,
                                          int height, const std::vector<const DeltaRec*>& deltas,
                                          bool clean) {
    const std::size_t w = static_cast<std::size_t>(std::max(width, 0));
    const std::size_t h = static_cast<std::size_t>(std::max(height, 0));
    const std::size_t stride = w * deltas.size();
    std::vector<std::uint8_t> picture(stride * h, 0);
    std::vector<std::uint8_t> frame(w * h, 0);
    for (std::size_t i = 0; i < deltas.size(); ++i) {
        if (clean || sprite.size() < frame.size())
            std::fill(frame.begin(), frame.end(), std::uint8_t{0});
        else
            std::copy(sprite.begin(), sprite.begin() + static_cast<std::ptrdiff_t>(frame.size()),
                      frame.begin());
        if (deltas[i]) drawDelta(*deltas[i], width, height, frame);
        for (std::size_t y = 0; y < h; ++y)
            std::copy_n(frame.begin() + static_cast<std::ptrdiff_t>(y * w), w,
                        picture.begin() + static_cast<std::ptrdiff_t>(y * stride + i * w));
    }
    return picture;
}

std::vector<std::uint8_t> deltaSetFrame(std::span<const std::uint8_t> picture, int width,
                                        int height, int index) {
    const std::size_t w = static_cast<std::size_t>(std::max(width, 0));
    const std::size_t h = static_cast<std::size_t>(std::max(height, 0));
    std::vector<std::uint8_t> frame(w * h, 0);
    if (h == 0 || w == 0 || index < 0) return frame;
    const std::size_t stride = picture.size() / h;
    const std::size_t left = static_cast<std::size_t>(index) * w;
    if (left + w > stride) return frame;
    for (std::size_t y = 0; y < h; ++y)
        std::copy_n(picture.begin() + static_cast<std::ptrdiff_t>(y * stride + left), w,
                    frame.begin() + static_cast<std::ptrdiff_t>(y * w));
    return frame;
}

FrameRuns runsFromFrame(std::span<const std::uint8_t> base, std::span<const std::uint8_t> frame,
                        int width, int height) {
    FrameRuns out;
    const std::size_t size = static_cast<std::size_t>(std::max(width, 0)) *
                             static_cast<std::size_t>(std::max(height, 0));
    if (width > 255 || base.size() < size || frame.size() < size) {
        out.reason = "the frame does not fit the sprite";
        return out;
    }
    std::int64_t previousEnd = 0;
    for (int y = 0; y < height; ++y) {
        const std::size_t row = static_cast<std::size_t>(y) * width;
        int x = 0;
        while (x < width) {
            if (frame[row + x] == base[row + x]) {
                ++x;
                continue;
            }
            const int first = x;
            while (x < width && frame[row + x] != base[row + x]) ++x;
            const std::int64_t start = std::int64_t{y} * kDeltaRowPitch + first;
            // An offset of 0 ends a delta when it is saved. Runs of one row are merged and a
            // sprite row is narrower than the 256-pixel pitch, so only a first run at the
            // top-left pixel can need one.
            if (start - previousEnd == 0) {
                out.reason = "its first changed pixel is the sprite's top-left pixel (0,0), "
                             "where no delta can start";
                return out;
            }
            RunLine run;
            run.offset = static_cast<std::uint16_t>(start - previousEnd);
            run.length = static_cast<std::uint8_t>(x - first);
            run.data.assign(frame.begin() + static_cast<std::ptrdiff_t>(row + first),
                            frame.begin() + static_cast<std::ptrdiff_t>(row + x));
            out.bytes += run.length + 3;
            out.runs.push_back(std::move(run));
            previousEnd = start + (x - first);
        }
    }
    return finishFrameRuns(std::move(out));
}

DeltaExtent deltaExtent(const DeltaRec& delta, int width, int height) {
    DeltaExtent e;
    e.runs = static_cast<int>(usedRuns(delta).size());
    e.outside = forEachPixel(delta, width, height, [&](int x, int y, std::uint8_t) {
        if (e.empty) {
            e.left = e.right = x;
            e.top = e.bottom = y;
            e.empty = false;
        }
        e.left = std::min(e.left, x);
        e.right = std::max(e.right, x);
        e.top = std::min(e.top, y);
        e.bottom = std::max(e.bottom, y);
        ++e.pixels;
    });
    return e;
}

FrameRuns finishFrameRuns(FrameRuns out) {
    if (out.bytes > kDeltaMaxBytes) {
        out.reason = "it needs " + std::to_string(out.bytes) +
                     " bytes of runs, more than a delta can hold (32767)";
        out.runs.clear();
        return out;
    }
    // An empty delta keeps the single empty run line a delta of size 0 loads with.
    if (out.runs.empty()) out.runs.emplace_back();
    out.ok = true;
    return out;
}

} // namespace torquil
