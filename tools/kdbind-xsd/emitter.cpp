#include "emitter.h"

#include <cctype>
#include <filesystem>
#include <functional>
#include <set>
#include <sstream>

#include "emit_default_values.h"
#include "emit_untyped.h"
#include "emit_value_lists.h"
#include "names.h"

namespace KdXsd {

namespace {

// What a property is, which decides its member, its accessors, its
// AccessProperty case and its metadata entry.
// AnyElement, AnyElements and AnyAttributes hold untyped content: a
// CElement, a CAnyCol, a CAttributeCol. Values is a repeating element of a
// simple type, List an xs:list value; both are held in a value list.
enum class Kind { Prim, Enum, Class, Collection, AnyElement, AnyElements, AnyAttributes, Values, List };

struct Property {
    std::string name;        // C++ property name
    std::string member;      // m_ + name with a small first letter
    std::string schemaName;  // element or attribute name
    std::string nsExpr;      // NAMESPACE or ""
    Kind kind = Kind::Prim;
    bool optional = false;
    bool grouping = false;  // a grouping class, without a tag
    bool isText = false;    // the element's simple content
    SimpleType const* simple = nullptr;
    ComplexType const* complex = nullptr;
    Particle const* particle = nullptr;    // null for an attribute
    Attribute const* attribute = nullptr;  // null for an element
    Wildcard const* any = nullptr;         // untyped content
};

std::string Qualify(NamespaceModel const& here, NamespaceModel const* owner, std::string const& name)
{
    return owner == nullptr || owner == &here ? name : "::" + owner->cppNamespace + "::" + name;
}

std::string ClassIdOf(NamespaceModel const& here, ComplexType const& type)
{
    return Qualify(here, type.owner, "ClassId_" + type.className.substr(1));
}

// Enumerators keep the value's own spelling where C++ allows it.
std::vector<std::string> EnumeratorNames(SimpleType const& type)
{
    CNameScope scope;
    std::vector<std::string> names;
    for (std::string const& value : type.enumeration) {
        std::string name;
        for (char c : value)
            name += std::isalnum(static_cast<unsigned char>(c)) ? c : '_';
        if (name.empty())
            name = "_";
        names.push_back(type.enumName + "_" + scope.Unique(name));
    }
    return names;
}

std::string EnumeratorOf(NamespaceModel const& here, SimpleType const& type, std::string const& value)
{
    std::vector<std::string> const names = EnumeratorNames(type);
    for (size_t i = 0; i < type.enumeration.size(); ++i)
        if (type.enumeration[i] == value)
            return Qualify(here, type.owner, names[i]);
    return Qualify(here, type.owner, names.front());
}

std::vector<Property> PropertiesOf(ComplexType const& type)
{
    std::vector<Property> properties;
    auto fill = [](Property& p, std::string const& name) {
        p.name = name;
        p.member = "m_" + name;
        p.member[2] = static_cast<char>(std::tolower(static_cast<unsigned char>(p.member[2])));
    };
    for (Particle const& particle : type.particles) {
        Property p;
        fill(p, particle.property);
        p.schemaName = particle.name;
        p.nsExpr = particle.qualified ? Qualify(*type.owner, particle.nsOwner, "NAMESPACE") : "\"\"";
        p.particle = &particle;
        p.optional = particle.minOccurs == 0 || type.group == GroupKind::Choice;
        p.grouping = particle.grouping;
        if (particle.untyped) {
            p.any = &particle.any;
            p.kind = particle.maxOccurs == 1 ? Kind::AnyElement : Kind::AnyElements;
            if (particle.wildcard)
                p.nsExpr = "\"\"";
        } else if (particle.complex) {
            p.complex = particle.complex;
            p.kind = particle.maxOccurs == 1 ? Kind::Class : Kind::Collection;
        } else {
            p.simple = &particle.simple;
            p.kind = particle.simple.list       ? Kind::List
                     : particle.maxOccurs != 1 ? Kind::Values
                     : particle.simple.IsEnum() ? Kind::Enum
                                                : Kind::Prim;
        }
        properties.push_back(p);
    }
    if (type.hasText) {
        Property p;
        fill(p, type.textProperty);
        p.schemaName = type.schemaName;
        p.isText = true;
        p.simple = &type.text;
        p.kind = type.text.IsEnum() ? Kind::Enum : Kind::Prim;
        properties.push_back(p);
    }
    for (Attribute const& attribute : type.attributes) {
        Property p;
        fill(p, attribute.property);
        p.schemaName = attribute.name;
        p.nsExpr = attribute.qualified ? Qualify(*type.owner, attribute.nsOwner, "NAMESPACE") : "\"\"";
        p.attribute = &attribute;
        p.optional = !attribute.required;
        p.simple = &attribute.simple;
        p.kind = attribute.simple.list ? Kind::List : attribute.simple.IsEnum() ? Kind::Enum : Kind::Prim;
        if (attribute.wildcard) {
            p.kind = Kind::AnyAttributes;
            p.any = &attribute.any;
            p.simple = nullptr;
        }
        properties.push_back(p);
    }
    return properties;
}

// The types a class derives from, the root first.
std::vector<ComplexType const*> BaseChain(ComplexType const& type)
{
    std::vector<ComplexType const*> chain;
    for (ComplexType const* base = type.base; base; base = base->base)
        chain.insert(chain.begin(), base);
    return chain;
}

// The number of properties a class inherits: its own ids follow them.
size_t InheritedPropertyCount(ComplexType const& type)
{
    size_t count = 0;
    for (ComplexType const* base : BaseChain(type))
        count += PropertiesOf(*base).size();
    return count;
}

std::string FactoryOf(NamespaceModel const& here, ComplexType const& type)
{
    return Qualify(here, type.owner, "C" + type.className.substr(1) + "Factory");
}

std::string ValueType(NamespaceModel const& here, Property const& p)
{
    if (p.kind == Kind::Enum)
        return Qualify(here, p.simple->owner, p.simple->enumName);
    if (p.kind == Kind::Prim)
        return GetValueKind(p.simple->itemType).cppType;
    if (p.kind == Kind::AnyElement)
        return "KdBind::CElement";
    if (p.kind == Kind::AnyElements)
        return "CAnyCol";
    if (p.kind == Kind::AnyAttributes)
        return "KdBind::CAttributeCol";
    if (p.kind == Kind::Values || p.kind == Kind::List)
        return ValueListClass(*p.simple);
    return Qualify(here, p.complex->owner, p.complex->className);
}

std::string Restrictions(SimpleType const& t)
{
    if (!t.HasFacets())
        return "CPrimitiveRestrictions()";
    std::ostringstream out;
    out << "CPrimitiveRestrictions(" << Quote(t.pattern) << ", " << t.minLength << ", " << t.maxLength << ", "
        << Quote(t.minInclusive) << ", " << Quote(t.maxInclusive) << ", " << Quote(t.minExclusive) << ", "
        << Quote(t.maxExclusive) << ", " << t.length << ")";
    return out.str();
}

// Classes in an order where every class comes after the classes it holds;
// a cycle is broken where it is met, the forward declarations cover it.
std::vector<ComplexType const*> ClassOrder(NamespaceModel const& ns)
{
    std::vector<ComplexType const*> order;
    std::set<ComplexType const*> visited;
    std::function<void(ComplexType const*)> visit = [&](ComplexType const* type) {
        if (!visited.insert(type).second)
            return;
        if (type->base)
            visit(type->base);
        for (Particle const& particle : type->particles)
            if (particle.complex && particle.complex->owner == &ns)
                visit(particle.complex);
        order.push_back(type);
    };
    for (auto const& type : ns.types)
        visit(type.get());
    return order;
}

std::string GuardOf(NamespaceModel const& ns)
{
    std::string guard = "KDBIND_GENERATED_";
    for (char c : ns.fileStem)
        guard += std::isalnum(static_cast<unsigned char>(c)) ? static_cast<char>(std::toupper(c)) : '_';
    return guard + "_H";
}

std::string Banner(NamespaceModel const& ns)
{
    std::string text = "// Generated by kdbind-xsd from";
    for (std::string const& file : ns.sourceFiles)
        text += " " + std::filesystem::path(file).filename().string();
    return text;
}

// The pieces every generated header shares, in the namespace of its schema.
char const* const kSupport = R"(// The three metadata tables of each class, built once on first use from any
// thread; the library's holder.
using KdBindData::CClassTables;

// What every class of the schema shares: its target namespace.
class CSchemaClass : public KdBind::CXmlGeneratedClass {
public:
    KdBind::CXmlObjectBase* GetBase() override { return this; }
    std::string GetTargetNamespace() const override { return NAMESPACE; }
    std::string GetNamespace() const override { return NAMESPACE; }
};

// The objects of a repeating element, in document order.
template <class Item>
class CClassCol : public KdBind::CXmlCollection {
public:
    CClassCol(char const* elementName, char const* ns, int minOccurs, int maxOccurs)
        : CXmlCollection(elementName, ns, minOccurs, maxOccurs)
    {
    }

