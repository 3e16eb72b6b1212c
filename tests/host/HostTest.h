// A session for each test, on an application folder of its own; and conversations with it.
#pragma once

#include <chrono>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "protocol/SceneFile.h"

using OrderedJson = nlohmann::ordered_json;

template <typename... Members>
std::string JsonObject(const Members&... members);

/// A value as it's told in a reply. Who asks for it includes protocol/Shapes.h: most needn't read those tables.
template <typename T>
OrderedJson ToJson(const T& value) {
    return OrderedJson::parse(JsonObject("value", value))["value"];
}

/// How long tests wait for what must happen, before they call it missing.
inline constexpr std::chrono::seconds LONGEST_WAIT{60};

/// Go on until the condition is met; whether it is.
template <typename Condition, typename Step>
bool Until(Condition isMet, Step goOn) {
    const auto tEnd = std::chrono::steady_clock::now() + LONGEST_WAIT;
    bool bMet = isMet();
    while (!bMet && std::chrono::steady_clock::now() < tEnd) {
        goOn();
        bMet = isMet();
    }
    return bMet;
}

/// A folder that exists as long as the object.
class CTemporaryFolder {
public:
    CTemporaryFolder();
    ~CTemporaryFolder();

    CTemporaryFolder(const CTemporaryFolder&) = delete;
    CTemporaryFolder& operator=(const CTemporaryFolder&) = delete;

    const std::filesystem::path& Path() const { return m_path; }

    /// A file in the folder, with this content.
    std::filesystem::path Write(const std::string& strName, std::string_view content) const;

private:
    std::filesystem::path m_path;
};

/// The content of a file.
std::string ReadAll(const std::filesystem::path& file);

/// A request as JSON, or in short: its op, and fields like param=10 or to=q. A value that isn't JSON is a text, and
/// node types have names.
Json Request(std::string_view text);

/// A request in any of these forms.
class CRequest {
public:
    CRequest(const char* pszText) : m_json(Request(pszText)) {}        // NOLINT: all these convert
    CRequest(const std::string& strText) : m_json(Request(strText)) {} // NOLINT
    CRequest(Json json) : m_json(std::move(json)) {}                   // NOLINT
    CRequest(Json::initializer_list_t list) : m_json(list) {}          // NOLINT

    operator const Json&() const { return m_json; } // NOLINT

private:
    Json m_json;
};

/// Whether a value holds what the pattern does. Of an object it may hold more; what is null in the pattern must be null
/// or missing. An object for a list is about the elements of these ids, and those of the groups in it.
bool Matches(const OrderedJson& value, const Json& pattern);

/// A session with the real module; display texts are their keys.
class CHostTest : public testing::Test {
protected:
    explicit CHostTest(const char* pszModuleFile = MODULE_FILE);

    /// A new session in place of the one that there is.
    void Reopen(const SSessionOptions& options);
    void Reopen() { Reopen({.appFolder = m_folder.Path(), .moduleFile = MODULE_FILE, .texts = ETextTable::Keys}); }

    /// The reply to a request text, as text.
    std::string Ask(std::string_view request) { return AnswerText(*m_pSession, request, m_files); }

    /// The reply to a request, of a connection or of none.
    OrderedJson AskObject(const CRequest& request, CHeldInput* pHeld = nullptr) {
        return OrderedJson::parse(Answer(*m_pSession, request, m_files, {.pHeld = pHeld}));
    }

    /// The error of a request that must be refused, and must leave the scene as it was.
    std::string Refusal(const CRequest& request) { return RefusalOfText(static_cast<const Json&>(request).dump()); }
    std::string RefusalOfText(std::string_view text);

    /// A request that must be carried out.
    OrderedJson Must(const CRequest& request, CHeldInput* pHeld = nullptr);

    /// Requests, one a line, that must be carried out. Behind "=>" stands what the reply must match, or the error of
    /// one that must be refused. Lines of "#" are comments.
    void Talk(std::string_view conversation, CHeldInput* pHeld = nullptr);

    /// Read the network until the condition is met.
    template <typename Condition>
    void Await(Condition isMet) {
        EXPECT_TRUE(Until(isMet, [this] { Must("wait ms=10"); }));
    }

    /// What a frame of the host's own brings about.
    OrderedJson Frame();

    /// All nodes of the scene under `inspect`, and the links.
    OrderedJson WholeScene();

    /// A parameter of a node, by its id; strPlace: own, inputs or outputs. Null without one.
    OrderedJson Param(const std::string& strNode, const std::string& strPlace, unsigned nId);

    /// The outputs that a reply tells of, in order.
    static std::vector<int> Posted(const OrderedJson& reply);

    /// A file name as it stands in a request text.
    static std::string Quote(const std::filesystem::path& file);

    CTemporaryFolder m_folder;
    CSystemFiles m_files;
    std::unique_ptr<CSession> m_pSession;
};

/// A session with the probe module.
class CProbeTest : public CHostTest {
protected:
    CProbeTest() : CHostTest(PROBE_FILE) {}
};

inline constexpr char CREATE_MOUSE[] = R"(create node=m type=mouse clip=Intro graph="Mouse 1")";
inline constexpr char CREATE_KEYBOARD[] = R"(create node=k type=keyboard clip=Intro graph="Keyboard 1")";
inline constexpr char CREATE_PROBE[] = R"(create node=p type=probe clip=Intro graph="Probe 1")";
inline constexpr char CREATE_SECOND_PROBE[] = R"(create node=q type=probe clip=null graph="Probe 2")";

/// A sample of a pointer, with these fields in place of 0.
Json PointerSample(const Json& fields = Json::object());

/// A sample of a hand, with these fields in place of those of the left one at rest.
Json HandSample(const Json& fields = Json::object());

/// The text of a key as a payload.
inline Json KeyText(const std::string& strText) {
    return {{"is", "key"}, {"text", strText}};
}

/// An event for all nodes.
inline Json Event(int nDevice, int nEvent, const Json& payload) {
    return {{"op", "event"}, {"device", nDevice}, {"event", nEvent}, {"payload", payload}};
}
