// KdBind binding engine: the options record, the root of all bindable
// objects with its entry points, and the base of generated classes.
#ifndef KDBIND_BINDING_H
#define KDBIND_BINDING_H

#include <atomic>
#include <string>
#include <vector>

#include "kdbind/fastinfoset.h"
#include "kdbind/xmlinput.h"
#include "kdbind/xmloutput.h"

namespace KdBindData {

// How the children of a class are grouped.
enum XmlElementGroupType : int {
    XmlElementGroupType_Sequence = 0,
    XmlElementGroupType_Choice = 1,
    XmlElementGroupType_All = 2
};

// Whether something has a tag of its own.
enum XmlElementType : int {
    XmlElementType_Element = 0,      // a real element with start and end tags
    XmlElementType_PseudoChild = 1,  // no tag; its attributes go on the enclosing tag
    XmlElementType_PseudoGroup = 2   // no tag; attributes are not forwarded
};

class CParentElementInfo;
class CElementInfo;
class CAttributeInfo;
} // namespace KdBindData

namespace KdBind {

class CXmlElement;
class CElement;
class CAttributeCol;
class CXmlObjectBase;
class CXmlCollectionBase;

// ---------------------------------------------------------------------------
// Process-wide switches; plain variables, to be set before work starts.
// ---------------------------------------------------------------------------

extern bool ASYNC_TOXMLFILE;
void AsyncToXmlFile(bool async);

// ---------------------------------------------------------------------------
// The options of one read or write.
// ---------------------------------------------------------------------------

class CXmlSerializationContext {
public:
    CXmlSerializationContext();
    // Copies every option; the Fast Infoset options and the alias map are
    // copied by value. The additional root attributes, which copies share,
    // join with their own class.
    CXmlSerializationContext(CXmlSerializationContext const& other);
    CXmlSerializationContext& operator=(CXmlSerializationContext const&) = delete;
    virtual ~CXmlSerializationContext();

    // The default argument of every entry point.
    static CXmlSerializationContext m_defaultContext;

    bool GetIgnoreUnknownAttributes() const { return m_ignoreUnknownAttributes; }
    void SetIgnoreUnknownAttributes(bool value) { m_ignoreUnknownAttributes = value; }
    bool GetIgnoreUnknownElements() const { return m_ignoreUnknownElements; }
    // Refused while IgnoreMissingMandatoryElements is set: the two cannot be combined.
    void SetIgnoreUnknownElements(bool value);
    bool GetIgnoreMissingMandatoryElements() const { return m_ignoreMissingMandatoryElements; }
    // Refused while IgnoreUnknownElements is set.
    void SetIgnoreMissingMandatoryElements(bool value);
    bool GetIgnoreMissingChoice() const { return m_ignoreMissingChoice; }
    void SetIgnoreMissingChoice(bool value) { m_ignoreMissingChoice = value; }
    bool GetIgnoreInvalidCollectionCounts() const { return m_ignoreInvalidCollectionCounts; }
    void SetIgnoreInvalidCollectionCounts(bool value) { m_ignoreInvalidCollectionCounts = value; }
    // Also true under schema type 2, whatever the flag says.
    bool GetIgnoreNamespaces() const
    {
        return m_ignoreNamespaces || m_schemaType == SchemaType_IgnoreNamespaces;
    }
    void SetIgnoreNamespaces(bool value) { m_ignoreNamespaces = value; }
    bool GetNoOptionalAttributeDefaultOutput() const { return m_noOptionalAttributeDefaultOutput; }
    void SetNoOptionalAttributeDefaultOutput(bool value) { m_noOptionalAttributeDefaultOutput = value; }
    bool GetStripCDATA() const { return m_stripCDATA; }
    void SetStripCDATA(bool value) { m_stripCDATA = value; }
    SchemaType GetSchemaType() const { return m_schemaType; }
    void SetSchemaType(SchemaType value) { m_schemaType = value; }
    std::string GetDefaultNamespaceURI() const { return m_defaultNamespaceURI; }
    void SetDefaultNamespaceURI(char const* uri) { m_defaultNamespaceURI = uri ? uri : ""; }
    std::string GetInLineSchema() const { return m_inLineSchema; }
    void SetInLineSchema(char const* schema) { m_inLineSchema = schema ? schema : ""; }

    // Attributes written on the root element of every document written with
    // this context. Made on first request, also through a const context; a
    // copy made after that shares the collection, one made before does not.
    // Concurrent first requests agree on one collection.
    CSmartPtr<CAttributeCol> GetAdditionalRootAttributes() const;

    CNamespaceAliasMap& GetNamespaceAliases() { return m_namespaceAliases; }
    CNamespaceAliasMap const& GetNamespaceAliases() const { return m_namespaceAliases; }
    // Callers fill the list directly; there is no setter.
    std::vector<std::string>& GetProcessingInstructions() { return m_processingInstructions; }
    std::vector<std::string> const& GetProcessingInstructions() const { return m_processingInstructions; }
    CFastInfosetContext& GetFIContext() { return m_fiContext; }
    CFastInfosetContext const& GetFIContext() const { return m_fiContext; }

    // How deep objects may nest, one inside the other, when a document is
    // read into them or they are written out; one level per element and per
    // model group. Deeper input fails with CKdValidationException instead of
    // exhausting the stack; so does a deeper (or cyclic) object tree on
    // output. The default is far beyond any real schema and far below what
    // the stack of a thread can take; 0 or less means no limit.
    static constexpr int kDefaultMaxDepth = 1000;
    int GetMaxDepth() const { return m_maxDepth; }
    void SetMaxDepth(int depth) { m_maxDepth = depth; }

private:
    // Holds one reference on the shared collection, or nothing; a copy holds
    // another reference on the same one.
    class CRootAttributesHolder {
    public:
        CRootAttributesHolder() = default;
        CRootAttributesHolder(CRootAttributesHolder const& other);
        CRootAttributesHolder& operator=(CRootAttributesHolder const&) = delete;
        ~CRootAttributesHolder();
        CAttributeCol* GetOrCreate() const;

    private:
        mutable std::atomic<CAttributeCol*> m_attributes{nullptr};
    };

