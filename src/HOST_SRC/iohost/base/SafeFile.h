// Writing a file so that whatever interrupts it leaves the older one whole.
#pragma once

#include <filesystem>
#include <string>
#include <string_view>

/// Write the file anew: beside it under an unused name, onto the disk, and then in its place. A link is followed, and
/// the file's mode stays. Empty, or why that wasn't done; the older file is as it was then.
std::string WriteFileSafely(const std::filesystem::path& file, std::string_view content);

/// The file's real place: links on the way to it and its own are followed. Empty when there is no such file.
std::filesystem::path RealPath(const std::filesystem::path& file);

inline constexpr char CANT_BE_WRITTEN[] = "can't be written";
inline constexpr char NO_REGULAR_FILE[] = "isn't a regular file";
