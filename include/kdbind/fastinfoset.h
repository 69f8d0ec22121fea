// KdBind Fast Infoset (ITU-T X.891): vocabulary and context, reader,
// writer and encoded values.
#ifndef KDBIND_FASTINFOSET_H
#define KDBIND_FASTINFOSET_H

#include <map>
#include <string>
#include <unordered_map>
#include <vector>

#include "kdbind/xmlinput.h"
#include "kdbind/xmloutput.h"

namespace KdBind {

// ---------------------------------------------------------------------------
// Constants shared by the writer and the reader.
// ---------------------------------------------------------------------------

// The two built-in restricted alphabets, 15 characters each, the last a blank.
extern char const RESTRICTED_ALPHABET_VALUES_NUMERIC[];    // alphabet 1
extern char const RESTRICTED_ALPHABET_VALUES_DATE_TIME[];  // alphabet 2
// Entry 1 of the prefix and namespace tables of a new vocabulary. The
// namespace has every slash doubled; both sides start from this exact text,
// so the true XML namespace is not found there and gets an entry of its own.
extern char const FI_DEFAULT_PREFIX[];
extern char const FI_DEFAULT_NAMESPACE[];
// The XML declarations ahead of a document: FInfoDecl n is entry n - 1.
extern char const* const FI_DECLARATION_LIST[9];
// Names the generated vocabulary when the context gives no URI of its own.
extern char const BRACKEN_URI[];
// MASKS[n] is 2 to the n, minus 1.
extern unsigned long const MASKS[8];

// The largest number of entries of a table, as in the standard.
constexpr unsigned long FI_TABLE_LIMIT = 1048576;

// ---------------------------------------------------------------------------
// The indexed tables of one document. The writer looks values up in the
// maps (value -> 1-based index); the reader goes by index in the tables.
// Entry n of a table lies at vector position n - 1.
// ---------------------------------------------------------------------------

class CFIVocabulary {
public:
    using IndexMap = std::map<std::string, unsigned long>;

    // An index of 0 for the prefix or the namespace means none.
    class CQNameParts {
    public:
        CQNameParts() = default;
        CQNameParts(unsigned long prefix, unsigned long uri, unsigned long local)
            : m_prefixIndex(prefix), m_namespaceIndex(uri), m_localNameIndex(local) {}

        unsigned long m_prefixIndex = 0;
        unsigned long m_namespaceIndex = 0;
        unsigned long m_localNameIndex = 0;
    };

    class CFIStringTable {
    public:
        virtual ~CFIStringTable() = default;
        std::vector<std::string>::const_iterator begin() const { return m_values.begin(); }
        std::vector<std::string>::const_iterator end() const { return m_values.end(); }

        std::vector<std::string> m_values;
    };

    class CFIQNameTable {
    public:
        virtual ~CFIQNameTable() = default;
        std::vector<CQNameParts>::const_iterator begin() const { return m_names.begin(); }
        std::vector<CQNameParts>::const_iterator end() const { return m_names.end(); }

        std::vector<CQNameParts> m_names;
    };

    // Only the two alphabets, the prefix "xml" and FI_DEFAULT_NAMESPACE.
    CFIVocabulary();
    CFIVocabulary(CFIVocabulary const&) = default;
    CFIVocabulary& operator=(CFIVocabulary const&) = default;
    virtual ~CFIVocabulary();

    // Entry n - 1 is alphabet n.
    std::vector<std::string>& GetRestrictedAlphabets() { return m_restrictedAlphabets; }
    std::vector<std::string> const& GetRestrictedAlphabets() const { return m_restrictedAlphabets; }

