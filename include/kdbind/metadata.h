// KdBind metadata classes: what generated classes declare about their own
// element, their children and their attributes. Generated code calls these
// constructors directly; their argument lists are the interface.
#ifndef KDBIND_METADATA_H
#define KDBIND_METADATA_H

#include <atomic>
#include <mutex>
#include <string>

#include "kdbind/binding.h"

namespace KdBindData {

using KdBind::CXmlElement;
using KdBind::CXmlGeneratedClass;
using KdBind::CXmlObjectBase;
using KdBind::CXmlSerializationContext;
using KdBind::CXmlWriter;

// Describes a generated class's own element. One per class.
class CParentElementInfo {
public:
    CParentElementInfo(XmlElementGroupType groupType, XmlElementType elementType, char const* elementName,
                       char const* ns, int textPropertyId, bool rejectUnknownAttributes, bool writeTypeAttribute);
    virtual ~CParentElementInfo() = default;

    XmlElementGroupType GetGroupType() const { return m_groupType; }
    XmlElementType GetElementType() const { return m_elementType; }
    std::string const& GetElementName() const { return m_elementName; }
    std::string const& GetNamespace() const { return m_namespace; }
    int GetTextPropertyId() const { return m_textPropertyId; }
    bool GetRejectUnknownAttributes() const { return m_rejectUnknownAttributes; }
    bool GetWriteTypeAttribute() const { return m_writeTypeAttribute; }

private:
    XmlElementGroupType m_groupType;
    XmlElementType m_elementType;
    std::string m_elementName;
    std::string m_namespace;
    int m_textPropertyId;
    bool m_rejectUnknownAttributes;
    bool m_writeTypeAttribute;
};

// Makes the object of an optional child of one known generated class.
typedef CSmartPtr<CXmlObjectBase> (*CElementInfoFactory)(int classId, char const* elementName);
// Makes the object of a substitutable child from its element; null when no
// class fits the element.
typedef CSmartPtr<CXmlObjectBase> (*CElementInfoElementFactory)(KdBind::CXmlElement* element);

// Root of the element metadata family: one entry per child of a class's
// content model. Entries are shared by all objects of a class and never
// change after construction.
class CElementInfo {
public:
    // The generated functions that map an enumeration between int and text.
    using EnumToText = char const* (*)(int);
    using EnumFromText = int (*)(char const*);

    CElementInfo(char const* name, char const* ns, int propertyId);
    CElementInfo(char const* name, char const* ns, int propertyId, KdBind::ItemType itemType, char const* format,
                 KdBind::CWhitespaceUtils::WhitespaceRule whitespaceRule,
                 KdBind::CPrimitiveRestrictions const& restrictions);
    CElementInfo(CElementInfo const&) = delete;
    CElementInfo& operator=(CElementInfo const&) = delete;
    virtual ~CElementInfo() = default;

    // Writes the child; true when something was written.
    virtual bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                              CXmlWriter* writer) const = 0;
    // Consumes the child from the cursor on; what the result means depends
    // on the group the entry belongs to.
    virtual bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                CXmlElement* parent, CXmlElement** cursor, char const* ownerNamespace,
                                XmlElementType ownerType) = 0;
    // Whether a child that was or was not found is acceptable; all-groups only.
    virtual bool Validate(CXmlSerializationContext const& context, CXmlGeneratedClass const* object, bool found,
                          bool ownerIsElement) const = 0;
    // Forwards a pseudo child's attributes to the open tag; nothing by default.
    virtual void PseudoChildAttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                           CXmlWriter* writer) const;

    std::string const& GetElementName() const { return m_elementName; }
    std::string const& GetNamespace() const { return m_namespace; }
    int GetPropertyId() const { return m_propertyId; }

    // Whether the element is this entry's: local name, then namespace unless
    // the context ignores namespaces. A null element never is.
    bool IsThisElement(CXmlSerializationContext const& context, CXmlElement const* element) const;
    // The namespace an untyped element made from a wildcard starts out in.
    static std::string GetAnyDefaultNamespace(char const* spec, char const* ownerNamespace,
                                              char const* targetNamespace);

