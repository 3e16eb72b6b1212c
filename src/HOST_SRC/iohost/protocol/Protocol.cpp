#include "protocol/Protocol.h"

#include "base/Caught.h"
#include "protocol/Shapes.h"

namespace {

// Characters, or bytes.
constexpr int MOST_SHOWN = 65536;
constexpr int MOST_SHOWN_TOGETHER = 1 << 20; ///< in one reply or push
constexpr int MOST_SHOWN_BEYOND = 300;       ///< of each further text
constexpr int MOST_SHOWN_OF_KEY = 500;

/// Cuts the texts of one reply or push. What was cut before keeps the length that it has.
class CCutter {
public:
    void Cut(CString& strText, std::optional<int>& length) {
        if (strText.GetLength() > Most()) {
            length = length.value_or(strText.GetLength());
            strText = strText.Left(Most());
        }
        m_nShown += strText.GetLength();
    }

    void Cut(SSentBytes& sent) {
        const auto nMost = static_cast<size_t>(Most());
        if (sent.bytes.size() > nMost) {
            sent.size = sent.size.value_or(sent.bytes.size());
            sent.bytes.resize(nMost);
        }
        m_nShown += static_cast<int>(sent.bytes.size());
    }

    void Cut(SActivity& activity) {
        for (SLogged& line : activity.logged) {
            Cut(line.strText, line.length);
        }
        for (Sent& sent : activity.sent) {
            if (auto* pBytes = std::get_if<SSentBytes>(&sent)) {
                Cut(*pBytes);
            }
        }
    }

    void Cut(OutputValues& values) {
        for (auto& [strHandle, outputs] : values) {
            for (auto& [nId, value] : outputs) {
                Cut(value.strText, value.length);
            }
        }
    }

    void Cut(SNodeDetails& details) {
        for (auto* pGroups : {&details.own, &details.inputs, &details.outputs}) {
            for (SGroupState& group : *pGroups) {
                for (SParamState& param : group.params) {
                    Cut(*param.text, param.length);
                }
            }
        }
    }

private:
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

OrderedJson ReplyTo(const SDone& done, const OrderedJson& id) {
    OrderedJson reply = {{"ok", !done.outcome.error}};
    if (!id.is_discarded()) {
        reply["id"] = id;
    }
    if (done.outcome.error) {
        reply["error"] = *done.outcome.error;
    } else {
        std::visit([&](const auto& result) { AppendFields(reply, result); }, done.outcome.result);
    }
    AppendFields(reply, done.activity);
    return reply;
}

OrderedJson ErrorReply(const std::string& strError, const OrderedJson& id) {
    return ReplyTo({nullptr, {}, {{}, strError}, {}}, id);
}

OrderedJson Answer(CSession& session, const Json& json, ISceneFiles& files, const SOrigin& origin,
                   void (*edit)(SDone& done)) {
    SRequest request;
    try {
        ReadRequest(request, CFields(json), files);
        SDone done = session.Do(request.command, origin);
        if (const auto* pScene = std::get_if<SSceneDocument>(&done.outcome.result)) {
            const std::string& strFile = std::get<SSaveCommand>(request.command).strFile;
            const std::string strText = SceneText(*pScene);
            done.outcome.result = {};
            try {
                files.Write(strFile, strText);
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
        return ReplyText(ErrorReply(refusal.what()));
    }
    return ReplyText(Answer(session, request, files, origin, edit));
}

std::string ReplyText(const OrderedJson& reply) {
    return reply.dump(-1, ' ', false, OrderedJson::error_handler_t::replace);
}

void CutForViewers(SActivity& activity) {
    CCutter().Cut(activity);
}

void CutForViewers(OutputValues& values) {
    CCutter().Cut(values);
}

void CutForViewers(SDone& done) {
    CCutter cutter;
    if (auto* pFrame = std::get_if<SFrameResults>(&done.outcome.result)) {
        cutter.Cut(pFrame->outputs);
    }
    if (auto* pLog = std::get_if<SLogLines>(&done.outcome.result)) {
        for (SKeptLine& kept : pLog->lines) {
            cutter.Cut(kept.line.strText, kept.line.length);
        }
    }
    if (auto* pDetails = std::get_if<SNodeDetails>(&done.outcome.result)) {
        cutter.Cut(*pDetails);
    }
    if (auto* pNodes = std::get_if<SNodesDetails>(&done.outcome.result)) {
        for (auto& [strHandle, details] : pNodes->nodes) {
            cutter.Cut(details);
        }
    }
    cutter.Cut(done.activity);
}

void CutForViewers(std::vector<SHeldEntry>& entries) {
    for (SHeldEntry& entry : entries) {
        if (auto* pKey = std::get_if<std::string>(&entry.identity)) {
            *pKey = Utf8(FromUtf8(*pKey).Left(MOST_SHOWN_OF_KEY));
        }
    }
}

std::string SceneText(const SSceneDocument& scene, const std::string& strFile) {
    OrderedJson json = SceneToJson(scene);
    if (!strFile.empty()) {
        json["file"] = strFile;
    }
    return json.dump(1, ' ', false, OrderedJson::error_handler_t::replace) + "\n";
}

std::string FileNameIn(const Json& scene) {
    const auto file = scene.find("file");
    return file != scene.end() && file->is_string() ? file->get<std::string>() : std::string();
}
