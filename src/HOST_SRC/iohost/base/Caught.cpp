#include "base/Caught.h"

std::string CaughtText() {
    try {
        throw;
    } catch (CException* pException) {
        const std::string strName = pException->GetRuntimeClass()->m_lpszClassName;
        pException->Delete();
        return strName;
    } catch (const std::exception& exception) {
        return exception.what();
    } catch (...) {
        return "an exception of an unknown kind";
    }
}

void LogThrown(const char* pszWhat, std::exception_ptr pThrown) {
    if (pThrown != nullptr) {
        try {
            std::rethrow_exception(pThrown);
        } catch (...) {
            WriteHostLine(LOG_ERROR, std::string(pszWhat) + ": " + CaughtText());
        }
    }
}