    std::string m_defaultNamespaceURI;
    CRootAttributesHolder m_additionalRootAttributes;
    CNamespaceAliasMap m_namespaceAliases;
    std::vector<std::string> m_processingInstructions;
    std::string m_inLineSchema;
    bool m_ignoreInvalidCollectionCounts = false;
    bool m_ignoreMissingChoice = false;
    bool m_ignoreMissingMandatoryElements = false;
    bool m_ignoreUnknownElements = false;
    bool m_ignoreUnknownAttributes = false;
    bool m_ignoreNamespaces = false;
    SchemaType m_schemaType = SchemaType_Default;
    bool m_noOptionalAttributeDefaultOutput = false;
    bool m_stripCDATA = true;
    int m_maxDepth = kDefaultMaxDepth;
    CFastInfosetContext m_fiContext;
};

// ---------------------------------------------------------------------------
// Small pure tests on names, namespaces and values; static operations only.
// ---------------------------------------------------------------------------

class CXmlObjectHelper {
public:
    CXmlObjectHelper() = delete;

    // Whether ns passes a wildcard restriction in the notation of the XSD
    // attribute "namespace". Only the first token of a list is judged as a
    // token; see the definition.
    static bool IsNamespaceValid(std::string const& ns, std::string const& restriction,
                                 std::string const& targetNamespace);
    // IsNamespaceValid, failing with CKdInvalidNamespaceException.
    static void TestNamespace(std::string const& ns, std::string const& restriction,
                              std::string const& targetNamespace);
    // Element identity under the options of the context.
    static bool DoesElementNameMatch(CXmlSerializationContext const& context, CXmlElement const* element,
                                     std::string const& name, std::string const& ns);
    // Tests a value against the facets of its element or attribute; throws on
    // a value outside them.
    // The value is taken from the variant by type, not by the variant's tag.
    // Facet failures are plain CKdException naming the element or attribute;
    // a bound that cannot be read in the value's type fails as its conversion
    // does. char values cannot be restricted.
    static void CheckRestriction(char const* name, KdVariant const& value, ItemType type,
                                 CPrimitiveRestrictions const& restrictions);

    // One check per kind. Numbers and the Gregorian parts test the four
    // bounds only; strings and binary data test the lengths (in bytes), and
    // strings the pattern as well. Bounds are parsed on a record's first
    // check and kept with it.
    static void CheckRestrictionForhexBinary(char const* name, CBinaryData const& value,
                                             CPrimitiveRestrictions const& restrictions);
    // Reports the value in hex, as the hexBinary check does.
    static void CheckRestrictionForbase64Binary(char const* name, CBinaryData const& value,
                                                CPrimitiveRestrictions const& restrictions);
    static void CheckRestrictionFori1(char const* name, char value, CPrimitiveRestrictions const& restrictions);
    static void CheckRestrictionFori2(char const* name, short value, CPrimitiveRestrictions const& restrictions);
    static void CheckRestrictionFori4(char const* name, long value, CPrimitiveRestrictions const& restrictions);
    static void CheckRestrictionFori8(char const* name, long long value, CPrimitiveRestrictions const& restrictions);
    static void CheckRestrictionForui1(char const* name, unsigned char value,
                                       CPrimitiveRestrictions const& restrictions);
    static void CheckRestrictionForui2(char const* name, unsigned short value,
                                       CPrimitiveRestrictions const& restrictions);
    static void CheckRestrictionForui4(char const* name, unsigned long value,
                                       CPrimitiveRestrictions const& restrictions);
    static void CheckRestrictionForui8(char const* name, unsigned long long value,
                                       CPrimitiveRestrictions const& restrictions);
    // A NaN fails every bound that is set.
    static void CheckRestrictionForr4(char const* name, float value, CPrimitiveRestrictions const& restrictions);
    static void CheckRestrictionForr8(char const* name, double value, CPrimitiveRestrictions const& restrictions);
    static void CheckRestrictionForyear(char const* name, unsigned short value,
                                        CPrimitiveRestrictions const& restrictions);
    static void CheckRestrictionFormonth(char const* name, unsigned char value,
                                         CPrimitiveRestrictions const& restrictions);
    static void CheckRestrictionForday(char const* name, unsigned char value,
                                       CPrimitiveRestrictions const& restrictions);
    // Length is in bytes of the local code page. A failure inside the
    // pattern test (a refused pattern, a text that cannot be encoded) stops
    // the process on a trap.
    static void CheckRestrictionForstring(char const* name, std::string value,
                                          CPrimitiveRestrictions const& restrictions);
    static void CheckRestrictionFordecimal(char const* name, CDecimal const& value,
                                           CPrimitiveRestrictions const& restrictions);
    static void CheckRestrictionForinteger(char const* name, CBigInteger const& value,
                                           CPrimitiveRestrictions const& restrictions);
    // Dates and durations: a comparison that is indeterminate (a zone on one
    // side only, months against days) passes the bound.
    static void CheckRestrictionForduration(char const* name, CDateTimeSpan const& value,
                                            CPrimitiveRestrictions const& restrictions);
    static void CheckRestrictionForyearMonth(char const* name, CDateTime const& value,
                                             CPrimitiveRestrictions const& restrictions);
    // The same check as CheckRestrictionForyearMonth, under the other name.
    static void CheckRestrictionFormonthYear(char const* name, CDateTime const& value,
                                             CPrimitiveRestrictions const& restrictions);
    static void CheckRestrictionFormonthDay(char const* name, CDateTime const& value,
                                            CPrimitiveRestrictions const& restrictions);
    static void CheckRestrictionFordate(char const* name, CDateTime const& value,
                                        CPrimitiveRestrictions const& restrictions);
    static void CheckRestrictionFordatetime(char const* name, CDateTime const& value,
                                            CPrimitiveRestrictions const& restrictions);
    static void CheckRestrictionFortime(char const* name, CDateTime const& value,
                                        CPrimitiveRestrictions const& restrictions);
    // Accepts every value: no facet of the record applies to booleans.
    static void CheckRestrictionForboolean(char const* name, bool value, CPrimitiveRestrictions const& restrictions);
};

// ---------------------------------------------------------------------------
// Events by which a collection tells its owner that it changed.
// ---------------------------------------------------------------------------

class IEventSink {
public:
    enum MsgType : int {
        MsgType_CollectionChanged = 0,
        MsgType_ItemAdding = 1,
        MsgType_ItemAdded = 2,
        MsgType_ItemRemoving = 3,
        MsgType_ItemRemoved = 4
    };
    virtual void OnEvent(CXmlObjectBase* source, MsgType type, void* data) = 0;

protected:
    ~IEventSink() = default;
};

// ---------------------------------------------------------------------------
// The root of every bindable object: reference count, element name and the
// entry points to and from XML.
// ---------------------------------------------------------------------------

class CXmlObjectBase : public IEventSink {
public:
    CXmlObjectBase();
    CXmlObjectBase(CXmlObjectBase const& other);
    CXmlObjectBase& operator=(CXmlObjectBase const& other);

