#include "file_io.hpp"

#include "temporary_output.hpp"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <filesystem>
#include <memory>
#include <random>
#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

namespace zevran::image {

namespace {

struct FdCloser {
    void operator()(int* fd) const
    {
        if (*fd >= 0) ::close(*fd);
        delete fd;
    }
};
using UniqueFd = std::unique_ptr<int, FdCloser>;

UniqueFd openFd(const std::string& path, int flags, mode_t mode = 0)
{
    int fd = ::open(path.c_str(), flags | O_CLOEXEC, mode);
    return UniqueFd(new int(fd));
}

void writeAll(int fd, std::span<const std::uint8_t> bytes, const std::string& path)
{
    std::size_t done = 0;
    while (done < bytes.size()) {
        ssize_t n = ::write(fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n <= 0) throw fileSystemError(path, n < 0 ? errno : ENOSPC);
        done += static_cast<std::size_t>(n);
    }
}

// A phone image of many megabytes is touched page by page on its first read; asking
// for huge pages first turns thousands of page faults into a few dozen.
void preferHugePages(void* start, std::size_t length)
{
#ifdef MADV_HUGEPAGE
    constexpr std::uintptr_t kHugePage = 2u << 20;
    if (length < 2 * kHugePage) return;
    const auto address = reinterpret_cast<std::uintptr_t>(start);
    const auto first = (address + kHugePage - 1) & ~(kHugePage - 1);
    const auto last = (address + length) & ~(kHugePage - 1);
    // The aligned start is reached from the mapping's own pointer, not made from a number.
    if (last > first) ::madvise(static_cast<char*>(start) + (first - address), last - first, MADV_HUGEPAGE);
#else
    (void)start;
    (void)length;
#endif
}

// A folder holds no bytes to read, and a device such as /dev/zero never ends.
void refuseFolderOrDevice(const std::string& path, mode_t mode)
{
    if (S_ISDIR(mode)) throw FileError(Reason::IsFolder, {path});
    if (S_ISCHR(mode) || S_ISBLK(mode)) throw FileError(Reason::IsDevice, {path});
}

}  // namespace

FileError fileSystemError(const std::string& path, int errorNumber)
{
    return FileError(Reason::SystemError, {path, std::to_string(errorNumber)});
}


void requireRegularFile(const std::string& path)
{
    struct stat info {};
    if (::stat(path.c_str(), &info) != 0) throw fileSystemError(path, errno);
    refuseFolderOrDevice(path, info.st_mode);
    if (!S_ISREG(info.st_mode)) throw FileError(Reason::IsDeviceOrPipe, {path});
}

std::ifstream openInputFile(const std::string& path)
{
    // A missing file is left for the stream to report.
    struct stat info {};
    if (::stat(path.c_str(), &info) == 0) refuseFolderOrDevice(path, info.st_mode);
    errno = 0;
    std::ifstream in(path, std::ios::binary);
    if (!in) throw fileSystemError(path, errno ? errno : ENOENT);
    return in;
}

std::ofstream openOutputFile(const std::string& path)
{
    errno = 0;
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    if (!out) throw fileSystemError(path, errno ? errno : EIO);
    return out;
}

void closeOutputFile(std::ofstream& out, const std::string& path)
{
    out.close();
    if (!out) throw FileError(Reason::DiskFull, {path});
}

void refuseSameFile(const std::string& input, const std::string& output)
{
    std::error_code error;
    if (std::filesystem::equivalent(input, output, error)) throw FileError(Reason::OverwritesInput, {output, input});
}

std::vector<std::uint8_t> readWholeFile(const std::string& path)
{
    // Opened without waiting, so a named pipe nobody writes to reads as empty instead
    // of holding the window; reads then wait as usual.
    UniqueFd fd = openFd(path, O_RDONLY | O_NONBLOCK);
    if (*fd < 0) throw fileSystemError(path, errno);
    struct stat info {};
    if (::fstat(*fd, &info) != 0) throw fileSystemError(path, errno);
    ::fcntl(*fd, F_SETFL, ::fcntl(*fd, F_GETFL) & ~O_NONBLOCK);
    refuseFolderOrDevice(path, info.st_mode);
    std::vector<std::uint8_t> bytes;
    // A regular file is read in one block; other files (pipes, devices) as they come.
    const std::size_t size = S_ISREG(info.st_mode) ? static_cast<std::size_t>(info.st_size) : 0;
    bytes.reserve(size);
    preferHugePages(bytes.data(), size);
    bytes.resize(size);
    std::size_t done = 0;
    for (;;) {
        if (done == bytes.size()) {
            if (S_ISREG(info.st_mode)) {
                std::uint8_t probe;
                ssize_t extra = ::read(*fd, &probe, 1);
                if (extra == 0) break;
                if (extra < 0 && errno == EINTR) continue;
                if (extra < 0) throw fileSystemError(path, errno);
                bytes.push_back(probe);
                ++done;
            }
            bytes.resize(bytes.size() + (1 << 20));
        }
        ssize_t n = ::read(*fd, bytes.data() + done, bytes.size() - done);
        if (n < 0 && errno == EINTR) continue;
        if (n < 0) throw fileSystemError(path, errno);
        if (n == 0) break;
        done += static_cast<std::size_t>(n);
    }
    bytes.resize(done);
    return bytes;
}

namespace {

// Writes the bytes into an unnamed file of the target's folder, which gets a name only
// once it is complete: a crash or kill during the write leaves nothing behind. False,
// with nothing written, where the file system has no unnamed files.
bool saveThroughUnnamedFile(const std::string& target, mode_t mode, std::span<const std::uint8_t> bytes)
{
#ifdef O_TMPFILE
    const std::filesystem::path folder = std::filesystem::path(target).has_parent_path()
                                             ? std::filesystem::path(target).parent_path()
                                             : std::filesystem::path(".");
    UniqueFd fd = openFd(folder.string(), O_TMPFILE | O_WRONLY, mode);
    if (*fd < 0) return false;
    ::fchmod(*fd, mode);
    writeAll(*fd, bytes, target);
    if (::fsync(*fd) != 0) throw fileSystemError(target, errno);
    // Linked in under a fresh name beside the target, then renamed over it.
    const std::string self = "/proc/self/fd/" + std::to_string(*fd);
    std::mt19937 random{std::random_device{}()};
    for (int attempt = 0; attempt < 100; ++attempt) {
        std::string name = target + std::string(kSavingMarker);
        for (int i = 0; i < 6; ++i) name += "abcdefghijklmnopqrstuvwxyz0123456789"[random() % 36];
        if (::linkat(AT_FDCWD, self.c_str(), AT_FDCWD, name.c_str(), AT_SYMLINK_FOLLOW) != 0) {
            if (errno == EEXIST) continue;
            return false;  // no /proc, or a file system that cannot link it: the named way
        }
        if (::rename(name.c_str(), target.c_str()) != 0) {
            const int error = errno;
            ::unlink(name.c_str());
            throw fileSystemError(target, error);
        }
        return true;
    }
    return false;
#else
    (void)target;
    (void)mode;
    (void)bytes;
    return false;
#endif
}

}  // namespace

void saveFileSafely(const std::string& path, std::span<const std::uint8_t> bytes)
{
    struct stat original {};
    const bool exists = ::stat(path.c_str(), &original) == 0;
    if (exists && S_ISDIR(original.st_mode)) throw FileError(Reason::IsFolder, {path});
    // Renaming over a file needs only its folder to be writable: the file must be too.
    if (exists && S_ISREG(original.st_mode) && ::access(path.c_str(), W_OK) != 0) throw fileSystemError(path, errno);
    if (exists && !S_ISREG(original.st_mode)) {
        // A device or pipe takes the bytes where it is: renaming over it would replace it.
        UniqueFd fd = openFd(path, O_WRONLY);
        if (*fd < 0) throw fileSystemError(path, errno);
        writeAll(*fd, bytes, path);
        int closing = *fd;
        *fd = -1;
        if (::close(closing) != 0) throw fileSystemError(path, errno);
        return;
    }
    // Through a link the file it names is replaced, and the link stays.
    std::string target = path;
    if (exists) {
        std::unique_ptr<char, decltype(&std::free)> real(::realpath(path.c_str(), nullptr), &std::free);
        if (real) target = real.get();
    }
    removeStaleTemporaries(target, kSavingMarker);
    const mode_t mask = ::umask(0);
    ::umask(mask);
    const mode_t mode = exists ? original.st_mode & 07777 : 0666 & ~mask;
    if (saveThroughUnnamedFile(target, mode, bytes)) return;
    std::string temporary = target + std::string(kSavingMarker) + "XXXXXX";
    int rawFd = ::mkstemp(temporary.data());
    if (rawFd < 0) throw fileSystemError(temporary, errno);
    UniqueFd fd(new int(rawFd));
    try {
        // A new file gets the usual permissions rather than the private ones of mkstemp.
        ::fchmod(*fd, mode);
        writeAll(*fd, bytes, temporary);
        if (::fsync(*fd) != 0) throw fileSystemError(temporary, errno);
        int closing = *fd;
        *fd = -1;
        if (::close(closing) != 0) throw fileSystemError(temporary, errno);
        if (::rename(temporary.c_str(), target.c_str()) != 0) throw fileSystemError(path, errno);
    } catch (...) {
        ::unlink(temporary.c_str());
        throw;
    }
}

}  // namespace zevran::image
