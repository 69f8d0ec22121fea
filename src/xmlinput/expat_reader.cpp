#include <climits>
#include <cstring>
#include <new>

#include <expat.h>

#include "kdbind/binding.h"
#include "kdbind/xmlinput.h"

namespace KdBind {

namespace {

// The scratch buffer: its first half holds 128 wide characters, its second
// half 512 narrow ones.
constexpr unsigned long kScratchSize = 1024;
constexpr unsigned long kWideCapacity = kScratchSize / 2 / sizeof(wchar_t);
constexpr unsigned long kNarrowCapacity = kScratchSize / 2;

char const kCDataStart[] = "<![CDATA[";
char const kCDataEnd[] = "]]>";

// True when no byte has its top bit set. Such text reads the same in UTF-8
// and in the local code page, so it needs no conversion.
bool IsPlainAscii(char const* text, unsigned long length)
{
    return !DoesUTF8StrContainAnyCharsLargerThanOneByte(reinterpret_cast<unsigned char*>(const_cast<char*>(text)),
                                                        length);
}

} // namespace

CExpatReader::CExpatReader(CXmlDocument& document) : CInstanceMonitor("CExpatReader"), m_document(&document) {}

CExpatReader::~CExpatReader()
{
    Cleanup();
    FreeParser();
}

void CExpatReader::CreateParser()
{
    Cleanup();
    FreeParser();
    m_scratch = new unsigned char[kScratchSize];
    m_scratchSize = kScratchSize;
    // A null encoding leaves the choice to the byte order mark and the XML
    // declaration. Schema type 2 matches by local name only, so namespaces
    // are not processed and xmlns attributes stay ordinary attributes.
    m_parser = m_document->GetSchemaType() == SchemaType_IgnoreNamespaces ? XML_ParserCreate(nullptr)
                                                                          : XML_ParserCreateNS(nullptr, '|');
    if (!m_parser)
        throw std::bad_alloc();
    XML_SetUserData(m_parser, this);
    XML_SetElementHandler(m_parser, FnStartElement, FnEndElement);
    XML_SetNamespaceDeclHandler(m_parser, FnStartNamespace, FnEndNamespace);
    XML_SetCharacterDataHandler(m_parser, FnText);
    // Without section handlers CDATA text is plain character data; with them
    // the markers stay in the text, so that the writer can restore the section.
    if (!m_document->GetContext().GetStripCDATA())
        XML_SetCdataSectionHandler(m_parser, FnStartCDATA, FnEndCDATA);
}

void CExpatReader::Parse(bool isFinal)
{
    if (!m_parser)
        throw CKdInvalidStateException("The parser has not been created");
    // expat takes an int length; larger inputs are fed in slices.
    char const* data = reinterpret_cast<char const*>(m_document->GetInputBuffer());
    unsigned long remaining = m_document->GetInputLength();
    XML_Status status;
    do {
        int const slice = static_cast<int>(remaining < INT_MAX ? remaining : INT_MAX);
        remaining -= static_cast<unsigned long>(slice);
        status = XML_Parse(m_parser, data, slice, isFinal && remaining == 0);
        data += slice;
    } while (status == XML_STATUS_OK && remaining > 0);

    if (m_failure) {
        std::exception_ptr const failure = m_failure;
        m_failure = nullptr;
        Cleanup();
        FreeParser();
        std::rethrow_exception(failure);
    }
    if (status != XML_STATUS_OK) {
        std::string const message = FormatString("%s at line %d", XML_ErrorString(XML_GetErrorCode(m_parser)),
                                                 static_cast<int>(XML_GetCurrentLineNumber(m_parser)));
        Cleanup();
        FreeParser();
        throw CKdException(message);
    }
    if (isFinal)
        FreeParser();
}

void CExpatReader::Cleanup()
{
    delete[] m_scratch;
    m_scratch = nullptr;
    m_scratchSize = 0;
}

void CExpatReader::FreeParser()
{
    if (m_parser)
        XML_ParserFree(m_parser);
    m_parser = nullptr;
}

template <class Handler>
void CExpatReader::Guarded(void* userData, Handler&& handler)
{
    auto* const reader = static_cast<CExpatReader*>(userData);
    // expat may still deliver an event or two after being stopped.
    if (reader->m_failure)
        return;
    try {
        handler(*reader);
    } catch (...) {
        reader->m_failure = std::current_exception();
        XML_StopParser(reader->m_parser, XML_FALSE);
    }
}

void CExpatReader::ToLocalCodePage(char const* text, unsigned long length, bool useScratch, std::string& out)
{
    if (IsPlainAscii(text, length)) {
        out.assign(text, length);
        return;
    }
    auto* const bytes = reinterpret_cast<unsigned char*>(const_cast<char*>(text));
    if (useScratch)
        out = CEncoder::Utf8ToLocalCodePage(bytes, static_cast<int>(length), reinterpret_cast<wchar_t*>(m_scratch),
                                            kWideCapacity, reinterpret_cast<char*>(m_scratch) + kScratchSize / 2,
                                            kNarrowCapacity);
    else
        out = CEncoder::Utf8ToLocalCodePage(bytes, static_cast<int>(length));
}

// What stands before the first vertical bar is the URI; a URI that holds a
// bar itself is thus cut there, and the rest goes to the local name.
void CExpatReader::SplitName(char const* name, bool useScratch)
{
    char const* const bar = strchr(name, '|');
    if (!bar) {
        m_uri.clear();
        ToLocalCodePage(name, strlen(name), useScratch, m_local);
        return;
    }
    ToLocalCodePage(name, static_cast<unsigned long>(bar - name), useScratch, m_uri);
    ToLocalCodePage(bar + 1, strlen(bar + 1), useScratch, m_local);
}

void CExpatReader::FnStartElement(void* userData, char const* name, char const** attributes)
{
    Guarded(userData, [&](CExpatReader& reader) {
        CXmlDocument& document = *reader.m_document;
        reader.SplitName(name, true);
        CXmlElement* const element = document.GetDocumentElement()
                                         ? document.AddChildElement(reader.m_uri.c_str(), reader.m_local.c_str())
                                         : document.AddDocElement(reader.m_uri.c_str(), reader.m_local.c_str());
        std::size_t count = 0;
        while (attributes[2 * count])
            ++count;
        element->ReserveAttributes(count);
        for (char const** attribute = attributes; attribute[0]; attribute += 2) {
            reader.SplitName(attribute[0], false);
            reader.ToLocalCodePage(attribute[1], strlen(attribute[1]), false, reader.m_value);
            CXmlDocument::AddElementAttribute(element, reader.m_local, reader.m_value, reader.m_uri);
        }
    });
}

void CExpatReader::FnEndElement(void* userData, char const* /*name*/)
{
    Guarded(userData, [](CExpatReader& reader) { reader.m_document->EndElement(); });
}

// Declarations outlive their scope on purpose: the flat map serves the
// resolving of QNames after the whole tree has been read.
void CExpatReader::FnStartNamespace(void* userData, char const* prefix, char const* uri)
{
    Guarded(userData, [&](CExpatReader& reader) {
        if (prefix)
            reader.ToLocalCodePage(prefix, strlen(prefix), false, reader.m_local);
        else
            reader.m_local.clear();
        if (uri)
            reader.ToLocalCodePage(uri, strlen(uri), false, reader.m_uri);
        else
            reader.m_uri.clear();
        reader.m_document->GetAliasMap()[reader.m_local] = reader.m_uri;
    });
}

void CExpatReader::FnEndNamespace(void* /*userData*/, char const* /*prefix*/) {}

void CExpatReader::FnText(void* userData, char const* text, int length)
{
    if (length <= 0)
        return;
    Guarded(userData, [&](CExpatReader& reader) {
        std::vector<CXmlElement*> const& stack = reader.m_document->GetElementStack();
        if (stack.empty())
            return;
        auto const count = static_cast<unsigned long>(length);
        if (IsPlainAscii(text, count)) {
            CXmlDocument::AppendTextExcludingCR(stack.back(), text, count);
            return;
        }
        reader.ToLocalCodePage(text, count, true, reader.m_value);
        CXmlDocument::AppendTextExcludingCR(stack.back(), reader.m_value.c_str());
    });
}

void CExpatReader::FnStartCDATA(void* userData)
{
    Guarded(userData, [](CExpatReader& reader) {
        std::vector<CXmlElement*> const& stack = reader.m_document->GetElementStack();
        if (!stack.empty())
            CXmlDocument::AppendTextExcludingCR(stack.back(), kCDataStart);
    });
}

void CExpatReader::FnEndCDATA(void* userData)
{
    Guarded(userData, [](CExpatReader& reader) {
        std::vector<CXmlElement*> const& stack = reader.m_document->GetElementStack();
        if (!stack.empty())
            CXmlDocument::AppendTextExcludingCR(stack.back(), kCDataEnd);
    });
}

} // namespace KdBind
