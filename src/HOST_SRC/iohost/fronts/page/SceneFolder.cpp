#include "fronts/page/SceneFolder.h"

#include <algorithm>
#include <chrono>

#include "base/SafeFile.h"
#include "base/TextUtf8.h"

namespace {

bool IsWithin(const std::filesystem::path& file, const std::filesystem::path& folder) {
    return std::mismatch(folder.begin(), folder.end(), file.begin(), file.end()).first == folder.end();
}

long long MillisecondsSince1970(std::filesystem::file_time_type time) {
    const auto system = std::chrono::file_clock::to_sys(time).time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(system).count();
}

} // namespace

CSceneFolder::CSceneFolder(std::filesystem::path folder, unsigned short nPort) : m_folder(std::move(folder)) {
    if (nPort == 0) {
        return;
    }
    const std::string strPort = std::to_string(nPort);
    m_unsaved = m_folder / (".unsaved-" + strPort + ".json");
    m_left = m_folder / (".left-" + strPort + ".json");
    std::error_code error;
    std::filesystem::rename(m_unsaved, m_left, error); // most often there is none
    const auto time = std::filesystem::last_write_time(m_left, error);
    if (!error) {
        m_leftScene = {FileNameIn(Json::parse(m_files.Read(Utf8(m_left)), nullptr, false)),
                       MillisecondsSince1970(time)};
    }
}

std::string CSceneFolder::Read(const std::string& strName) {
    return m_files.Read(Place(strName));
}

void CSceneFolder::Write(const std::string& strName, const std::string& strText) {
    m_files.Write(Place(strName), strText);
}

std::vector<SSceneFileInfo> CSceneFolder::List() {
    std::vector<SSceneFileInfo> files;
    std::error_code error;
    for (auto entry = std::filesystem::recursive_directory_iterator(m_folder, error);
         !error && entry != std::filesystem::recursive_directory_iterator(); entry.increment(error)) {
        const std::filesystem::path& path = entry->path();
        const bool bHidden = path.filename().native().front() == '.';
        if (entry->is_regular_file(error) && !entry->is_symlink(error) && !bHidden && path.extension() == ".json") {
            files.push_back({Utf8(path.lexically_relative(m_folder)), entry->file_size(error),
                             MillisecondsSince1970(entry->last_write_time(error))});
        }
    }
    std::ranges::sort(files, {}, &SSceneFileInfo::strName);
    return files;
}

std::string CSceneFolder::ReadLeft() {
    if (!m_leftScene) {
        Refuse("op", "nothing unsaved was left");
    }
    return m_files.Read(Utf8(m_left));
}

void CSceneFolder::ForgetLeft() {
    std::error_code error;
    std::filesystem::remove(m_left, error);
    m_leftScene.reset();
}

std::string CSceneFolder::NameOf(const std::string& strFile) const {
    const std::filesystem::path folder = RealPath(m_folder);
    const std::filesystem::path file = RealPath(PathFromUtf8(strFile));
    return !folder.empty() && IsWithin(file, folder) ? Utf8(file.lexically_relative(folder)) : std::string();
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
