// Enumerations of the purchase-order schema: value to text and back.
#include <cstring>

#include "purchase_order.h"

namespace PurchaseOrderSchema {

namespace {
char const* const kPriorityTexts[] = {"low", "normal", "urgent"};
char const* const kOrderStatusTexts[] = {"open", "shipped", "cancelled"};

template <size_t N>
char const* EnumToString(char const* const (&texts)[N], int value, char const* typeName)
{
    if (value < 0 || value >= static_cast<int>(N))
        throw KdBind::CKdInvalidValueException(
            KdBind::FormatString("Invalid value [%d] for the enumeration [%s]", value, typeName));
    return texts[value];
}

template <size_t N>
int EnumFromString(char const* const (&texts)[N], char const* text, char const* typeName)
{
    for (size_t i = 0; i < N; ++i)
        if (strcmp(texts[i], text) == 0)
            return static_cast<int>(i);
    throw KdBind::CKdInvalidValueException(
        KdBind::FormatString("Invalid value [%s] for the enumeration [%s]", text, typeName));
}
} // namespace

char const* PriorityToString(int value) { return EnumToString(kPriorityTexts, value, "Priority"); }

int PriorityFromString(char const* text) { return EnumFromString(kPriorityTexts, text, "Priority"); }

char const* OrderStatusToString(int value) { return EnumToString(kOrderStatusTexts, value, "OrderStatus"); }

int OrderStatusFromString(char const* text) { return EnumFromString(kOrderStatusTexts, text, "OrderStatus"); }

} // namespace PurchaseOrderSchema