    void OnEvent(CXmlObjectBase* source, IEventSink::MsgType type, void* data) override;
    virtual CXmlObjectBase* GetBase() = 0;
    virtual void ToXmlFile(char const* path, bool declaration = true, bool formatted = true,
                           XmlEncoding encoding = XmlEncoding_UTF8, EOLType eol = EOLType_LF,
                           CXmlSerializationContext const& context = CXmlSerializationContext::m_defaultContext,
                           CompressionType compression = CompressionType_None) const;
    virtual void ToFastInfosetFile(char const* path, FInfoDecl declaration = FInfoDecl_10_Encoding,
                                   CXmlSerializationContext const& context = CXmlSerializationContext::m_defaultContext,
                                   CompressionType compression = CompressionType_None) const;
    virtual std::string ToXml(bool declaration = true, bool formatted = true, EOLType eol = EOLType_LF,
                              CXmlSerializationContext const& context = CXmlSerializationContext::m_defaultContext) const;
    virtual CBinaryData ToXmlStream(bool declaration = true, bool formatted = true,
                                    XmlEncoding encoding = XmlEncoding_UTF8, EOLType eol = EOLType_LF,
                                    CXmlSerializationContext const& context = CXmlSerializationContext::m_defaultContext,
                                    CompressionType compression = CompressionType_None) const;
    virtual CBinaryData ToFastInfosetStream(FInfoDecl declaration = FInfoDecl_10_Encoding,
                                            CXmlSerializationContext const& context = CXmlSerializationContext::m_defaultContext,
                                            CompressionType compression = CompressionType_None) const;
    virtual void FromXmlFile(char const* path,
                             CXmlSerializationContext const& context = CXmlSerializationContext::m_defaultContext);
    virtual void FromXml(char const* xml,
                         CXmlSerializationContext const& context = CXmlSerializationContext::m_defaultContext);
    virtual void FromXml(wchar_t const* xml,
                         CXmlSerializationContext const& context = CXmlSerializationContext::m_defaultContext);
    virtual void FromXmlStream(unsigned char* data, unsigned long length,
                               CXmlSerializationContext const& context = CXmlSerializationContext::m_defaultContext);
    virtual void FromXmlStream(CBinaryData const& data,
                               CXmlSerializationContext const& context = CXmlSerializationContext::m_defaultContext);
    virtual void FromXmlElement(CXmlElement const* element,
                                CXmlSerializationContext const& context = CXmlSerializationContext::m_defaultContext);
    virtual void FromXmlElement(CElement const* element,
                                CXmlSerializationContext const& context = CXmlSerializationContext::m_defaultContext);
    virtual ~CXmlObjectBase();
    // The namespace URI of the object's own tag when it is the root.
    virtual std::string GetTargetNamespace() const = 0;
    // The namespace handed to child entries on input.
    virtual std::string GetNamespace() const = 0;

protected:
    virtual void AttributesToXml_Int(CXmlWriter* writer, CXmlSerializationContext const& context) const;
    virtual void ToXml_Int(CXmlWriter* writer, bool root, char const* ns, CXmlSerializationContext const& context,
                           bool isOptional) const = 0;
    virtual CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* cursor,
                                     CXmlSerializationContext const& context, bool isOptional) = 0;

public:
    long AddRef();
    // Destroys the object when the count comes to exactly 0; an object that
    // was never counted goes to -1 and lives on.
    long Release();
    std::string const& GetElementName() const { return m_elementName; }
    void SetElementName(char const* name) { m_elementName = name ? name : ""; }
    CXmlObjectBase const* GetBase() const { return const_cast<CXmlObjectBase*>(this)->GetBase(); }

    // Trampolines through which metadata classes reach the protected slots.
    static void AttributesToXml_Int(CXmlObjectBase const* object, CXmlWriter* writer,
                                    CXmlSerializationContext const& context);
    static void ToXml_Int(CXmlObjectBase const* object, CXmlWriter* writer, bool root, char const* ns,
                          CXmlSerializationContext const& context, bool isOptional);
    static CXmlElement* FromXml_Int(CXmlObjectBase* object, CXmlElement* parent, CXmlElement* cursor,
                                    CXmlSerializationContext const& context);
    // The same, for readers that must say whether the content is optional.
    static CXmlElement* FromXml_Int(CXmlObjectBase* object, CXmlElement* parent, CXmlElement* cursor,
                                    CXmlSerializationContext const& context, bool isOptional);

    // The CXmlObjectHelper tests in the form generated code calls them; they
    // use no member of the object. A null text reads as the empty one.
    bool IsNamespaceValid(char const* ns, char const* restriction, char const* targetNamespace) const;
    void TestNamespace(char const* ns, char const* restriction, char const* targetNamespace) const;
    bool DoesElementNameMatch(CXmlSerializationContext const& context, CXmlElement const* element, char const* name,
                              char const* ns) const;

protected:
    // Guards and choice book-keeping for generated property setters. The
    // selector names the chosen alternative of an xs:choice, empty for none;
    // a failing guard leaves it as it was.
    void Throw_IfPropertyIsNull(CXmlObjectBase* value, char const* propertyName);
    void Throw_IfElementNameDiffers(CXmlObjectBase* value, char const* expectedName);
    // Confirms a selection already made; it never makes one.
    void Choice_SetElementValid(bool valid, char const* propertyName, std::string& selected);
    // For single-valued alternatives; a null value clears the property.
    void Choice_SelectElement(char const* propertyName, CXmlObjectBase* value, std::string& selected);
    // For alternatives held in a collection, with the collection's new count.
    void Choice_CollectionChanged(char const* propertyName, long count, std::string& selected);
    // Reads a collection alternative of a choice unless an earlier one took
    // elements (count above 0); advances the cursor and count when it took some.
    void Choice_Read_Collection(CXmlCollectionBase* collection, CXmlElement* parent, CXmlElement*& cursor,
                                long& count, CXmlSerializationContext const& context);

