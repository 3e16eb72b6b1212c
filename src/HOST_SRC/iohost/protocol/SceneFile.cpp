#include "protocol/SceneFile.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include "base/TextUtf8.h"

namespace {

constexpr std::uintmax_t LARGEST_FILE = 64u << 20;

} // namespace

std::string CSystemFiles::Read(const std::string& strName) {
    const std::filesystem::path file = PathFromUtf8(strName);
    std::error_code error;
    const std::uintmax_t nSize = std::filesystem::file_size(file, error);
    if (error) {
        Refuse("file", "can't be read");
    }
    if (nSize > LARGEST_FILE) {
        Refuse("file", "is larger than 64 MiB");
    }
    std::ifstream stream(file, std::ios::binary);
    std::string strText((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    if (!stream) {
        Refuse("file", "can't be read");
    }
    return strText;
}

void CSystemFiles::Write(const std::string& strName, const std::string& strText) {
    const std::filesystem::path file = PathFromUtf8(strName);
    // Beside the file first: an interrupted save leaves the older file whole.
    std::filesystem::path newFile = file;
    newFile += ".new";
    std::ofstream stream(newFile, std::ios::binary);
    stream << strText;
    stream.close();
    std::error_code error;
    if (stream) {
        std::filesystem::rename(newFile, file, error);
    }
    if (!stream || error) {
        std::error_code ignored;
        std::filesystem::remove(newFile, ignored);
        Refuse("file", "can't be written");
    }
}

std::string CNoFiles::Read(const std::string& /*strName*/) {
    Refuse("file", "is out of reach here");
}

void CNoFiles::Write(const std::string& /*strName*/, const std::string& /*strText*/) {
    Refuse("file", "is out of reach here");
}
