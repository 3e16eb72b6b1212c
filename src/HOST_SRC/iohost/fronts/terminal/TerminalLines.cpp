#include "fronts/terminal/TerminalLines.h"

#include <array>
#include <charconv>

#include "base/PrintableText.h"
#include "base/TextUtf8.h"

namespace {

/// The value of an output, in the form that its type and control ask for.
std::string ValueText(const VEKParam& output, const SValues& values) {
    if (output.m_nType == PARAM_STRING.m_nType) {
        return "\"" + Utf8(values.strText) + "\"";
    }
    if (KindOf(output) != EPinKind::Float) {
        return std::to_string(values.nInteger);
    }
    std::array<char, 32> text{};
    return {text.data(), std::to_chars(text.begin(), text.end(), values.fNumber).ptr};
}

} // namespace

CTerminalLines::CTerminalLines(CSession& session, std::function<void(const std::string& strLines)> print)
    : m_session(session), m_print(std::move(print)) {
    m_session.Attach(*this);
}

CTerminalLines::~CTerminalLines() {
    m_session.Detach(*this);
}

void CTerminalLines::OnDone(const SDone& done) {
    std::string strLines;
    for (const SLogged& line : done.activity.logged) {
        strLines += "log " + std::to_string(line.nLevel) + "  " + PrintableText(Utf8(line.strText)) + '\n';
    }
    for (const SFired& fired : done.activity.fired) {
        const auto nOutput = static_cast<unsigned>(fired.output.value_or(0));
        strLines += PrintableText("event  " + OutputText(fired.handle.value_or("?"), nOutput)) + '\n';
    }
    if (!strLines.empty()) {
        m_print(strLines);
    }
}

void CTerminalLines::PrintOutputs(const OutputValues& changed) {
    std::string strLines;
    for (const auto& [strHandle, outputs] : changed) {
        const SNode* pNode = m_session.Scene().Find(strHandle);
        for (const auto& [nOutput, values] : outputs) {
            const VEKParam* pOutput = FindParam(pNode->pGraphNode->m_lstOutputGroup, MakeParamGuid(nOutput));
            strLines +=
                PrintableText("output  " + OutputText(strHandle, nOutput) + " = " + ValueText(*pOutput, values)) + '\n';
        }
    }
    if (!strLines.empty()) {
        m_print(strLines);
    }
}

/// Clip and graph node of a node, id and name of its output.
std::string CTerminalLines::OutputText(const std::string& strHandle, unsigned nOutput) const {
    const std::string strNumber = "  " + std::to_string(nOutput);
    const SNode* pNode = m_session.Scene().Find(strHandle);
    if (pNode == nullptr) { // it's gone by now
        return strHandle + strNumber;
    }
    const VEKClip* pClip = pNode->pNode->m_pOwnerClip;
    const VEKParam* pOutput = FindParam(pNode->pGraphNode->m_lstOutputGroup, MakeParamGuid(nOutput));
    return (pClip != nullptr ? Utf8(pClip->m_strName) : "-") + "." + Utf8(pNode->pGraphNode->m_strName) + strNumber +
           (pOutput != nullptr ? " " + Utf8(pOutput->m_strName) : "");
}
