// KdBind XML input: the parsed element tree, the text reader, input form
// recognition, and the alias map of output prefixes.
#ifndef KDBIND_XMLINPUT_H
#define KDBIND_XMLINPUT_H

#include <cstddef>
#include <exception>
#include <map>
#include <string>
#include <vector>

#include "kdbind/xmloutput.h"

// The parser handle of expat, declared here so that expat's header stays
// out of the library's public headers.
struct XML_ParserStruct;

namespace KdBind {

class CXmlSerializationContext;
class CXmlAttribute;

// ---------------------------------------------------------------------------
// The prefixes an application wants on its output, keyed by namespace URI.
// ---------------------------------------------------------------------------

class CNamespaceAliasMap {
public:
    CNamespaceAliasMap() = default;
    CNamespaceAliasMap(CNamespaceAliasMap const&) = default;
    CNamespaceAliasMap& operator=(CNamespaceAliasMap const&) = default;
    virtual ~CNamespaceAliasMap() = default;

    void Add(char const* alias, char const* uri);
    void RemoveNamespace(char const* uri);
    bool DoesNamespaceExist(char const* uri) const;
    bool DoesAliasExist(char const* alias) const;
    std::string GetNamespaceFromAlias(char const* alias) const;
    // Asking for an unknown URI inserts it with an empty alias, by design:
    // it then counts, and is listed by GetNamespaceAt.
    std::string GetAliasFromNamespace(char const* uri) const;
    int GetNamespaceCount() const { return static_cast<int>(m_aliases.size()); }
    std::string GetNamespaceAt(int index) const;

private:
    mutable std::map<std::string, std::string> m_aliases;  // URI -> alias
};

// ---------------------------------------------------------------------------
// The parsed element tree that every load passes through. It is deliberately
// poor: an element keeps one text (all of its character data joined, the
// white space between children included), no text nodes, no comments and no
// prefixes; the prefixes of the whole document sit in one flat map.
// ---------------------------------------------------------------------------

class CXmlDocument;
class CNodePool;

// Set and never read; kept because applications call it.
extern bool ASYNC_FROMXMLFILE;
void AsyncFromXmlFile(bool async);

// One attribute of a parsed element; immutable.
class CXmlAttribute : private CInstanceMonitor {
public:
    CXmlAttribute(std::string const& name, std::string const& value, std::string const& uri);
    CXmlAttribute(std::string&& name, std::string&& value, std::string&& uri);
    CXmlAttribute(CXmlAttribute const&) = delete;
    CXmlAttribute& operator=(CXmlAttribute const&) = delete;
    ~CXmlAttribute() override;

    std::string const& GetLocalName() const { return m_localName; }
    std::string const& GetValue() const { return m_value; }
    std::string const& GetNamespaceURI() const { return *m_namespaceURI; }
    // Namespace declarations, xsi:type and the schema locations: attributes
    // that the binding must not take as data.
    bool IsNamespaceAttribute() const;

    // The nodes of a parsed tree live in their document's memory pool;
    // nodes made with plain new live on the heap. delete suits both.
    static void* operator new(std::size_t size) { return operator new(size, nullptr); }
    static void* operator new(std::size_t size, CNodePool* pool);
    static void operator delete(void* node, std::size_t size);
    static void operator delete(void* node, CNodePool* pool);

private:
    friend class CXmlElement;
    struct SharedURI {};
    // uri is kept by the pool that holds the attribute, or is the empty string.
    CXmlAttribute(std::string&& name, std::string&& value, std::string const* uri, SharedURI);

    std::string m_localName;
    std::string m_value;
    // Like an element's: shared in a parsed tree, else a copy of its own.
    std::string const* m_namespaceURI;
    bool m_ownsNamespaceURI;
};

class CXmlElement : private CInstanceMonitor {
public:
    using AttributeList = std::vector<CXmlAttribute*>;

    explicit CXmlElement(CXmlDocument const* document);
    CXmlElement(CXmlElement const&) = delete;
    CXmlElement& operator=(CXmlElement const&) = delete;
    // Destroys the whole subtree without recursion.
    ~CXmlElement() override;

