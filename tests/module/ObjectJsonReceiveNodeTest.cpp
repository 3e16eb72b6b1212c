// The object JSON receive node: the texts of which objects it passes on.
#include "ModuleHost.h"

namespace {

enum : unsigned { CLIP_NAME = 1202, OBJECT_NAME = 1203, FLAG = 1204, RECEIVE_DATA = 1252 };

class ObjectJsonReceiveNode : public ModuleTest {
protected:
    ObjectJsonReceiveNode() {
        m_scene.Input(CLIP_NAME).m_strValue = L"A";
        m_scene.Input(OBJECT_NAME).m_strValue = L"B";
        m_scene.Evaluate();
    }

    int Send(const wchar_t* pszClip, const wchar_t* pszObject, const CString& strText) {
        SObjectTextData text;
        text.m_strClipName = pszClip;
        text.m_strObjectName = pszObject;
        text.m_strText = strText;
        return m_scene.Send(6, 0, &text);
    }

    void ExpectTaken(const wchar_t* pszClip, const wchar_t* pszObject, const CString& strText = L"some text") {
        SCOPED_TRACE(Utf8(CString(pszClip) + L"." + pszObject + L": " + strText));
        EXPECT_EQ(Send(pszClip, pszObject, strText), 1);
        EXPECT_EQ(Utf8(m_scene.Output(RECEIVE_DATA).m_strValue), Utf8(strText));
        ExpectReported(m_scene, 1253, Information("[Clip.Graph.Node 触发[地图反馈]事件]"));
    }

    void ExpectRefused(const wchar_t* pszClip, const wchar_t* pszObject) {
        SCOPED_TRACE(Utf8(CString(pszClip) + L"." + pszObject));
        m_scene.Output(RECEIVE_DATA).m_strValue = L"before";
        EXPECT_EQ(Send(pszClip, pszObject, L"some text"), 0);
        ExpectSilence();
        EXPECT_EQ(Utf8(m_scene.Output(RECEIVE_DATA).m_strValue), "before");
    }

    NodeScene m_scene{m_host, TYPE_OBJECT_JSON_RECEIVE};
};

TEST_F(ObjectJsonReceiveNode, ATextIsTakenIfBothNamesMatch) {
    ExpectTaken(L"A", L"B");
    ExpectTaken(L"A", L"B"); // the same text fires again
    const wchar_t* const pairs[][2] = {{L"A", L"C"}, {L"C", L"B"},  {L"B", L"A"},   {L"", L""},
                                       {L"A", L""},  {L"", L"B"},   {L"A ", L"B"},  {L"a", L"B"},
                                       {L"A", L"b"}, {L"A", L"BB"}, {L"Clip", L"B"}};
    for (const auto& [pszClip, pszObject] : pairs) {
        ExpectRefused(pszClip, pszObject);
    }
}

TEST_F(ObjectJsonReceiveNode, NoTextIsParsed) {
    for (const wchar_t* pszText : {L"", L"{\"zoom\":3}", L"no JSON", L"null", L"{", L" \r\n", L"\xFEFF{}", L"名😀"}) {
        ExpectTaken(L"A", L"B", pszText);
    }
    ExpectTaken(L"A", L"B", CString(L'[', 100'000));
}

TEST_F(ObjectJsonReceiveNode, EmptyParametersMatchEmptyNamesOnly) {
    m_scene.Input(CLIP_NAME).m_strValue.Empty();
    m_scene.Input(OBJECT_NAME).m_strValue.Empty();
    ExpectTaken(L"", L"");
    ExpectRefused(L"A", L"");
    ExpectRefused(L"", L"B");
}

TEST_F(ObjectJsonReceiveNode, TheFlagDecidesNothing) {
    for (const wchar_t* pszFlag : {L"1", L"0", L"A"}) {
        m_scene.Input(FLAG).m_strValue = pszFlag;
        ExpectTaken(L"A", L"B");
        ExpectRefused(L"A", L"C");
    }
}

} // namespace
