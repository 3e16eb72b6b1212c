// Writing the scene aside while it isn't saved.
#include "HostTest.h"

#include "fronts/page/UnsavedScene.h"

namespace {

class UnsavedScene : public CHostTest {
protected:
    const std::filesystem::path m_file = m_folder.Path() / "unsaved.json";
};

TEST_F(UnsavedScene, ItIsThereWhileTheSceneIsntSaved) {
    CUnsavedScene unsaved(*m_pSession);
    unsaved.SetFile(m_file);
    Must(CREATE_KEYBOARD);
    unsaved.Check();
    unsaved.Flush(); // waits for what the check has begun
    EXPECT_EQ(ReadAll(m_file), SceneText(m_pSession->SceneLeft()));
    Must("save file=" + Quote(m_folder.Path() / "saved.json"));
    unsaved.Check();
    EXPECT_FALSE(exists(m_file));
}

TEST_F(UnsavedScene, WhatWasRecoveredAndSavedBetweenTwoChecksIsGone) {
    CUnsavedScene unsaved(*m_pSession);
    unsaved.SetFile(m_file);
    unsaved.Check();
    m_folder.Write("unsaved.json", "{}");
    unsaved.Check();
    EXPECT_FALSE(exists(m_file));
}

} // namespace
