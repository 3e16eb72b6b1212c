#include "fronts/page/SceneFolder.h"

#include <algorithm>

#include "base/SafeFile.h"
#include "base/TextUtf8.h"

namespace {

bool IsWithin(const std::filesystem::path& file, const std::filesystem::path& folder) {
    return std::mismatch(folder.begin(), folder.end(), file.begin(), file.end()).first == folder.end();
}

} // namespace

std::string CSceneFolder::Read(const std::string& strName) {
    return m_files.Read(Place(strName));
}

void CSceneFolder::Write(const std::string& strName, const std::string& strText) {
    m_files.Write(Place(strName), strText);
}

/// The file's path; a name that leads out of the folder is refused.
std::string CSceneFolder::Place(const std::string& strName) const {
    constexpr char OUTSIDE[] = "must be the name of a file in the folder of scenes";

    const std::filesystem::path name = PathFromUtf8(strName);
    if (name.empty() || name.has_root_path() || strName.find('\0') != std::string::npos ||
        std::ranges::find(name, std::filesystem::path("..")) != name.end()) {
        Refuse("file", OUTSIDE);
    }
    const std::filesystem::path folder = RealPath(m_folder);
    if (folder.empty()) {
        Refuse("file", "there is no folder of scenes");
    }
    const std::filesystem::path file = folder / name;
    for (const std::filesystem::path& place : {file.parent_path(), file}) {
        // A link that leads nowhere now could be written through.
        const std::filesystem::path real = RealPath(place);
        std::error_code error;
        if (real.empty() ? std::filesystem::is_symlink(place, error) : !IsWithin(real, folder)) {
            Refuse("file", OUTSIDE);
        }
    }
    return Utf8(file);
}
