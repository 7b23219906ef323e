#include "picture_reader_process.hpp"

#include "pictures/picture_file.hpp"
#include "pictures/picture_grid_wire.hpp"

#include <cerrno>
#include <cstring>
#include <filesystem>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

extern char** environ;

namespace zevran::cli {

namespace {

using pictures::PictureFileError;

constexpr const char* kReaderName = "zevran-picture-reader";

std::string hexOf(const pictures::ColourTable& colours)
{
    static constexpr char digits[] = "0123456789ABCDEF";
    std::string hex;
    for (std::uint8_t byte : colours) hex += {digits[byte >> 4], digits[byte & 0x0F]};
    return hex;
}

// Everything the descriptor gives until its end.
std::string readAll(int fd)
{
    std::string bytes;
    char block[1 << 16];
    for (;;) {
        const ssize_t got = ::read(fd, block, sizeof block);
        if (got > 0) bytes.append(block, static_cast<std::size_t>(got));
        else if (got == 0 || errno != EINTR) break;
    }
    return bytes;
}

struct ReaderRun {
    int status = -1;
    std::string out;
    std::string err;
};

// Runs the reader with its stdout and stderr on pipes. The picture's pixels come first,
// then the reason of a failure, which is one short line.
ReaderRun runReader(const std::string& reader, const std::string& picture, const std::string& colours)
{
    int out[2], err[2];
    if (::pipe(out) != 0) throw PictureFileError(reader + ": " + std::strerror(errno));
    if (::pipe(err) != 0) {
        ::close(out[0]), ::close(out[1]);
        throw PictureFileError(reader + ": " + std::strerror(errno));
    }
    posix_spawn_file_actions_t actions;
    ::posix_spawn_file_actions_init(&actions);
    ::posix_spawn_file_actions_adddup2(&actions, out[1], STDOUT_FILENO);
    ::posix_spawn_file_actions_adddup2(&actions, err[1], STDERR_FILENO);
    for (int fd : {out[0], out[1], err[0], err[1]}) ::posix_spawn_file_actions_addclose(&actions, fd);
    std::string program = reader, path = picture, table = colours;
    char* argv[] = {program.data(), path.data(), table.data(), nullptr};
    pid_t pid = 0;
    const int spawned = ::posix_spawn(&pid, reader.c_str(), &actions, nullptr, argv, environ);
    ::posix_spawn_file_actions_destroy(&actions);
    ::close(out[1]), ::close(err[1]);
    ReaderRun run;
    if (spawned == 0) {
        run.out = readAll(out[0]);
        run.err = readAll(err[0]);
        while (::waitpid(pid, &run.status, 0) < 0 && errno == EINTR) {}
    }
    ::close(out[0]), ::close(err[0]);
    if (spawned != 0) throw PictureFileError(reader + ": cannot be run (" + std::strerror(spawned) + ")");
    return run;
}

}  // namespace

std::string pictureReaderPath()
{
    std::error_code error;
    const std::filesystem::path self = std::filesystem::read_symlink("/proc/self/exe", error);
    if (error) return {};
    const std::filesystem::path folder = self.parent_path();
    for (const std::filesystem::path& candidate :
         {folder / kReaderName, folder / ZEVRAN_RELATIVE_READER_DIR / kReaderName}) {
        if (std::filesystem::is_regular_file(candidate, error) && ::access(candidate.c_str(), X_OK) == 0)
            return candidate.lexically_normal().string();
    }
    return {};
}

pictures::PictureGrid readPictureThroughReader(const std::string& path, const pictures::ColourTable& colours)
{
    const std::string reader = pictureReaderPath();
    if (reader.empty())
        throw PictureFileError(std::string(kReaderName) +
                               ", which reads pictures for zevran-cli, is neither beside it nor in " +
                               ZEVRAN_RELATIVE_READER_DIR + " from its folder");
    const ReaderRun run = runReader(reader, path, hexOf(colours));
    if (!WIFEXITED(run.status) || WEXITSTATUS(run.status) != 0) {
        std::string reason = run.err;
        while (!reason.empty() && (reason.back() == '\n' || reason.back() == '\r')) reason.pop_back();
        throw PictureFileError(reason.empty() ? path + ": " + kReaderName + " ended without reading it" : reason);
    }
    auto picture = pictures::pictureGridFromBytes(run.out);
    if (!picture) throw PictureFileError(path + ": " + kReaderName + " gave no picture");
    return std::move(*picture);
}

}  // namespace zevran::cli
