#include "phone_argument.hpp"

#include "image/phone_file.hpp"

#include <stdexcept>

namespace zevran::cli {

image::ImageState openPhoneFile(const std::string& path)
{
    image::ImageState state;
    try {
        image::loadPhoneFile(state, path);
    } catch (const image::EmptyPhoneFile&) {
        throw std::runtime_error(path + ": the file is empty (0 bytes)");
    }
    return state;
}

}  // namespace zevran::cli
