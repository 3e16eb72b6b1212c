#include "fronts/describe/Describe.h"

#include <map>
#include <typeindex>

#include "protocol/Pushes.h"

namespace {

/// Declares types one after the other; later ones refer to earlier ones by name.
class CTypeScript {
public:
    template <typename T>
    void Declare(const std::string& strName) {
        const std::string strBody = Body<T>();
        m_names[typeid(T)] = strName;
        m_strText += "\nexport type " + strName + " = " + strBody + ";\n";
    }

    const std::string& Text() const { return m_strText; }

private:
    /// A type as a field has it.
    template <typename T>
    std::string Type() {
        const auto name = m_names.find(typeid(T));
        return name != m_names.end() ? name->second : Body<T>();
    }

    template <typename T>
    std::string Body() {
        return Body(static_cast<T*>(nullptr));
    }

    template <Shaped T>
    std::string Body(T*) {
        m_nIndent += 2;
        std::string strFields;
        std::string strBeside;
        std::apply([&](const auto&... field) { (Add(strFields, strBeside, field), ...); }, Shape<T>::FIELDS);
        m_nIndent -= 2;
        return (strFields.empty() ? "object" : "{\n" + strFields + Indent() + "}") + strBeside;
    }

    template <typename Object, typename Member>
    void Add(std::string& strFields, std::string& /*strBeside*/, const SField<Object, Member>& field) {
        std::string strType;
        if constexpr (IS_OPTIONAL<Member>) {
            strType = Type<typename Member::value_type>();
        } else {
            strType = Type<Member>();
        }
        const bool bNullable = (field.nFlags & FIELD_NULLABLE) != 0;
        const bool bMayLack = (field.nFlags & FIELD_OPTIONAL) != 0;
        strFields +=
            Indent() + field.pszName + (bMayLack ? "?: " : ": ") + strType + (bNullable ? " | null;\n" : ";\n");
    }

    template <typename Object, typename Member>
    void Add(std::string& /*strFields*/, std::string& strBeside, const SFlat<Object, Member>& /*member*/) {
        const std::string strType = Type<Member>();
        strBeside += " & " + (strType.find('|') == std::string::npos ? strType : "(" + strType + ")");
    }

    template <typename... Alternatives>
    requires requires { Union<std::variant<Alternatives...>>::TAG; }
    std::string Body(std::variant<Alternatives...>*) {
        std::string strUnion;
        (AddAlternative<Alternatives>(strUnion, Union<std::variant<Alternatives...>>::TAG), ...);
        return strUnion;
    }

    template <typename T>
    void AddAlternative(std::string& strUnion, const char* pszTag) {
        if (TAG_NAME<T> != nullptr) {
            const std::string strFields = Type<T>();
            strUnion += (strUnion.empty() ? "" : " | ") + ("{ " + std::string(pszTag) + ": \"") + TAG_NAME<T> + "\" }" +
                        (strFields == "object" ? "" : " & " + strFields);
        }
    }

    template <typename T>
    requires std::is_arithmetic_v<T> std::string Body(T*) { return std::is_same_v<T, bool> ? "boolean" : "number"; }

    template <typename T>
    requires requires { Names<T>::ROWS; }
    std::string Body(T*) {
        std::string strUnion;
        for (const char* pszName : Names<T>::ROWS) {
            strUnion += (strUnion.empty() ? "\"" : " | \"") + std::string(pszName) + "\"";
        }
        return strUnion;
    }

    template <typename T>
    std::string Body(std::vector<T>*) {
        const std::string strElement = Type<T>();
        return (strElement.find(' ') == std::string::npos ? strElement : "(" + strElement + ")") + "[]";
    }

    template <typename Key, typename T>
    std::string Body(std::vector<std::pair<Key, T>>*) {
        return "Record<string, " + Type<T>() + ">";
    }

    template <typename T>
    std::string Body(std::optional<T>*) {
        return Type<T>() + " | null";
    }

    template <typename T, size_t nCount>
    std::string Body(std::array<T, nCount>*) {
        return List<T>(nCount);
    }
    template <typename T, size_t nCount>
    std::string Body(T (*)[nCount]) {
        return List<T>(nCount);
    }

    /// Short ones with the number of their elements.
    template <typename T>
    std::string List(size_t nCount) {
        constexpr size_t MOST_SPELT = 4;
        std::string strElements = Type<T>();
        if (nCount > MOST_SPELT) {
            return strElements + "[]";
        }
        for (size_t i = 1; i < nCount; ++i) {
            strElements += ", " + Type<T>();
        }
        return "[" + strElements + "]";
    }

    std::string Body(std::string*) { return "string"; }
    std::string Body(CString*) { return "string"; }
    std::string Body(GUID*) { return "string"; }
    std::string Body(HeldIdentity*) { return "number | string"; }
    std::string Body(Sent*) { return Type<SSentRecord>() + " | " + Type<SSentBytes>(); }
    std::string Body(std::vector<unsigned char>*) { return "string"; } // hexadecimal
    std::string Body(asio::ip::tcp::endpoint*) { return "string"; }
    std::string Body(std::chrono::milliseconds*) { return "number"; } // seconds
    std::string Body(LineRefusalCounts*) { return "Record<string, number>"; }
    // As their own code writes them.
    std::string Body(SLastBytes*) { return "{ size: number; text: string; hex: string; sent?: boolean }"; }
    std::string Body(SFiredByWindow*) { return "{ name: string; event_id: number; wparam: number; params: object[] }"; }

    std::string Indent() const { return std::string(m_nIndent, ' '); }

    size_t m_nIndent = 0;
    std::map<std::type_index, std::string> m_names;
    std::string m_strText = "// The messages of the session, from the host's own tables. To renew it:\n"
                            "//   iohost --describe typescript\n";
};

} // namespace

std::string ProtocolTypes() {
    CTypeScript types;
    types.Declare<SParamState>("ParamState");
    types.Declare<SGroupState>("GroupState");
    types.Declare<SNodeDetails>("InspectedNode");
    types.Declare<SPlace>("Place");
    types.Declare<SNote>("Note");
    types.Declare<SSceneNode>("SceneNode");
    types.Declare<SLinkDocument>("Link");
    types.Declare<SSceneView>("Scene");
    types.Declare<SStep>("Step");
    types.Declare<SSceneFile>("SceneFile");
    types.Declare<SHistoryState>("History");
    types.Declare<SSceneFileInfo>("SceneFileInfo");
    types.Declare<SNodeType>("OfferedType");
    types.Declare<SObjectState>("SceneObject");
    types.Declare<SHeldEntry>("HeldEntry");
    types.Declare<CQORPanelRemoteCtrlData>("RemoteControlRecord");
    types.Declare<SFired>("PostedEvent");
    types.Declare<SLogged>("LogEntry");
    types.Declare<SKeptLine>("LogLine");
    types.Declare<SActivity>("Happened");
    types.Declare<SValues>("OutputValue");
    types.Declare<SNodeResults>("NodeResults");
    types.Declare<SVerdict>("JsonVerdict");
    types.Declare<Payload>("Payload");
    types.Declare<SLastBytes>("MessageBytes");
    types.Declare<SItemCounts>("ItemCounts");
    types.Declare<SDeviceState>("DeviceState");
    types.Declare<SBroadcastState>("BroadcastState");
    types.Declare<SControlState>("ControlState");
    types.Declare<SNetworkState>("NetworkState");
    types.Declare<SNodeCounts>("NodeCounts");
    types.Declare<SCounters>("Counters");
    types.Declare<SLeftScene>("LeftScene");
    types.Declare<Push>("Push");
    return types.Text();
}
