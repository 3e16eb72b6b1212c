// Reading the fields of a request. Every reader checks the kind of the value and names the field in its refusal.
#pragma once

#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

#include "base/Refusal.h"

using Json = nlohmann::json;

/// Parse JSON text from outside. strWhat names the text in the refusal when it isn't JSON or is nested too deeply.
/// Depth is checked while reading, before anything that deep is built.
Json ParseJson(std::string_view text, const std::string& strWhat);

/// Refuse a field that has a value of another kind.
[[noreturn]] void RefuseKind(std::string_view field, std::string_view kind);

/// The value as the kind asked for; the field's name is for the refusal.
template <typename T>
T ReadWhole(const Json& value, std::string_view field); ///< int or unsigned
float ReadFloat(const Json& value, std::string_view field);
bool ReadBool(const Json& value, std::string_view field);
const std::string& ReadText(const Json& value, std::string_view field);

/// An id that stands as an object's key.
unsigned ReadIdKey(std::string_view key, std::string_view field);

/// The fields of one JSON object. Refers to the object, which must outlive it. Unknown fields are ignored.
class CFields {
public:
    /// Refuses a value that isn't an object. strPath is what refusals call it; empty for a request.
    explicit CFields(const Json& object, std::string strPath = {});

    /// The field's value; null when it is missing.
    const Json* Find(const char* pszName) const;

    /// The field's value; a missing one is refused.
    const Json& Required(const char* pszName) const;

    bool Has(const char* pszName) const { return Find(pszName) != nullptr; }

    const std::string& Text(const char* pszName) const { return ReadText(Required(pszName), Path(pszName)); }
    int Int(const char* pszName) const { return ReadWhole<int>(Required(pszName), Path(pszName)); }

    /// Name of a field with the path of this object before it.
    std::string Path(const char* pszName) const { return m_strPath.empty() ? pszName : m_strPath + "." + pszName; }

    const Json& Object() const { return m_object; }

private:
    const Json& m_object;
    std::string m_strPath;
};