    // Valid while the document lives, also for an element taken out of its tree.
    CXmlDocument const* GetOwnerDocument() const { return m_document; }
    CXmlElement* GetFirstElement() const { return m_firstChild; }
    CXmlElement* GetNextSiblingElement() const { return m_nextSibling; }
    std::string const& GetNamespaceURI() const { return *m_namespaceURI; }
    std::string const& GetLocalName() const { return m_localName; }
    std::string const& GetText() const { return m_text; }
    AttributeList const& GetAttributes() const { return m_attributes; }
    // The value of the first attribute with exactly this name and URI; an
    // absent attribute reads as the empty string.
    std::string const& GetAttribute(std::string const& name, std::string const& uri) const;

    void SetNamespace(std::string const& uri) { SetNamespace(std::string(uri)); }
    void SetNamespace(std::string&& uri);
    void SetElementName(std::string const& name) { m_localName = name; }
    void SetElementName(std::string&& name) { m_localName = std::move(name); }
    void AppendText(char const* text, int length);
    void AppendText(char const* text);
    void AddAttribute(std::string const& name, std::string const& value, std::string const& uri);
    void AddAttribute(std::string&& name, std::string&& value, std::string&& uri);
    void ReserveAttributes(std::size_t count) { m_attributes.reserve(count); }

    // Links a new element at the end of the children and returns it.
    CXmlElement* CreateNewChildElement();
    // Unlinks the last child and hands it to the caller; null without children.
    CXmlElement* RemoveLastChildElement();

    // See CXmlAttribute.
    static void* operator new(std::size_t size) { return operator new(size, nullptr); }
    static void* operator new(std::size_t size, CNodePool* pool);
    static void operator delete(void* node, std::size_t size);
    static void operator delete(void* node, CNodePool* pool);

private:
    friend class CXmlDocument;
    friend class CExpatReader;
    friend class CFastInfosetReader;
    // An element of a parsed tree: its children and attributes are made in
    // the same pool.
    CXmlElement(CXmlDocument const* document, CNodePool* pool);
    // uri is the empty string or one kept by this element's pool.
    void SetPooledNamespace(std::string const* uri) { m_namespaceURI = uri; }
    // Only an element on the heap has a URI of its own.
    bool OwnsNamespaceURI() const;

    CXmlDocument const* m_document;
    CXmlElement* m_nextSibling = nullptr;
    CXmlElement* m_firstChild = nullptr;  // owns the list of children
    CXmlElement* m_lastChild = nullptr;
    AttributeList m_attributes;           // owned, in document order
    std::string m_text;
    std::string m_localName;
    // Most elements of a document share a few URIs, too long to be kept
    // without a heap block each: a parsed element points at its pool's copy,
    // one built on the heap at a copy of its own.
    std::string const* m_namespaceURI;
    CNodePool* m_pool = nullptr;  // null: children and attributes on the heap
};

class CXmlDocument : private CInstanceMonitor {
public:
    // Called for each finished element of a text parse; answering true
    // takes the element out of the tree and destroys it (streaming).
    using ElementCallback = bool (*)(CXmlElement*);

    CXmlDocument();
    explicit CXmlDocument(CXmlSerializationContext const& context);
    explicit CXmlDocument(ElementCallback callback);
    CXmlDocument(ElementCallback callback, CXmlSerializationContext const& context);
    CXmlDocument(CXmlDocument const&) = delete;
    CXmlDocument& operator=(CXmlDocument const&) = delete;
    ~CXmlDocument() override;
    // Drops the tree, the input and the prefixes; the callback and the
    // context stay, so that the document can be loaded again.
    virtual void Cleanup();

    void Init();
    // Text only: no recognition of compressed or binary input.
    void LoadXml(char const* text);
    // Handed to the parser as UTF-16LE behind a byte order mark.
    void LoadXml(wchar_t const* text);
    void ParseText();
    // From a file or from bytes, which may be compressed, Fast Infoset or text.
    void Load(char const* path);
    void LoadXmlStream(unsigned char* data, unsigned long length);
    void Parse();

