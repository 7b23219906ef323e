// The byte view over a 256 MiB image: one repaint of the view (900*700 pixels, every
// byte coloured by its owners and its changes) with the cursor at the start, the middle
// and the end of the image, and a find of hex bytes over the whole image both ways.
// Prints "key value" lines for bench/run.sh.
#include "bytes/byte_text.hpp"
#include "bytes/owner_rows.hpp"
#include "bytes/ui/bytes_view.hpp"
#include "image/byte_edits.hpp"
#include "image/byte_owners.hpp"

#include <QApplication>
#include <QElapsedTimer>
#include <algorithm>
#include <cstdio>
#include <cstring>
#include <random>
#include <vector>

namespace {

using zevran::image::ByteOwner;
using zevran::image::OwnerKind;

constexpr std::size_t kImageBytes = std::size_t{256} << 20;

double median(std::vector<double> values)
{
    std::sort(values.begin(), values.end());
    return values[values.size() / 2];
}

// A tone every 64 KiB, a picture frame every 32 KiB and an edit slot every 16 KiB.
std::vector<ByteOwner> spreadOwners()
{
    std::vector<ByteOwner> owners;
    for (std::int64_t at = 0; at < static_cast<std::int64_t>(kImageBytes); at += 1 << 14) {
        const auto row = static_cast<int>(at >> 14);
        if (row % 4 == 0) owners.push_back({OwnerKind::Tone, row, 0, at, at + 4000});
        if (row % 2 == 1) owners.push_back({OwnerKind::PictureFrame, row, 0, at + 64, at + 64 + 2048});
        owners.push_back({OwnerKind::EditRow, row, 0, at + 16, at + 48});
    }
    return owners;
}

double repaintMs(zevran::bytes::BytesView& view, std::size_t address)
{
    view.setCursor(address);
    std::vector<double> times;
    for (int run = 0; run < 40; ++run) {
        QElapsedTimer clock;
        clock.start();
        view.viewport()->repaint();
        times.push_back(static_cast<double>(clock.nsecsElapsed()) / 1e6);
    }
    return median(times);
}

double findGbPerSecond(const std::vector<std::uint8_t>& image, bool forward)
{
    // Planted near both ends: each search starts past one and walks the image to the other.
    const std::vector<std::uint8_t> pattern{0x4D, 0x4D, 0x4D, 0x44, 0x00, 0x01};
    std::vector<double> times;
    for (int run = 0; run < 5; ++run) {
        QElapsedTimer clock;
        clock.start();
        const auto found = zevran::bytes::findPattern(image, pattern, forward ? 16 : image.size() - 128, forward);
        times.push_back(static_cast<double>(clock.nsecsElapsed()) / 1e9);
        if (!found) std::exit(1);
    }
    return static_cast<double>(image.size()) / median(times) / 1e9;
}

}  // namespace

int main(int argc, char** argv)
{
    QApplication app(argc, argv);
    std::vector<std::uint8_t> image(kImageBytes);
    std::mt19937 noise(25);
    for (std::size_t i = 0; i < image.size(); i += 4) {
        const std::uint32_t word = noise();
        std::memcpy(image.data() + i, &word, 4);
    }
    // The pattern must not occur by chance: make its first bytes rare, then plant it twice.
    for (auto& byte : image)
        if (byte == 0x4D) byte = 0x4E;
    const std::uint8_t planted[] = {0x4D, 0x4D, 0x4D, 0x44, 0x00, 0x01};
    std::memcpy(image.data() + 8, planted, sizeof planted);
    std::memcpy(image.data() + image.size() - 64, planted, sizeof planted);

    const zevran::image::ByteOwners owners(spreadOwners());
    zevran::image::OriginalBytes originals;
    for (std::size_t at = 0; at < image.size(); at += 1 << 20) {
        originals.remember(image, static_cast<std::int64_t>(at + 100), 32);
        image[at + 100] ^= 0xFF;
    }
    zevran::bytes::BytesView view;
    view.resize(900, 700);
    view.setImage(&image);
    view.setOwners(&owners);
    view.setOriginals(&originals);
    view.show();
    QApplication::processEvents();
    std::printf("bytes_repaint_ms_start %.3f\n", repaintMs(view, 0));
    std::printf("bytes_repaint_ms_middle %.3f\n", repaintMs(view, image.size() / 2));
    std::printf("bytes_repaint_ms_end %.3f\n", repaintMs(view, image.size() - 1));
    std::printf("bytes_find_forward_gbps %.2f\n", findGbPerSecond(image, true));
    std::printf("bytes_find_backward_gbps %.2f\n", findGbPerSecond(image, false));
    return 0;
}
