// zevran-cli find-text and patch-strings: stored strings found, measured and
// replaced in images the test writes.
#include "cli_run.hpp"

using namespace zevran::test;

namespace {

Bytes text(const std::string& characters) { return Bytes(characters.begin(), characters.end()); }

// Runs with the temp folder as program folder: no zevran.ini there, so the code page is GBK.
RunResult runAtHome(const TempFolder& folder, std::vector<std::string> args)
{
    args.insert(args.begin(), {"--home", folder.root().string()});
    return runCli(folder, args);
}

// "Hello World" at 2..0x0C with its zero at 0x0D.
const Bytes kHelloImage = joined({{0xFF, 0xFF}, text("Hello World"), {0x00}, repeated(18, 0xFF)});

}  // namespace

TEST(FindTextCommand, AllListsEveryHitInAddressOrder)
{
    TempFolder folder;
    // "abc" at 0x01, "abcd" at 0x06, "abcdef" at 0x0C; each ends in a zero.
    writeFile(folder.path("image.bin"),
              joined({{0xFF}, text("abc"), {0x00, 0xFF}, text("abcd"), {0x00, 0xFF}, text("abcdef"), {0x00}}));
    const RunResult all = runAtHome(folder, {"find-text", "image.bin", "abc", "--all"});
    ASSERT_TRUE(succeeded(all));
    EXPECT_EQ(all.out, "00000001 00000003 3\n"
                       "00000006 00000009 4\n"
                       "0000000C 00000011 6\n");
    const RunResult first = runAtHome(folder, {"find-text", "image.bin", "abc"});
    ASSERT_TRUE(succeeded(first));
    EXPECT_EQ(first.out, "00000001 00000003 3\n");
}

TEST(FindTextCommand, NoHitFailsWithOneLineOnStderr)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), kHelloImage);
    EXPECT_TRUE(failedWith(runAtHome(folder, {"find-text", "image.bin", "Howdy"}), {"Howdy", "image.bin"}));
}

TEST(FindTextCommand, OnlyHitWithoutAZeroIsNoHit)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), joined({{0xFF, 0xFF}, text("Hello World")}));
    EXPECT_TRUE(failedWith(runAtHome(folder, {"find-text", "image.bin", "Hello"}), {"Hello"}));
}

namespace {

// 中国 twice: in GBK (D6 D0 B9 FA) at 0x04 and as UTF-16 code units (4E 2D 56 FD) at 0x0A.
const Bytes kChineseImage = joined(
    {repeated(4, 0xFF), {0xD6, 0xD0, 0xB9, 0xFA, 0x00, 0xFF}, {0x4E, 0x2D, 0x56, 0xFD, 0x00}, repeated(3, 0xFF)});

}  // namespace

// One find-text run over an image: its words after the image's name and what it prints.
struct FindTextCase {
    std::string name;
    Bytes image;
    std::vector<std::string> args;
    std::string printed;
};

class FindText : public ::testing::TestWithParam<FindTextCase> {};

TEST_P(FindText, PrintsStartLastByteBeforeTheZeroAndLength)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), GetParam().image);
    std::vector<std::string> args = {"find-text", "image.bin"};
    args.insert(args.end(), GetParam().args.begin(), GetParam().args.end());
    const RunResult result = runAtHome(folder, args);
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, GetParam().printed);
}

