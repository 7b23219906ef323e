// zevran-cli export-strings and import-strings end to end, with gettext's msgfmt and
// msgen and the Translate Toolkit's converters as peers on the files written.
#include "cli_run.hpp"

#include <regex>

using namespace zevran::test;

namespace {

Bytes text(const std::string& characters) { return Bytes(characters.begin(), characters.end()); }

RunResult runAtHome(const TempFolder& folder, std::vector<std::string> args)
{
    args.insert(args.begin(), {"--home", folder.root().string()});
    return runCli(folder, args);
}

// A string table: "Menu" 0x10, "Settings" 0x15, "Back" 0x1E in single-byte codes;
// "OK" 0x24 (A1 4F A1 4B) and 设置 0x29 (8B BE 7F 6E) in handset codes.
const Bytes kImage = joined({repeated(16, 0xFF),
                             text("Menu"),
                             {0x00},
                             text("Settings"),
                             {0x00},
                             text("Back"),
                             {0x00, 0x00},
                             {0xA1, 0x4F, 0xA1, 0x4B, 0x00},
                             {0x8B, 0xBE, 0x7F, 0x6E, 0x00},
                             repeated(16, 0xFF)});

bool havePeer(const char* program)
{
    return std::system((std::string("command -v ") + program + " >/dev/null 2>&1").c_str()) == 0;
}

RunResult runPeer(const TempFolder& folder, const std::string& program, const std::vector<std::string>& args)
{
    return runProgram(folder, "/usr/bin/env", [&] {
        std::vector<std::string> all{program};
        all.insert(all.end(), args.begin(), args.end());
        return all;
    }());
}

// The image with a patch laid over it, through zevran-cli apply-patch.
Bytes patched(const TempFolder& folder, const std::string& patch)
{
    EXPECT_TRUE(succeeded(runAtHome(folder, {"apply-patch", "phone.bin", patch, "-o", "patched.bin"})));
    return readBytes(folder.path("patched.bin"));
}

}  // namespace

TEST(ExportStringsCommand, PoFileHoldsEveryStringKeyedByAddress)
{
    TempFolder folder;
    writeFile(folder.path("phone.bin"), kImage);
    const RunResult result = runAtHome(folder, {"export-strings", "phone.bin", "-o", "menu.po"});
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "menu.po: 5 strings (3 single, 2 handset)\n");
    const std::string po = readText(folder.path("menu.po"));
    EXPECT_NE(po.find("#. budget 8 bytes\nmsgctxt \"0x00000015 single\"\nmsgid \"Settings\"\nmsgstr \"\"\n"),
              std::string::npos);
    EXPECT_NE(po.find("#. budget 4 bytes\nmsgctxt \"0x00000024 handset\"\nmsgid \"OK\"\nmsgstr \"\"\n"),
              std::string::npos);
    EXPECT_NE(po.find("msgctxt \"0x00000029 handset\"\nmsgid \"设置\""), std::string::npos);
}

TEST(ExportStringsCommand, CodesAndMinimumChooseTheStrings)
{
    TempFolder folder;
    writeFile(folder.path("phone.bin"), kImage);
    ASSERT_TRUE(succeeded(runAtHome(folder, {"export-strings", "phone.bin", "-o", "h.csv", "--codes", "handset"})));
    EXPECT_EQ(readText(folder.path("h.csv")), "address,encoding,budget,source,target\r\n"
                                              "0x00000024,handset,4,OK,\r\n"
                                              "0x00000029,handset,4,设置,\r\n");
    ASSERT_TRUE(succeeded(
        runAtHome(folder, {"export-strings", "phone.bin", "-o", "s.csv", "--codes", "single", "--min-bytes", "5"})));
    EXPECT_EQ(readText(folder.path("s.csv")), "address,encoding,budget,source,target\r\n"
                                              "0x00000015,single,8,Settings,\r\n");
    EXPECT_TRUE(usageError(runAtHome(folder, {"export-strings", "phone.bin", "-o", "x.csv", "--codes", "double"})));
    EXPECT_TRUE(usageError(runAtHome(folder, {"export-strings", "phone.bin", "-o", "x.txt"})));
}

TEST(ExportStringsCommand, MsgfmtChecksThePoFile)
{
    if (!havePeer("msgfmt")) GTEST_SKIP() << "msgfmt (gettext) is not installed";
    TempFolder folder;
    writeFile(folder.path("phone.bin"), kImage);
    ASSERT_TRUE(succeeded(runAtHome(folder, {"export-strings", "phone.bin", "-o", "menu.po"})));
    const RunResult check = runPeer(folder, "msgfmt", {"--check", "-o", "menu.mo", "menu.po"});
    EXPECT_EQ(check.exitCode, 0) << check.err;
    EXPECT_EQ(check.err, "");
}