    CXmlElement* GetDocumentElement() const { return m_documentElement; }
    // The URI last declared for the prefix anywhere in the document, or "".
    std::string LookupNamespaceFromAlias(char const* alias) const;

    // For the producers of the tree.
    CXmlElement* AddDocElement(char const* uri, char const* name);
    CXmlElement* AddChildElement(char const* uri, char const* name);
    void EndElement();
    static void AddElementAttribute(CXmlElement* element, std::string const& name, std::string const& value,
                                    std::string const& uri);
    // Both stop at a zero byte; carriage returns never reach the text.
    static void AppendTextExcludingCR(CXmlElement* element, char const* text, unsigned long length);
    static void AppendTextExcludingCR(CXmlElement* element, char const* text);

    CXmlSerializationContext const& GetContext() const { return *m_context; }
    SchemaType GetSchemaType() const { return m_schemaType; }
    unsigned char* GetInputBuffer() const { return m_inputBuffer; }
    unsigned long GetInputLength() const { return m_inputLength; }
    std::vector<CXmlElement*>& GetElementStack() { return m_elementStack; }
    std::map<std::string, std::string>& GetAliasMap() { return m_aliasMap; }

private:
    CXmlElement* m_documentElement = nullptr;      // owned
    std::vector<CXmlElement*> m_elementStack;      // the open elements, root first
    std::map<std::string, std::string> m_aliasMap; // prefix -> URI
    unsigned char* m_inputBuffer = nullptr;        // owned, new[]
    unsigned long m_inputLength = 0;
    SchemaType m_schemaType = SchemaType_Default;
    ElementCallback m_callback;
    CXmlSerializationContext const* m_context;
    CNodePool* m_nodePool = nullptr;  // made with the first element

    friend class CExpatReader;
    friend class CFastInfosetReader;
    CNodePool* NodePool();
    // Makes the document element or a child of the open element, and opens it.
    CXmlElement* OpenElement();
};

// ---------------------------------------------------------------------------
// The text reader: drives expat over a document's input buffer and turns its
// events into calls on the document. One reader serves one parse.
// ---------------------------------------------------------------------------

class CExpatReader : private CInstanceMonitor {
public:
    explicit CExpatReader(CXmlDocument& document);
    CExpatReader(CExpatReader const&) = delete;
    CExpatReader& operator=(CExpatReader const&) = delete;
    ~CExpatReader() override;

    void CreateParser();
    void Parse(bool isFinal);
    void Cleanup();

    static void FnStartElement(void* userData, char const* name, char const** attributes);
    static void FnEndElement(void* userData, char const* name);
    static void FnStartNamespace(void* userData, char const* prefix, char const* uri);
    static void FnEndNamespace(void* userData, char const* prefix);
    static void FnText(void* userData, char const* text, int length);
    static void FnStartCDATA(void* userData);
    static void FnEndCDATA(void* userData);

private:
    // Runs one handler; a failure stops the parser and is kept for Parse to
    // throw, since it must not unwind through expat.
    template <class Handler>
    static void Guarded(void* userData, Handler&& handler);
    void FreeParser();
    // Expat's UTF-8 into the local code page, written to out.
    void ToLocalCodePage(char const* text, unsigned long length, bool useScratch, std::string& out);
    // The same, as a new string.
    std::string Converted(char const* text, unsigned long length, bool useScratch);
    // The pool's copy of an element URI, given as expat's UTF-8.
    std::string const* ElementNamespace(char const* uri, unsigned long length);

    CXmlDocument* m_document;
    unsigned char* m_scratch = nullptr;  // conversion room: 128 wide, then 512 narrow characters
    unsigned long m_scratchSize = 0;
    XML_ParserStruct* m_parser = nullptr;
    // Reused for namespace declarations and converted text; the names and
    // values that the tree keeps are built in place and moved into it.
    std::string m_uri;
    std::string m_local;
    std::string m_value;
    // The last element URI, as expat gave it and as kept by the pool: the
    // elements of a document mostly repeat the URI of the one before.
    std::string m_lastRawURI;
    std::string const* m_lastURI = nullptr;
    std::exception_ptr m_failure;
};

} // namespace KdBind

#endif