INSTANTIATE_TEST_SUITE_P(
    Images, FindText,
    ::testing::Values(
        FindTextCase{"HitShowsStartLastByteBeforeTheZeroAndLength", kHelloImage, {"Hello"}, "00000002 0000000C 11\n"},
        FindTextCase{"HitInsideAStringIsMeasuredFromTheHit", kHelloImage, {"World"}, "00000008 0000000C 5\n"},
        // The second "Hello" at 0x10 runs to the last byte with no zero after it.
        FindTextCase{"HitRunningToTheImageEndWithoutAZeroIsSkipped",
                     joined({{0xFF, 0xFF}, text("Hello"), {0x00}, repeated(8, 0xFF), text("Hello!")}),
                     {"Hello", "--all"},
                     "00000002 00000006 5\n"},
        // The plain "Hi" at 0x02 is not a handset string; A1 48 A1 69 A1 20 at 0x10 is, 6 bytes = 3 characters.
        FindTextCase{
            "AsciiCharactersAreSearchedAsA1AndTheirByte",
            joined({{0xFF, 0xFF}, text("Hi"), {0x00}, repeated(11, 0xFF), {0xA1, 0x48, 0xA1, 0x69, 0xA1, 0x20, 0x00}}),
            {"Hi", "--handset-codes", "--all"},
            "00000010 00000015 3\n"},
        // A1 48 A1 69 7A at 0x04: five bytes before the zero.
        FindTextCase{"OddByteCountShowsAHalfCharacter",
                     joined({repeated(4, 0xFF), {0xA1, 0x48, 0xA1, 0x69, 0x7A, 0x00}}),
                     {"Hi", "--handset-codes"},
                     "00000004 00000008 2.5\n"},
        FindTextCase{"ChineseTextIsSearchedAsItsGbkBytes", kChineseImage, {"中", "--all"}, "00000004 00000007 4\n"},
        FindTextCase{"ChineseTextIsSearchedAsItsUtf16CodeUnit",
                     kChineseImage,
                     {"中", "--handset-codes", "--all"},
                     "0000000A 0000000D 2\n"}),
    [](const auto& row) { return row.param.name; });

namespace {

Bytes counting(std::size_t count)
{
    Bytes bytes(count);
    for (std::size_t i = 0; i < count; ++i) bytes[i] = static_cast<std::uint8_t>(0x10 + i);
    return bytes;
}

RunResult patchStrings(const TempFolder& folder, const std::string& phoneName, const std::string& plan,
                       std::vector<std::string> options)
{
    writeFile(folder.path("plan.txt"), plan);
    std::vector<std::string> args = {"patch-strings", phoneName, "plan.txt"};
    args.insert(args.end(), options.begin(), options.end());
    return runAtHome(folder, args);
}

const std::string kHeader = "S00600004844521B\r\n";
const std::string kTrailer = "S705A002000058\r\n";

}  // namespace

TEST(PatchStringsCommand, BinFileGivesAnSRecordPatchOfThePaddedText)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), counting(16));
    ASSERT_TRUE(succeeded(patchStrings(folder, "image.bin", "00000002 00000003 A\n", {"-o", "out.s3"})));
    // "A" padded to the range's 2 bytes: 41 20. 07 + 02 + 41 + 20 = 6A -> 95.
    EXPECT_EQ(readText(folder.path("out.s3")), kHeader + "S30700000002412095\r\n" + kTrailer);
    EXPECT_EQ(readBytes(folder.path("image.bin")), counting(16));
}

TEST(PatchStringsCommand, HandsetCodesFillTheRangeWithA1Pairs)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), counting(16));
    ASSERT_TRUE(
        succeeded(patchStrings(folder, "image.bin", "00000004 0000000B Hi\n", {"-o", "out.s3", "--handset-codes"})));
    // Eight bytes = four characters: A1 48 A1 69 A1 20 A1 20.
    // 0D + 04 + 4 * A1 (284) + 48 + 69 + 20 + 20 = 386 -> 86 -> 79.
    EXPECT_EQ(readText(folder.path("out.s3")), kHeader + "S30D00000004A148A169A120A12079\r\n" + kTrailer);
}

TEST(PatchStringsCommand, PatchOverThePhoneFileItselfIsRefusedAndChangesNothing)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), counting(16));
    EXPECT_TRUE(failedWith(patchStrings(folder, "image.bin", "00000002 00000003 A\n", {"-o", "image.bin"}),
                           {"is the phone file open in the workshop"}));
    EXPECT_EQ(readBytes(folder.path("image.bin")), counting(16));
}

TEST(PatchStringsCommand, InPlaceChangesExactlyTheRangeOfAnAsfFile)
{
    TempFolder folder;
    writeFile(folder.path("image.asf"), counting(16));
    ASSERT_TRUE(succeeded(patchStrings(folder, "image.asf", "00000002 00000003 A\n", {"--in-place"})));
    Bytes expected = counting(16);
    expected[2] = 0x41, expected[3] = 0x20;
    EXPECT_EQ(readBytes(folder.path("image.asf")), expected);
}

