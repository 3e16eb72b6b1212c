#include "fronts/page/SceneFolder.h"

#include <algorithm>
#include <chrono>
#include <iterator>

#include "base/HostLine.h"
#include "base/SafeFile.h"
#include "base/TextUtf8.h"

namespace {

bool IsWithin(const std::filesystem::path& file, const std::filesystem::path& folder) {
    return std::mismatch(folder.begin(), folder.end(), file.begin(), file.end()).first == folder.end();
}

bool IsHidden(const std::filesystem::path& name) {
    return name.native().starts_with('.') && name != ".";
}

long long MillisecondsSince1970(std::filesystem::file_time_type time) {
    const auto system = std::chrono::file_clock::to_sys(time).time_since_epoch();
    return std::chrono::duration_cast<std::chrono::milliseconds>(system).count();
}

} // namespace

std::filesystem::path CSceneFolder::TakeOver(unsigned short nPort) {
    const std::string strPort = std::to_string(nPort);
    m_unsaved = m_folder / (".unsaved-" + strPort + ".json");
    m_left = m_folder / (".left-" + strPort + ".json");
    std::error_code error;
    if (std::filesystem::exists(m_unsaved, error)) {
        const auto timeLeft = std::filesystem::last_write_time(m_left, error);
        if (!error) { // nobody has decided about it yet: from now on it's a scene like others
            const std::string strTime = std::to_string(MillisecondsSince1970(timeLeft));
            std::filesystem::rename(m_left, m_folder / ("recovered-" + strTime + ".json"), error);
        }
        std::filesystem::rename(m_unsaved, m_left, error);
    }
    const auto time = std::filesystem::last_write_time(m_left, error);
    if (error) {
        return m_unsaved;
    }
    try {
        m_leftScene = {FileNameIn(ParseJson(m_files.Read(Utf8(m_left)), "scene")), MillisecondsSince1970(time)};
    } catch (const CRefusal& refusal) {
        WriteHostLine(LOG_ERROR, "what was left unsaved in " + Utf8(m_left) + " can't be read: " + refusal.what());
    }
    return m_unsaved;
}

std::string CSceneFolder::Read(const std::string& strName) {
    return m_files.Read(Place(strName));
}

void CSceneFolder::Write(const std::string& strName, const std::string& strText, bool bReplace) {
    m_files.Write(Place(strName), strText, bReplace);
}

std::vector<SSceneFileInfo> CSceneFolder::List() {
    std::vector<SSceneFileInfo> files;
    std::error_code error;
    const std::filesystem::directory_iterator probe(m_folder, error); // the one below passes over what may not be read
    if (error && error != std::errc::no_such_file_or_directory) {
        Refuse("op", "the folder of scenes can't be read");
    }
    constexpr auto OPTIONS = std::filesystem::directory_options::skip_permission_denied;
    for (auto entry = std::filesystem::recursive_directory_iterator(m_folder, OPTIONS, error);
         !error && entry != std::filesystem::recursive_directory_iterator(); entry.increment(error)) {
        const std::filesystem::path& path = entry->path();
        const bool bHidden = IsHidden(path.filename());
        if (bHidden) {
            entry.disable_recursion_pending();
        }
        if (entry->is_regular_file(error) && !entry->is_symlink(error) && !bHidden && path.extension() == ".json") {
            files.push_back({Utf8(path.lexically_relative(m_folder).generic_u8string()), entry->file_size(error),
                             MillisecondsSince1970(entry->last_write_time(error))});
        }
    }
    std::ranges::sort(files, {}, &SSceneFileInfo::strName);
    return files;
}

std::string CSceneFolder::ReadLeft() {
    return m_leftScene ? m_files.Read(Utf8(m_left)) : ISceneFiles::ReadLeft();
}

void CSceneFolder::EndLeft(bool bLoaded) {
    std::error_code error;
    if (bLoaded) {
        std::filesystem::rename(m_left, m_unsaved, error); // until it's written anew
    } else {
        std::filesystem::remove(m_left, error);
    }
    m_leftScene.reset();
}

std::string CSceneFolder::NameOf(const std::string& strFile) const {
    const std::filesystem::path folder = RealPath(m_folder);
    const std::filesystem::path file = RealPath(PathFromUtf8(strFile));
    if (folder.empty() || !IsWithin(file, folder)) {
        return {};
    }
    // Not lexically_relative: the drive in Windows' real paths (\\?\C:\...) keeps that from answering.
    std::filesystem::path rest;
    for (auto part = std::next(file.begin(), std::distance(folder.begin(), folder.end())); part != file.end(); ++part) {
        rest /= *part;
    }
    return Utf8(rest.generic_u8string());
}

/// The file's path; a name that leads out of the folder is refused.
std::string CSceneFolder::Place(const std::string& strName) const {
    constexpr char OUTSIDE[] = "must be the name of a file in the folder of scenes";

    const std::filesystem::path name = PathFromUtf8(strName);
    if (name.empty() || name.has_root_path() || strName.find('\0') != std::string::npos ||
        std::ranges::find(name, std::filesystem::path("..")) != name.end()) {
        Refuse("file", OUTSIDE);
    }
    if (std::ranges::any_of(name, IsHidden)) {
        Refuse("file", "no part of it may begin with a dot");
    }
    const std::filesystem::path folder = RealPath(m_folder);
    if (folder.empty()) {
        Refuse("file", "there is no folder of scenes");
    }
    const std::filesystem::path file = folder / name;
    for (const std::filesystem::path& place : {file.parent_path(), file}) {
        // A dangling link is refused, too: writing through it would make a file where it points.
        const std::filesystem::path real = RealPath(place);
        std::error_code error;
        if (real.empty() ? std::filesystem::is_symlink(place, error) : !IsWithin(real, folder)) {
            Refuse("file", OUTSIDE);
        }
    }
    return Utf8(file);
}
