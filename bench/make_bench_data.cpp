// zevran-bench-data: writes the benchmarks' synthetic image to a file, so that
// the command-line comparisons work on the same bytes as the in-process ones. With
// --strings it writes a firmware-like image of string tables among machine code and
// noise instead, for the translation round trip.
#include "synthetic_image.hpp"

#include "strings/firmware_like_image.hpp"

#include <cstdio>
#include <fstream>
#include <iostream>
#include <string>

int main(int argc, char** argv)
{
    const bool strings = argc == 3 && std::string(argv[1]) == "--strings";
    if (argc != 2 && !strings) {
        std::cerr << "usage: zevran-bench-data [--strings] OUT.bin\n";
        return 2;
    }
    // 5 MiB of the firmware-like image hold some 12,000 strings.
    const auto image =
        strings ? zevran::test::FirmwareLikeMaker(11).make(5 << 20).bytes : zevran::bench::makeSyntheticImage();
    const char* path = argv[argc - 1];
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(image.data()), static_cast<std::streamsize>(image.size()));
    out.close();
    if (!out) {
        std::perror(path);
        return 1;
    }
    return 0;
}
