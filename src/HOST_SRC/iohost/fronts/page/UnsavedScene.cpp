#include "fronts/page/UnsavedScene.h"

#include <chrono>

#include "base/SafeFile.h"
#include "protocol/Protocol.h"

CUnsavedScene::~CUnsavedScene() {
    Flush();
}

void CUnsavedScene::Flush() {
    if (m_writing.valid()) {
        m_writing.wait();
    }
    Check();
}

void CUnsavedScene::Check() {
    if (m_file.empty() || m_session.HasQuit()) {
        return;
    }
    if (m_writing.valid()) {
        if (m_writing.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
            return;
        }
        if (const std::string strProblem = m_writing.get(); !strProblem.empty()) {
            m_problemLine.Write("the unsaved scene can't be written aside: " + strProblem);
            m_written.reset();
        }
    }
    const CHistory& history = m_session.History();
    const SSceneFile file = history.File();
    if (!file.bUnsaved) {
        std::error_code error;
        std::filesystem::remove(m_file, error); // also what was recovered and saved since
        m_written.reset();
    } else if (m_written != history.State()) {
        m_writing =
            std::async(std::launch::async, [path = m_file, strName = file.strName, scene = m_session.SceneLeft()] {
                return WriteFileSafely(path, SceneText(scene, strName));
            });
        m_written = history.State();
    }
}
