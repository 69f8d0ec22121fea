// Several threads use classes whose metadata tables do not exist yet, all
// at once. Meant for the ThreadSanitizer build (make test SANITIZE=thread),
// which reports any table read before it is completely built; elsewhere it
// checks that every thread reads and writes the same document.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>
#include <vector>

#include "binding/binding_test_types.h"

namespace BindingTest {
namespace {

TEST(FirstUseThreadsTest, FreshClassesUsedByManyThreadsAtOnce)
{
    std::string const xml = OrderXml(kShipTo + AddressXml("billTo") + "<comment>c</comment>" + kLineItem + kLineItem +
                                     "<subtotal>2</subtotal><shipping>1</shipping><itemCount>2</itemCount>");
    std::string expected;
    {
        CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
        order->FromXml(xml.c_str());
        expected = order->ToXml();
    }
    for (int round = 0; round < 3; ++round) {
        CleanMetaData();  // every class is fresh again
        constexpr int kThreads = 6;
        std::atomic<int> ready{0};
        std::vector<std::string> written(kThreads);
        std::vector<std::thread> threads;
        for (int t = 0; t < kThreads; ++t)
            threads.emplace_back([&, t] {
                ++ready;
                while (ready.load() < kThreads)
                    std::this_thread::yield();
                CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
                order->FromXml(xml.c_str());
                written[t] = order->ToXml();
            });
        for (std::thread& thread : threads)
            thread.join();
        for (std::string const& text : written)
            EXPECT_EQ(text, expected);
    }
}

} // namespace
} // namespace BindingTest
