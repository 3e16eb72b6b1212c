#include "CompatTest.h"

namespace {

class CParser : public CObject {
    DECLARE_DYNAMIC(CParser)
};
IMPLEMENT_DYNAMIC(CParser, CObject)

class CDirectParser : public CParser {
    DECLARE_DYNCREATE(CDirectParser)
};
IMPLEMENT_DYNCREATE(CDirectParser, CParser)

} // namespace

TEST(RuntimeClassTest, ObjectsKnowTheirClassAndBases) {
    const CDirectParser direct;
    EXPECT_TRUE(direct.IsKindOf(RUNTIME_CLASS(CDirectParser)));
    EXPECT_TRUE(direct.IsKindOf(RUNTIME_CLASS(CParser)));
    EXPECT_TRUE(direct.IsKindOf(RUNTIME_CLASS(CObject)));
    EXPECT_FALSE(direct.IsKindOf(RUNTIME_CLASS(CException)));
    EXPECT_FALSE(CParser().IsKindOf(RUNTIME_CLASS(CDirectParser)));
    EXPECT_STREQ(direct.GetRuntimeClass()->m_lpszClassName, "CDirectParser");
    EXPECT_EQ(direct.GetRuntimeClass()->m_nObjectSize, static_cast<int>(sizeof(CDirectParser)));
    EXPECT_FALSE(direct.IsSerializable());
}

TEST(RuntimeClassTest, DowncastGivesNullForOtherClasses) {
    CParser parser;
    CDirectParser direct;
    CParser* pNone = nullptr;
    EXPECT_EQ(DYNAMIC_DOWNCAST(CDirectParser, static_cast<CParser*>(&direct)), &direct);
    EXPECT_EQ(DYNAMIC_DOWNCAST(CDirectParser, &parser), nullptr);
    EXPECT_EQ(DYNAMIC_DOWNCAST(CDirectParser, pNone), nullptr);
}

TEST(RuntimeClassTest, CreatesObjectsOfCreatableClassesOnly) {
    CObject* pObject = RUNTIME_CLASS(CDirectParser)->CreateObject();
    ASSERT_NE(pObject, nullptr);
    EXPECT_TRUE(pObject->IsKindOf(RUNTIME_CLASS(CDirectParser)));
    delete pObject;
    EXPECT_EQ(RUNTIME_CLASS(CParser)->CreateObject(), nullptr);
}

TEST(ExceptionTest, AreThrownByPointerAndCaughtByClass) {
    const auto caughtAs = [](auto throwing) -> std::string {
        try {
            throwing();
        } catch (CMemoryException* pException) {
            pException->Delete();
            return "memory";
        } catch (CInvalidArgException* pException) {
            pException->Delete();
            return "invalid argument";
        } catch (CSimpleException* pException) {
            pException->Delete();
            return "simple";
        }
        return "none";
    };
    EXPECT_EQ(caughtAs([] { AfxThrowMemoryException(); }), "memory");
    EXPECT_EQ(caughtAs([] { AfxThrowInvalidArgException(); }), "invalid argument");
    EXPECT_EQ(caughtAs([] { AfxThrowNotSupportedException(); }), "simple");
    // Delete leaves the prepared exceptions alone: they can be thrown again.
    EXPECT_EQ(caughtAs([] { AfxThrowInvalidArgException(); }), "invalid argument");
}

TEST(ExceptionTest, MessagesAreCutToTheBuffer) {
    try {
        AfxThrowInvalidArgException();
    } catch (CException* pException) {
        wchar_t szText[100];
        UINT nHelp = 5;
        EXPECT_TRUE(pException->GetErrorMessage(szText, 100, &nHelp));
        EXPECT_STREQ(szText, L"An invalid argument was encountered.");
        EXPECT_EQ(nHelp, 0u);
        EXPECT_TRUE(pException->GetErrorMessage(szText, 3));
        EXPECT_STREQ(szText, L"An");
        EXPECT_FALSE(pException->GetErrorMessage(nullptr, 0));
        pException->Delete();
    }
}