    Item* GetAt(int index) const { return static_cast<Item*>(GetNodeAtIndex(index)->item); }
    // The item takes the collection's element name.
    void Add(Item* item)
    {
        item->SetElementName(GetElementName().c_str());
        AppendItem(item);
    }

protected:
    void ToXml_Int(KdBind::CXmlWriter* writer, bool, char const* ns, KdBind::CXmlSerializationContext const& context,
                   bool) const override
    {
        for (CNode* node = GetHeadNode(); node; node = node->next)
            CXmlObjectBase::ToXml_Int(node->item, writer, false, ns, context, false);
    }
    KdBind::CXmlElement* FromXml_Int(KdBind::CXmlElement*, KdBind::CXmlElement* cursor,
                                     KdBind::CXmlSerializationContext const& context, bool) override
    {
        std::string const& name = GetElementName();
        std::string const ns = GetNamespace();
        while (cursor && DoesElementNameMatch(context, cursor, name.c_str(), ns.c_str())) {
            CSmartPtr<Item> item = new Item();
            item->SetElementName(name.c_str());
            CXmlObjectBase::FromXml_Int(item, cursor, cursor->GetFirstElement(), context);
            AppendItem(item);
            cursor = cursor->GetNextSiblingElement();
        }
        return cursor;
    }
};
)";

void EmitAccessors(std::ostream& out, NamespaceModel const& ns, Property const& p)
{
    std::string const type = ValueType(ns, p);
    std::string const& n = p.name;
    std::string const& m = p.member;
    switch (p.kind) {
    case Kind::Prim:
    case Kind::Enum:
        if (p.optional) {
            out << "    std::optional<" << type << "> const& Get" << n << "() const { return " << m << "; }\n"
                << "    void Set" << n << "(std::optional<" << type << "> value) { " << m
                << " = std::move(value); }\n";
        } else if (p.kind == Kind::Prim && GetValueKind(p.simple->itemType).byReference) {
            out << "    " << type << " const& Get" << n << "() const { return " << m << "; }\n"
                << "    void Set" << n << "(" << type << " const& value) { " << m << " = value; }\n";
        } else {
            out << "    " << type << " Get" << n << "() const { return " << m << "; }\n"
                << "    void Set" << n << "(" << type << " value) { " << m << " = value; }\n";
        }
        break;
    case Kind::Class:
    case Kind::AnyElement:
        if (p.optional)
            out << "    " << type << "* Get" << n << "() const { return " << m << "; }\n";
        else
            out << "    " << type << "& Get" << n << "() const { return *" << m << "; }\n";
        out << "    void Set" << n << "(" << type << "* value);\n";
        break;
    case Kind::Collection:
        out << "    CClassCol<" << type << ">& Get" << n << "() const { return *" << m << "; }\n";
        break;
    case Kind::AnyElements:
    case Kind::AnyAttributes:
    case Kind::Values:
    case Kind::List:
        out << "    " << type << "& Get" << n << "() const { return *" << m << "; }\n";
        break;
    }
}

std::string MemberType(NamespaceModel const& ns, Property const& p)
{
    std::string const type = ValueType(ns, p);
    switch (p.kind) {
    case Kind::Prim:
    case Kind::Enum:
        return p.optional ? "std::optional<" + type + ">" : type;
    case Kind::Class:
    case Kind::AnyElement:
    case Kind::AnyElements:
    case Kind::AnyAttributes:
    case Kind::Values:
    case Kind::List:
        return "CSmartPtr<" + type + ">";
    case Kind::Collection:
        break;
    }
    return "CSmartPtr<CClassCol<" + type + ">>";
}

void EmitClassDeclaration(std::ostream& out, NamespaceModel const& ns, ComplexType const& type)
{
    std::vector<Property> const properties = PropertiesOf(type);
    out << "// ---------------------------------------------------------------------------\n"
        << "// " << type.schemaName << (type.isGroup ? ": a model group, without a tag of its own" : "") << "\n"
        << "// ---------------------------------------------------------------------------\n\n"
        << "class " << type.className << " : public " << (type.base ? type.base->className : "CSchemaClass")
        << " {\n"
        << "public:\n"
        << "    " << type.className << "();\n\n";
    for (Property const& p : properties)
        EmitAccessors(out, ns, p);
    if (!properties.empty())
        out << "\n";
    out << "    void AccessProperty(int propertyId, bool readAccess, KdBind::KdVariant& value) override;\n"
        << "    KdBindData::CParentElementInfo* GetClassInfo() const override;\n"
        << "    KdBindData::CElementInfo** GetClassElementInfo() const override;\n"
        << "    KdBindData::CAttributeInfo** GetClassAttributeInfo() const override;\n"
        << "    void Init() override;\n\n"
        << "    static CClassTables m_tables;\n";
    if (!properties.empty()) {
        // Protected: a derived class's tables name the ids it inherits.
        size_t const first = InheritedPropertyCount(type);
        out << "\nprotected:\n    enum Property {\n";
        for (size_t i = 0; i < properties.size(); ++i)
            out << "        Property_" << properties[i].name << (i == 0 && first ? " = " + std::to_string(first) : "")
                << (i + 1 < properties.size() ? ",\n" : "\n");
        out << "    };\n\nprivate:\n";
        for (Property const& p : properties)
            out << "    " << MemberType(ns, p) << " " << p.member << ";\n";
    }
    out << "};\n\n";
}

void EmitEnumDeclarations(std::ostream& out, NamespaceModel const& ns)
{
    if (ns.enums.empty())
        return;
    out << "// ---------------------------------------------------------------------------\n"
        << "// Enumerations\n"
        << "// ---------------------------------------------------------------------------\n\n";
    for (SimpleType const& e : ns.enums) {
        out << "enum " << e.enumName << " {";
        std::vector<std::string> const names = EnumeratorNames(e);
        for (size_t i = 0; i < names.size(); ++i)
            out << (i ? ", " : " ") << names[i];
        out << " };\n"
            << "char const* " << e.enumName << "ToString(int value);\n"
            << "int " << e.enumName << "FromString(char const* text);\n\n";
    }
}

} // namespace

