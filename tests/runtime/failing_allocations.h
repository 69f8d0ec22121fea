// Replaces the global allocation functions of the test program that
// includes this header (once: it defines them) with counting ones that can
// be made to fail. The library's own allocations go through them too.
//
// ForEachFailingAllocation runs an action again and again, the n-th
// allocation of run n throwing std::bad_alloc, until a run completes; each
// failed run must end in a CKdException or std::bad_alloc and must leave as
// many blocks allocated as it found.
#ifndef KDBIND_TESTS_RUNTIME_FAILING_ALLOCATIONS_H
#define KDBIND_TESTS_RUNTIME_FAILING_ALLOCATIONS_H

#include <atomic>
#include <cstdlib>
#include <new>
#include <string>

#include <gtest/gtest.h>

#include <kdbind/runtime.h>

// ThreadSanitizer's runtime defines the allocation functions itself, all in
// one piece that cannot be replaced in part; under it the runs are skipped
// (the plain and the address-sanitizer builds make them).
#if defined(__SANITIZE_THREAD__)
#define KDBIND_TESTS_OWN_ALLOCATIONS 0
#elif defined(__has_feature)
#if __has_feature(thread_sanitizer)
#define KDBIND_TESTS_OWN_ALLOCATIONS 0
#endif
#endif
#ifndef KDBIND_TESTS_OWN_ALLOCATIONS
#define KDBIND_TESTS_OWN_ALLOCATIONS 1
#endif

namespace KdBindTest {

constexpr bool kCanFailAllocations = KDBIND_TESTS_OWN_ALLOCATIONS;

// Atomic, since other tests of the program allocate on several threads; a
// run that arms them uses one.
struct CAllocationCounters {
    std::atomic<long> failAt{0};   // the allocation that fails, counted from arming; 0 when disarmed
    std::atomic<long> counted{0};  // allocations since arming
    std::atomic<long> live{0};     // blocks allocated minus blocks freed, always counted
};
inline CAllocationCounters g_allocations;

inline void* CountedAllocation(std::size_t size)
{
    if (g_allocations.failAt && ++g_allocations.counted == g_allocations.failAt)
        throw std::bad_alloc();
    void* const block = std::malloc(size ? size : 1);
    if (!block)
        throw std::bad_alloc();
    ++g_allocations.live;
    return block;
}

inline void CountedRelease(void* block)
{
    if (!block)
        return;
    --g_allocations.live;
    std::free(block);
}

// How each run ended.
struct CFailureCounts {
    int runs = 0;
    int kdExceptions = 0;
    int badAllocs = 0;
};

template <class Action>
CFailureCounts ForEachFailingAllocation(Action&& action)
{
    CFailureCounts counts;
    for (long failAt = 1;; ++failAt) {
        long const liveBefore = g_allocations.live;
        g_allocations.counted = 0;
        g_allocations.failAt = failAt;
        bool completed = false;
        std::string failure;
        try {
            action();
            completed = true;
        } catch (KdBind::CKdException const& e) {
            ++counts.kdExceptions;
            failure = e.GetFullMessage();
        } catch (std::bad_alloc const&) {
            ++counts.badAllocs;
        }
        bool const reached = g_allocations.counted >= failAt;
        g_allocations.failAt = 0;
        ++counts.runs;
        EXPECT_EQ(g_allocations.live, liveBefore) << "leak when allocation " << failAt << " failed: " << failure;
        if (completed) {
            // A run that saw its failing allocation must not have succeeded.
            EXPECT_FALSE(reached) << "allocation " << failAt << " failed unnoticed";
            return counts;
        }
        if (counts.runs > 100000) {
            ADD_FAILURE() << "no run completed";
            return counts;
        }
    }
}

} // namespace KdBindTest

#if KDBIND_TESTS_OWN_ALLOCATIONS
void* operator new(std::size_t size) { return KdBindTest::CountedAllocation(size); }
void* operator new[](std::size_t size) { return KdBindTest::CountedAllocation(size); }
void* operator new(std::size_t size, std::nothrow_t const&) noexcept
{
    try {
        return KdBindTest::CountedAllocation(size);
    } catch (std::bad_alloc const&) {
        return nullptr;
    }
}
void* operator new[](std::size_t size, std::nothrow_t const& tag) noexcept { return operator new(size, tag); }
void operator delete(void* block) noexcept { KdBindTest::CountedRelease(block); }
void operator delete[](void* block) noexcept { KdBindTest::CountedRelease(block); }
void operator delete(void* block, std::size_t) noexcept { KdBindTest::CountedRelease(block); }
void operator delete[](void* block, std::size_t) noexcept { KdBindTest::CountedRelease(block); }
void operator delete(void* block, std::nothrow_t const&) noexcept { KdBindTest::CountedRelease(block); }
void operator delete[](void* block, std::nothrow_t const&) noexcept { KdBindTest::CountedRelease(block); }
#endif

#endif
