// Reading the fields of a request. Every reader checks the kind of the value and names the field in its refusal.
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>

#include <nlohmann/json.hpp>

using Json = nlohmann::json;
using OrderedJson = nlohmann::ordered_json;

/// A request that can't be carried out; what() says what is wrong and names the field.
class CRefusal : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

/// Refuse the request because of one field.
[[noreturn]] void Refuse(std::string_view field, std::string_view problem);

/// A text in quotation marks for messages; a long one is cut.
std::string Quoted(std::string_view text);

/// Parse JSON text from outside; what it is goes into the refusal of text that isn't JSON or is nested too deeply. The
/// depth is checked while reading, before anything that deep is built.
Json ParseJson(std::string_view text, const std::string& strWhat);

/// The value as the kind asked for; the field's name is for the refusal.
int ReadInt(const Json& value, std::string_view field);
unsigned ReadUnsigned(const Json& value, std::string_view field);
float ReadFloat(const Json& value, std::string_view field);
bool ReadBool(const Json& value, std::string_view field);
const std::string& ReadText(const Json& value, std::string_view field);

/// An id that stands as an object's key.
unsigned ReadIdKey(std::string_view key, std::string_view field);

/// The fields of one JSON object. Refers to the object, which must outlive it. Unknown fields are ignored.
class CFields {
public:
    /// Refuses a value that isn't an object. strPath stands before field names in refusals ("saved.").
    explicit CFields(const Json& object, std::string strPath = {});

    /// The field's value; null when it is missing.
    const Json* Find(const char* pszName) const;

    /// The field's value; a missing one is refused.
    const Json& Required(const char* pszName) const;

    bool Has(const char* pszName) const { return Find(pszName) != nullptr; }

    /// Required fields of one kind.
    const std::string& Text(const char* pszName) const;
    std::optional<std::string> TextOrNull(const char* pszName) const;
    int Int(const char* pszName) const;
    unsigned Unsigned(const char* pszName) const;
    float Float(const char* pszName) const;
    bool Bool(const char* pszName) const;
    const Json& Array(const char* pszName) const;

    /// Fields that may be missing.
    bool Bool(const char* pszName, bool bDefault) const;
    const Json* OptionalArray(const char* pszName) const;

    /// Name of a field with the path of this object before it.
    std::string Path(const char* pszName) const { return m_strPath + pszName; }

    const Json& Object() const { return m_object; }

private:
    const Json& m_object;
    std::string m_strPath;
};
