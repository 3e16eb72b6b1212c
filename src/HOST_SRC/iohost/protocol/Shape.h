// How plain data looks as JSON: one table of fields a struct, from which reading and writing follow.
//
//   SHAPE(SCalled, SField{"result", &T::nResult})
#pragma once

#include <array>
#include <concepts>
#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <tuple>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

#include "base/GuidText.h"
#include "base/Names.h"
#include "base/TextUtf8.h"
#include "protocol/Fields.h"
#include "protocol/JsonText.h"

enum : unsigned {
    /// Reading: the field may be missing. Writing: it's left out while it is what a new struct has.
    FIELD_OPTIONAL = 1,
    /// An empty std::optional is null, and so is an empty std::string.
    FIELD_NULLABLE = 2,
    /// Reading: the field may be missing. It's always written.
    FIELD_DEFAULTED = 4,
    /// Reading: the field is passed over.
    FIELD_TOLD = 8,
};

/// One field.
template <typename Object, typename Member>
struct SField {
    const char* pszName;
    Member Object::*pMember;
    unsigned nFlags = 0;
};

/// A member whose own fields stand beside the others.
template <typename Object, typename Member>
struct SFlat {
    Member Object::*pMember;
};

/// A struct's FIELDS, in which it is called T.
template <typename Object>
struct Shape;

#define SHAPE(type, ...)                                                                                               \
    template <>                                                                                                        \
    struct Shape<type> {                                                                                               \
        using T = type;                                                                                                \
        static constexpr auto FIELDS = std::tuple(__VA_ARGS__);                                                        \
    };

/// What tells the alternatives of a variant apart: the field TAG has the alternative's TAG_NAME. Where one is read,
/// UNKNOWN begins the refusal of any other.
template <typename Variant>
struct Union;

template <typename T>
inline constexpr const char* TAG_NAME = nullptr;

#define UNION(variant, tag, ...)                                                                                       \
    template <>                                                                                                        \
    struct Union<variant> {                                                                                            \
        static constexpr const char* TAG = tag;                                                                        \
        static constexpr const char* UNKNOWN{__VA_ARGS__};                                                             \
    };
#define TAG(type, name)                                                                                                \
    template <>                                                                                                        \
    inline constexpr const char* TAG_NAME<type> = name;

/// An alternative with its table.
#define TAGGED(type, name, ...)                                                                                        \
    TAG(type, name)                                                                                                    \
    SHAPE(type, __VA_ARGS__)

/// How values of one type are read and written:
///   static void Read(T& value, const Json& json, const std::string& strPath)   refuses by that path
///   static void Write(CJsonText& json, const T& value)
template <typename T>
struct Codec;

template <typename T>
concept Shaped = requires {
    Shape<T>::FIELDS;
};
template <typename T>
concept Tagged = requires {
    Union<T>::TAG;
};

template <typename T>
inline constexpr bool IS_OPTIONAL = false;
template <typename T>
inline constexpr bool IS_OPTIONAL<std::optional<T>> = true;

template <typename T>
inline constexpr bool IS_LIST = false;
template <typename T>
inline constexpr bool IS_LIST<std::vector<T>> = true;

template <typename T>
void ReadJson(T& value, const Json& json, const std::string& strPath) {
    Codec<T>::Read(value, json, strPath);
}

/// Write the value that comes next. Texts and null need no codec.
template <typename T>
void WriteJson(CJsonText& json, const T& value) {
    if constexpr (std::is_convertible_v<const T&, std::string_view> || std::is_null_pointer_v<T>) {
        json.Value(value);
    } else {
        Codec<T>::Write(json, value);
    }
}

template <typename T>
void WriteFields(CJsonText& json, const T& object);

/// Write members of an object, each as a name and a value or as a struct with fields: WriteMembers(json, "x", fX,
/// point).
inline void WriteMembers(CJsonText& /*json*/) {}
template <typename T, typename... More>
void WriteMembers(CJsonText& json, const char* pszName, const T& value, const More&... more) {
    json.Name(pszName);
    WriteJson(json, value);
    WriteMembers(json, more...);
}
template <typename T, typename... More>
requires(Shaped<T> || Tagged<T>) void WriteMembers(CJsonText& json, const T& fields, const More&... more) {
    WriteFields(json, fields);
    WriteMembers(json, more...);
}

