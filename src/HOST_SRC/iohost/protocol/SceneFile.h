// Scenes in files; docs/session-protocol.md describes their form.
#pragma once

#include "protocol/Protocol.h"

/// Any file of the system. One that can't be written leaves an older one as it is.
class CSystemFiles final : public ISceneFiles {
public:
    std::string Read(const std::string& strName) override;
    void Write(const std::string& strName, const std::string& strText, bool bReplace) override;
};

/// No file at all.
class CNoFiles final : public ISceneFiles {
public:
    std::string Read(const std::string& /*strName*/) override { Refuse("file", "is out of reach here"); }
    void Write(const std::string& /*strName*/, const std::string& /*strText*/, bool /*bReplace*/) override {
        Refuse("file", "is out of reach here");
    }
};
