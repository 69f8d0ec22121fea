#include "kdbind/xmlinput.h"
#include "xmlinput/node_pool.h"

namespace KdBind {

namespace {
char const kSchemaInstanceNamespace[] = "http://www.w3.org/2001/XMLSchema-instance";
char const kXmlnsNamespace[] = "http://www.w3.org/2000/xmlns/";
} // namespace

CXmlAttribute::CXmlAttribute(std::string const& name, std::string const& value, std::string const& uri)
    : CXmlAttribute(std::string(name), std::string(value), std::string(uri))
{
}

CXmlAttribute::CXmlAttribute(std::string&& name, std::string&& value, std::string&& uri)
    : CInstanceMonitor("CXmlAttribute"), m_localName(std::move(name)), m_value(std::move(value)),
      m_namespaceURI(uri.empty() ? &NoNamespaceURI() : new std::string(std::move(uri))),
      m_ownsNamespaceURI(m_namespaceURI != &NoNamespaceURI())
{
}

CXmlAttribute::CXmlAttribute(std::string&& name, std::string&& value, std::string const* uri, SharedURI)
    : CInstanceMonitor("CXmlAttribute"), m_localName(std::move(name)), m_value(std::move(value)),
      m_namespaceURI(uri), m_ownsNamespaceURI(false)
{
}

CXmlAttribute::~CXmlAttribute()
{
    if (m_ownsNamespaceURI)
        delete m_namespaceURI;
}

static_assert(alignof(CXmlAttribute) <= CNodePool::kAlignment, "the node pool can hold it");

void* CXmlAttribute::operator new(std::size_t size, CNodePool* pool) { return CNodePool::Allocate(pool, size); }

void CXmlAttribute::operator delete(void* node, std::size_t size) { CNodePool::Free(node, size); }

void CXmlAttribute::operator delete(void* node, CNodePool*) { CNodePool::Free(node, sizeof(CXmlAttribute)); }

// The namespace test and the name test are independent: any of the four
// names counts under either namespace. xsi:nil is data to the binding.
bool CXmlAttribute::IsNamespaceAttribute() const
{
    if (*m_namespaceURI != kSchemaInstanceNamespace && *m_namespaceURI != kXmlnsNamespace)
        return false;
    return m_localName == "xmlns" || m_localName == "type" || m_localName == "schemaLocation" ||
           m_localName == "noNamespaceSchemaLocation";
}

} // namespace KdBind