/// The text of an object with these members.
template <typename... Members>
std::string JsonObject(const Members&... members) {
    CJsonText json;
    json.Object([&] { WriteMembers(json, members...); });
    return json.Take();
}

// ---- Fields -------------------------------------------------------------------------------------------------------

template <typename T>
void ReadFields(T& object, const CFields& fields);

template <typename Member>
void ReadField(Member& member, const CFields& fields, const char* pszName, unsigned nFlags) {
    if ((nFlags & FIELD_TOLD) != 0) {
        return;
    }
    const Json* pValue =
        (nFlags & (FIELD_OPTIONAL | FIELD_DEFAULTED)) != 0 ? fields.Find(pszName) : &fields.Required(pszName);
    if (pValue == nullptr) {
        return;
    }
    if constexpr (IS_OPTIONAL<Member>) {
        if ((nFlags & FIELD_NULLABLE) == 0) {
            ReadJson(member.emplace(), *pValue, fields.Path(pszName));
            return;
        }
        if (std::is_same_v<Member, std::optional<CString>> && !pValue->is_string() && !pValue->is_null()) {
            RefuseKind(fields.Path(pszName), "a string or null");
        }
        if (IS_LIST<typename Member::value_type> && !pValue->is_array() && !pValue->is_null()) {
            RefuseKind(fields.Path(pszName), "an array or null");
        }
    }
    ReadJson(member, *pValue, fields.Path(pszName));
}

template <typename Object, typename Member>
bool IsLeftOut(const Member& member, Member Object::*pMember) {
    if constexpr (IS_OPTIONAL<Member>) {
        return !member.has_value();
    } else if constexpr (IS_LIST<Member>) {
        return member.empty();
    } else if constexpr (std::is_default_constructible_v<Object> && std::equality_comparable<Member> &&
                         !std::is_array_v<Member>) {
        static const Object s_new{};
        return member == s_new.*pMember;
    } else {
        return false;
    }
}

template <typename T, typename Object, typename Member>
void WriteOne(CJsonText& json, const T& object, const SField<Object, Member>& field) {
    const Member& member = object.*field.pMember;
    const bool bNullable = (field.nFlags & FIELD_NULLABLE) != 0;
    if (!bNullable && (field.nFlags & FIELD_OPTIONAL) != 0 && IsLeftOut(member, field.pMember)) {
        return;
    }
    if constexpr (std::is_same_v<Member, std::string>) {
        if (bNullable && member.empty()) {
            WriteMembers(json, field.pszName, nullptr);
            return;
        }
    }
    WriteMembers(json, field.pszName, member);
}

template <typename T, typename Object, typename Member>
void WriteOne(CJsonText& json, const T& object, const SFlat<Object, Member>& member) {
    WriteFields(json, object.*member.pMember);
}

template <typename T>
void WriteFields(CJsonText& json, const T& object) {
    std::apply([&](const auto&... field) { (WriteOne(json, object, field), ...); }, Shape<T>::FIELDS);
}

template <typename T, typename Object, typename Member>
void ReadOne(T& object, const SField<Object, Member>& field, const CFields& fields) {
    ReadField(object.*field.pMember, fields, field.pszName, field.nFlags);
}

template <typename T, typename Object, typename Member>
void ReadOne(T& object, const SFlat<Object, Member>& member, const CFields& fields) {
    ReadFields(object.*member.pMember, fields);
}

template <typename T>
void ReadFields(T& object, const CFields& fields) {
    std::apply([&](const auto&... field) { (ReadOne(object, field, fields), ...); }, Shape<T>::FIELDS);
}

// ---- Tagged unions ------------------------------------------------------------------------------------------------

/// Make the variant hold a new one of its alternatives.
template <typename T, typename Variant>
void Emplace(Variant& value) {
    value.template emplace<T>();
}

