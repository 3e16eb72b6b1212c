// The names that the values of enums have in requests, in recordings and on the command line.
#pragma once

#include <algorithm>
#include <iterator>
#include <optional>
#include <string_view>

#include "HostSetup.h"

/// Names of an enum's values, in the order of their numbers: ROWS.
template <typename Enum>
struct Names;

#define NAMES(type, ...)                                                                                               \
    template <>                                                                                                        \
    struct Names<type> {                                                                                               \
        static constexpr const char* ROWS[] = {__VA_ARGS__};                                                           \
    };

template <typename Enum>
const char* NameOf(Enum nValue) {
    return Names<Enum>::ROWS[static_cast<size_t>(nValue)];
}

template <typename Enum>
std::optional<Enum> FindByName(std::string_view name) {
    const auto* pRow = std::ranges::find(Names<Enum>::ROWS, name);
    return pRow != std::end(Names<Enum>::ROWS) ? std::optional(static_cast<Enum>(pRow - Names<Enum>::ROWS))
                                               : std::nullopt;
}

NAMES(ETextTable, "keys", "en", "zh")
