// CElement: one untyped element and its subtree.
//
// Foreign content can be as deep as the parser allows, so no operation here
// recurses with the depth of the tree: each walk keeps its own stack in a
// vector, and a dying tree is freed level by level.
#include <cstring>
#include <utility>
#include <vector>

#include "kdbind/binding.h"

namespace KdBind {

namespace {

std::string TextOrEmpty(char const* text) { return text ? text : ""; }

char const kAnyNamespace[] = "##any";

// True when the caller's reference is the only one besides the one that
// the caller knows of: the object dies when that one goes.
bool HasOneOtherHolder(CXmlObjectBase* object)
{
    long const count = object->AddRef();
    object->Release();
    return count == 2;
}

bool IsKeyword(char const* ns)
{
    for (char const* keyword : {"##any", "##other", "##local", "##targetNamespace"})
        if (std::strcmp(ns, keyword) == 0)
            return true;
    return false;
}

} // namespace

// ---------------------------------------------------------------------------
// Construction and destruction.
// ---------------------------------------------------------------------------

void CElement::Init(char const* name, char const* ns, char const* restriction, char const* targetNamespace)
{
    if (!name)
        throw CKdInvalidNamespaceException("Element Name must have a value");
    if (!restriction)
        throw CKdInvalidNamespaceException("Namespace Restriction must have a value");
    if (!targetNamespace)
        throw CKdInvalidNamespaceException("Target Namespace must have a value");
    CXmlObjectHelper::TestNamespace(TextOrEmpty(ns), restriction, targetNamespace);
    m_name = name;
    m_namespace = TextOrEmpty(ns);
    m_restriction = restriction;
    m_targetNamespace = targetNamespace;
    // The restriction holds for this element only; its content is open.
    m_attributes = new CAttributeCol(m_namespace.c_str(), kAnyNamespace, targetNamespace);
    m_children = new CElementCol(m_namespace.c_str(), kAnyNamespace, targetNamespace, 0, -1);
}

CElement::CElement(char const* name) : CInstanceMonitor("CElement") { Init(name, "", kAnyNamespace, ""); }

CElement::CElement(char const* name, char const* ns) : CInstanceMonitor("CElement")
{
    if (ns && IsKeyword(ns))
        throw CKdInvalidNamespaceException(FormatString("Invalid Namespace [%s]", ns));
    Init(name, ns, ns, "");
}

CElement::CElement(char const* name, char const* ns, char const* restriction, char const* targetNamespace)
    : CInstanceMonitor("CElement")
{
    Init(name, ns, restriction, targetNamespace);
}

CElement::CElement(CXmlObjectBase* object, char const* defaultNamespace) : CInstanceMonitor("CElement")
{
    Init("", "", kAnyNamespace, "");
    if (!object)
        throw CKdInvalidParamException("An element can only be made from an object");
    m_defaultNamespace = TextOrEmpty(defaultNamespace);
    CXmlSerializationContext context;
    context.SetDefaultNamespaceURI(m_defaultNamespace.c_str());
    // No declaration, no formatting, UTF-8 bytes: the text survives whatever
    // the process's code page.
    CBinaryData const bytes = object->ToXmlStream(false, false, XmlEncoding_UTF8, EOLType_LF, context, CompressionType_None);
    CXmlDocument document(context);
    // LoadXmlStream copies the bytes; it never writes through the pointer.
    document.LoadXmlStream(const_cast<unsigned char*>(bytes.GetData()), bytes.GetLength());
    CopyXmlElement(document.GetDocumentElement());
}

CElement::~CElement() { ReleaseLevelByLevel(std::move(m_children)); }

// Each element that dies with a level hands its own children to the next
// round before the level goes, so every destructor finds no grandchildren.
// Elements that someone else still holds keep their subtree.
void CElement::ReleaseLevelByLevel(CSmartPtr<CElementCol> elements)
{
    std::vector<CSmartPtr<CElementCol>> pending;
    pending.push_back(std::move(elements));
    while (!pending.empty()) {
        CSmartPtr<CElementCol> level = std::move(pending.back());
        pending.pop_back();
        if (!level || !HasOneOtherHolder(level))
            continue;
        for (CElementCol::CNode* node = level->begin(); node != level->end(); node = node->next) {
            CElement* child = dynamic_cast<CElement*>(node->item);
            if (child && HasOneOtherHolder(child))
                pending.push_back(std::move(child->m_children));
        }
    }
}

// ---------------------------------------------------------------------------
// Properties.
// ---------------------------------------------------------------------------

void CElement::SetName(char const* name)
{
    m_name = TextOrEmpty(name);
    FireOnChangeName(name);
}

void CElement::SetText(char const* text)
{
    m_text = TextOrEmpty(text);
    FireOnChangeText(text);
}

void CElement::SetNamespace(char const* ns)
{
    CXmlObjectHelper::TestNamespace(TextOrEmpty(ns), m_restriction, m_targetNamespace);
    m_namespace = TextOrEmpty(ns);
    FireOnChangeNamespace(ns);
}

void CElement::FireOnChangeName(char const*) {}

void CElement::FireOnChangeText(char const*) {}

void CElement::FireOnChangeNamespace(char const*) {}

// ---------------------------------------------------------------------------
// Output.
// ---------------------------------------------------------------------------

void CElement::ToXml_Int(CXmlWriter* writer, bool, char const* ns, CXmlSerializationContext const& context,
                         bool isOptional) const
{
    if (!m_defaultNamespace.empty()) {
        ToXmlWithDefaultNamespace(writer);
        return;
    }
    writer->WriteStartElement(m_name, m_namespace);
    CXmlObjectBase::ToXml_Int(m_attributes, writer, false, ns, context, false);
    CXmlObjectBase::ToXml_Int(m_children, writer, false, ns, context, isOptional);
    writer->WriteString(m_text, ItemType_string);
    writer->WriteEndElement();
}

// What each element's ToXml_Int would do, with the open elements on a stack:
// start tag and attributes on the way down, text and end tag on the way up.
// An element under a default namespace of its own, or an item that is not an
// element, is written by its own slot.
void CElement::WriteElements(CElementCol const& elements, CXmlWriter* writer, char const* ns,
                             CXmlSerializationContext const& context)
{
    struct Level {
        CElement const* element;  // null for the collection itself
        CElementCol::CNode* next;
    };
    std::vector<Level> open{{nullptr, elements.begin()}};
    while (!open.empty()) {
        Level& level = open.back();
        if (!level.next) {
            if (CElement const* element = level.element) {
                writer->WriteString(element->m_text, ItemType_string);
                writer->WriteEndElement();
            }
            open.pop_back();
            continue;
        }
        CXmlObjectBase const* item = level.next->item;
        level.next = level.next->next;
        if (!item)
            continue;
        CElement const* element = dynamic_cast<CElement const*>(item->GetBase());
        if (!element || !element->m_defaultNamespace.empty()) {
            CXmlObjectBase::ToXml_Int(item->GetBase(), writer, false, ns, context, false);
            continue;
        }
        writer->WriteStartElement(element->m_name, element->m_namespace);
        CXmlObjectBase::ToXml_Int(element->m_attributes, writer, false, ns, context, false);
        element->m_children->ValidateCount(context);
        open.push_back({element, element->m_children->begin()});
    }
}

// The subtree is rendered by a writer of its own, whose scope knows nothing
// of the outer document, and goes in as raw text. Attributes are not
// written on this path.
//
// Another kind of writer (Fast Infoset) names every namespace explicitly, so
// there is nothing to render apart: it gets the same content, also without
// the attributes, through its own calls.
void CElement::ToXmlWithDefaultNamespace(CXmlWriter* writer) const
{
    CXmlSerializationContext context;
    context.SetDefaultNamespaceURI(m_defaultNamespace.c_str());
    CXmlTextWriter* outer = dynamic_cast<CXmlTextWriter*>(writer);
    if (!outer) {
        writer->WriteStartElement(m_name, m_namespace);
        CXmlObjectBase::ToXml_Int(m_children, writer, false, m_namespace.c_str(), context, false);
        writer->WriteString(m_text, ItemType_string);
        writer->WriteEndElement();
        return;
    }
    CTextStream stream;
    CXmlTextWriter inner(stream);
    inner.Open();
    inner.SetEOLType(outer->GetEOLType());
    inner.SetFormat(outer->GetFormat());
    inner.SetDefaultNamespace(m_defaultNamespace);
    inner.WriteStartElement(m_name, m_namespace);
    CXmlObjectBase::ToXml_Int(m_children, &inner, false, m_namespace.c_str(), context, false);
    inner.WriteString(m_text, ItemType_string);
    inner.WriteEndElement();
    stream.Flush();
    outer->CloseParentElm();
    outer->WriteRawElement(stream.GetString());
}

// ---------------------------------------------------------------------------
// Input.
// ---------------------------------------------------------------------------

void CElement::FromXml(char const* xml, CXmlSerializationContext const&)
{
    CXmlSerializationContext const& context = CXmlSerializationContext::m_defaultContext;
    CXmlDocument document(context);
    document.LoadXml(xml);
    CXmlElement* root = document.GetDocumentElement();
    if (!root)
        throw CKdValidationException("The document has no document element");
    FromXml_Int(root, root, context, false);
}

CXmlElement* CElement::FromXml_Int(CXmlElement*, CXmlElement* cursor, CXmlSerializationContext const& context, bool)
{
    // Refusing is not consuming; the caller decides what that means.
    if (!cursor || !CXmlObjectHelper::IsNamespaceValid(cursor->GetNamespaceURI(), m_restriction, m_targetNamespace))
        return cursor;
    ReadContent(*this, cursor, context);
    m_text = cursor->GetText();
    m_name = cursor->GetLocalName();
    m_namespace = cursor->GetNamespaceURI();
    return cursor->GetNextSiblingElement();
}

// What the collections' FromXml_Int would do, level by level. Below the top
// every element comes from a collection that lets any namespace in, so its
// refusal, which ends a collection's run, cannot stop the walk half-way; the
// test stays for the failure it would report.
void CElement::ReadContent(CElement& top, CXmlElement* source, CXmlSerializationContext const& context)
{
    std::vector<std::pair<CElement*, CXmlElement*>> pending{{&top, source}};
    while (!pending.empty()) {
        auto const [element, from] = pending.back();
        pending.pop_back();
        CXmlObjectBase::FromXml_Int(element->m_attributes, from, nullptr, context, false);
        CElementCol& children = *element->m_children;
        for (CXmlElement* child = from->GetFirstElement(); child; child = child->GetNextSiblingElement()) {
            std::string const& ns = child->GetNamespaceURI();
            if (!CXmlObjectHelper::IsNamespaceValid(ns, children.m_restriction, children.m_targetNamespace))
                throw CKdValidationException(FormatString("Invalid Element [%s] found in element [%s]",
                                                          from->GetLocalName().c_str(), element->m_name.c_str()));
            CSmartPtr<CElement> made = new CElement(child->GetLocalName().c_str(), ns.c_str(),
                                                    children.m_restriction.c_str(),
                                                    children.m_targetNamespace.c_str());
            made->m_text = child->GetText();
            children.Add(made);
            pending.emplace_back(made.get(), child);
        }
    }
}

// ---------------------------------------------------------------------------
// Copies and tests of the whole tree.
// ---------------------------------------------------------------------------

void CElement::CopyXmlElement(CXmlElement* element)
{
    if (!element)
        throw CKdInvalidParamException("CopyXmlElement needs an element");
    std::vector<std::pair<CElement*, CXmlElement const*>> pending{{this, element}};
    while (!pending.empty()) {
        auto const [target, from] = pending.back();
        pending.pop_back();
        target->m_name = from->GetLocalName();
        target->m_namespace = from->GetNamespaceURI();
        target->m_text = from->GetText();
        target->m_attributes->Clear();
        target->m_children->Clear();
        for (CXmlAttribute const* attribute : from->GetAttributes()) {
            target->m_attributes->Add(attribute->GetLocalName().c_str(), attribute->GetValue().c_str(),
                                      attribute->GetNamespaceURI().c_str());
            if (attribute->GetLocalName() == "xmlns")
                target->m_defaultNamespace = attribute->GetValue();
        }
        for (CXmlElement* child = from->GetFirstElement(); child; child = child->GetNextSiblingElement()) {
            CSmartPtr<CElement> made = new CElement(child->GetLocalName().c_str());
            target->m_children->Add(made);
            pending.emplace_back(made.get(), child);
        }
    }
}

void CElement::SetNamespaceRestrictions(char const* restriction, char const* targetNamespace)
{
    std::string const spec = TextOrEmpty(restriction);
    std::string const target = TextOrEmpty(targetNamespace);
    // Children go on the stack last first, so that the tree is tested in
    // document order and the first fault found is the first in the document.
    std::vector<CElement const*> pending{this};
    std::vector<CElement const*> children;
    while (!pending.empty()) {
        CElement const* element = pending.back();
        pending.pop_back();
        try {
            CXmlObjectHelper::TestNamespace(element->m_namespace, spec, target);
        } catch (CKdException const& e) {
            throw new CKdInvalidNamespaceException(
                FormatString("The namespace %s in the class %s is invalid against restriction %s",
                             element->m_name.c_str(), element->m_namespace.c_str(), spec.c_str()),
                e);
        }
        for (CAttributeCol::CNode* node = element->m_attributes->begin(); node; node = node->next)
            if (node->item)
                CXmlObjectHelper::TestNamespace(node->item->GetNamespace(), spec, target);
        children.clear();
        for (CElementCol::CNode* node = element->m_children->begin(); node; node = node->next)
            if (CElement const* child = dynamic_cast<CElement const*>(node->item))
                children.push_back(child);
        pending.insert(pending.end(), children.rbegin(), children.rend());
    }
}

CSmartPtr<CElement> CElement::Clone() const
{
    // The element alone: its attributes and an empty copy of its collection.
    auto const cloneOne = [](CElement const& from) {
        CSmartPtr<CElement> copy = new CElement(from.m_name.c_str(), from.m_namespace.c_str(),
                                                from.m_restriction.c_str(), from.m_targetNamespace.c_str());
        copy->m_attributes = from.m_attributes->Clone();
        CElementCol const& children = *from.m_children;
        copy->m_children = new CElementCol(children.m_newElementNamespace.c_str(), children.m_restriction.c_str(),
                                           children.m_targetNamespace.c_str(), children.GetMinOccurs(),
                                           children.GetMaxOccurs());
        copy->m_text = from.m_text;
        return copy;
    };
    CSmartPtr<CElement> root = cloneOne(*this);
    std::vector<std::pair<CElement const*, CElement*>> pending{{this, root.get()}};
    while (!pending.empty()) {
        auto const [from, to] = pending.back();
        pending.pop_back();
        for (CElementCol::CNode* node = from->m_children->begin(); node; node = node->next) {
            CElement const* child = dynamic_cast<CElement const*>(node->item);
            if (!child)
                continue;
            CSmartPtr<CElement> copy = cloneOne(*child);
            to->m_children->Add(copy);
            pending.emplace_back(child, copy.get());
        }
    }
    return root;
}

} // namespace KdBind
