// What the host prints while it serves the page: a line for each log line and each fired event.
#pragma once

#include <map>
#include <ostream>
#include <string>

#include "protocol/Fields.h"

class CSession;

class CTerminalLines {
public:
    CTerminalLines(CSession& session, std::ostream& stream) : m_session(session), m_stream(stream) {}

    /// Prints what happened, in the form in which the session tells it.
    void Print(const OrderedJson& happened);

    /// Prints the new values of outputs, as COutputChanges tells them.
    void PrintOutputs(const OrderedJson& changed);

private:
    /// How a node and its outputs are called.
    struct SNodeNames {
        std::string strPlace; ///< clip and graph node
        std::map<int, std::string> outputs;
        std::map<int, const char*> values; ///< which of an output's values counts
    };

    void ReadNames();
    std::string EventLine(const OrderedJson& posted) const;
    std::string OutputText(const std::string& strHandle, int nOutput) const;

    CSession& m_session;
    std::ostream& m_stream;
    std::map<std::string, SNodeNames> m_names;
    unsigned long long m_nNamesVersion = 0; ///< the scene that the names are from
    bool m_bNamesRead = false;
};

/// The text with control characters as escapes: texts from outside can't steer the terminal.
std::string PrintableText(const std::string& strText);
