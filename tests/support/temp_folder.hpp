// A fresh folder under /tmp for one test, removed with everything in it afterwards.
#pragma once

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <stdexcept>
#include <string>
#include <vector>

namespace zevran::test {

class TempFolder {
public:
    TempFolder()
    {
        std::string pattern = (std::filesystem::temp_directory_path() / "zevran-test-XXXXXX").string();
        if (!::mkdtemp(pattern.data())) throw std::runtime_error("cannot create a temporary folder");
        m_path = pattern;
    }
    ~TempFolder()
    {
        std::error_code ignored;
        std::filesystem::remove_all(m_path, ignored);
    }
    TempFolder(const TempFolder&) = delete;
    TempFolder& operator=(const TempFolder&) = delete;

    std::string path(const std::string& name) const { return (m_path / name).string(); }
    const std::filesystem::path& root() const { return m_path; }

private:
    std::filesystem::path m_path;
};

inline void writeFile(const std::string& path, const std::string& text)
{
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out.write(text.data(), static_cast<std::streamsize>(text.size()));
}

inline void writeFile(const std::string& path, const std::vector<std::uint8_t>& bytes)
{
    writeFile(path, std::string(bytes.begin(), bytes.end()));
}

inline std::string readText(const std::string& path)
{
    std::ifstream in(path, std::ios::binary);
    return std::string(std::istreambuf_iterator<char>(in), std::istreambuf_iterator<char>());
}

inline std::vector<std::uint8_t> readBytes(const std::string& path)
{
    std::string text = readText(path);
    return std::vector<std::uint8_t>(text.begin(), text.end());
}

}  // namespace zevran::test
