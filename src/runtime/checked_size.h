// Sizes of buffers about to grow. A size that does not fit its type is a
// request no allocation could meet, and fails as a failed allocation does.
#ifndef KDBIND_SRC_RUNTIME_CHECKED_SIZE_H
#define KDBIND_SRC_RUNTIME_CHECKED_SIZE_H

#include <limits>
#include <new>

namespace KdBind {

template <class Size>
Size CheckedSum(Size a, Size b)
{
    if (b > std::numeric_limits<Size>::max() - a)
        throw std::bad_alloc();
    return a + b;
}

template <class Size>
Size CheckedProduct(Size a, Size b)
{
    if (a != 0 && b > std::numeric_limits<Size>::max() / a)
        throw std::bad_alloc();
    return a * b;
}

} // namespace KdBind

#endif
