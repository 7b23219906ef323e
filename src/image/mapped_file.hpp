// A file read through a read-only mapping, a window at a time: the bytes are read in
// place, with no copy, and only the window in hand stays resident, so a file of any
// size costs a few MiB of memory. A file that another program cuts short while it is
// mapped ends the process (SIGBUS), so zevran-cli maps its inputs and the window,
// which holds the user's unsaved image, reads them as streams.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace zevran::image {

class MappedFile {
public:
    // Throws FileError naming the path when it cannot be opened or mapped, or is not
    // a regular file (a folder, device or pipe).
    explicit MappedFile(const std::string& path);
    ~MappedFile();
    MappedFile(const MappedFile&) = delete;
    MappedFile& operator=(const MappedFile&) = delete;

    std::uint64_t size() const { return m_size; }

    // The bytes from `offset`, at most `length` of them (fewer at the file's end),
    // brought in ahead of their reading. The window handed out before is let go: its
    // bytes must not be looked at any more.
    std::span<const std::uint8_t> window(std::uint64_t offset, std::size_t length);

private:
    int m_fd = -1;
    std::uint8_t* m_base = nullptr;
    std::uint64_t m_size = 0;
    std::span<const std::uint8_t> m_window;
};

// True for a regular file, which can be mapped; pipes and the like are read as streams.
bool isRegularFile(const std::string& path);

}  // namespace zevran::image
