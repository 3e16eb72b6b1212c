#include "protocol/Protocol.h"

#include "base/Caught.h"
#include "protocol/Pushes.h"

namespace {

// Characters, or bytes.
constexpr int MOST_SHOWN = 65536;
constexpr int MOST_SHOWN_TOGETHER = 1 << 20; ///< in one reply or push
constexpr int MOST_SHOWN_BEYOND = 300;       ///< of each further text
constexpr int MOST_SHOWN_OF_KEY = 500;

/// Cuts the texts of one reply or push, however deep in its structs. Handles and devices' names stay whole: requests
/// address nodes by handle, and set devices up by name.
class CCutter {
public:
    void Cut(CString& strText) {
        strText = strText.Left(Most());
        m_nShown += strText.GetLength();
    }

    // Texts with a field for their length. One that was cut before keeps its length.
    void Cut(SLogged& line) { Cut(line.strText, line.length); }
    void Cut(SValues& values) { Cut(values.strText, values.length); }
    void Cut(SNote& note) { Cut(note.strText, note.length); }
    void Cut(SFiredByWindow& fired) { Cut(fired.points); }
    void Cut(SParamState& param) {
        Cut(param.name);
        Cut(param.display);
        Cut(*param.text, param.length);
        Cut(param.choices);
    }
    void Cut(SSentBytes& sent) {
        const auto nMost = static_cast<size_t>(Most());
        if (sent.bytes.size() > nMost) {
            sent.size = sent.size.value_or(sent.bytes.size());
            sent.bytes.resize(nMost);
        }
        m_nShown += static_cast<int>(sent.bytes.size());
    }

    // The same in UTF-8.
    void Cut(SStep& step) {
        std::string strVerb = step.strName.substr(0, step.strName.size() - step.strOf.size()); // the name ends with it
        CutUtf8(strVerb, Most());
        CutUtf8(step.strOf, Most());
        CutUtf8(step.strParam, Most());
        step.strName = strVerb + step.strOf;
        m_nShown += static_cast<int>(step.strName.size() + step.strOf.size() + step.strParam.size());
    }
    void Cut(SHeldEntry& entry) {
        if (auto* pKey = std::get_if<std::string>(&entry.identity)) {
            CutUtf8(*pKey, MOST_SHOWN_OF_KEY);
        }
    }
    void Cut(SRelease& release) {
        if (auto* pKey = std::get_if<SKeyEventData>(&release.event.payload)) {
            pKey->m_strText = pKey->m_strText.Left(MOST_SHOWN_OF_KEY);
        }
    }

    template <Shaped T>
    void Cut(T& object) {
        std::apply([&](const auto&... field) { (Cut(object.*field.pMember), ...); }, Shape<T>::FIELDS);
    }
    template <typename T>
    void Cut(std::optional<T>& value) {
        if (value) {
            Cut(*value);
        }
    }
    template <typename T>
    void Cut(std::vector<T>& list) {
        for (T& element : list) {
            Cut(element);
        }
    }
    template <typename Key, typename T>
    void Cut(std::pair<Key, T>& entry) {
        Cut(entry.second);
    }
    template <typename... Kinds>
    void Cut(std::variant<Kinds...>& value) {
        std::visit([&](auto& held) { Cut(held); }, value);
    }
    template <typename T>
    void Cut(T& /*value*/) {} ///< anything else stays

private:
    void Cut(CString& strText, std::optional<int>& length) {
        if (strText.GetLength() > Most()) {
            length = length.value_or(strText.GetLength());
        }
        Cut(strText);
    }

    static void CutUtf8(std::string& strText, int nMost) {
        if (strText.size() > static_cast<size_t>(nMost)) {
            strText = Utf8(FromUtf8(strText).Left(nMost));
        }
    }

    int Most() const { return m_nShown < MOST_SHOWN_TOGETHER ? MOST_SHOWN : MOST_SHOWN_BEYOND; }

    int m_nShown = 0;
};

} // namespace

