#include "HostTest.h"

#include <algorithm>
#include <fstream>
#include <iterator>
#include <map>
#include <random>
#include <sstream>

namespace {

const std::map<std::string, std::string> TYPES = {
    {"keyboard", "{8164BB40-6B6A-4707-88B7-386BCB0D1B01}"},
    {"text_field", "{8164BB40-6B6A-4707-88B7-386BCB0D1B02}"},
    {"mouse", "{8164BB40-6B6A-4707-88B7-386BCB0D1B03}"},
    {"send", "{8164BB40-6B6A-4707-88B7-386BCB0D1B04}"},
    {"receive", "{8164BB40-6B6A-4707-88B7-386BCB0D1B05}"},
    {"gesture", "{8164BB40-6B6A-4707-88B7-386BCB0D1B07}"},
    {"handle", "{8164BB40-6B6A-4707-88B7-386BCB0D1B08}"},
    {"broadcast_send", "{8164BB40-6B6A-4707-88B7-386BCB0D1B06}"},
    {"nobodys", "{8164BB40-6B6A-4707-88B7-386BCB0D1B09}"}, // the module makes none
    {"key_check", "{8164BB40-6B6A-4707-88B7-386BCB0D1B0B}"},
    {"object_json", "{8164BB40-6B6A-4707-88B7-386BCB0D1B0C}"},
    {"broadcast_receive", "{8164BB40-6B6A-4707-88B7-386BCB0D1B0D}"},
    {"device_json", "{8164BB40-6B6A-4707-88B7-386BCB0D1B0E}"},
    {"string_send", "{8164BB40-6B6A-4707-88B7-386BCB0D1B0F}"},
    {"probe", "{11111111-2222-3333-4444-555555555555}"},
    {"immortal", "{11111111-2222-3333-4444-555555555556}"}, // a probe that isn't freed
};

/// The element with this id, also of the groups in the list.
const OrderedJson* FindId(const OrderedJson& list, const std::string& strId) {
    for (const OrderedJson& element : list) {
        if (element.contains("id") && element["id"].dump() == strId) {
            return &element;
        }
        if (element.contains("params")) {
            if (const OrderedJson* pFound = FindId(element["params"], strId)) {
                return pFound;
            }
        }
    }
    return nullptr;
}

} // namespace

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

Json Request(std::string_view text) {
    if (text.starts_with('{')) {
        return Json::parse(text);
    }
    std::vector<std::string> words(1);
    int nDepth = 0;
    bool bQuoted = false;
    for (size_t i = 0; i < text.size(); ++i) {
        const char c = text[i];
        bQuoted ^= c == '"' && text[i - 1] != '\\';
        nDepth += bQuoted ? 0 : (c == '[' || c == '{') - (c == ']' || c == '}');
        if (c == ' ' && !bQuoted && nDepth == 0) {
            words.emplace_back();
        } else {
            words.back() += c;
        }
    }
    Json request = {{"op", words[0]}};
    for (size_t i = 1; i < words.size(); ++i) {
        const size_t nEnd = words[i].find('=');
        EXPECT_NE(nEnd, std::string::npos) << text;
        const std::string strField = words[i].substr(0, nEnd);
        const std::string strValue = words[i].substr(nEnd + 1);
        const Json value = Json::parse(strValue, nullptr, false);
        const auto type = TYPES.find(strValue);
        request[strField] = !value.is_discarded()                       ? value
                            : strField == "type" && type != TYPES.end() ? Json(type->second)
                                                                        : Json(strValue);
    }
    return request;
}

bool Matches(const OrderedJson& value, const Json& pattern) {
    if (pattern.is_object()) {
        return std::ranges::all_of(pattern.items(),
                                   [&](const auto& item) {
                                       static const OrderedJson none;
                                       const OrderedJson* pPart = &none;
                                       if (value.is_array()) {
                                           const OrderedJson* pFound = FindId(value, item.key());
                                           pPart = pFound != nullptr ? pFound : &none;
                                       } else if (value.contains(item.key())) {
                                           pPart = &value[item.key()];
                                       }
                                       return item.value().is_null() ? pPart->is_null() : Matches(*pPart, item.value());
                                   }) &&
               (value.is_object() || !pattern.empty());
    }
    if (pattern.is_array()) {
        return value.is_array() && value.size() == pattern.size() &&
               std::equal(value.begin(), value.end(), pattern.begin(), Matches);
    }
    return value == OrderedJson(pattern);
}

