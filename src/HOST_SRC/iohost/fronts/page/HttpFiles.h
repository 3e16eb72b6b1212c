// The page's files. Only what lay in the folder when the server started is offered, by its exact name: a request names
// an entry of a list, never a path, so there is nothing to climb out of.
#pragma once

#include <filesystem>
#include <map>
#include <optional>
#include <string>
#include <string_view>

struct SWebFile {
    std::filesystem::path path;
    std::string_view contentType;
};

struct SWebFileContents {
    std::string strBytes;
    std::string strTag; ///< in quotes; another one for other bytes
    bool bGzip;
};

class CHttpFiles {
public:
    /// Lists the files of the folder and of those within it. Throws std::filesystem::filesystem_error.
    explicit CHttpFiles(const std::filesystem::path& folder);

    /// The file that a request's target names ("/" is the page itself); null when there is none.
    const SWebFile* Find(std::string_view target) const;

    /// Reads a file anew, so that reloading the page shows a new build; with bAcceptsGzip the compressed file (.gz)
    /// beside it, if there is one. Nothing when it can't be read.
    static std::optional<SWebFileContents> Read(const SWebFile& file, bool bAcceptsGzip);

private:
    std::map<std::string, SWebFile, std::less<>> m_files; ///< by target
};
