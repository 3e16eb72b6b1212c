// Writes aside what isn't saved, so that it outlives a crash or the end of the host.
#pragma once

#include "base/Network.h"

#include <filesystem>
#include <future>
#include <string>

#include "base/LimitedLine.h"
#include "session/Session.h"

class CUnsavedScene {
public:
    /// file: where it's written; empty: nowhere.
    CUnsavedScene(boost::asio::io_context& context, CSession& session, std::filesystem::path file)
        : m_session(session), m_file(std::move(file)), m_timer(context) {}

    /// Waits until the scene as it is now is written, if it isn't saved.
    ~CUnsavedScene();

    /// The scene or its file may have changed: it's written a little later. The file's text is made and written by a
    /// thread of its own.
    void NoteChange();

private:
    void Write();

    CSession& m_session;
    const std::filesystem::path m_file;
    SteadyTimer m_timer;
    bool m_bDue = false;                ///< the timer runs
    bool m_bWritten = false;            ///< the file is there, or is being written
    std::future<std::string> m_writing; ///< why it couldn't be written
    CLimitedLine m_problemLine{LOG_ERROR};
};
