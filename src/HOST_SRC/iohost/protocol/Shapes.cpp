#include "protocol/Shapes.h"

#include <algorithm>
#include <cstdio>
#include <set>

#include "base/PrintableText.h"

namespace {

constexpr char FORMAT[] = "iohost scene";
constexpr int VERSION = 1;

constexpr const char* VALUE_FIELDS[] = {"int", "float", "string", "choice"};

void WritePointedAt(CJsonText& json, const PointedAt& pointed) {
    std::visit(
        [&]<typename Kind>(const Kind& what) {
            if constexpr (std::is_same_v<Kind, CString>) {
                json.Value("clip:" + Utf8(what));
            } else if constexpr (std::is_same_v<Kind, std::string>) {
                json.Value("node:" + what);
            } else if constexpr (std::is_same_v<Kind, int>) {
                json.Value("int:" + std::to_string(what));
            } else {
                json.Value(nullptr);
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

void WriteFields(CJsonText& json, const SFrameCommand& /*command*/) {
    WriteMembers(json, "frame", true);
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

void WriteFields(CJsonText& json, const SEventCommand& command) {
    if (command.handle) {
        WriteMembers(json, "node", *command.handle);
    }
    if (!command.bRecord) {
        WriteMembers(json, "record", nullptr);
        return;
    }
    WriteMembers(json, "device", command.nDevice, "event", command.nEvent);
    if (!std::holds_alternative<std::monostate>(command.payload)) {
        WriteMembers(json, "payload", command.payload);
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

void WriteFields(CJsonText& json, const ParamValue& value) {
    WriteMembers(json, VALUE_FIELDS[value.index()], value);
}

/// Refuses a set that would fit no node, before a node is made for it.
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

void Codec<std::shared_ptr<const SCommands>>::Read(std::shared_ptr<const SCommands>& value, const Json& json,
                                                   const std::string& strPath) {
    if (!json.is_array()) {
        RefuseKind(strPath, "a list");
    }
    auto pCommands = std::make_shared<SCommands>();
    for (size_t i = 0; i < json.size(); ++i) {
        try {
            const CFields part(json[i]);
            Command& command = pCommands->list.emplace_back();
            if (EmplaceByTag(command, part.Text("op")) &&
                !std::visit([]<typename Kind>(const Kind&) { return FITS_BATCH<Kind>; }, command)) {
                Refuse("op", "can't be part of a batch"); // even if its fields are wrong
            }
            ReadFields(command, part);
        } catch (const CRefusal& refusal) {
            throw CRefusal(strPath + "[" + std::to_string(i) + "]." + refusal.what());
        }
    }
    value = std::move(pCommands);
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

void WriteScene(CJsonText& json, const SSceneDocument& scene) {
    WriteMembers(json, "format", FORMAT, "version", VERSION);
    WriteFields(json, scene);
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

void Codec<Payload>::Write(CJsonText& json, const Payload& value) {
    if (std::holds_alternative<std::monostate>(value)) {
        json.Value(nullptr);
    } else {
        json.Object([&] { WriteFields(json, value); });
    }
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

void Codec<KeySet>::Write(CJsonText& json, const KeySet& value) {
    json.List([&] {
        for (size_t nCode = 0; nCode < value.size(); ++nCode) {
            if (value[nCode]) {
                json.Value(nCode);
            }
        }
    });
}

void Codec<SRelease>::Write(CJsonText& json, const SRelease& value) {
    json.Object([&] {
        if (value.virtualKey) {
            WriteMembers(json, "virtual_key", *value.virtualKey);
        } else {
            WriteMembers(json, "device", value.event.nDevice, "event", value.event.nEvent, "payload",
                         value.event.payload);
        }
    });
}

void WriteFields(CJsonText& json, const SFiredByWindow& fired) {
    const SQOREvent& event = *fired.pEvent;
    WriteMembers(json, "name", event.m_strName, "event_id", static_cast<int>(event.m_nId), "wparam", fired.nWParam);
    json.Name("params");
    json.List([&] {
        POSITION pos = event.m_lstParam.GetHeadPosition();
        for (const PointedAt& points : fired.points) {
            const VEKParam& param = *event.m_lstParam.GetNext(pos);
            json.Object([&] {
                WriteMembers(json, "id", static_cast<unsigned>(param.m_guid.Data1), "name", param.m_strName, "display",
                             param.m_strDisplay, "type", param.m_nType, "control", param.m_nControl, "type_name",
                             CString(param.m_szTypeName));
                json.Name("points");
                WritePointedAt(json, points);
            });
        }
    });
}

void Codec<std::vector<unsigned char>>::Write(CJsonText& json, const std::vector<unsigned char>& value) {
    json.Value(HexText(value));
}

void Codec<const void*>::Write(CJsonText& json, const void* value) {
    if (value == nullptr) {
        json.Value(nullptr);
        return;
    }
    char szText[32];
    std::snprintf(szText, sizeof(szText), "%p", value);
    json.Value(szText);
}

void Codec<LineRefusalCounts>::Write(CJsonText& json, const LineRefusalCounts& value) {
    json.Object([&] {
        for (size_t i = 0; i < value.size(); ++i) {
            WriteMembers(json, Names<ELineRefusal>::ROWS[i], value[i]);
        }
    });
}

void Codec<SLastBytes>::Write(CJsonText& json, const SLastBytes& value) {
    json.Object([&] {
        WriteMembers(json, "size", value.nSize, "text", DottedText(value.bytes), "hex", HexText(value.bytes));
        if (value.bSent) {
            WriteMembers(json, "sent", *value.bSent);
        }
    });
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

void Codec<std::chrono::milliseconds>::Write(CJsonText& json, std::chrono::milliseconds value) {
    json.Value(std::chrono::duration<double>(value).count());
}

void Codec<asio::ip::tcp::endpoint>::Read(asio::ip::tcp::endpoint& value, const Json& json,
                                          const std::string& strPath) {
    const std::string& strText = ReadText(json, strPath);
    std::string strAddress;
    unsigned short nPort = 0;
    error_code error;
    const bool bSplit = SplitEndpoint(strText, strAddress, nPort);
    const auto address = asio::ip::make_address(strAddress, error);
    if (!bSplit || nPort == 0 || error) {
        Refuse(strPath, Quoted(strText) + " isn't a numeric address and a port, as in 127.0.0.1:9000");
    }
    value = {address, nPort};
}