    CFIQNameTable& GetAttributeNamesTable() { return m_attributeNamesTable; }
    CFIStringTable& GetAttributeValuesTable() { return m_attributeValuesTable; }
    CFIQNameTable& GetElementNamesTable() { return m_elementNamesTable; }
    CFIStringTable& GetCharacterChunksTable() { return m_characterChunksTable; }
    CFIStringTable& GetLocalNamesTable() { return m_localNamesTable; }
    CFIStringTable& GetNamespaceNamesTable() { return m_namespaceNamesTable; }
    CFIStringTable& GetPrefixNamesTable() { return m_prefixNamesTable; }
    CFIQNameTable const& GetAttributeNamesTable() const { return m_attributeNamesTable; }
    CFIStringTable const& GetAttributeValuesTable() const { return m_attributeValuesTable; }
    CFIQNameTable const& GetElementNamesTable() const { return m_elementNamesTable; }
    CFIStringTable const& GetCharacterChunksTable() const { return m_characterChunksTable; }
    CFIStringTable const& GetLocalNamesTable() const { return m_localNamesTable; }
    CFIStringTable const& GetNamespaceNamesTable() const { return m_namespaceNamesTable; }
    CFIStringTable const& GetPrefixNamesTable() const { return m_prefixNamesTable; }

    // The maps beside the tables, for lookups by value.
    IndexMap& GetAttributeNamesMap() { return m_attributeNamesMap; }
    IndexMap& GetAttributeValuesMap() { return m_attributeValuesMap; }
    IndexMap& GetElementNamesMap() { return m_elementNamesMap; }
    IndexMap& GetCharacterChunksMap() { return m_characterChunksMap; }
    IndexMap const& GetAttributeNamesMap() const { return m_attributeNamesMap; }
    IndexMap const& GetAttributeValuesMap() const { return m_attributeValuesMap; }
    IndexMap const& GetElementNamesMap() const { return m_elementNamesMap; }
    IndexMap const& GetCharacterChunksMap() const { return m_characterChunksMap; }

    // The key of a qualified name in the name maps: local, 0x01, URI, 0x01,
    // prefix. One name under two prefixes is two entries.
    static std::string MakeQNameKey(std::string const& prefix, std::string const& uri, std::string const& local);
    // The same into a string the caller keeps, so that a lookup allocates nothing.
    static void MakeQNameKey(std::string const& prefix, std::string const& uri, std::string const& local,
                             std::string& key);

    // True, with the index set, when the value is known.
    static bool FindIndex(IndexMap const& map, std::string const& value, unsigned long& index);
    bool FindLocalNameIndex(std::string const& value, unsigned long& index) const;
    bool FindNamespaceNameIndex(std::string const& value, unsigned long& index) const;
    bool FindPrefixNameIndex(std::string const& value, unsigned long& index) const;

    // Silent at the limit; a known value keeps its index.
    static void AddValueToMap(std::string const& value, IndexMap& map);
    static void AddValueToVector(std::string const& value, std::vector<std::string>& vector);
    static void AddQNameToVector(unsigned long prefix, unsigned long uri, unsigned long local,
                                 std::vector<CQNameParts>& vector);

    void AddLocalName(std::string const& value);
    void AddNamespaceName(std::string const& value);
    void AddPrefixName(std::string const& value);
    void AddElementValue(std::string const& value);
    void AddAttributeValue(std::string const& value);

    // Adds the name's parts that are new, then the name itself.
    void AddQName(std::string const& prefix, std::string const& uri, std::string const& local, IndexMap& map,
                  std::vector<CQNameParts>& vector);
    void AddElement(std::string const& prefix, std::string const& uri, std::string const& local);
    void AddAttribute(std::string const& prefix, std::string const& uri, std::string const& local);

private:
    // The index of value in map, adding it to map and table when it is new.
    unsigned long FindOrAdd(std::string const& value, IndexMap& map, CFIStringTable& table);

    std::vector<std::string> m_restrictedAlphabets;
    IndexMap m_attributeNamesMap;
    IndexMap m_attributeValuesMap;
    IndexMap m_elementNamesMap;
    IndexMap m_characterChunksMap;
    IndexMap m_localNamesMap;
    IndexMap m_namespaceNamesMap;
    IndexMap m_prefixNamesMap;
    CFIQNameTable m_attributeNamesTable;
    CFIStringTable m_attributeValuesTable;
    CFIQNameTable m_elementNamesTable;
    CFIStringTable m_characterChunksTable;
    CFIStringTable m_localNamesTable;
    CFIStringTable m_namespaceNamesTable;
    CFIStringTable m_prefixNamesTable;
};

// ---------------------------------------------------------------------------
// The Fast Infoset options of a CXmlSerializationContext. Only read during a
// run, so one context can serve several writers and readers at once.
// ---------------------------------------------------------------------------

class CFastInfosetContext {
public:
    // How the values of one ItemType go on the wire.
    class EncodedCharacterString {
    public:
        enum Kind : int {
            Kind_String = 0,              // the string's bytes in the default string encoding
            Kind_RestrictedAlphabet = 1,  // index: alphabet 1 or 2
            Kind_EncodingAlgorithm = 2    // index: algorithm 1 to 10
        };