protected:
    bool ElementToXmlCls(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                         CXmlWriter* writer, bool isOptional) const;
    bool ElementToXmlCol(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                         CXmlWriter* writer) const;
    bool ElementToXmlPrim(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                          CXmlWriter* writer) const;
    bool ElementToXmlPrimOpt(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                             CXmlWriter* writer) const;
    bool ElementToXmlEnum(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                          CXmlWriter* writer, EnumToText toText) const;
    bool ElementToXmlEnumOpt(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                             CXmlWriter* writer, EnumToText toText) const;
    void CheckRestriction(KdBind::KdVariant const& value) const;
    void AccessProperty(CXmlGeneratedClass* object, bool readAccess, KdBind::KdVariant& value) const;
    void ReadProperty(CXmlGeneratedClass const* object, KdBind::KdVariant& value) const;
    static CXmlElement* FromXml_Int(CXmlObjectBase* object, CXmlElement* parent, CXmlElement* first,
                                    CXmlSerializationContext const& context, bool isOptional);
    static void AttributesToXml_Int(CXmlObjectBase const* object, CXmlWriter* writer,
                                    CXmlSerializationContext const& context);

    // Steps that the leaves of the three groups share.

    // ValidateCount unless the context ignores counts, then ElementToXmlCol.
    bool ElementToXmlCheckedCol(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                CXmlWriter* writer) const;
    // The attributes of a pseudo child (element type 1 only) go on the open tag.
    void ForwardPseudoChildAttributes(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                      CXmlWriter* writer, XmlElementType elementType, bool isCollection) const;
    // The text of the element at the cursor into the property; the cursor
    // moves past it.
    void ReadPrimitive(CXmlGeneratedClass* object, CXmlElement** cursor) const;
    void ReadEnumeration(CXmlGeneratedClass* object, CXmlElement** cursor, EnumFromText fromText) const;
    // A mandatory object is held by the owner already; reads it from the
    // element at the cursor and moves past it.
    void ReadTaggedMandatory(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                             CXmlElement** cursor) const;
    // Reads the mandatory object from the cursor on; returns where it stopped.
    CXmlElement* ReadPseudoMandatory(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                     CXmlElement* parent, CXmlElement* cursor) const;

    // How an optional object leaf answers and stores: sequences report done
    // even when they took nothing and store after reading; choices store
    // first and clear the store again when a pseudo child took nothing.
    struct OptionalRules {
        bool resultWhenAbsent;
        bool storeBeforeRead;
        bool readAsOptional;  // a tagged child's own choice may stay empty
    };
    bool ReadOptionalCls(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                         CXmlElement** cursor, XmlElementType elementType, CElementInfoFactory factory, int classId,
                         OptionalRules rules) const;
    bool ReadOptionalAbsCls(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                            CXmlElement** cursor, CElementInfoElementFactory factory, OptionalRules rules) const;
    // When a collection read on input checks its count, unless the context
    // ignores counts.
    enum CountCheck { CountCheck_Never, CountCheck_Always, CountCheck_WhenConsumed };
    // Offers the cursor to the collection property, which takes as many
    // elements as it can; true when it took any.
    bool ReadCollection(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, CountCheck check) const;
    // The count check of a collection that has been read; returns consumed.
    static bool CheckCountAfterRead(CXmlSerializationContext const& context, KdBind::CXmlCollectionBase* collection,
                                    bool consumed, CountCheck check);
    // The same for a collection of untyped elements, locked to the entry's
    // name unless it is "AnyElement".
    bool ReadUntypedCollection(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                               CXmlElement* parent, CXmlElement** cursor, CountCheck check) const;
    // Reads the untyped element that the owner holds already, when the name
    // fits; returns where it stopped.
    CXmlElement* ReadUntypedMandatory(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                      CXmlElement* parent, CXmlElement* cursor) const;
    // Reads a new untyped element from the cursor on. True when it consumed
    // something and was stored; otherwise the property is cleared when
    // clearWhenAbsent is set and left alone if not.
    bool ReadUntypedOptional(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                             CXmlElement* parent, CXmlElement** cursor, char const* ownerNamespace,
                             std::string const& anyNamespaceSpec, std::string const& targetNamespace,
                             bool clearWhenAbsent) const;

    std::string m_elementName;
    std::string m_namespace;
    int m_propertyId;
    KdBind::CPrimitiveRestrictions m_restrictions;
    KdBind::ItemType m_itemType = KdBind::ItemType_invalid;
    char const* m_format = nullptr;  // not owned
    KdBind::CWhitespaceUtils::WhitespaceRule m_whitespaceRule = KdBind::CWhitespaceUtils::WhitespaceRule_None;
    bool m_hasPrimitiveInformation = false;
};