CHostTest::CHostTest(const char* pszModuleFile) {
    Reopen({.appFolder = m_folder.Path(), .moduleFile = pszModuleFile, .texts = ETextTable::Keys});
}

void CHostTest::Reopen(const SSessionOptions& options) {
    m_pSession.reset();
    std::string strError;
    m_pSession = CSession::Open(options, strError);
    EXPECT_EQ(strError, "");
}

std::string CHostTest::RefusalOfText(std::string_view text) {
    const OrderedJson before = WholeScene();
    const auto nVersion = m_pSession->SceneVersion();
    const OrderedJson reply = OrderedJson::parse(Ask(text));
    EXPECT_EQ(reply["ok"], false) << text;
    EXPECT_EQ(WholeScene(), before) << text;
    EXPECT_EQ(m_pSession->SceneVersion(), nVersion) << text;
    return reply.value("error", "");
}

OrderedJson CHostTest::Must(const CRequest& request, CHeldInput* pHeld) {
    OrderedJson reply = AskObject(request, pHeld);
    EXPECT_EQ(reply["ok"], true) << static_cast<const Json&>(request) << '\n' << reply;
    return reply;
}

void CHostTest::Talk(std::string_view conversation, CHeldInput* pHeld) {
    std::istringstream lines{std::string(conversation)};
    for (std::string strLine; std::getline(lines, strLine);) {
        strLine.erase(0, strLine.find_first_not_of(' '));
        if (strLine.empty() || strLine[0] == '#') {
            continue;
        }
        const size_t nArrow = strLine.find(" => ");
        const std::string strRequest = strLine.substr(0, nArrow);
        const std::string strExpected = nArrow == std::string::npos ? "{}" : strLine.substr(nArrow + 4);
        if (strExpected.starts_with('{')) {
            const OrderedJson reply = Must(strRequest, pHeld);
            EXPECT_TRUE(Matches(reply, Json::parse(strExpected))) << strLine << '\n' << reply;
        } else {
            EXPECT_EQ(Refusal(strRequest), strExpected) << strRequest;
        }
    }
}

OrderedJson CHostTest::Frame() {
    OrderedJson reply = OrderedJson::parse(ReplyTo(m_pSession->Do(SFrameCommand{.bOutputs = false})));
    reply.erase("ok");
    reply.erase("results");
    return reply;
}

OrderedJson CHostTest::WholeScene() {
    OrderedJson scene = AskObject("scene");
    OrderedJson whole = {{"nodes", OrderedJson::array()}, {"links", scene["links"]}};
    for (const OrderedJson& node : scene["nodes"]) {
        whole["nodes"].push_back({node, AskObject({{"op", "inspect"}, {"node", node["node"]}})});
    }
    return whole;
}

OrderedJson CHostTest::Param(const std::string& strNode, const std::string& strPlace, unsigned nId) {
    const OrderedJson node = Must({{"op", "inspect"}, {"node", strNode}});
    const OrderedJson* pParam = FindId(node[strPlace], std::to_string(nId));
    return pParam != nullptr ? *pParam : OrderedJson();
}

std::vector<int> CHostTest::Posted(const OrderedJson& reply) {
    std::vector<int> outputs;
    for (const OrderedJson& posted : reply.value("posted", OrderedJson::array())) {
        outputs.push_back(posted["output"]);
    }
    return outputs;
}

std::string CHostTest::Quote(const std::filesystem::path& file) {
    return Json(file.string()).dump();
}

Json PointerSample(const Json& fields) {
    Json sample = {{"is", "pointer"}, {"rx", 0}, {"ry", 0}, {"x", 0}, {"y", 0}, {"pointer", 0}, {"relative", 0}};
    sample.update(fields);
    return sample;
}

Json HandSample(const Json& fields) {
    Json sample = {{"is", "vr"}, {"hand", 0}, {"trigger", 0}, {"pad", 0}, {"padx", 0.75}, {"pady", 0.25}};
    sample["pose"] = {1, 0, 0, 0, 0, 1, 0, 0, 0, 0, 1, 0, 10.5, -20.25, 30, 1};
    sample["hit"] = {-1, 2, 1e9};
    sample["press"] = 1000;
    sample["release"] = 1499;
    sample.update(fields);
    return sample;
}
