// zevran-cli make-demo: the demo phone file and its companions, checked through the
// other commands as a user would first meet them.
#include "cli_run.hpp"

#include <map>
#include <set>
#include <sstream>

using namespace zevran::test;

namespace {

constexpr std::size_t kTwoMebibytes = std::size_t{2} * 1024 * 1024;

// One demo folder for the whole run, beside a program folder holding the shipped 16.dat.
struct Demo {
    TempFolder folder;
    RunResult made;
    Demo()
    {
        std::filesystem::create_directory(folder.path("home"));
        std::filesystem::copy_file(ZEVRAN_DATA_DIR "/16.dat", folder.path("home/16.dat"));
        made = runCli(folder, {"make-demo", "demo"});
    }
};

const Demo& demo()
{
    static const Demo made;
    return made;
}

RunResult runAtHome(std::vector<std::string> args)
{
    args.insert(args.begin(), {"--home", demo().folder.path("home")});
    return runCli(demo().folder, args);
}

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    std::istringstream in(text);
    for (std::string line; std::getline(in, line);) {
        if (!line.empty() && line.back() == '\r') line.pop_back();
        if (!line.empty()) lines.push_back(line);
    }
    return lines;
}

std::uint32_t bigEndian32(const Bytes& bytes, std::size_t at)
{
    return std::uint32_t{bytes[at]} << 24 | std::uint32_t{bytes[at + 1]} << 16 | std::uint32_t{bytes[at + 2]} << 8 |
           bytes[at + 3];
}

std::uint32_t littleEndian32(const Bytes& bytes, std::size_t at)
{
    return std::uint32_t{bytes[at + 3]} << 24 | std::uint32_t{bytes[at + 2]} << 16 | std::uint32_t{bytes[at + 1]} << 8 |
           bytes[at];
}

// A row of `tones --details`: "001 0x00140011 0x00140150 320 crc=ok title=Door Chime".
struct ToneRow {
    std::uint32_t start = 0;
    std::uint32_t end = 0;
    std::uint32_t size = 0;
    std::string crc;
    std::string title;
};

std::vector<ToneRow> toneRows(const std::string& out)
{
    std::vector<ToneRow> rows;
    for (const std::string& line : linesOf(out)) {
        std::istringstream in(line);
        std::string number, start, end, crc;
        ToneRow row;
        in >> number >> start >> end >> row.size >> crc;
        row.start = static_cast<std::uint32_t>(std::stoul(start, nullptr, 16));
        row.end = static_cast<std::uint32_t>(std::stoul(end, nullptr, 16));
        row.crc = crc.substr(crc.find('=') + 1);
        const auto title = line.find(" title=");
        row.title = title == std::string::npos ? "" : line.substr(title + 7);
        rows.push_back(row);
    }
    return rows;
}

std::vector<ToneRow> demoTones()
{
    const RunResult result = runCli(demo().folder, {"tones", "demo/demo.bin", "--details"});
    EXPECT_TRUE(succeeded(result));
    return toneRows(result.out);
}

Bytes text(const std::string& characters) { return Bytes(characters.begin(), characters.end()); }

}  // namespace

TEST(MakeDemo, WritesTheSameTwoMebibytesAsBinAndAsf)
{
    ASSERT_TRUE(succeeded(demo().made));
    const Bytes bin = readBytes(demo().folder.path("demo/demo.bin"));
    EXPECT_EQ(bin.size(), kTwoMebibytes);
    EXPECT_TRUE(bin == readBytes(demo().folder.path("demo/demo.asf")));
}

TEST(MakeDemo, InfoShowsTheKindAndTheVersion)
{
    const RunResult bin = runCli(demo().folder, {"info", "demo/demo.bin"});
    ASSERT_TRUE(succeeded(bin));
    EXPECT_EQ(bin.out, "kind: bin\nlength: 2097152\nversion: ZV1.11DM\n");
    const RunResult asf = runCli(demo().folder, {"info", "demo/demo.asf"});
    ASSERT_TRUE(succeeded(asf));
    EXPECT_EQ(asf.out, "kind: asf\nlength: 2097152\nversion: ZV1.11DM\n");
}

