#include "protocol/Shapes.h"

#include <algorithm>
#include <cstdio>
#include <set>

#include "base/PrintableText.h"

namespace {

constexpr char FORMAT[] = "iohost scene";
constexpr int VERSION = 1;

constexpr const char* VALUE_FIELDS[] = {"int", "float", "string", "choice"};

OrderedJson PointedAtText(const PointedAt& pointed) {
    return std::visit(
        []<typename Kind>(const Kind& what) -> OrderedJson {
            if constexpr (std::is_same_v<Kind, CString>) {
                return "clip:" + Utf8(what);
            } else if constexpr (std::is_same_v<Kind, std::string>) {
                return "node:" + what;
            } else if constexpr (std::is_same_v<Kind, int>) {
                return "int:" + std::to_string(what);
            } else {
                return nullptr;
            }
        },
        pointed);
}

} // namespace

// ---- Commands -----------------------------------------------------------------------------------------------------

void ReadFields(SFrameCommand& /*command*/, const CFields& fields) {
    for (const char* pszName : {"node", "graph"}) {
        if (fields.Has(pszName)) {
            Refuse(pszName, "doesn't go with frame, which evaluates the whole scene");
        }
    }
}

void AppendFields(OrderedJson& json, const SFrameCommand& /*command*/) {
    json["frame"] = true;
}

void ReadFields(SEventCommand& command, const CFields& fields) {
    ReadField(command.handle, fields, "node", FIELD_OPTIONAL);
    if (const Json* pRecord = fields.Find("record")) {
        if (!pRecord->is_null()) {
            Refuse("record", "must be null or missing");
        }
        command.bRecord = false;
        return;
    }
    ReadField(command.payload, fields, "payload", FIELD_OPTIONAL);
    ReadField(command.nDevice, fields, "device", 0);
    ReadField(command.nEvent, fields, "event", 0);
}

void AppendFields(OrderedJson& json, const SEventCommand& command) {
    if (command.handle) {
        json["node"] = *command.handle;
    }
    if (!command.bRecord) {
        json["record"] = nullptr;
        return;
    }
    json["device"] = command.nDevice;
    json["event"] = command.nEvent;
    if (!std::holds_alternative<std::monostate>(command.payload)) {
        json["payload"] = ToJson(command.payload);
    }
}

void ReadFields(ParamValue& value, const CFields& fields) {
    if (std::ranges::count_if(VALUE_FIELDS, [&](const char* pszName) { return fields.Has(pszName); }) != 1) {
        Refuse("int, float, string, choice", "exactly one of them must be there");
    }
    if (fields.Has("float")) {
        ReadField(value.emplace<float>(), fields, "float", 0);
    } else if (fields.Has("string")) {
        ReadField(value.emplace<CString>(), fields, "string", 0);
    } else { // an index is the same member
        ReadField(value.emplace<int>(), fields, fields.Has("int") ? "int" : "choice", 0);
    }
}

void AppendFields(OrderedJson& json, const ParamValue& value) {
    json[VALUE_FIELDS[value.index()]] = ToJson(value);
}

/// Refuses what no node fits, so that none is made in vain.
void ReadFields(SSavedSet& saved, const CFields& fields) {
    ReadFields<SSavedSet>(saved, fields);
    std::set<unsigned> dropped;
    for (const unsigned nId : saved.drop) {
        if (!dropped.insert(nId).second) {
            Refuse("saved.drop", "names parameter " + std::to_string(nId) + " twice");
        }
    }
    for (const auto& [nId, bAvailable] : saved.available) {
        dropped.erase(nId); // it's made anew
    }
    for (const unsigned nId : saved.emptyChoices) {
        if (dropped.contains(nId)) {
            Refuse("saved.choices", "parameter " + std::to_string(nId) + " is dropped");
        }
    }
}

