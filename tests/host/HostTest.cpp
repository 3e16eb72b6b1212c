#include "HostTest.h"

#include "protocol/Shapes.h"

#include <fstream>
#include <iterator>
#include <random>

CTemporaryFolder::CTemporaryFolder()
    : m_path(std::filesystem::temp_directory_path() / ("iohost-test-" + std::to_string(std::random_device()()))) {
    std::filesystem::create_directories(m_path);
}

CTemporaryFolder::~CTemporaryFolder() {
    std::error_code ignored;
    std::filesystem::remove_all(m_path, ignored);
}

std::filesystem::path CTemporaryFolder::Write(const std::string& strName, std::string_view content) const {
    const std::filesystem::path file = m_path / strName;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file, std::ios::binary) << content;
    return file;
}

std::string ReadAll(const std::filesystem::path& file) {
    std::ifstream stream(file, std::ios::binary);
    return {std::istreambuf_iterator<char>(stream), std::istreambuf_iterator<char>()};
}

CHostTest::CHostTest(const char* pszModuleFile) {
    std::string strError;
    m_pSession = CSession::Open({.appFolder = m_folder.Path(), .moduleFile = pszModuleFile, .texts = ETextTable::Keys},
                                strError);
    EXPECT_EQ(strError, "");
}

std::string CHostTest::Refusal(std::string_view request) {
    const OrderedJson before = WholeScene();
    const auto nVersion = m_pSession->SceneVersion();
    const OrderedJson reply = AskJson(request);
    EXPECT_EQ(reply["ok"], false) << request;
    EXPECT_EQ(WholeScene(), before) << request;
    EXPECT_EQ(m_pSession->SceneVersion(), nVersion) << request;
    return reply.value("error", "");
}

OrderedJson CHostTest::Must(std::string_view request) {
    OrderedJson reply = AskJson(request);
    EXPECT_EQ(reply["ok"], true) << request << '\n' << reply;
    return reply;
}

OrderedJson CHostTest::Frame() {
    return ToJson(m_pSession->Do(SFrameCommand{.bOutputs = false}).activity);
}

OrderedJson CHostTest::WholeScene() {
    OrderedJson scene = AskObject(Json{{"op", "scene"}});
    OrderedJson whole = {{"nodes", OrderedJson::array()}, {"links", scene["links"]}};
    for (const OrderedJson& node : scene["nodes"]) {
        whole["nodes"].push_back({node, AskObject(Json{{"op", "inspect"}, {"node", node["node"]}})});
    }
    return whole;
}

std::string CHostTest::Quote(const std::filesystem::path& file) {
    return Json(file.string()).dump();
}
