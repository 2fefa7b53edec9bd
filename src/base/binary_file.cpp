#include "base/binary_file.h"

#include "base/cause_advice.h"

#include <cerrno>

#include <algorithm>
#include <cstring>
#include <fstream>

namespace torquil {

namespace {
constexpr std::size_t kWindowSize = 64 * 1024;

std::FILE* openOs(const std::filesystem::path& path, const char* mode) {
#ifdef _WIN32
    std::wstring wmode(mode, mode + std::strlen(mode));
    return _wfopen(path.c_str(), wmode.c_str());
#else
    return std::fopen(path.c_str(), mode);
#endif
}

bool seekOsTo(std::FILE* f, std::int64_t offset, int whence) {
#ifdef _WIN32
    return _fseeki64(f, offset, whence) == 0;
#else
    return fseeko(f, static_cast<off_t>(offset), whence) == 0;
#endif
}

std::int64_t tellOs(std::FILE* f) {
#ifdef _WIN32
    return _ftelli64(f);
#else
    return static_cast<std::int64_t>(ftello(f));
#endif
}
} // namespace

BinaryFile::~BinaryFile() {
    close();
}

bool BinaryFile::open(const std::filesystem::path& path, Mode mode) {
    close();
    path_ = path;
    std::error_code ec;
    if (mode != Mode::Create && !std::filesystem::is_regular_file(path, ec)) {
        errors_.raise(err::FileNotFound, path.string());
        return false;
    }
    const char* osMode = mode == Mode::Read ? "rb" : mode == Mode::ReadWrite ? "r+b" : "w+b";
    file_ = openOs(path, osMode);
    if (!file_) {
        errors_.raise(err::PathFileAccess, path.string());
        return false;
    }
    if (!seekOsTo(file_, 0, SEEK_END)) {
        close();
        errors_.raise(err::PathFileAccess, path.string());
        return false;
    }
    length_ = std::max<std::int64_t>(0, tellOs(file_));
    osPos_ = length_;
    pos_ = 0;
    window_.clear();
    windowStart_ = 0;
    return true;
}

void BinaryFile::openBytes(std::vector<std::uint8_t>& bytes, const std::filesystem::path& name) {
    close();
    path_ = name;
    memory_ = &bytes;
    memoryChanged_ = false;
    length_ = static_cast<std::int64_t>(bytes.size());
    pos_ = 0;
}

void BinaryFile::openInMemory(const std::filesystem::path& path, std::vector<std::uint8_t> bytes) {
    close();
    ownedBytes_ = std::move(bytes);
    openBytes(ownedBytes_, path);
}

std::vector<std::uint8_t> BinaryFile::takeBytes() {
    if (memory_ == &ownedBytes_) {
        memory_ = nullptr;
        length_ = 0;
    }
    return std::move(ownedBytes_);
}

void BinaryFile::truncateInMemory(std::int64_t length) {
    std::vector<std::uint8_t>& bytes = memory_ ? *memory_ : ownedBytes_;
    if (length >= 0 && length < static_cast<std::int64_t>(bytes.size())) {
        bytes.resize(static_cast<std::size_t>(length));
        if (memory_) length_ = length;
        memoryChanged_ = true;
    }
}

void BinaryFile::close() {
    if (file_) std::fclose(file_);
    file_ = nullptr;
    memory_ = nullptr;
    window_.clear();
    osPos_ = -1;
}

void BinaryFile::seek(std::int64_t position1) {
    if (!isOpen()) {
        errors_.raise(err::BadFileNameOrNumber, "seek");
        return;
    }
    if (position1 < 1) {
        errors_.raise(err::BadRecordNumber, "seek to " + std::to_string(position1));
        return;
    }
    pos_ = position1 - 1;
}

bool BinaryFile::seekOs(std::int64_t offset) {
    // Always a real seek: C streams need one between a write and a read.
    if (!seekOsTo(file_, offset, SEEK_SET)) {
        osPos_ = -1;
        return false;
    }
    osPos_ = offset;
    return true;
}

bool BinaryFile::fillWindow(std::int64_t at) {
    window_.resize(kWindowSize);
    windowStart_ = at;
    if (!seekOs(at)) {
        window_.clear();
        return false;
    }
    std::size_t got = std::fread(window_.data(), 1, kWindowSize, file_);
    osPos_ = got == kWindowSize ? at + static_cast<std::int64_t>(got) : -1;
    window_.resize(got);
    return true;
}

std::size_t BinaryFile::read(std::span<std::uint8_t> dest) {
    if (!isOpen()) {
        std::fill(dest.begin(), dest.end(), std::uint8_t{0});
        errors_.raise(err::BadFileNameOrNumber, "read");
        return 0;
    }
    std::size_t done = 0;
    if (memory_) {
        if (pos_ < length_)
            done = static_cast<std::size_t>(
                std::min<std::int64_t>(length_ - pos_, static_cast<std::int64_t>(dest.size())));
        if (done > 0) std::memcpy(dest.data(), memory_->data() + pos_, done);
        // Only the bytes past the end are cleared: each byte of dest is written once.
        std::fill(dest.begin() + static_cast<std::ptrdiff_t>(done), dest.end(), std::uint8_t{0});
        pos_ += static_cast<std::int64_t>(dest.size());
        return done;
    }
    while (done < dest.size() && pos_ + static_cast<std::int64_t>(done) < length_) {
        std::int64_t at = pos_ + static_cast<std::int64_t>(done);
        std::int64_t windowEnd = windowStart_ + static_cast<std::int64_t>(window_.size());
        if (at < windowStart_ || at >= windowEnd) {
            if (!fillWindow(at) || window_.empty()) {
                errors_.raise(err::PathFileAccess, "read " + path_.string());
                break;
            }
            windowEnd = windowStart_ + static_cast<std::int64_t>(window_.size());
        }
        auto take = static_cast<std::size_t>(
            std::min<std::int64_t>(windowEnd - at, static_cast<std::int64_t>(dest.size() - done)));
        std::memcpy(dest.data() + done, window_.data() + (at - windowStart_), take);
        done += take;
    }
    std::fill(dest.begin() + static_cast<std::ptrdiff_t>(done), dest.end(), std::uint8_t{0});
    // The missing bytes read as zeros and the file is then at its end.
    pos_ += static_cast<std::int64_t>(dest.size());
    return done;
}

std::uint8_t BinaryFile::readU8() {
    std::uint8_t b[1];
    read(b);
    return b[0];
}
std::int16_t BinaryFile::readI16() {
    std::uint8_t b[2];
    read(b);
    return getI16(b);
}
std::uint16_t BinaryFile::readU16() {
    std::uint8_t b[2];
    read(b);
    return getU16(b);
}
std::int32_t BinaryFile::readI32() {
    std::uint8_t b[4];
    read(b);
    return getI32(b);
}

void BinaryFile::write(std::span<const std::uint8_t> src) {
    if (!isOpen()) {
        errors_.raise(err::BadFileNameOrNumber, "write");
        return;
    }
    if (src.empty()) return;
    if (memory_) {
        // A gap before the position fills with zeros, as in a file.
        const auto end = static_cast<std::size_t>(pos_) + src.size();
        if (memory_->size() < end) {
            memory_->resize(end, 0);
            memoryChanged_ = true;
        }
        std::uint8_t* at = memory_->data() + pos_;
        if (!memoryChanged_ && std::memcmp(at, src.data(), src.size()) != 0) memoryChanged_ = true;
        std::memcpy(at, src.data(), src.size());
        pos_ += static_cast<std::int64_t>(src.size());
        length_ = static_cast<std::int64_t>(memory_->size());
        return;
    }
    window_.clear(); // the cache may hold the old bytes
    // Writing past the end first fills the gap with zeros: the file never has a hole.
    if (pos_ > length_) {
        if (!seekOs(length_)) {
            errors_.raise(err::PathFileAccess, "write " + path_.string());
            return;
        }
        std::vector<std::uint8_t> zeros(static_cast<std::size_t>(pos_ - length_), 0);
        if (std::fwrite(zeros.data(), 1, zeros.size(), file_) != zeros.size()) {
            osPos_ = -1;
            errors_.raise(err::DiskFull, "write " + path_.string());
            return;
        }
        osPos_ = pos_;
        length_ = pos_;
    }
    if (!seekOs(pos_)) {
        errors_.raise(err::PathFileAccess, "write " + path_.string());
        return;
    }
    std::size_t put = std::fwrite(src.data(), 1, src.size(), file_);
    if (put != src.size()) {
        osPos_ = -1;
        errors_.raise(err::DiskFull, "write " + path_.string());
    } else {
        osPos_ = pos_ + static_cast<std::int64_t>(put);
    }
    pos_ += static_cast<std::int64_t>(put);
    length_ = std::max(length_, pos_);
}

void BinaryFile::writeU8(std::uint8_t v) {
    write(std::span<const std::uint8_t>(&v, 1));
}
void BinaryFile::writeI16(std::int16_t v) {
    std::uint8_t b[2];
    putI16(b, v);
    write(b);
}
void BinaryFile::writeI32(std::int32_t v) {
    std::uint8_t b[4];
    putI32(b, v);
    write(b);
}

void BinaryFile::flush() {
    if (file_ && std::fflush(file_) != 0) errors_.raise(err::DiskFull, "flush " + path_.string());
}

Result<std::vector<std::uint8_t>> readWholeFile(const std::filesystem::path& path) {
    std::ifstream in(path, std::ios::binary);
    if (!in)
        return fail("Cannot open " + path.string(),
                    describeCause(std::error_code(errno, std::generic_category())));
    in.seekg(0, std::ios::end);
    auto size = in.tellg();
    if (size < 0) return fail("Cannot read " + path.string(), "its length cannot be told");
    in.seekg(0);
    std::vector<std::uint8_t> out(static_cast<std::size_t>(size));
    in.read(reinterpret_cast<char*>(out.data()), size);
    if (!in && !in.eof()) return fail("Cannot read " + path.string(), "input/output error");
    return out;
}

} // namespace torquil
