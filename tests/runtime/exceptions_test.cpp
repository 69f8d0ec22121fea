#include <gtest/gtest.h>

#include <kdbind/runtime.h>

using namespace KdBind;

TEST(ExceptionTest, FullMessageReadsOuterToInnerOneLineEach)
{
    CKdException innermost("leaf");
    CKdValidationException middle("middle", innermost);
    CKdException outer("outer", middle);
    EXPECT_EQ(outer.GetFullMessage(), "outer\nmiddle\nleaf");
    EXPECT_EQ(innermost.GetFullMessage(), "leaf");
    EXPECT_EQ(CKdException().GetFullMessage(), "");
}

TEST(ExceptionTest, InnerIsAPrivateCloneOfTheMostDerivedType)
{
    CKdInvalidNamespaceException cause("bad namespace");
    CKdException wrapper("wrapper", cause);
    ASSERT_NE(wrapper.GetInnerException(), nullptr);
    EXPECT_NE(wrapper.GetInnerException(), &cause);
    EXPECT_NE(dynamic_cast<CKdInvalidNamespaceException*>(wrapper.GetInnerException()), nullptr);

    std::unique_ptr<CKdException> clone(wrapper.Clone());
    ASSERT_NE(clone->GetInnerException(), nullptr);
    EXPECT_NE(clone->GetInnerException(), wrapper.GetInnerException());
    EXPECT_NE(dynamic_cast<CKdValidationException*>(clone->GetInnerException()), nullptr);
    EXPECT_EQ(clone->GetFullMessage(), "wrapper\nbad namespace");
}

TEST(ExceptionTest, CloneKeepsTheDynamicTypeOfEveryFamilyMember)
{
    std::unique_ptr<CKdException> overflow(CKdOverFlowException("x").Clone());
    std::unique_ptr<CKdException> param(CKdInvalidParamException("x").Clone());
    std::unique_ptr<CKdException> state(CKdInvalidStateException("x").Clone());
    std::unique_ptr<CKdException> value(CKdInvalidValueException("x").Clone());
    EXPECT_NE(dynamic_cast<CKdOverFlowException*>(overflow.get()), nullptr);
    EXPECT_NE(dynamic_cast<CKdInvalidParamException*>(param.get()), nullptr);
    EXPECT_NE(dynamic_cast<CKdInvalidStateException*>(state.get()), nullptr);
    EXPECT_NE(dynamic_cast<CKdInvalidValueException*>(value.get()), nullptr);
    EXPECT_NE(dynamic_cast<CKdValidationException*>(value.get()), nullptr);
}

TEST(ExceptionTest, CopyAndAssignmentCloneTheChain)
{
    CKdException original("top", CKdException("cause"));
    CKdException copy(original);
    EXPECT_EQ(copy.GetFullMessage(), "top\ncause");
    EXPECT_NE(copy.GetInnerException(), original.GetInnerException());

    // Assignment replaces the inner pointer without freeing an earlier
    // inner, so the target here has none to lose.
    CKdException assigned("other");
    assigned = original;
    EXPECT_EQ(assigned.GetFullMessage(), "top\ncause");
}

TEST(ExceptionTest, ThrownByValueAndCaughtThroughTheRoot)
{
    try {
        throw CKdInvalidValueException("bad", CKdException("why"));
    } catch (CKdException const& e) {
        EXPECT_EQ(e.GetMessage(), "bad");
        EXPECT_EQ(e.GetFullMessage(), "bad\nwhy");
    }
}
