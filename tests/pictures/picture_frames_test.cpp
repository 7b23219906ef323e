#include "pictures/picture_frames.hpp"

#include "image/srecord.hpp"

#include <gtest/gtest.h>

using namespace zevran::pictures;

TEST(PictureFramePath, TrimmedNameAndTwoDigitOrdinal)
{
    EXPECT_EQ(pictureFramePath("/out/", " logo ", 0), "/out/logo-01.bmp");
    EXPECT_EQ(pictureFramePath("/out/", "logo", 2), "/out/logo-03.bmp");
    EXPECT_EQ(pictureFramePath("/", "x", 99), "/x-100.bmp");
}

TEST(FrameGeometry, ReadsTheCells)
{
    FrameGeometry g = frameGeometry({"001", "a", "0X00120000", "3", "2048", "128*160", "16"});
    EXPECT_EQ(g.start, 0x120000);
    EXPECT_EQ(g.frames, 3);
    EXPECT_EQ(g.frameSize, 2048);
    EXPECT_EQ(g.width, 128);
    EXPECT_EQ(g.height, 160);
    EXPECT_EQ(g.depth, 16);
    EXPECT_EQ(frameAddress(g, 2), 0x120000 + 4096);
    EXPECT_EQ(frameAddress(g, -1), 0x120000 - 2048);
}

TEST(PicturePatchRegion, ThreeFramesOf2048BytesMake384FullLines)
{
    zevran::image::ImageState state;
    zevran::image::setImage(state, "/p.bin", std::vector<std::uint8_t>(0x130000, 0x5A));
    auto region = picturePatchRegion(state, {"001", "a", "0X00120000", "3", "2048", "8*8", "16"});
    ASSERT_TRUE(region);
    EXPECT_EQ(region->first, 0x120000);
    EXPECT_EQ(region->last, 0x1217FF);
    const std::string text = zevran::image::sRecordRegionText(region->bytes, 0x120000);
    EXPECT_EQ(std::count(text.begin(), text.end(), '\n'), 384);
    EXPECT_EQ(text.substr(0, 12), "S31500120000");
}

TEST(PicturePatchRegion, ZeroLengthIsMessageOne)
{
    zevran::image::ImageState state;
    zevran::image::setImage(state, "/p.bin", std::vector<std::uint8_t>(16));
    EXPECT_FALSE(picturePatchRegion(state, {"001", "a", "0X00000004", "0", "2048", "8*8", "16"}));
}

TEST(PicturePatchRegion, MoreThan32767FramesIsRefused)
{
    zevran::image::ImageState state;
    zevran::image::setImage(state, "/p.bin", std::vector<std::uint8_t>(16));
    EXPECT_THROW(picturePatchRegion(state, {"001", "a", "0X0", "32768", "1", "8*8", "16"}), std::out_of_range);
}

TEST(PicturePatchRegion, BytesPastTheImageAreRefused)
{
    zevran::image::ImageState state;
    zevran::image::setImage(state, "/p.bin", std::vector<std::uint8_t>(16));
    EXPECT_THROW(picturePatchRegion(state, {"001", "a", "0X00000008", "1", "9", "8*8", "16"}), std::out_of_range);
}