std::string EmitHeader(NamespaceModel const& ns)
{
    std::ostringstream out;
    std::string const guard = GuardOf(ns);
    out << Banner(ns) << "; do not edit.\n"
        << "// Target namespace: " << (ns.uri.empty() ? "(none)" : ns.uri) << "\n"
        << "#ifndef " << guard << "\n#define " << guard << "\n\n"
        << "#include <optional>\n#include <string>\n\n"
        << "#include <kdbind/kdbind.h>\n";
    for (NamespaceModel const* dependency : ns.dependencies)
        out << "#include \"" << dependency->fileStem << ".h\"\n";
    out << "\nnamespace " << ns.cppNamespace << " {\n\n"
        << "extern char const* const NAMESPACE;\n\n";
    EmitEnumDeclarations(out, ns);

    out << "// ---------------------------------------------------------------------------\n"
        << "// Object creation\n"
        << "// ---------------------------------------------------------------------------\n\n"
        << "enum ClassId {";
    for (size_t i = 0; i < ns.types.size(); ++i)
        out << (i ? ", " : " ") << "ClassId_" << ns.types[i]->className.substr(1);
    out << " };\n"
        << "// Makes the object of a class id under an element name.\n"
        << "CSmartPtr<KdBind::CXmlObjectBase> CreateObject(int classId, char const* elementName);\n"
        << "// Makes the object of a global element of the namespace; null for another name.\n"
        << "CSmartPtr<KdBind::CXmlObjectBase> CreateRootObject(char const* elementName);\n"
        << "// Frees the metadata tables of every class of the schema (once, at exit).\n"
        << "void CleanMetaData();\n\n";
    for (auto const& type : ns.types) {
        if (type->derived.empty())
            continue;
        out << "// Makes the " << type->schemaName << " class that an element's xsi:type names; null for\n"
            << "// an unknown type" << (type->abstract ? " or none" : "") << ".\n"
            << "class C" << type->className.substr(1) << "Factory : public KdBind::CClassfactoryBase {\n"
            << "public:\n"
            << "    static CSmartPtr<KdBind::CXmlObjectBase> CreateObject(KdBind::CXmlElement* element);\n"
            << "};\n\n";
    }
    out
        << kSupport << "\n";
    if (UsesUntypedCollection(ns))
        out << UntypedCollectionCode() << "\n";
    if (UsesListValue(ns))
        out << ListSupportCode() << "\n";
    if (UsesFixedValue(ns))
        out << FixedValueCode() << "\n";
    for (auto const& type : ns.types)
        out << "class " << type->className << ";\n";
    out << "\n";
    for (ComplexType const* type : ClassOrder(ns))
        EmitClassDeclaration(out, ns, *type);
    out << "} // namespace " << ns.cppNamespace << "\n\n#endif\n";
    return out.str();
}

namespace {

char const* const kEnumHelpers = R"(namespace {

template <size_t N>
char const* EnumToString(char const* const (&texts)[N], int value, char const* typeName)
{
    if (value < 0 || value >= static_cast<int>(N))
        throw KdBind::CKdInvalidValueException(
            KdBind::FormatString("Invalid value [%d] for the enumeration [%s]", value, typeName));
    return texts[value];
}

template <size_t N>
int EnumFromString(char const* const (&texts)[N], char const* text, char const* typeName)
{
    for (size_t i = 0; i < N; ++i)
        if (strcmp(texts[i], text) == 0)
            return static_cast<int>(i);
    throw KdBind::CKdInvalidValueException(
        KdBind::FormatString("Invalid value [%s] for the enumeration [%s]", text, typeName));
}

)";

char const* GroupName(GroupKind group)
{
    switch (group) {
    case GroupKind::Sequence:
        return "Seq";
    case GroupKind::Choice:
        return "Choice";
    case GroupKind::All:
        break;
    }
    return "All";
}

char const* GroupEnumerator(GroupKind group)
{
    switch (group) {
    case GroupKind::Sequence:
        return "XmlElementGroupType_Sequence";
    case GroupKind::Choice:
        return "XmlElementGroupType_Choice";
    case GroupKind::All:
        break;
    }
    return "XmlElementGroupType_All";
}

