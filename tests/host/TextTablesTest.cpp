// The display texts of the application folder: English and Chinese for every key that the module looks up.
#include <algorithm>
#include <filesystem>
#include <set>

#include "HostTest.h"

namespace {

const std::filesystem::path APPLICATION_FOLDER = APP_FOLDER;

using TextTables = CHostTest;

bool IsUpperCase(char c) {
    return (c >= 'A' && c <= 'Z') || c == '_';
}

/// All keys among the texts of a reply; a number that the node appends to the text isn't the key's.
void CollectKeys(const OrderedJson& reply, std::set<std::string>& keys) {
    if (reply.is_string()) {
        std::string strText = reply;
        strText.erase(strText.find_last_not_of("0123456789") + 1);
        if (strText.find('_') != std::string::npos && std::ranges::all_of(strText, IsUpperCase)) {
            keys.insert(strText);
        }
    }
    if (reply.is_structured()) {
        for (const OrderedJson& part : reply) {
            CollectKeys(part, keys);
        }
    }
}

TEST_F(TextTables, HaveATextForEachKeyInBothLanguages) {
    // Those of a general event's parameters are seen by none but who receives it.
    std::set<std::string> keys = {"TOUCH_CONTROL_OWNER_CLIP", "TOUCH_CONTROL_OWNER_OBJECT",
                                  "TOUCH_CONTROL_OWNER_PROPERTY", "QOR_EXTRADATA_EVENT_ID"};
    const OrderedJson catalogue = Must(R"({"op":"catalogue"})");
    CollectKeys(catalogue, keys);
    EXPECT_EQ(keys.size(), 4u + catalogue["types"].size());
    for (const OrderedJson& type : catalogue["types"]) {
        const std::string strNode = type["guid"];
        AskObject({{"op", "create"}, {"node", strNode}, {"type", strNode}, {"clip", "Clip"}, {"graph", strNode}});
        CollectKeys(AskObject({{"op", "inspect"}, {"node", strNode}}), keys);
    }
    EXPECT_GT(keys.size(), 80u);
    for (const char* pszTable : {"en.json", "zh.json"}) {
        const auto table = Json::parse(ReadAll(APPLICATION_FOLDER / "Config" / "Texts" / pszTable));
        for (const std::string& strKey : keys) {
            EXPECT_TRUE(table.contains(strKey) && table[strKey] != "" && table[strKey] != strKey)
                << pszTable << ' ' << strKey;
        }
    }
}

} // namespace
