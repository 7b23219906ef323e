#include "image/file_io.hpp"
#include "image/temporary_output.hpp"

#include "support/temp_folder.hpp"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>

using namespace zevran::image;
using zevran::test::readText;
using zevran::test::TempFolder;
using zevran::test::writeFile;

namespace {

std::vector<std::string> namesIn(const TempFolder& folder)
{
    std::vector<std::string> names;
    for (const auto& entry : std::filesystem::directory_iterator(folder.root()))
        names.push_back(entry.path().filename().string());
    std::sort(names.begin(), names.end());
    return names;
}

}  // namespace

TEST(TemporaryOutput, CommitReplacesTheTargetAndLeavesNoTemporary)
{
    TempFolder folder;
    writeFile(folder.path("big.bin"), "old bytes");
    {
        TemporaryOutput output(folder.path("big.bin"), kConvertingMarker);
        output.stream() << "new";
        EXPECT_EQ(readText(folder.path("big.bin")), "old bytes");
        output.commit();
    }
    EXPECT_EQ(readText(folder.path("big.bin")), "new");
    EXPECT_EQ(namesIn(folder), std::vector<std::string>{"big.bin"});
}

TEST(TemporaryOutput, DroppedOutputLeavesTheTargetAsItWas)
{
    TempFolder folder;
    writeFile(folder.path("big.bin"), "old bytes");
    {
        TemporaryOutput output(folder.path("big.bin"), kConvertingMarker);
        output.stream() << "half of the new";
    }
    EXPECT_EQ(readText(folder.path("big.bin")), "old bytes");
    EXPECT_EQ(namesIn(folder), std::vector<std::string>{"big.bin"});
}

TEST(TemporaryOutput, DroppedOutputOfANewTargetLeavesNothing)
{
    TempFolder folder;
    {
        TemporaryOutput output(folder.path("new.bin"), kConvertingMarker);
        output.stream() << "partial";
    }
    EXPECT_TRUE(namesIn(folder).empty());
}

TEST(TemporaryOutput, StaleTemporariesOfTheTargetAreRemovedOthersKept)
{
    TempFolder folder;
    writeFile(folder.path("big.bin.converting-Ab12Cd"), "left by a killed run");
    writeFile(folder.path("big.bin.converting-seven77"), "not ours: seven characters");
    writeFile(folder.path("other.bin.converting-Ab12Cd"), "another target's");
    removeStaleTemporaries(folder.path("big.bin"), kConvertingMarker);
    EXPECT_EQ(namesIn(folder), (std::vector<std::string>{"big.bin.converting-seven77", "other.bin.converting-Ab12Cd"}));
}

TEST(SaveFileSafely, StaleSavingFileOfAKilledSaveIsRemoved)
{
    TempFolder folder;
    writeFile(folder.path("phone.asf"), "old");
    writeFile(folder.path("phone.asf.saving-x1Y2z3"), std::string(4096, 'S'));
    const std::vector<std::uint8_t> bytes{'n', 'e', 'w'};
    saveFileSafely(folder.path("phone.asf"), bytes);
    EXPECT_EQ(readText(folder.path("phone.asf")), "new");
    EXPECT_EQ(namesIn(folder), std::vector<std::string>{"phone.asf"});
}

TEST(SaveFileSafely, ExistingFileKeepsItsPermissions)
{
    TempFolder folder;
    writeFile(folder.path("phone.asf"), "old");
    std::filesystem::permissions(folder.path("phone.asf"), std::filesystem::perms(0640));
    const std::vector<std::uint8_t> bytes{'n'};
    saveFileSafely(folder.path("phone.asf"), bytes);
    EXPECT_EQ(
        static_cast<int>(std::filesystem::status(folder.path("phone.asf")).permissions() & std::filesystem::perms::all),
        0640);
}
