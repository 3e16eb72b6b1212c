// What iohost does differently on each system; one source file per system.
#pragma once

#include <cstdint>
#include <optional>
#include <string>

/// Make GetTickCount answer a fixed number of milliseconds, or the running clock again. False where the system's own
/// clock answers and can't be stopped.
bool FreezeClock(std::optional<std::uint64_t> nMilliseconds);

/// Let the system give a TCP connection up, as lost, when its peer hasn't answered for about ten seconds.
void NoticeLostPeer(std::uintptr_t hSocket);

/// Why the last LoadLibraryW failed, in the loader's words (UTF-8); empty when nothing more is known.
std::string LoadErrorDetail();

/// Standard input and output carry bytes, and a closed output is an error of the stream.
void PrepareStandardStreams();
