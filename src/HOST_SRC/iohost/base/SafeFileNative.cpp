#include "base/SafeFile.h"

#include <cerrno>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/Platform.h"

namespace {

constexpr int MOST_LINKS = 40; ///< one behind the other, as the system's own limit

/// The file that a name stands for once its links are followed, existing or not. Empty after too many links.
std::filesystem::path FollowLinks(std::filesystem::path file) {
    std::error_code error;
    for (int nLinks = 0; std::filesystem::is_symlink(file, error); ++nLinks) {
        if (nLinks == MOST_LINKS) {
            return {};
        }
        file = file.parent_path() / std::filesystem::read_symlink(file, error);
    }
    return file;
}

/// Opens a new file beside that one. The name goes into newFile.
int OpenBeside(const std::filesystem::path& file, mode_t nMode, std::filesystem::path& newFile) {
    constexpr int MOST_NAMES = 1000;
    for (int nName = 0; nName < MOST_NAMES; ++nName) {
        newFile = file;
        newFile += ".new" + (nName == 0 ? std::string() : std::to_string(nName));
        const int nFile = open(newFile.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, nMode);
        if (nFile >= 0 || errno != EEXIST) {
            return nFile;
        }
    }
    return -1;
}

/// A rename is on the disk once its folder is. Where the system can't do that for folders, it's as good as it gets.
void SyncFolder(const std::filesystem::path& folder) {
    const int nFolder = open(folder.empty() ? "." : folder.c_str(), O_RDONLY | O_DIRECTORY | O_CLOEXEC);
    if (nFolder >= 0) {
        fsync(nFolder);
        close(nFolder);
    }
}

} // namespace

std::string WriteFileSafely(const std::filesystem::path& name, std::string_view content) {
    constexpr mode_t NEW_FILE = 0666; // less what the process keeps from others
    constexpr mode_t PERMISSIONS = 07777;

    const std::filesystem::path file = FollowLinks(name);
    struct stat former = {};
    const bool bReplaces = stat(file.c_str(), &former) == 0;
    if (bReplaces && !S_ISREG(former.st_mode)) {
        return NO_REGULAR_FILE;
    }
    std::filesystem::path newFile;
    // As narrow as the older one from the beginning.
    const int nFile = OpenBeside(file, bReplaces ? former.st_mode & NEW_FILE : NEW_FILE, newFile);
    if (nFile < 0) {
        return CANT_BE_WRITTEN;
    }
    bool bDone = WriteStandard(nFile, content) && (!bReplaces || fchmod(nFile, former.st_mode & PERMISSIONS) == 0) &&
                 fsync(nFile) == 0;
    bDone = close(nFile) == 0 && bDone;
    bDone = bDone && rename(newFile.c_str(), file.c_str()) == 0;
    if (!bDone) {
        unlink(newFile.c_str());
        return CANT_BE_WRITTEN;
    }
    SyncFolder(file.parent_path());
    return {};
}

std::filesystem::path RealPath(const std::filesystem::path& file) {
    std::error_code error;
    return std::filesystem::canonical(file, error);
}
