#include "cars/fxt.h"
#include "fake_platform.h"
#include "style_builder.h"
#include "test_dir.h"

#include <gtest/gtest.h>

using namespace torquil;
namespace tb = torquil::testing;

namespace {

using Bytes = std::vector<std::uint8_t>;

Bytes bytesOf(const std::string& s) {
    return Bytes(s.begin(), s.end());
}

std::string textOf(const Bytes& b) {
    return std::string(b.begin(), b.end());
}

// The text file that decoding makes of these entries (the first one carries the 8 key bytes).
std::string decodedText(const std::vector<std::string>& entries) {
    std::string text;
    for (const auto& e : entries) text += e + "\r\n";
    return text;
}

const Bytes kEnd = {0x5C, 0x5E, 0x1A, 0x01, 0x5C, 0x5E};

} // namespace

TEST(FxtDecode, KeyedFirstBytesAndOneLinePerEntry) {
    EXPECT_EQ(
        textOf(decodeFxtBytes(Bytes{0xBF, 0xF8, 0xBD, 0x49, 0x62, 0xBE, 0x02, 0xEF}, nullptr)),
        "[1001]An");
    const std::vector<std::string> entries = {"[1001]Another day", "[1002]X", "[car5]Taxi", "[]"};
    EXPECT_EQ(textOf(decodeFxtBytes(tb::encodeFxt(entries), nullptr)), decodedText(entries));
}

TEST(FxtDecode, EmptyEntriesWriteNothingAndEscapesAddSixtyThree) {
    Bytes coded = tb::encodeFxt({"[1001]An"});
    coded.insert(coded.end(), {1, 1, 1});
    EXPECT_EQ(textOf(decodeFxtBytes(coded, nullptr)), "[1001]An");

    // 196 then b gives b + 63; 196 and 255 alone are skipped; a dangling escape adds nothing.
    Bytes escaped = tb::encodeFxt({"[1001]An"});
    escaped.insert(escaped.end(), {'x' + 1, 196, 129, 255, 'y' + 1, 196, 192, 1, 'z' + 1, 196});
    EXPECT_EQ(textOf(decodeFxtBytes(escaped, nullptr)),
              std::string("[1001]An") + "x\xC0y\xFF\r\n" + "z\r\n");
    // The byte after an escape is taken even when it is the entry end or another escape.
    Bytes odd = tb::encodeFxt({"[1001]An"});
    odd.insert(odd.end(), {196, 1, 196, 196, 'a' + 1, 1});
    EXPECT_EQ(textOf(decodeFxtBytes(odd, nullptr)), std::string("[1001]An") + "@\x03\xA1\r\n");
}

TEST(FxtEncode, ExactBytesWithTheEndMarker) {
    const Bytes coded = encodeFxtBytes(bytesOf("[1001]Another\r\n[car1]B\r\n\r\n[2]C"));
    Bytes expected = tb::encodeFxt({"[1001]Another", "[car1]B"});
    for (char c : std::string("[2]C")) expected.push_back(static_cast<std::uint8_t>(c + 1));
    expected.insert(expected.end(), kEnd.begin(), kEnd.end()); // no end byte for the last line
    EXPECT_EQ(coded, expected);
}

TEST(FxtEncode, FirstEntryOfEightBytesRunsIntoTheNextLine) {
    // The key covers exactly the first entry, so its line feed ends an empty entry and writes
    // nothing: the coded file holds no end between the two, as the game's tools wrote it.
    const Bytes coded = encodeFxtBytes(bytesOf("[1001]An\r\n[car1]B\r\n"));
    EXPECT_EQ(tb::decodeFxt(coded), (std::vector<std::string>{"[1001]An[car1]B", "[]\x19", "[]"}));
}

TEST(FxtEncode, BytesAboveOneNinetyOneAreEscapedAndComeBack) {
    std::string all;
    for (int c = 1; c < 256; ++c)
        if (c != 10 && c != 13) all.push_back(static_cast<char>(c));
    const std::string text = "[1001]An" + all + "\r\n";
    const Bytes coded = encodeFxtBytes(bytesOf(text));
    // 192 is the first escaped byte: 196, then 192 - 63.
    const std::size_t at = 8 + 191 - 2; // after 1..191 without 10 and 13
    EXPECT_EQ(coded[at], 196);
    EXPECT_EQ(coded[at + 1], 129);
    EXPECT_EQ(textOf(decodeFxtBytes(coded, nullptr)), text + "[]\x19\r\n[]\r\n");
}

