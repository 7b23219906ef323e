// Every zevran-cli command that writes a file writes it through a temporary file beside
// it: a run that fails, early or part way, leaves an existing output with its bytes,
// leaves no partial or temporary file behind, and says that nothing was written.
#include "cli_run.hpp"

using namespace zevran::test;

namespace {

Bytes text(const std::string& characters) { return Bytes(characters.begin(), characters.end()); }

const std::string kOldOutput = "the output of an earlier run";
const std::string kHeader = "S00600004844521B\r\n";
const std::string kTrailer = "S705A002000058\r\n";

std::string pictureLine(const std::string& name, const std::string& address, int frames, int frameSize,
                        const std::string& pixels, int depth)
{
    return "001 " + name + "\t 0X" + address + "\t Frames: " + std::to_string(frames) +
           "\t Size: " + std::to_string(frameSize) + "\t Pixels: " + pixels + "\t Bits: " + std::to_string(depth) +
           "\t\r\n";
}

// Every name below `folder`, folders included, sorted; the run's captures left out.
std::vector<std::string> namesBelow(const TempFolder& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder.root())) {
        const std::string name = std::filesystem::relative(entry.path(), folder.root()).string();
        if (name.rfind(".captures", 0) != 0) names.push_back(name);
    }
    std::sort(names.begin(), names.end());
    return names;
}

struct FailingRun {
    std::string name;
    std::vector<std::pair<std::string, Bytes>> inputs;  // files written before the run
    std::string output;                                 // the existing output, relative to the folder
    std::vector<std::string> args;
};

std::ostream& operator<<(std::ostream& out, const FailingRun& run) { return out << run.name; }

// A tone header at 0x40 declaring 0x1000 bytes in an image of 0x100: its bytes run
// past the image's end, so the export of row 001 fails.
Bytes toneRunningPastTheEnd()
{
    Bytes image(0x100, 0x11);
    const Bytes head{'M', 'M', 'M', 'D', 0x00, 0x00, 0x0F, 0xF8};
    std::copy(head.begin(), head.end(), image.begin() + 0x40);
    return image;
}

const Bytes kImage(0x40, 0x5A);
const Bytes kTwoFrameTable = text(pictureLine("logo", "00000010", 2, 12, "3*2", 16));

std::vector<FailingRun> failingRuns()
{
    return {
        // A good record is converted before line 3 fails: the output was begun.
        {"s3-to-bin",
         {{"in.s3", text(kHeader + "S3090000001001020304DC\r\nS3030000FC\r\n" + kTrailer)}},
         "out.bin",
         {"s3-to-bin", "in.s3", "-o", "out.bin"}},
        {"bin-to-s3",
         {{"in.bin", kImage}},
         "out.s3",
         {"bin-to-s3", "in.bin", "--start", "10", "--end", "8", "-o", "out.s3"}},
        {"fill-s3", {}, "out.s3", {"fill-s3", "--start", "10", "--end", "8", "--fill", "00", "-o", "out.s3"}},
        // The second record's checksum is wrong, after the first was laid over.
        {"apply-patch",
         {{"image.bin", kImage}, {"patch.s3", text(kHeader + "S30700000004AABBFF\r\n")}},
         "out.bin",
         {"apply-patch", "image.bin", "patch.s3", "-o", "out.bin"}},
        {"export-tones",
         {{"image.bin", toneRunningPastTheEnd()}},
         "ring-001.mmf",
         {"export-tones", "image.bin", "--to", "ring.mmf"}},
        {"patch-strings",
         {{"image.bin", kImage}, {"plan.txt", text("00000004 00000002 abc\n")}},
         "out.s3",
         {"patch-strings", "image.bin", "plan.txt", "-o", "out.s3"}},
        {"picture",
         {{"image.bin", kImage}, {"table.txt", kTwoFrameTable}},
         "out.bmp",
         {"picture", "image.bin", "table.txt", "1", "--frame", "3", "-o", "out.bmp"}},
        {"export-pictures",
         {{"image.bin", kImage}, {"table.txt", text(pictureLine("logo", "00000010", 1, 12, "65536*65536", 16))}},
         "out/logo-01.bmp",
         {"export-pictures", "image.bin", "table.txt", "--to", "out"}},
        {"picture-patch",
         {{"image.bin", kImage}, {"table.txt", text(pictureLine("logo", "00000030", 2, 12, "3*2", 16))}},
         "out.s3",
         {"picture-patch", "image.bin", "table.txt", "--rows", "1", "-o", "out.s3"}},
        {"render",
         {{"image.bin", kImage}},
         "out.bmp",
         {"render", "image.bin", "--at", "10", "--depth", "2", "--width", "4", "--height", "4", "-o", "out.bmp"}},
        {"import-picture",
         {{"image.bin", kImage}, {"table.txt", kTwoFrameTable}, {"notes.png", text("not a picture")}},
         "out.s3",
         {"import-picture", "image.bin", "table.txt", "1", "--from", "notes.png", "-o", "out.s3"}},
        {"diff",
         {{"old.bin", kImage}, {"new.bin", text("short")}},
         "out.s3",
         {"diff", "old.bin", "new.bin", "-o", "out.s3"}},
    };
}

