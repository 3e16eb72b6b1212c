// What each node type looks like to the host, as the files in types/ have it: its row of the catalogue, and what a new
// node holds. A display text that was looked up stands as <its key>; "sets" names the values that the node writes
// itself rather than leave them to the host. To write the files anew, and then to read what changed in them:
//     RENEW_TYPES=1 build/debug/bin/module_tests --gtest_filter='*TypeFile*'
#include <algorithm>
#include <cstdlib>
#include <fstream>
#include <iterator>

#include "ContractTypes.h"
#include "HostCalls.h"
#include "ParamText.h"
#include "SystemCalls.h"

namespace {

using Json = nlohmann::ordered_json;

class TypeFile : public ModuleTest, public testing::WithParamInterface<ContractType> {
protected:
    Json Row() {
        SIOProcessPluginData data;
        TakeImageCalls();
        m_host.Call(0, nullptr, &data);
        const std::vector<ImageCall> images = TakeImageCalls();
        Json found;
        for (INT_PTR i = 0; i < data.arNodeInfo.GetSize(); ++i) {
            const SIOProcessNodeInfo& row = data.arNodeInfo[i];
            if (GuidWords(row.guidType) == GuidWords(TypeGuid(GetParam().nTypeByte))) {
                found = {{"row", i},
                         {"kind", row.nInfoKind},
                         {"name", Utf8(row.strName)},
                         {"tip", Utf8(row.strTip)},
                         {"icon", images.at(static_cast<size_t>(i)).nName},
                         {"offered", row.bEnable}};
            }
            EXPECT_TRUE(row.strAux.IsEmpty() && row.hAux == nullptr && row.arAux.IsEmpty());
            EXPECT_EQ(std::ranges::count(row.aReserved, 0u), std::ssize(row.aReserved));
            DestroyIcon(row.hIcon);
        }
        return found;
    }

    /// Adds to each parameter the names of its values that aren't what a careless host leaves there.
    static void AddSets(Json& groups, const Json& leftByTheHost) {
        for (size_t i = 0; i < groups.size(); ++i) {
            for (size_t j = 0; j < groups[i]["params"].size(); ++j) {
                Json sets = Json::array();
                for (const char* pszName : {"integer", "float"}) {
                    const Json& left = leftByTheHost[i]["params"][j];
                    if (!left.contains(pszName) || left[pszName] != CarelessHost::JUNK) {
                        sets.push_back(pszName);
                    }
                }
                if (!sets.empty()) {
                    groups[i]["params"][j]["sets"] = sets;
                }
            }
        }
    }

    std::string Text() {
        const MarkedTexts texts;
        const NodePtr pNode = m_host.CreateNode(GetParam().nTypeByte);
        SGraphNode graphNode;
        pNode->GetNodeOutput(&graphNode);
        Json inputs = CellsOf(pNode->m_lstParamGroup);
        {
            const CarelessHost host;
            AddSets(inputs, CellsOf(m_host.CreateNode(GetParam().nTypeByte)->m_lstParamGroup));
        }
        const Json node = {{"type", GuidWords(pNode->m_guidType)[3] >> 24},
                           {"kind", pNode->m_nKindCode},
                           {"name", Utf8(pNode->m_strName)},
                           {"second name", Utf8(pNode->m_strSecondName)}};
        return "{\"catalogue\": " + Row().dump() + ",\n\"node\": " + node.dump() + ",\n\"inputs\": " + TextOf(inputs) +
               ",\n\"outputs\": " + TextOf(graphNode.m_lstOutputGroup) + "}\n";
    }
};

INSTANTIATE_TEST_SUITE_P(Types, TypeFile, testing::ValuesIn(ContractTypes()), TestName<ContractType>);

TEST_P(TypeFile, SaysWhatTheHostSees) {
    const auto path = std::filesystem::path(TYPES_FOLDER) / (std::string(GetParam().pszName) + ".json");
    const std::string text = Text();
    if (std::getenv("RENEW_TYPES") != nullptr) {
        std::ofstream(path, std::ios::binary) << text;
    }
    std::ifstream file(path, std::ios::binary);
    EXPECT_EQ(text, std::string(std::istreambuf_iterator<char>(file), {}));
}

} // namespace
