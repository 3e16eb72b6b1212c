#include "fronts/page/HttpFiles.h"

#include <algorithm>
#include <fstream>
#include <functional>
#include <iterator>

#include "base/TextUtf8.h"

namespace {

constexpr std::pair<std::string_view, std::string_view> CONTENT_TYPES[] = {
    {".html", "text/html; charset=utf-8"}, {".js", "text/javascript; charset=utf-8"},
    {".css", "text/css; charset=utf-8"},   {".svg", "image/svg+xml"},
    {".map", "application/json"},
};

/// The content type of a file of the page; empty for a file that doesn't belong to it.
std::string_view ContentType(const std::filesystem::path& path) {
    const auto* pRow =
        std::ranges::find(CONTENT_TYPES, Utf8(path.extension()), &std::pair<std::string_view, std::string_view>::first);
    return pRow != std::end(CONTENT_TYPES) ? pRow->second : std::string_view();
}

std::optional<std::string> ReadBytes(const std::filesystem::path& path) {
    std::ifstream stream(path, std::ios::binary);
    std::string strBytes(std::istreambuf_iterator<char>(stream), {});
    return stream ? std::optional(std::move(strBytes)) : std::nullopt;
}

} // namespace

CHttpFiles::CHttpFiles(const std::filesystem::path& folder) {
    for (const auto& entry : std::filesystem::recursive_directory_iterator(folder)) {
        const std::string_view contentType = ContentType(entry.path());
        if (entry.is_regular_file() && !contentType.empty()) {
            m_files.emplace("/" + Utf8(entry.path().lexically_relative(folder).generic_u8string()),
                            SWebFile{entry.path(), contentType});
        }
    }
}

const SWebFile* CHttpFiles::Find(std::string_view target) const {
    target = target.substr(0, target.find('?'));
    const auto found = m_files.find(target == "/" ? std::string_view("/index.html") : target);
    return found != m_files.end() ? &found->second : nullptr;
}

std::optional<SWebFileContents> CHttpFiles::Read(const SWebFile& file, bool bAcceptsGzip) {
    auto bytes = bAcceptsGzip ? ReadBytes(std::filesystem::path(file.path) += ".gz") : std::nullopt;
    const bool bGzip = bytes.has_value();
    if (!bGzip) {
        bytes = ReadBytes(file.path);
    }
    if (!bytes) {
        return std::nullopt;
    }
    std::string strTag = "\"" + std::to_string(std::hash<std::string>()(*bytes)) + "\"";
    return SWebFileContents{std::move(*bytes), std::move(strTag), bGzip};
}
