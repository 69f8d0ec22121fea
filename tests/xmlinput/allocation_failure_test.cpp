// Loads with each allocation in turn failing: a clean failure, no leak.
#include <kdbind/binding.h>

#include "runtime/failing_allocations.h"

using namespace KdBind;
using namespace KdBindTest;

TEST(AllocationFailureTest, EveryFailedAllocationOfALoadFailsItCleanly)
{
    if (!kCanFailAllocations)
        GTEST_SKIP() << "the sanitizer's runtime owns the allocation functions";
    std::string const xml =
        "<?xml version='1.0'?>\n<a:root xmlns:a='urn:a' xmlns='urn:d' a:x='1' y='2'>"
        "<child k='v'>text &amp; more<![CDATA[<raw>]]></child><a:empty/>\r\n<b>caf&#xE9;</b>"
        "<c><d><e>deep</e></d></c></a:root>";
    CFailureCounts const counts = ForEachFailingAllocation([&] {
        CXmlDocument document;
        document.LoadXml(xml.c_str());
        ASSERT_EQ(document.GetDocumentElement()->GetLocalName(), "root");
    });
    EXPECT_GT(counts.runs, 10);
    EXPECT_EQ(counts.kdExceptions + counts.badAllocs, counts.runs - 1);
}
