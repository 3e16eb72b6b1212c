#include <afxcoll.h>

IMPLEMENT_DYNAMIC(CStringArray, CObject)
CStringArray::CStringArray() = default;
CStringArray::~CStringArray() = default;

IMPLEMENT_DYNAMIC(CUIntArray, CObject)
CUIntArray::CUIntArray() = default;
CUIntArray::~CUIntArray() = default;
