// Where connections load scenes from and save them: one folder, whose files they name. Beside them it keeps what an
// earlier host left unsaved.
#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "protocol/Pushes.h"
#include "protocol/SceneFile.h"

class CSceneFolder final : public ISceneFiles {
public:
    explicit CSceneFolder(std::filesystem::path folder) : m_folder(std::move(folder)) {}

    /// Find what the last host on that port left unsaved. Call it once this host has the port. Returns the file that
    /// this host writes its unsaved scene to.
    std::filesystem::path TakeOver(unsigned short nPort);

    // Names that lead out of the folder are refused.
    std::string Read(const std::string& strName) override;
    void Write(const std::string& strName, const std::string& strText, bool bReplace) override;
    std::vector<SSceneFileInfo> List() override;
    std::string ReadLeft() override;
    void EndLeft(bool bLoaded) override;

    /// What a file of the system is called in the folder; empty where it isn't in it.
    std::string NameOf(const std::string& strFile) const;

    const std::optional<SLeftScene>& Left() const { return m_leftScene; }

private:
    std::string Place(const std::string& strName) const;

    std::filesystem::path m_folder;
    std::filesystem::path m_unsaved;
    std::filesystem::path m_left;
    std::optional<SLeftScene> m_leftScene; ///< none: nothing was left
    CSystemFiles m_files;
};
