// Event records: the payloads of commands and items, and which node types look at what.
#pragma once

#include "session/Command.h"

/// The payload of a record that came from the network.
Payload PayloadOf(const SIOEventRecord& record);

/// What an event record points at; null for none.
void* PointerTo(Payload& payload);

/// Whether there is no payload or one that the device's records carry: nodes don't check what a record points at.
bool DeviceFitsPayload(const SEventCommand& event);

/// Whether nodes of this type look at such records. Some answer every record with 1 and take none of them.
bool MayRead(const GUID& guidType, int nDevice, int nEvent);
