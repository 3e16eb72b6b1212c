// The front that serves the page and its WebSocket.
#pragma once

#include <filesystem>
#include <string>

class CSession;

/// Where and how the page is served.
struct SListenOptions {
    std::string strAddress;            ///< numeric address to bind to
    unsigned short nPort = 0;          ///< 0: any free port
    double fFps = 60;                  ///< evaluations of the graph a second
    std::filesystem::path webFolder;   ///< the page's files
    std::filesystem::path sceneFolder; ///< where connections load scenes from and save them
    std::string strControlAddress;     ///< numeric address that other hosts send records to; empty: none is taken
    unsigned short nControlPort = 0;   ///< 0: any free port
};

/// Serve until the session ends or the process is told to end. Returns the exit code of the program: 1, with a message
/// on standard error, when the address, the page's files or the port of --control can't be had.
int RunPageServer(CSession& session, const SListenOptions& options);
