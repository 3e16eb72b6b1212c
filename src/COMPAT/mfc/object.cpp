#include <afx.h>

BOOL CRuntimeClass::IsDerivedFrom(const CRuntimeClass* pBaseClass) const {
    const CRuntimeClass* pClass = this;
    while (pClass != nullptr && pClass != pBaseClass)
        pClass = pClass->m_pBaseClass;
    return pClass != nullptr;
}

CRuntimeClass* CObject::GetThisClass() {
    static CRuntimeClass s_class = {"CObject", nullptr};
    return &s_class;
}

CRuntimeClass* CObject::GetRuntimeClass() const {
    return GetThisClass();
}

CObject::~CObject() = default;

BOOL CObject::IsKindOf(const CRuntimeClass* pClass) const {
    return GetRuntimeClass()->IsDerivedFrom(pClass);
}

CObject* AfxDynamicDownCast(CRuntimeClass* pClass, CObject* pObject) {
    return pObject != nullptr && pObject->IsKindOf(pClass) ? pObject : nullptr;
}
