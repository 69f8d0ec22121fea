// CXmlWriter: the stack of open elements and their copy-on-write
// namespace scopes, shared by the text and binary writers.
#include <cassert>

#include "kdbind/xmloutput.h"

namespace KdBind {

// ---------------------------------------------------------------------------
// CXmlWriterContext
// ---------------------------------------------------------------------------

CXmlWriterContext::CXmlWriterContext(std::string const& name, std::string const& uri,
                                     std::string const& defaultNamespace, NamespaceMap const& namespaces,
                                     CXmlWriterContext* parent)
    : CInstanceMonitor("CXmlWriterContext"), m_depth(parent ? parent->m_depth + 1 : 0), m_uri(uri), m_name(name),
      m_parent(parent), m_defaultNamespace(defaultNamespace), m_namespaces(new NamespaceMap(namespaces)),
      m_inheritsScope(false), m_ownsMap(true), m_scopeOwner(this)
{
}

CXmlWriterContext::CXmlWriterContext(std::string const& name, std::string const& uri, CXmlWriterContext* parent)
    : CInstanceMonitor("CXmlWriterContext"), m_depth(parent ? parent->m_depth + 1 : 0), m_uri(uri), m_name(name),
      m_parent(parent), m_namespaces(parent ? parent->GetNamespaceMap() : nullptr), m_inheritsScope(true),
      m_ownsMap(false), m_scopeOwner(parent ? parent->m_scopeOwner : this)
{
}

void CXmlWriterContext::Reuse(std::string const& name, std::string const& uri, CXmlWriterContext* parent)
{
    if (m_ownsMap)
        delete m_namespaces;
    m_childCount = 0;
    m_startTagOpen = true;
    m_depth = parent->m_depth + 1;
    if (m_uri != uri)  // siblings mostly share their namespace
        m_uri = uri;
    m_name = name;
    m_parent = parent;
    m_hasAttributes = false;
    m_prefixScope = nullptr;
    m_prefix = nullptr;
    m_defaultNamespace.clear();
    m_namespaces = parent->GetNamespaceMap();
    m_inheritsScope = true;
    m_ownsMap = false;
    m_scopeOwner = parent->m_scopeOwner;
}

CXmlWriterContext::~CXmlWriterContext()
{
    if (m_ownsMap)
        delete m_namespaces;
    // One context after the other, so that a deep stack needs no deep recursion.
    CXmlWriterContext* parent = m_parent;
    m_parent = nullptr;
    while (parent) {
        CXmlWriterContext* next = parent->m_parent;
        parent->m_parent = nullptr;
        delete parent;
        parent = next;
    }
}

CXmlWriterContext const* CXmlWriterContext::ScopeOwner() const
{
    assert(m_scopeOwner && (m_scopeOwner == this || m_inheritsScope));
    return m_scopeOwner;
}

CXmlWriter::NamespaceMap* CXmlWriterContext::GetNamespaceMap() const { return ScopeOwner()->m_namespaces; }

std::string const& CXmlWriterContext::GetDefaultNamespace() const { return ScopeOwner()->m_defaultNamespace; }

void CXmlWriterContext::TakeOwnScope()
{
    if (!m_inheritsScope)
        return;
    NamespaceMap* inherited = GetNamespaceMap();
    m_defaultNamespace = GetDefaultNamespace();
    m_namespaces = inherited ? new NamespaceMap(*inherited) : new NamespaceMap();
    m_ownsMap = true;
    m_inheritsScope = false;
    m_scopeOwner = this;
}

void CXmlWriterContext::SetDefaultNamespace(std::string const& uri)
{
    TakeOwnScope();
    m_defaultNamespace = uri;
}

void CXmlWriterContext::SetNamespaceMapValue(std::string const& uri, std::string const& prefix)
{
    TakeOwnScope();
    (*m_namespaces)[uri] = prefix;
}

std::string CXmlWriterContext::GetNamespaceMapValue(std::string const& uri) { return (*GetNamespaceMap())[uri]; }

std::string CXmlWriterContext::GetNamespaceMapValue(char const* uri) { return (*GetNamespaceMap())[uri]; }

std::string const& CXmlWriterContext::NamespaceMapValue(std::string const& uri) { return (*GetNamespaceMap())[uri]; }

// ---------------------------------------------------------------------------
// CXmlWriter
// ---------------------------------------------------------------------------

CXmlWriter::CXmlWriter(char const* monitorName) : CInstanceMonitor(monitorName) {}

CXmlWriter::~CXmlWriter()
{
    delete m_context;
    delete m_spareContexts;
}

void CXmlWriter::Open() {}

void CXmlWriter::Close()
{
    if (m_context)
        throw CKdException("An Element has not been closed.");
}

void CXmlWriter::SetDefaultNamespace(std::string const& uri)
{
    if (m_context)
        m_context->SetDefaultNamespace(uri);
    else
        m_defaultNamespace = uri;
}

void CXmlWriter::AddNamespace(std::string const& prefix, std::string const& uri)
{
    if (m_context)
        m_context->SetNamespaceMapValue(uri, prefix);
    else
        m_namespaces[uri] = prefix;
}

std::string CXmlWriter::NsIntToString(int n)
{
    std::string prefix(2, 'A');
    prefix[0] = static_cast<char>('A' + n / 26);
    prefix[1] = static_cast<char>('A' + n % 26);
    return prefix;
}

std::string CXmlWriter::GetUniquePrefix(NamespaceMap const& namespaces)
{
    for (int n = 0;; ++n) {
        std::string candidate = NsIntToString(n);
        bool taken = false;
        for (auto const& entry : namespaces) {
            if (entry.second == candidate) {
                taken = true;
                break;
            }
        }
        if (!taken)
            return candidate;
    }
}

CXmlWriterContext* CXmlWriter::PushContext(std::string const& name, std::string const& uri)
{
    if (m_context && m_spareContexts) {
        CXmlWriterContext* context = m_spareContexts;
        m_spareContexts = context->m_parent;
        context->Reuse(name, uri, m_context);
        m_context = context;
    } else if (m_context)
        m_context = new CXmlWriterContext(name, uri, m_context);
    else
        m_context = new CXmlWriterContext(name, uri, m_defaultNamespace, m_namespaces, nullptr);
    return m_context;
}

void CXmlWriter::PopContext()
{
    CXmlWriterContext* ended = m_context;
    assert(ended);  // the writers check for an open element before they pop one
    m_context = ended->m_parent;
    if (m_context) {
        // The scope it owns goes now; a document element is not kept, as it
        // carries a scope of its own making.
        ended->m_defaultNamespace.clear();
        if (ended->m_ownsMap) {
            delete ended->m_namespaces;
            ended->m_ownsMap = false;
        }
        ended->m_namespaces = nullptr;
        ended->m_parent = m_spareContexts;
        m_spareContexts = ended;
    } else {
        ended->m_parent = nullptr;
        delete ended;
    }
}

} // namespace KdBind
