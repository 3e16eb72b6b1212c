// Requests and replies of the session protocol.
#pragma once

#include <string>
#include <string_view>

#include "protocol/Fields.h"
#include "session/Session.h"

/// Where the requests `save` and `load` keep scenes. Names are what the requests call "file".
class ISceneFiles {
public:
    /// Refuse what can't be read or written; without bReplace also a file that is there already.
    virtual std::string Read(const std::string& strName) = 0;
    virtual void Write(const std::string& strName, const std::string& strText, bool bReplace) = 0;

    /// The scenes that are there.
    virtual std::vector<SSceneFileInfo> List() { Refuse("op", "there is a folder of scenes for connections only"); }

    /// What an earlier host left unsaved, as SceneText wrote it; refused where there is nothing.
    virtual std::string ReadLeft() { Refuse("op", "nothing unsaved was left"); }

    /// What was left has been loaded: its file is now the one for unsaved work. Or it was given up: its file goes.
    virtual void EndLeft(bool /*bLoaded*/) {}

protected:
    ~ISceneFiles() = default;
};

/// A request, read and checked.
struct SRequest {
    Json id = Json::value_t::discarded; ///< comes back in the reply; discarded: there is none
    Command command;
    bool bRecovers = false; ///< it's about what an earlier host left unsaved
};

/// Read a request, and the file of a scene to load. On a refusal the id is there, if it could be read.
void ReadRequest(SRequest& request, const CFields& fields, ISceneFiles& files);

/// The replies to a command that was carried out and to a request that was refused: one line of valid UTF-8 each.
std::string ReplyTo(const SDone& done, const Json& id = Json::value_t::discarded);
std::string ErrorReply(const std::string& strError, const Json& id = Json::value_t::discarded);

/// Carry out one request and return its reply. `edit` may change what the reply tells.
std::string Answer(CSession& session, const Json& request, ISceneFiles& files, const SOrigin& origin = {},
                   void (*edit)(SDone& done) = nullptr);

/// The same for a request's text; one that isn't JSON gets an error reply.
std::string AnswerText(CSession& session, std::string_view text, ISceneFiles& files, const SOrigin& origin = {},
                       void (*edit)(SDone& done) = nullptr);

/// Cut what is too long for people to look at, and what is too much for one reply or push. The beginnings of texts and
/// bytes stay. Where there is a field for the length, it tells how long the whole was; names have none.
void CutForViewers(SActivity& told);
void CutForViewers(SDone& told);

/// A scene as the text of a file. strFile: the file that the scene belongs to, where the text goes to another one.
std::string SceneText(const SSceneDocument& scene, const std::string& strFile = {});

/// The file's name in such a text; empty where there is none.
std::string FileNameIn(const Json& scene);