void EmitEnumDefinitions(std::ostream& out, NamespaceModel const& ns)
{
    if (ns.enums.empty())
        return;
    out << kEnumHelpers;
    for (SimpleType const& e : ns.enums) {
        out << "char const* const k" << e.enumName << "Texts[] = {";
        for (size_t i = 0; i < e.enumeration.size(); ++i)
            out << (i ? ", " : "") << Quote(e.enumeration[i]);
        out << "};\n";
    }
    out << "\n} // namespace\n\n";
    for (SimpleType const& e : ns.enums)
        out << "char const* " << e.enumName << "ToString(int value) { return EnumToString(k" << e.enumName
            << "Texts, value, " << Quote(e.enumName) << "); }\n\n"
            << "int " << e.enumName << "FromString(char const* text) { return EnumFromString(k" << e.enumName
            << "Texts, text, " << Quote(e.enumName) << "); }\n\n";
}

void EmitFactories(std::ostream& out, NamespaceModel const& ns)
{
    out << "CSmartPtr<CXmlObjectBase> CreateObject(int classId, char const* elementName)\n{\n"
        << "    CSmartPtr<CXmlObjectBase> object;\n"
        << "    switch (classId) {\n";
    for (auto const& type : ns.types)
        out << "    case ClassId_" << type->className.substr(1) << ": object = new " << type->className
            << "(); break;\n";
    out << "    default:\n"
        << "        throw KdBind::CKdInvalidParamException(KdBind::FormatString(\"Unknown class id [%d]\", "
           "classId));\n"
        << "    }\n"
        << "    object->SetElementName(elementName);\n"
        << "    return object;\n}\n\n";

    out << "CSmartPtr<CXmlObjectBase> CreateRootObject(char const* elementName)\n{\n"
        << "    CSmartPtr<CXmlObjectBase> object;\n";
    bool first = true;
    for (GlobalElement const& element : ns.elements) {
        out << "    " << (first ? "if" : "else if") << " (strcmp(elementName, " << Quote(element.name)
            << ") == 0)\n"
            << "        object = new " << Qualify(ns, element.type->owner, element.type->className) << "();\n";
        first = false;
    }
    out << (first ? "    (void)elementName;\n" : "    else\n        return nullptr;\n")
        << (first ? "" : "    object->SetElementName(elementName);\n") << "    return object;\n}\n\n";

    for (auto const& type : ns.types) {
        if (type->derived.empty())
            continue;
        out << "CSmartPtr<CXmlObjectBase> C" << type->className.substr(1)
            << "Factory::CreateObject(KdBind::CXmlElement* element)\n{\n"
            << "    std::string const type = GetElementType(element);\n"
            << "    CSmartPtr<CXmlObjectBase> object;\n";
        if (type->abstract)
            out << "    if (type.empty() || GetElementTypeNamespaceUri(element) != NAMESPACE)\n"
                << "        return nullptr;\n";
        else
            out << "    if (type.empty())\n"
                << "        object = new " << type->className << "();\n"
                << "    else if (GetElementTypeNamespaceUri(element) != NAMESPACE)\n"
                << "        return nullptr;\n";
        std::vector<ComplexType const*> candidates;
        if (!type->abstract)
            candidates.push_back(type.get());
        for (ComplexType const* derived : type->derived)
            if (!derived->abstract)
                candidates.push_back(derived);
        for (ComplexType const* candidate : candidates)
            out << "    else if (type == " << Quote(candidate->schemaName) << ")\n"
                << "        object = new " << candidate->className << "();\n";
        out << "    else\n        return nullptr;\n"
            << "    object->SetElementName(element->GetLocalName().c_str());\n"
            << "    return object;\n}\n\n";
    }

    out << "void CleanMetaData()\n{\n";
    for (auto const& type : ns.types)
        out << "    " << type->className << "::m_tables.Clean();\n";
    out << "}\n\n";
}

// The value a new object starts with: an attribute's default or fixed
// value, and a required element's; null for none. An optional element with
// a default starts out absent: the default is what an empty one holds.
std::string const* InitialValue(Property const& p)
{
    if (p.attribute)
        return p.attribute->hasDefault ? &p.attribute->defaultValue : nullptr;
    if (p.particle && p.particle->hasDefault && !p.optional)
        return &p.particle->defaultValue;
    return nullptr;
}

std::string DefaultExpression(NamespaceModel const& ns, Property const& p, std::string const& text)
{
    if (p.kind == Kind::Enum)
        return EnumeratorOf(ns, *p.simple, text);
    if (p.simple->itemType == "ItemType_string")
        return "std::string(" + Quote(text) + ")";
    return "";  // converted in Init through a variant
}

void EmitInit(std::ostream& out, NamespaceModel const& ns, ComplexType const& type,
              std::vector<Property> const& properties)
{
    out << "void " << type.className << "::Init()\n{\n";
    if (type.base)
        out << "    " << type.base->className << "::Init();\n";
    for (Property const& p : properties) {
        std::string const& m = p.member;
        std::string const valueType = ValueType(ns, p);
        switch (p.kind) {
        case Kind::Prim:
        case Kind::Enum:
            if (std::string const* initial = InitialValue(p)) {
                std::string const expression = DefaultExpression(ns, p, *initial);
                if (!expression.empty()) {
                    out << "    " << m << " = " << expression << ";\n";
                } else {
                    ValueKind const& kind = GetValueKind(p.simple->itemType);
                    out << "    {\n"
                        << "        KdVariant value;\n"
                        << "        value.FromString(" << Quote(*initial) << ", KdBind::"
                        << p.simple->itemType << ", CWhitespaceUtils::" << p.simple->whitespace << ");\n"
                        << "        " << m << " = value.Get" << kind.variantSuffix << "();\n"
                        << "    }\n";
                }
            } else if (p.optional) {
                out << "    " << m << ".reset();\n";
            } else if (p.kind == Kind::Enum) {
                out << "    " << m << " = " << EnumeratorOf(ns, *p.simple, p.simple->enumeration.front()) << ";\n";
            } else {
                out << "    " << m << " = " << GetValueKind(p.simple->itemType).zero << ";\n";
            }
            break;
        case Kind::Class:
            if (p.optional) {
                out << "    " << m << " = nullptr;\n";
            } else {
                out << "    " << m << " = new " << valueType << "();\n"
                    << "    " << m << "->SetElementName(" << Quote(p.schemaName) << ");\n";
            }
            break;
        case Kind::Collection:
            out << "    " << m << " = new CClassCol<" << valueType << ">(" << Quote(p.schemaName) << ", "
                << p.nsExpr << ", " << p.particle->minOccurs << ", " << p.particle->maxOccurs << ");\n";
            break;
        case Kind::AnyElement:
            // A required one exists from the start, as an element of the
            // wildcard that the application names and fills.
            if (p.optional)
                out << "    " << m << " = nullptr;\n";
            else
                out << "    " << m << " = new KdBind::CElement(" << Quote(p.particle->wildcard ? "" : p.schemaName)
                    << ", " << Quote(WildcardNamespace(*p.any)) << ", " << Quote(p.any->spec) << ", "
                    << WildcardTarget(ns, *p.any) << ");\n";
            break;
        case Kind::AnyElements:
            out << "    " << m << " = new CAnyCol(" << Quote(p.schemaName) << ", " << Quote(WildcardNamespace(*p.any))
                << ", " << Quote(p.any->spec) << ", " << WildcardTarget(ns, *p.any) << ", " << p.particle->minOccurs
                << ", " << p.particle->maxOccurs << ");\n";
            break;
        case Kind::AnyAttributes:
            out << "    " << m << " = new KdBind::CAttributeCol(" << Quote(WildcardNamespace(*p.any)) << ", "
                << Quote(p.any->spec) << ", " << WildcardTarget(ns, *p.any) << ");\n";
            break;
        case Kind::Values:
            out << "    " << m << " = "
                << NewValueList(*p.simple, p.schemaName, p.nsExpr, p.particle->minOccurs, p.particle->maxOccurs)
                << ";\n";
            break;
        case Kind::List:
            out << "    " << m << " = " << NewValueList(*p.simple, p.schemaName, p.nsExpr, 0, -1) << ";\n";
            break;
        }
    }
    out << "}\n\n";
}

