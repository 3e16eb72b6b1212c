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

TEST_F(Parameter, MalformedValuesAreRefusedByField) {
    constexpr char CASES[] = R"(
        OP param=10 int=1 => node: is missing
        OP node=5 param=10 int=1 => node: must be a string
        OP node=x param=10 int=1 => node: there is no node "x"
        OP node=p int=1 => param: is missing
        OP node=p param="10" int=1 => param: must be an integer
        OP node=p param=-1 int=1 => param: is outside the unsigned 32-bit range
        OP node=p param=4294967296 int=1 => param: is outside the unsigned 32-bit range
        OP node=p param=4294967295 int=1 => param: there is no parameter 4294967295 among the node's graph inputs
        OP node=p param=77 int=1 => param: there is no parameter 77 among the node's graph inputs
        OP node=p param=77 int=1 own=true => param: there is no parameter 77 among the node's own parameters
        OP node=p param=101 int=1 => param: there is no parameter 101 among the node's graph inputs
        OP node=p param=10 => int, float, string, choice: exactly one of them must be there
        OP node=p param=10 int=1 float=1 => int, float, string, choice: exactly one of them must be there
        OP node=p param=10 int="1" => int: must be an integer
        OP node=p param=10 int=1.0 => int: must be an integer
        OP node=p param=10 int=true => int: must be an integer
        OP node=p param=10 int=null => int: must be an integer
        OP node=p param=10 int=2147483648 => int: is outside the signed 32-bit range
        OP node=p param=10 int=1 own=1 => own: must be true or false
        OP node=p param=11 float="1" => float: must be a number
        OP node=p param=11 float=-3.5e38 => float: is outside the range of a 32-bit float
        OP node=p param=12 string=1 => string: must be a string
        OP node=p param=13 choice="first" => choice: must be an integer)";
    for (const char* pszOp : {"set", "edit"}) {
        std::string strCases = CASES;
        for (size_t n = 0; (n = strCases.find("OP ", n)) != std::string::npos;) {
            strCases.replace(n, 2, pszOp);
        }
        Talk(strCases);
    }
    Talk(R"(
        drop param=10 from=["own"] => node: is missing
        drop node=p from=["own"] => param: is missing
        drop node=p param=10 => from: is missing
        drop node=p param=10 from="own" => from: must be a list
        drop node=p param=10 from=[] => from: names no place
        drop node=p param=10 from=[1] => from: must be a string
        drop node=p param=10 from=["own","attic"] => from: "attic" is none of own, inputs, outputs
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