    // The collection events, one per IEventSink::MsgType; the source given to
    // the sink is the collection. Only collections fire them.
    static void FireOnCollectionChangeEvent(IEventSink* sink, CXmlCollectionBase* collection);
    static void FireOnCollectionAddEvent(IEventSink* sink, CXmlCollectionBase* collection, void* item);
    static void FireOnCollectionAddCompleteEvent(IEventSink* sink, CXmlCollectionBase* collection, void* item);
    // The index reaches the sink as a pointer to an int, null for -1.
    static void FireOnCollectionRemoveEvent(IEventSink* sink, CXmlCollectionBase* collection, int index);
    static void FireOnCollectionRemoveCompleteEvent(IEventSink* sink, CXmlCollectionBase* collection, int index);

private:
    static void Destroy(CXmlObjectBase* object);

    std::string m_elementName;
    CKDCriticalSection m_lock;
    long m_refCount = 0;
    // Links the objects that wait for Destroy on this thread.
    CXmlObjectBase* m_nextToDestroy = nullptr;
};

// ---------------------------------------------------------------------------
// The base of generated classes: walks the class's metadata tables.
// ---------------------------------------------------------------------------

class CXmlGeneratedClass : public CXmlObjectBase {
public:
    ~CXmlGeneratedClass() override;

    // Frees the tables of a class; they can be rebuilt afterwards.
    static void CleanMetaData(KdBindData::CParentElementInfo*& classInfo, KdBindData::CElementInfo**& elements,
                              KdBindData::CAttributeInfo**& attributes);

    // The contract with generated code.
    virtual void AccessProperty(int propertyId, bool readAccess, KdVariant& value) = 0;
    virtual KdBindData::CParentElementInfo* GetClassInfo() const = 0;
    virtual KdBindData::CElementInfo** GetClassElementInfo() const = 0;
    virtual KdBindData::CAttributeInfo** GetClassAttributeInfo() const = 0;
    virtual void Init() = 0;

    void ReadProperty(int propertyId, KdVariant& value) const;
    int GetClassElementInfoCount() const;
    bool IsElementInList(CXmlSerializationContext const& context, CXmlElement* element) const;
    bool DoesElementContainOptionalElements() const;
    void ProcessAttributesToXml(CXmlSerializationContext const& context, KdBindData::CElementInfo** elements,
                                KdBindData::CAttributeInfo** attributes, CXmlWriter* writer) const;
    void ProcessElementSeqToXml(CXmlSerializationContext const& context, KdBindData::CElementInfo** elements,
                                CXmlWriter* writer) const;
    void ProcessElementAllToXml(CXmlSerializationContext const& context, KdBindData::CElementInfo** elements,
                                CXmlWriter* writer) const;
    void ProcessElementChoiceToXml(CXmlSerializationContext const& context, KdBindData::CElementInfo** elements,
                                   CXmlWriter* writer, bool isOptional) const;

    // The input walks; each returns the cursor: the next child not consumed.
    void ProcessAttributesFromXml(CXmlSerializationContext const& context, CXmlElement* element,
                                  bool rejectUnknown);
    CXmlElement* ProcessElementSeqFromXml(CXmlSerializationContext const& context, CXmlElement* parent,
                                          CXmlElement* cursor, KdBindData::XmlElementType ownerType);
    CXmlElement* ProcessElementAllFromXml(CXmlSerializationContext const& context, CXmlElement* parent,
                                          CXmlElement* cursor, KdBindData::XmlElementType ownerType);
    CXmlElement* ProcessElementChoiceFromXml(CXmlSerializationContext const& context, CXmlElement* parent,
                                             CXmlElement* cursor, KdBindData::XmlElementType ownerType,
                                             bool isOptional);

protected:
    void AttributesToXml_Int(CXmlWriter* writer, CXmlSerializationContext const& context) const override;
    void ToXml_Int(CXmlWriter* writer, bool root, char const* ns, CXmlSerializationContext const& context,
                   bool isOptional) const override;
    CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& context,
                             bool isOptional) override;
};

// ---------------------------------------------------------------------------
// The base of every collection: items' name and namespace, occurs and
// listeners. A collection is itself an object, so metadata reads and writes
// it through the same slots as any child.
// ---------------------------------------------------------------------------

class CXmlCollectionBase : public CXmlObjectBase {
public:
    CXmlCollectionBase();
    CXmlCollectionBase(char const* elementName, char const* ns, int minOccurs, int maxOccurs);

    using CXmlObjectBase::GetBase;
    CXmlObjectBase* GetBase() override { return this; }
    // A collection has no tag of its own: asking for one is a logic error.
    std::string GetTargetNamespace() const override;
    std::string GetNamespace() const override { return m_namespace; }

    virtual int GetCount() const = 0;
    virtual void Clear() = 0;
    virtual void Remove(int index) = 0;
    // Checks the count against min and max occurs, unless the context ignores
    // collection counts.
    virtual void ValidateCount(CXmlSerializationContext const& context) const;

    int GetMinOccurs() const { return m_minOccurs; }
    int GetMaxOccurs() const { return m_maxOccurs; }

