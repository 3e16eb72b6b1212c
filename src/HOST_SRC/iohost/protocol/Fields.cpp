#include "protocol/Fields.h"

#include <charconv>
#include <cmath>
#include <cstdint>
#include <limits>
#include <utility>

namespace {

constexpr int DEEPEST = 64;

/// Where brackets outside strings first nest deeper than DEEPEST; npos: nowhere. The parser's own count of levels takes
/// time that grows with the square of a list's length.
size_t FindTooDeep(std::string_view text) {
    int nDepth = 0;
    bool bInString = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        if (c == '"') {
            bInString = !bInString;
        } else if (bInString) {
            i += c == '\\' ? 1 : 0;
        } else {
            nDepth += c == '{' || c == '[' ? 1 : 0;
            nDepth -= c == '}' || c == ']' ? 1 : 0;
            if (nDepth > DEEPEST) {
                return i;
            }
        }
    }
    return std::string_view::npos;
}

} // namespace

void RefuseKind(std::string_view field, std::string_view kind) {
    Refuse(field, "must be " + std::string(kind));
}

Json ParseJson(std::string_view text, const std::string& strWhat) {
    const size_t nTooDeep = FindTooDeep(text);
    try {
        Json json = Json::parse(text.substr(0, nTooDeep));
        // The parser takes a zero for the end of the text.
        if (const size_t nZero = text.find('\0'); nZero != std::string_view::npos) {
            throw CRefusal(strWhat + ": not JSON, from byte " + std::to_string(nZero + 1) + " on");
        }
        return json;
    } catch (const Json::parse_error& error) {
        if (error.byte > nTooDeep) { // only the rest was missing
            throw CRefusal(strWhat + ": nested deeper than " + std::to_string(DEEPEST) + " levels");
        }
        throw CRefusal(strWhat + ": not JSON, from byte " + std::to_string(error.byte) + " on");
    } catch (const Json::exception&) {
        throw CRefusal(strWhat + ": not JSON, a number is out of range");
    }
}

template <typename T>
T ReadWhole(const Json& value, std::string_view field) {
    if (!value.is_number_integer()) {
        RefuseKind(field, "an integer");
    }
    const bool bFits = value.is_number_unsigned() ? std::in_range<T>(value.get<std::uint64_t>())
                                                  : std::in_range<T>(value.get<std::int64_t>());
    if (!bFits) {
        Refuse(field,
               std::is_signed_v<T> ? "is outside the signed 32-bit range" : "is outside the unsigned 32-bit range");
    }
    return value.get<T>();
}

template int ReadWhole(const Json& value, std::string_view field);
template unsigned ReadWhole(const Json& value, std::string_view field);

float ReadFloat(const Json& value, std::string_view field) {
    if (!value.is_number()) {
        RefuseKind(field, "a number");
    }
    const double fValue = value.get<double>();
    if (std::abs(fValue) > static_cast<double>(std::numeric_limits<float>::max())) {
        Refuse(field, "is outside the range of a 32-bit float");
    }
    return static_cast<float>(fValue);
}

bool ReadBool(const Json& value, std::string_view field) {
    if (!value.is_boolean()) {
        RefuseKind(field, "true or false");
    }
    return value.get<bool>();
}

const std::string& ReadText(const Json& value, std::string_view field) {
    if (!value.is_string()) {
        RefuseKind(field, "a string");
    }
    return value.get_ref<const std::string&>();
}

unsigned ReadIdKey(std::string_view key, std::string_view field) {
    unsigned nId = 0;
    const auto [pEnd, error] = std::from_chars(key.data(), key.data() + key.size(), nId);
    if (error != std::errc() || pEnd != key.data() + key.size()) {
        Refuse(field, "the key " + Quoted(key) + " isn't a parameter id");
    }
    return nId;
}

CFields::CFields(const Json& object, std::string strPath) : m_object(object), m_strPath(std::move(strPath)) {
    if (!m_object.is_object()) {
        Refuse(m_strPath.empty() ? "request" : m_strPath, "must be an object");
    }
}

const Json* CFields::Find(const char* pszName) const {
    const auto field = m_object.find(pszName);
    return field != m_object.end() ? &*field : nullptr;
}

const Json& CFields::Required(const char* pszName) const {
    const Json* pValue = Find(pszName);
    if (pValue == nullptr) {
        Refuse(Path(pszName), "is missing");
    }
    return *pValue;
}
