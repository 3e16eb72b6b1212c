#include "base/Caught.h"

#include <afxwin.h>

#include <exception>

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