TEST(ExportStringsCommand, TranslateToolkitReadsAllThreeFormats)
{
    if (!havePeer("po2xliff") || !havePeer("xliff2po") || !havePeer("po2csv") || !havePeer("csv2po"))
        GTEST_SKIP() << "the Translate Toolkit is not installed";
    TempFolder folder;
    writeFile(folder.path("phone.bin"), kImage);
    for (const char* name : {"menu.po", "menu.xlf", "menu.csv"})
        ASSERT_TRUE(succeeded(runAtHome(folder, {"export-strings", "phone.bin", "-o", name})));
    for (const auto& [program, in, out] : {std::tuple{"po2xliff", "menu.po", "po.xlf"},
                                           {"po2csv", "menu.po", "po.csv"},
                                           {"xliff2po", "menu.xlf", "xlf.po"},
                                           {"csv2po", "menu.csv", "csv.po"}}) {
        const RunResult run = runPeer(folder, program, {"--errorlevel=exception", in, out});
        EXPECT_EQ(run.exitCode, 0) << program << ": " << run.err;
        const std::string converted = readText(folder.path(out));
        EXPECT_NE(converted.find("Settings"), std::string::npos) << program;
        EXPECT_NE(converted.find("设置"), std::string::npos) << program;
    }
}

TEST(ImportStringsCommand, FittingTranslationsBecomeOnePatchPaddedWithSpaces)
{
    TempFolder folder;
    writeFile(folder.path("phone.bin"), kImage);
    writeFile(folder.path("zh.csv"), std::string("address,encoding,source,target\r\n"
                                                 "0x00000010,single,Menu,菜单\r\n"
                                                 "0x00000015,single,Settings,Set\r\n"
                                                 "0x0000001E,single,Back,\r\n"
                                                 "0x00000024,handset,OK,是\r\n"));
    const RunResult result = runAtHome(folder, {"import-strings", "phone.bin", "zh.csv", "-o", "zh.s3"});
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "3 written, 0 not written, 1 untranslated\n");
    Bytes expected = kImage;
    const Bytes menu = {0xB2, 0xCB, 0xB5, 0xA5};
    std::copy(menu.begin(), menu.end(), expected.begin() + 0x10);
    const Bytes set = text("Set     ");
    std::copy(set.begin(), set.end(), expected.begin() + 0x15);
    const Bytes yes = {0x66, 0x2F, 0xA1, 0x20};
    std::copy(yes.begin(), yes.end(), expected.begin() + 0x24);
    EXPECT_EQ(patched(folder, "zh.s3"), expected);
}