void EmitSetters(std::ostream& out, NamespaceModel const& ns, ComplexType const& type,
                 std::vector<Property> const& properties)
{
    for (Property const& p : properties) {
        if (p.kind == Kind::AnyElement) {
            // Held before the test, so that a refused new element is freed.
            out << "void " << type.className << "::Set" << p.name << "(KdBind::CElement* value)\n{\n"
                << "    CSmartPtr<KdBind::CElement> held = value;\n";
            if (p.optional)
                out << "    if (value)\n    ";
            else
                out << "    Throw_IfPropertyIsNull(value, " << Quote(p.schemaName) << ");\n";
            out << "    KdBind::CXmlObjectHelper::TestNamespace(value->GetNamespace(), " << Quote(p.any->spec) << ", "
                << WildcardTarget(ns, *p.any) << ");\n";
            if (!p.particle->wildcard)
                out << (p.optional ? "    if (value)\n    " : "") << "    value->SetName(" << Quote(p.schemaName)
                    << ");\n";
            out << "    " << p.member << " = value;\n}\n\n";
            continue;
        }
        if (p.kind != Kind::Class)
            continue;
        out << "void " << type.className << "::Set" << p.name << "(" << ValueType(ns, p) << "* value)\n{\n";
        if (p.optional)
            out << "    if (value)\n    ";
        else
            out << "    Throw_IfPropertyIsNull(value, " << Quote(p.schemaName) << ");\n";
        out << "    value->SetElementName(" << Quote(p.schemaName) << ");\n"
            << "    " << p.member << " = value;\n}\n\n";
    }
}

// Values that cross the engine as text, which the class converts with the
// type's whitespace rule and checks against its facets: simple content, and
// elements with a default or fixed value, since the engine would convert an
// empty element's text and fail where the schema gives it the default.
struct TextValue {
    std::string name;  // C++ expression of the name in facet messages
    std::string const* defaultText = nullptr;  // what an empty element holds
    std::string const* fixedText = nullptr;    // the canonical fixed value
    bool optional = false;
    bool checkOnOutput = false;  // facets, as the engine checks primitives it writes
};

void EmitTextValueAccess(std::ostream& out, NamespaceModel const& ns, Property const& p, TextValue const& v)
{
    std::string const& m = p.member;
    std::string const rule = "CWhitespaceUtils::" + p.simple->whitespace;
    std::string const text = v.defaultText ? "(value.GetString().empty() ? std::string(" + Quote(*v.defaultText) +
                                                 ") : value.GetString())"
                                           : "value.GetString()";
    std::string const current = (v.optional ? "*" : "") + m;
    auto fixed = [&](std::string const& textExpression) {
        if (v.fixedText)
            out << "            CheckFixed(" << textExpression << ", " << v.name << ", " << Quote(*v.fixedText)
                << ");\n";
    };
    out << "        if (readAccess) {\n";
    if (v.optional)
        out << "            if (!" << m << ")\n                break;\n";
    if (p.kind == Kind::Enum) {
        std::string const e = Qualify(ns, p.simple->owner, p.simple->enumName);
        out << "            value.SetString(" << e << "ToString(" << current << "));\n";
        fixed("value.GetString()");
        out << "        } else {\n"
            << "            std::string const text = CWhitespaceUtils::ApplyRule(" << rule << ", " << text << ");\n";
        fixed("text");
        out << "            " << m << " = static_cast<" << e << ">(" << e << "FromString(text.c_str()));\n"
            << "        }\n"
            << "        break;\n";
        return;
    }
    std::string const suffix = GetValueKind(p.simple->itemType).variantSuffix;
    std::string const facets = "            KdBind::CXmlObjectHelper::CheckRestriction(" + v.name + ", typed, KdBind::" +
                               p.simple->itemType + ",\n                                                       " +
                               Restrictions(*p.simple) + ");\n";
    out << "            KdVariant typed;\n"
        << "            typed.Set" << suffix << "(" << current << ");\n";
    if (v.checkOnOutput && p.simple->HasFacets())
        out << facets;
    fixed("typed.ToString()");
    out << "            value.SetString(typed.ToString());\n"
        << "        } else {\n"
        << "            KdVariant typed;\n"
        << "            typed.FromString(" << text << ", KdBind::" << p.simple->itemType << ", " << rule << ");\n";
    if (p.simple->HasFacets())
        out << facets;
    fixed("typed.ToString()");
    out << "            " << m << " = typed.Get" << suffix << "();\n"
        << "        }\n"
        << "        break;\n";
}

// An xs:list value crosses as its text, blank-separated items that the
// value list converts and tests one by one; the length facets count items.
// An optional one without items is absent.
void EmitListAccess(std::ostream& out, Property const& p)
{
    SimpleType const& t = *p.simple;
    bool const counted = t.listMinLength >= 0 || t.listMaxLength >= 0 || t.listLength >= 0;
    std::string const check = "            CheckListLength(*" + p.member + ", " + Quote(p.schemaName) + ", " +
                              std::to_string(t.listMinLength) + ", " + std::to_string(t.listMaxLength) + ", " +
                              std::to_string(t.listLength) + ");\n";
    out << "        if (readAccess) {\n";
    if (p.optional)
        out << "            if (!" << p.member << "->GetCount())\n                break;\n";
    if (counted)
        out << check;
    out << "            value.SetString(ListToString(*" << p.member << ", " << ItemToStringLambda(t) << "));\n"
        << "        } else {\n"
        << "            ListFromString(*" << p.member << ", value.GetString());\n";
    if (counted)
        out << check;
    out << "        }\n        break;\n";
}