TEST(PatchStringsCommand, PatchFileForAnAsfFileFailsAndChangesNothing)
{
    TempFolder folder;
    writeFile(folder.path("image.asf"), counting(16));
    EXPECT_TRUE(
        failedWith(patchStrings(folder, "image.asf", "00000002 00000003 A\n", {"-o", "out.s3"}), {"image.asf"}));
    EXPECT_FALSE(exists(folder.path("out.s3")));
    EXPECT_EQ(readBytes(folder.path("image.asf")), counting(16));
}

TEST(PatchStringsCommand, InPlaceForABinFileFailsAndChangesNothing)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), counting(16));
    EXPECT_TRUE(failedWith(patchStrings(folder, "image.bin", "00000002 00000003 A\n", {"--in-place"}), {"image.bin"}));
    EXPECT_EQ(readBytes(folder.path("image.bin")), counting(16));
}

TEST(PatchStringsCommand, ReplacementLongerThanItsRangeFailsNamingTheLine)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), counting(16));
    const std::string plan = "00000002 00000003 A\n00000005 00000006 ABC\n";
    EXPECT_TRUE(failedWith(patchStrings(folder, "image.bin", plan, {"-o", "out.s3"}), {"plan.txt", "line 2"}));
    EXPECT_FALSE(exists(folder.path("out.s3")));
}

TEST(PatchStringsCommand, OddRangeInHandsetCodesFailsNamingTheLineAndWritesNothing)
{
    TempFolder folder;
    const Bytes image = joined({repeated(4, 0x00), {0xA1, 0x48, 0xA1, 0x69, 0x7A, 0x00}});
    writeFile(folder.path("image.asf"), image);
    EXPECT_TRUE(
        failedWith(patchStrings(folder, "image.asf", "00000004 00000008 Yo\n", {"--in-place", "--handset-codes"}),
                   {"plan.txt", "line 1"}));
    EXPECT_EQ(readBytes(folder.path("image.asf")), image);
}

TEST(FindTextCommand, EmptyTextIsAUsageError)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), kHelloImage);
    EXPECT_TRUE(usageError(runAtHome(folder, {"find-text", "image.bin", ""})));
}

TEST(PatchStringsCommand, FoundStringPatchedAndAppliedIsFoundAgainUnderItsNewText)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), kHelloImage);
    const RunResult found = runAtHome(folder, {"find-text", "image.bin", "Hello"});
    ASSERT_TRUE(succeeded(found));
    ASSERT_EQ(found.out, "00000002 0000000C 11\n");
    // The plan's START and END are the search's first two cells.
    writeFile(folder.path("plan.txt"), found.out.substr(0, 17) + " Howdy\n");
    ASSERT_TRUE(succeeded(runAtHome(folder, {"patch-strings", "image.bin", "plan.txt", "-o", "patch.s3"})));
    // "Howdy" and six spaces: 10 + 02 + 48 6F 77 64 79 (20B) + 6 * 20 (C0) = 2DD -> DD -> 22.
    EXPECT_EQ(readText(folder.path("patch.s3")), kHeader + "S31000000002486F77647920202020202022\r\n" + kTrailer);
    ASSERT_TRUE(succeeded(runAtHome(folder, {"apply-patch", "image.bin", "patch.s3", "-o", "copy.bin"})));
    EXPECT_EQ(readBytes(folder.path("copy.bin")),
              joined({{0xFF, 0xFF}, text("Howdy      "), {0x00}, repeated(18, 0xFF)}));
    const RunResult again = runAtHome(folder, {"find-text", "copy.bin", "Howdy"});
    ASSERT_TRUE(succeeded(again));
    EXPECT_EQ(again.out, "00000002 0000000C 11\n");
    EXPECT_EQ(readBytes(folder.path("image.bin")), kHelloImage);
}

TEST(PatchStringsCommand, ChineseTextShorterThanItsRangeIsPaddedInBytes)
{
    TempFolder folder;
    writeFile(folder.path("image.bin"), counting(16));
    // "中" is D6 D0 in GBK; four spaces fill the six bytes. 0B + 04 + D6 + D0 + 4 * 20 = 02 35 -> CA.
    ASSERT_TRUE(succeeded(patchStrings(folder, "image.bin", "00000004 00000009 中\n", {"-o", "out.s3"})));
    EXPECT_EQ(readText(folder.path("out.s3")), kHeader + "S30B00000004D6D020202020CA\r\n" + kTrailer);
}
