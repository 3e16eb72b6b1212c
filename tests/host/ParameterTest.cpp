// set, edit and drop.
#include "HostTest.h"

namespace {

class Parameter : public CProbeTest {
protected:
    Parameter() { Must(CREATE_PROBE); }

    OrderedJson Param(const char* pszPlace, size_t nIndex) {
        return Must(R"({"op":"inspect","node":"p"})")[pszPlace][0]["params"][nIndex];
    }
};

TEST_F(Parameter, SetChangesTheGraphNodesInput) {
    EXPECT_EQ(Ask(R"({"op":"set","node":"p","param":10,"int":-2147483648})"), R"({"ok":true})");
    Must(R"({"op":"set","node":"p","param":11,"float":0.5})");
    Must(R"({"op":"set","node":"p","param":12,"string":"触发 𝄞"})");
    Must(R"({"op":"set","node":"p","param":13,"choice":1})");
    EXPECT_EQ(Param("inputs", 0)["int"], -2147483648LL);
    EXPECT_EQ(Param("inputs", 1)["float"], 0.5);
    EXPECT_EQ(Param("inputs", 2)["string"], "触发 𝄞");
    EXPECT_EQ(Param("inputs", 3)["int"], 1);
    EXPECT_EQ(Param("own", 0)["int"], 0);
    EXPECT_EQ(Param("own", 2)["string"], "");
}

TEST_F(Parameter, SetOwnChangesTheNodesParameter) {
    Must(R"({"op":"set","node":"p","param":10,"int":3,"own":true})");
    EXPECT_EQ(Param("own", 0)["int"], 3);
    EXPECT_EQ(Param("inputs", 0)["int"], 0);
}

TEST_F(Parameter, SetChangesOneMemberOnly) {
    Must(R"({"op":"set","node":"p","param":11,"int":1})");
    EXPECT_EQ(Param("inputs", 1)["int"], 1);
    EXPECT_EQ(Param("inputs", 1)["float"], 0.5);
    Must(R"({"op":"set","node":"p","param":11,"float":2})");
    EXPECT_EQ(Param("inputs", 1)["float"], 2.0);
    EXPECT_EQ(Param("inputs", 1)["int"], 1);
}

TEST_F(Parameter, AChoiceIsSetWhateverTheLabels) {
    Must(R"({"op":"set","node":"p","param":13,"choice":7})");
    EXPECT_EQ(Param("inputs", 3)["int"], 7);
}

TEST_F(Parameter, MalformedValuesAreRefusedByField) {
    const struct {
        const char* pszFields;
        const char* pszError;
    } cases[] = {
        {R"("param":10,"int":1)", "node: is missing"},
        {R"("node":5,"param":10,"int":1)", "node: must be a string"},
        {R"("node":"x","param":10,"int":1)", R"(node: there is no node "x")"},
        {R"("node":"p","int":1)", "param: is missing"},
        {R"("node":"p","param":"10","int":1)", "param: must be an integer"},
        {R"("node":"p","param":77,"int":1)", "param: there is no parameter 77 among the node's graph inputs"},
        {R"("node":"p","param":77,"int":1,"own":true)",
         "param: there is no parameter 77 among the node's own parameters"},
        {R"("node":"p","param":101,"int":1)", "param: there is no parameter 101 among the node's graph inputs"},
        {R"("node":"p","param":10)", "int, float, string, choice: exactly one of them must be there"},
        {R"("node":"p","param":10,"int":1,"float":1)", "int, float, string, choice: exactly one of them must be there"},
        {R"("node":"p","param":10,"int":"1")", "int: must be an integer"},
        {R"("node":"p","param":10,"int":1.0)", "int: must be an integer"},
        {R"("node":"p","param":10,"int":true)", "int: must be an integer"},
        {R"("node":"p","param":10,"int":null)", "int: must be an integer"},
        {R"("node":"p","param":10,"int":2147483648)", "int: is outside the signed 32-bit range"},
        {R"("node":"p","param":10,"int":9223372036854775808)", "int: is outside the signed 32-bit range"},
        {R"("node":"p","param":10,"int":1,"own":1)", "own: must be true or false"},
        {R"("node":"p","param":11,"float":"1")", "float: must be a number"},
        {R"("node":"p","param":11,"float":-3.5e38)", "float: is outside the range of a 32-bit float"},
        {R"("node":"p","param":12,"string":1)", "string: must be a string"},
        {R"("node":"p","param":13,"choice":"first")", "choice: must be an integer"},
    };
    for (const char* pszOp : {"set", "edit"}) {
        for (const auto& [pszFields, pszError] : cases) {
            EXPECT_EQ(Refusal(R"({"op":")" + std::string(pszOp) + R"(",)" + pszFields + "}"), pszError) << pszFields;
        }
    }
}

TEST_F(Parameter, EditAsksTheNodeAndReportsTheEdit) {
    EXPECT_EQ(Ask(R"({"op":"edit","node":"p","param":12,"string":"x"})"), R"({"ok":true,"needed":true,"result":12})");
    EXPECT_EQ(Param("inputs", 2)["string"], "x");
    EXPECT_EQ(Ask(R"({"op":"edit","node":"p","param":10,"int":4})"), R"({"ok":true,"needed":false,"result":null})");
    EXPECT_EQ(Param("inputs", 0)["int"], 4);
    Must(R"({"op":"edit","node":"p","param":10,"int":5,"own":true})");
    EXPECT_EQ(Param("own", 0)["int"], 5);
}

TEST_F(Parameter, EditThatRaisesKeepsTheValue) {
    Must(R"({"op":"set","node":"p","param":10,"int":10,"own":true})");
    const auto nVersion = m_pSession->SceneVersion();
    EXPECT_EQ(Ask(R"({"op":"edit","node":"p","param":12,"string":"y"})"),
              R"({"ok":false,"error":"the module raised CInvalidArgException"})");
    EXPECT_EQ(Param("inputs", 2)["string"], "y");
    EXPECT_GT(m_pSession->SceneVersion(), nVersion);
}

TEST_F(Parameter, DropTakesTheParameterAwayWhereItIsTold) {
    EXPECT_EQ(Ask(R"({"op":"drop","node":"p","param":10,"from":["inputs"]})"), R"({"ok":true})");
    EXPECT_EQ(Param("inputs", 0)["id"], 11);
    EXPECT_EQ(Param("own", 0)["id"], 10);
    Must(R"({"op":"drop","node":"p","param":11,"from":["own","inputs","own"]})");
    EXPECT_EQ(Param("inputs", 0)["id"], 12);
    EXPECT_EQ(Param("own", 1)["id"], 12);
    Must(R"({"op":"drop","node":"p","param":101,"from":["outputs"]})");
    EXPECT_EQ(Param("outputs", 0)["id"], 102);
}

TEST_F(Parameter, MalformedDropsAreRefusedByField) {
    const struct {
        const char* pszFields;
        const char* pszError;
    } cases[] = {
        {R"("param":10,"from":["own"])", "node: is missing"},
        {R"("node":"p","from":["own"])", "param: is missing"},
        {R"("node":"p","param":10)", "from: is missing"},
        {R"("node":"p","param":10,"from":"own")", "from: must be a list"},
        {R"("node":"p","param":10,"from":[])", "from: names no place"},
        {R"("node":"p","param":10,"from":[1])", "from: must be a string"},
        {R"("node":"p","param":10,"from":["own","attic"])", R"(from: "attic" is none of own, inputs, outputs)"},
        {R"("node":"p","param":10,"from":["own","outputs"])",
         "param: there is no parameter 10 among the node's outputs"},
    };
    for (const auto& [pszFields, pszError] : cases) {
        EXPECT_EQ(Refusal(R"({"op":"drop",)" + std::string(pszFields) + "}"), pszError) << pszFields;
    }
}

TEST_F(Parameter, SceneVersionGrowsWithEveryChange) {
    const char* requests[] = {
        R"({"op":"set","node":"p","param":10,"int":0})",
        R"({"op":"edit","node":"p","param":10,"int":0})",
        R"({"op":"trigger","node":"p","param":14})",
        R"({"op":"link","from":"p","output":101,"to":"p","input":14})",
        R"({"op":"drop","node":"p","param":10,"from":["own"]})",
        CREATE_SECOND_PROBE,
        R"({"op":"destroy","node":"q"})",
    };
    for (const char* pszRequest : requests) {
        const auto nVersion = m_pSession->SceneVersion();
        Must(pszRequest);
        EXPECT_GT(m_pSession->SceneVersion(), nVersion) << pszRequest;
    }
    const auto nVersion = m_pSession->SceneVersion();
    Must(R"({"op":"process"})");
    Must(R"({"op":"inspect","node":"p"})");
    EXPECT_EQ(m_pSession->SceneVersion(), nVersion);
    EXPECT_EQ(Must(R"({"op":"scene"})")["version"], nVersion);
}

} // namespace
