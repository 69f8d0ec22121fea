// KdBind XML output: the in-memory text sink, the abstract writer with its
// namespace scopes, and the XML text writer.
#ifndef KDBIND_XMLOUTPUT_H
#define KDBIND_XMLOUTPUT_H

#include <cstring>
#include <map>
#include <string>
#include <vector>

#include "kdbind/values.h"

namespace KdBind {

// ---------------------------------------------------------------------------
// A growing text kept in separately allocated blocks: appending never moves
// text already written; GetText joins the blocks once.
// ---------------------------------------------------------------------------

class CStringBuffer : private CInstanceMonitor {
public:
    CStringBuffer();
    // blockAllocation is the whole allocation of a block, terminator included.
    explicit CStringBuffer(unsigned long blockAllocation);
    CStringBuffer(CStringBuffer const&) = delete;
    CStringBuffer& operator=(CStringBuffer const&) = delete;
    ~CStringBuffer() override;

    unsigned long GetLength() const { return m_total; }
    void Clear();
    void Empty();
    void AddNewBlock();
    void Append(char c)
    {
        if (m_used == m_capacity)
            AddNewBlock();
        m_current[m_used++] = c;
        ++m_total;
    }
    void Append(char const* text) { Append(text, static_cast<unsigned long>(strlen(text))); }
    void Append(std::string const& text) { Append(text.c_str()); }
    // Appends exactly length bytes.
    void Append(char const* text, unsigned long length)
    {
        // Most appends fit the current block; only a crossing takes the loop.
        if (length <= m_capacity - m_used) {
            if (length != 0)
                memcpy(m_current + m_used, text, length);
            m_used += length;
            m_total += length;
            return;
        }
        AppendAcrossBlocks(text, length);
    }
    void SetText(char const* text);
    // Owned by the buffer; valid until the next change.
    char* GetText();
    // The whole text as one string, without joining the blocks.
    std::string GetString() const;

private:
    void AppendAcrossBlocks(char const* text, unsigned long length);

    std::vector<char*> m_blocks;
    std::vector<unsigned long> m_blockSizes;
    unsigned long m_blockSize;
    unsigned long m_used = 0;
    unsigned long m_capacity = 0;
    char* m_current = nullptr;
    unsigned long m_total = 0;
};

// ---------------------------------------------------------------------------
// The text sink of the text writer. In memory it keeps everything until
// GetText; a file stream drains on Flush.
// ---------------------------------------------------------------------------

class CTextStream : private CInstanceMonitor {
public:
    CTextStream();
    explicit CTextStream(XmlEncoding encoding);
    CTextStream(char const* monitorName, XmlEncoding encoding);
    ~CTextStream() override;
    virtual void Open();
    virtual void Close();
    virtual void Flush();

    unsigned long GetLength() const { return m_buffer.GetLength(); }
    XmlEncoding GetEncoding() const { return m_encoding; }
    char const* GetText() const { return m_buffer.GetText(); }
    // The same text, copied once into a string.
    std::string GetString() const { return m_buffer.GetString(); }
    void Append(char c) { m_buffer.Append(c); }
    void Append(char const* text) { m_buffer.Append(text); }
    void Append(std::string const& text) { m_buffer.Append(text); }
    void Append(char const* text, unsigned long length) { m_buffer.Append(text, length); }
    // The text in the stream's encoding: UTF-8 for encoding 1; for 2 and 3
    // the wide characters as they stand (4 bytes each, machine order).
    // Any other encoding fails.
    CBinaryData GetEncodedStream() const;

protected:
    // GetText joins blocks, which is a change of representation only.
    mutable CStringBuffer m_buffer;
    XmlEncoding m_encoding;
};

// A text stream over a file. Open creates the file (UTF-16 encodings start
// with the byte order mark FF FE); Flush writes the byte buffer and empties
// the text; Close flushes and closes.
class CFileTextStream : public CTextStream {
public:
    CFileTextStream(char const* path, XmlEncoding encoding);  // does not open the file
    CFileTextStream(CFileTextStream const&) = delete;
    CFileTextStream& operator=(CFileTextStream const&) = delete;
    // Closes the file if it is open; raises nothing.
    ~CFileTextStream() override;

    void Open() override;
    void Close() override;
    void Flush() override;

private:
    std::string m_path;
    CBinaryData m_data;
    FILE* m_file = nullptr;
};

// ---------------------------------------------------------------------------
// The abstract writer: the stack of open elements and their namespace scopes.
// ---------------------------------------------------------------------------

class CXmlWriter : private CInstanceMonitor {
public:
    using NamespaceMap = std::map<std::string, std::string>;  // URI -> prefix

    // One per open element. Namespace scopes are copy-on-write: a child
    // shares its parent's map until it declares something of its own.
    class CXmlWriterContext : private CInstanceMonitor {
    public:
        // The document element: its own copy of the writer's scope.
        CXmlWriterContext(std::string const& name, std::string const& uri, std::string const& defaultNamespace,
                          NamespaceMap const& namespaces, CXmlWriterContext* parent);
        // Any other element: inherits the parent's scope.
        CXmlWriterContext(std::string const& name, std::string const& uri, CXmlWriterContext* parent);
        CXmlWriterContext(CXmlWriterContext const&) = delete;
        CXmlWriterContext& operator=(CXmlWriterContext const&) = delete;
        // Destroys the parent too: destroying the top destroys the stack.
        ~CXmlWriterContext() override;

