// Event records out of requests: the payload objects that the contract names, made from their JSON form.
#pragma once

#include <memory>

#include "host/EventRecord.h"
#include "protocol/Fields.h"

/// A payload for one call, whatever its type.
class CPayload {
public:
    virtual ~CPayload() = default;

    /// What an event record points at.
    virtual void* Object() = 0;
};

/// Make the payload of a request's field "payload"; null for null or a missing field. An unknown kind and fields of the
/// wrong kind are refused.
std::unique_ptr<CPayload> MakePayload(const CFields& request);

/// The payload of a network item's record, in the form in which MakePayload reads it.
OrderedJson PayloadToJson(const SIOEventRecord& record);

/// Refuse a payload that this node type would take for one of another kind: nodes trust the device to tell what the
/// record points at.
void CheckPayloadFits(const CFields& request, const GUID& guidType, const std::string& strHandle);

/// Whether nodes of this type look at such records. Some answer every record with 1 and take none of them.
bool MayRead(const GUID& guidType, int nDevice, int nEvent);
