// zevran-picture-reader PICTURE COLOURS: reads a picture file through Qt's image readers
// and writes its plain pixels to standard output (see picture_grid_wire.hpp). COLOURS is
// the 16-colour table of "16.dat" as 128 hex digits, which lets a 4-bit picture with that
// table give its indices. zevran-cli runs it for import-picture, so that no other command
// loads a Qt library. Exit status 1, with the reason on stderr, for a picture it cannot read.
#include "picture_file.hpp"
#include "picture_grid_wire.hpp"

#include <cstdio>
#include <iostream>
#include <string>

namespace {

int hexValue(char c)
{
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    return -1;
}

bool parseColours(const std::string& hex, zevran::pictures::ColourTable& colours)
{
    if (hex.size() != 2 * colours.size()) return false;
    for (std::size_t i = 0; i < colours.size(); ++i) {
        const int high = hexValue(hex[2 * i]);
        const int low = hexValue(hex[2 * i + 1]);
        if (high < 0 || low < 0) return false;
        colours[i] = static_cast<std::uint8_t>(high << 4 | low);
    }
    return true;
}

}  // namespace

int main(int argc, char** argv)
{
    zevran::pictures::ColourTable colours{};
    if (argc != 3 || !parseColours(argv[2], colours)) {
        std::cerr << "usage: zevran-picture-reader PICTURE COLOURS (the 64 bytes of 16.dat in hex)\n";
        return 2;
    }
    try {
        const std::string bytes =
            zevran::pictures::pictureGridBytes(zevran::pictures::readPictureFile(argv[1], colours));
        if (std::fwrite(bytes.data(), 1, bytes.size(), stdout) != bytes.size() || std::fflush(stdout) != 0) return 1;
    } catch (const std::exception& error) {
        std::cerr << error.what() << "\n";
        return 1;
    }
    return 0;
}
