#include "bytes/owner_rows.hpp"
#include "image/byte_owners.hpp"

#include <gtest/gtest.h>

namespace zevran::bytes {
namespace {

using image::ByteOwner;
using image::ByteOwners;
using image::OwnerKind;

TEST(ByteOwners, ToneRowOwnsItsFirstToLastByte)
{
    const std::vector<tones::ToneSlot> rows{{"001", "0x00000010", "0x0000001F", "16", ""},
                                            {"002", "0x00000100", "0x00000180", "129", ""}};
    const ByteOwners owners(toneOwners(rows));
    EXPECT_FALSE(owners.ownerAt(0x0F));
    EXPECT_EQ(owners.ownerAt(0x10), (ByteOwner{OwnerKind::Tone, 0, 0, 0x10, 0x20}));
    EXPECT_EQ(owners.ownerAt(0x1F), (ByteOwner{OwnerKind::Tone, 0, 0, 0x10, 0x20}));
    EXPECT_FALSE(owners.ownerAt(0x20));
    EXPECT_EQ(owners.ownerAt(0x180), (ByteOwner{OwnerKind::Tone, 1, 0, 0x100, 0x181}));
}

TEST(ByteOwners, PictureRowOwnsEachFrameApart)
{
    // Three frames of 4*2 pixels at 16 bits: 16 bytes each from 0x40.
    const std::vector<pictures::PictureEntry> rows{{"001", "logo", "0X00000040", "3", "16", "4*2", "16"}};
    const ByteOwners owners(pictureOwners(rows));
    EXPECT_EQ(owners.size(), 3u);
    EXPECT_EQ(owners.ownerAt(0x40), (ByteOwner{OwnerKind::PictureFrame, 0, 0, 0x40, 0x50}));
    EXPECT_EQ(owners.ownerAt(0x5F), (ByteOwner{OwnerKind::PictureFrame, 0, 1, 0x50, 0x60}));
    EXPECT_EQ(owners.ownerAt(0x60), (ByteOwner{OwnerKind::PictureFrame, 0, 2, 0x60, 0x70}));
    EXPECT_FALSE(owners.ownerAt(0x70));
}

TEST(ByteOwners, EditRowOwnsItsSlot)
{
    const std::vector<strings::StringEditRow> rows{{"01", "00000200", "00000207", "ABCDEFGH", "8"}};
    const ByteOwners owners(editRowOwners(rows));
    EXPECT_EQ(owners.ownerAt(0x207), (ByteOwner{OwnerKind::EditRow, 0, 0, 0x200, 0x208}));
    EXPECT_FALSE(owners.ownerAt(0x208));
}

TEST(ByteOwners, EditRowComesBeforePictureBeforeToneWhereTheyOverlap)
{
    std::vector<ByteOwner> ranges{{OwnerKind::Tone, 3, 0, 0, 0x1000},
                                  {OwnerKind::PictureFrame, 1, 2, 0x100, 0x200},
                                  {OwnerKind::EditRow, 0, 0, 0x180, 0x188}};
    const ByteOwners owners(ranges);
    const std::vector<ByteOwner> all = owners.ownersAt(0x181);
    ASSERT_EQ(all.size(), 3u);
    EXPECT_EQ(all[0].kind, OwnerKind::EditRow);
    EXPECT_EQ(all[1].kind, OwnerKind::PictureFrame);
    EXPECT_EQ(all[2].kind, OwnerKind::Tone);
    EXPECT_EQ(owners.ownerAt(0x300)->kind, OwnerKind::Tone);
    EXPECT_EQ(owners.ownerAt(0x100)->kind, OwnerKind::PictureFrame);
}

TEST(ByteOwners, LongRangeBeforeManyShortOnesStillOwnsTheirBytes)
{
    std::vector<ByteOwner> ranges{{OwnerKind::Tone, 0, 0, 0, 100000}};
    for (int k = 0; k < 1000; ++k) ranges.push_back({OwnerKind::EditRow, k, 0, 10 + 20 * k, 12 + 20 * k});
    const ByteOwners owners(ranges);
    EXPECT_EQ(owners.ownersAt(50000).size(), 1u);
    EXPECT_EQ(owners.ownersAt(10 + 20 * 999).size(), 2u);
}

TEST(ByteOwners, RowsThatDoNotReadAsRangesOwnNothing)
{
    const std::vector<tones::ToneSlot> tones{{"001", "0x00000020", "0x00000010", "0", ""}, {"002", "", "", "", ""}};
    EXPECT_TRUE(toneOwners(tones).empty());
    const std::vector<pictures::PictureEntry> pictures{{"001", "x", "0X00000040", "2", "0", "0*0", "16"}};
    EXPECT_TRUE(pictureOwners(pictures).empty());
}

}  // namespace
}  // namespace zevran::bytes
