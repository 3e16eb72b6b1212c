// Where connections load scenes from and save them: one folder, whose files they name.
#pragma once

#include <filesystem>
#include <string>

#include "protocol/SceneFile.h"

class CSceneFolder final : public ISceneFiles {
public:
    explicit CSceneFolder(std::filesystem::path folder) : m_folder(std::move(folder)) {}

    // Names that lead out of the folder are refused.
    std::string Read(const std::string& strName) override;
    void Write(const std::string& strName, const std::string& strText) override;

private:
    std::string Place(const std::string& strName) const;

    std::filesystem::path m_folder;
    CSystemFiles m_files;
};