        NamespaceMap* GetNamespaceMap() const;
        // Compared on every start and end tag: handed out, not copied.
        std::string const& GetDefaultNamespace() const;
        void SetDefaultNamespace(std::string const& uri);
        void SetNamespaceMapValue(std::string const& uri, std::string const& prefix);
        // An absent URI is inserted with an empty prefix.
        std::string GetNamespaceMapValue(std::string const& uri);
        std::string GetNamespaceMapValue(char const* uri);
        // The same without the copy; the reference lives as long as the scope.
        std::string const& NamespaceMapValue(std::string const& uri);

        long m_childCount = 0;
        bool m_startTagOpen = true;
        long m_depth;
        std::string m_uri;
        std::string m_name;
        CXmlWriterContext* m_parent;
        bool m_hasAttributes = false;  // used by the binary writer only

    private:
        friend class CXmlWriter;
        CXmlWriterContext const* ScopeOwner() const;
        void TakeOwnScope();
        // Makes a spare context the context of a new element under parent.
        void Reuse(std::string const& name, std::string const& uri, CXmlWriterContext* parent);

        std::string m_defaultNamespace;
        NamespaceMap* m_namespaces;
        bool m_inheritsScope;
        bool m_ownsMap;
        // The nearest context, this one included, with a scope of its own:
        // kept as each context is made, since only the newest one (the
        // current element) ever takes a scope of its own.
        CXmlWriterContext const* m_scopeOwner;

    public:
        // The prefix the start tag was written with and the map it stands in:
        // the end tag reads it there as long as that map is still the scope.
        NamespaceMap const* m_prefixScope = nullptr;
        std::string const* m_prefix = nullptr;
    };

    explicit CXmlWriter(char const* monitorName);
    CXmlWriter(CXmlWriter const&) = delete;
    CXmlWriter& operator=(CXmlWriter const&) = delete;
    ~CXmlWriter() override;

    virtual void Open();
    virtual void Close();
    virtual void SetDefaultNamespace(std::string const& uri);
    virtual void AddNamespace(std::string const& prefix, std::string const& uri);
    virtual void WriteComment(std::string const& text) = 0;
    virtual void WritePI(std::string const& text) = 0;
    virtual void WriteInlineSchema(std::string const& text) = 0;
    virtual void WriteStartElement(std::string const& name, std::string const& uri) = 0;
    virtual void WriteString(std::string const& text, ItemType type) = 0;
    virtual void WriteEndElement() = 0;
    virtual void WriteAttributeString(std::string const& name, std::string const& uri, std::string const& value,
                                      ItemType type) = 0;
    virtual void WriteAttributeType(std::string const& uri, std::string const& typeName, ItemType type) = 0;

    // Two letters: "AA" for 0, "AB" for 1, ... "BA" for 26; unchecked past 675.
    static std::string NsIntToString(int n);
    // The lowest code that no entry of the map uses as its prefix.
    static std::string GetUniquePrefix(NamespaceMap const& namespaces);

protected:
    // Creates the context of a new element and makes it current.
    CXmlWriterContext* PushContext(std::string const& name, std::string const& uri);
    // Ends the current context and makes its parent current.
    void PopContext();

    std::string m_defaultNamespace;
    CXmlWriterContext* m_context = nullptr;
    NamespaceMap m_namespaces;

private:
    // Ended contexts kept for the next elements, so that a start tag costs
    // no allocation once the stack has been this deep; chained through
    // m_parent, so destroying the first destroys them all.
    CXmlWriterContext* m_spareContexts = nullptr;
};

using CXmlWriterContext = CXmlWriter::CXmlWriterContext;

// ---------------------------------------------------------------------------
// The XML text writer.
// ---------------------------------------------------------------------------

class CXmlTextWriter : public CXmlWriter {
public:
    explicit CXmlTextWriter(CTextStream& stream);

    void Open() override;
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

    bool GetFormat() const { return m_format; }
    void SetFormat(bool format) { m_format = format; }
    EOLType GetEOLType() const { return m_eolType; }
    void SetEOLType(EOLType type);
    void WriteStartDocument();
    void WriteHeaderDirective(std::string const& text);
    void WriteRawElement(std::string const& text);
    void CloseParentElm();
    // Escapes the text into the stream (also attribute values and comments).
    void PadAndAppend(char const* text);

private:
    void FlushIfFull();
    void WriteIndent(long depth);
    void WriteLineEndIfFormatted();
    // The prefix of uri in the current element's scope. A URI the scope does
    // not know gets the lowest free code, recorded there; isNew then tells
    // the caller to write its declaration.
    std::string const& PrefixInScope(std::string const& uri, bool& isNew);
    // Writes ` xmlns:prefix="uri"` (with the leading blank when asked).
    void WriteNamespaceDeclaration(std::string const& prefix, std::string const& uri, bool leadingBlank);

    std::string m_lineEnd;
    EOLType m_eolType;
    bool m_format;
    CTextStream& m_stream;
};

} // namespace KdBind

#endif
