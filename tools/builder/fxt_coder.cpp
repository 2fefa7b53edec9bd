#include "fxt_coder.h"

namespace torquil::testing {

namespace {
constexpr uint8_t kEscape = 196;
}

std::vector<uint8_t> encodeFxt(const std::vector<std::string>& entries) {
    std::vector<uint8_t> plain;
    for (const auto& e : entries) {
        plain.insert(plain.end(), e.begin(), e.end());
        plain.push_back(0);
    }
    std::vector<uint8_t> out;
    out.reserve(plain.size() + plain.size() / 8);
    for (std::size_t i = 0; i < plain.size(); ++i) {
        const uint8_t b = plain[i];
        if (i < kFxtKey.size()) {
            out.push_back(static_cast<uint8_t>(b - kFxtKey[i]));
        } else if (b > 191) {
            out.push_back(kEscape);
            out.push_back(static_cast<uint8_t>(b - 63));
        } else {
            out.push_back(static_cast<uint8_t>(b + 1));
        }
    }
    return out;
}

std::vector<std::string> decodeFxt(const std::vector<uint8_t>& file) {
    std::vector<std::string> entries;
    std::string current;
    auto plainByte = [&](uint8_t b) {
        if (b == 0) {
            entries.push_back(current);
            current.clear();
        } else {
            current.push_back(static_cast<char>(b));
        }
    };
    bool escaped = false;
    for (std::size_t i = 0; i < file.size(); ++i) {
        const uint8_t c = file[i];
        if (i < kFxtKey.size()) {
            plainByte(static_cast<uint8_t>(c + kFxtKey[i]));
        } else if (escaped) {
            plainByte(static_cast<uint8_t>(c + 63));
            escaped = false;
        } else if (c == kEscape) {
            escaped = true;
        } else {
            plainByte(static_cast<uint8_t>(c - 1));
        }
    }
    if (!current.empty()) entries.push_back(current);
    return entries;
}

} // namespace torquil::testing
