#include "fronts/terminal/TerminalLines.h"

#include <array>
#include <cstdio>

#include "session/Session.h"

namespace {

std::string TextOr(const OrderedJson& object, const char* pszField, const char* pszDefault) {
    const auto found = object.find(pszField);
    return found != object.end() && found->is_string() ? found->get<std::string>() : pszDefault;
}

/// Which of an output's values its type and control make it show.
const char* ValueThatCounts(const OrderedJson& output) {
    const int nType = output.at("type").get<int>();
    const int nControl = output.at("control").get<int>();
    return nType == PARAM_STRING.m_nType                                        ? "string"
           : nType == PARAM_FLOAT.m_nType && nControl == PARAM_FLOAT.m_nControl ? "float"
                                                                                : "int";
}

} // namespace

void CTerminalLines::Print(const OrderedJson& happened) {
    bool bPrinted = false;
    if (const auto log = happened.find("log"); log != happened.end()) {
        for (const OrderedJson& line : *log) {
            m_stream << "log " << line.at("level") << "  " << PrintableText(TextOr(line, "text", "")) << '\n';
            bPrinted = true;
        }
    }
    if (const auto posted = happened.find("posted"); posted != happened.end()) {
        ReadNames();
        for (const OrderedJson& event : *posted) {
            m_stream << EventLine(event) << '\n';
            bPrinted = true;
        }
    }
    if (bPrinted) {
        m_stream.flush();
    }
}

void CTerminalLines::ReadNames() {
    if (m_bNamesRead && m_nNamesVersion == m_session.SceneVersion()) {
        return;
    }
    m_names.clear();
    m_nNamesVersion = m_session.SceneVersion();
    m_bNamesRead = true;
    const OrderedJson scene = m_session.Query({{"op", "scene"}});
    if (!scene.at("ok").get<bool>()) {
        return;
    }
    for (const OrderedJson& node : scene.at("nodes")) {
        const std::string strHandle = node.at("node").get<std::string>();
        SNodeNames& names = m_names[strHandle];
        names.strPlace = TextOr(node, "clip", "-") + "." + TextOr(node, "graph", "");
        const OrderedJson details = m_session.Query({{"op", "inspect"}, {"node", strHandle}});
        if (!details.at("ok").get<bool>()) {
            continue;
        }
        for (const OrderedJson& group : details.at("outputs")) {
            for (const OrderedJson& output : group.at("params")) {
                const int nId = output.at("id").get<int>();
                names.outputs.emplace(nId, TextOr(output, "name", ""));
                names.values.emplace(nId, ValueThatCounts(output));
            }
        }
    }
}

std::string CTerminalLines::EventLine(const OrderedJson& posted) const {
    const int nOutput = posted.at("output").is_number() ? posted.at("output").get<int>() : 0;
    return PrintableText("event  " + OutputText(TextOr(posted, "node", "?"), nOutput));
}

void CTerminalLines::PrintOutputs(const OrderedJson& changed) {
    ReadNames();
    for (const auto& [strHandle, outputs] : changed.items()) {
        const auto names = m_names.find(strHandle);
        for (const auto& [strId, values] : outputs.items()) {
            const int nOutput = std::stoi(strId);
            if (names != m_names.end() && names->second.values.contains(nOutput)) {
                const OrderedJson& value = values.at(names->second.values.at(nOutput));
                m_stream << PrintableText("output  " + OutputText(strHandle, nOutput) + " = " + ReplyText(value))
                         << '\n';
            }
        }
    }
    m_stream.flush();
}

/// Clip and graph node of a node, id and name of its output.
std::string CTerminalLines::OutputText(const std::string& strHandle, int nOutput) const {
    std::string strPlace = strHandle; // of a node that is gone by now
    std::string strOutput;
    if (const auto names = m_names.find(strHandle); names != m_names.end()) {
        strPlace = names->second.strPlace;
        if (const auto output = names->second.outputs.find(nOutput); output != names->second.outputs.end()) {
            strOutput = " " + output->second;
        }
    }
    return strPlace + "  " + std::to_string(nOutput) + strOutput;
}

std::string PrintableText(const std::string& strText) {
    std::string strPrintable;
    unsigned char nPrevious = 0;
    for (const char c : strText) {
        const auto nByte = static_cast<unsigned char>(c);
        // U+0080 to U+009F, two bytes in UTF-8, steer some terminals too.
        const bool bUpperControl = nPrevious == 0xC2 && nByte >= 0x80 && nByte < 0xA0;
        if (nByte < 0x20 || nByte == 0x7F || bUpperControl) {
            if (bUpperControl) {
                strPrintable.pop_back();
            }
            std::array<char, 5> escape{};
            std::snprintf(escape.data(), escape.size(), "\\x%02X", nByte);
            strPrintable += escape.data();
        } else {
            strPrintable += c;
        }
        nPrevious = nByte;
    }
    return strPrintable;
}