// ---------------------------------------------------------------------------
// Children of an xs:sequence: each entry is offered the cursor once and must
// find its element there or decide that it may be absent.
// ---------------------------------------------------------------------------

class CElementInfoSeq : public CElementInfo {
public:
    CElementInfoSeq(char const* name, char const* ns, int propertyId);
    CElementInfoSeq(char const* name, char const* ns, int propertyId, KdBind::ItemType itemType, char const* format,
                    KdBind::CWhitespaceUtils::WhitespaceRule whitespaceRule,
                    KdBind::CPrimitiveRestrictions const& restrictions);

    // Sequences have nothing to validate afterwards: throws.
    bool Validate(CXmlSerializationContext const& context, CXmlGeneratedClass const* object, bool found,
                  bool ownerIsElement) const override;

protected:
    // An optional child is done whether or not it was there, and an object
    // is stored once its content has been read.
    static constexpr OptionalRules kOptional{true, false, false};

    // Looks for a mandatory child of a tagged owner from the cursor on. True
    // when the cursor stands at it; false when it is missing and the context
    // lets that pass.
    bool FindMandatory(CXmlSerializationContext const& context, CXmlElement** cursor) const;
    [[noreturn]] void ThrowRequired() const;
};

// The collection leaves of a sequence: the property is a collection that
// takes as many elements as it can.
class CElementInfoSeqCol : public CElementInfoSeq {
public:
    CElementInfoSeqCol(char const* name, char const* ns, int propertyId);

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
};

// Kept for the interface; no leaf derives from it.
class CElementInfoSeqNonCol : public CElementInfoSeq {
protected:
    CElementInfoSeqNonCol(char const* name, char const* ns, int propertyId);
};

class CElementInfoSeqClsMnd : public CElementInfoSeq {
public:
    CElementInfoSeqClsMnd(char const* name, char const* ns, int propertyId, XmlElementType elementType,
                          CElementInfoFactory factory, int classId, bool contentRequired);

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
    void PseudoChildAttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                   CXmlWriter* writer) const override;

private:
    XmlElementType m_elementType;
    bool m_contentRequired;  // a pseudo child must consume at least one element
    // The owner holds a mandatory child already: nothing makes one here.
    [[maybe_unused]] CElementInfoFactory m_factory;
    [[maybe_unused]] int m_classId;
};

class CElementInfoSeqClsOpt : public CElementInfoSeq {
public:
    CElementInfoSeqClsOpt(char const* name, char const* ns, int propertyId, XmlElementType elementType,
                          CElementInfoFactory factory, int classId);

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
    void PseudoChildAttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                   CXmlWriter* writer) const override;

private:
    XmlElementType m_elementType;
    CElementInfoFactory m_factory;
    int m_classId;
};

class CElementInfoSeqClsCol : public CElementInfoSeqCol {
public:
    CElementInfoSeqClsCol(char const* name, char const* ns, int propertyId, XmlElementType elementType);

    void PseudoChildAttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                   CXmlWriter* writer) const override;

private:
    XmlElementType m_elementType;
};

class CElementInfoSeqAbsClsMnd : public CElementInfoSeq {
public:
    CElementInfoSeqAbsClsMnd(char const* name, char const* ns, int propertyId, XmlElementType elementType,
                             CElementInfoElementFactory factory);

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
    void PseudoChildAttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                   CXmlWriter* writer) const override;

private:
    XmlElementType m_elementType;  // output only: an abstract child is always read as tagged
    CElementInfoElementFactory m_factory;
};

class CElementInfoSeqAbsClsOpt : public CElementInfoSeq {
public:
    CElementInfoSeqAbsClsOpt(char const* name, char const* ns, int propertyId, XmlElementType elementType,
                             CElementInfoElementFactory factory);

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
    void PseudoChildAttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                   CXmlWriter* writer) const override;

private:
    XmlElementType m_elementType;
    CElementInfoElementFactory m_factory;
};

class CElementInfoSeqAbsClsCol : public CElementInfoSeqCol {
public:
    CElementInfoSeqAbsClsCol(char const* name, char const* ns, int propertyId, XmlElementType elementType);

    void PseudoChildAttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                   CXmlWriter* writer) const override;

private:
    XmlElementType m_elementType;
};

