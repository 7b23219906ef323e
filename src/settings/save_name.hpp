// The name a save dialog hands back, completed with the extension of the filter the
// user chose. Standard library only, so the rule is the same for the real dialogs and
// for the scripted ones of the tests.
#pragma once

#include <string>
#include <string_view>

namespace zevran::app {

// The extension (without its dot) of the first pattern of a filter's patterns, given
// classic ("*.s3;*.sre") or Qt ("*.s3 *.sre") style: "s3". "" when that pattern matches
// every file ("*.*", "*") or holds no plain extension ("*.s?", "name.*").
std::string filterExtension(std::string_view patterns);

// `name` with "." and the filter's extension added when its file name has none:
// "tonepatch" with "*.s3;*.sre" gives "tonepatch.s3". A file name with a dot after its
// first character keeps its own extension ("x.bin" stays "x.bin"); an empty name, a
// name ending in "/" and a filter of every file add nothing.
std::string withFilterExtension(std::string_view name, std::string_view patterns);

}  // namespace zevran::app
