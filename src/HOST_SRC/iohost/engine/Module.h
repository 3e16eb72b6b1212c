// The plug-in module as a loaded library.
#pragma once

#include <boost/core/noncopyable.hpp>
#include <filesystem>

#include "host/PluginContract.h"

/// Loads the module's library and unloads it with its last owner.
class CModule : boost::noncopyable {
public:
    /// Throws std::runtime_error, which names the file and what is wrong with it, when it can't be loaded.
    explicit CModule(const std::filesystem::path& file);
    ~CModule();

    /// The exported function. May raise what the module raises.
    int Call(unsigned nOperation, void* pArgument, SIOProcessPluginData* pData) const {
        return m_pFunction(nOperation, pArgument, pData);
    }

private:
    HMODULE m_hModule;
    IOProcessFuncType m_pFunction;
};
