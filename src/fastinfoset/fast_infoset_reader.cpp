// The Fast Infoset reader: a recursive descent over the octets of one
// document, in which the element recursion is kept on the document's element
// stack instead of the machine stack, so that nesting of any depth costs
// heap, not stack. Only elements, attributes, text and namespace prefixes
// reach the tree; the rest of the format is read only to be stepped over.
#include <cassert>
#include <climits>
#include <cstring>
#include <exception>

#include "kdbind/binding.h"
#include "kdbind/fastinfoset.h"
#include "xmlinput/node_pool.h"

namespace KdBind {

namespace {

char const kEndOfFile[] = "Failed to parse FastInfoset. Unexpected End of File.";
char const kBadElement[] = "Failed to parse FastInfoset. Invalid Encoding of Element type.";
char const kBadAlphabet[] =
    "Failed to parse FastInfoset. Invalid Encoding of Restricted Alphabet. Alphabet must contain between 2 and 2^20 "
    "characters.";

constexpr unsigned char kTerminator = 0xF0;
constexpr unsigned char kDoubleTerminator = 0xFF;
constexpr unsigned long kScratchSize = 1024;
constexpr unsigned long kScratchWide = 128;  // wide characters at the start of the scratch buffer
constexpr unsigned long kCdataAlgorithm = 10;

// Top six bits of the octets that open these items.
constexpr unsigned kNamespaceAttribute = 51;
constexpr unsigned kUnexpandedEntity = 50;
constexpr unsigned kDocumentType = 49;
constexpr unsigned kNotation = 48;

} // namespace

CFastInfosetReader::CFastInfosetReader(CFastInfosetContext const& context, CXmlDocument& document)
    : CInstanceMonitor("CFastInfosetReader"), m_context(&context), m_document(&document),
      m_vocabulary(context.GetUseGeneratedVocabulary() ? new CFIVocabulary(context.GetVocabulary())
                                                       : new CFIVocabulary())
{
}

CFastInfosetReader::~CFastInfosetReader() { Cleanup(); }

void CFastInfosetReader::Cleanup()
{
    delete m_vocabulary;
    m_vocabulary = nullptr;
    delete[] m_scratch;
    m_scratch = nullptr;
    m_scratchSize = 0;
    m_cursor = nullptr;
    m_current = nullptr;
}

void CFastInfosetReader::Fail(char const* message)
{
    Cleanup();
    throw CKdException(message);
}

bool CFastInfosetReader::Parse()
{
    m_cursor = m_document->GetInputBuffer();
    // An empty input (an empty compressed stream expands to one) is not ours.
    if (!m_cursor || !m_vocabulary || m_document->GetInputLength() == 0)
        return false;
    m_end = m_cursor + m_document->GetInputLength();
    if (!ReadHeader())
        return false;
    m_scratch = new unsigned char[kScratchSize];
    m_scratchSize = kScratchSize;
    ReadOptionalData();
    ReadChildren();
    return true;
}

// --- Header -----------------------------------------------------------------

bool CFastInfosetReader::ReadHeader()
{
    if (CheckHeader())
        return true;
    // Only a text that starts like an XML declaration can carry one; other
    // input is turned away without looking further.
    if (*m_cursor != '<')
        return false;
    for (char const* declaration : FI_DECLARATION_LIST) {
        if (CheckDeclaration(declaration))
            return CheckHeader();
    }
    return false;
}

bool CFastInfosetReader::CheckHeader()
{
    static unsigned char const kIdentification[4] = {0xE0, 0x00, 0x00, 0x01};
    if (static_cast<unsigned long>(m_end - m_cursor) <= 4 || memcmp(m_cursor, kIdentification, 4) != 0)
        return false;
    m_cursor += 4;
    return true;
}

bool CFastInfosetReader::CheckDeclaration(char const* text)
{
    CBinaryData const utf8 = CEncoder::LocalCodePageToUtf8Binary(text);
    unsigned long const length = utf8.GetLength();
    if (length == 0 || length >= static_cast<unsigned long>(m_end - m_cursor) ||
        memcmp(m_cursor, utf8.GetData(), length) != 0)
        return false;
    m_cursor += length;
    return true;
}

void CFastInfosetReader::ReadOptionalData()
{
    unsigned char const flags = Next();
    if (flags == 0)
        return;
    if (flags & 0x40)
        AdditionalData();
    if (flags & 0x20)
        InitialVocabulary();
    if (flags & 0x10)
        Notations();
    if (flags & 0x08)
        UnparsedEntities();
    if (flags & 0x04)
        CharacterEncodingScheme();
    if (flags & 0x02)
        Standalone();
    if (flags & 0x01)
        Version();
}

// --- Stepping ---------------------------------------------------------------

void CFastInfosetReader::FailEndOfFile() { Fail(kEndOfFile); }

// --- Integers ---------------------------------------------------------------

unsigned long CFastInfosetReader::Integer1To2pw20Bit2()
{
    unsigned long const octet = *m_current;
    if (!(octet & 0x40))
        return (octet & 0x3F) + 1;
    if (!(octet & 0x20)) {
        unsigned long const low = Next();
        return (((octet & 0x1F) << 8) | low) + 65;
    }
    if (!(octet & 0x10)) {
        unsigned char const* more = Move(2);
        return (((octet & 0x0F) << 16) | (static_cast<unsigned long>(more[0]) << 8) | more[1]) + 8257;
    }
    Fail("Failed to parse FastInfoset. Invalid Encoding of integers 1 To 2^20 type  on the second bit of an octet.");
}

unsigned long CFastInfosetReader::Integer0To2pw20Bit2()
{
    if ((*m_current & 0x7F) == 0x7F)
        return 0;
    // Its own message stands for any failure of the form beneath, except
    // running out of input, which says so.
    if ((*m_current & 0x70) == 0x70)
        Fail("Failed to parse FastInfoset. Invalid Encoding of integers 0 To 2^20 type  on the second bit of an "
             "octet.");
    return Integer1To2pw20Bit2();
}

unsigned long CFastInfosetReader::Integer1To2pw20Bit3()
{
    return Integer1To2pw20Late(5, "Failed to parse FastInfoset. Invalid Encoding of integers 1 To 2^20 type  on the "
                                  "third bit of an octet.");
}

unsigned long CFastInfosetReader::Integer1To2pw20Bit4()
{
    return Integer1To2pw20Late(4, "Failed to parse FastInfoset. Invalid Encoding of integers 1 To 2^20 type  on the "
                                  "fourth bit of an octet.");
}

unsigned long CFastInfosetReader::Integer1To2pw20Late(unsigned smallBits, char const* failure)
{
    assert(smallBits == 4 || smallBits == 5);
    unsigned long const octet = *m_current;
    unsigned long const flag = 1ul << smallBits;
    if (!(octet & flag))
        return (octet & (flag - 1)) + 1;
    // The three bits from the flag down tell the form; the bits below them
    // are the value's high bits in the two shorter forms. Each form starts
    // where the one before it ends.
    unsigned const highBits = smallBits - 2;
    unsigned long const highMask = (1ul << highBits) - 1;
    unsigned long const twoOctets = flag + 1;
    unsigned long const threeOctets = twoOctets + (1ul << (highBits + 8));
    unsigned long const fourOctets = threeOctets + (1ul << (highBits + 16));
    switch ((octet >> highBits) & 0x07) {
    case 0x04: {
        unsigned long const low = Next();
        return (((octet & highMask) << 8) | low) + twoOctets;
    }
    case 0x05: {
        unsigned char const* more = Move(2);
        return (((octet & highMask) << 16) | (static_cast<unsigned long>(more[0]) << 8) | more[1]) + threeOctets;
    }
    case 0x06: {
        // Read back as the standard has it, so an index this library's
        // writer put here in the third-bit form comes back one higher.
        unsigned char const* more = Move(3);
        return ((static_cast<unsigned long>(more[0]) << 16) | (static_cast<unsigned long>(more[1]) << 8) |
                more[2]) +
               fourOctets;
    }
    default:
        Fail(failure);
    }
}

unsigned long CFastInfosetReader::LengthOfSequence()
{
    unsigned long const octet = Next();
    if (octet < 128)
        return octet + 1;
    unsigned char const* more = Move(2);
    return (((octet & 0x0F) << 16) | (static_cast<unsigned long>(more[0]) << 8) | more[1]) + 129;
}

// --- Octet strings ----------------------------------------------------------

namespace {
unsigned long FourOctets(unsigned char const* octets)
{
    return (static_cast<unsigned long>(octets[0]) << 24) | (static_cast<unsigned long>(octets[1]) << 16) |
           (static_cast<unsigned long>(octets[2]) << 8) | octets[3];
}
} // namespace

unsigned long CFastInfosetReader::NonEmptyOctetStringBit2Length()
{
    unsigned long const octet = *m_current;
    if (!(octet & 0x40))
        return (octet & 0x3F) + 1;
    if ((octet & 0x60) == 0x40)
        return Next() + 65ul;
    if ((octet & 0x70) == 0x60)
        return FourOctets(Move(4)) + 321;
    Fail("Failed to parse FastInfoset. Invalid NonEmptyOctetString type  on the second bit of an octet.");
}

unsigned long CFastInfosetReader::NonEmptyOctetStringBit5Length()
{
    unsigned long const octet = *m_current;
    if (!(octet & 0x08))
        return (octet & 0x07) + 1;
    if ((octet & 0x0C) == 0x08)
        return Next() + 9ul;
    if ((octet & 0x0E) == 0x0C)
        return FourOctets(Move(4)) + 265;
    Fail("Failed to parse FastInfoset. Invalid NonEmptyOctetString type  on the fifth bit of an octet.");
}

unsigned long CFastInfosetReader::NonEmptyOctetStringBit7Length()
{
    unsigned long const octet = *m_current;
    if (!(octet & 0x02))
        return (octet & 0x01) + 1;
    if ((octet & 0x03) == 0x02)
        return Next() + 3ul;
    return FourOctets(Move(4)) + 259;
}

void CFastInfosetReader::NonEmptyOctetUTF8String(unsigned long length) { ConvertUTF8(Move(length), length); }

void CFastInfosetReader::ConvertUTF8(unsigned char const* bytes, unsigned long length)
{
    unsigned char* text = const_cast<unsigned char*>(bytes);
    if (length > static_cast<unsigned long>(INT_MAX))
        Fail(kEndOfFile);
    wchar_t* const wide = reinterpret_cast<wchar_t*>(m_scratch);
    char* const narrow = reinterpret_cast<char*>(m_scratch + kScratchWide * sizeof(wchar_t));
    m_lastValue = CEncoder::Utf8ToLocalCodePage(text, static_cast<int>(length), wide, kScratchWide, narrow,
                                                m_scratchSize - kScratchWide * sizeof(wchar_t));
}

void CFastInfosetReader::NonEmptyOctetUTF16BEString(unsigned long length)
{
    unsigned char* text = const_cast<unsigned char*>(Move(length));
    // There is no UTF-16 decoding here: such a document cannot be read, and
    // says so in the library's own failure type.
    try {
        m_lastValue = CEncoder::Utf16ToLocalCodePage(text, static_cast<int>(length > INT_MAX ? INT_MAX : length));
    } catch (std::exception const& failure) {
        std::string const message =
            std::string("Failed to parse FastInfoset. UTF-16 strings cannot be read: ") + failure.what();
        Cleanup();
        throw CKdException(message);
    }
}

void CFastInfosetReader::NonEmptyOctetRestrictedAlphabetString(unsigned long length, unsigned long index)
{
    std::vector<std::string> const& alphabets = m_vocabulary->GetRestrictedAlphabets();
    // An alphabet the document defined for itself is stepped over with its
    // initial vocabulary, so an index past the known ones fails as a bad one.
    if (index == 0 || index > alphabets.size())
        Fail(kBadAlphabet);
    std::string const& alphabet = alphabets[index - 1];
    unsigned long const size = alphabet.size();
    if (size < 2 || size > FI_TABLE_LIMIT)
        Fail(kBadAlphabet);
    unsigned long bits = 2;
    while ((1ul << bits) <= size)
        ++bits;
    unsigned char const* octets = Move(length);
    m_lastValue.clear();
    auto character = [&](unsigned long position) {
        if (position >= size)
            Fail("Failed to parse FastInfoset. A restricted alphabet string holds a character outside its "
                 "alphabet.");
        m_lastValue += alphabet[position];
    };
    if (bits == 8) {
        for (unsigned long i = 0; i < length; ++i)
            character(octets[i]);
    } else if (bits == 4) {
        for (unsigned long i = 0; i < length; ++i) {
            character(octets[i] >> 4);
            if ((octets[i] & 0x0F) == 0x0F)
                break;
            character(octets[i] & 0x0F);
        }
    } else {
        // Items span octets here; the octets were taken above, so the bit
        // reader runs over them from their start.
        unsigned char const* const saved = m_cursor;
        m_cursor = octets;
        InitBits(bits);
        unsigned long const items = length * 8 / bits;
        unsigned long const end = (1ul << bits) - 1;
        for (unsigned long i = 0; i < items; ++i) {
            unsigned long const item = GetBits();
            if (item == end)
                break;
            character(item);
        }
        m_cursor = saved;
    }
}

void CFastInfosetReader::NonEmptyOctetEncryptedString(unsigned long length, unsigned long index)
{
    if (index == kCdataAlgorithm) {
        NonEmptyOctetUTF8String(length);
        return;
    }
    unsigned char const* octets = Move(length);
    CFastInfosetBinaryData const data(const_cast<unsigned char*>(octets), length, false);
    try {
        m_lastValue = data.GetAsString(index);
    } catch (...) {
        Cleanup();
        throw;
    }
}

void CFastInfosetReader::InitBits(unsigned long bits)
{
    m_bitsPerItem = bits;
    m_bitsLeft = 0;
    m_bitBuffer = 0;
}

// Most significant bits first, across octet boundaries as the standard packs them.
unsigned long CFastInfosetReader::GetBits()
{
    unsigned long value = 0;
    for (unsigned long needed = m_bitsPerItem; needed > 0;) {
        if (m_bitsLeft == 0) {
            m_bitBuffer = *m_cursor++;
            m_bitsLeft = 8;
        }
        unsigned long const take = needed < m_bitsLeft ? needed : m_bitsLeft;
        unsigned long const shift = m_bitsLeft - take;
        value = (value << take) | ((m_bitBuffer >> shift) & MASKS[take]);
        m_bitsLeft -= take;
        needed -= take;
    }
    return value;
}

// --- Strings with index -----------------------------------------------------

int CFastInfosetReader::IdentifyingStringOrIndex()
{
    Next();
    if (*m_current & 0x80) {
        m_lastIndex = Integer1To2pw20Bit2();
        return 1;
    }
    NonEmptyOctetUTF8String(NonEmptyOctetStringBit2Length());
    return 0;
}

int CFastInfosetReader::NonIdentifyingStringOrIndexBit1()
{
    Next();
    if (*m_current & 0x80) {
        m_lastIndex = Integer0To2pw20Bit2();
        return 1;
    }
    m_addToTable = (*m_current & 0x40) != 0;
    EncodedCharacterStringBit3();
    return 0;
}

int CFastInfosetReader::NonIdentifyingStringOrIndexBit3()
{
    if (*m_current & 0x20) {
        m_lastIndex = Integer1To2pw20Bit4();
        return 1;
    }
    m_addToTable = (*m_current & 0x10) != 0;
    EncodedCharacterStringBit5();
    return 0;
}

void CFastInfosetReader::EncodedCharacterStringBit3()
{
    unsigned long const form = (*m_current >> 4) & 0x03;
    unsigned long index = 0;
    if (form >= 2) {
        unsigned long const high = *m_current & 0x0F;
        index = ((high << 4) | (Next() >> 4)) + 1;
    }
    EncodedCharacterString(form, NonEmptyOctetStringBit5Length(), index);
}

void CFastInfosetReader::EncodedCharacterStringBit5()
{
    unsigned long const form = (*m_current >> 2) & 0x03;
    unsigned long index = 0;
    if (form >= 2) {
        unsigned long const high = *m_current & 0x03;
        index = ((high << 6) | (Next() >> 2)) + 1;
    }
    EncodedCharacterString(form, NonEmptyOctetStringBit7Length(), index);
}

void CFastInfosetReader::EncodedCharacterString(unsigned long form, unsigned long length, unsigned long index)
{
    switch (form) {
    case 0:
        NonEmptyOctetUTF8String(length);
        break;
    case 1:
        NonEmptyOctetUTF16BEString(length);
        break;
    case 2:
        NonEmptyOctetRestrictedAlphabetString(length, index);
        break;
    default:
        NonEmptyOctetEncryptedString(length, index);
        break;
    }
}

// --- Names ------------------------------------------------------------------

std::string const& CFastInfosetReader::TableEntry(std::vector<std::string> const& table, unsigned long index,
                                                  char const* name)
{
    // A reference past a table is a malformed document, never a read of
    // memory that is not there.
    if (index == 0 || index > table.size()) {
        std::string const message =
            FormatString("Failed to parse FastInfoset. Index [%lu] is outside the %s table.", index, name);
        Cleanup();
        throw CKdException(message);
    }
    return table[index - 1];
}

int CFastInfosetReader::QualifiedNameOrIndexBit2(std::vector<CFIVocabulary::CQNameParts>& table)
{
    if ((*m_current & 0x78) == 0x78) {
        ReadQName(table);
        return 0;
    }
    m_lastIndex = Integer1To2pw20Bit2();
    return 1;
}

int CFastInfosetReader::QualifiedNameOrIndexBit3(std::vector<CFIVocabulary::CQNameParts>& table)
{
    if ((*m_current & 0x3C) == 0x3C) {
        ReadQName(table);
        return 0;
    }
    m_lastIndex = Integer1To2pw20Bit3();
    return 1;
}

void CFastInfosetReader::ReadQName(std::vector<CFIVocabulary::CQNameParts>& table)
{
    bool const hasPrefix = (*m_current & 0x02) != 0;
    bool const hasNamespace = (*m_current & 0x01) != 0;
    if (hasPrefix && !hasNamespace)
        Fail("Failed to parse FastInfoset. Invalid QName type Prefix without Namespace.");
    // A part read as a literal joins its table's vector; the maps are the
    // writer's, as the reader never looks up by value.
    auto part = [&](std::vector<std::string>& vector, char const* name, std::string& out) -> unsigned long {
        if (IdentifyingStringOrIndex() == 1) {
            out = TableEntry(vector, m_lastIndex, name);
            return m_lastIndex;
        }
        CFIVocabulary::AddValueToVector(m_lastValue, vector);
        out.swap(m_lastValue);
        return vector.size();
    };
    unsigned long prefix = 0, uri = 0;
    m_lastPrefix.clear();
    m_lastURI.clear();
    if (hasPrefix)
        prefix = part(m_vocabulary->GetPrefixNamesTable().m_values, "prefix", m_lastPrefix);
    if (hasNamespace) {
        std::vector<std::string> const& uris = m_vocabulary->GetNamespaceNamesTable().m_values;
        uri = part(m_vocabulary->GetNamespaceNamesTable().m_values, "namespace name", m_lastURI);
        // A literal the full table did not take is known by its text alone.
        m_lastURIIndex = uri <= uris.size() && uris[uri - 1] == m_lastURI ? uri : kOwnURI;
    } else {
        m_lastURIIndex = 0;
    }
    unsigned long const local = part(m_vocabulary->GetLocalNamesTable().m_values, "local name", m_lastLocalName);
    CFIVocabulary::AddQNameToVector(prefix, uri, local, table);
}

void CFastInfosetReader::NameFromIndex(std::vector<CFIVocabulary::CQNameParts> const& table)
{
    if (m_lastIndex == 0 || m_lastIndex > table.size()) {
        std::string const message =
            FormatString("Failed to parse FastInfoset. Index [%lu] is outside the name table.", m_lastIndex);
        Cleanup();
        throw CKdException(message);
    }
    CFIVocabulary::CQNameParts const& name = table[m_lastIndex - 1];
    if (name.m_namespaceIndex != 0)
        TableEntry(m_vocabulary->GetNamespaceNamesTable().m_values, name.m_namespaceIndex, "namespace name");
    m_lastURIIndex = name.m_namespaceIndex;
    m_lastLocalName = TableEntry(m_vocabulary->GetLocalNamesTable().m_values, name.m_localNameIndex, "local name");
}

std::string const& CFastInfosetReader::LastURI() const
{
    static std::string const none;
    if (m_lastURIIndex == 0)
        return none;
    if (m_lastURIIndex == kOwnURI)
        return m_lastURI;
    return m_vocabulary->GetNamespaceNamesTable().m_values[m_lastURIIndex - 1];
}

std::string const* CFastInfosetReader::PooledLastURI()
{
    if (m_lastURIIndex == kOwnURI)
        return m_document->NodePool()->Intern(std::string(m_lastURI));
    if (m_lastURIIndex >= m_pooledURIs.size())
        m_pooledURIs.resize(m_lastURIIndex + 1, nullptr);
    std::string const*& pooled = m_pooledURIs[m_lastURIIndex];
    if (!pooled)
        pooled = m_document->NodePool()->Intern(std::string(LastURI()));
    return pooled;
}

// --- Tree -------------------------------------------------------------------

void CFastInfosetReader::ReadChildren()
{
    do {
        unsigned char const octet = Next();
        if (octet < 0x80)
            ElementBit2();
        else if (octet == 0xE1)
            ProcessingInstruction();
        else if (octet == 0xE2)
            NonIdentifyingStringOrIndexBit1();
        else if ((octet >> 2) == kDocumentType)
            DocumentTypeDeclarationBit7();
        // anything else is passed over
    } while (*m_current != kTerminator && *m_current != kDoubleTerminator);
}

void CFastInfosetReader::PopElement()
{
    std::vector<CXmlElement*>& stack = m_document->GetElementStack();
    assert(!stack.empty());
    stack.pop_back();
}

// The element's own children are read in this loop, not by recursion: open
// counts the elements this call has opened and not yet closed. A double
// terminator closes the innermost one and its parent; at the outermost one
// it leaves the flag set for the caller, as it ends the document too.
void CFastInfosetReader::ElementBit2()
{
    if (!ElementStart())
        return;
    unsigned long open = 1;
    while (open != 0) {
        unsigned char const octet = Next();
        if (octet == kTerminator) {
            PopElement();
            --open;
        } else if (octet == kDoubleTerminator) {
            PopElement();
            if (--open == 0) {
                m_doubleTerminator = true;
            } else {
                PopElement();
                --open;
            }
        } else if (octet < 0x80) {
            if (ElementStart())
                ++open;
        } else if (octet < 0xC0) {
            CharacterChunk();
        } else if (octet == 0xE1) {
            ProcessingInstruction();
        } else if (octet == 0xE2) {
            NonIdentifyingStringOrIndexBit1();
        } else if ((octet >> 2) == kUnexpandedEntity) {
            UnexpandedEntityReferenceBit7();
        } else {
            Fail(kBadElement);
        }
    }
}

// An index takes the text from the table of chunks, and a literal with the
// add flag joins it; either way the text is appended to the element. Plain
// ASCII literals, the common case, go from the input to the element with no
// string in between.
void CFastInfosetReader::CharacterChunk()
{
    CXmlElement* const element = m_document->GetElementStack().back();
    std::vector<std::string>& chunks = m_vocabulary->GetCharacterChunksTable().m_values;
    unsigned char const octet = *m_current;
    if ((octet & 0x2C) == 0) {  // a literal in UTF-8
        bool const add = (octet & 0x10) != 0;
        unsigned long const length = NonEmptyOctetStringBit7Length();
        unsigned char* const bytes = const_cast<unsigned char*>(Move(length));
        char const* const text = reinterpret_cast<char const*>(bytes);
        if (ASCII_ONLY || !DoesUTF8StrContainAnyCharsLargerThanOneByte(bytes, length)) {
            if (add)
                CFIVocabulary::AddValueToVector(
                    std::string(text, ASCII_ONLY ? length : strnlen(text, length)), chunks);
            CXmlDocument::AppendTextExcludingCR(element, text, length);
            return;
        }
        m_addToTable = add;
        ConvertUTF8(bytes, length);
    } else if (NonIdentifyingStringOrIndexBit3() == 1) {
        std::string const& text = TableEntry(chunks, m_lastIndex, "character chunk");
        CXmlDocument::AppendTextExcludingCR(element, text.data(), text.size());
        return;
    }
    if (m_addToTable)
        CFIVocabulary::AddValueToVector(m_lastValue, chunks);
    CXmlDocument::AppendTextExcludingCR(element, m_lastValue.data(), m_lastValue.size());
}

bool CFastInfosetReader::ElementStart()
{
    unsigned char const first = *m_current;
    std::vector<CFIVocabulary::CQNameParts>& names = m_vocabulary->GetElementNamesTable().m_names;
    if ((first & 0x3C) == 0x38) {
        // Namespace attributes; the octet that ends them is the terminator.
        while ((Next() >> 2) == kNamespaceAttribute)
            NamespaceAttributeBit7();
        Next();
    }
    if (QualifiedNameOrIndexBit3(names) == 1)
        NameFromIndex(names);
    // The document element first, then children of the open element, as
    // AddDocElement and AddChildElement make them; the URI comes from the
    // pool by its table index, without a lookup by text per element.
    CXmlElement* const element = m_document->OpenElement();
    if (m_lastURIIndex == 0)
        element->SetNamespace(std::string());
    else
        element->SetPooledNamespace(PooledLastURI());
    element->SetElementName(m_lastLocalName);
    if (first & 0x40) {
        while (!(Next() & 0x80))
            AtrributeBit2(element);
        if (*m_current == kDoubleTerminator) {
            PopElement();
            return false;
        }
    }
    return true;
}

void CFastInfosetReader::AtrributeBit2(CXmlElement* element)
{
    std::vector<CFIVocabulary::CQNameParts>& names = m_vocabulary->GetAttributeNamesTable().m_names;
    if (QualifiedNameOrIndexBit2(names) == 1)
        NameFromIndex(names);
    std::vector<std::string>& values = m_vocabulary->GetAttributeValuesTable().m_values;
    if (NonIdentifyingStringOrIndexBit1() == 1) {
        if (m_lastIndex == 0)
            m_lastValue.clear();
        else
            m_lastValue = TableEntry(values, m_lastIndex, "attribute value");
    } else if (m_addToTable) {
        CFIVocabulary::AddValueToVector(m_lastValue, values);
    }
    CXmlDocument::AddElementAttribute(element, m_lastLocalName, m_lastValue, LastURI());
}

void CFastInfosetReader::NamespaceAttributeBit7()
{
    bool const hasPrefix = (*m_current & 0x02) != 0;
    bool const hasURI = (*m_current & 0x01) != 0;
    auto part = [&](std::vector<std::string>& vector, char const* name, std::string& out) {
        if (IdentifyingStringOrIndex() == 1) {
            out = TableEntry(vector, m_lastIndex, name);
        } else {
            CFIVocabulary::AddValueToVector(m_lastValue, vector);
            out.swap(m_lastValue);
        }
    };
    m_lastPrefix.clear();
    m_lastURI.clear();
    if (hasPrefix)
        part(m_vocabulary->GetPrefixNamesTable().m_values, "prefix", m_lastPrefix);
    if (hasURI)
        part(m_vocabulary->GetNamespaceNamesTable().m_values, "namespace name", m_lastURI);
    m_document->GetAliasMap()[m_lastPrefix] = m_lastURI;
}

// --- Skipped items ----------------------------------------------------------

void CFastInfosetReader::SkipOctetStringBit2()
{
    Next();
    Move(NonEmptyOctetStringBit2Length());
}

// The length is read again before every pass: a list of more than one item
// is not stepped over as the standard lays it out. Kept so on purpose; this
// library's own documents carry no such lists.
void CFastInfosetReader::SkipList(void (CFastInfosetReader::*item)())
{
    for (unsigned long i = 0; i < LengthOfSequence(); ++i)
        (this->*item)();
}

void CFastInfosetReader::SkipEncodedStringBit3()
{
    Next();
    EncodedCharacterStringBit3();
}

void CFastInfosetReader::SkipNameSurrogate()
{
    unsigned char const flags = Next();
    unsigned long const count = ((flags & 0x02) ? 1 : 0) + ((flags & 0x01) ? 1 : 0) + 1;
    for (unsigned long i = 0; i < count; ++i) {
        Next();
        Integer1To2pw20Bit2();
    }
}

void CFastInfosetReader::Version() { NonIdentifyingStringOrIndexBit1(); }

void CFastInfosetReader::Standalone() { Next(); }

void CFastInfosetReader::CharacterEncodingScheme() { SkipOctetStringBit2(); }

void CFastInfosetReader::AdditionalData()
{
    for (unsigned long i = 0; i < LengthOfSequence(); ++i) {
        SkipOctetStringBit2();  // the identifier
        SkipOctetStringBit2();  // the data
    }
}

void CFastInfosetReader::InitialVocabulary()
{
    unsigned char const* flags = Move(2);
    unsigned char const first = flags[0];
    unsigned char const second = flags[1];
    if (first & 0x10)
        ExternalVocabulary();
    if (first & 0x08)
        RestrictedAlphabets();
    if (first & 0x04)
        EncodingAlogrithms();
    if (first & 0x02)
        Prefixes();
    if (first & 0x01)
        NamespaceNames();
    if (second & 0x80)
        LocalNames();
    if (second & 0x40)
        OtherNCNames();
    if (second & 0x20)
        OtherURIs();
    if (second & 0x10)
        AttributeValues();
    if (second & 0x08)
        ContentCharacterChunks();
    if (second & 0x04)
        OtherStrings();
    if (second & 0x02)
        ElementNameSurrogates();
    if (second & 0x01)
        AttributeNameSurrogates();
}

// The URI is not compared with anything: the context alone decides the tables.
void CFastInfosetReader::ExternalVocabulary() { SkipOctetStringBit2(); }
void CFastInfosetReader::RestrictedAlphabets() { SkipList(&CFastInfosetReader::SkipOctetStringBit2); }
void CFastInfosetReader::EncodingAlogrithms() { SkipList(&CFastInfosetReader::SkipOctetStringBit2); }
void CFastInfosetReader::Prefixes() { SkipList(&CFastInfosetReader::SkipOctetStringBit2); }
void CFastInfosetReader::NamespaceNames() { SkipList(&CFastInfosetReader::SkipOctetStringBit2); }
void CFastInfosetReader::LocalNames() { SkipList(&CFastInfosetReader::SkipOctetStringBit2); }
void CFastInfosetReader::OtherNCNames() { SkipList(&CFastInfosetReader::SkipOctetStringBit2); }
void CFastInfosetReader::OtherURIs() { SkipList(&CFastInfosetReader::SkipOctetStringBit2); }
void CFastInfosetReader::AttributeValues() { SkipList(&CFastInfosetReader::SkipEncodedStringBit3); }
void CFastInfosetReader::ContentCharacterChunks() { SkipList(&CFastInfosetReader::SkipEncodedStringBit3); }
void CFastInfosetReader::OtherStrings() { SkipList(&CFastInfosetReader::SkipEncodedStringBit3); }
void CFastInfosetReader::ElementNameSurrogates() { SkipList(&CFastInfosetReader::SkipNameSurrogate); }
void CFastInfosetReader::AttributeNameSurrogates() { SkipList(&CFastInfosetReader::SkipNameSurrogate); }

void CFastInfosetReader::Notations()
{
    while ((Next() >> 2) == kNotation)
        NotationBit7();
}

void CFastInfosetReader::NotationBit7()
{
    unsigned char const flags = *m_current;
    IdentifyingStringOrIndex();  // name
    if (flags & 0x02)
        IdentifyingStringOrIndex();  // system identifier
    if (flags & 0x01)
        IdentifyingStringOrIndex();  // public identifier
}

void CFastInfosetReader::UnparsedEntities()
{
    while ((Next() & 0xFE) == 0xD0)
        UnparsedEntityBit8();
}

void CFastInfosetReader::UnparsedEntityBit8()
{
    unsigned char const flags = *m_current;
    IdentifyingStringOrIndex();  // name
    IdentifyingStringOrIndex();  // system identifier
    if (flags & 0x01)
        IdentifyingStringOrIndex();  // public identifier
    IdentifyingStringOrIndex();      // notation name
}

void CFastInfosetReader::ProcessingInstruction()
{
    IdentifyingStringOrIndex();         // target
    NonIdentifyingStringOrIndexBit1();  // content
}

// Read up to the identifiers only: the loop of the document's children then
// meets the declaration's terminator and ends there.
void CFastInfosetReader::DocumentTypeDeclarationBit7()
{
    unsigned char const flags = *m_current;
    if (flags & 0x02)
        IdentifyingStringOrIndex();  // system identifier
    if (flags & 0x01)
        IdentifyingStringOrIndex();  // public identifier
}

void CFastInfosetReader::UnexpandedEntityReferenceBit7()
{
    unsigned char const flags = *m_current;
    IdentifyingStringOrIndex();  // name
    if (flags & 0x02)
        IdentifyingStringOrIndex();  // system identifier
    if (flags & 0x01)
        IdentifyingStringOrIndex();  // public identifier
}

} // namespace KdBind