void EmitAccessProperty(std::ostream& out, NamespaceModel const& ns, ComplexType const& type,
                        std::vector<Property> const& properties)
{
    if (properties.empty()) {
        if (type.base)
            out << "void " << type.className << "::AccessProperty(int propertyId, bool readAccess, KdVariant& value)\n"
                << "{\n    " << type.base->className << "::AccessProperty(propertyId, readAccess, value);\n}\n\n";
        else
            out << "void " << type.className << "::AccessProperty(int, bool, KdVariant&) {}\n\n";
        return;
    }
    out << "void " << type.className << "::AccessProperty(int propertyId, bool readAccess, KdVariant& value)\n{\n"
        << "    switch (propertyId) {\n";
    for (Property const& p : properties) {
        std::string const& m = p.member;
        out << "    case Property_" << p.name << ":\n";
        if (p.isText) {
            TextValue simpleContent;
            simpleContent.name = "GetElementName().c_str()";
            EmitTextValueAccess(out, ns, p, simpleContent);
            continue;
        }
        if (p.particle && p.particle->hasDefault) {
            TextValue element;
            element.name = Quote(p.schemaName);
            element.defaultText = &p.particle->defaultValue;
            element.fixedText = p.particle->fixed ? &p.particle->fixedText : nullptr;
            element.optional = p.optional;
            element.checkOnOutput = true;
            EmitTextValueAccess(out, ns, p, element);
            continue;
        }
        if (p.kind == Kind::List) {
            EmitListAccess(out, p);
            continue;
        }
        std::string read, write;  // statements without the trailing semicolon
        switch (p.kind) {
        case Kind::Prim: {
            std::string const suffix = GetValueKind(p.simple->itemType).variantSuffix;
            read = "value.Set" + suffix + "(" + (p.optional ? "*" : "") + m + ")";
            write = m + " = value.Get" + suffix + "()";
            break;
        }
        case Kind::Enum:
            read = "value.SetI4(" + std::string(p.optional ? "*" : "") + m + ")";
            write = m + " = static_cast<" + ValueType(ns, p) + ">(value.GetI4())";
            break;
        case Kind::Class:
            read = "value.SetXmlObject(" + m + ")";
            // The engine made an optional object under its element name
            // already; a mandatory one may not be null.
            write = (p.optional ? m + " = " : "Set" + p.name + "(") + "dynamic_cast<" + ValueType(ns, p) +
                    "*>(value.GetXmlObject().get())" + (p.optional ? "" : ")");
            break;
        case Kind::AnyElement:
            read = "value.SetXmlObject(" + m + ")";
            write = "Set" + p.name + "(dynamic_cast<" + ValueType(ns, p) + "*>(value.GetXmlObject().get()))";
            break;
        case Kind::Collection:
        case Kind::AnyElements:
        case Kind::AnyAttributes:
        case Kind::Values:
        case Kind::List:
            read = "value.SetXmlCollection(" + m + ")";
            break;
        }
        if (p.kind == Kind::Collection || p.kind == Kind::AnyElements || p.kind == Kind::AnyAttributes ||
            p.kind == Kind::Values)
            out << "        if (readAccess)\n            " << read << ";\n";
        else if (p.optional)
            out << "        if (!readAccess)\n            " << write << ";\n"
                << "        else if (" << m << ")\n            " << read << ";\n";
        else
            out << "        if (readAccess)\n            " << read << ";\n"
                << "        else\n            " << write << ";\n";
        if (p.attribute && p.attribute->fixed) {
            // Both ways: what a document holds, and what the object would write.
            std::string const text =
                p.kind == Kind::Enum ? Qualify(ns, p.simple->owner, p.simple->enumName) + "ToString(value.GetI4())"
                                     : std::string("value.ToString()");
            out << "        if (value.IsValid())\n"
                << "            CheckFixed(" << text << ", " << Quote(p.schemaName) << ", "
                << Quote(p.attribute->fixedText) << ");\n";
        }
        out << "        break;\n";
    }
    if (type.base)
        out << "    default:\n        " << type.base->className
            << "::AccessProperty(propertyId, readAccess, value);\n        break;\n";
    out << "    }\n}\n\n";
}

char const* ElementType(Property const& p)
{
    return p.grouping ? "XmlElementType_PseudoChild" : "XmlElementType_Element";
}

// Whether a grouping class must take at least one element when it is not
// optional: a choice whose alternatives are all required, or a sequence or
// all with a required child.
bool RequiresContent(ComplexType const& group)
{
    bool any = false, all = true;
    for (Particle const& particle : group.particles) {
        any = any || particle.minOccurs > 0;
        all = all && particle.minOccurs > 0;
    }
    return group.group == GroupKind::Choice ? all && !group.particles.empty() : any;
}

