#include <algorithm>
#include <climits>
#include <cstring>
#include <cwchar>

#include "kdbind/binding.h"
#include "kdbind/xmlinput.h"
#include "runtime/checked_size.h"
#include "xmlinput/node_pool.h"

namespace KdBind {

bool ASYNC_FROMXMLFILE = false;

void AsyncFromXmlFile(bool async) { ASYNC_FROMXMLFILE = async; }

CXmlDocument::CXmlDocument() : CXmlDocument(nullptr, CXmlSerializationContext::m_defaultContext) {}

CXmlDocument::CXmlDocument(CXmlSerializationContext const& context) : CXmlDocument(nullptr, context) {}

CXmlDocument::CXmlDocument(ElementCallback callback)
    : CXmlDocument(callback, CXmlSerializationContext::m_defaultContext)
{
}

CXmlDocument::CXmlDocument(ElementCallback callback, CXmlSerializationContext const& context)
    : CInstanceMonitor("CXmlDocument"), m_callback(callback), m_context(&context)
{
    Init();
}

CXmlDocument::~CXmlDocument() { CXmlDocument::Cleanup(); }

void CXmlDocument::Init()
{
    m_inputBuffer = nullptr;
    m_inputLength = 0;
    m_documentElement = nullptr;
    m_schemaType = m_context->GetSchemaType();
}

void CXmlDocument::Cleanup()
{
    delete m_documentElement;
    m_documentElement = nullptr;
    delete[] m_inputBuffer;
    m_inputBuffer = nullptr;
    m_inputLength = 0;
    m_elementStack.clear();
    m_aliasMap.clear();
    // Nodes that a caller took out of the tree keep the pool alive.
    if (m_nodePool)
        m_nodePool->Release();
    m_nodePool = nullptr;
}

CNodePool* CXmlDocument::NodePool()
{
    if (!m_nodePool)
        m_nodePool = new CNodePool;
    return m_nodePool;
}

void CXmlDocument::LoadXml(char const* text)
{
    Cleanup();
    size_t const length = text ? strlen(text) : 0;
    if (length == 0)
        throw CKdException("XML String is empty!");
    m_inputBuffer = new unsigned char[length];
    memcpy(m_inputBuffer, text, length);
    m_inputLength = length;
    ParseText();
}

// The byte order mark tells the parser the encoding. Each character keeps
// its two low bytes: code points beyond the 16-bit range are cut, not turned
// into surrogate pairs.
void CXmlDocument::LoadXml(wchar_t const* text)
{
    Cleanup();
    size_t const count = text ? wcslen(text) : 0;
    if (count == 0)
        throw CKdException("XML String is empty!");
    unsigned long const length = CheckedSum(CheckedProduct<unsigned long>(count, 2), 2UL);
    unsigned char* const buffer = new unsigned char[length];
    buffer[0] = 0xFF;
    buffer[1] = 0xFE;
    for (size_t i = 0; i < count; ++i) {
        auto const code = static_cast<unsigned long>(text[i]);
        buffer[2 + 2 * i] = static_cast<unsigned char>(code & 0xFF);
        buffer[3 + 2 * i] = static_cast<unsigned char>((code >> 8) & 0xFF);
    }
    m_inputBuffer = buffer;
    m_inputLength = length;
    ParseText();
}

void CXmlDocument::ParseText()
{
    CExpatReader reader(*this);
    reader.CreateParser();
    reader.Parse(true);
}

std::string CXmlDocument::LookupNamespaceFromAlias(char const* alias) const
{
    auto const found = m_aliasMap.find(alias ? alias : "");
    return found == m_aliasMap.end() ? std::string() : found->second;
}

namespace {
void RequireName(char const* uri, char const* name)
{
    if (!uri || !name)
        throw CKdInvalidParamException("An element needs a name and a namespace URI (empty for none), not null");
}
} // namespace

CXmlElement* CXmlDocument::AddDocElement(char const* uri, char const* name)
{
    RequireName(uri, name);
    // A second document element (only a faulty producer makes one) replaces
    // the first rather than leaking it.
    if (m_documentElement) {
        delete m_documentElement;
        m_elementStack.clear();
    }
    CNodePool* const pool = NodePool();
    m_documentElement = new (pool) CXmlElement(this, pool);
    m_documentElement->SetNamespace(std::string(uri));
    m_documentElement->SetElementName(std::string(name));
    m_elementStack.push_back(m_documentElement);
    return m_documentElement;
}

CXmlElement* CXmlDocument::AddChildElement(char const* uri, char const* name)
{
    RequireName(uri, name);
    if (m_elementStack.empty())
        throw CKdInvalidStateException("No open element to add a child element to");
    CXmlElement* const element = m_elementStack.back()->CreateNewChildElement();
    element->SetNamespace(std::string(uri));
    element->SetElementName(std::string(name));
    m_elementStack.push_back(element);
    return element;
}

CXmlElement* CXmlDocument::OpenElement()
{
    if (!m_documentElement) {
        CNodePool* const pool = NodePool();
        m_documentElement = new (pool) CXmlElement(this, pool);
        m_elementStack.push_back(m_documentElement);
        return m_documentElement;
    }
    if (m_elementStack.empty())
        throw CKdInvalidStateException("No open element to add a child element to");
    CXmlElement* const element = m_elementStack.back()->CreateNewChildElement();
    m_elementStack.push_back(element);
    return element;
}

// The document element has no parent to be taken from: when the callback
// consumes it, it stays in the document all the same.
void CXmlDocument::EndElement()
{
    if (m_elementStack.empty())
        return;
    CXmlElement* const finished = m_elementStack.back();
    m_elementStack.pop_back();
    if (!m_callback || !m_callback(finished) || m_elementStack.empty())
        return;
    delete m_elementStack.back()->RemoveLastChildElement();
}

void CXmlDocument::AddElementAttribute(CXmlElement* element, std::string const& name, std::string const& value,
                                       std::string const& uri)
{
    if (!element)
        throw CKdInvalidParamException("No element to add the attribute to");
    element->AddAttribute(name, value, uri);
}

void CXmlDocument::AppendTextExcludingCR(CXmlElement* element, char const* text, unsigned long length)
{
    if (!element || (!text && length))
        throw CKdInvalidParamException("No element, or no text, to append to it");
    if (!text)
        return;
    char const* const end = text + strnlen(text, length);
    while (text < end) {
        char const* const cr = static_cast<char const*>(memchr(text, '\r', static_cast<size_t>(end - text)));
        char const* const runEnd = cr ? cr : end;
        while (text < runEnd) {
            int const slice = static_cast<int>(std::min<long>(runEnd - text, INT_MAX));
            element->AppendText(text, slice);
            text += slice;
        }
        if (cr)
            ++text;
    }
}

void CXmlDocument::AppendTextExcludingCR(CXmlElement* element, char const* text)
{
    AppendTextExcludingCR(element, text, 4294967295UL);
}

} // namespace KdBind
