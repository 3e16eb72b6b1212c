#include <afx.h>
#include <afxcoll.h>

// ---- Run-time class information -------------------------------------------------------------------------------------

CObject* CRuntimeClass::CreateObject() {
    return m_pfnCreateObject == nullptr ? nullptr : m_pfnCreateObject();
}

BOOL CRuntimeClass::IsDerivedFrom(const CRuntimeClass* pBaseClass) const {
    for (const CRuntimeClass* pClass = this; pClass != nullptr;
         pClass = pClass->m_pfnGetBaseClass == nullptr ? nullptr : pClass->m_pfnGetBaseClass()) {
        if (pClass == pBaseClass)
            return TRUE;
    }
    return FALSE;
}

const CRuntimeClass CObject::classCObject = {"CObject", static_cast<int>(sizeof(CObject)), 0xFFFF, nullptr, nullptr,
                                             nullptr};

CRuntimeClass* PASCAL CObject::GetThisClass() {
    return const_cast<CRuntimeClass*>(&CObject::classCObject);
}

CRuntimeClass* CObject::GetRuntimeClass() const {
    return GetThisClass();
}

CObject::~CObject() = default;

// An object without state of its own has nothing to store, check or dump.
void CObject::Serialize(CArchive&) {}
void CObject::AssertValid() const {}
void CObject::Dump(CDumpContext&) const {}

BOOL CObject::IsSerializable() const {
    return GetRuntimeClass()->m_wSchema != 0xFFFF;
}

BOOL CObject::IsKindOf(const CRuntimeClass* pClass) const {
    return GetRuntimeClass()->IsDerivedFrom(pClass);
}

CObject* AFXAPI AfxDynamicDownCast(CRuntimeClass* pClass, CObject* pObject) {
    return pObject != nullptr && pObject->IsKindOf(pClass) ? pObject : nullptr;
}

const CObject* AFXAPI AfxDynamicDownCast(CRuntimeClass* pClass, const CObject* pObject) {
    return pObject != nullptr && pObject->IsKindOf(pClass) ? pObject : nullptr;
}
