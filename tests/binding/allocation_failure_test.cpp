// A document read into objects and written again, with each allocation in
// turn failing: a clean failure, no leak, and the object usable afterwards.
#include "binding/binding_test_types.h"
#include "runtime/failing_allocations.h"

namespace BindingTest {
namespace {

using namespace KdBindTest;

TEST(AllocationFailureTest, EveryFailedAllocationOfAReadOrWriteFailsItCleanly)
{
    if (!kCanFailAllocations)
        GTEST_SKIP() << "the sanitizer's runtime owns the allocation functions";
    std::string const xml =
        OrderXml(kShipTo + AddressXml("billTo") + "<comment>c</comment><priority>low</priority>" +
                     "<lineItem partNum='100-AA'><productName>P</productName><quantity>1</quantity><USPrice>1</USPrice>"
                     "<details xmlns:xsi='http://www.w3.org/2001/XMLSchema-instance' xsi:type='BookDetails'>"
                     "<author>A</author><isbn>1</isbn></details></lineItem>" +
                     kLineItem + kTotals,
                 "orderDate='2004-01-02' status='shipped'");
    std::string expected;
    {
        CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();  // builds the tables before the runs
        order->FromXml(xml.c_str());
        expected = order->ToXml();
    }
    CFailureCounts const counts = ForEachFailingAllocation([&] {
        CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
        order->FromXml(xml.c_str());
        std::string const written = order->ToXml();
        ASSERT_EQ(written, expected);
    });
    EXPECT_GT(counts.runs, 50);
    EXPECT_EQ(counts.kdExceptions + counts.badAllocs, counts.runs - 1);
}

} // namespace
} // namespace BindingTest
