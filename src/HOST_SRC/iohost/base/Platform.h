// What iohost does differently on each system; one source file per system.
#pragma once

#include <chrono>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <optional>
#include <string>
#include <string_view>

#include <afxwin.h>

/// Make GetTickCount answer the module a fixed number of milliseconds, or the running clock again.
void FreezeClock(std::optional<std::uint64_t> nMilliseconds);

/// While there is a taker, each datagram that the module sends by itself calls it instead of going out: the module is
/// told that it was sent. None: datagrams go out again.
void TakeDatagrams(std::function<void()> taker);

/// Tell which library is the module, as soon as it's loaded and before it's unloaded (null).
void SetModule(HMODULE hModule);

/// Let the process have as many sockets open as the system allows: nodes that broadcast never close theirs.
void AllowManySockets();

/// Let a port be listened on though connections of a program that has just ended linger there.
void LetPortBeReused(std::uintptr_t hSocket);

/// Let the system ask the peer of a silent TCP connection whether it's still there, and give the connection up, as
/// lost, when it hasn't answered for about ten seconds.
void NoticeLostPeer(std::uintptr_t hSocket);

/// Whether the peer of a TCP connection hasn't answered for so long, though it was sent something again and again. One
/// that only stopped reading goes on answering. False where the system gives such a connection up by itself.
bool HasStoppedAnswering(std::uintptr_t hSocket, std::chrono::milliseconds patience);

/// Why the last LoadLibraryW failed, in the loader's words (UTF-8); empty when nothing more is known.
std::string LoadErrorDetail();

/// The standard streams carry bytes, and a closed output is an error of the stream.
void PrepareStandardStreams();

/// A path of the file that standard input reads. Empty if it reads none (Windows only).
std::filesystem::path StandardInputFile();

inline constexpr int STANDARD_OUTPUT = 1;
inline constexpr int STANDARD_ERROR = 2;

/// Write all of the text to one of them, however long that takes; false when it can't be written. Nothing stays in a
/// buffer, so the end of the program waits for no reader.
bool WriteStandard(int nStream, std::string_view text);

/// What the program gets when its terminal closes: SIGHUP, or on Windows SIGBREAK.
extern const int TERMINAL_SIGNAL;
