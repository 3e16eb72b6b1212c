// A session for each test, on an application folder of its own.
#pragma once

#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include <gtest/gtest.h>

#include "protocol/SceneFile.h"

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

/// A session with the real module; display texts are their keys.
class CHostTest : public testing::Test {
protected:
    explicit CHostTest(const char* pszModuleFile = MODULE_FILE);

    /// The reply to a request text, as text.
    std::string Ask(std::string_view request) { return AnswerText(*m_pSession, request, m_files); }

    /// The reply to a request object, of a connection or of none.
    OrderedJson AskObject(const Json& request, CHeldInput* pHeld = nullptr) {
        return Answer(*m_pSession, request, m_files, {.pHeld = pHeld});
    }
    OrderedJson AskJson(std::string_view request) { return OrderedJson::parse(Ask(request)); }

    /// The error text of a request that must be refused, and must leave the scene as it was.
    std::string Refusal(std::string_view request);

    /// A request that must be carried out.
    OrderedJson Must(std::string_view request);

    /// What a frame of the host's own brings about.
    OrderedJson Frame();

    /// All nodes of the scene under `inspect`, and the links.
    OrderedJson WholeScene();

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

inline constexpr char CREATE_MOUSE[] =
    R"({"op":"create","node":"m","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B03}","clip":"Intro","graph":"Mouse 1"})";
inline constexpr char CREATE_KEYBOARD[] =
    R"({"op":"create","node":"k","type":"{8164BB40-6B6A-4707-88B7-386BCB0D1B01}","clip":"Intro","graph":"Keyboard 1"})";
inline constexpr char CREATE_PROBE[] =
    R"({"op":"create","node":"p","type":"{11111111-2222-3333-4444-555555555555}","clip":"Intro","graph":"Probe 1"})";
inline constexpr char CREATE_SECOND_PROBE[] =
    R"({"op":"create","node":"q","type":"{11111111-2222-3333-4444-555555555555}","clip":null,"graph":"Probe 2"})";
