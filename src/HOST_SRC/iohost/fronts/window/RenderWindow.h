// The front with a render window of the system's: what a person does to it goes to the nodes.
#pragma once

class CSession;

/// The window, and how often the graph is evaluated.
struct SWindowOptions {
    int nWidth = 1280; ///< of the window's inside, in pixels
    int nHeight = 720;
    double fFps = 60;
};

/// Run until the window is closed, the session ends or the process is told to end. Returns the exit code of the
/// program: 1, with a message on standard error, where there are no windows.
int RunRenderWindow(CSession& session, const SWindowOptions& options);
