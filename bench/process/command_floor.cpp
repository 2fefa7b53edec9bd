// torquil-command-floor: the floor of a torquil-cli command as a process of its own, to time
// beside the command. It does what any program doing the command must do and nothing more:
//   torquil-command-floor STYLE [--read FILE]... [--paint FILE]... [--write FILE[:BYTES]]...
//                         [--lock FILE]...
// reads STYLE and every --read and --paint FILE whole, each in one read, maps the first
// 26 x 65,536 bytes of STYLE and of each --paint FILE (a second style file the command must load,
// such as the result a car pack gives) through one colour table into a page image of its own,
// and writes each --write FILE
// atomically (whole, beside the old file, flushed, renamed over it): a file it read gets its own
// content back (a save), any other file the style file's first BYTES bytes (a picture the
// command exports). Each --lock FILE is held from the start to the end: every writer of a level
// file (the style file, ENGLISH.FXT) must take its lock, so two runs never replace each other's
// work.

#include "base/atomic_file.h"
#include "base/binary_file.h"
#include "base/file_lock.h"
#include "floor.h"

#include <algorithm>
#include <cstdlib>
#include <iostream>
#include <string>
#include <utility>
#include <vector>

namespace {

int usage() {
    std::cerr << "usage: torquil-command-floor STYLE [--read FILE]... [--paint FILE]... "
                 "[--write FILE[:BYTES]]... [--lock FILE]...\n";
    return 2;
}

} // namespace

int main(int argc, char** argv) {
    using namespace torquil;
    if (argc < 2 || std::string(argv[1]).starts_with("-")) return usage();
    std::vector<std::string> reads, paints, locked;
    std::vector<std::pair<std::string, long long>> writes; // -1: the whole style content
    for (int i = 2; i < argc; ++i) {
        const std::string option = argv[i];
        if (i + 1 >= argc || std::string(argv[i + 1]).starts_with("-")) return usage();
        const std::string value = argv[++i];
        if (option == "--read") {
            reads.push_back(value);
        } else if (option == "--lock") {
            locked.push_back(value);
        } else if (option == "--paint") {
            paints.push_back(value);
        } else if (option == "--write") {
            const std::size_t colon = value.rfind(':');
            if (colon == std::string::npos || colon == 0)
                writes.emplace_back(value, -1);
            else
                writes.emplace_back(value.substr(0, colon), std::atoll(value.c_str() + colon + 1));
        } else {
            return usage();
        }
    }
    std::vector<FileLock> locks(locked.size());
    for (std::size_t k = 0; k < locked.size(); ++k) {
        if (!locks[k].acquire(locked[k], "torquil-command-floor")) {
            std::cerr << "torquil-command-floor: cannot lock " << locked[k] << "\n";
            return 1;
        }
    }
    bench::FloorPainter painter;
    std::vector<std::uint8_t> style;
    if (!painter.readAndPaint(argv[1], style)) {
        std::cerr << "torquil-command-floor: cannot read " << argv[1] << "\n";
        return 1;
    }
    std::size_t checksum = painter.painted() ? painter.image()[painter.painted() / 2] : 0;
    for (const std::string& file : paints) {
        bench::FloorPainter second;
        std::vector<std::uint8_t> bytes;
        if (!second.readAndPaint(file, bytes)) {
            std::cerr << "torquil-command-floor: cannot read " << file << "\n";
            return 1;
        }
        checksum += second.painted() ? second.image()[second.painted() / 2] : 0;
    }
    std::vector<std::vector<std::uint8_t>> contents(reads.size());
    for (std::size_t k = 0; k < reads.size(); ++k) {
        auto read = readWholeFile(reads[k]);
        if (read) contents[k] = std::move(read).value();
        if (!read) {
            std::cerr << "torquil-command-floor: cannot read " << reads[k] << "\n";
            return 1;
        }
        checksum += contents[k].size();
    }
    for (const auto& [file, size] : writes) {
        const auto same = std::find(reads.begin(), reads.end(), file);
        const std::vector<std::uint8_t>& from =
            same != reads.end() ? contents[static_cast<std::size_t>(same - reads.begin())] : style;
        const std::size_t n =
            size < 0 ? from.size() : std::min(from.size(), static_cast<std::size_t>(size));
        if (!replaceFileAtomically(file, std::span(from.data(), n))) {
            std::cerr << "torquil-command-floor: cannot write " << file << "\n";
            return 1;
        }
    }
    // The painted image is used, so the painting is not left out by the compiler.
    return checksum == 0x7fffffff ? 3 : 0;
}
