#include "mapped_file.hpp"

#include "file_io.hpp"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zevran::image {

namespace {

constexpr std::uintptr_t kPage = 4096;

// Page-aligned bounds around a window, as madvise wants them.
void adviseWindow(std::span<const std::uint8_t> window, int advice)
{
    if (window.empty()) return;
    // The page start lies inside the same mapping, so it is reached from the window's pointer.
    const auto address = reinterpret_cast<std::uintptr_t>(window.data());
    const auto lead = address & (kPage - 1);
    ::madvise(const_cast<std::uint8_t*>(window.data()) - lead, lead + window.size(), advice);
}

}  // namespace

MappedFile::MappedFile(const std::string& path)
{
    requireRegularFile(path);
    m_fd = ::open(path.c_str(), O_RDONLY | O_CLOEXEC);
    if (m_fd < 0) throw fileSystemError(path, errno);
    struct stat info {};
    if (::fstat(m_fd, &info) != 0) {
        const int error = errno;
        ::close(m_fd);
        throw fileSystemError(path, error);
    }
    if (!S_ISREG(info.st_mode)) {
        ::close(m_fd);
        throw FileError(Reason::NotRegularFile, {path});
    }
    m_size = static_cast<std::uint64_t>(info.st_size);
    if (m_size == 0) return;
    void* base = ::mmap(nullptr, m_size, PROT_READ, MAP_PRIVATE, m_fd, 0);
    if (base == MAP_FAILED) {
        const int error = errno;
        ::close(m_fd);
        throw fileSystemError(path, error);
    }
    m_base = static_cast<std::uint8_t*>(base);
    ::madvise(base, m_size, MADV_SEQUENTIAL);
}

MappedFile::~MappedFile()
{
    if (m_base != nullptr) ::munmap(m_base, m_size);
    if (m_fd >= 0) ::close(m_fd);
}

std::span<const std::uint8_t> MappedFile::window(std::uint64_t offset, std::size_t length)
{
    // The pages stay in the page cache; only this process's mapping of them goes.
    adviseWindow(m_window, MADV_DONTNEED);
    m_window = {};
    if (offset >= m_size) return m_window;
    m_window = {m_base + offset, static_cast<std::size_t>(std::min<std::uint64_t>(length, m_size - offset))};
#ifdef MADV_POPULATE_READ
    // One call maps the whole window instead of a page fault every few pages.
    adviseWindow(m_window, MADV_POPULATE_READ);
#endif
    return m_window;
}

bool isRegularFile(const std::string& path)
{
    struct stat info {};
    return ::stat(path.c_str(), &info) == 0 && S_ISREG(info.st_mode);
}

}  // namespace zevran::image
