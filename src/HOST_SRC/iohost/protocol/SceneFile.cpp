#include "protocol/SceneFile.h"

#include <filesystem>
#include <fstream>
#include <iterator>

#include "base/SafeFile.h"
#include "base/TextUtf8.h"

namespace {

constexpr std::uintmax_t LARGEST_FILE = 256u << 20; ///< tens of thousands of nodes

/// The system would take such a name for the part of it before the zero.
bool HasZero(const std::string& strName) {
    return strName.find('\0') != std::string::npos;
}

} // namespace

std::string CSystemFiles::Read(const std::string& strName) {
    const std::filesystem::path file = PathFromUtf8(strName);
    std::error_code error;
    const std::uintmax_t nSize = std::filesystem::file_size(file, error);
    if (error || HasZero(strName)) {
        Refuse("file", "can't be read");
    }
    if (nSize > LARGEST_FILE) {
        Refuse("file", "is larger than 256 MiB");
    }
    std::ifstream stream(file, std::ios::binary);
    std::string strText((std::istreambuf_iterator<char>(stream)), std::istreambuf_iterator<char>());
    if (!stream) {
        Refuse("file", "can't be read");
    }
    return strText;
}

void CSystemFiles::Write(const std::string& strName, const std::string& strText, bool bReplace) {
    const std::filesystem::path file = PathFromUtf8(strName);
    std::error_code error;
    if (!bReplace && std::filesystem::exists(file, error)) {
        Refuse("file", "is there already");
    }
    const std::string strProblem = HasZero(strName) ? CANT_BE_WRITTEN : WriteFileSafely(file, strText);
    if (!strProblem.empty()) {
        Refuse("file", strProblem);
    }
}