TEST(FxtNames, CarEntriesFillTheNamesTable) {
    CarNames names;
    static_cast<void>(
        decodeFxtBytes(tb::encodeFxt({"[1001]An", "[car5]Taxi", "[car12]Bus", "[car91]X", "[carX]Y",
                                      "[car0]", "[car]X", "[car7x]Odd", "[Car8]No", "[car90]Last"}),
                       &names));
    EXPECT_EQ(names.keys[5], "[car5]");
    EXPECT_EQ(names.names[5], "Taxi");
    EXPECT_EQ(names.keys[12], "[car12]");
    EXPECT_EQ(names.names[12], "Bus");
    EXPECT_EQ(names.keys[7], "[car7x]"); // the number is read as far as it goes
    EXPECT_EQ(names.names[7], "Odd");
    EXPECT_EQ(names.names[90], "Last");
    EXPECT_EQ(names.keys[0], "[car0]"); // six bytes are enough; the name may be empty
    EXPECT_EQ(names.names[0], "");
    EXPECT_EQ(names.keys[8], ""); // the key is case-sensitive
    int filled = 0;
    for (const auto& k : names.keys) filled += !k.empty();
    EXPECT_EQ(filled, 5);
}

TEST(FxtFiles, DecodingThenEncodingKeepsEveryEntry) {
    tb::TempDir dir;
    tb::FakePlatform p;
    std::vector<std::string> entries = {"[1001]Caf\xE9 Rouge \xFF\xC0", "[car1]Bug", "[car12]Bus"};
    for (int i = 0; i < 250; ++i) entries.push_back("[" + std::to_string(2000 + i) + "]Text");
    entries.push_back("[]");
    tb::writeFile(dir / "ENGLISH.FXT", tb::encodeFxt(entries));

    CarNames names;
    ASSERT_TRUE(fxt2txt(dir / "ENGLISH.FXT", dir / "out.txt", &names, p));
    EXPECT_EQ(textOf(tb::readFile(dir / "out.txt")), decodedText(entries));
    EXPECT_EQ(names.names[12], "Bus");
    tb::writeFile(dir / "NEW.FXT", Bytes(50000, 0x33)); // an older, longer file is replaced
    ASSERT_TRUE(txt2fxt(dir / "out.txt", dir / "NEW.FXT", p));
    auto back = entries;
    back.push_back("[]\x19"); // the end marker's two entries
    back.push_back("[]");
    EXPECT_EQ(tb::decodeFxt(tb::readFile(dir / "NEW.FXT")), back);

    EXPECT_EQ(p.progressTitles, (std::vector<std::string>{"Reading FXT file", "Writing FXT file"}));
    EXPECT_EQ(p.progressTexts,
              (std::vector<std::string>{"Reading Car Names...", "Writing New Car Names..."}));
    EXPECT_EQ(p.progressCloseCount, 2);
    // Progress after every 100 entries (reading) and lines (writing), as percentages.
    ASSERT_EQ(p.progressValues.size(), 4u);
    for (int v : p.progressValues) EXPECT_TRUE(v > 0 && v <= 100) << v;
    EXPECT_TRUE(p.shownMessages.empty());
}

TEST(FxtFiles, MissingInputsAndUnwritableOutputsGiveTheMessages) {
    tb::TempDir dir;
    tb::FakePlatform p;
    EXPECT_FALSE(fxt2txt(dir / "NONE.FXT", dir / "out.txt", nullptr, p));
    EXPECT_FALSE(txt2fxt(dir / "none.txt", dir / "X.FXT", p));
    EXPECT_EQ(p.messageTexts(),
              (std::vector<std::string>{"Unable to open :" + (dir / "NONE.FXT").string(),
                                        "Unable to open :" + (dir / "none.txt").string()}));
    EXPECT_FALSE(std::filesystem::exists(dir / "out.txt"));
    EXPECT_FALSE(std::filesystem::exists(dir / "X.FXT"));

    tb::FakePlatform q;
    tb::writeFile(dir / "ENGLISH.FXT", tb::encodeFxt({"[1001]An"}));
    tb::writeFile(dir / "in.txt", bytesOf("[1001]An\r\n"));
    EXPECT_FALSE(fxt2txt(dir / "ENGLISH.FXT", dir / "no" / "such" / "out.txt", nullptr, q));
    EXPECT_FALSE(txt2fxt(dir / "in.txt", dir / "no" / "such" / "X.FXT", q));
    ASSERT_EQ(q.messageTexts().size(), 2u);
    EXPECT_EQ(q.messageTexts()[0], "Error occured during load of FXT file.\r"
                                   "The system said: no such file or directory.");
    const std::string missing = (dir / "no" / "such" / "X.FXT").string();
    EXPECT_EQ(q.messageTexts()[1], "Error occured during write of FXT file.\r" + missing +
                                       " could not be written.\r"
                                       "The system said: no such file or directory.\r"
                                       "Nothing was written: " +
                                       missing + " is as it was.");
    EXPECT_EQ(q.progressOpenCount, q.progressCloseCount);
}
