#include "base/binary_file.h"
#include "base/checked.h"
#include "base/runtime_error.h"
#include "test_dir.h"

#include <gtest/gtest.h>

#include <fstream>

using namespace torquil;
using torquil::testing::TempDir;

namespace {
void writeBytes(const std::filesystem::path& p, std::vector<std::uint8_t> bytes) {
    std::ofstream out(p, std::ios::binary);
    out.write(reinterpret_cast<const char*>(bytes.data()),
              static_cast<std::streamsize>(bytes.size()));
}
} // namespace

TEST(BinaryFile, PositionsAreOneBasedAndLittleEndian) {
    TempDir dir;
    writeBytes(dir / "f", {0x01, 0x02, 0x03, 0x04, 0xFF, 0xFF});
    ErrorState errors;
    BinaryFile f(errors);
    ASSERT_TRUE(f.open(dir / "f", BinaryFile::Mode::Read));
    EXPECT_EQ(f.position(), 1);
    EXPECT_EQ(f.length(), 6);
    EXPECT_EQ(f.readI32(), 0x04030201);
    EXPECT_EQ(f.position(), 5);
    EXPECT_EQ(f.readI16(), -1);
    f.seek(2);
    EXPECT_EQ(f.readU8(), 0x02);
    EXPECT_FALSE(errors.hasPending());
}

TEST(BinaryFile, ReadingPastTheEndGivesZerosAndLeavesTheFileAtItsEnd) {
    TempDir dir;
    writeBytes(dir / "f", {0xAA, 0xBB});
    ErrorState errors;
    BinaryFile f(errors);
    ASSERT_TRUE(f.open(dir / "f", BinaryFile::Mode::Read));
    EXPECT_FALSE(f.atEnd());
    EXPECT_EQ(f.readI32(), 0x0000BBAA);
    EXPECT_TRUE(f.atEnd());
    EXPECT_EQ(f.position(), 5);
    f.seek(100);
    EXPECT_EQ(f.readI16(), 0);
    EXPECT_FALSE(errors.hasPending()) << "reading past the end is not an error";
}

TEST(BinaryFile, ExactlyConsumedFileIsAtItsEnd) {
    TempDir dir;
    writeBytes(dir / "f", {1, 2});
    ErrorState errors;
    BinaryFile f(errors);
    ASSERT_TRUE(f.open(dir / "f", BinaryFile::Mode::Read));
    EXPECT_EQ(f.readI16(), 0x0201); // the last two bytes: nothing is left after them
    EXPECT_TRUE(f.atEnd());
}

TEST(BinaryFile, ErrorsBecomePendingOrThrowInDebugMode) {
    TempDir dir;
    ErrorState errors;
    BinaryFile missing(errors);
    EXPECT_FALSE(missing.open(dir / "nothing", BinaryFile::Mode::Read));
    EXPECT_EQ(errors.pending(), err::FileNotFound);

    writeBytes(dir / "f", {1});
    ErrorState quiet;
    BinaryFile f(quiet);
    ASSERT_TRUE(f.open(dir / "f", BinaryFile::Mode::Read));
    f.seek(0);
    EXPECT_EQ(quiet.pending(), err::BadRecordNumber);
    f.seek(-5); // the first error stays pending
    EXPECT_EQ(quiet.pending(), err::BadRecordNumber);

    ErrorState debug(true);
    BinaryFile g(debug);
    ASSERT_TRUE(g.open(dir / "f", BinaryFile::Mode::Read));
    EXPECT_THROW(g.seek(0), RuntimeError);
}

TEST(BinaryFile, WritesInPlaceAndReadsBackThroughTheCache) {
    TempDir dir;
    writeBytes(dir / "f", {0, 0, 0, 0, 0, 0, 0, 0});
    ErrorState errors;
    BinaryFile f(errors);
    ASSERT_TRUE(f.open(dir / "f", BinaryFile::Mode::ReadWrite));
    EXPECT_EQ(f.readI32(), 0); // fills the read cache
    f.seek(3);
    f.writeI16(0x1234);
    f.seek(1);
    EXPECT_EQ(f.readI32(), 0x12340000);
    // Writing past the end pads the gap with zeros.
    f.seek(11);
    f.writeU8(7);
    EXPECT_EQ(f.length(), 11);
    f.close();
    std::ifstream in(dir / "f", std::ios::binary);
    std::vector<char> all((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    ASSERT_EQ(all.size(), 11u);
    EXPECT_EQ(all[2], 0x34);
    EXPECT_EQ(all[3], 0x12);
    EXPECT_EQ(all[9], 0);
    EXPECT_EQ(all[10], 7);
}

TEST(BinaryFile, ContentInMemoryNotesOnlyWritesThatChangeAByte) {
    ErrorState errors;
    BinaryFile file(errors);
    const std::vector<std::uint8_t> content{1, 2, 3, 4, 5, 6};
    file.openInMemory("x.bin", content);
    file.seek(2);
    file.write(std::vector<std::uint8_t>{2, 3}); // what is there already
    EXPECT_FALSE(file.memoryChanged());
    file.seek(6);
    file.writeU8(9);
    EXPECT_TRUE(file.memoryChanged());
    EXPECT_EQ(file.takeBytes(), (std::vector<std::uint8_t>{1, 2, 3, 4, 5, 9}));

    file.openInMemory("x.bin", content); // a new content starts unchanged
    EXPECT_FALSE(file.memoryChanged());
    file.seek(7);
    file.writeU8(0); // longer, even by a zero
    EXPECT_TRUE(file.memoryChanged());
    file.openInMemory("x.bin", content);
    file.truncateInMemory(4);
    EXPECT_TRUE(file.memoryChanged());
}

TEST(CheckedTables, OutOfRangeRaisesSubscriptErrorWithoutTouchingMemory) {
    ErrorState errors;
    std::vector<int> table(3, 1);
    checkedAt(table, 3, errors, "t") = 99;
    checkedAt(table, -1, errors, "t") = 99;
    EXPECT_EQ(errors.pending(), err::SubscriptOutOfRange);
    EXPECT_EQ(table, (std::vector<int>{1, 1, 1}));
    ErrorState debug(true);
    EXPECT_THROW(checkedAt(table, 5, debug, "t"), RuntimeError);
}
