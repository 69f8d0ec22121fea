// Uses the installed headers and library: a value through its lexical form.
#include <kdbind/kdbind.h>

int main()
{
    KdBind::KdVariant value;
    value.FromString("42", KdBind::ItemType_ui4, KdBind::CWhitespaceUtils::WhitespaceRule_Collapse);
    return value.ToString(nullptr) == "42" ? 0 : 1;
}