std::string ElementEntry(NamespaceModel const& ns, ComplexType const& type, Property const& p)
{
    std::string const group = GroupName(type.group);
    // A choice has no mandatory alternatives: each one may be the one not taken.
    std::string const occurs = p.kind == Kind::Collection || p.kind == Kind::AnyElements || p.kind == Kind::Values
                                   ? "Col"
                               : p.optional ? "Opt"
                                            : "Mnd";
    std::string const head = Quote(p.schemaName) + ", " + p.nsExpr + ", Property_" + p.name;
    if (p.particle && p.particle->hasDefault)
        return "new CElementInfo" + group + "Prim" + occurs + "(" + head +
               ", KdBind::ItemType_string, nullptr, CWhitespaceUtils::WhitespaceRule_Preserve, "
               "CPrimitiveRestrictions())";
    switch (p.kind) {
    case Kind::Prim:
        return "new CElementInfo" + group + "Prim" + occurs + "(" + head + ", KdBind::" + p.simple->itemType +
               ", nullptr, CWhitespaceUtils::" + p.simple->whitespace + ", " + Restrictions(*p.simple) + ")";
    case Kind::Enum: {
        std::string const e = Qualify(ns, p.simple->owner, p.simple->enumName);
        return "new CElementInfo" + group + "Enum" + occurs + "(" + head + ", &" + e + "ToString, &" + e +
               "FromString)";
    }
    case Kind::Class: {
        if (!p.complex->derived.empty())
            return "new CElementInfo" + group + "AbsCls" + occurs + "(" + head + ", XmlElementType_Element, &" +
                   FactoryOf(ns, *p.complex) + "::CreateObject)";
        std::string const factory = std::string(", ") + ElementType(p) + ", &" +
                                    Qualify(ns, p.complex->owner, "CreateObject") + ", " + ClassIdOf(ns, *p.complex);
        if (p.optional)
            return "new CElementInfo" + group + "Cls" + occurs + "(" + head + factory + ")";
        bool const contentRequired = p.grouping && RequiresContent(*p.complex);
        return "new CElementInfo" + group + "Cls" + occurs + "(" + head + factory + ", " +
               (contentRequired ? "true" : "false") + ")";
    }
    case Kind::AnyElement: {
        std::string const wildcard = Quote(p.any->spec) + ", " + WildcardTarget(ns, *p.any) + ")";
        if (p.optional)
            return "new CElementInfo" + group + "UntpdOpt(" + head + ", " + wildcard;
        // The namespace of the entry only names the wildcard in the message
        // of a missing element; the element tests its namespace itself.
        std::string const described =
            p.particle->wildcard ? Quote(WildcardDescription(*p.any)) : p.nsExpr;
        return "new CElementInfo" + group + "UntpdMnd(" + Quote(p.schemaName) + ", " + described + ", Property_" +
               p.name + ", " + wildcard;
    }
    case Kind::AnyElements:
        return "new CElementInfo" + group + "UntpdCol(" + head + ")";
    case Kind::Values:
        return "new CElementInfo" + group + "PrimCol(" + head + ")";
    case Kind::List:
        return "new CElementInfo" + group + "Prim" + occurs + "(" + head +
               ", KdBind::ItemType_string, nullptr, CWhitespaceUtils::WhitespaceRule_Collapse, "
               "CPrimitiveRestrictions())";
    case Kind::Collection:
    case Kind::AnyAttributes:
        break;
    }
    return "new CElementInfo" + group + "ClsCol(" + head + ", " + ElementType(p) + ")";
}

std::string AttributeEntry(NamespaceModel const& ns, Property const& p)
{
    Attribute const& a = *p.attribute;
    if (a.wildcard)
        return "new CAttributeInfoAny(\"\", \"\", Property_" + p.name + ", true, " + Quote(a.any.spec) + ", " +
               WildcardTarget(ns, a.any) + ", nullptr)";
    std::string const head = Quote(a.name) + ", " + p.nsExpr + ", Property_" + p.name + ", " +
                             (p.optional ? "true" : "false");
    // A fixed value is written as the library writes the value, so it is
    // given in that form: the option that leaves defaults out compares texts.
    std::string const defaultValue = a.fixed ? Quote(a.fixedText) : a.hasDefault ? Quote(a.defaultValue) : "nullptr";
    if (p.kind == Kind::List)
        return "new CAttributeInfoPrimitive(" + head +
               ", KdBind::ItemType_string, nullptr, CWhitespaceUtils::WhitespaceRule_Collapse, "
               "CPrimitiveRestrictions(), nullptr)";
    if (p.kind == Kind::Enum) {
        std::string const e = Qualify(ns, p.simple->owner, p.simple->enumName);
        return "new CAttributeInfoEnum(" + head + ", &" + e + "ToString, &" + e + "FromString, " + defaultValue +
               ")";
    }
    return "new CAttributeInfoPrimitive(" + head + ", KdBind::" + p.simple->itemType + ", nullptr, CWhitespaceUtils::" +
           p.simple->whitespace + ", " + Restrictions(*p.simple) + ", " + defaultValue + ")";
}

void EmitTables(std::ostream& out, NamespaceModel const& ns, ComplexType const& type,
                std::vector<Property> const& properties)
{
    std::string const& c = type.className;
    out << "CParentElementInfo* " << c << "::GetClassInfo() const\n{\n"
        << "    return m_tables.classInfo.Get([] {\n"
        << "        return new CParentElementInfo(" << GroupEnumerator(type.group) << ", "
        << (type.isGroup ? "XmlElementType_PseudoChild" : "XmlElementType_Element") << ", "
        // In a hierarchy the name is the type's: an object under another
        // element name writes it as xsi:type.
        << Quote(type.base || !type.derived.empty() ? type.schemaName : type.elementName) << ", NAMESPACE, "
        << (type.hasText ? "Property_" + type.textProperty : std::string("-1")) << ", "
        << (type.isGroup ? "false" : "true") << ", " << (type.base ? "true" : "false") << ");\n"
        << "    });\n}\n\n";

    std::vector<std::string> elements, attributes;
    std::vector<Property> all;
    for (ComplexType const* base : BaseChain(type))
        for (Property const& p : PropertiesOf(*base))
            all.push_back(p);
    all.insert(all.end(), properties.begin(), properties.end());
    std::vector<std::string> wildcards;
    for (Property const& p : all) {
        if (p.attribute)
            (p.kind == Kind::AnyAttributes ? wildcards : attributes).push_back(AttributeEntry(ns, p));
        else if (!p.isText)
            elements.push_back(ElementEntry(ns, type, p));
    }
    // An attribute wildcard refuses what reaches it, so it stands last,
    // behind the attributes a derived class adds.
    attributes.insert(attributes.end(), wildcards.begin(), wildcards.end());
    auto table = [&](char const* getter, char const* tableName, char const* entryType,
                     std::vector<std::string> const& entries) {
        out << "KdBindData::" << entryType << "** " << c << "::" << getter << "() const\n{\n"
            << "    return m_tables." << tableName << ".Get([] {\n"
            << "        return new " << entryType << "*[" << entries.size() + 1 << "]{\n";
        for (std::string const& entry : entries)
            out << "            " << entry << ",\n";
        out << "            nullptr};\n    });\n}\n\n";
    };
    table("GetClassElementInfo", "elementInfo", "CElementInfo", elements);
    table("GetClassAttributeInfo", "attributeInfo", "CAttributeInfo", attributes);
}

void EmitClassDefinition(std::ostream& out, NamespaceModel const& ns, ComplexType const& type)
{
    std::vector<Property> const properties = PropertiesOf(type);
    std::string const& c = type.className;
    out << "// ---------------------------------------------------------------------------\n"
        << "// " << c << "\n"
        << "// ---------------------------------------------------------------------------\n\n"
        << "CClassTables " << c << "::m_tables;\n\n"
        << c << "::" << c << "()\n{\n"
        << "    SetElementName(" << Quote(type.elementName) << ");\n"
        << "    Init();\n}\n\n";
    EmitInit(out, ns, type, properties);
    EmitSetters(out, ns, type, properties);
    EmitAccessProperty(out, ns, type, properties);
    EmitTables(out, ns, type, properties);
}

} // namespace