class CElementInfoSeqPrimMnd : public CElementInfoSeq {
public:
    CElementInfoSeqPrimMnd(char const* name, char const* ns, int propertyId, KdBind::ItemType itemType,
                           char const* format, KdBind::CWhitespaceUtils::WhitespaceRule whitespaceRule,
                           KdBind::CPrimitiveRestrictions const& restrictions);

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
};

class CElementInfoSeqPrimOpt : public CElementInfoSeq {
public:
    CElementInfoSeqPrimOpt(char const* name, char const* ns, int propertyId, KdBind::ItemType itemType,
                           char const* format, KdBind::CWhitespaceUtils::WhitespaceRule whitespaceRule,
                           KdBind::CPrimitiveRestrictions const& restrictions);

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
};

class CElementInfoSeqPrimCol : public CElementInfoSeqCol {
public:
    CElementInfoSeqPrimCol(char const* name, char const* ns, int propertyId);
};

class CElementInfoSeqEnumMnd : public CElementInfoSeq {
public:
    CElementInfoSeqEnumMnd(char const* name, char const* ns, int propertyId, char const* (*toText)(int),
                           int (*fromText)(char const*));

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;

private:
    EnumFromText m_fromText;
    EnumToText m_toText;
};

class CElementInfoSeqEnumOpt : public CElementInfoSeq {
public:
    CElementInfoSeqEnumOpt(char const* name, char const* ns, int propertyId, char const* (*toText)(int),
                           int (*fromText)(char const*));

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;

private:
    EnumToText m_toText;
    EnumFromText m_fromText;
};

class CElementInfoSeqEnumCol : public CElementInfoSeqCol {
public:
    CElementInfoSeqEnumCol(char const* name, char const* ns, int propertyId);
};

class CElementInfoSeqUntpdMnd : public CElementInfoSeq {
public:
    CElementInfoSeqUntpdMnd(char const* name, char const* ns, int propertyId, char const* anyNamespaceSpec,
                            char const* targetNamespace);

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;

private:
    std::string m_anyNamespaceSpec;
    std::string m_targetNamespace;
};

class CElementInfoSeqUntpdOpt : public CElementInfoSeq {
public:
    CElementInfoSeqUntpdOpt(char const* name, char const* ns, int propertyId, char const* anyNamespaceSpec,
                            char const* targetNamespace);

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;

private:
    std::string m_anyNamespaceSpec;
    std::string m_targetNamespace;
};

class CElementInfoSeqUntpdCol : public CElementInfoSeqCol {
public:
    CElementInfoSeqUntpdCol(char const* name, char const* ns, int propertyId);

    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
};

// ---------------------------------------------------------------------------
// Children of an xs:all: entries are offered elements in passes, in any
// order, each taking at most one; Validate decides afterwards what may be
// missing.
// ---------------------------------------------------------------------------

class CElementInfoAll : public CElementInfo {
public:
    CElementInfoAll(char const* name, char const* ns, int propertyId);
    CElementInfoAll(char const* name, char const* ns, int propertyId, KdBind::ItemType itemType, char const* format,
                    KdBind::CWhitespaceUtils::WhitespaceRule whitespaceRule,
                    KdBind::CPrimitiveRestrictions const& restrictions);

protected:
    // An optional child answers whether it took the element; an object is
    // stored once its content has been read.
    static constexpr OptionalRules kOptional{false, false, false};

    // A mandatory child that was not found: false in a pseudo owner, so that
    // the walk gives up quietly; a failure in a tagged one.
    bool ValidateMandatory(bool found, bool ownerIsElement) const;
    [[noreturn]] void ThrowMandatory() const;
    // Abstract children in an xs:all cannot be read.
    [[noreturn]] void ThrowAbstractNotImplemented() const;
};

// Collections in an xs:all. The schema allows no repetition there, so the
// leaves stay abstract: they have no Validate.
class CElementInfoAllCol : public CElementInfoAll {
public:
    CElementInfoAllCol(char const* name, char const* ns, int propertyId);

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
};

// Kept for the interface; no leaf derives from it.
class CElementInfoAllNonCol : public CElementInfoAll {
protected:
    CElementInfoAllNonCol(char const* name, char const* ns, int propertyId);
};