class OutputSafety : public ::testing::TestWithParam<FailingRun> {};

}  // namespace

TEST_P(OutputSafety, FailedRunKeepsTheExistingOutputAndLeavesNoTemporary)
{
    const FailingRun& run = GetParam();
    TempFolder folder;
    std::filesystem::create_directory(folder.path("out"));
    for (const auto& [name, bytes] : run.inputs) writeFile(folder.path(name), bytes);
    writeFile(folder.path(run.output), kOldOutput);
    const std::vector<std::string> before = namesBelow(folder);
    std::vector<std::string> args = {"--home", folder.root().string()};
    args.insert(args.end(), run.args.begin(), run.args.end());
    const RunResult result = runCli(folder, args);
    EXPECT_TRUE(failedWith(result, {"nothing was written"}));
    EXPECT_EQ(readText(folder.path(run.output)), kOldOutput);
    EXPECT_EQ(namesBelow(folder), before);
}

INSTANTIATE_TEST_SUITE_P(EveryWritingCommand, OutputSafety, ::testing::ValuesIn(failingRuns()), [](const auto& row) {
    std::string name = row.param.name;
    std::replace(name.begin(), name.end(), '-', '_');
    return name;
});

TEST(OutputSafety, ConversionFailingPartWaySaysNothingWasWrittenToItsOutput)
{
    TempFolder folder;
    writeFile(folder.path("in.s3"), kHeader + "S3090000001001020304DC\r\nS3030000FC\r\n" + kTrailer);
    writeFile(folder.path("out.bin"), kOldOutput);
    const RunResult result = runCli(folder, {"s3-to-bin", "in.s3", "-o", "out.bin"});
    EXPECT_TRUE(failedWith(result, {"in.s3: line 3", "nothing was written to out.bin"}));
    EXPECT_EQ(readText(folder.path("out.bin")), kOldOutput);
}

namespace {

// A command asked to write over the phone file it reads, by its own name or by another
// name of the same file (a hard link).
struct OverThePhoneFile {
    std::string name;
    std::vector<std::pair<std::string, Bytes>> inputs;
    std::string otherName;  // a hard link to image.bin, or "" for none
    std::vector<std::string> args;
};

std::ostream& operator<<(std::ostream& out, const OverThePhoneFile& run) { return out << run.name; }

const Bytes kTranslation = text("address,encoding,source,target\r\n0x00000010,single,ZZ,AB\r\n");

std::vector<OverThePhoneFile> runsOverThePhoneFile()
{
    return {
        {"patch-strings",
         {{"plan.txt", text("00000004 00000005 ab\n")}},
         "",
         {"patch-strings", "image.bin", "plan.txt", "-o", "image.bin"}},
        {"picture-patch",
         {{"table.txt", kTwoFrameTable}},
         "",
         {"picture-patch", "image.bin", "table.txt", "--rows", "1", "-o", "image.bin"}},
        {"import-picture",
         {{"table.txt", kTwoFrameTable}, {"notes.png", text("not a picture")}},
         "same.s3",
         {"import-picture", "image.bin", "table.txt", "1", "--from", "notes.png", "-o", "same.s3"}},
        {"export-strings", {}, "same.csv", {"export-strings", "image.bin", "-o", "same.csv"}},
        {"import-strings",
         {{"zh.csv", kTranslation}},
         "",
         {"import-strings", "image.bin", "zh.csv", "-o", "image.bin"}},
        {"import-strings report",
         {{"zh.csv", kTranslation}},
         "same.csv",
         {"import-strings", "image.bin", "zh.csv", "-o", "out.s3", "--report", "same.csv"}},
    };
}

class PhoneFileAsOutput : public ::testing::TestWithParam<OverThePhoneFile> {};

}  // namespace

TEST_P(PhoneFileAsOutput, IsRefusedAndNothingIsWritten)
{
    const OverThePhoneFile& run = GetParam();
    TempFolder folder;
    writeFile(folder.path("image.bin"), kImage);
    for (const auto& [name, bytes] : run.inputs) writeFile(folder.path(name), bytes);
    if (!run.otherName.empty()) std::filesystem::create_hard_link(folder.path("image.bin"), folder.path(run.otherName));
    const std::vector<std::string> before = namesBelow(folder);
    std::vector<std::string> args = {"--home", folder.root().string()};
    args.insert(args.end(), run.args.begin(), run.args.end());
    EXPECT_TRUE(failedWith(runCli(folder, args), {"is the phone file open in the workshop"}));
    EXPECT_EQ(readBytes(folder.path("image.bin")), kImage);
    EXPECT_EQ(namesBelow(folder), before);
}

INSTANTIATE_TEST_SUITE_P(EveryCommandReadingAPhoneFile, PhoneFileAsOutput, ::testing::ValuesIn(runsOverThePhoneFile()),
                         [](const auto& row) {
                             std::string name = row.param.name;
                             std::replace_if(
                                 name.begin(), name.end(), [](char c) { return c == '-' || c == ' '; }, '_');
                             return name;
                         });