void ReadFields(SBatchCommand& batch, const CFields& fields) {
    ReadField(batch.name, fields, "name", FIELD_OPTIONAL);
    const Json& requests = fields.Required("requests");
    if (!requests.is_array()) {
        RefuseKind("requests", "a list");
    }
    auto pCommands = std::make_shared<SCommands>();
    for (size_t i = 0; i < requests.size(); ++i) {
        try {
            const CFields part(requests[i]);
            Command& command = pCommands->list.emplace_back();
            if (EmplaceByTag(command, part.Text("op")) &&
                !std::visit([]<typename Kind>(const Kind&) { return FITS_BATCH<Kind>; }, command)) {
                Refuse("op", "can't be part of a batch"); // whatever its fields are
            }
            ReadFields(command, part);
        } catch (const CRefusal& refusal) {
            throw CRefusal("requests[" + std::to_string(i) + "]." + refusal.what());
        }
    }
    batch.pCommands = std::move(pCommands);
}

void AppendFields(OrderedJson& json, const SBatchCommand& command) {
    if (command.name) {
        json["name"] = *command.name;
    }
    json["requests"] = ToJson(command.pCommands->list);
}

std::shared_ptr<const SSceneDocument> ReadScene(const Json& json, const std::string& strPath) {
    const CFields fields(json, strPath);
    if (fields.Text("format") != FORMAT || fields.Int("version") != VERSION) {
        Refuse(strPath, "isn't a scene of this version");
    }
    auto pScene = std::make_shared<SSceneDocument>();
    ReadFields(*pScene, fields);
    for (auto& [strId, note] : pScene->notes) {
        note.length.reset();
    }
    return pScene;
}

OrderedJson SceneToJson(const SSceneDocument& scene) {
    OrderedJson json = {{"format", FORMAT}, {"version", VERSION}};
    AppendFields(json, scene);
    return json;
}

// ---- Values of their own kind -------------------------------------------------------------------------------------

void ReadFields(SQORMouseData& sample, const CFields& fields) {
    ReadFields<SQORMouseData>(sample, fields);
    if (sample.m_bRelative != 0 && sample.m_bRelative != 1) {
        Refuse(fields.Path("relative"), "must be 0 or 1");
    }
}

void Codec<Payload>::Read(Payload& value, const Json& json, const std::string& strPath) {
    if (!json.is_null()) {
        ReadFields(value, CFields(json, strPath));
    }
}

OrderedJson Codec<Payload>::Write(const Payload& value) {
    if (std::holds_alternative<std::monostate>(value)) {
        return nullptr;
    }
    OrderedJson json = OrderedJson::object();
    AppendFields(json, value);
    return json;
}

void Codec<ParamValue>::Read(ParamValue& value, const Json& json, const std::string& strPath) {
    if (json.is_string()) {
        value = FromUtf8(json.get_ref<const std::string&>());
    } else if (json.is_number_float()) {
        value = ReadFloat(json, strPath);
    } else if (json.is_number()) {
        value = ReadWhole<int>(json, strPath);
    } else {
        RefuseKind(strPath, "a number or a string");
    }
}

void Codec<HeldIdentity>::Read(HeldIdentity& value, const Json& json, const std::string& strPath) {
    if (json.is_string()) {
        value = json.get<std::string>();
    } else if (json.is_number_integer()) {
        value = ReadWhole<int>(json, strPath);
    } else {
        RefuseKind(strPath, "the text of a key or the number of a pointer, hand or virtual key");
    }
}

void Codec<KeySet>::Read(KeySet& value, const Json& json, const std::string& strPath) {
    if (!json.is_array()) {
        RefuseKind(strPath, "a list");
    }
    for (const Json& code : json) {
        const unsigned nCode = ReadWhole<unsigned>(code, strPath);
        if (nCode >= value.size()) {
            Refuse(strPath, std::to_string(nCode) + " isn't a virtual-key code");
        }
        value.set(nCode);
    }
}

OrderedJson Codec<KeySet>::Write(const KeySet& value) {
    OrderedJson list = OrderedJson::array();
    for (size_t nCode = 0; nCode < value.size(); ++nCode) {
        if (value[nCode]) {
            list.push_back(nCode);
        }
    }
    return list;
}

