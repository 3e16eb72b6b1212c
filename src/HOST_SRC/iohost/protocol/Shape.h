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

/// What tells the alternatives of a variant apart: the field TAG has the alternative's TAG_NAME. UNKNOWN begins the
/// refusal of any other.
template <typename Variant>
struct Union;

template <typename T>
inline constexpr const char* TAG_NAME = nullptr;

#define UNION(variant, tag, unknown)                                                                                   \
    template <>                                                                                                        \
    struct Union<variant> {                                                                                            \
        static constexpr const char* TAG = tag;                                                                        \
        static constexpr const char* UNKNOWN = unknown;                                                                \
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
///   static OrderedJson Write(const T& value)
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

template <typename T>
OrderedJson ToJson(const T& value) {
    return Codec<T>::Write(value);
}

/// Put a member behind the others of an object that doesn't have it. The object's own way searches all for it first.
inline void AppendMember(OrderedJson& object, std::string strName, OrderedJson value) {
    using Members = std::vector<std::pair<const std::string, OrderedJson>>;
    auto& members = static_cast<Members&>(object.get_ref<OrderedJson::object_t&>());
    if (members.size() == members.capacity()) { // growing by itself, it would copy all that its members hold
        Members grown;
        grown.reserve(2 * members.size() + 4);
        for (auto& [strKey, held] : members) {
            grown.emplace_back(strKey, std::move(held));
        }
        members.swap(grown);
    }
    members.emplace_back(std::move(strName), std::move(value));
}

// ---- Fields -------------------------------------------------------------------------------------------------------

template <typename T>
void ReadFields(T& object, const CFields& fields);
template <typename T>
void AppendFields(OrderedJson& json, const T& object);

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
void AppendOne(OrderedJson& json, const T& object, const SField<Object, Member>& field) {
    const Member& member = object.*field.pMember;
    const bool bNullable = (field.nFlags & FIELD_NULLABLE) != 0;
    if (!bNullable && (field.nFlags & FIELD_OPTIONAL) != 0 && IsLeftOut(member, field.pMember)) {
        return;
    }
    if constexpr (std::is_same_v<Member, std::string>) {
        AppendMember(json, field.pszName, bNullable && member.empty() ? OrderedJson() : OrderedJson(member));
    } else {
        AppendMember(json, field.pszName, ToJson(member));
    }
}

template <typename T, typename Object, typename Member>
void AppendOne(OrderedJson& json, const T& object, const SFlat<Object, Member>& member) {
    AppendFields(json, object.*member.pMember);
}

template <typename T>
void AppendFields(OrderedJson& json, const T& object) {
    std::apply([&](const auto&... field) { (AppendOne(json, object, field), ...); }, Shape<T>::FIELDS);
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
void AppendFields(OrderedJson& json, const Variant& value) {
    std::visit(
        [&]<typename T>(const T& alternative) {
            AppendMember(json, Union<Variant>::TAG, TAG_NAME<T>);
            AppendFields(json, alternative);
        },
        value);
}

template <typename T>
requires(Shaped<T> || Tagged<T>) struct Codec<T> {
    static void Read(T& value, const Json& json, const std::string& strPath) {
        ReadFields(value, CFields(json, strPath));
    }
    static OrderedJson Write(const T& value) {
        OrderedJson json = OrderedJson::object();
        AppendFields(json, value);
        return json;
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
    static OrderedJson Write(T value) { return value; }
};

template <>
struct Codec<std::string> {
    static void Read(std::string& value, const Json& json, const std::string& strPath) {
        value = ReadText(json, strPath);
    }
    static OrderedJson Write(const std::string& value) { return value; }
};

template <>
struct Codec<CString> {
    static void Read(CString& value, const Json& json, const std::string& strPath) {
        value = FromUtf8(ReadText(json, strPath));
    }
    static OrderedJson Write(const CString& value) { return Utf8(value); }
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
    static OrderedJson Write(const GUID& value) { return GuidText(value); }
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
    static OrderedJson Write(T value) { return NameOf(value); }
};

// ---- Lists --------------------------------------------------------------------------------------------------------

template <typename T>
struct Codec<std::optional<T>> { ///< none is null
    static OrderedJson Write(const std::optional<T>& value) { return value ? ToJson(*value) : OrderedJson(); }
    static void Read(std::optional<T>& value, const Json& json, const std::string& strPath) {
        value.reset();
        if (!json.is_null()) {
            ReadJson(value.emplace(), json, strPath);
        }
    }
};

template <typename List>
OrderedJson ListToJson(const List& list) {
    OrderedJson json = OrderedJson::array();
    for (const auto& element : list) {
        json.push_back(ToJson(element));
    }
    return json;
}

template <typename T>
struct Codec<std::vector<T>> {
    static void Read(std::vector<T>& value, const Json& json, const std::string& strPath) {
        if (!json.is_array()) {
            RefuseKind(strPath, "a list");
        }
        for (size_t i = 0; i < json.size(); ++i) {
            // The elements of plain lists are called as the list is.
            ReadJson(value.emplace_back(), json[i], Shaped<T> ? strPath + "[" + std::to_string(i) + "]" : strPath);
        }
    }
    static OrderedJson Write(const std::vector<T>& value) { return ListToJson(value); }
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
    static OrderedJson Write(const List& value) { return ListToJson(value); }
};

template <typename T>
struct Codec<std::shared_ptr<const T>> { ///< what it points at; null is left out
    static void Read(std::shared_ptr<const T>& value, const Json& json, const std::string& strPath) {
        auto pRead = std::make_shared<T>();
        ReadJson(*pRead, json, strPath);
        value = std::move(pRead);
    }
    static OrderedJson Write(const std::shared_ptr<const T>& value) { return ToJson(*value); }
};

template <typename T, size_t nCount>
struct Codec<std::array<T, nCount>> : SFixedListCodec<std::array<T, nCount>, nCount> {};
template <typename T, size_t nCount>
struct Codec<T[nCount]> : SFixedListCodec<T[nCount], nCount> {};

/// A variant without a tag is written as what it holds.
template <typename Variant>
struct SUntaggedCodec {
    static OrderedJson Write(const Variant& value) {
        return std::visit([](const auto& held) { return ToJson(held); }, value);
    }
};

/// What the members of such an object are called.
inline std::string MemberName(const std::string& strName) {
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

/// A list by name, id or node: an object.
template <typename Key, typename T>
struct Codec<std::vector<std::pair<Key, T>>> {
    static void Read(std::vector<std::pair<Key, T>>& value, const Json& json, const std::string& strPath) {
        for (const auto& [key, member] : CFields(json, strPath).Object().items()) {
            auto& [name, element] = value.emplace_back();
            ReadKey(name, key, strPath);
            ReadJson(element, member, strPath + "." + key);
        }
    }
    static OrderedJson Write(const std::vector<std::pair<Key, T>>& value) {
        OrderedJson object = OrderedJson::object();
        for (const auto& [key, element] : value) {
            AppendMember(object, MemberName(key), ToJson(element));
        }
        return object;
    }
};
