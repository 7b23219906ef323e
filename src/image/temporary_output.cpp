#include "temporary_output.hpp"

#include "file_io.hpp"

#include <cerrno>
#include <filesystem>
#include <sys/stat.h>
#include <unistd.h>

namespace zevran::image {

void removeStaleTemporaries(const std::string& target, std::string_view marker)
{
    const std::filesystem::path path(target);
    const std::string prefix = path.filename().string() + std::string(marker);
    const std::filesystem::path folder = path.has_parent_path() ? path.parent_path() : std::filesystem::path(".");
    std::error_code error;
    for (std::filesystem::directory_iterator entry(folder, error), end; !error && entry != end;
         entry.increment(error)) {
        const std::string name = entry->path().filename().string();
        // mkstemp's six characters follow the marker, and nothing else does.
        if (name.size() == prefix.size() + 6 && name.rfind(prefix, 0) == 0 && entry->is_regular_file(error))
            std::filesystem::remove(entry->path(), error);
    }
}

TemporaryOutput::TemporaryOutput(std::string target, std::string_view marker) : m_target(std::move(target))
{
    // Renaming over a file needs only its folder to be writable: the file must be too.
    if (::access(m_target.c_str(), F_OK) == 0 && ::access(m_target.c_str(), W_OK) != 0)
        throw fileSystemError(m_target, errno);
    removeStaleTemporaries(m_target, marker);
    m_path = m_target + std::string(marker) + "XXXXXX";
    const int fd = ::mkstemp(m_path.data());
    if (fd < 0) throw fileSystemError(m_path, errno);
    // The finished file gets the usual permissions rather than the private ones of mkstemp.
    const mode_t mask = ::umask(0);
    ::umask(mask);
    ::fchmod(fd, 0666 & ~mask);
    ::close(fd);
    m_stream.open(m_path, std::ios::binary | std::ios::trunc);
    if (!m_stream) {
        ::unlink(m_path.c_str());
        throw fileSystemError(m_path, errno);
    }
}

TemporaryOutput::~TemporaryOutput()
{
    if (m_committed) return;
    m_stream.close();
    ::unlink(m_path.c_str());
}

void TemporaryOutput::commit()
{
    closeOutputFile(m_stream, m_target);
    if (::rename(m_path.c_str(), m_target.c_str()) != 0) throw fileSystemError(m_target, errno);
    m_committed = true;
}

}  // namespace zevran::image
