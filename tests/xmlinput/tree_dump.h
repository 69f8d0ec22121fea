// A parsed tree as one line of text, for comparing the trees that different
// input forms give: {uri}name[attributes](text) children, depth first.
#ifndef KDBIND_TESTS_XMLINPUT_TREE_DUMP_H
#define KDBIND_TESTS_XMLINPUT_TREE_DUMP_H

#include <string>

#include <kdbind/xmlinput.h>

namespace KdBindTest {

inline std::string DumpTree(KdBind::CXmlElement const* element)
{
    if (!element)
        return "<none>";
    std::string out = "{" + element->GetNamespaceURI() + "}" + element->GetLocalName() + "[";
    for (KdBind::CXmlAttribute const* attribute : element->GetAttributes())
        out += "{" + attribute->GetNamespaceURI() + "}" + attribute->GetLocalName() + "=" + attribute->GetValue() +
               ";";
    out += "](" + element->GetText() + ")";
    for (KdBind::CXmlElement const* child = element->GetFirstElement(); child; child = child->GetNextSiblingElement())
        out += " " + DumpTree(child);
    return "<" + out + ">";
}

} // namespace KdBindTest

#endif