        EncodedCharacterString() = default;
        EncodedCharacterString(Kind kind, unsigned long index) : m_kind(kind), m_index(index) {}

        Kind m_kind = Kind_String;
        unsigned long m_index = 0;
    };

    // The number of entries of the encoding table: one per ItemType value.
    static constexpr unsigned long kEncodingCount = 29;

    // Every value a plain UTF-8 string; maximum add lengths 6; no generated vocabulary.
    CFastInfosetContext();

    unsigned long GetAttributeMaxAddLength() const { return m_attributeMaxAddLength; }
    void SetAttributeMaxAddLength(unsigned long length) { m_attributeMaxAddLength = length; }
    unsigned long GetElementMaxAddLength() const { return m_elementMaxAddLength; }
    void SetElementMaxAddLength(unsigned long length) { m_elementMaxAddLength = length; }
    // The library's recommended encodings for the numeric, boolean, binary
    // and date kinds; the other entries keep what they have.
    void SetSuggestedValues();
    // 0: UTF-8; 1: UTF-16BE, which the writer refuses. There is no setter:
    // nothing but 0 could be written.
    unsigned char GetDefaultStringEncoding() const { return m_defaultStringEncoding; }
    // Indexed by ItemType; a number past the table fails with CKdInvalidParamException.
    EncodedCharacterString GetEncoding(unsigned long type) const;
    void SetEncoding(unsigned long type, EncodedCharacterString encoding);
    bool GetUseGeneratedVocabulary() const { return m_useGeneratedVocabulary; }
    void SetUseGeneratedVocabulary(bool use) { m_useGeneratedVocabulary = use; }
    CFIVocabulary& GetVocabulary() { return m_vocabulary; }
    CFIVocabulary const& GetVocabulary() const { return m_vocabulary; }
    std::string GetExternalVocabularyURI() const { return m_externalVocabularyURI; }
    void SetExternalVocabularyURI(std::string uri) { m_externalVocabularyURI = std::move(uri); }

private:
    unsigned char m_defaultStringEncoding = 0;
    EncodedCharacterString m_encodings[kEncodingCount];
    unsigned long m_attributeMaxAddLength = 6;
    unsigned long m_elementMaxAddLength = 6;
    bool m_useGeneratedVocabulary = false;
    CFIVocabulary m_vocabulary;
    std::string m_externalVocabularyURI;
};

// ---------------------------------------------------------------------------
// One value's text as the octets of a built-in encoding algorithm, and back:
// 1 hexadecimal, 2 base64, 3 short, 4 int, 5 long, 6 boolean, 7 float,
// 8 double, 9 UUID, 10 CDATA (UTF-8).
// ---------------------------------------------------------------------------

class CFastInfosetBinaryData : public CBinaryData {
public:
    CFastInfosetBinaryData();
    CFastInfosetBinaryData(CBinaryData const& data);
    CFastInfosetBinaryData(unsigned char* data, unsigned long length, bool adopt);
    explicit CFastInfosetBinaryData(char const* text);
    ~CFastInfosetBinaryData() override;

    // Replaces the contents with the encoding of the one value in text.
    void SetAsEncodedString(unsigned long algorithm, char const* text);
    // The text of every value in the octets. Algorithm 10 is the reader's own
    // business and fails here, as do 0 and anything above.
    std::string GetAsString(unsigned long algorithm) const;
};

// ---------------------------------------------------------------------------
// The Fast Infoset writer. An element start waits until the next call shows
// whether attributes follow, and an element end waits until the next call
// shows whether a second end shares its octet.
// ---------------------------------------------------------------------------

class CFastInfosetWriter : public CXmlWriter {
public:
    using IndexMap = CFIVocabulary::IndexMap;

    // Starts from a copy of the context's vocabulary when the context says
    // to use it, and from a new one otherwise. Both references must outlive
    // the writer.
    CFastInfosetWriter(CFastInfosetContext const& context, CBinaryStream& stream);
    // Hands what is still held back to the stream, so that a failed document
    // keeps what was written before the failure.
    ~CFastInfosetWriter() override;