TEST(MakeDemo, ListsSixOrMoreTonesEachWithAGoodCrcAndATitle)
{
    const auto rows = demoTones();
    EXPECT_GE(rows.size(), 6u);
    std::set<std::string> titles;
    for (const ToneRow& row : rows) {
        EXPECT_EQ(row.crc, "ok") << row.title;
        EXPECT_FALSE(row.title.empty()) << "tone at " << row.start;
        EXPECT_EQ(row.end - row.start + 1, row.size) << row.title;
        titles.insert(row.title);
    }
    EXPECT_EQ(titles.size(), rows.size()) << "every tone has a title of its own";
    std::set<std::uint32_t> sizes;
    for (const ToneRow& row : rows) sizes.insert(row.size);
    EXPECT_LE(*sizes.begin(), 400u);
    EXPECT_GE(*sizes.rbegin(), 16000u);
}

TEST(MakeDemo, OneToneLiesInsideAnother)
{
    const auto rows = demoTones();
    bool nested = false;
    for (const ToneRow& outer : rows)
        for (const ToneRow& inner : rows) nested = nested || (inner.start > outer.start && inner.end <= outer.end);
    EXPECT_TRUE(nested);
}

TEST(MakeDemo, SignaturesOfAbsurdLengthAreNotListed)
{
    const Bytes image = readBytes(demo().folder.path("demo/demo.bin"));
    std::set<std::uint32_t> listed;
    for (const ToneRow& row : demoTones()) listed.insert(row.start);
    const Bytes signature = text("MMMD");
    std::set<std::uint32_t> unlistedLengths;
    for (auto it = image.begin();
         (it = std::search(it, image.end(), signature.begin(), signature.end())) != image.end(); ++it) {
        const auto at = static_cast<std::uint32_t>(it - image.begin());
        if (listed.count(at)) continue;
        ASSERT_LE(at + 8, image.size());
        const std::uint64_t size = std::uint64_t{bigEndian32(image, at + 4)} + 8;
        EXPECT_TRUE(size < 101 || size > 99999) << "a signature at " << at << " declares " << size << " bytes";
        unlistedLengths.insert(bigEndian32(image, at + 4));
    }
    EXPECT_TRUE(unlistedLengths.count(0x00000010));  // 24 bytes, too short
    EXPECT_TRUE(unlistedLengths.count(0x7FFFFFFF));  // far beyond any tone
}

struct PlantedString {
    const char* label;
    const char* text;
    bool handsetCodes;
    Bytes stored;
};

void PrintTo(const PlantedString& row, std::ostream* out) { *out << row.label; }

class MakeDemoString : public ::testing::TestWithParam<PlantedString> {};

// Found between a zero byte before it and the zero that ends it, stored as written here.
TEST_P(MakeDemoString, IsFoundWhereItIsStored)
{
    const PlantedString& row = GetParam();
    std::vector<std::string> args = {"find-text", "demo/demo.bin", row.text};
    if (row.handsetCodes) args.push_back("--handset-codes");
    const RunResult result = runAtHome(args);
    ASSERT_TRUE(succeeded(result));
    std::istringstream in(result.out);
    std::string start, end;
    in >> start >> end;
    const auto first = std::stoul(start, nullptr, 16);
    const auto last = std::stoul(end, nullptr, 16);
    const Bytes image = readBytes(demo().folder.path("demo/demo.bin"));
    ASSERT_GT(first, 0u);
    ASSERT_LT(last + 1, image.size());
    EXPECT_EQ(image[first - 1], 0x00);
    const auto begin = image.begin() + static_cast<std::ptrdiff_t>(first);
    EXPECT_EQ(Bytes(begin, begin + static_cast<std::ptrdiff_t>(last - first + 1)), row.stored);
    EXPECT_EQ(image[last + 1], 0x00);
}