void ReadRequest(SRequest& request, const CFields& fields, ISceneFiles& files) {
    if (const Json* pId = fields.Find("id")) {
        if (pId->is_structured()) {
            Refuse("id", "must be a string, a number, true, false or null");
        }
        request.id = *pId;
    }
    const std::string& strOp = fields.Text("op");
    if (strOp == TAG_NAME<SLoadCommand> && !fields.Has("scene")) {
        const Json scene = ParseJson(files.Read(fields.Text("file")), "file");
        auto& load =
            request.command.emplace<SLoadCommand>(SLoadCommand{ReadScene(scene, "file"), "file", fields.Text("file")});
        ReadField(load.bStep, fields, "step", FIELD_OPTIONAL);
    } else if (strOp == TAG_NAME<SRecoverCommand>) {
        request.bRecovers = true;
        request.command = SRecoverCommand();
        const std::string strText = files.ReadLeft();
        if (ReadBool(fields.Required("take"), "take")) {
            const Json scene = ParseJson(strText, "scene");
            request.command = SLoadCommand{ReadScene(scene, "scene"), "scene", FileNameIn(scene), true};
        }
    } else if (strOp == TAG_NAME<SFrameCommand> && fields.Has("frame") && ReadBool(*fields.Find("frame"), "frame")) {
        ReadFields(request.command.emplace<SFrameCommand>(), fields);
    } else {
        ReadFields(request.command, fields);
    }
}

std::string ReplyTo(const SDone& done, const Json& id) {
    CJsonText json;
    json.Object([&] {
        WriteMembers(json, "ok", !done.outcome.error);
        if (!id.is_discarded()) {
            json.Name("id");
            json.Raw(id.dump());
        }
        if (done.outcome.error) {
            WriteMembers(json, "error", *done.outcome.error);
        } else {
            std::visit([&](const auto& result) { WriteFields(json, result); }, done.outcome.result);
        }
        WriteFields(json, done.activity);
    });
    return json.Take();
}

std::string ErrorReply(const std::string& strError, const Json& id) {
    return ReplyTo({nullptr, {}, {{}, strError}, {}}, id);
}

std::string Answer(CSession& session, const Json& json, ISceneFiles& files, const SOrigin& origin,
                   void (*edit)(SDone& done)) {
    SRequest request;
    try {
        ReadRequest(request, CFields(json), files);
        SDone done = session.Do(request.command, origin);
        if (const auto* pScene = std::get_if<SSceneDocument>(&done.outcome.result)) {
            const auto& [strFile, bReplace] = std::get<SSaveCommand>(request.command);
            const std::string strText = SceneText(*pScene);
            done.outcome.result = {};
            try {
                files.Write(strFile, strText, bReplace || strFile == session.History().File().strName);
                session.History().NoteSaved(strFile);
            } catch (const CRefusal& refusal) {
                done.outcome.error = refusal.what();
            }
        }
        if (request.bRecovers && !done.outcome.error) {
            files.EndLeft(std::holds_alternative<SLoadCommand>(request.command));
        }
        if (std::holds_alternative<SScenesCommand>(request.command)) {
            done.outcome.result = SScenes{files.List()};
        }
        if (edit != nullptr) {
            edit(done);
        }
        return ReplyTo(done, request.id);
    } catch (...) {
        return ErrorReply(CaughtText(), request.id);
    }
}

std::string AnswerText(CSession& session, std::string_view text, ISceneFiles& files, const SOrigin& origin,
                       void (*edit)(SDone& done)) {
    Json request;
    try {
        request = ParseJson(text, "request");
    } catch (const CRefusal& refusal) {
        return ErrorReply(refusal.what());
    }
    return Answer(session, request, files, origin, edit);
}

void CutForViewers(SActivity& told) {
    CCutter().Cut(told);
}

void CutForViewers(Push& told) {
    CCutter().Cut(told);
}

void CutForViewers(SDone& told) {
    CCutter cutter;
    cutter.Cut(told.outcome.result);
    cutter.Cut(told.activity);
}

std::string SceneText(const SSceneDocument& scene, const std::string& strFile) {
    CJsonText json(true);
    json.Object([&] {
        WriteScene(json, scene);
        if (!strFile.empty()) {
            WriteMembers(json, "file", strFile);
        }
    });
    return json.Take() + "\n";
}

std::string FileNameIn(const Json& scene) {
    const auto file = scene.find("file");
    return file != scene.end() && file->is_string() ? file->get<std::string>() : std::string();
}