    void Close() override;
    void WriteComment(std::string const& text) override;
    void WritePI(std::string const& text) override;
    void WriteInlineSchema(std::string const& text) override;
    void WriteStartElement(std::string const& name, std::string const& uri) override;
    void WriteString(std::string const& text, ItemType type) override;
    void WriteEndElement() override;
    void WriteAttributeString(std::string const& name, std::string const& uri, std::string const& value,
                              ItemType type) override;
    void WriteAttributeType(std::string const& uri, std::string const& typeName, ItemType type) override;

    void WriteStartDocument(FInfoDecl declaration);
    void WriteEndDocument();
    // Writes the pending element start, if any; attributes says whether
    // attributes follow.
    void WriteElement(bool attributes);
    // Moves the bytes held in the writer to the stream. Close and
    // WriteEndDocument do it too.
    void Flush();

    // The integer and octet-string forms, named by the bit of the first
    // octet at which they begin; bits is the caller's part of that octet.
    void Integer1To2pw20Bit2(unsigned char bits, unsigned long value);
    void Integer0To2pw20Bit2(unsigned char bits, unsigned long value);
    void Integer1To2pw20Bit3(unsigned char bits, unsigned long value);
    void Integer1To2pw20Bit4(unsigned char bits, unsigned long value);
    void NonEmptyOctetStringBit2(unsigned char bits, unsigned char const* data, unsigned long length);
    void NonEmptyOctetStringBit5(unsigned char bits, unsigned char const* data, unsigned long length);
    void NonEmptyOctetStringBit7(unsigned char bits, unsigned char const* data, unsigned long length);
    void NonEmptyOctetUTF8StringBit2(unsigned char bits, std::string const& text);

    void QualifiedNameOrIndexBit2(unsigned char bits, std::string const& prefix, std::string const& uri,
                                  std::string const& local, IndexMap& map);
    void QualifiedNameOrIndexBit3(unsigned char bits, std::string const& prefix, std::string const& uri,
                                  std::string const& local, IndexMap& map);
    void EncodedCharacterStringBit3(unsigned char bits, std::string const& text, ItemType type);
    void EncodedCharacterStringBit5(unsigned char bits, std::string const& text, ItemType type);
    void NonIdentifyingStringOrIndexBit1(std::string const& text, IndexMap& map, unsigned long limit,
                                         ItemType type);
    void NonIdentifyingStringOrIndexBit3(unsigned char bits, std::string const& text, IndexMap& map,
                                         unsigned long limit, ItemType type);
    CBinaryData AppendRestrictedAlphabetString(unsigned long index, char const* text);

    CFIVocabulary const& GetWriterVocabulary() const { return *m_vocabulary; }

private:
    void Put(unsigned char octet)
    {
        if (m_used == kBufferSize)
            Flush();
        m_buffer[m_used++] = octet;
    }
    void Put(unsigned char const* data, unsigned long length);
    // Ends an attribute list that is still open on the current element.
    void CloseStartTag();
    // A name part: its index when the table has it, otherwise the literal,
    // which then joins the table through add.
    void NamePart(std::string const& text, bool found, unsigned long index,
                  void (CFIVocabulary::*add)(std::string const&));
    void PrefixPart(std::string const& prefix);
    void NamespacePart(std::string const& uri);
    // The shared body of the two qualified-name forms: integer writes the
    // index form, and literal is the caller's part of the literal's octet.
    void QualifiedNameOrIndex(unsigned char bits, unsigned char literal,
                              void (CFastInfosetWriter::*integer)(unsigned char, unsigned long),
                              std::string const& prefix, std::string const& uri, std::string const& local,
                              IndexMap& map);
    // The shared body of the two encoded-string forms, which differ only in
    // how far the discriminators are shifted.
    void EncodedCharacterString(unsigned char bits, std::string const& text, ItemType type, bool fromBit5);
    std::string const& PrefixForUri(std::string const& uri);
    // The index of text in map, or 0 when it is new; a new text is entered
    // with the next index in the same search while the map has room, and
    // the entry is returned so that a failed literal can take it out again.
    IndexMap::iterator LookUpOrEnter(IndexMap& map, std::string const& text, unsigned long& index);
    // The index of a qualified name in map, as the map answers. Leaves the
    // name's key in m_key when it is not found.
    bool FindQName(IndexMap const& map, std::string const& prefix, std::string const& uri, std::string const& local,
                   unsigned long& index);