    // Listeners are not owned; one may be added more than once and then
    // hears each event as often. Removing takes out every occurrence.
    void AddEventListener(IEventSink* listener);
    void RemoveEventListener(IEventSink* listener);
    // Each tells every listener, in the order they were added.
    void FireOnCollectionChange();
    void FireOnCollectionAdd(void* item);
    void FireOnCollectionAddComplete(void* item);
    void FireOnCollectionRemove(int index);
    void FireOnCollectionRemoveComplete(int index);

private:
    template <class Fire, class... Data>
    void FireToListeners(Fire fire, Data... data);

    std::string m_namespace;
    std::vector<IEventSink*> m_listeners;
    int m_minOccurs = 0;
    int m_maxOccurs = -1;  // -1: unbounded
};

// ---------------------------------------------------------------------------
// A doubly linked list of counted objects: the base of collections of
// generated classes. Appending and walking cost the same for every item;
// reaching an item by index walks from the head.
//
// Every insertion tells the listeners, in this order: add (the list has not
// changed yet, so a listener that throws stops the insertion), add complete,
// change. A removal tells: remove, remove complete, change, with -1 as the
// index. A listener that throws later than the first event leaves the change
// made. Listeners must not change the list that is telling them.
//
// A concrete collection supplies ToXml_Int and FromXml_Int: it writes each
// item through the item's own ToXml_Int, and reads consecutive elements that
// DoesElementNameMatch its element name into new items that it appends.
// ---------------------------------------------------------------------------

class CXmlCollection : public CXmlCollectionBase {
public:
    // A node holds one counted reference on its item; the item may be null.
    struct CNode {
        CXmlObjectBase* item;
        CNode* next;  // towards the tail
        CNode* prev;  // towards the head
    };

    CXmlCollection();
    CXmlCollection(char const* elementName, char const* ns, int minOccurs, int maxOccurs);
    // Nodes are owned: a copy would free them twice.
    CXmlCollection(CXmlCollection const&) = delete;
    CXmlCollection& operator=(CXmlCollection const&) = delete;
    // Removes every item, with the events of each removal.
    ~CXmlCollection() override;

    int GetCount() const override { return m_count; }
    void Clear() override;
    void Remove(int index) override;

    CNode* GetHeadNode() const { return m_head; }
    CNode* GetTailNode() const { return m_tail; }
    CNode* GetNodeAtIndex(int index) const;
    // The node whose item is the same object as item, seen through GetBase.
    CNode* GetNodeForItem(CXmlObjectBase const* item) const;
    // The node must belong to this list; a null node is ignored.
    void RemoveNode(CNode* node);
    void AppendItem(CXmlObjectBase* item);
    void PrependItem(CXmlObjectBase* item);
    // A null existing item appends.
    void AddBeforeItem(CXmlObjectBase const* existing, CXmlObjectBase* item);
    // A null existing item prepends.
    void AddAfterItem(CXmlObjectBase const* existing, CXmlObjectBase* item);
    // Index 0 to GetCount(); GetCount() appends.
    void AddItemAt(int index, CXmlObjectBase* item);

protected:
    // Hands every item's attributes to the open tag: what a collection of
    // pseudo children does for its enclosing element.
    void AttributesToXml_Int(CXmlWriter* writer, CXmlSerializationContext const& context) const override;

private:
    // The second half of an insertion, after the add event: links item in
    // front of before (at the tail for null) and tells the listeners.
    void LinkAndAnnounce(CXmlObjectBase* item, CNode* before);
    // Frees every node without events.
    void ReleaseAllNodes() noexcept;

    CNode* m_head = nullptr;
    CNode* m_tail = nullptr;
    int m_count = 0;
};

// ---------------------------------------------------------------------------
// The base of collections of primitive values: the items' kind, facets,
// whitespace rule and output format. It reads every consecutive element of
// its name and namespace; the concrete class converts each text.
// ---------------------------------------------------------------------------

class CXmlTypeCollection : public CXmlCollectionBase {
public:
    // The facets come in the order of CPrimitiveRestrictions. The format is
    // not copied and must outlive the collection.
    CXmlTypeCollection(ItemType itemType, char const* elementName, char const* ns, int minOccurs, int maxOccurs,
                       char const* pattern, int minLength, int maxLength, char const* minInclusive,
                       char const* maxInclusive, char const* minExclusive, char const* maxExclusive, int length,
                       CWhitespaceUtils::WhitespaceRule whitespaceRule, char const* format);

    // Converts one element's text into a new item at the end.
    virtual void AddFromString(std::string text) = 0;

    ItemType GetItemType() const { return m_itemType; }
    CPrimitiveRestrictions const& GetRestrictions() const { return m_restrictions; }
    char const* GetFormat() const { return m_format; }
    CWhitespaceUtils::WhitespaceRule GetWhitespaceRule() const { return m_whitespaceRule; }

protected:
    // Takes every consecutive element of the collection's name; more than
    // max occurs too, since only ValidateCount judges the count.
    CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& context,
                             bool isOptional) override;

private:
    CPrimitiveRestrictions m_restrictions;
    ItemType m_itemType;
    char const* m_format;  // not owned
    CWhitespaceUtils::WhitespaceRule m_whitespaceRule;
};

// ---------------------------------------------------------------------------
// Collections of primitive values, one class per kind: the property type of
// a repeating element of simple type. Items are plain values in a vector.
//
// Adding tells the listeners first (with a pointer to the value), then tests
// the index ("Index out of range") and the facets, inserts, and tells them
// the add is complete and the collection changed. Removing tells them of the
// removal before the index is tested, and reports 0 as the index of the
// completed removal whatever it was. Clear removes item by item, with all
// events. On output the collection checks its count itself and writes one
// element per item in its own namespace; on input every item goes through
// AddFromString, so the facets are checked at each one.
// ---------------------------------------------------------------------------

// The stored type and the argument type of Add and AddAt, per kind.
template <ItemType Kind> struct CValueCollectionTraits;
#define KDBIND_VALUE_COLLECTION_TRAITS(kind, stored, arg)                       \
    template <> struct CValueCollectionTraits<kind> {                           \
        typedef stored Stored;                                                  \
        typedef arg Arg;                                                        \
    }
