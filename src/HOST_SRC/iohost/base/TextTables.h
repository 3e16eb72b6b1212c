// The names of the text tables on the command line and in recordings.
#pragma once

#include <optional>
#include <string_view>

#include "HostSetup.h"

struct TextTableRow {
    ETextTable nTable;
    const char* pszName;
};

inline constexpr TextTableRow TEXT_TABLES[] = {
    {ETextTable::Keys, "keys"}, {ETextTable::English, "en"}, {ETextTable::Chinese, "zh"}};

inline const char* TextTableName(ETextTable nTable) {
    for (const TextTableRow& row : TEXT_TABLES) {
        if (row.nTable == nTable) {
            return row.pszName;
        }
    }
    return "";
}

inline std::optional<ETextTable> FindTextTable(std::string_view name) {
    for (const TextTableRow& row : TEXT_TABLES) {
        if (name == row.pszName) {
            return row.nTable;
        }
    }
    return std::nullopt;
}
