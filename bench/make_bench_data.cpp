// zevran-bench-data: writes the benchmarks' synthetic image to a file, so that
// the command-line comparisons work on the same bytes as the in-process ones.
#include "synthetic_image.hpp"

#include <cstdio>
#include <fstream>
#include <iostream>

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::cerr << "usage: zevran-bench-data OUT.bin\n";
        return 2;
    }
    const auto image = zevran::bench::makeSyntheticImage();
    std::ofstream out(argv[1], std::ios::binary | std::ios::trunc);
    out.write(reinterpret_cast<const char*>(image.data()), static_cast<std::streamsize>(image.size()));
    out.close();
    if (!out) {
        std::perror(argv[1]);
        return 1;
    }
    return 0;
}
