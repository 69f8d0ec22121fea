// The KdBind demo: builds a purchase order and prints the document it writes.
#include <iostream>

#include "purchase_order.h"

using namespace KdBind;
using namespace PurchaseOrderSchema;

int main()
{
    try {
        CSmartPtr<CPurchaseOrder> order = new CPurchaseOrder();

        CXmlSerializationContext context;
        context.GetNamespaceAliases().Add("po", NAMESPACE);
        context.GetProcessingInstructions().push_back("<?xml-stylesheet type=\"text/xsl\" href=\"po.xsl\"?>");

        std::cout << "The purchase order as XML:\n\n" << order->ToXml(true, true, EOLType_LF, context) << "\n";
    } catch (CKdException const& e) {
        std::cerr << "KdBind failure:\n" << e.GetFullMessage() << "\n";
        return 1;
    }
    CPurchaseOrder::CleanMetaData();
    return 0;
}