class CElementInfoAllClsMnd : public CElementInfoAll {
public:
    CElementInfoAllClsMnd(char const* name, char const* ns, int propertyId, XmlElementType elementType,
                          CElementInfoFactory factory, int classId, bool contentRequired);

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
    bool Validate(CXmlSerializationContext const& context, CXmlGeneratedClass const* object, bool found,
                  bool ownerIsElement) const override;
    void PseudoChildAttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                   CXmlWriter* writer) const override;

private:
    XmlElementType m_elementType;
    // The owner holds a mandatory child already: nothing makes one here.
    [[maybe_unused]] CElementInfoFactory m_factory;
    [[maybe_unused]] int m_classId;
    bool m_contentRequired;
};

class CElementInfoAllClsOpt : public CElementInfoAll {
public:
    CElementInfoAllClsOpt(char const* name, char const* ns, int propertyId, XmlElementType elementType,
                          CElementInfoFactory factory, int classId);

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
    bool Validate(CXmlSerializationContext const& context, CXmlGeneratedClass const* object, bool found,
                  bool ownerIsElement) const override;
    void PseudoChildAttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                   CXmlWriter* writer) const override;

private:
    XmlElementType m_elementType;
    CElementInfoFactory m_factory;
    int m_classId;
};

class CElementInfoAllClsCol : public CElementInfoAllCol {
public:
    CElementInfoAllClsCol(char const* name, char const* ns, int propertyId, XmlElementType elementType);

    void PseudoChildAttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                   CXmlWriter* writer) const override;

private:
    XmlElementType m_elementType;
};

class CElementInfoAllAbsClsMnd : public CElementInfoAll {
public:
    CElementInfoAllAbsClsMnd(char const* name, char const* ns, int propertyId, XmlElementType elementType,
                             CElementInfoElementFactory factory, int unused);

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
    bool Validate(CXmlSerializationContext const& context, CXmlGeneratedClass const* object, bool found,
                  bool ownerIsElement) const override;
    void PseudoChildAttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                   CXmlWriter* writer) const override;

private:
    XmlElementType m_elementType;
    [[maybe_unused]] CElementInfoElementFactory m_factory;  // input is not implemented for it
    [[maybe_unused]] int m_unused;                          // passed by generated code, read by nothing
};

class CElementInfoAllAbsClsOpt : public CElementInfoAll {
public:
    CElementInfoAllAbsClsOpt(char const* name, char const* ns, int propertyId, XmlElementType elementType,
                             CElementInfoElementFactory factory);

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
    bool Validate(CXmlSerializationContext const& context, CXmlGeneratedClass const* object, bool found,
                  bool ownerIsElement) const override;
    void PseudoChildAttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                   CXmlWriter* writer) const override;

private:
    XmlElementType m_elementType;
    [[maybe_unused]] CElementInfoElementFactory m_factory;  // input is not implemented for it
};

class CElementInfoAllAbsClsCol : public CElementInfoAllCol {
public:
    CElementInfoAllAbsClsCol(char const* name, char const* ns, int propertyId, XmlElementType elementType);

    void PseudoChildAttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                   CXmlWriter* writer) const override;

private:
    XmlElementType m_elementType;
};

class CElementInfoAllPrimMnd : public CElementInfoAll {
public:
    CElementInfoAllPrimMnd(char const* name, char const* ns, int propertyId, KdBind::ItemType itemType,
                           char const* format, KdBind::CWhitespaceUtils::WhitespaceRule whitespaceRule,
                           KdBind::CPrimitiveRestrictions const& restrictions);

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
    bool Validate(CXmlSerializationContext const& context, CXmlGeneratedClass const* object, bool found,
                  bool ownerIsElement) const override;
};

class CElementInfoAllPrimOpt : public CElementInfoAll {
public:
    CElementInfoAllPrimOpt(char const* name, char const* ns, int propertyId, KdBind::ItemType itemType,
                           char const* format, KdBind::CWhitespaceUtils::WhitespaceRule whitespaceRule,
                           KdBind::CPrimitiveRestrictions const& restrictions);

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
    bool Validate(CXmlSerializationContext const& context, CXmlGeneratedClass const* object, bool found,
                  bool ownerIsElement) const override;
};

class CElementInfoAllPrimCol : public CElementInfoAllCol {
public:
    CElementInfoAllPrimCol(char const* name, char const* ns, int propertyId);
};