INSTANTIATE_TEST_SUITE_P(
    Planted, MakeDemoString,
    ::testing::Values(
        PlantedString{"Welcome", "Welcome", false, text("Welcome")},
        PlantedString{"CallEnded", "Call ended", false, text("Call ended")},
        PlantedString{"Messages", "Messages", false, text("Messages")},
        PlantedString{"WelcomeInGbk", "欢迎使用", false, {0xBB, 0xB6, 0xD3, 0xAD, 0xCA, 0xB9, 0xD3, 0xC3}},
        PlantedString{"ShortMessagesInGbk", "短信息", false, {0xB6, 0xCC, 0xD0, 0xC5, 0xCF, 0xA2}},
        // Handset codes: "A1" before each Latin-1 byte, UTF-16 for a Chinese character.
        PlantedString{
            "HelloInHandsetCodes", "Hello", true, {0xA1, 0x48, 0xA1, 0x65, 0xA1, 0x6C, 0xA1, 0x6C, 0xA1, 0x6F}},
        PlantedString{"ChineseMenuInHandsetCodes", "中文菜单", true, {0x4E, 0x2D, 0x65, 0x87, 0x83, 0xDC, 0x53, 0x55}}),
    [](const ::testing::TestParamInfo<PlantedString>& row) { return std::string(row.param.label); });

// Rows of the picture table, in order, with the size field of the BMP each decodes to:
// 54 header bytes, the colour table (64 at depth 4, 8 for mono, 16 bit-field masks at
// depth 16), rows padded to four bytes; depths 8 and 12 come out as 24-bit pixels.
struct PictureRow {
    int depth;
    std::uint32_t bmpSize;
};
const PictureRow kPictureRows[] = {
    {24, 54 + 384 * 160},  // 128*160
    {16, 70 + 256 * 160},  // 128*160
    {4, 118 + 48 * 96},    // 96*96
    {8, 54 + 288 * 96},    // 96*96
    {12, 54 + 240 * 80},   // 80*80
    {1, 62 + 768},         // 64*96, the whole display memory
    {16, 70 + 128 * 64},   // 64*64, one frame of the animation
};

TEST(MakeDemo, EveryPictureRowDecodesToABmpOfItsSize)
{
    const auto table = linesOf(readText(demo().folder.path("demo/demo-pictures.txt")));
    ASSERT_EQ(table.size(), std::size(kPictureRows));
    std::set<int> depths;
    for (std::size_t i = 0; i < table.size(); ++i) {
        const std::string number = (i < 9 ? "00" : "0") + std::to_string(i + 1);
        const std::string bmpPath = demo().folder.path("row" + number + ".bmp");
        ASSERT_TRUE(succeeded(runAtHome({"picture", "demo/demo.bin", "demo/demo-pictures.txt", number, "-o", bmpPath})))
            << table[i];
        const Bytes bmp = readBytes(bmpPath);
        ASSERT_GE(bmp.size(), 54u);
        EXPECT_EQ(littleEndian32(bmp, 2), kPictureRows[i].bmpSize) << table[i];
        EXPECT_EQ(bmp.size(), kPictureRows[i].bmpSize) << table[i];
        EXPECT_NE(table[i].find("\t Bits: " + std::to_string(kPictureRows[i].depth) + "\t"), std::string::npos)
            << table[i];
        // Pixel bytes of one value only would hide a picture read from the wrong place.
        const auto pixels = bmp.begin() + static_cast<std::ptrdiff_t>(littleEndian32(bmp, 10));
        EXPECT_GT(std::set<std::uint8_t>(pixels, bmp.end()).size(), 1u) << table[i];
        depths.insert(kPictureRows[i].depth);
    }
    EXPECT_EQ(depths, (std::set<int>{1, 4, 8, 12, 16, 24}));
}

// Row 006 is the mono smiley over "DEMO" (2-pixel dots from 9,62) and "ZEVRAN" (from
// 15,82), drawn upright as the BMP shows it: 64 pixels a row, top row stored last.
TEST(MakeDemo, TheMonoPictureStandsUprightInItsBmp)
{
    const std::string bmpPath = demo().folder.path("mono.bmp");
    ASSERT_TRUE(succeeded(runAtHome({"picture", "demo/demo.bin", "demo/demo-pictures.txt", "006", "-o", bmpPath})));
    const Bytes bmp = readBytes(bmpPath);
    ASSERT_EQ(bmp.size(), 830u);
    auto lit = [&](int x, int y) {
        return (bmp[62 + static_cast<std::size_t>((95 - y) * 8 + x / 8)] >> (7 - x % 8)) & 1;
    };
    EXPECT_TRUE(lit(32, 6));    // top of the face
    EXPECT_TRUE(lit(23, 22));   // left eye
    EXPECT_FALSE(lit(32, 30));  // middle of the face
    EXPECT_TRUE(lit(9, 62));    // the "D" starts at its top left...
    EXPECT_FALSE(lit(17, 62));  // ...and is rounded at its top right
    EXPECT_TRUE(lit(15, 82));   // the "Z" of "ZEVRAN" has a full top bar
    EXPECT_TRUE(lit(19, 82));
    EXPECT_FALSE(lit(15, 86));  // and no left side
}

