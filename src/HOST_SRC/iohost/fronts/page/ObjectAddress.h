// Whom a text of an HTTP request is for.
#pragma once

#include <optional>
#include <string>
#include <string_view>

/// Where texts for objects are posted to.
inline constexpr std::string_view OBJECT_TEXT_PATH = "/object-text";

/// An object of a clip.
struct SObjectAddress {
    std::string strClip;
    std::string strObject;
};

/// The names in a target's query, in UTF-8: "/object-text?clip=Clip&object=Map". Nothing, with what is wrong, when
/// either is missing or there is anything else.
std::optional<SObjectAddress> ParseObjectAddress(std::string_view target, std::string& strProblem);