class CElementInfoAllEnumMnd : public CElementInfoAll {
public:
    CElementInfoAllEnumMnd(char const* name, char const* ns, int propertyId, char const* (*toText)(int),
                           int (*fromText)(char const*));

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
    bool Validate(CXmlSerializationContext const& context, CXmlGeneratedClass const* object, bool found,
                  bool ownerIsElement) const override;

private:
    EnumToText m_toText;
    EnumFromText m_fromText;
};

class CElementInfoAllEnumOpt : public CElementInfoAll {
public:
    CElementInfoAllEnumOpt(char const* name, char const* ns, int propertyId, char const* (*toText)(int),
                           int (*fromText)(char const*));

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
    bool Validate(CXmlSerializationContext const& context, CXmlGeneratedClass const* object, bool found,
                  bool ownerIsElement) const override;

private:
    EnumToText m_toText;
    EnumFromText m_fromText;
};

// Unlike its neighbours it derives from CElementInfoAll directly and
// implements nothing.
class CElementInfoAllEnumCol : public CElementInfoAll {
public:
    CElementInfoAllEnumCol(char const* name, char const* ns, int propertyId);
};

class CElementInfoAllUntpdMnd : public CElementInfoAll {
public:
    CElementInfoAllUntpdMnd(char const* name, char const* ns, int propertyId, char const* anyNamespaceSpec,
                            char const* targetNamespace);

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
    bool Validate(CXmlSerializationContext const& context, CXmlGeneratedClass const* object, bool found,
                  bool ownerIsElement) const override;

private:
    std::string m_anyNamespaceSpec;
    std::string m_targetNamespace;
};

class CElementInfoAllUntpdOpt : public CElementInfoAll {
public:
    CElementInfoAllUntpdOpt(char const* name, char const* ns, int propertyId, char const* anyNamespaceSpec,
                            char const* targetNamespace);

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
    bool Validate(CXmlSerializationContext const& context, CXmlGeneratedClass const* object, bool found,
                  bool ownerIsElement) const override;

private:
    std::string m_anyNamespaceSpec;
    std::string m_targetNamespace;
};

class CElementInfoAllUntpdCol : public CElementInfoAllCol {
public:
    CElementInfoAllUntpdCol(char const* name, char const* ns, int propertyId);
};

// ---------------------------------------------------------------------------
// Alternatives of an xs:choice: the walk stops at the first entry that takes
// the element at the cursor, or that writes something.
// ---------------------------------------------------------------------------

class CElementInfoChoice : public CElementInfo {
public:
    CElementInfoChoice(char const* name, char const* ns, int propertyId);
    CElementInfoChoice(char const* name, char const* ns, int propertyId, KdBind::ItemType itemType,
                       char const* format, KdBind::CWhitespaceUtils::WhitespaceRule whitespaceRule,
                       KdBind::CPrimitiveRestrictions const& restrictions);

    // Choices have nothing to validate afterwards: throws.
    bool Validate(CXmlSerializationContext const& context, CXmlGeneratedClass const* object, bool found,
                  bool ownerIsElement) const override;

protected:
    // An alternative answers whether it took something. An object is stored
    // before its content is read, and the store is taken back when a pseudo
    // child consumed nothing.
    static constexpr OptionalRules kOptional{false, true, false};
};

class CElementInfoChoiceCol : public CElementInfoChoice {
public:
    CElementInfoChoiceCol(char const* name, char const* ns, int propertyId);

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
};

class CElementInfoChoiceClsOpt : public CElementInfoChoice {
public:
    CElementInfoChoiceClsOpt(char const* name, char const* ns, int propertyId, XmlElementType elementType,
                             CElementInfoFactory factory, int classId);

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
    void PseudoChildAttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                   CXmlWriter* writer) const override;

private:
    XmlElementType m_elementType;
    CElementInfoFactory m_factory;
    int m_classId;
};

class CElementInfoChoiceClsCol : public CElementInfoChoiceCol {
public:
    CElementInfoChoiceClsCol(char const* name, char const* ns, int propertyId, XmlElementType elementType);

    void PseudoChildAttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                   CXmlWriter* writer) const override;

private:
    XmlElementType m_elementType;
};

class CElementInfoChoiceAbsClsOpt : public CElementInfoChoice {
public:
    CElementInfoChoiceAbsClsOpt(char const* name, char const* ns, int propertyId, XmlElementType elementType,
                                CElementInfoElementFactory factory);

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
    void PseudoChildAttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                   CXmlWriter* writer) const override;

private:
    XmlElementType m_elementType;
    CElementInfoElementFactory m_factory;
};