TEST(ImportStringsCommand, AnEntryThatDoesNotFitWritesNothingAndIsReported)
{
    TempFolder folder;
    writeFile(folder.path("phone.bin"), kImage);
    writeFile(folder.path("zh.csv"), std::string("address,encoding,source,target\r\n"
                                                 "0x00000010,single,Menu,Menus!!\r\n"
                                                 "0x00000015,single,Settings,Set\r\n"
                                                 "0x00000024,handset,OK,\xEA\x84\xA3\r\n"
                                                 "0x0000001E,single,Bock,Zurueck\r\n"
                                                 "0x00100000,single,Far,Near\r\n"));
    const RunResult result =
        runAtHome(folder, {"import-strings", "phone.bin", "zh.csv", "-o", "zh.s3", "--report", "r.csv"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err,
              "0x00000010 single \"Menu\": over budget by 3 bytes\n"
              "0x00000024 handset \"OK\": character U+A123 not encodable in handset codes\n"
              "0x0000001E single \"Bock\": stored text changed\n"
              "0x00100000 single \"Far\": address outside the image\n"
              "zevran-cli: nothing written: 4 of 5 translated entries do not fit (--partial writes the ones "
              "that do)\n");
    EXPECT_FALSE(exists(folder.path("zh.s3")));
    EXPECT_EQ(readText(folder.path("r.csv")), "address,encoding,source,translation,outcome\r\n"
                                              "0x00000010,single,Menu,Menus!!,over budget by 3 bytes\r\n"
                                              "0x00000015,single,Settings,Set,fits\r\n"
                                              "0x00000024,handset,OK,\xEA\x84\xA3,character U+A123 not encodable in "
                                              "handset codes\r\n"
                                              "0x0000001E,single,Bock,Zurueck,stored text changed\r\n"
                                              "0x00100000,single,Far,Near,address outside the image\r\n");
}

TEST(ImportStringsCommand, PartialWritesTheFittingOnesAndStillReportsTheRest)
{
    TempFolder folder;
    writeFile(folder.path("phone.bin"), kImage);
    writeFile(folder.path("zh.csv"), std::string("address,encoding,source,target\r\n"
                                                 "0x00000010,single,Menu,Menus!!\r\n"
                                                 "0x00000015,single,Settings,Set\r\n"));
    const RunResult result = runAtHome(folder, {"import-strings", "phone.bin", "zh.csv", "-o", "zh.s3", "--partial"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, "1 written, 1 not written, 0 untranslated\n");
    EXPECT_EQ(result.err, "0x00000010 single \"Menu\": over budget by 3 bytes\n");
    Bytes expected = kImage;
    const Bytes set = text("Set     ");
    std::copy(set.begin(), set.end(), expected.begin() + 0x15);
    EXPECT_EQ(patched(folder, "zh.s3"), expected);
}

TEST(ImportStringsCommand, AsfFileIsChangedInPlace)
{
    TempFolder folder;
    writeFile(folder.path("phone.asf"), kImage);
    writeFile(folder.path("zh.csv"), std::string("address,encoding,source,target\r\n0x00000029,handset,设置,OK\r\n"));
    ASSERT_TRUE(succeeded(runAtHome(folder, {"import-strings", "phone.asf", "zh.csv", "--in-place"})));
    Bytes expected = kImage;
    const Bytes ok = {0xA1, 0x4F, 0xA1, 0x4B};
    std::copy(ok.begin(), ok.end(), expected.begin() + 0x29);
    EXPECT_EQ(readBytes(folder.path("phone.asf")), expected);
    EXPECT_TRUE(
        failedWith(runAtHome(folder, {"import-strings", "phone.asf", "zh.csv", "-o", "x.s3"}), {"phone.asf", "bin"}));
}

TEST(ImportStringsCommand, BrokenTranslationFileIsNamedWithItsLine)
{
    TempFolder folder;
    writeFile(folder.path("phone.bin"), kImage);
    writeFile(folder.path("zh.csv"), std::string("address,encoding,source,target\r\n0x10,single,Menu,X\r\n"));
    EXPECT_TRUE(failedWith(runAtHome(folder, {"import-strings", "phone.bin", "zh.csv", "-o", "zh.s3"}),
                           {"zh.csv: line 2", "0x10 single"}));
}

TEST(ImportStringsCommand, RoundTripThroughMsgenChangesNoByte)
{
    if (!havePeer("msgen")) GTEST_SKIP() << "msgen (gettext) is not installed";
    TempFolder folder;
    writeFile(folder.path("phone.bin"), kImage);
    ASSERT_TRUE(succeeded(runAtHome(folder, {"export-strings", "phone.bin", "-o", "menu.po"})));
    // msgen fills every msgstr with its msgid.
    ASSERT_EQ(runPeer(folder, "msgen", {"-o", "same.po", "menu.po"}).exitCode, 0);
    const RunResult result = runAtHome(folder, {"import-strings", "phone.bin", "same.po", "-o", "same.s3"});
    ASSERT_TRUE(succeeded(result));
    EXPECT_EQ(result.out, "5 written, 0 not written, 0 untranslated\n");
    EXPECT_EQ(patched(folder, "same.s3"), kImage);
}

TEST(ImportStringsCommand, RoundTripThroughXliffAndCsvChangesNoByte)
{
    TempFolder folder;
    writeFile(folder.path("phone.bin"), kImage);
    ASSERT_TRUE(succeeded(runAtHome(folder, {"export-strings", "phone.bin", "-o", "menu.xlf"})));
    ASSERT_TRUE(succeeded(runAtHome(folder, {"export-strings", "phone.bin", "-o", "menu.csv"})));
    const std::string xliff =
        std::regex_replace(readText(folder.path("menu.xlf")), std::regex("<source>([^<]*)</source>"),
                           "<source>$1</source><target>$1</target>");
    writeFile(folder.path("same.xlf"), xliff);
    const std::string csv =
        std::regex_replace(readText(folder.path("menu.csv")), std::regex(",([^,\r\n]*),\r\n"), ",$1,$1\r\n");
    writeFile(folder.path("same.csv"), csv);
    for (const char* name : {"same.xlf", "same.csv"}) {
        const RunResult result = runAtHome(folder, {"import-strings", "phone.bin", name, "-o", "same.s3"});
        ASSERT_TRUE(succeeded(result)) << name;
        EXPECT_EQ(result.out, "5 written, 0 not written, 0 untranslated\n") << name;
        EXPECT_EQ(patched(folder, "same.s3"), kImage) << name;
    }
}

TEST(ExportStringsCommand, CodePageIconvDoesNotKnowIsNamed)
{
    TempFolder folder;
    writeFile(folder.path("phone.bin"), kImage);
    writeFile(folder.path("zevran.ini"), std::string("[Options]\r\nCode Page=NO-SUCH-PAGE\r\n"));
    EXPECT_TRUE(failedWith(runAtHome(folder, {"export-strings", "phone.bin", "-o", "menu.po"}), {"NO-SUCH-PAGE"}));
    EXPECT_FALSE(exists(folder.path("menu.po")));
}