std::string EmitSource(NamespaceModel const& ns)
{
    std::ostringstream out;
    out << Banner(ns) << "; do not edit.\n"
        << "#include <cstring>\n\n"
        << "#include \"" << ns.fileStem << ".h\"\n\n"
        << "using namespace KdBindData;\n"
        << "using KdBind::CPrimitiveRestrictions;\n"
        << "using KdBind::CWhitespaceUtils;\n"
        << "using KdBind::CXmlObjectBase;\n"
        << "using KdBind::KdVariant;\n\n"
        << "namespace " << ns.cppNamespace << " {\n\n"
        << "char const* const NAMESPACE = " << Quote(ns.uri) << ";\n\n";
    EmitEnumDefinitions(out, ns);
    EmitFactories(out, ns);
    for (auto const& type : ns.types)
        EmitClassDefinition(out, ns, *type);
    out << "} // namespace " << ns.cppNamespace << "\n";
    return out.str();
}

std::string EmitRoundtripMain(SchemaSet const& set)
{
    std::ostringstream out;
    out << "// Generated by kdbind-xsd; do not edit.\n"
        << "// Reads the document named by the argument, or standard input, into the\n"
        << "// classes of its document element and writes it back to standard output.\n"
        << "// The input may be text or Fast Infoset, either one compressed; the output\n"
        << "// is formatted text unless the options ask for another form.\n"
        << "// A document the schemas refuse is reported with the library's message and\n"
        << "// exit status 1.\n"
        << "#include <cstdio>\n#include <string>\n#include <vector>\n\n";
    for (auto const& ns : set.namespaces)
        out << "#include \"" << ns->fileStem << ".h\"\n";
    out << R"(
namespace {

CSmartPtr<KdBind::CXmlObjectBase> CreateRoot(std::string const& ns, char const* name)
{
)";
    for (auto const& ns : set.namespaces)
        out << "    if (ns == ::" << ns->cppNamespace << "::NAMESPACE)\n"
            << "        return ::" << ns->cppNamespace << "::CreateRootObject(name);\n";
    out << R"(    return nullptr;
}

bool ReadAll(FILE* file, std::vector<unsigned char>& data)
{
    unsigned char buffer[65536];
    size_t count;
    while ((count = fread(buffer, 1, sizeof buffer, file)) > 0)
        data.insert(data.end(), buffer, buffer + count);
    return !ferror(file);
}

void CleanMetaData()
{
)";
    for (auto const& ns : set.namespaces)
        out << "    ::" << ns->cppNamespace << "::CleanMetaData();\n";
    out << R"(}

} // namespace

int Usage(char const* program)
{
    fprintf(stderr,
            "usage: %s [--compact] [--fast-infoset] [--gzip | --zlib] [DOCUMENT]\n"
            "Reads DOCUMENT (or standard input): XML text or Fast Infoset, either one\n"
            "optionally compressed with gzip or zlib. Writes it back to standard output\n"
            "as formatted XML text; --compact writes text without formatting,\n"
            "--fast-infoset writes Fast Infoset, --gzip and --zlib compress the output.\n",
            program);
    return 2;
}

int main(int argc, char** argv)
{
    bool compact = false, fastInfoset = false;
    KdBind::CompressionType compression = KdBind::CompressionType_None;
    char const* path = nullptr;
    for (int i = 1; i < argc; ++i) {
        std::string const arg = argv[i];
        if (arg == "--compact")
            compact = true;
        else if (arg == "--fast-infoset")
            fastInfoset = true;
        else if (arg == "--gzip" && compression == KdBind::CompressionType_None)
            compression = KdBind::CompressionType_GZip;
        else if (arg == "--zlib" && compression == KdBind::CompressionType_None)
            compression = KdBind::CompressionType_ZLib;
        else if (arg.empty() || arg[0] == '-' || path)
            return Usage(argv[0]);
        else
            path = argv[i];
    }
    std::vector<unsigned char> data;
    FILE* input = path ? fopen(path, "rb") : stdin;
    if (!input || !ReadAll(input, data)) {
        fprintf(stderr, "%s: cannot read [%s]\n", argv[0], path ? path : "standard input");
        return 2;
    }
    if (input != stdin)
        fclose(input);

    int status = 0;
    try {
        KdBind::CXmlDocument document;
        document.LoadXmlStream(data.data(), static_cast<unsigned long>(data.size()));
        KdBind::CXmlElement* root = document.GetDocumentElement();
        CSmartPtr<KdBind::CXmlObjectBase> object =
            root ? CreateRoot(root->GetNamespaceURI(), root->GetLocalName().c_str()) : nullptr;
        if (!object) {
            fprintf(stderr, "%s: the document element [%s] in namespace [%s] is no global element of the schemas\n",
                    argv[0], root ? root->GetLocalName().c_str() : "", root ? root->GetNamespaceURI().c_str() : "");
            status = 1;
        } else {
            object->FromXmlElement(root);
            if (fastInfoset || compression != KdBind::CompressionType_None) {
                KdBind::CBinaryData const bytes =
                    fastInfoset ? object->ToFastInfosetStream(KdBind::FInfoDecl_10_Encoding,
                                                              KdBind::CXmlSerializationContext::m_defaultContext,
                                                              compression)
                                : object->ToXmlStream(true, !compact, KdBind::XmlEncoding_UTF8, KdBind::EOLType_LF,
                                                      KdBind::CXmlSerializationContext::m_defaultContext, compression);
                fwrite(bytes.GetData(), 1, bytes.GetLength(), stdout);
            } else {
                std::string const text = object->ToXml(true, !compact);
                fwrite(text.data(), 1, text.size(), stdout);
            }
        }
    } catch (KdBind::CKdException const& e) {
        fprintf(stderr, "%s: %s\n", argv[0], e.GetFullMessage().c_str());
        status = 1;
    }
    CleanMetaData();
    return status;
}
)";
    return out.str();
}

std::string EmitUmbrella(SchemaSet const& set, std::string const& extension)
{
    std::ostringstream out;
    out << "// Generated by kdbind-xsd; do not edit.\n";
    for (auto const& ns : set.namespaces)
        out << "#include \"" << ns->fileStem << extension << "\"\n";
    return out.str();
}

} // namespace KdXsd