class CElementInfoChoiceAbsClsCol : public CElementInfoChoiceCol {
public:
    CElementInfoChoiceAbsClsCol(char const* name, char const* ns, int propertyId, XmlElementType elementType);

    void PseudoChildAttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                   CXmlWriter* writer) const override;

private:
    XmlElementType m_elementType;
};

class CElementInfoChoicePrimOpt : public CElementInfoChoice {
public:
    CElementInfoChoicePrimOpt(char const* name, char const* ns, int propertyId, KdBind::ItemType itemType,
                              char const* format, KdBind::CWhitespaceUtils::WhitespaceRule whitespaceRule,
                              KdBind::CPrimitiveRestrictions const& restrictions);

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
};

class CElementInfoChoicePrimCol : public CElementInfoChoiceCol {
public:
    CElementInfoChoicePrimCol(char const* name, char const* ns, int propertyId);
};

class CElementInfoChoiceEnumOpt : public CElementInfoChoice {
public:
    CElementInfoChoiceEnumOpt(char const* name, char const* ns, int propertyId, char const* (*toText)(int),
                              int (*fromText)(char const*));

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;

private:
    EnumToText m_toText;
    EnumFromText m_fromText;
};

class CElementInfoChoiceEnumCol : public CElementInfoChoiceCol {
public:
    CElementInfoChoiceEnumCol(char const* name, char const* ns, int propertyId);
};

class CElementInfoChoiceUntpdOpt : public CElementInfoChoice {
public:
    CElementInfoChoiceUntpdOpt(char const* name, char const* ns, int propertyId, char const* anyNamespaceSpec,
                               char const* targetNamespace);

    bool ElementToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                      CXmlWriter* writer) const override;
    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;

private:
    std::string m_anyNamespaceSpec;
    std::string m_targetNamespace;
};

class CElementInfoChoiceUntpdCol : public CElementInfoChoiceCol {
public:
    CElementInfoChoiceUntpdCol(char const* name, char const* ns, int propertyId);

    bool ElementFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object, CXmlElement* parent,
                        CXmlElement** cursor, char const* ownerNamespace, XmlElementType ownerType) override;
};

// Root of the attribute metadata family: one entry per attribute.
class CAttributeInfo {
public:
    CAttributeInfo(char const* name, char const* ns, int propertyId, bool optional, char const* defaultValue);
    CAttributeInfo(CAttributeInfo const&) = delete;
    CAttributeInfo& operator=(CAttributeInfo const&) = delete;
    virtual ~CAttributeInfo() = default;

    virtual void AttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                                CXmlWriter* writer) const = 0;
    virtual bool AttributeFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                                  KdBind::CXmlAttribute* attribute) = 0;
    virtual void Validate(CXmlSerializationContext const& context, bool found) const = 0;

    std::string const& GetName() const { return m_name; }
    std::string const& GetNamespace() const { return m_namespace; }
    int GetPropertyId() const { return m_propertyId; }
    bool IsOptional() const { return m_optional; }
    std::string const& GetDefaultValue() const { return m_defaultValue; }

    // Local name, then namespace unless the context ignores namespaces.
    bool IsThisAttribute(CXmlSerializationContext const& context, KdBind::CXmlAttribute const* attribute) const;

protected:
    void AccessProperty(CXmlGeneratedClass* object, bool readAccess, KdBind::KdVariant& value) const;
    void ReadProperty(CXmlGeneratedClass const* object, KdBind::KdVariant& value) const;
    static void TestNamespace(std::string const& ns, std::string const& spec, std::string const& target);
    static std::string GetTargetNamespace(CXmlObjectBase const* object);
    static void ToXml_Int(CXmlObjectBase const* object, CXmlWriter* writer, bool root, char const* ns,
                          CXmlSerializationContext const& context);

    // The steps that the typed leaves share.
    // True when an optional attribute at its default is to be left out.
    bool IsOmittedDefault(CXmlSerializationContext const& context, std::string const& text) const;
    // Fails when a required attribute was not in the document.
    void ValidatePresence(bool found) const;

    std::string m_name;
    std::string m_namespace;
    int m_propertyId;
    bool m_optional;
    std::string m_defaultValue;
};

