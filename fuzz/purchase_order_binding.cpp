// Feeds arbitrary documents to the purchase-order binding: the walk must end
// in a filled object or a CKdException, and whatever loaded must write again.
#include <cstdint>
#include <string>

#include "purchase_order.h"

extern "C" int LLVMFuzzerTestOneInput(uint8_t const* data, size_t size)
{
    std::string const text(reinterpret_cast<char const*>(data), size);
    CSmartPtr<PurchaseOrderSchema::CPurchaseOrder> order = new PurchaseOrderSchema::CPurchaseOrder();
    try {
        order->FromXml(text.c_str());
        order->ToXml();
    } catch (KdBind::CKdException const&) {
    }
    return 0;
}
