// CFastInfosetWriter: writer calls to the octets of a Fast Infoset document.
// An element start waits for the next call, which tells whether attributes
// follow; an element end waits too, so that two ends can share the octet
// 0xFF.
#include <cassert>
#include <cstring>

#include "kdbind/fastinfoset.h"

namespace KdBind {

namespace {

char const kSchemaInstanceNamespace[] = "http://www.w3.org/2001/XMLSchema-instance";
char const kAttributesFirst[] = "Attributes must be added before elements";
char const kUtf16Unsupported[] = "Failed to write FastInfoset. Unsupported Feature UTF16BE in EncodedCharacterStringBit5.";

constexpr unsigned char kTerminator = 0xF0;
constexpr unsigned char kDoubleTerminator = 0xFF;

bool IsAscii(std::string const& text)
{
    for (unsigned char c : text)
        if (c & 0x80)
            return false;
    return true;
}

// The UTF-8 bytes of text. ASCII is its own UTF-8, so most texts are handed
// out as they stand; the others are converted into holder.
void Utf8Bytes(std::string const& text, CBinaryData& holder, unsigned char const*& data, unsigned long& length)
{
    if (ASCII_ONLY || IsAscii(text)) {
        data = reinterpret_cast<unsigned char const*>(text.data());
        length = static_cast<unsigned long>(text.size());
        return;
    }
    holder = CEncoder::LocalCodePageToUtf8Binary(text.c_str());
    data = holder.GetData();
    length = holder.GetLength();
}

// A zero-length string has no form on the wire; only a caller that passes
// an empty name or a value that encodes to nothing gets here.
void CheckNonEmpty(unsigned long length)
{
    if (length == 0)
        throw CKdException("Failed to write FastInfoset. Empty octet string.");
}

} // namespace

CFastInfosetWriter::CFastInfosetWriter(CFastInfosetContext const& context, CBinaryStream& stream)
    : CXmlWriter("CFastInfosetWriter"), m_stream(stream), m_fiContext(context),
      m_vocabulary(context.GetUseGeneratedVocabulary() ? new CFIVocabulary(context.GetVocabulary())
                                                        : new CFIVocabulary())
{
}

CFastInfosetWriter::~CFastInfosetWriter()
{
    if (m_pendingElement) {
        // Its parent belongs to the stack the base destroys.
        m_pendingElement->m_parent = nullptr;
        delete m_pendingElement;
    }
    try {
        Flush();
    } catch (...) {
        // A destructor raises nothing; the bytes are lost with the stream's memory.
    }
    delete m_vocabulary;
}

void CFastInfosetWriter::Flush()
{
    if (m_used == 0)
        return;
    unsigned long const used = m_used;
    m_used = 0;
    m_stream.Append(m_buffer, used);
}

void CFastInfosetWriter::Put(unsigned char const* data, unsigned long length)
{
    if (length > kBufferSize - m_used) {
        Flush();
        if (length >= kBufferSize) {
            m_stream.Append(const_cast<unsigned char*>(data), length);
            return;
        }
    }
    if (length != 0)
        memcpy(m_buffer + m_used, data, length);
    m_used += length;
}

void CFastInfosetWriter::Close()
{
    Flush();
    CXmlWriter::Close();
}

// ---------------------------------------------------------------------------
// Integers and octet strings
// ---------------------------------------------------------------------------

void CFastInfosetWriter::Integer1To2pw20Bit2(unsigned char bits, unsigned long value)
{
    assert(value >= 1);
    if (value <= 64) {
        Put(static_cast<unsigned char>(bits | (value - 1)));
    } else if (value <= 8256) {
        unsigned long const v = value - 65;
        Put(static_cast<unsigned char>(bits | 0x40 | ((v >> 8) & 0x1F)));
        Put(static_cast<unsigned char>(v));
    } else {
        unsigned long const v = value - 8257;
        Put(static_cast<unsigned char>(bits | 0x60 | ((v >> 16) & 0x0F)));
        Put(static_cast<unsigned char>(v >> 8));
        Put(static_cast<unsigned char>(v));
    }
}

void CFastInfosetWriter::Integer0To2pw20Bit2(unsigned char bits, unsigned long value)
{
    if (value == 0)
        Put(static_cast<unsigned char>(bits | 0x7F));
    else
        Integer1To2pw20Bit2(bits, value);
}

namespace {
// The third- and fourth-bit integer forms differ only in their limits and
// marks: up to `small` the value goes in the first octet; then one octet
// follows the medium mark, two the large mark, three the huge mark.
struct IntegerForm {
    unsigned long small;        // values 1..small: one octet
    unsigned char highMask;     // the value's bits the first octet carries in the medium and large forms
    unsigned char mediumMark;   // then one octet more
    unsigned long mediumLimit;
    unsigned char largeMark;    // then two octets more
    unsigned long largeLimit;
    unsigned char hugeMark;     // then three octets, counted from hugeBase
    unsigned long hugeBase;
};

// The third bit's huge form counts from one less than the reader
// subtracts: such an index reads back one higher. Both sides keep it, so
// that documents stay as they were.
constexpr IntegerForm kIntegerBit3 = {32, 0x07, 0x20, 2080, 0x28, 526368, 0x30, 526368};
constexpr IntegerForm kIntegerBit4 = {16, 0x03, 0x10, 1040, 0x14, 263184, 0x18, 263185};

// The octets of `value` (at least 1) in `form`, the first one or'ed with
// `bits`; returns how many were written to `out`.
size_t EncodeInteger(IntegerForm const& form, unsigned char bits, unsigned long value, unsigned char (&out)[4])
{
    assert(value >= 1);
    if (value <= form.small) {
        out[0] = static_cast<unsigned char>(bits | (value - 1));
        return 1;
    }
    if (value <= form.mediumLimit) {
        unsigned long const v = value - form.small - 1;
        out[0] = static_cast<unsigned char>(bits | form.mediumMark | ((v >> 8) & form.highMask));
        out[1] = static_cast<unsigned char>(v);
        return 2;
    }
    if (value <= form.largeLimit) {
        unsigned long const v = value - form.mediumLimit - 1;
        out[0] = static_cast<unsigned char>(bits | form.largeMark | ((v >> 16) & form.highMask));
        out[1] = static_cast<unsigned char>(v >> 8);
        out[2] = static_cast<unsigned char>(v);
        return 3;
    }
    unsigned long const v = value - form.hugeBase;
    out[0] = static_cast<unsigned char>(bits | form.hugeMark);
    out[1] = static_cast<unsigned char>(v >> 16);
    out[2] = static_cast<unsigned char>(v >> 8);
    out[3] = static_cast<unsigned char>(v);
    return 4;
}
} // namespace

void CFastInfosetWriter::Integer1To2pw20Bit3(unsigned char bits, unsigned long value)
{
    unsigned char octets[4];
    Put(octets, EncodeInteger(kIntegerBit3, bits, value, octets));
}

void CFastInfosetWriter::Integer1To2pw20Bit4(unsigned char bits, unsigned long value)
{
    unsigned char octets[4];
    Put(octets, EncodeInteger(kIntegerBit4, bits, value, octets));
}

namespace {
// The three octet-string forms differ only in their limits and marks: up to
// small bytes the length goes in the first octet; up to small + 256 one
// length octet follows the first octet with medium; beyond, four follow with long.
struct OctetStringForm {
    unsigned long small;
    unsigned char medium;
    unsigned char longMark;
};
constexpr OctetStringForm kBit2Form = {64, 0x40, 0x60};
constexpr OctetStringForm kBit5Form = {8, 0x08, 0x0C};
constexpr OctetStringForm kBit7Form = {2, 0x02, 0x03};

// The length part of a non-empty octet string, into header; returns its size.
unsigned OctetStringHeader(OctetStringForm const& form, unsigned char bits, unsigned long length,
                           unsigned char header[5])
{
    if (length <= form.small) {
        header[0] = static_cast<unsigned char>(bits | (length - 1));
        return 1;
    }
    if (length <= form.small + 256) {
        header[0] = static_cast<unsigned char>(bits | form.medium);
        header[1] = static_cast<unsigned char>(length - form.small - 1);
        return 2;
    }
    unsigned long const rest = length - form.small - 257;
    header[0] = static_cast<unsigned char>(bits | form.longMark);
    header[1] = static_cast<unsigned char>(rest >> 24);
    header[2] = static_cast<unsigned char>(rest >> 16);
    header[3] = static_cast<unsigned char>(rest >> 8);
    header[4] = static_cast<unsigned char>(rest);
    return 5;
}
} // namespace

#define KDBIND_OCTET_STRING_WRITER(Name, Form)                                                    \
    void CFastInfosetWriter::Name(unsigned char bits, unsigned char const* data, unsigned long length) \
    {                                                                                             \
        CheckNonEmpty(length);                                                                    \
        unsigned char header[5];                                                                  \
        Put(header, OctetStringHeader(Form, bits, length, header));                               \
        Put(data, length);                                                                        \
    }
KDBIND_OCTET_STRING_WRITER(NonEmptyOctetStringBit2, kBit2Form)
KDBIND_OCTET_STRING_WRITER(NonEmptyOctetStringBit5, kBit5Form)
KDBIND_OCTET_STRING_WRITER(NonEmptyOctetStringBit7, kBit7Form)
#undef KDBIND_OCTET_STRING_WRITER

void CFastInfosetWriter::NonEmptyOctetUTF8StringBit2(unsigned char bits, std::string const& text)
{
    CBinaryData holder;
    unsigned char const* data;
    unsigned long length;
    Utf8Bytes(text, holder, data, length);
    NonEmptyOctetStringBit2(bits, data, length);
}

// ---------------------------------------------------------------------------
// Names
// ---------------------------------------------------------------------------

void CFastInfosetWriter::NamePart(std::string const& text, bool found, unsigned long index,
                                  void (CFIVocabulary::*add)(std::string const&))
{
    if (found) {
        Integer1To2pw20Bit2(0x80, index);
        return;
    }
    NonEmptyOctetUTF8StringBit2(0, text);
    (m_vocabulary->*add)(text);
}

void CFastInfosetWriter::PrefixPart(std::string const& prefix)
{
    unsigned long index = 0;
    bool const known = m_vocabulary->FindPrefixNameIndex(prefix, index);
    NamePart(prefix, known, index, &CFIVocabulary::AddPrefixName);
}

void CFastInfosetWriter::NamespacePart(std::string const& uri)
{
    unsigned long index = 0;
    bool const known = m_vocabulary->FindNamespaceNameIndex(uri, index);
    NamePart(uri, known, index, &CFIVocabulary::AddNamespaceName);
}

bool CFastInfosetWriter::FindQName(IndexMap const& map, std::string const& prefix, std::string const& uri,
                                   std::string const& local, unsigned long& index)
{
    NameCache* const cache = &map == &m_vocabulary->GetElementNamesMap()     ? &m_elementNameCache
                             : &map == &m_vocabulary->GetAttributeNamesMap() ? &m_attributeNameCache
                                                                             : nullptr;
    if (cache) {
        auto const found = cache->find(local);
        if (found != cache->end()) {
            for (CachedName const& name : found->second) {
                if (name.uri == uri && name.prefix == prefix) {
                    index = name.index;
                    return true;
                }
            }
        }
    }
    CFIVocabulary::MakeQNameKey(prefix, uri, local, m_key);
    if (!CFIVocabulary::FindIndex(map, m_key, index))
        return false;
    if (cache)
        (*cache)[local].push_back(CachedName{uri, prefix, index});
    return true;
}

void CFastInfosetWriter::QualifiedNameOrIndex(unsigned char bits, unsigned char literal,
                                              void (CFastInfosetWriter::*integer)(unsigned char, unsigned long),
                                              std::string const& prefix, std::string const& uri,
                                              std::string const& local, IndexMap& map)
{
    unsigned long index = 0;
    if (FindQName(map, prefix, uri, local, index)) {
        (this->*integer)(bits, index);
        return;
    }
    Put(static_cast<unsigned char>(bits | literal | (!prefix.empty() ? 3 : !uri.empty() ? 1 : 0)));
    if (!prefix.empty())
        PrefixPart(prefix);
    if (!uri.empty())
        NamespacePart(uri);
    bool const known = m_vocabulary->FindLocalNameIndex(local, index);
    NamePart(local, known, index, &CFIVocabulary::AddLocalName);
    // The writer goes by the map alone and never reads the table of names.
    CFIVocabulary::AddValueToMap(m_key, map);
}

void CFastInfosetWriter::QualifiedNameOrIndexBit2(unsigned char bits, std::string const& prefix,
                                                  std::string const& uri, std::string const& local, IndexMap& map)
{
    QualifiedNameOrIndex(bits, 0x78, &CFastInfosetWriter::Integer1To2pw20Bit2, prefix, uri, local, map);
}

void CFastInfosetWriter::QualifiedNameOrIndexBit3(unsigned char bits, std::string const& prefix,
                                                  std::string const& uri, std::string const& local, IndexMap& map)
{
    QualifiedNameOrIndex(bits, 0x3C, &CFastInfosetWriter::Integer1To2pw20Bit3, prefix, uri, local, map);
}

// ---------------------------------------------------------------------------
// Values
// ---------------------------------------------------------------------------

void CFastInfosetWriter::EncodedCharacterString(unsigned char bits, std::string const& text, ItemType type,
                                                bool fromBit5)
{
    using Encoding = CFastInfosetContext::EncodedCharacterString;
    Encoding const encoding = m_fiContext.GetEncoding(type);
    auto octetString = fromBit5 ? &CFastInfosetWriter::NonEmptyOctetStringBit7
                                : &CFastInfosetWriter::NonEmptyOctetStringBit5;
    // The 8-bit index of an alphabet or algorithm straddles two octets.
    unsigned const shift = fromBit5 ? 6 : 4;
    unsigned long const index = encoding.m_index;
    auto indexHead = [&](unsigned char discriminator) {
        Put(static_cast<unsigned char>(bits | (fromBit5 ? discriminator >> 2 : discriminator) |
                                       ((index - 1) >> shift)));
    };
    unsigned char const indexTail = static_cast<unsigned char>((index - 1) << (8 - shift));

    switch (encoding.m_kind) {
    case Encoding::Kind_String: {
        if (m_fiContext.GetDefaultStringEncoding() == 1)
            throw CKdException(kUtf16Unsupported);
        // What algorithm 10 yields, without building a block for ASCII.
        CBinaryData holder;
        unsigned char const* data;
        unsigned long length;
        Utf8Bytes(text, holder, data, length);
        (this->*octetString)(bits, data, length);
        return;
    }
    case Encoding::Kind_RestrictedAlphabet: {
        if (index != 1 && index != 2)
            throw CKdException(FormatString("Failed to write FastInfoset. Invalid Restricted Alphabet value [%d]",
                                            static_cast<int>(index)));
        indexHead(0x20);
        CBinaryData const data = AppendRestrictedAlphabetString(index, text.c_str());
        (this->*octetString)(indexTail, data.GetData(), data.GetLength());
        return;
    }
    case Encoding::Kind_EncodingAlgorithm: {
        if (index < 1 || index > 10)
            throw CKdException(FormatString("Failed to write FastInfoset. Invalid Encoding Algorithm value [%d]",
                                            static_cast<int>(index)));
        indexHead(0x30);
        CFastInfosetBinaryData data;
        data.SetAsEncodedString(index, text.c_str());
        (this->*octetString)(indexTail, data.GetData(), data.GetLength());
        return;
    }
    }
    throw CKdException(fromBit5 ? "Failed to write FastInfoset. Unknown encoding in EncodedCharacterStringBit7."
                                : "Failed to write FastInfoset. Unknown encoding in EncodedCharacterStringBit5.");
}

void CFastInfosetWriter::EncodedCharacterStringBit3(unsigned char bits, std::string const& text, ItemType type)
{
    EncodedCharacterString(bits, text, type, false);
}

void CFastInfosetWriter::EncodedCharacterStringBit5(unsigned char bits, std::string const& text, ItemType type)
{
    EncodedCharacterString(bits, text, type, true);
}

CFastInfosetWriter::IndexMap::iterator CFastInfosetWriter::LookUpOrEnter(IndexMap& map, std::string const& text,
                                                                          unsigned long& index)
{
    auto* const cache = &map == &m_vocabulary->GetCharacterChunksMap()   ? &m_chunkCache
                        : &map == &m_vocabulary->GetAttributeValuesMap() ? &m_attributeValueCache
                                                                         : nullptr;
    if (cache) {
        auto const found = cache->find(text);
        if (found != cache->end()) {
            index = found->second;
            return map.end();
        }
    }
    index = 0;
    if (map.size() > FI_TABLE_LIMIT - 1) {  // full: found or not, nothing is added
        CFIVocabulary::FindIndex(map, text, index);
        return map.end();
    }
    auto const entry = map.try_emplace(text, static_cast<unsigned long>(map.size() + 1));
    if (!entry.second) {
        index = entry.first->second;
        if (cache)
            cache->emplace(text, index);
        return map.end();
    }
    return entry.first;
}

// A new value is entered before its literal is written, so that one search
// serves both, and taken out again when the literal fails: the map ends as
// if it had been added after.
#define KDBIND_WRITE_LITERAL_OR_FORGET(map, entered, write) \
    try {                                                   \
        write;                                              \
    } catch (...) {                                         \
        if ((entered) != (map).end())                       \
            (map).erase(entered);                           \
        throw;                                              \
    }

void CFastInfosetWriter::NonIdentifyingStringOrIndexBit1(std::string const& text, IndexMap& map,
                                                         unsigned long limit, ItemType type)
{
    if (text.empty()) {
        Integer0To2pw20Bit2(0x80, 0);
        return;
    }
    if (text.size() >= limit) {
        EncodedCharacterStringBit3(0, text, type);  // the map is neither searched nor changed
        return;
    }
    unsigned long index;
    auto const entered = LookUpOrEnter(map, text, index);
    if (index != 0) {
        Integer1To2pw20Bit2(0x80, index);
        return;
    }
    KDBIND_WRITE_LITERAL_OR_FORGET(map, entered, EncodedCharacterStringBit3(0x40, text, type))  // add to the table
}

void CFastInfosetWriter::NonIdentifyingStringOrIndexBit3(unsigned char bits, std::string const& text,
                                                         IndexMap& map, unsigned long limit, ItemType type)
{
    if (text.size() >= limit) {
        EncodedCharacterStringBit5(bits, text, type);
        return;
    }
    unsigned long index;
    auto const entered = LookUpOrEnter(map, text, index);
    if (index != 0) {
        Integer1To2pw20Bit4(bits | 0x20, index);
        return;
    }
    KDBIND_WRITE_LITERAL_OR_FORGET(map, entered, EncodedCharacterStringBit5(bits | 0x10, text, type))
}
#undef KDBIND_WRITE_LITERAL_OR_FORGET

CBinaryData CFastInfosetWriter::AppendRestrictedAlphabetString(unsigned long index, char const* text)
{
    std::vector<std::string> const& alphabets = m_vocabulary->GetRestrictedAlphabets();
    if (index < 1 || index > alphabets.size())
        throw CKdException(FormatString("Failed to write FastInfoset. Invalid Restricted Alphabet value [%d]",
                                        static_cast<int>(index)));
    std::string const& alphabet = alphabets[index - 1];
    if (alphabet.size() < 2 || alphabet.size() > FI_TABLE_LIMIT)
        throw CKdException("Failed to write FastInfoset. Invalid Restricted Alphabet. Alphabet must contain between "
                           "2 and 2^20 characters.");
    unsigned bitsPerCharacter = 2;
    while ((1ul << bitsPerCharacter) <= alphabet.size())
        ++bitsPerCharacter;
    if (bitsPerCharacter != 4 && bitsPerCharacter != 8)
        throw CKdException("Failed to write FastInfoset. Unsupported Feature in AppendRestrictedAlphabetString.");

    // Position of each byte in the alphabet, its first occurrence; 0xFFFF: absent.
    unsigned short position[256];
    std::fill(position, position + 256, 0xFFFF);
    for (size_t i = alphabet.size(); i-- > 0;)
        position[static_cast<unsigned char>(alphabet[i])] = static_cast<unsigned short>(i);
    auto positionOf = [&](char c) {
        unsigned short const p = position[static_cast<unsigned char>(c)];
        if (p == 0xFFFF)
            throw CKdException("Failed to write FastInfoset. Invalid character not found for Restricted Alphabet.");
        return static_cast<unsigned char>(p);
    };

    size_t const length = text ? strlen(text) : 0;
    std::vector<unsigned char> octets;
    if (bitsPerCharacter == 8) {
        octets.reserve(length);
        for (size_t i = 0; i < length; ++i)
            octets.push_back(positionOf(text[i]));
    } else {
        octets.reserve((length + 1) / 2);
        for (size_t i = 0; i < length; i += 2) {
            unsigned char const high = positionOf(text[i]);
            unsigned char const low = i + 1 < length ? positionOf(text[i + 1]) : 0x0F;  // all ones: the end
            octets.push_back(static_cast<unsigned char>(high << 4 | low));
        }
    }
    CBinaryData data;
    if (!octets.empty())
        data.Append(octets.data(), static_cast<unsigned long>(octets.size()));
    return data;
}

// ---------------------------------------------------------------------------
// Document and element calls
// ---------------------------------------------------------------------------

void CFastInfosetWriter::WriteStartDocument(FInfoDecl declaration)
{
    if (declaration != FInfoDecl_None) {
        if (declaration < FInfoDecl_Encoding || declaration > FInfoDecl_11_Encoding_NotStandalone)
            throw CKdInvalidParamException(
                FormatString("Invalid Fast Infoset declaration [%d]", static_cast<int>(declaration)));
        Put(CEncoder::LocalCodePageToUtf8Binary(FI_DECLARATION_LIST[declaration - 1]).GetData(),
            static_cast<unsigned long>(strlen(FI_DECLARATION_LIST[declaration - 1])));
    }
    static unsigned char const header[] = {0xE0, 0x00, 0x00, 0x01};
    Put(header, sizeof header);
    if (!m_fiContext.GetUseGeneratedVocabulary()) {
        Put(0x00);  // no optional components
        return;
    }
    // An initial vocabulary that holds only an external vocabulary.
    Put(0x20);
    Put(0x10);
    Put(0x00);
    std::string const uri = m_fiContext.GetExternalVocabularyURI();
    NonEmptyOctetUTF8StringBit2(0, uri.empty() ? std::string(BRACKEN_URI) : uri);
}

void CFastInfosetWriter::WriteEndDocument()
{
    // With an end still pending, one octet ends the document element and the document.
    Put(m_pendingTerminator ? kDoubleTerminator : kTerminator);
    Flush();
}

void CFastInfosetWriter::CloseStartTag()
{
    if (m_context && m_context->m_startTagOpen) {
        m_context->m_startTagOpen = false;
        if (m_context->m_hasAttributes)
            Put(kTerminator);
    }
}

std::string const& CFastInfosetWriter::PrefixForUri(std::string const& uri)
{
    CXmlWriterContext* const context = m_context;
    NamespaceMap* const namespaces = context->GetNamespaceMap();
    auto const found = namespaces->find(uri);
    if (found != namespaces->end())
        return found->second;
    context->SetNamespaceMapValue(uri, GetUniquePrefix(*namespaces));
    return context->NamespaceMapValue(uri);
}

void CFastInfosetWriter::WriteStartElement(std::string const& name, std::string const& uri)
{
    WriteElement(false);
    if (m_pendingTerminator) {
        Put(kTerminator);
        m_pendingTerminator = false;
    }
    if (m_context) {
        ++m_context->m_childCount;
        CloseStartTag();
    }
    // Made like any element's context, but held back from being current.
    CXmlWriterContext* const context = PushContext(name, uri);
    m_context = context->m_parent;
    m_pendingElement = context;
}

void CFastInfosetWriter::WriteElement(bool attributes)
{
    CXmlWriterContext* const element = m_pendingElement;
    if (!element)
        return;
    unsigned char first = 0;
    if (attributes) {
        element->m_hasAttributes = true;
        first = 0x40;
    }
    // Namespace attributes go on the document element only.
    if (!m_context && (!m_defaultNamespace.empty() || !m_namespaces.empty())) {
        Put(static_cast<unsigned char>(first | 0x38));
        if (!m_defaultNamespace.empty()) {
            Put(0xCD);
            NamespacePart(m_defaultNamespace);
        }
        for (auto const& entry : m_namespaces) {
            std::string const& uri = entry.first;
            std::string const& prefix = entry.second;
            // A map entry without a prefix declares the default namespace.
            Put(prefix.empty() ? 0xCD : 0xCF);
            if (!prefix.empty())
                PrefixPart(prefix);
            NamespacePart(uri);
        }
        Put(kTerminator);
        first = 0;
    }

    // No namespace attribute is written for a prefix made up here: the
    // qualified name carries the URI itself.
    std::string const& uri = element->m_uri;
    static std::string const noPrefix;
    std::string const* prefix = &noPrefix;
    CXmlWriterContext const* const parent = element->m_parent;
    NamespaceMap* namespaces = element->GetNamespaceMap();
    if (parent && parent->m_prefix && parent->m_prefixScope == namespaces && parent->m_uri == uri) {
        // The parent's answer: the same scope, so the same default namespace
        // and the same map entry, read where it stands.
        prefix = parent->m_prefix;
    } else if (!uri.empty() && uri != element->GetDefaultNamespace()) {
        auto const found = namespaces->find(uri);
        if (found != namespaces->end()) {
            prefix = &found->second;
        } else {
            element->SetNamespaceMapValue(uri, GetUniquePrefix(*namespaces));
            namespaces = element->GetNamespaceMap();  // the element may have taken a scope of its own
            prefix = &element->NamespaceMapValue(uri);
        }
    }
    if (prefix != &noPrefix) {
        // Entries are never removed, so the pointer holds while the scope lives.
        element->m_prefixScope = namespaces;
        element->m_prefix = prefix;
    }
    QualifiedNameOrIndexBit3(first, *prefix, uri, element->m_name, m_vocabulary->GetElementNamesMap());
    m_context = element;
    m_pendingElement = nullptr;
}

void CFastInfosetWriter::WriteAttributeString(std::string const& name, std::string const& uri,
                                              std::string const& value, ItemType type)
{
    WriteElement(true);
    if (!m_context || !m_context->m_startTagOpen)
        throw CKdException(kAttributesFirst);
    // An attribute never goes by the default namespace.
    static std::string const noPrefix;
    std::string const& prefix = uri.empty() ? noPrefix : PrefixForUri(uri);
    QualifiedNameOrIndexBit2(0, prefix, uri, name, m_vocabulary->GetAttributeNamesMap());
    NonIdentifyingStringOrIndexBit1(value, m_vocabulary->GetAttributeValuesMap(),
                                    m_fiContext.GetAttributeMaxAddLength(), type);
}

void CFastInfosetWriter::WriteAttributeType(std::string const& uri, std::string const& typeName, ItemType type)
{
    WriteElement(true);
    if (!m_context || !m_context->m_startTagOpen)
        throw CKdException(kAttributesFirst);
    if (uri.empty() || uri == m_context->GetDefaultNamespace()) {
        WriteAttributeString("type", kSchemaInstanceNamespace, typeName, type);
        return;
    }
    // The two branches name the attribute differently, and are kept so: a
    // known type namespace lends its prefix to the schema-instance "type";
    // a new one makes the attribute the type's own name in its namespace.
    NamespaceMap* const namespaces = m_context->GetNamespaceMap();
    auto const found = namespaces->find(uri);
    std::string prefix;
    if (found != namespaces->end()) {
        prefix = found->second;
        QualifiedNameOrIndexBit2(0, prefix, kSchemaInstanceNamespace, "type", m_vocabulary->GetAttributeNamesMap());
    } else {
        prefix = GetUniquePrefix(*namespaces);
        m_context->SetNamespaceMapValue(uri, prefix);
        QualifiedNameOrIndexBit2(0, prefix, uri, typeName, m_vocabulary->GetAttributeNamesMap());
    }
    NonIdentifyingStringOrIndexBit1(prefix + ":" + typeName, m_vocabulary->GetAttributeValuesMap(),
                                    m_fiContext.GetAttributeMaxAddLength(), type);
}

void CFastInfosetWriter::WriteString(std::string const& text, ItemType type)
{
    WriteElement(false);
    CloseStartTag();
    if (text.empty())
        return;
    // The pending terminator is not looked at: text after a finished child
    // lands ahead of that child's end, and reads as the child's.
    NonIdentifyingStringOrIndexBit3(0x80, text, m_vocabulary->GetCharacterChunksMap(),
                                    m_fiContext.GetElementMaxAddLength(), type);
}

void CFastInfosetWriter::WriteEndElement()
{
    WriteElement(false);
    if (!m_context)
        throw CKdInvalidStateException("No element is open.");
    CloseStartTag();
    if (m_pendingTerminator) {
        Put(kDoubleTerminator);
        m_pendingTerminator = false;
    } else {
        m_pendingTerminator = true;
    }
    PopContext();
}

// The instruction is dropped; an element still waiting goes out without attributes.
void CFastInfosetWriter::WritePI(std::string const&) { WriteElement(false); }

void CFastInfosetWriter::WriteComment(std::string const&) {}

void CFastInfosetWriter::WriteInlineSchema(std::string const&) {}

} // namespace KdBind
