#include <climits>
#include <cstdint>
#include <cstring>
#include <new>

#include <expat.h>

#include "kdbind/binding.h"
#include "kdbind/xmlinput.h"
#include "xmlinput/node_pool.h"

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
// and in the local code page, so it needs no conversion. Inline, eight bytes
// at a time: the test runs for every name, value and run of text.
inline bool IsPlainAscii(char const* text, unsigned long length)
{
    constexpr std::uint64_t kHighBits = 0x8080808080808080ull;
    std::uint64_t bits = 0;
    unsigned long i = 0;
    for (; i + 8 <= length; i += 8) {
        std::uint64_t word;
        memcpy(&word, text + i, sizeof word);
        bits |= word;
    }
    for (; i < length; ++i)
        bits |= static_cast<unsigned char>(text[i]);
    return (bits & kHighBits) == 0;
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

std::string CExpatReader::Converted(char const* text, unsigned long length, bool useScratch)
{
    if (IsPlainAscii(text, length))
        return std::string(text, length);
    std::string out;
    ToLocalCodePage(text, length, useScratch, out);
    return out;
}

std::string const* CExpatReader::ElementNamespace(char const* uri, unsigned long length)
{
    if (length == 0)
        return &NoNamespaceURI();
    if (m_lastURI && m_lastRawURI.size() == length && memcmp(m_lastRawURI.data(), uri, length) == 0)
        return m_lastURI;
    std::string converted;
    ToLocalCodePage(uri, length, true, converted);
    std::string const* const kept = converted.empty() ? &NoNamespaceURI() : m_document->NodePool()->Intern(std::move(converted));
    m_lastRawURI.assign(uri, length);
    m_lastURI = kept;
    return kept;
}

void CExpatReader::FnStartElement(void* userData, char const* name, char const** attributes)
{
    Guarded(userData, [&](CExpatReader& reader) {
        // What stands before the first vertical bar is the URI; a URI that
        // holds a bar itself is thus cut there, and the rest goes to the
        // local name.
        char const* const bar = strchr(name, '|');
        char const* const local = bar ? bar + 1 : name;
        std::string const* const uri =
            bar ? reader.ElementNamespace(name, static_cast<unsigned long>(bar - name)) : &NoNamespaceURI();
        std::string localName = reader.Converted(local, strlen(local), true);
        CXmlElement* const element = reader.m_document->OpenElement();
        element->SetPooledNamespace(uri);
        element->m_localName = std::move(localName);

        std::size_t count = 0;
        while (attributes[2 * count])
            ++count;
        element->ReserveAttributes(count);
        // Built in place and moved into the attribute: most are short
        // enough to need no heap block at all.
        for (char const** attribute = attributes; attribute[0]; attribute += 2) {
            char const* const attributeBar = strchr(attribute[0], '|');
            char const* const attributeName = attributeBar ? attributeBar + 1 : attribute[0];
            std::string attributeURI =
                attributeBar ? reader.Converted(attribute[0], static_cast<unsigned long>(attributeBar - attribute[0]), false)
                             : std::string();
            std::string name = reader.Converted(attributeName, strlen(attributeName), false);
            element->AddAttribute(std::move(name), reader.Converted(attribute[1], strlen(attribute[1]), false),
                                  std::move(attributeURI));
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
            // expat has already turned line ends into line feeds, so a
            // carriage return is rare: only a character reference makes one.
            // Nor does it ever report a zero byte.
            if (!memchr(text, '\r', count))
                stack.back()->AppendText(text, length);
            else
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
