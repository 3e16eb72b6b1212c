// set, edit and drop.
#include "HostTest.h"

namespace {

class Parameter : public CProbeTest {
protected:
    Parameter() { Must(CREATE_PROBE); }
};

TEST_F(Parameter, SetChangesOneMemberOfAnInputOrOfTheNodesOwn) {
    Talk(R"(
        set node=p param=10 int=-2147483648
        set node=p param=11 int=1
        set node=p param=12 string="触发 𝄞"
        set node=p param=13 choice=7
        inspect node=p => {"inputs":{"10":{"int":-2147483648},"11":{"int":1,"float":0.5},"12":{"string":"触发 𝄞"},"13":{"int":7}}}
        inspect node=p => {"own":{"10":{"int":0},"11":{"int":0},"12":{"string":""}}}
        set node=p param=10 int=2147483647
        set node=p param=11 float=18446744073709551615
        inspect node=p => {"inputs":{"10":{"int":2147483647},"11":{"float":18446744073709551616.0}}}
        set node=p param=10 int=-2147483648
        set node=p param=11 float=2
        set node=p param=10 int=3 own=true
        inspect node=p => {"inputs":{"10":{"int":-2147483648},"11":{"int":1,"float":2}},"own":{"10":{"int":3}}}
    )");
}

TEST_F(Parameter, OnlyParametersThatAreThereAreChanged) {
    for (const std::string strOp : {"set", "edit"}) {
        Talk(strOp + " node=x param=10 int=1 => node: there is no node \"x\"");
        for (const std::string strParam : {"4294967295", "77", "101"}) {
            const std::string strRequest = strOp + " node=p int=1 param=" + strParam;
            const std::string strRefusal = "param: there is no parameter " + strParam + " among the node's ";
            EXPECT_EQ(Refusal(strRequest), strRefusal + "graph inputs");
            EXPECT_EQ(Refusal(strRequest + " own=true"), strRefusal + "own parameters");
        }
    }
    Talk(R"(
        drop node=p param=10 from=[] => from: names no place
        drop node=p param=10 from=["own","outputs"] => param: there is no parameter 10 among the node's outputs
    )");
}

TEST_F(Parameter, EditAsksTheNodeAndReportsTheEdit) {
    Talk(R"(
        edit node=p param=12 string=x => {"needed":true,"result":12}
        edit node=p param=10 int=4 => {"needed":false,"result":null}
        edit node=p param=10 int=10 own=true
        inspect node=p => {"inputs":{"12":{"string":"x"},"10":{"int":4}},"own":{"10":{"int":10}}}
    )");
    // The 10 makes it raise; the value stays.
    const auto nVersion = m_pSession->SceneVersion();
    EXPECT_EQ(AskObject("edit node=p param=12 string=y")["error"], "the module raised CInvalidArgException");
    EXPECT_EQ(Param("p", "inputs", 12)["string"], "y");
    EXPECT_GT(m_pSession->SceneVersion(), nVersion);
}

TEST_F(Parameter, DropTakesTheParameterAwayWhereItIsTold) {
    Talk(R"(
        drop node=p param=10 from=["inputs"]
        drop node=p param=11 from=["own","inputs","own"]
        drop node=p param=101 from=["outputs"]
        inspect node=p => {"inputs":{"10":null,"11":null,"12":{}},"own":{"10":{},"11":null,"12":{}},"outputs":{"101":null,"102":{}}}
    )");
}

TEST_F(Parameter, SceneVersionGrowsWithEveryChange) {
    for (const char* pszRequest : {"set node=p param=10 int=0", "edit node=p param=10 int=0", "trigger node=p param=14",
                                   "link from=p output=101 to=p input=14", R"(drop node=p param=10 from=["own"])",
                                   CREATE_SECOND_PROBE, "destroy node=q"}) {
        const auto nVersion = m_pSession->SceneVersion();
        Must(pszRequest);
        EXPECT_GT(m_pSession->SceneVersion(), nVersion) << pszRequest;
    }
    const auto nVersion = m_pSession->SceneVersion();
    Must("process");
    Must("inspect node=p");
    EXPECT_EQ(Must("scene")["version"], nVersion);
}

} // namespace
