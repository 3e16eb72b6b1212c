// The event object by which a node tells the host's event window that an output fired.
#pragma once

#include "host/ParamModel.h"

/// Kinds of posted event objects.
enum EQOREventID : int { QOR_EVENT_GENERAL = GENERAL_EVENT };

/// An event object on its way to the host window. Whoever receives it deletes it.
class VEKRENDER_API SQOREvent {
public:
    SQOREvent(EQOREventID nId, const CString& strName);

    /// Deletes the parameters, and the integer that a parameter of type name "EventID" points at.
    ~SQOREvent();

    EQOREventID m_nId;
    CString m_strName;
    CList<VEKParam*> m_lstParam; ///< owned
};