OrderedJson Codec<SRelease>::Write(const SRelease& value) {
    if (value.virtualKey) {
        return {{"virtual_key", *value.virtualKey}};
    }
    return {{"device", value.event.nDevice}, {"event", value.event.nEvent}, {"payload", ToJson(value.event.payload)}};
}

void AppendFields(OrderedJson& json, const SFiredByWindow& fired) {
    const SQOREvent& event = *fired.pEvent;
    OrderedJson params = OrderedJson::array();
    POSITION pos = event.m_lstParam.GetHeadPosition();
    for (const PointedAt& points : fired.points) {
        const VEKParam& param = *event.m_lstParam.GetNext(pos);
        OrderedJson told = OrderedJson::object();
        AppendMember(told, "id", static_cast<unsigned>(param.m_guid.Data1));
        AppendMember(told, "name", Utf8(param.m_strName));
        AppendMember(told, "display", Utf8(param.m_strDisplay));
        AppendMember(told, "type", param.m_nType);
        AppendMember(told, "control", param.m_nControl);
        AppendMember(told, "type_name", Utf8(CString(param.m_szTypeName)));
        AppendMember(told, "points", PointedAtText(points));
        params.push_back(std::move(told));
    }
    AppendMember(json, "name", Utf8(event.m_strName));
    AppendMember(json, "event_id", static_cast<int>(event.m_nId));
    AppendMember(json, "wparam", fired.nWParam);
    AppendMember(json, "params", std::move(params));
}

OrderedJson Codec<std::vector<unsigned char>>::Write(const std::vector<unsigned char>& value) {
    return HexText(value);
}

OrderedJson Codec<const void*>::Write(const void* value) {
    if (value == nullptr) {
        return nullptr;
    }
    char szText[32];
    std::snprintf(szText, sizeof(szText), "%p", value);
    return szText;
}

OrderedJson Codec<LineRefusalCounts>::Write(const LineRefusalCounts& value) {
    OrderedJson counts;
    for (size_t i = 0; i < value.size(); ++i) {
        counts[Names<ELineRefusal>::ROWS[i]] = value[i];
    }
    return counts;
}

OrderedJson Codec<SLastBytes>::Write(const SLastBytes& value) {
    OrderedJson last = {{"size", value.nSize}, {"text", DottedText(value.bytes)}, {"hex", HexText(value.bytes)}};
    if (value.bSent) {
        last["sent"] = *value.bSent;
    }
    return last;
}

void Codec<std::chrono::milliseconds>::Read(std::chrono::milliseconds& value, const Json& json,
                                            const std::string& strPath) {
    constexpr std::chrono::duration<float> SHORTEST = std::chrono::milliseconds(1);
    constexpr std::chrono::duration<float> LONGEST = std::chrono::hours(24);
    const std::chrono::duration<float> time(ReadFloat(json, strPath));
    if (time < SHORTEST || time > LONGEST) {
        Refuse(strPath, "must be from 0.001 to 86400 seconds");
    }
    value = std::chrono::round<std::chrono::milliseconds>(time);
}

OrderedJson Codec<std::chrono::milliseconds>::Write(std::chrono::milliseconds value) {
    return std::chrono::duration<double>(value).count();
}

void Codec<boost::asio::ip::tcp::endpoint>::Read(boost::asio::ip::tcp::endpoint& value, const Json& json,
                                                 const std::string& strPath) {
    const std::string& strText = ReadText(json, strPath);
    std::string strAddress;
    unsigned short nPort = 0;
    boost::system::error_code error;
    const bool bSplit = SplitEndpoint(strText, strAddress, nPort);
    const auto address = boost::asio::ip::make_address(strAddress, error);
    if (!bSplit || nPort == 0 || error) {
        Refuse(strPath, Quoted(strText) + " isn't a numeric address and a port, as in 127.0.0.1:9000");
    }
    value = {address, nPort};
}
