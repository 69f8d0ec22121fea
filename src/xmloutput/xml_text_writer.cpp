// CXmlTextWriter: writer calls to XML text. Pretty printing is a fixed rule
// on the shape of the calls: start tags indented by depth, end tags only
// when the element had children, text adds no white space.
#include <cstring>

#include "kdbind/xmloutput.h"

namespace KdBind {

namespace {
char const kSchemaInstanceNamespace[] = "http://www.w3.org/2001/XMLSchema-instance";
char const kCDataStart[] = "<![CDATA[";
constexpr size_t kCDataStartLength = sizeof(kCDataStart) - 1;
constexpr unsigned long kFlushThreshold = 4095;

// The bytes PadAndAppend stops at: the terminator, line ends and the escaped ones.
struct StopBytes {
    bool stop[256];
    constexpr StopBytes() : stop()
    {
        for (unsigned char c : "\n\r\"&<>")  // the literal's own terminator included
            stop[c] = true;
    }
};
constexpr StopBytes kStopBytes;
} // namespace

CXmlTextWriter::CXmlTextWriter(CTextStream& stream)
    : CXmlWriter("CXmlTextWriter"), m_lineEnd("\n"), m_eolType(EOLType_LF), m_format(true), m_stream(stream)
{
}

void CXmlTextWriter::Open()
{
    CXmlWriter::Open();
    m_stream.Open();
}

// The stream is closed first, so a document left open is on disk up to
// this point when the failure is raised.
void CXmlTextWriter::Close()
{
    m_stream.Close();
    CXmlWriter::Close();
}

void CXmlTextWriter::SetEOLType(EOLType type)
{
    switch (type) {
    case EOLType_CRLF: m_lineEnd = "\r\n"; break;
    case EOLType_LF: m_lineEnd = "\n"; break;
    default: throw CKdException("Invalid EOL type.");
    }
    m_eolType = type;
}

void CXmlTextWriter::FlushIfFull()
{
    if (m_stream.GetLength() > kFlushThreshold)
        m_stream.Flush();
}

void CXmlTextWriter::WriteIndent(long depth)
{
    static char const tabs[] = "\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t\t";
    constexpr long kTabs = sizeof(tabs) - 1;
    for (; depth > kTabs; depth -= kTabs)
        m_stream.Append(tabs, kTabs);
    if (depth > 0)
        m_stream.Append(tabs, static_cast<unsigned long>(depth));
}

void CXmlTextWriter::WriteLineEndIfFormatted()
{
    if (m_format)
        m_stream.Append(m_lineEnd);
}

void CXmlTextWriter::WriteNamespaceDeclaration(std::string const& prefix, std::string const& uri, bool leadingBlank)
{
    m_stream.Append(leadingBlank ? " xmlns:" : "xmlns:");
    m_stream.Append(prefix);
    m_stream.Append("=\"");
    m_stream.Append(uri);
    m_stream.Append('"');
}

std::string const& CXmlTextWriter::PrefixInScope(std::string const& uri, bool& isNew)
{
    NamespaceMap const& scope = *m_context->GetNamespaceMap();
    // Elements mostly share their parent's namespace and scope: the prefix the
    // parent found in this very map is the answer without a search.
    CXmlWriterContext const* parent = m_context->m_parent;
    if (parent && parent->m_prefix && parent->m_prefixScope == &scope && parent->m_uri == uri) {
        isNew = false;
        return *parent->m_prefix;
    }
    auto const known = scope.find(uri);
    isNew = known == scope.end();
    if (!isNew)
        return known->second;
    m_context->SetNamespaceMapValue(uri, GetUniquePrefix(scope));
    // The scope may now be the element's own copy.
    return m_context->NamespaceMapValue(uri);
}

void CXmlTextWriter::WriteStartDocument()
{
    m_stream.Append("<?xml version=\"1.0\"");
    switch (m_stream.GetEncoding()) {
    case XmlEncoding_UTF8: m_stream.Append(" encoding=\"UTF-8\""); break;
    case XmlEncoding_UTF16: m_stream.Append(" encoding=\"UTF-16\""); break;
    default: break;
    }
    m_stream.Append("?>");
    m_stream.Append(m_lineEnd);
    FlushIfFull();
}

void CXmlTextWriter::WriteHeaderDirective(std::string const& text)
{
    if (m_context)
        throw CKdException("Headed directives must appear before an Element has been added.");
    m_stream.Append(text);
    m_stream.Append(m_lineEnd);
    FlushIfFull();
}

void CXmlTextWriter::WriteComment(std::string const& text)
{
    m_stream.Append("<!--");
    PadAndAppend(text.c_str());
    m_stream.Append("-->");
    m_stream.Append(m_lineEnd);
    FlushIfFull();
}

void CXmlTextWriter::WritePI(std::string const& text)
{
    m_stream.Append(text);
    m_stream.Append(m_lineEnd);
    m_stream.Append(m_lineEnd);
    FlushIfFull();
}

void CXmlTextWriter::WriteInlineSchema(std::string const& text)
{
    m_stream.Append(' ');
    m_stream.Append(m_lineEnd);
    m_stream.Append(text);
    m_stream.Append(m_lineEnd);
    FlushIfFull();
}

void CXmlTextWriter::WriteRawElement(std::string const& text)
{
    m_stream.Append(text);
    WriteLineEndIfFormatted();
}

void CXmlTextWriter::CloseParentElm()
{
    if (!m_context)
        return;
    ++m_context->m_childCount;
    if (m_context->m_startTagOpen) {
        m_context->m_startTagOpen = false;
        m_stream.Append('>');
        WriteLineEndIfFormatted();
    }
}

void CXmlTextWriter::WriteStartElement(std::string const& name, std::string const& uri)
{
    CloseParentElm();
    bool const isDocumentElement = (m_context == nullptr);
    CXmlWriterContext* context = PushContext(name, uri);
    if (m_format && context->m_depth > 0)
        WriteIndent(context->m_depth);
    m_stream.Append('<');
    if (uri.empty() || uri == context->GetDefaultNamespace()) {
        m_stream.Append(name);
    } else {
        bool isNew;
        std::string const& prefix = PrefixInScope(uri, isNew);
        context->m_prefixScope = context->GetNamespaceMap();
        context->m_prefix = &prefix;
        m_stream.Append(prefix);
        m_stream.Append(':');
        m_stream.Append(name);
        if (isNew)
            WriteNamespaceDeclaration(prefix, uri, true);
    }
    if (isDocumentElement) {
        // Declared whether or not anything uses them.
        if (!m_defaultNamespace.empty()) {
            m_stream.Append(" xmlns=\"");
            m_stream.Append(m_defaultNamespace);
            m_stream.Append('"');
        }
        for (auto const& entry : m_namespaces)
            WriteNamespaceDeclaration(entry.second, entry.first, true);
    }
    FlushIfFull();
}

void CXmlTextWriter::WriteEndElement()
{
    CXmlWriterContext* context = m_context;
    if (context->m_startTagOpen) {
        m_stream.Append("/>");
    } else {
        if (m_format && context->m_childCount != 0 && context->m_depth > 0)
            WriteIndent(context->m_depth);
        m_stream.Append("</");
        if (!context->m_uri.empty() && context->m_uri != context->GetDefaultNamespace()) {
            // Map entries are never removed, so the prefix found for the start
            // tag is still there, with any change made to it since.
            if (context->m_prefix && context->m_prefixScope == context->GetNamespaceMap())
                m_stream.Append(*context->m_prefix);
            else
                m_stream.Append(context->NamespaceMapValue(context->m_uri));
            m_stream.Append(':');
        }
        m_stream.Append(context->m_name);
        m_stream.Append('>');
    }
    WriteLineEndIfFormatted();
    FlushIfFull();
    PopContext();
}

void CXmlTextWriter::WriteString(std::string const& text, ItemType)
{
    if (text.empty())
        return;
    if (m_context && m_context->m_startTagOpen) {
        m_stream.Append('>');
        m_context->m_startTagOpen = false;
    }
    if (text.size() >= kCDataStartLength && memcmp(text.data(), kCDataStart, kCDataStartLength) == 0)
        m_stream.Append(text);
    else
        PadAndAppend(text.c_str());
    FlushIfFull();
}

void CXmlTextWriter::PadAndAppend(char const* text)
{
    // Runs of bytes that need no escaping go to the stream in one append.
    char const* run = text;
    auto flushRun = [&](char const* end) {
        if (end != run)
            m_stream.Append(run, static_cast<unsigned long>(end - run));
    };
    for (char const* p = text;; ++p) {
        while (!kStopBytes.stop[static_cast<unsigned char>(*p)])
            ++p;
        char const* replacement;
        switch (*p) {
        case '\0': flushRun(p); return;
        case '\n':
            if (m_eolType != EOLType_CRLF && m_eolType != EOLType_LF)
                throw CKdException("Invalid EOL type.");
            replacement = m_eolType == EOLType_CRLF ? "\r\n" : "\n";
            break;
        case '\r': replacement = ""; break;
        case '"': replacement = "&quot;"; break;
        case '&': replacement = "&amp;"; break;
        case '<': replacement = "&lt;"; break;
        case '>': replacement = "&gt;"; break;
        default: continue;
        }
        flushRun(p);
        m_stream.Append(replacement);
        run = p + 1;
    }
}

void CXmlTextWriter::WriteAttributeString(std::string const& name, std::string const& uri, std::string const& value,
                                          ItemType)
{
    if (!m_context->m_startTagOpen)
        throw CKdException("Attributes must be added before elements");
    m_stream.Append(' ');
    if (!uri.empty()) {
        // An attribute in a namespace always has a prefix; the default namespace does not apply.
        bool isNew;
        std::string const& prefix = PrefixInScope(uri, isNew);
        if (isNew) {
            WriteNamespaceDeclaration(prefix, uri, false);
            m_stream.Append(' ');
        }
        m_stream.Append(prefix);
        m_stream.Append(':');
    }
    m_stream.Append(name);
    m_stream.Append("=\"");
    PadAndAppend(value.c_str());
    m_stream.Append('"');
    FlushIfFull();
}

void CXmlTextWriter::WriteAttributeType(std::string const& uri, std::string const& typeName, ItemType type)
{
    if (!m_context->m_startTagOpen)
        throw CKdException("Attributes must be added before elements");
    if (uri.empty() || uri == m_context->GetDefaultNamespace()) {
        WriteAttributeString("type", kSchemaInstanceNamespace, typeName, type);
        return;
    }
    bool isNew;
    std::string const& prefix = PrefixInScope(uri, isNew);
    if (isNew) {
        // The declaration's trailing blank and the attribute's leading one
        // leave two blanks before the attribute; that is the known form.
        WriteNamespaceDeclaration(prefix, uri, true);
        m_stream.Append(' ');
    }
    WriteAttributeString("type", kSchemaInstanceNamespace, prefix + ":" + typeName, type);
}

} // namespace KdBind