    // Element and attribute names found before, by local name, with the
    // index the map gave: an index never changes, so the cache answers as
    // the map does, without building a key and searching the ordered map.
    struct CachedName {
        std::string uri;
        std::string prefix;
        unsigned long index;
    };
    using NameCache = std::unordered_map<std::string, std::vector<CachedName>>;

    static constexpr unsigned long kBufferSize = 16384;

    CBinaryStream& m_stream;
    CFastInfosetContext const& m_fiContext;
    CXmlWriterContext* m_pendingElement = nullptr;  // not yet current; owned while it waits
    bool m_pendingTerminator = false;
    CFIVocabulary* m_vocabulary;  // owned
    // Bytes not yet on the stream; appending to the stream byte by byte
    // would take its lock each time.
    unsigned char m_buffer[kBufferSize];
    unsigned long m_used = 0;
    std::string m_key;  // scratch for qualified-name keys
    NameCache m_elementNameCache;
    NameCache m_attributeNameCache;
    // Values found before in the character chunk and attribute value maps,
    // with their indexes: a hash lookup in place of a walk down the tree.
    std::unordered_map<std::string, unsigned long> m_chunkCache;
    std::unordered_map<std::string, unsigned long> m_attributeValueCache;
};

// ---------------------------------------------------------------------------
// The Fast Infoset reader: decodes a document's input buffer into the same
// tree the text reader builds (elements, attributes, text and namespace
// prefixes; everything else is stepped over). One reader serves one Parse.
// Methods are named after the item they read and the bit of the current
// octet at which it starts.
// ---------------------------------------------------------------------------

class CFastInfosetReader : private CInstanceMonitor {
public:
    // Starts from a copy of the context's vocabulary when the context says
    // to use it, and from a new one otherwise, as the writer does. Both
    // references must outlive the reader.
    CFastInfosetReader(CFastInfosetContext const& context, CXmlDocument& document);
    CFastInfosetReader(CFastInfosetReader const&) = delete;
    CFastInfosetReader& operator=(CFastInfosetReader const&) = delete;
    ~CFastInfosetReader() override;

    // False, quickly and without failure, when the input does not start as
    // Fast Infoset; true once a document was read into the tree. A document
    // that starts as Fast Infoset and is malformed fails with CKdException.
    bool Parse();
    // Frees the vocabulary and the scratch buffer; safe to run twice.
    void Cleanup();

private:
    bool ReadHeader();
    bool CheckHeader();
    bool CheckDeclaration(char const* text);
    void ReadOptionalData();

    // The current byte becomes the cursor's, and the cursor moves on by n;
    // a move past the end of the input fails. Every read goes through here.
    unsigned char const* Move(unsigned long n)
    {
        if (!m_cursor || n > static_cast<unsigned long>(m_end - m_cursor))
            FailEndOfFile();
        m_current = m_cursor;
        m_cursor += n;
        return m_current;
    }
    unsigned char Next() { return *Move(1); }

    unsigned long Integer1To2pw20Bit2();
    unsigned long Integer0To2pw20Bit2();
    unsigned long Integer1To2pw20Bit3();
    unsigned long Integer1To2pw20Bit4();
    // The form of both: smallBits low bits for the values 1 to 2^smallBits,
    // then two, three or four octets under a three-bit mark.
    unsigned long Integer1To2pw20Late(unsigned smallBits, char const* failure);
    unsigned long LengthOfSequence();

    unsigned long NonEmptyOctetStringBit2Length();
    unsigned long NonEmptyOctetStringBit5Length();
    unsigned long NonEmptyOctetStringBit7Length();
    void NonEmptyOctetUTF8String(unsigned long length);
    // The conversion of bytes already taken into the last value.
    void ConvertUTF8(unsigned char const* text, unsigned long length);
    void NonEmptyOctetUTF16BEString(unsigned long length);
    void NonEmptyOctetRestrictedAlphabetString(unsigned long length, unsigned long index);
    void NonEmptyOctetEncryptedString(unsigned long length, unsigned long index);
    void InitBits(unsigned long bits);
    unsigned long GetBits();