/// The alternative of that tag name; false for an unknown one.
template <typename... Alternatives>
bool EmplaceByTag(std::variant<Alternatives...>& value, std::string_view name) {
    const auto take = [&]<typename T>(std::type_identity<T>) {
        const char* pszName = TAG_NAME<T>;
        const bool bTaken = pszName != nullptr && name == pszName;
        if (bTaken) {
            Emplace<T>(value);
        }
        return bTaken;
    };
    return (take(std::type_identity<Alternatives>()) || ...);
}

template <Tagged Variant>
void ReadFields(Variant& value, const CFields& fields) {
    const std::string& strName = fields.Text(Union<Variant>::TAG);
    if (!EmplaceByTag(value, strName)) {
        Refuse(fields.Path(Union<Variant>::TAG), Union<Variant>::UNKNOWN + Quoted(strName));
    }
    std::visit([&](auto& alternative) { ReadFields(alternative, fields); }, value);
}

template <Tagged Variant>
void WriteFields(CJsonText& json, const Variant& value) {
    std::visit(
        [&]<typename T>(const T& alternative) {
            WriteMembers(json, Union<Variant>::TAG, TAG_NAME<T>);
            WriteFields(json, alternative);
        },
        value);
}

template <typename T>
requires(Shaped<T> || Tagged<T>) struct Codec<T> {
    static void Read(T& value, const Json& json, const std::string& strPath) {
        ReadFields(value, CFields(json, strPath));
    }
    static void Write(CJsonText& json, const T& value) {
        json.Object([&] { WriteFields(json, value); });
    }
};

// ---- Plain values -------------------------------------------------------------------------------------------------

template <typename T>
requires std::is_arithmetic_v<T>
struct Codec<T> {
    static void Read(T& value, const Json& json, const std::string& strPath) {
        if constexpr (std::is_same_v<T, bool>) {
            value = ReadBool(json, strPath);
        } else if constexpr (std::is_same_v<T, float>) {
            value = ReadFloat(json, strPath);
        } else if constexpr (std::is_same_v<T, unsigned short>) {
            const unsigned nPort = ReadWhole<unsigned>(json, strPath);
            if (nPort > 0xFFFF) {
                Refuse(strPath, std::to_string(nPort) + " isn't a port");
            }
            value = static_cast<T>(nPort);
        } else if constexpr (sizeof(T) == sizeof(std::uint64_t)) {
            if (!json.is_number_unsigned()) {
                RefuseKind(strPath, "a whole number");
            }
            value = json.get<T>();
        } else {
            value = ReadWhole<std::conditional_t<std::is_signed_v<T>, int, unsigned>>(json, strPath);
        }
    }
    static void Write(CJsonText& json, T value) { json.Value(value); }
};

template <>
struct Codec<std::string> {
    static void Read(std::string& value, const Json& json, const std::string& strPath) {
        value = ReadText(json, strPath);
    }
};

template <>
struct Codec<CString> {
    static void Read(CString& value, const Json& json, const std::string& strPath) {
        value = FromUtf8(ReadText(json, strPath));
    }
    static void Write(CJsonText& json, const CString& value) { json.Value(Utf8(value)); }
};

template <>
struct Codec<GUID> {
    static void Read(GUID& value, const Json& json, const std::string& strPath) {
        const auto guid = ParseGuid(ReadText(json, strPath));
        if (!guid) {
            Refuse(strPath, Quoted(ReadText(json, strPath)) + " isn't a GUID");
        }
        value = *guid;
    }
    static void Write(CJsonText& json, const GUID& value) { json.Value(GuidText(value)); }
};

template <typename T>
requires requires {
    Names<T>::ROWS;
}
struct Codec<T> {
    static void Read(T& value, const Json& json, const std::string& strPath) {
        const std::string& strName = ReadText(json, strPath);
        const auto found = FindByName<T>(strName);
        if (!found) {
            std::string strNames;
            for (const char* pszName : Names<T>::ROWS) {
                strNames += (strNames.empty() ? "" : ", ") + std::string(pszName);
            }
            Refuse(strPath, Quoted(strName) + " is none of " + strNames);
        }
        value = *found;
    }
    static void Write(CJsonText& json, T value) { json.Value(NameOf(value)); }
};