KDBIND_VALUE_COLLECTION_TRAITS(ItemType_i1, char, char);
KDBIND_VALUE_COLLECTION_TRAITS(ItemType_i2, short, short);
KDBIND_VALUE_COLLECTION_TRAITS(ItemType_i4, long, long);
KDBIND_VALUE_COLLECTION_TRAITS(ItemType_i8, long long, long long);
KDBIND_VALUE_COLLECTION_TRAITS(ItemType_ui1, unsigned char, unsigned char);
KDBIND_VALUE_COLLECTION_TRAITS(ItemType_ui2, unsigned short, unsigned short);
KDBIND_VALUE_COLLECTION_TRAITS(ItemType_ui4, unsigned long, unsigned long);
KDBIND_VALUE_COLLECTION_TRAITS(ItemType_ui8, unsigned long long, unsigned long long);
KDBIND_VALUE_COLLECTION_TRAITS(ItemType_r4, float, float);
KDBIND_VALUE_COLLECTION_TRAITS(ItemType_r8, double, double);
KDBIND_VALUE_COLLECTION_TRAITS(ItemType_boolean, bool, bool);
KDBIND_VALUE_COLLECTION_TRAITS(ItemType_string, std::string, std::string);
KDBIND_VALUE_COLLECTION_TRAITS(ItemType_hexBinary, CBinaryData, CBinaryData const&);
KDBIND_VALUE_COLLECTION_TRAITS(ItemType_base64Binary, CBinaryData, CBinaryData const&);
KDBIND_VALUE_COLLECTION_TRAITS(ItemType_year, unsigned short, unsigned short);
KDBIND_VALUE_COLLECTION_TRAITS(ItemType_month, unsigned char, unsigned char);
KDBIND_VALUE_COLLECTION_TRAITS(ItemType_day, unsigned char, unsigned char);
KDBIND_VALUE_COLLECTION_TRAITS(ItemType_decimal, CDecimal, CDecimal const&);
KDBIND_VALUE_COLLECTION_TRAITS(ItemType_integer, CBigInteger, CBigInteger const&);
KDBIND_VALUE_COLLECTION_TRAITS(ItemType_duration, CDateTimeSpan, CDateTimeSpan const&);
#undef KDBIND_VALUE_COLLECTION_TRAITS

template <ItemType Kind>
class CValueCollection : public CXmlTypeCollection, private CInstanceMonitor {
public:
    typedef typename CValueCollectionTraits<Kind>::Stored Stored;
    typedef typename CValueCollectionTraits<Kind>::Arg Arg;

    // The facets come in the order of CPrimitiveRestrictions; null texts read
    // as empty ones. The format is not copied and must outlive the collection.
    CValueCollection(char const* elementName, char const* ns, int minOccurs, int maxOccurs, char const* pattern,
                     int minLength, int maxLength, char const* minInclusive, char const* maxInclusive,
                     char const* minExclusive, char const* maxExclusive, int length,
                     CWhitespaceUtils::WhitespaceRule whitespaceRule, char const* format);

    int GetCount() const override { return static_cast<int>(m_items.size()); }
    void Clear() override;
    void Remove(int index) override;
    void AddFromString(std::string text) override;
    void Add(Arg value);
    void AddAt(int index, Arg value);
    Stored Item(int index) const;

protected:
    // The flags and the namespace argument play no part.
    void ToXml_Int(CXmlWriter* writer, bool root, char const* ns, CXmlSerializationContext const& context,
                   bool isOptional) const override;

private:
    std::vector<Stored> m_items;
};

#define KDBIND_VALUE_COLLECTION(name, kind)                                     \
    extern template class CValueCollection<kind>;                               \
    class name : public CValueCollection<kind> {                                \
    public:                                                                     \
        using CValueCollection<kind>::CValueCollection;                         \
    }
KDBIND_VALUE_COLLECTION(Ci1Col, ItemType_i1);
KDBIND_VALUE_COLLECTION(Ci2Col, ItemType_i2);
KDBIND_VALUE_COLLECTION(Ci4Col, ItemType_i4);
KDBIND_VALUE_COLLECTION(Ci8Col, ItemType_i8);
KDBIND_VALUE_COLLECTION(Cui1Col, ItemType_ui1);
KDBIND_VALUE_COLLECTION(Cui2Col, ItemType_ui2);
KDBIND_VALUE_COLLECTION(Cui4Col, ItemType_ui4);
KDBIND_VALUE_COLLECTION(Cui8Col, ItemType_ui8);
KDBIND_VALUE_COLLECTION(Cr4Col, ItemType_r4);
KDBIND_VALUE_COLLECTION(Cr8Col, ItemType_r8);
KDBIND_VALUE_COLLECTION(CbooleanCol, ItemType_boolean);
KDBIND_VALUE_COLLECTION(CstringCol, ItemType_string);
KDBIND_VALUE_COLLECTION(ChexBinaryCol, ItemType_hexBinary);
KDBIND_VALUE_COLLECTION(Cbase64BinaryCol, ItemType_base64Binary);
KDBIND_VALUE_COLLECTION(CyearCol, ItemType_year);
KDBIND_VALUE_COLLECTION(CmonthCol, ItemType_month);
KDBIND_VALUE_COLLECTION(CdayCol, ItemType_day);
KDBIND_VALUE_COLLECTION(CdecimalCol, ItemType_decimal);
KDBIND_VALUE_COLLECTION(CintegerCol, ItemType_integer);
KDBIND_VALUE_COLLECTION(CdurationCol, ItemType_duration);
#undef KDBIND_VALUE_COLLECTION

// The date lists share one base holding CDateTime items. A leaf accepts only
// dates of its own CDateTime type, and tests that and the facets before the
// add event and the index; on output every leaf tells the writer
// ItemType_datetime, whatever its own kind.
class CdatetimeBaseCol : public CXmlTypeCollection {
public:
    CdatetimeBaseCol(ItemType itemType, char const* elementName, char const* ns, int minOccurs, int maxOccurs,
                     char const* pattern, int minLength, int maxLength, char const* minInclusive,
                     char const* maxInclusive, char const* minExclusive, char const* maxExclusive, int length,
                     CWhitespaceUtils::WhitespaceRule whitespaceRule, char const* format);