TEST(MakeDemo, TheAnimationHasEightFramesThatDiffer)
{
    const auto table = linesOf(readText(demo().folder.path("demo/demo-pictures.txt")));
    ASSERT_EQ(table.size(), std::size(kPictureRows));
    const std::string& row = table.back();
    const auto frames = row.find("\t Frames: ");
    ASSERT_NE(frames, std::string::npos) << row;
    EXPECT_GE(std::stoi(row.substr(frames + 10)), 8) << row;
    std::set<Bytes> seen;
    for (int k = 1; k <= 8; ++k) {
        const std::string bmpPath = demo().folder.path("frame" + std::to_string(k) + ".bmp");
        ASSERT_TRUE(succeeded(runAtHome({"picture", "demo/demo.bin", "demo/demo-pictures.txt", "007", "--frame",
                                         std::to_string(k), "-o", bmpPath})));
        seen.insert(readBytes(bmpPath));
    }
    EXPECT_EQ(seen.size(), 8u);
}

TEST(MakeDemo, SpareTonesFitSomeSlotsAndNotOthers)
{
    const auto slots = demoTones();
    ASSERT_FALSE(slots.empty());
    std::uint32_t smallest = slots.front().size, largest = slots.front().size;
    for (const ToneRow& slot : slots) smallest = std::min(smallest, slot.size), largest = std::max(largest, slot.size);
    std::vector<std::uint32_t> sizes;
    for (const auto& entry : std::filesystem::directory_iterator(demo().folder.path("demo/tones"))) {
        ASSERT_EQ(entry.path().extension(), ".mmf");
        const Bytes tone = readBytes(entry.path().string());
        ASSERT_GE(tone.size(), 8u);
        EXPECT_EQ(Bytes(tone.begin(), tone.begin() + 4), text("MMMD")) << entry.path();
        EXPECT_EQ(bigEndian32(tone, 4) + 8, tone.size()) << entry.path();
        // The scan starts after offset 0, so one byte goes before the tone.
        const std::string image = demo().folder.path("one-" + entry.path().filename().string() + ".bin");
        writeFile(image, joined({{0x00}, tone}));
        const RunResult listed = runCli(demo().folder, {"tones", image, "--details"});
        ASSERT_TRUE(succeeded(listed));
        const auto rows = toneRows(listed.out);
        ASSERT_EQ(rows.size(), 1u) << entry.path();
        EXPECT_EQ(rows[0].crc, "ok") << entry.path();
        EXPECT_EQ(rows[0].size, tone.size()) << entry.path();
        sizes.push_back(static_cast<std::uint32_t>(tone.size()));
    }
    ASSERT_EQ(sizes.size(), 4u);
    std::sort(sizes.begin(), sizes.end());
    EXPECT_LT(sizes[1], smallest);
    EXPECT_GT(sizes[2], smallest);
    EXPECT_LT(sizes[2], largest);
    EXPECT_GT(sizes[3], largest);
}

TEST(MakeDemo, MakingItAgainGivesTheSameFiles)
{
    const RunResult again = runCli(demo().folder, {"make-demo", "again"});
    ASSERT_TRUE(succeeded(again));
    EXPECT_EQ(again.out, demo().made.out);
    auto filesIn = [](const std::string& folder) {
        std::map<std::string, Bytes> files;
        for (const auto& entry : std::filesystem::recursive_directory_iterator(folder))
            if (entry.is_regular_file())
                files[std::filesystem::relative(entry.path(), folder).string()] = readBytes(entry.path());
        return files;
    };
    const auto first = filesIn(demo().folder.path("demo"));
    const auto second = filesIn(demo().folder.path("again"));
    EXPECT_EQ(first.size(), 7u);  // demo.bin, demo.asf, demo-pictures.txt, four tones
    EXPECT_TRUE(first == second);
}

TEST(MakeDemo, NoFolderIsAUsageError)
{
    TempFolder folder;
    EXPECT_TRUE(usageError(runCli(folder, {"make-demo"})));
}
