#include "CompatTest.h"

namespace {

class CParser : public CObject {
    DECLARE_DYNAMIC(CParser)
};
IMPLEMENT_DYNAMIC(CParser, CObject)

class CDirectParser : public CParser {
    DECLARE_DYNAMIC(CDirectParser)
};
IMPLEMENT_DYNAMIC(CDirectParser, CParser)

} // namespace

TEST(RuntimeClassTest, ObjectsKnowTheirClassAndBases) {
    const CDirectParser direct;
    EXPECT_TRUE(direct.IsKindOf(RUNTIME_CLASS(CDirectParser)));
    EXPECT_TRUE(direct.IsKindOf(RUNTIME_CLASS(CParser)));
    EXPECT_TRUE(direct.IsKindOf(RUNTIME_CLASS(CObject)));
    EXPECT_FALSE(direct.IsKindOf(RUNTIME_CLASS(CException)));
    EXPECT_FALSE(CParser().IsKindOf(RUNTIME_CLASS(CDirectParser)));
    EXPECT_STREQ(direct.GetRuntimeClass()->m_lpszClassName, "CDirectParser");
}

TEST(RuntimeClassTest, DowncastGivesNullForOtherClasses) {
    CParser parser;
    CDirectParser direct;
    CParser* pNone = nullptr;
    EXPECT_EQ(DYNAMIC_DOWNCAST(CDirectParser, static_cast<CParser*>(&direct)), &direct);
    EXPECT_EQ(DYNAMIC_DOWNCAST(CDirectParser, &parser), nullptr);
    EXPECT_EQ(DYNAMIC_DOWNCAST(CDirectParser, pNone), nullptr);
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
        } catch (CException* pException) {
            pException->Delete();
            return "other";
        }
        return "none";
    };
    EXPECT_EQ(caughtAs([] { AfxThrowMemoryException(); }), "memory");
    EXPECT_EQ(caughtAs([] { AfxThrowInvalidArgException(); }), "invalid argument");
    EXPECT_EQ(caughtAs([] { AfxThrowArchiveException(CArchiveException::badClass); }), "other");
    // Delete leaves the prepared exceptions alone: they can be thrown again.
    EXPECT_EQ(caughtAs([] { AfxThrowInvalidArgException(); }), "invalid argument");
}