    int GetCount() const override { return static_cast<int>(m_items.size()); }
    void Clear() override;
    void Remove(int index) override;
    virtual void Add(CDateTime const& value);
    virtual void AddAt(int index, CDateTime const& value) = 0;
    virtual CDateTime Item(int index) const;
    virtual std::string ItemToString(CDateTime const& value) const = 0;

protected:
    void ToXml_Int(CXmlWriter* writer, bool root, char const* ns, CXmlSerializationContext const& context,
                   bool isOptional) const override;
    // What follows a leaf's own tests: the add event, the index test, the
    // insertion and the completion events.
    void BaseAddAt(int index, CDateTime const& value);

private:
    std::vector<CDateTime> m_items;
};

template <ItemType Kind>
class CDateCollection : public CdatetimeBaseCol, private CInstanceMonitor {
public:
    // The arguments of every value list.
    CDateCollection(char const* elementName, char const* ns, int minOccurs, int maxOccurs, char const* pattern,
                    int minLength, int maxLength, char const* minInclusive, char const* maxInclusive,
                    char const* minExclusive, char const* maxExclusive, int length,
                    CWhitespaceUtils::WhitespaceRule whitespaceRule, char const* format);

    void AddFromString(std::string text) override;
    using CdatetimeBaseCol::Add;
    // Refuses a date of another CDateTime type with CKdInvalidParamException.
    void AddAt(int index, CDateTime const& value) override;
    std::string ItemToString(CDateTime const& value) const override;
};

#define KDBIND_DATE_COLLECTION(name, kind)                                      \
    extern template class CDateCollection<kind>;                                \
    class name : public CDateCollection<kind> {                                 \
    public:                                                                     \
        using CDateCollection<kind>::CDateCollection;                           \
    }
KDBIND_DATE_COLLECTION(CdatetimeCol, ItemType_datetime);
KDBIND_DATE_COLLECTION(CdateCol, ItemType_date);
KDBIND_DATE_COLLECTION(CtimeCol, ItemType_time);
KDBIND_DATE_COLLECTION(CyearMonthCol, ItemType_yearMonth);
KDBIND_DATE_COLLECTION(CmonthDayCol, ItemType_monthDay);
#undef KDBIND_DATE_COLLECTION

// ---------------------------------------------------------------------------
// The base of generated class factories: the xsi:type of an element, which
// tells a factory which class to make for a substitutable element.
// ---------------------------------------------------------------------------

class CClassfactoryBase {
public:
    virtual ~CClassfactoryBase() = default;

    // The local part of xsi:type: behind the first colon, else all of it; ""
    // when the attribute is absent.
    static std::string GetElementType(CXmlElement* element);
    // The namespace of xsi:type's prefix, looked up among the document's
    // prefix declarations. Without a prefix, or with one the document does
    // not declare, the element's own namespace stands in.
    static std::string GetElementTypeNamespaceUri(CXmlElement* element);
};

// ---------------------------------------------------------------------------
// Untyped content: what a document holds under xs:any and xs:anyAttribute,
// and generic trees that an application builds by hand or makes from any
// object. Each keeps the wildcard's namespace restriction ("##any",
// "##other", "##local", "##targetNamespace" or a list of URIs) and the
// target namespace it refers to, and tests content against them when it is
// added.
// ---------------------------------------------------------------------------

// One untyped attribute.
class CAttribute : public CXmlObjectBase, private CInstanceMonitor {
public:
    CAttribute(char const* name, char const* value, char const* ns);

    using CXmlObjectBase::GetBase;
    CXmlObjectBase* GetBase() override { return this; }
    std::string GetTargetNamespace() const override { return m_namespace; }
    std::string GetNamespace() const override { return m_namespace; }

    std::string const& GetName() const { return m_name; }
    void SetName(char const* name);
    std::string const& GetValue() const { return m_value; }
    void SetValue(char const* value) { m_value = value ? value : ""; }
    void SetNamespace(char const* ns);

    CSmartPtr<CAttribute> Clone() const;
    // Hooks for the setters; they do nothing.
    void FireOnChangeName(char const* name);
    void FireOnChangeNamespace(char const* ns);

protected:
    void ToXml_Int(CXmlWriter* writer, bool root, char const* ns, CXmlSerializationContext const& context,
                   bool isOptional) const override;
    // Attributes are read by their collection: always fails.
    CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& context,
                             bool isOptional) override;

private:
    std::string m_name;
    std::string m_value;
    std::string m_namespace;
};

// An xs:anyAttribute, or the attributes of a CElement. The namespace of the
// collection is the one new attributes get when none is given, and also
// what GetTargetNamespace answers.
class CAttributeCol : public CXmlCollection, private CInstanceMonitor {
public:
    using CNode = CXmlCollection::CNode;

    // An empty namespace with a restriction led by a URI takes that URI.
    CAttributeCol(char const* ns, char const* restriction, char const* targetNamespace);

    std::string GetTargetNamespace() const override { return GetNamespace(); }
    std::string const& GetNamespaceRestriction() const { return m_restriction; }
    std::string const& GetRestrictionTargetNamespace() const { return m_targetNamespace; }

    // Each tests the namespace against the restriction before adding.
    CSmartPtr<CAttribute> Add(char const* name);
    CSmartPtr<CAttribute> Add(char const* name, char const* value);
    CSmartPtr<CAttribute> Add(char const* name, char const* value, char const* ns);
    // Adds the attribute as it is, without a test.
    CSmartPtr<CAttribute> Add(CAttribute* attribute);
    CSmartPtr<CAttribute> Item(int index) const;
    CNode* begin() const { return GetHeadNode(); }
    CNode* end() const { return nullptr; }
    CSmartPtr<CAttributeCol> Clone() const;

protected:
    // Writes every attribute onto the open tag; no count check.
    void ToXml_Int(CXmlWriter* writer, bool root, char const* ns, CXmlSerializationContext const& context,
                   bool isOptional) const override;
    // Takes every attribute of parent, without the filter that generated
    // classes apply, and fails on one outside the restriction; the cursor is
    // returned as given.
    CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& context,
                             bool isOptional) override;

private:
    std::string m_restriction;
    std::string m_targetNamespace;
};

class CElement;

