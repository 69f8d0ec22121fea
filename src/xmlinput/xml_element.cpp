#include <algorithm>
#include <climits>
#include <cstring>

#include "kdbind/xmlinput.h"
#include "xmlinput/node_pool.h"

namespace KdBind {

CXmlElement::CXmlElement(CXmlDocument const* document)
    : CInstanceMonitor("CXmlElement"), m_document(document), m_namespaceURI(&NoNamespaceURI())
{
}

CXmlElement::CXmlElement(CXmlDocument const* document, CNodePool* pool)
    : CInstanceMonitor("CXmlElement"), m_document(document), m_namespaceURI(&NoNamespaceURI()), m_pool(pool)
{
}

static_assert(alignof(CXmlElement) <= CNodePool::kAlignment, "the node pool can hold it");

void* CXmlElement::operator new(std::size_t size, CNodePool* pool) { return CNodePool::Allocate(pool, size); }

void CXmlElement::operator delete(void* node, std::size_t size) { CNodePool::Free(node, size); }

void CXmlElement::operator delete(void* node, CNodePool*) { CNodePool::Free(node, sizeof(CXmlElement)); }

// A document may be thousands of levels deep, so the subtree is taken apart
// with a work list instead of recursion: each element's children are spliced
// in front of the elements still pending, and an element is deleted only once
// it has no children left. The list costs no memory beyond the sibling links.
CXmlElement::~CXmlElement()
{
    CXmlElement* pending = m_firstChild;
    m_firstChild = nullptr;
    m_lastChild = nullptr;
    while (pending) {
        CXmlElement* element = pending;
        pending = element->m_nextSibling;
        if (element->m_firstChild) {
            element->m_lastChild->m_nextSibling = pending;
            pending = element->m_firstChild;
            element->m_firstChild = nullptr;
            element->m_lastChild = nullptr;
        }
        element->m_nextSibling = nullptr;
        delete element;
    }
    for (CXmlAttribute* attribute : m_attributes)
        delete attribute;
    if (OwnsNamespaceURI())
        delete m_namespaceURI;
}

bool CXmlElement::OwnsNamespaceURI() const { return !m_pool && m_namespaceURI != &NoNamespaceURI(); }

void CXmlElement::SetNamespace(std::string&& uri)
{
    if (OwnsNamespaceURI())
        *const_cast<std::string*>(m_namespaceURI) = std::move(uri);
    else if (uri.empty())
        m_namespaceURI = &NoNamespaceURI();
    else if (m_pool)
        m_namespaceURI = m_pool->Intern(std::move(uri));
    else
        m_namespaceURI = new std::string(std::move(uri));
}

std::string const& CXmlElement::GetAttribute(std::string const& name, std::string const& uri) const
{
    static std::string const empty;
    for (CXmlAttribute const* attribute : m_attributes)
        if (attribute->GetLocalName() == name && attribute->GetNamespaceURI() == uri)
            return attribute->GetValue();
    return empty;
}

// Grows by doubling even where the string class would not, so that the
// many small appends of a parser stay linear.
void CXmlElement::AppendText(char const* text, int length)
{
    if (length <= 0)
        return;
    if (!text)
        throw CKdInvalidParamException("No text to append");
    std::string::size_type const needed = m_text.size() + static_cast<std::string::size_type>(length);
    if (!m_text.empty() && m_text.capacity() < needed)
        m_text.reserve(std::max(2 * m_text.capacity(), needed));
    m_text.append(text, static_cast<std::string::size_type>(length));
}

void CXmlElement::AppendText(char const* text)
{
    if (!text)
        throw CKdInvalidParamException("No text to append");
    for (size_t length = strlen(text); length > 0;) {
        int const slice = static_cast<int>(std::min<size_t>(length, INT_MAX));
        AppendText(text, slice);
        text += slice;
        length -= static_cast<size_t>(slice);
    }
}

void CXmlElement::AddAttribute(std::string const& name, std::string const& value, std::string const& uri)
{
    AddAttribute(std::string(name), std::string(value), std::string(uri));
}

// In a parsed tree the attribute shares its URI through the pool.
void CXmlElement::AddAttribute(std::string&& name, std::string&& value, std::string&& uri)
{
    CXmlAttribute* attribute;
    if (m_pool) {
        std::string const* const shared = uri.empty() ? &NoNamespaceURI() : m_pool->Intern(std::move(uri));
        attribute = new (m_pool) CXmlAttribute(std::move(name), std::move(value), shared, CXmlAttribute::SharedURI());
    } else {
        attribute = new CXmlAttribute(std::move(name), std::move(value), std::move(uri));
    }
    try {
        m_attributes.push_back(attribute);
    } catch (...) {
        delete attribute;
        throw;
    }
}

CXmlElement* CXmlElement::CreateNewChildElement()
{
    CXmlElement* child = new (m_pool) CXmlElement(m_document, m_pool);
    if (m_lastChild)
        m_lastChild->m_nextSibling = child;
    else
        m_firstChild = child;
    m_lastChild = child;
    return child;
}

CXmlElement* CXmlElement::RemoveLastChildElement()
{
    if (!m_firstChild || !m_lastChild)
        return nullptr;
    CXmlElement* const removed = m_lastChild;
    if (m_firstChild == m_lastChild) {
        m_firstChild = nullptr;
        m_lastChild = nullptr;
        return removed;
    }
    CXmlElement* before = m_firstChild;
    while (before->m_nextSibling != removed)
        before = before->m_nextSibling;
    before->m_nextSibling = nullptr;
    m_lastChild = before;
    return removed;
}

} // namespace KdBind