// ---- Lists --------------------------------------------------------------------------------------------------------

template <typename T>
struct Codec<std::optional<T>> { ///< none is null
    static void Write(CJsonText& json, const std::optional<T>& value) {
        value ? WriteJson(json, *value) : json.Value(nullptr);
    }
    static void Read(std::optional<T>& value, const Json& json, const std::string& strPath) {
        value.reset();
        if (!json.is_null()) {
            ReadJson(value.emplace(), json, strPath);
        }
    }
};

template <typename List>
void WriteList(CJsonText& json, const List& list) {
    json.List([&] {
        for (const auto& element : list) {
            WriteJson(json, element);
        }
    });
}

template <typename T>
struct Codec<std::vector<T>> {
    static void Read(std::vector<T>& value, const Json& json, const std::string& strPath) {
        if (!json.is_array()) {
            RefuseKind(strPath, "a list");
        }
        for (size_t i = 0; i < json.size(); ++i) {
            // Refusals name the elements of plain lists by the list's name alone.
            ReadJson(value.emplace_back(), json[i], Shaped<T> ? strPath + "[" + std::to_string(i) + "]" : strPath);
        }
    }
    static void Write(CJsonText& json, const std::vector<T>& value) { WriteList(json, value); }
};

template <typename List, size_t nCount>
struct SFixedListCodec {
    static void Read(List& value, const Json& json, const std::string& strPath) {
        if (!json.is_array() || json.size() != nCount) {
            RefuseKind(strPath, "an array of " + std::to_string(nCount) + " numbers");
        }
        for (size_t i = 0; i < nCount; ++i) {
            ReadJson(value[i], json[i], strPath + "[" + std::to_string(i) + "]");
        }
    }
    static void Write(CJsonText& json, const List& value) { WriteList(json, value); }
};

template <typename T>
struct Codec<std::shared_ptr<const T>> { ///< what it points at; never null: an optional field leaves null out
    static void Read(std::shared_ptr<const T>& value, const Json& json, const std::string& strPath) {
        auto pRead = std::make_shared<T>();
        ReadJson(*pRead, json, strPath);
        value = std::move(pRead);
    }
    static void Write(CJsonText& json, const std::shared_ptr<const T>& value) { WriteJson(json, *value); }
};

template <typename T, size_t nCount>
struct Codec<std::array<T, nCount>> : SFixedListCodec<std::array<T, nCount>, nCount> {};
template <typename T, size_t nCount>
struct Codec<T[nCount]> : SFixedListCodec<T[nCount], nCount> {};

/// A variant without a tag is written as what it holds.
template <typename Variant>
struct SUntaggedCodec {
    static void Write(CJsonText& json, const Variant& value) {
        std::visit([&](const auto& held) { WriteJson(json, held); }, value);
    }
};

/// The member name that a key of a list of pairs becomes.
inline const std::string& MemberName(const std::string& strName) {
    return strName;
}
inline std::string MemberName(unsigned nId) {
    return std::to_string(nId);
}

inline void ReadKey(unsigned& nId, const std::string& strKey, const std::string& strPath) {
    nId = ReadIdKey(strKey, strPath);
}
inline void ReadKey(std::string& strName, const std::string& strKey, const std::string& /*strPath*/) {
    strName = strKey;
}

/// A list of pairs, by name, id or node, is a JSON object.
template <typename Key, typename T>
struct Codec<std::vector<std::pair<Key, T>>> {
    static void Read(std::vector<std::pair<Key, T>>& value, const Json& json, const std::string& strPath) {
        for (const auto& [key, member] : CFields(json, strPath).Object().items()) {
            auto& [name, element] = value.emplace_back();
            ReadKey(name, key, strPath);
            ReadJson(element, member, strPath + "." + key);
        }
    }
    static void Write(CJsonText& json, const std::vector<std::pair<Key, T>>& value) {
        json.Object([&] {
            for (const auto& [key, element] : value) {
                json.Name(MemberName(key));
                WriteJson(json, element);
            }
        });
    }
};