// A repeating xs:any, or the children of a CElement. Whatever restriction it
// is given, the collection itself accepts elements of any namespace on
// input; a restriction that is a keyword becomes the namespace of elements
// made by Add(name). Its occurs are always 0 and unbounded.
class CElementCol : public CXmlCollection, private CInstanceMonitor {
public:
    using CNode = CXmlCollection::CNode;

    CElementCol(char const* ns, char const* restriction, char const* targetNamespace, int minOccurs, int maxOccurs);

    std::string GetTargetNamespace() const override { return m_targetNamespace; }
    std::string GetNamespace() const override { return m_targetNamespace; }
    std::string const& GetNamespaceRestriction() const { return m_restriction; }
    std::string const& GetNewElementNamespace() const { return m_newElementNamespace; }

    // In the collection's namespace for new elements; fails without one.
    CSmartPtr<CElement> Add(char const* name);
    CSmartPtr<CElement> Add(char const* name, char const* ns);
    CSmartPtr<CElement> Add(CElement* element);
    CSmartPtr<CElement> Item(int index) const;
    CNode* begin() const { return GetHeadNode(); }
    CNode* end() const { return nullptr; }
    // Reads the run of elements that have exactly this name and namespace.
    virtual CXmlElement* FromXmlLockElementName_Int(std::string name, std::string ns, CXmlElement* parent,
                                                    CXmlElement* cursor, CXmlSerializationContext const& context);
    CSmartPtr<CElementCol> Clone() const;

protected:
    void ToXml_Int(CXmlWriter* writer, bool root, char const* ns, CXmlSerializationContext const& context,
                   bool isOptional) const override;
    // Takes elements from the cursor on while the restriction lets them in.
    CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& context,
                             bool isOptional) override;

private:
    friend class CElement;

    std::string m_restriction;  // always "##any"
    std::string m_newElementNamespace;
    std::string m_targetNamespace;
};

// One untyped element: name, namespace, text, attributes and children. The
// element must fit its own restriction; its content is open. Mixed content
// is not kept in place: the text is written after the children.
//
// Reading, writing, copying, cloning and freeing a tree walk it without
// recursion, so that any depth that the parser accepts fits on the stack.
class CElement : public CXmlObjectBase, private CInstanceMonitor {
public:
    // No namespace, restriction "##any".
    explicit CElement(char const* name);
    // The namespace is its own restriction; a keyword is refused.
    CElement(char const* name, char const* ns);
    CElement(char const* name, char const* ns, char const* restriction, char const* targetNamespace);
    // The tree of the object's document, written under the given default
    // namespace (null for none).
    CElement(CXmlObjectBase* object, char const* defaultNamespace);
    ~CElement() override;

    using CXmlObjectBase::GetBase;
    CXmlObjectBase* GetBase() override { return this; }
    std::string GetTargetNamespace() const override { return m_namespace; }
    std::string GetNamespace() const override { return m_namespace; }

    // Reads the document element of the text into this element, on the
    // default context; the context argument is not used.
    void FromXml(char const* xml,
                 CXmlSerializationContext const& context = CXmlSerializationContext::m_defaultContext) override;
    using CXmlObjectBase::FromXml;
    // Only tests: the element and its subtree against a new restriction.
    // Failure of an element's own namespace is thrown as a pointer to a new
    // CKdInvalidNamespaceException, which the catcher deletes.
    void SetNamespaceRestrictions(char const* restriction, char const* targetNamespace);
    // Replaces everything but the restriction with a copy of the parsed tree.
    void CopyXmlElement(CXmlElement* element);
    // The default namespace is not cloned.
    CSmartPtr<CElement> Clone() const;

    std::string const& GetName() const { return m_name; }
    void SetName(char const* name);
    std::string const& GetText() const { return m_text; }
    void SetText(char const* text);
    // Tested against the element's restriction.
    void SetNamespace(char const* ns);
    std::string const& GetNamespaceRestriction() const { return m_restriction; }
    std::string const& GetRestrictionTargetNamespace() const { return m_targetNamespace; }
    std::string const& GetDefaultNamespace() const { return m_defaultNamespace; }
    void SetDefaultNamespace(char const* ns) { m_defaultNamespace = ns ? ns : ""; }
    CSmartPtr<CAttributeCol> GetAttributes() const { return m_attributes; }
    CSmartPtr<CElementCol> GetChildren() const { return m_children; }

    // Hooks for the setters; they do nothing.
    void FireOnChangeName(char const* name);
    void FireOnChangeText(char const* text);
    void FireOnChangeNamespace(char const* ns);

protected:
    void ToXml_Int(CXmlWriter* writer, bool root, char const* ns, CXmlSerializationContext const& context,
                   bool isOptional) const override;
    // Reads the element at the cursor itself; parent is not used. Returns
    // the cursor unchanged when the restriction refuses the element.
    CXmlElement* FromXml_Int(CXmlElement* parent, CXmlElement* cursor, CXmlSerializationContext const& context,
                             bool isOptional) override;

private:
    friend class CElementCol;

    void Init(char const* name, char const* ns, char const* restriction, char const* targetNamespace);
    // The walks behind the slots. Each keeps its stack on the heap.
    static void WriteElements(CElementCol const& elements, CXmlWriter* writer, char const* ns,
                              CXmlSerializationContext const& context);
    // Attributes and descendants of source into element, whose own name,
    // namespace and text the caller takes.
    static void ReadContent(CElement& element, CXmlElement* source, CXmlSerializationContext const& context);
    // Frees the elements whose last holder is this collection level by level.
    static void ReleaseLevelByLevel(CSmartPtr<CElementCol> elements);
    // The subtree rendered apart under the default namespace, inserted raw.
    void ToXmlWithDefaultNamespace(CXmlWriter* writer) const;

    std::string m_name;
    std::string m_text;
    std::string m_namespace;
    std::string m_restriction;
    std::string m_targetNamespace;
    CSmartPtr<CAttributeCol> m_attributes;  // never null but in a dying element
    CSmartPtr<CElementCol> m_children;      // never null but in a dying element
    std::string m_defaultNamespace;
};

} // namespace KdBind

#endif
