// Feeds arbitrary documents to the purchase-order binding: the walk must end
// in a filled object or a CKdException. Whatever loads and writes must also
// round-trip: its text read into a new object writes the same text again.
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "purchase_order.h"

namespace {

void Violated(char const* what, std::string const& first, std::string const& second)
{
    fprintf(stderr, "%s\n--- first ---\n%s\n--- second ---\n%s\n", what, first.c_str(), second.c_str());
    abort();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    using PurchaseOrderSchema::CPurchaseOrder;
    std::string const text(reinterpret_cast<char const*>(data), size);
    std::string written;
    try {
        CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();
        order->FromXml(text.c_str());
        written = order->ToXml();
    } catch (KdBind::CKdException const&) {
        return 0;  // refused on the way in or out: no text to round-trip
    }
    std::string rewritten;
    try {
        CSmartPtr<CPurchaseOrder> copy = new CPurchaseOrder();
        copy->FromXml(written.c_str());
        rewritten = copy->ToXml();
    } catch (KdBind::CKdException const& e) {
        Violated("The written text does not load again", written, e.GetFullMessage());
    }
    if (rewritten != written)
        Violated("The written text does not write the same again", written, rewritten);
    return 0;
}
