#pragma once
// The game's coded text file (ENGLISH.FXT) and its decoded form, a text file of one entry per
// line. Decoding also picks the car names ("[car12]Name") out of the entries.
//
// Coded form: the first eight bytes are the plain bytes minus a fixed key; every later plain
// byte b is stored as b + 1, a byte above 191 as 196 followed by b - 63, and each entry ends with
// a coded 0 (the byte 1). Files written here end with 5C 5E 1A 01 5C 5E.

#include "base/file_transaction.h"
#include "cars/car_names.h"

#include <array>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <span>
#include <string>
#include <vector>

namespace torquil {

namespace fs = std::filesystem;
class Platform;

inline constexpr std::array<std::uint8_t, 8> kFxtKey{0x9C, 0x39, 0x73, 0xE7,
                                                     0xCF, 0x9F, 0x3F, 0x7F};

// Called with the 1-based file position reached when the progress should move on.
using FxtProgress = std::function<void(std::int64_t position)>;

// The decoded text of a coded file (entries as lines ended by CR LF); fills `names` (when given)
// from the car name entries.
[[nodiscard]] std::vector<std::uint8_t> decodeFxtBytes(std::span<const std::uint8_t> coded,
                                                       CarNames* names,
                                                       const FxtProgress& progress = {});
// The coded form of a decoded text (every LF ends an entry, CR is dropped), end marker included.
[[nodiscard]] std::vector<std::uint8_t> encodeFxtBytes(std::span<const std::uint8_t> text,
                                                       const FxtProgress& progress = {});

// Takes "[carN]Name" into the car names table when N is 0..90; other entries change nothing.
void takeCarName(const std::string& entry, CarNames& names);

// File to file, with the progress form. Messages: "Unable to open :" + path when the input is
// missing; "Error occured during load of FXT file." / "... write of FXT file." on other errors.
// Files are written whole beside the old one and renamed over it; a failed write adds the cause
// the system gave.
[[nodiscard]] bool fxt2txt(const fs::path& fxt, const fs::path& txt, CarNames* names,
                           Platform& platform);
// txt2fxt first finishes or rolls back a save of the FXT file that was cut short, and replaces
// the file through commitFiles: under its lock, only if no other run replaced it meanwhile, its
// original kept by commit.keepBackup.
[[nodiscard]] bool txt2fxt(const fs::path& txt, const fs::path& fxt, Platform& platform,
                           const CommitOptions& commit = {});

// A coded file decoded into memory, with the progress form; "Unable to open :" + path or
// "Error occured during load of FXT file." on failure.
[[nodiscard]] bool decodeFxtFile(const fs::path& fxt, std::vector<std::uint8_t>& text,
                                 CarNames* names, Platform& platform);
// encodeFxtBytes with the progress form of a write.
[[nodiscard]] std::vector<std::uint8_t> encodeFxtWithProgress(std::span<const std::uint8_t> text,
                                                              Platform& platform);

} // namespace torquil
