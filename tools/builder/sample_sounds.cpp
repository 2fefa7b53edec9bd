#include "sample_level.h"

#include "sample_canvas.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <numbers>

namespace torquil::testing {

namespace {

using sample::clampByte;
using sample::noise;

std::vector<uint8_t> synth(double seconds, int rate, const std::function<double(double)>& wave) {
    std::vector<uint8_t> out(static_cast<std::size_t>(seconds * rate));
    for (std::size_t i = 0; i < out.size(); ++i) {
        const double t = double(i) / rate;
        const double fade = std::min({1.0, t / 0.01, (seconds - t) / 0.02});
        out[i] = clampByte(128 + 110 * fade * std::clamp(wave(t), -1.0, 1.0));
    }
    return out;
}

double saw(double phase) {
    return 2 * (phase - std::floor(phase + 0.5));
}
double square(double phase) {
    return std::sin(2 * std::numbers::pi * phase) >= 0 ? 0.6 : -0.6;
}

} // namespace

std::vector<SoundSpec> sampleSounds(int level) {
    const double pitch = level == 2 ? 1.12 : 1.0;
    std::vector<SoundSpec> s;
    s.push_back({std::vector<uint8_t>(220, 128), 11025}); // silence
    s.push_back({synth(0.8, 11025,
                       [=](double t) {
                           const double f = 55 * pitch;
                           return 0.7 * saw(f * t) *
                                  (0.8 + 0.2 * std::sin(2 * std::numbers::pi * 9 * t));
                       }),
                 11025}); // engine idle
    s.push_back({synth(1.0, 11025,
                       [=](double t) {
                           const double f = (60 + 80 * t) * pitch;
                           return 0.7 * saw(f * t);
                       }),
                 11025}); // engine rev
    s.push_back(
        {synth(0.45, 22050,
               [=](double t) { return square(440 * pitch * t) + square(554 * pitch * t) * 0.5; }),
         22050}); // horn
    s.push_back({synth(1.2, 22050,
                       [](double t) {
                           const double f = 700 + 250 * std::sin(2 * std::numbers::pi * 1.5 * t);
                           return std::sin(2 * std::numbers::pi * f * t);
                       }),
                 22050}); // siren
    s.push_back({synth(0.6, 11025,
                       [](double t) {
                           const int i = static_cast<int>(t * 11025);
                           return (noise(5, i, 0) * 2 - 1) * std::exp(-5 * t);
                       }),
                 11025}); // crash
    s.push_back({synth(0.5, 22050,
                       [](double t) {
                           const int i = static_cast<int>(t * 22050);
                           return 0.5 * std::sin(2 * std::numbers::pi * 1800 * t) +
                                  0.4 * (noise(9, i, 1) * 2 - 1);
                       }),
                 22050}); // tyre screech
    s.push_back({synth(0.25, 11025,
                       [](double t) {
                           return std::sin(2 * std::numbers::pi * 90 * t) * std::exp(-18 * t);
                       }),
                 11025}); // door slam
    if (level != 2)
        s.push_back({synth(0.3, 22050,
                           [](double t) {
                               const double f = t < 0.15 ? 880 : 1320;
                               return 0.8 * std::sin(2 * std::numbers::pi * f * t);
                           }),
                     22050});                             // pickup chime
    s.push_back({std::vector<uint8_t>(110, 128), 11025}); // silence
    return s;
}

} // namespace torquil::testing
