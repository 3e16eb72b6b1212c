#include "fronts/recording/Replay.h"

#include <limits>
#include <map>

#include "base/LineReader.h"
#include "base/PrintableText.h"
#include "base/TextUtf8.h"
#include "fronts/recording/Recorder.h"
#include "protocol/SceneFile.h"
#include "protocol/Shapes.h"

namespace {

constexpr int MOST_CONNECTIONS = 1'000'000;
constexpr size_t ANY_LENGTH = std::numeric_limits<size_t>::max(); ///< a scene that was loaded is one line

/// A value in a message: long ones are cut.
std::string ValueText(const Json& value) {
    constexpr size_t LONGEST = 200;
    return ShortText(value.dump(), LONGEST);
}

/// A line of a recording. What isn't one is refused.
Json ParseLine(std::string_view line) {
    Json request = ParseJson(line, "line");
    const CFields fields(request, "line");
    ReadBool(CFields(fields.Required("reply"), "line.reply").Required("ok"), "line.reply.ok");
    if (fields.Has("connection") && (fields.Int("connection") < 1 || fields.Int("connection") > MOST_CONNECTIONS)) {
        Refuse(fields.Path("connection"), "isn't the number of one");
    }
    return request;
}

/// The account of a recorded connection. Accounts are numbered in the order in which they are opened.
CHeldInput& Connection(CSession& session, std::map<int, CHeldInput*>& connections, int nConnection) {
    while (!connections.contains(nConnection)) {
        CHeldInput& connection = session.Held().Open();
        connections.emplace(connection.Connection(), &connection);
    }
    return *connections.at(nConnection);
}

/// Carry out a recorded request; none for one that would reach outside of the session, whatever the recording says.
std::optional<std::string> Repeat(CSession& session, const Json& json, CHeldInput* pHeld) {
    const CFields fields(json);
    CNoFiles files;
    SRequest request;
    SOrigin origin{.pHeld = pHeld};
    try {
        ReadRequest(request, fields, files);
        if (std::holds_alternative<SEventCommand>(request.command)) {
            ReadField(origin.from, fields, "from", FIELD_OPTIONAL);
        }
    } catch (const CRefusal& refusal) {
        const bool bNamesFile = fields.Has("file") && !fields.Has("scene");
        return bNamesFile ? std::nullopt : std::optional(ErrorReply(refusal.what(), request.id));
    }
    if (!IsKept(request.command)) {
        return std::nullopt;
    }
    SDone done = session.Do(WithoutAddresses(request.command), origin);
    done.activity = ActivityToKeep(std::move(done.activity));
    return ReplyTo(done, request.id);
}

} // namespace

std::vector<std::string> ReplyDifferences(const Json& recorded, const Json& now) {
    std::vector<std::string> differences;
    for (const Json& step : Json::diff(recorded, now)) {
        const std::string& strPath = step["path"].get_ref<const std::string&>();
        const bool bRecorded = step["op"] != "add";
        differences.push_back(strPath.substr(strPath.empty() ? 0 : 1) + ": recorded " +
                              (bRecorded ? ValueText(recorded.at(Json::json_pointer(strPath))) : "nothing") + ", now " +
                              (step.contains("value") ? ValueText(step["value"]) : "nothing"));
    }
    return differences;
}

std::unique_ptr<CReplay> CReplay::Open(const std::filesystem::path& file, std::string& strError) {
    std::unique_ptr<CReplay> pReplay(new CReplay);
    pReplay->m_file.open(file, std::ios::binary);
    if (!pReplay->m_file || ReadLine(pReplay->m_file, pReplay->m_strFirstLine, ANY_LENGTH) != ELine::Complete) {
        strError = "the file " + Utf8(file) + " can't be read";
        return nullptr;
    }
    try {
        const Json first = ParseLine(pReplay->m_strFirstLine);
        const CFields fields(first);
        const auto nTexts = FindByName<ETextTable>(fields.Text("texts"));
        if (fields.Text("op") == "recording" && nTexts) {
            pReplay->m_nTexts = *nTexts;
            return pReplay;
        }
    } catch (const CRefusal&) {
        // Said below.
    }
    strError = "the file " + Utf8(file) + " isn't a recording";
    return nullptr;
}

CReplay::EResult CReplay::Run(CSession& session, std::ostream& output) {
    constexpr size_t MOST_NAMED = 100; ///< differences
    constexpr size_t MOST_NAMED_IN_LINE = 10;
    const std::vector<std::string> NO_DIFFERENCES;
    std::map<int, CHeldInput*> connections;
    size_t nRequests = 0;
    size_t nDifferent = 0;
    size_t nNamed = 0;
    std::string strLine = m_strFirstLine;
    for (size_t nLine = 1;; ++nLine) {
        const ELine nRead = nLine == 1 ? ELine::Complete : ReadLine(m_file, strLine, ANY_LENGTH);
        if (nRead == ELine::None) {
            break;
        }
        const std::string strPlace = "line " + std::to_string(nLine);
        if (nRead == ELine::Failed) {
            output << strPlace << ": can't be read\n";
            return EResult::Broken;
        }
        Json request;
        try {
            request = ParseLine(strLine);
        } catch (const CRefusal& refusal) {
            output << strPlace << ": " << PrintableText(refusal.what()) << '\n';
            return EResult::Broken;
        }
        const Json op = request.value("op", Json());
        const Json recorded = std::move(request["reply"]);
        request.erase("reply");
        CHeldInput* pHeld = nullptr;
        if (request.contains("connection")) {
            pHeld = &Connection(session, connections, request["connection"].get<int>());
        }
        const auto reply = Repeat(session, request, pHeld);
        const auto differences = reply ? ReplyDifferences(recorded, Json::parse(*reply)) : NO_DIFFERENCES;
        ++nRequests;
        nDifferent += differences.empty() ? 0 : 1;
        for (size_t i = 0; i < differences.size() && nNamed < MOST_NAMED; ++i) {
            if (i == MOST_NAMED_IN_LINE) {
                output << strPlace << ": and " << differences.size() - i << " more\n";
                break;
            }
            output << strPlace << ", " << PrintableText(op.is_string() ? op.get<std::string>() : "no op") << ": "
                   << PrintableText(differences[i]) << '\n';
            ++nNamed;
        }
    }
    output << nRequests << " requests replayed: ";
    if (nDifferent == 0) {
        output << "all replies are as recorded\n";
        return EResult::Same;
    }
    output << nDifferent << (nDifferent == 1 ? " reply differs\n" : " replies differ\n");
    return EResult::Different;
}