    int IdentifyingStringOrIndex();
    int NonIdentifyingStringOrIndexBit1();
    int NonIdentifyingStringOrIndexBit3();
    void EncodedCharacterStringBit3();
    void EncodedCharacterStringBit5();
    // The shared tail of the two: form 0 to 3, the length already read.
    void EncodedCharacterString(unsigned long form, unsigned long length, unsigned long index);

    int QualifiedNameOrIndexBit2(std::vector<CFIVocabulary::CQNameParts>& table);
    int QualifiedNameOrIndexBit3(std::vector<CFIVocabulary::CQNameParts>& table);
    void ReadQName(std::vector<CFIVocabulary::CQNameParts>& table);
    // The URI and local name of entry m_lastIndex of a name table.
    void NameFromIndex(std::vector<CFIVocabulary::CQNameParts> const& table);
    // The URI of the last name read: a table entry, or the last URI itself.
    std::string const& LastURI() const;
    // The document pool's copy of it, found once per namespace entry.
    std::string const* PooledLastURI();
    // A character chunk of the element on top of the stack.
    void CharacterChunk();
    // Entry index of a string table.
    std::string const& TableEntry(std::vector<std::string> const& table, unsigned long index, char const* name);

    void ReadChildren();
    void ElementBit2();
    // The start of an element, its first octet current: name, namespace
    // attributes and attributes. False when its attributes also ended it.
    bool ElementStart();
    void PopElement();
    void AtrributeBit2(CXmlElement* element);
    void NamespaceAttributeBit7();

    void Version();
    void Standalone();
    void CharacterEncodingScheme();
    void AdditionalData();
    void InitialVocabulary();
    void ExternalVocabulary();
    void RestrictedAlphabets();
    void EncodingAlogrithms();
    void Prefixes();
    void NamespaceNames();
    void LocalNames();
    void OtherNCNames();
    void OtherURIs();
    void AttributeValues();
    void ContentCharacterChunks();
    void OtherStrings();
    void ElementNameSurrogates();
    void AttributeNameSurrogates();
    void Notations();
    void NotationBit7();
    void UnparsedEntities();
    void UnparsedEntityBit8();
    void ProcessingInstruction();
    void DocumentTypeDeclarationBit7();
    void UnexpandedEntityReferenceBit7();
    // Steps over a literal octet string whose length starts on bit 2.
    void SkipOctetStringBit2();
    // Steps over a list of items, each read by item.
    void SkipList(void (CFastInfosetReader::*item)());
    void SkipEncodedStringBit3();
    void SkipNameSurrogate();

    [[noreturn]] void Fail(char const* message);
    [[noreturn]] void FailEndOfFile();

    // Only read; the vocabulary it chose is all the reader takes from it.
    [[maybe_unused]] CFastInfosetContext const* m_context;
    CXmlDocument* m_document;
    unsigned char const* m_cursor = nullptr;   // the next unread byte
    unsigned char const* m_current = nullptr;  // the byte most recently taken
    unsigned char const* m_end = nullptr;      // one past the input
    unsigned long m_bitsPerItem = 0;
    unsigned long m_bitsLeft = 0;
    unsigned char m_bitBuffer = 0;
    std::string m_lastPrefix;
    std::string m_lastURI;
    std::string m_lastLocalName;
    bool m_doubleTerminator = false;
    std::string m_lastValue;
    unsigned long m_lastIndex = 0;
    bool m_addToTable = false;
    unsigned char* m_scratch = nullptr;  // owned, new[]: 128 wide, then 512 narrow characters
    unsigned long m_scratchSize = 0;
    CFIVocabulary* m_vocabulary;  // owned
    // Index of the last name's URI in the namespace table; 0 for none, and
    // kOwnURI when only m_lastURI holds it (a literal the full table refused).
    unsigned long m_lastURIIndex = 0;
    static constexpr unsigned long kOwnURI = ~0ul;
    // By namespace index: the URI as the document's pool keeps it, or null.
    std::vector<std::string const*> m_pooledURIs;
};

} // namespace KdBind

#endif
