// What stands behind the sockets and parsers of the contract; iohost implements it.
#pragma once

#include <span>

#include "host/PlayControlItem.h"

/// Takes what nodes send to one device. Must return at once, whatever state the connection is in.
class ISocketTransport {
public:
    /// False when the item is refused. It lives for the call.
    virtual bool SendItem(const CZtBaseNetProtocol& item) = 0;

    /// False when the bytes are refused. They live for the call.
    virtual bool SendBytes(std::span<const unsigned char> bytes) = 0;

protected:
    ~ISocketTransport() = default;
};

/// Takes the bytes that come in over a connection without a frame.
class IReceivedBytes {
public:
    /// The next bytes, split anywhere; they live for the call.
    virtual void OnBytes(std::span<const unsigned char> bytes) = 0;

protected:
    ~IReceivedBytes() = default;
};
