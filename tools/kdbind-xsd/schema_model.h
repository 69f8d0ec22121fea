// The schema model of kdbind-xsd: what the loader reads out of the schema
// documents and the emitter turns into classes. Every construct the model
// cannot hold is refused while loading, so that the emitter never has to
// guess.
#ifndef KDBIND_XSD_SCHEMA_MODEL_H
#define KDBIND_XSD_SCHEMA_MODEL_H

#include <map>
#include <memory>
#include <stdexcept>
#include <string>
#include <vector>

#include <kdbind/kdbind.h>

namespace KdXsd {

// A schema the compiler cannot or will not map; the message names the file
// and the place in it.
class CSchemaError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// A built-in simple type: its value kind and how the generated class holds it.
struct BuiltinType {
    char const* xsdName;
    char const* itemType;    // enumerator of KdBind::ItemType
    char const* whitespace;  // enumerator of CWhitespaceUtils::WhitespaceRule
    bool list = false;       // a blank-separated list of such values
};

// The built-in type of a local name in the XML Schema namespace; null when
// the name is not one the compiler maps to a value kind.
BuiltinType const* FindBuiltinType(std::string const& localName);

// How generated code stores and passes a value of an item type.
struct ValueKind {
    char const* itemType;
    char const* cppType;
    char const* variantSuffix;  // KdVariant::Set<suffix> / Get<suffix>
    bool byReference;           // passed as const& rather than by value
    char const* zero;           // what Init stores; null: clear()
};
ValueKind const& GetValueKind(std::string const& itemType);

// The values of the enumerators the model names by text.
int ItemTypeValue(std::string const& itemType);
KdBind::CWhitespaceUtils::WhitespaceRule WhitespaceRuleValue(std::string const& rule);

struct NamespaceModel;

// A simple type after its restrictions are folded in: a value kind, a
// whitespace rule and the facets, or an enumeration.
struct SimpleType {
    std::string itemType = "ItemType_string";
    std::string whitespace = "WhitespaceRule_Preserve";
    std::string pattern;
    int minLength = -1;
    int maxLength = -1;
    int length = -1;
    std::string minInclusive, maxInclusive, minExclusive, maxExclusive;
    std::vector<std::string> enumeration;  // document order
    std::string enumName;                  // C++ name; set when enumeration is not empty
    NamespaceModel const* owner = nullptr; // where the enum is declared
    // An xs:list: a blank-separated list of values of the type above, whose
    // facets apply to each item. The length facets of the list count items.
    bool list = false;
    int listMinLength = -1;
    int listMaxLength = -1;
    int listLength = -1;

    bool IsEnum() const { return !enumeration.empty(); }
    bool HasFacets() const
    {
        return !pattern.empty() || minLength >= 0 || maxLength >= 0 || length >= 0 || !minInclusive.empty() ||
               !maxInclusive.empty() || !minExclusive.empty() || !maxExclusive.empty();
    }
};

struct ComplexType;

// Untyped content: an xs:any wildcard, an element of xs:anyType or an
// xs:anyAttribute. The spec is one namespace token as the library's
// wildcard tests read it ("##any", "##other", "##local",
// "##targetNamespace"), and target the namespace "##targetNamespace" and
// "##other" refer to. A literal namespace U is held as "##targetNamespace"
// with U as target: the library's literal token also lets the empty
// namespace through, this form does not.
struct Wildcard {
    std::string spec;
    std::string target;
};

// Reads the namespace attribute of a wildcard in a schema of the target
// namespace; the empty string on success, else why it cannot be mapped.
std::string ToWildcard(std::string const& namespaceAttribute, std::string const& targetNamespace,
                       Wildcard& wildcard);

// One child element of a content model.
struct Particle {
    std::string name;
    bool qualified = false;  // in the target namespace, else in none
    NamespaceModel const* nsOwner = nullptr;  // whose target namespace a qualified name is in
    int minOccurs = 1;
    int maxOccurs = 1;  // -1: unbounded
    ComplexType* complex = nullptr;  // null: a simple value
    bool grouping = false;           // complex is a model group: no tag of its own
    SimpleType simple;
    // Untyped content, an element of any name (xs:any) or of this name
    // (no type, xs:anyType): a CElement, or a collection of them.
    bool untyped = false;
    bool wildcard = false;  // xs:any: any name
    Wildcard any;
    // A default or fixed value of a single element of simple type: what an
    // empty element holds. A fixed value is also the only one it may hold;
    // fixedText is its canonical text, as the library writes the value.
    bool hasDefault = false;
    bool fixed = false;
    std::string defaultValue;
    std::string fixedText;
    std::string property;  // C++ property name, unique in its class
};

struct Attribute {
    std::string name;
    bool qualified = false;
    NamespaceModel const* nsOwner = nullptr;
    bool required = false;
    std::string defaultValue;
    bool hasDefault = false;
    SimpleType simple;
    // A fixed value is also the default, and the only value the attribute
    // may hold; fixedText is its canonical text.
    bool fixed = false;
    std::string fixedText;
    bool wildcard = false;  // xs:anyAttribute: a CAttributeCol
    Wildcard any;
    std::string property;
};

enum class GroupKind { Sequence, Choice, All };

struct ComplexType {
    std::string schemaName;   // the type's name, or the element's for an anonymous type
    std::string elementName;  // the element name a new object starts with
    std::string className;    // C++ class, unique in its namespace
    NamespaceModel* owner = nullptr;
    std::string location;  // file and element path, for messages
    GroupKind group = GroupKind::Sequence;
    bool isGroup = false;  // a grouping class: a named or nested model group, without a tag
    bool abstract = false;
    ComplexType* base = nullptr;               // the type this one extends; its class derives from base's
    std::vector<ComplexType const*> derived;   // every type that extends this one, directly or not
    std::vector<Particle> particles;    // own, after the base's
    std::vector<Attribute> attributes;  // own, after the base's
    // Simple content: the element's text, held as a value of this type.
    bool hasText = false;
    SimpleType text;
    std::string textProperty;
};

struct GlobalElement {
    std::string name;
    ComplexType* type = nullptr;
};

// Everything of one target namespace: one header and one source file.
struct NamespaceModel {
    std::string uri;
    std::string fileStem;      // output files <stem>.h and <stem>.cpp
    std::string cppNamespace;  // may contain "::"
    std::vector<std::string> sourceFiles;
    std::vector<std::unique_ptr<ComplexType>> types;  // in the order they were met
    std::vector<SimpleType> enums;                    // declared enumerations, in the order they were met
    std::vector<GlobalElement> elements;
    std::vector<NamespaceModel const*> dependencies;  // namespaces whose headers this one includes
};

struct SchemaSet {
    std::vector<std::unique_ptr<NamespaceModel>> namespaces;  // in the order they were met
};

// Reads the schema files and every local file they include or import.
// cppNamespaces maps target namespace URIs to C++ namespaces; the others
// get one made from their file name.
SchemaSet LoadSchemas(std::vector<std::string> const& files,
                      std::map<std::string, std::string> const& cppNamespaces);

} // namespace KdXsd

#endif
