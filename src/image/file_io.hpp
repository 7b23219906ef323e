// Whole-file reads and the safe whole-file write used for phone files.
#pragma once

#include "failure.hpp"

#include <cstdint>
#include <fstream>
#include <span>
#include <stdexcept>
#include <string>
#include <vector>

namespace zevran::image {

// A file that could not be read or written; the message names the path and the cause.
class FileError : public WorkshopError {
public:
    using TypedError::TypedError;
};

// The system's failure `errorNumber` on `path`.
FileError fileSystemError(const std::string& path, int errorNumber);

// Reads the whole file in one block read.
std::vector<std::uint8_t> readWholeFile(const std::string& path);

// Writes the bytes to a temporary file in the same folder and renames it over
// `path`, so a failed or interrupted write never leaves a half-written file behind.
void saveFileSafely(const std::string& path, std::span<const std::uint8_t> bytes);

// Throws FileError unless `path` is a regular file: a folder, device or named pipe
// would make a reader wait for ever or read without end.
void requireRegularFile(const std::string& path);

// A file opened for reading in binary; throws FileError naming the path (also for a folder).
std::ifstream openInputFile(const std::string& path);

// A file created or emptied for writing in binary; throws FileError naming the path.
std::ofstream openOutputFile(const std::string& path);

// Closes an output and throws FileError when what was written did not all reach the disk.
void closeOutputFile(std::ofstream& out, const std::string& path);

// Throws FileError when `output` is the file `input`: a conversion empties its output
// before it reads the input.
void refuseSameFile(const std::string& input, const std::string& output);

}  // namespace zevran::image
