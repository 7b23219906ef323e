// zevran-bench-changed: a copy of an image with COUNT single bytes changed, one in each
// of COUNT equal slices at a place drawn from a fixed seed, so no two changes touch and
// `zevran-cli diff` must list exactly COUNT regions.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <vector>

int main(int argc, char** argv)
{
    if (argc != 4) {
        std::cerr << "usage: zevran-bench-changed IN.bin OUT.bin COUNT\n";
        return 2;
    }
    std::error_code error;
    const auto size = std::filesystem::file_size(argv[1], error);
    std::vector<char> image(error ? 0 : size);
    std::ifstream in(argv[1], std::ios::binary);
    in.read(image.data(), static_cast<std::streamsize>(image.size()));
    const std::size_t count = std::strtoull(argv[3], nullptr, 10);
    if (error || !in || count == 0 || image.size() < 2 * count) {
        std::cerr << argv[1] << ": unreadable, or too short for " << argv[3] << " changes\n";
        return 1;
    }
    // Each slice keeps its last byte: a change never sits next to the next slice's one.
    const std::size_t slice = image.size() / count;
    std::uint64_t state = 0x5A455652414E4446;  // "ZEVRANDF"
    for (std::size_t k = 0; k < count; ++k) {
        state = state * 6364136223846793005ULL + 1442695040888963407ULL;
        const std::size_t at = k * slice + (state >> 33) % (slice - 1);
        image[at] = static_cast<char>(~image[at]);
    }
    std::ofstream out(argv[2], std::ios::binary | std::ios::trunc);
    out.write(image.data(), static_cast<std::streamsize>(image.size()));
    out.close();
    if (!out) {
        std::perror(argv[2]);
        return 1;
    }
    return 0;
}
