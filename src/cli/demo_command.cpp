// make-demo: writes the demo phone file, its picture table and spare tones into a
// folder, so that every tab and command has something to work on.
#include "cli_args.hpp"
#include "command.hpp"
#include "demo_firmware.hpp"

#include "image/file_io.hpp"
#include "image/hex_text.hpp"

#include <filesystem>
#include <iostream>

namespace zevran::cli {

namespace {

using namespace zevran::image;

int runMakeDemo(const std::vector<std::string>& words, const Context&)
{
    Arguments args(words, {}, {});
    args.expectPositional(1, "make-demo DIR");
    const std::filesystem::path folder = args.positional()[0];
    std::error_code error;
    std::filesystem::create_directories(folder / "tones", error);
    if (error) throw FileError((folder / "tones").string() + ": " + error.message());
    const DemoFirmware demo = makeDemoFirmware();
    // The same bytes twice: a "bin" file takes patches, an "asf" file is edited in place.
    saveFileSafely((folder / "demo.bin").string(), demo.image);
    saveFileSafely((folder / "demo.asf").string(), demo.image);
    const std::string& table = demo.pictureTable;
    saveFileSafely((folder / "demo-pictures.txt").string(),
                   std::span(reinterpret_cast<const std::uint8_t*>(table.data()), table.size()));
    for (const DemoFile& tone : demo.spareTones) saveFileSafely((folder / "tones" / tone.name).string(), tone.bytes);
    std::string out;
    for (const PlantedItem& item : demo.planted)
        out += "0x" + HexPad(item.offset, 8) + " " + std::to_string(item.size) + " " + item.what + "\n";
    std::cout << out;
    return 0;
}

}  // namespace

std::vector<Command> demoCommands()
{
    return {
        {"make-demo", "DIR",
         "writes demo.bin, demo.asf (the same made-up firmware), demo-pictures.txt and tones/*.mmf into DIR, "
         "and lists what lies where",
         "", runMakeDemo},
    };
}

}  // namespace zevran::cli
