// Collects the declarations of the page's types.
#pragma once

#include <set>
#include <string>

class CTypeScript {
public:
    /// Declare a type once. What its body needs is declared before it.
    template <typename Body>
    void Declare(const std::string& strName, Body body) {
        if (m_declared.insert(strName).second) {
            const std::string strBody = body();
            m_strText += "export type " + strName + " = " + strBody + ";\n\n";
        }
    }

    /// Anything else.
    void Write(const std::string& strText) { m_strText += strText; }

    const std::string& Text() const { return m_strText; }

private:
    std::set<std::string> m_declared;
    std::string m_strText;
};
