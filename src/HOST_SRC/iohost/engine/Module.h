// The plug-in module as a loaded library.
#pragma once

#include <filesystem>
#include <memory>
#include <string>

#include "host/PluginContract.h"

/// Loads the module's library and unloads it with its last owner.
class CModule {
public:
    /// Null, with a message that names the file and what is wrong with it, when it can't be loaded.
    static std::unique_ptr<CModule> Load(const std::filesystem::path& file, std::string& strError);

    ~CModule();

    CModule(const CModule&) = delete;
    CModule& operator=(const CModule&) = delete;

    /// The exported function. May raise what the module raises.
    int Call(unsigned nOperation, void* pArgument, SIOProcessPluginData* pData) const {
        return m_pFunction(nOperation, pArgument, pData);
    }

private:
    CModule(HMODULE hModule, IOProcessFuncType pFunction);

    HMODULE m_hModule;
    IOProcessFuncType m_pFunction;
};