// An attribute of a primitive type, converted through its lexical form.
class CAttributeInfoPrimitive : public CAttributeInfo {
public:
    CAttributeInfoPrimitive(char const* name, char const* ns, int propertyId, bool optional,
                            KdBind::ItemType itemType, char const* format,
                            KdBind::CWhitespaceUtils::WhitespaceRule whitespaceRule,
                            KdBind::CPrimitiveRestrictions const& restrictions, char const* defaultValue);

    void AttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                        CXmlWriter* writer) const override;
    bool AttributeFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                          KdBind::CXmlAttribute* attribute) override;
    void Validate(CXmlSerializationContext const& context, bool found) const override;

    void CheckRestriction(KdBind::KdVariant value) const;

    KdBind::ItemType GetItemType() const { return m_itemType; }
    KdBind::CPrimitiveRestrictions const& GetRestrictions() const { return m_restrictions; }

private:
    KdBind::CPrimitiveRestrictions m_restrictions;
    KdBind::ItemType m_itemType;
    char const* m_format;  // not owned; generated code passes a literal
    KdBind::CWhitespaceUtils::WhitespaceRule m_whitespaceRule;
};

// An attribute of an enumeration, mapped by the generated class's functions.
class CAttributeInfoEnum : public CAttributeInfo {
public:
    using FromStringFunction = int (*)(char const*);
    using ToStringFunction = char const* (*)(int);

    CAttributeInfoEnum(char const* name, char const* ns, int propertyId, bool optional, ToStringFunction toString,
                       FromStringFunction fromString, char const* defaultValue);

    void AttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                        CXmlWriter* writer) const override;
    bool AttributeFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                          KdBind::CXmlAttribute* attribute) override;
    void Validate(CXmlSerializationContext const& context, bool found) const override;

private:
    FromStringFunction m_fromString;
    ToStringFunction m_toString;
};

// The xs:anyAttribute wildcard: takes every attribute whose namespace its
// namespace list (##any, ##other, ...) allows, into a CAttributeCol property. Must stand last in
// its table, since it refuses by failing, not by passing on.
class CAttributeInfoAny : public CAttributeInfo {
public:
    CAttributeInfoAny(char const* name, char const* ns, int propertyId, bool optional, char const* namespaceSpec,
                      char const* targetNamespace, char const* defaultValue);

    void AttributeToXml(CXmlSerializationContext const& context, CXmlGeneratedClass const* object,
                        CXmlWriter* writer) const override;
    bool AttributeFromXml(CXmlSerializationContext const& context, CXmlGeneratedClass* object,
                          KdBind::CXmlAttribute* attribute) override;
    // A wildcard is never missing.
    void Validate(CXmlSerializationContext const& context, bool found) const override;

private:
    std::string m_namespaceSpec;
    std::string m_targetNamespace;
};

// ---------------------------------------------------------------------------
// Holders for the tables of generated classes: they are shared by every
// thread, so they are built once and published whole.
// ---------------------------------------------------------------------------

// One metadata table of a class, built by the first thread that asks for it.
// The table is published only once it is complete, so threads that use a
// class for the first time at once all see the same whole table; after that
// a read is one load. Take hands the table back (to be freed), and the next
// use builds it again.
template <class Table>
class CLazyTable {
public:
    template <class Build>
    Table Get(Build build)
    {
        Table table = m_table.load(std::memory_order_acquire);
        if (!table) {
            std::lock_guard<std::mutex> lock(m_building);
            table = m_table.load(std::memory_order_relaxed);
            if (!table) {
                table = build();
                m_table.store(table, std::memory_order_release);
            }
        }
        return table;
    }
    Table Take()
    {
        std::lock_guard<std::mutex> lock(m_building);
        return m_table.exchange(nullptr, std::memory_order_acq_rel);
    }

private:
    std::atomic<Table> m_table{nullptr};
    std::mutex m_building;
};

// The three tables of one generated class, held in a static of the class.
// Clean frees them, when no thread uses the schema any more.
struct CClassTables {
    CLazyTable<CParentElementInfo*> classInfo;
    CLazyTable<CElementInfo**> elementInfo;
    CLazyTable<CAttributeInfo**> attributeInfo;

    void Clean()
    {
        KdBindData::CParentElementInfo* info = classInfo.Take();
        KdBindData::CElementInfo** elements = elementInfo.Take();
        KdBindData::CAttributeInfo** attributes = attributeInfo.Take();
        CXmlGeneratedClass::CleanMetaData(info, elements, attributes);
    }
};

} // namespace KdBindData

#endif
