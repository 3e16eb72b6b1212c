// Whom a text of an HTTP request is for.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "host/EventRecord.h"

/// Where texts for objects are posted to.
inline constexpr std::string_view OBJECT_TEXT_PATH = "/object-text";

/// A text for the clip and object in a target's query, still empty: "/object-text?clip=Clip&object=Map". Nothing, with
/// what is wrong, when either is missing or there is anything else.
std::optional<SObjectTextData> ParseObjectAddress(std::string_view target, std::string& strProblem);
