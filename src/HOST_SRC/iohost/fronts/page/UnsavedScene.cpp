#include "fronts/page/UnsavedScene.h"

#include <chrono>

#include "base/SafeFile.h"
#include "protocol/Protocol.h"

namespace {

constexpr std::chrono::seconds DELAY{1};

} // namespace

CUnsavedScene::~CUnsavedScene() {
    if (m_bDue) {
        Write();
    }
}

void CUnsavedScene::NoteChange() {
    if (m_file.empty() || m_bDue || (!m_session.History().File().bUnsaved && !m_bWritten)) {
        return;
    }
    m_bDue = true;
    m_timer.expires_after(DELAY);
    m_timer.async_wait([this](const boost::system::error_code& error) {
        if (error) {
            return;
        }
        m_bDue = false;
        if (m_writing.valid() && m_writing.wait_for(std::chrono::seconds(0)) != std::future_status::ready) {
            NoteChange();
        } else {
            Write();
        }
    });
}

void CUnsavedScene::Write() {
    if (m_writing.valid()) {
        if (const std::string strProblem = m_writing.get(); !strProblem.empty()) {
            m_problemLine.Write("what isn't saved can't be written aside: " + strProblem);
        }
    }
    if (m_session.HasQuit()) {
        return; // what was written last stays
    }
    const SSceneFile file = m_session.History().File();
    m_bWritten = file.bUnsaved;
    if (!file.bUnsaved) {
        std::error_code error;
        std::filesystem::remove(m_file, error);
        return;
    }
    SDone done = m_session.Do(SSaveCommand());
    m_writing = std::async(std::launch::async, [path = m_file, strName = file.strName,
                                                scene = std::get<SSceneDocument>(std::move(done.outcome.result))] {
        return WriteFileSafely(path, SceneText(scene, strName));
    });
}
