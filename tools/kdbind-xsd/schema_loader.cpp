// Reads schema documents through the library's element tree into the schema
// model, and refuses what the model cannot hold.
//
// The element tree keeps no line numbers, so a refusal names the place in
// the document by its element path, e.g.
// "/xs:schema/xs:complexType[@name='Order']/xs:sequence/xs:any[1]".
// Prefixes in type names are looked up in the document's prefix map, which
// holds the last declaration of each prefix: a schema that binds one prefix
// to two namespaces in different places is read with the last binding.
#include <algorithm>
#include <filesystem>
#include <set>

#include "names.h"
#include "schema_model.h"

namespace KdXsd {

namespace {

using KdBind::CXmlElement;

char const* const kXsd = "http://www.w3.org/2001/XMLSchema";

struct Document {
    std::string path;
    std::unique_ptr<KdBind::CXmlDocument> xml;
    NamespaceModel* ns = nullptr;
    bool elementsQualified = false;
    bool attributesQualified = false;
    std::map<CXmlElement const*, std::string> paths;  // element -> its path, for messages
};

struct Declaration {
    CXmlElement* node = nullptr;
    Document* doc = nullptr;
};

using QName = std::pair<std::string, std::string>;  // namespace URI, local name

bool GetAttribute(CXmlElement const* node, char const* name, std::string& value)
{
    for (KdBind::CXmlAttribute const* attribute : node->GetAttributes())
        if (attribute->GetLocalName() == name && attribute->GetNamespaceURI().empty()) {
            value = attribute->GetValue();
            return true;
        }
    return false;
}

std::string AttributeOr(CXmlElement const* node, char const* name, std::string const& fallback = "")
{
    std::string value;
    return GetAttribute(node, name, value) ? value : fallback;
}

bool IsXsd(CXmlElement const* node, char const* localName)
{
    return node->GetNamespaceURI() == kXsd && node->GetLocalName() == localName;
}

void ComputePaths(CXmlElement const* node, std::string const& path, Document& doc)
{
    doc.paths[node] = path;
    std::map<std::string, int> counts;
    for (CXmlElement const* child = node->GetFirstElement(); child; child = child->GetNextSiblingElement()) {
        std::string const prefix = child->GetNamespaceURI() == kXsd ? "xs:" : "";
        std::string step = path + "/" + prefix + child->GetLocalName();
        std::string name;
        if (GetAttribute(child, "name", name))
            step += "[@name='" + name + "']";
        else
            step += "[" + std::to_string(++counts[child->GetLocalName()]) + "]";
        ComputePaths(child, step, doc);
    }
}

class CLoader {
public:
    explicit CLoader(std::map<std::string, std::string> const& cppNamespaces) : m_cppNamespaces(cppNamespaces)
    {
        for (char const* name : {"AnyElement", "ClassId", "NAMESPACE", "CreateObject", "CreateRootObject",
                                 "CleanMetaData", "CLazyTable", "CClassTables", "CSchemaClass", "CClassCol"})
            m_reserved.push_back(name);
    }

    SchemaSet Load(std::vector<std::string> const& files)
    {
        for (std::string const& file : files)
            ReadDocument(file, nullptr, nullptr);
        // Components are built in document order, so that output does not
        // depend on anything but the schemas.
        for (auto const& doc : m_documents)
            for (CXmlElement* child = doc->xml->GetDocumentElement()->GetFirstElement(); child;
                 child = child->GetNextSiblingElement()) {
                if (IsXsd(child, "complexType"))
                    BuildNamedComplex({child, doc.get()});
                else if (IsXsd(child, "simpleType"))
                    BuildNamedSimple({child, doc.get()});
                else if (IsXsd(child, "element"))
                    BuildGlobalElement(child, *doc);
            }
        for (auto const& ns : m_set.namespaces)
            for (auto const& type : ns->types)
                for (ComplexType* base = type->base; base; base = base->base)
                    base->derived.push_back(type.get());
        for (auto const& ns : m_set.namespaces)
            for (auto const& type : ns->types)
                CheckSubstitutableElements(*type);
        std::set<ComplexType const*> done;
        for (auto const& ns : m_set.namespaces) {
            std::vector<NamespaceModel const*> namespaces;
            CheckNamespaceCycles(ns.get(), namespaces);
            for (auto const& type : ns->types) {
                std::vector<ComplexType const*> types;
                CheckRequiredCycles(type.get(), types, done);
            }
        }
        return std::move(m_set);
    }

private:
    static std::string Where(Document const& doc, CXmlElement const* node)
    {
        auto const path = doc.paths.find(node);
        return doc.path + ": " + (path == doc.paths.end() ? std::string() : path->second);
    }

    [[noreturn]] void Fail(Document const& doc, CXmlElement const* node, std::string const& message) const
    {
        throw CSchemaError(Where(doc, node) + ": " + message);
    }

    // A class whose constructor makes a required child of its own class,
    // directly or through others, would never finish constructing.
    static void CheckRequiredCycles(ComplexType const* type, std::vector<ComplexType const*>& path,
                                    std::set<ComplexType const*>& done)
    {
        if (done.count(type))
            return;
        if (std::find(path.begin(), path.end(), type) != path.end())
            throw CSchemaError(type->location + ": the type [" + type->schemaName +
                               "] must contain itself through required children");
        path.push_back(type);
        for (Particle const& particle : type->particles)
            if (particle.complex && particle.minOccurs > 0 && particle.maxOccurs == 1 &&
                type->group != GroupKind::Choice)
                CheckRequiredCycles(particle.complex, path, done);
        path.pop_back();
        done.insert(type);
    }

    // Generated headers include the headers of the namespaces they use, so
    // two namespaces cannot use each other.
    static void CheckNamespaceCycles(NamespaceModel const* ns, std::vector<NamespaceModel const*>& path)
    {
        if (std::find(path.begin(), path.end(), ns) != path.end())
            throw CSchemaError("the namespaces [" + path.back()->uri + "] and [" + ns->uri +
                               "] use each other's types: this is not supported yet");
        path.push_back(ns);
        for (NamespaceModel const* dependency : ns->dependencies)
            CheckNamespaceCycles(dependency, path);
        path.pop_back();
    }

    [[noreturn]] void Unsupported(Document const& doc, CXmlElement const* node, std::string const& construct) const
    {
        Fail(doc, node, construct + " is not supported yet");
    }

    // ---- documents -------------------------------------------------------

    void ReadDocument(std::string const& file, Document const* from, CXmlElement const* reference)
    {
        std::error_code error;
        std::filesystem::path const path = std::filesystem::weakly_canonical(file, error);
        std::string const key = error ? file : path.string();
        if (m_loaded.count(key))
            return;
        m_loaded.insert(key);

        auto doc = std::make_unique<Document>();
        doc->path = file;
        doc->xml = std::make_unique<KdBind::CXmlDocument>();
        try {
            doc->xml->Load(file.c_str());
        } catch (KdBind::CKdException const& e) {
            std::string const message = "cannot read the schema [" + file + "]: " + e.GetFullMessage();
            if (from)
                Fail(*from, reference, message);
            throw CSchemaError(message);
        }
        CXmlElement* root = doc->xml->GetDocumentElement();
        if (!root || !IsXsd(root, "schema"))
            throw CSchemaError(file + ": the document element is not xs:schema");
        ComputePaths(root, "/xs:schema", *doc);

        std::string const targetNamespace = AttributeOr(root, "targetNamespace");
        if (from && IsXsd(reference, "include") && targetNamespace != from->ns->uri)
            Unsupported(*from, reference, "an include of a schema of another target namespace ([" +
                                              targetNamespace + "])");
        if (from && IsXsd(reference, "import")) {
            std::string expected;
            if (GetAttribute(reference, "namespace", expected) && expected != targetNamespace)
                Fail(*from, reference, "the imported schema has the target namespace [" + targetNamespace +
                                           "], not [" + expected + "]");
        }
        doc->ns = FindNamespace(targetNamespace, path.stem().string());
        doc->ns->sourceFiles.push_back(file);
        doc->elementsQualified = AttributeOr(root, "elementFormDefault") == "qualified";
        doc->attributesQualified = AttributeOr(root, "attributeFormDefault") == "qualified";
        Document* const current = doc.get();
        m_documents.push_back(std::move(doc));

        for (CXmlElement* child = root->GetFirstElement(); child; child = child->GetNextSiblingElement()) {
            std::string name;
            if (child->GetNamespaceURI() != kXsd)
                Unsupported(*current, child, "a foreign element in xs:schema");
            std::string const& kind = child->GetLocalName();
            if (kind == "include" || kind == "import") {
                std::string location;
                if (!GetAttribute(child, "schemaLocation", location)) {
                    if (kind == "include")
                        Fail(*current, child, "xs:include without schemaLocation");
                    continue;  // the namespace must come from another file of the command line
                }
                if (location.find("://") != std::string::npos)
                    Unsupported(*current, child, "a schema location that is not a local file");
                std::filesystem::path const target = std::filesystem::path(file).parent_path() / location;
                ReadDocument(target.string(), current, child);
            } else if (kind == "complexType" || kind == "simpleType" || kind == "element" || kind == "group" ||
                       kind == "attributeGroup") {
                if (!GetAttribute(child, "name", name))
                    Fail(*current, child, "a global xs:" + kind + " without a name");
                auto& table = kind == "complexType" ? m_complexTypes
                              : kind == "simpleType" ? m_simpleTypes
                              : kind == "group"      ? m_groups
                              : kind == "attributeGroup" ? m_attributeGroups
                                                     : m_elements;
                if (!table.emplace(QName(targetNamespace, name), Declaration{child, current}).second)
                    Fail(*current, child, "a second global xs:" + kind + " named [" + name + "]");
            } else if (kind == "redefine" || kind == "override") {
                Unsupported(*current, child, "xs:" + kind);
            }
            // Annotations, and definitions of attributes and notations make
            // no classes by themselves; every reference to one is refused
            // where it stands.
        }
    }

    NamespaceModel* FindNamespace(std::string const& uri, std::string const& stem)
    {
        for (auto const& ns : m_set.namespaces)
            if (ns->uri == uri)
                return ns.get();
        auto ns = std::make_unique<NamespaceModel>();
        ns->uri = uri;
        ns->fileStem = m_fileStems.Unique(stem);
        auto const mapped = m_cppNamespaces.find(uri);
        ns->cppNamespace = m_cppNamespaces.count(uri) ? mapped->second
                                                      : m_cppNamespaceNames.Unique(ToIdentifier(stem) + "Schema");
        m_cppNamespaceNames.Reserve(ns->cppNamespace);
        for (std::string const& name : m_reserved)
            m_typeNames[ns.get()].Reserve(name);
        m_set.namespaces.push_back(std::move(ns));
        return m_set.namespaces.back().get();
    }

    static void AddDependency(NamespaceModel* ns, NamespaceModel const* other)
    {
        if (other && other != ns &&
            std::find(ns->dependencies.begin(), ns->dependencies.end(), other) == ns->dependencies.end())
            ns->dependencies.push_back(other);
    }

    QName ResolveQName(Document const& doc, CXmlElement const* node, std::string const& text) const
    {
        auto const colon = text.find(':');
        std::string const prefix = colon == std::string::npos ? "" : text.substr(0, colon);
        std::string const local = colon == std::string::npos ? text : text.substr(colon + 1);
        auto const& aliases = doc.xml->GetAliasMap();
        auto const found = aliases.find(prefix);
        if (found == aliases.end()) {
            if (!prefix.empty())
                Fail(doc, node, "the prefix [" + prefix + "] of [" + text + "] is not declared");
            return {"", local};
        }
        return {found->second, local};
    }

    // ---- types -------------------------------------------------------------

    // A type reference is either a complex type or a simple one.
    struct TypeRef {
        ComplexType* complex = nullptr;
        SimpleType simple;
        bool untyped = false;  // xs:anyType: any content, held as an untyped element
    };

    TypeRef ResolveType(Document& doc, CXmlElement const* node, std::string const& text)
    {
        QName const name = ResolveQName(doc, node, text);
        TypeRef result;
        if (name.first == kXsd) {
            if (name.second == "anyType") {
                result.untyped = true;
                return result;
            }
            BuiltinType const* builtin = FindBuiltinType(name.second);
            if (!builtin)
                Unsupported(doc, node, "the built-in type xs:" + name.second);
            result.simple.itemType = builtin->itemType;
            result.simple.whitespace = builtin->whitespace;
            result.simple.list = builtin->list;
            return result;
        }
        auto const complex = m_complexTypes.find(name);
        if (complex != m_complexTypes.end()) {
            result.complex = BuildNamedComplex(complex->second);
            AddDependency(doc.ns, result.complex->owner);
            return result;
        }
        auto const simple = m_simpleTypes.find(name);
        if (simple != m_simpleTypes.end()) {
            result.simple = BuildNamedSimple(simple->second);
            AddDependency(doc.ns, result.simple.owner);
            return result;
        }
        Fail(doc, node, "unknown type [" + text + "] (namespace [" + name.first + "])");
    }

    SimpleType BuildNamedSimple(Declaration const& declaration)
    {
        auto const built = m_simpleBuilt.find(declaration.node);
        if (built != m_simpleBuilt.end())
            return built->second;
        if (!m_simpleInProgress.insert(declaration.node).second)
            Fail(*declaration.doc, declaration.node, "the simple type derives from itself");
        SimpleType type = BuildSimple(*declaration.doc, declaration.node, AttributeOr(declaration.node, "name"));
        m_simpleInProgress.erase(declaration.node);
        m_simpleBuilt[declaration.node] = type;
        return type;
    }

    // hint names an enumeration that the type declares.
    SimpleType BuildSimple(Document& doc, CXmlElement const* node, std::string const& hint)
    {
        for (CXmlElement const* child = node->GetFirstElement(); child; child = child->GetNextSiblingElement()) {
            if (IsXsd(child, "annotation"))
                continue;
            if (IsXsd(child, "restriction"))
                return BuildRestriction(doc, child, hint);
            if (IsXsd(child, "list"))
                return BuildList(doc, child, hint);
            if (IsXsd(child, "union")) {
                // Held as its text: which member type a value belongs to is
                // not decided.
                SimpleType text;
                text.whitespace = "WhitespaceRule_Collapse";
                return text;
            }
            Unsupported(doc, child, "xs:" + child->GetLocalName() + " in a simple type");
        }
        Fail(doc, node, "a simple type without xs:restriction, xs:list or xs:union");
    }

    // A list of the item type: the item's facets test each item.
    SimpleType BuildList(Document& doc, CXmlElement const* node, std::string const& hint)
    {
        SimpleType item;
        std::string itemType;
        if (GetAttribute(node, "itemType", itemType)) {
            TypeRef const ref = ResolveType(doc, node, itemType);
            if (ref.complex || ref.untyped)
                Fail(doc, node, "a list of the complex type [" + itemType + "]");
            item = ref.simple;
        } else {
            CXmlElement const* inner = node->GetFirstElement();
            while (inner && IsXsd(inner, "annotation"))
                inner = inner->GetNextSiblingElement();
            if (!inner || !IsXsd(inner, "simpleType"))
                Fail(doc, node, "xs:list without an item type");
            item = BuildSimple(doc, inner, hint + "Item");
        }
        if (item.list)
            Fail(doc, node, "a list of a list type");
        if (item.IsEnum())
            Unsupported(doc, node, "a list of an enumeration type (the value lists have no enumeration facet)");
        item.list = true;
        return item;
    }

    SimpleType BuildRestriction(Document& doc, CXmlElement const* node, std::string const& hint)
    {
        SimpleType type;
        std::string base;
        if (GetAttribute(node, "base", base)) {
            TypeRef const ref = ResolveType(doc, node, base);
            if (ref.complex || ref.untyped)
                Fail(doc, node, "a simple type restricts the complex type [" + base + "]");
            type = ref.simple;
        }
        bool sawBase = !base.empty();
        std::vector<std::string> enumeration;
        bool sawPattern = false;
        for (CXmlElement const* facet = node->GetFirstElement(); facet; facet = facet->GetNextSiblingElement()) {
            std::string const& kind = facet->GetLocalName();
            std::string value;
            if (facet->GetNamespaceURI() != kXsd)
                Unsupported(doc, facet, "a foreign element in xs:restriction");
            if (kind == "annotation")
                continue;
            if (kind == "simpleType") {
                type = BuildSimple(doc, facet, hint);
                sawBase = true;
                continue;
            }
            if (!GetAttribute(facet, "value", value))
                Fail(doc, facet, "the facet xs:" + kind + " has no value");
            if (type.list) {
                // The facets of a list type: lengths count its items.
                if (kind == "length" || kind == "minLength" || kind == "maxLength") {
                    int const number = ParseCount(doc, facet, value);
                    (kind == "length" ? type.listLength : kind == "minLength" ? type.listMinLength
                                                                             : type.listMaxLength) = number;
                } else if (kind != "whiteSpace" || value != "collapse") {
                    Unsupported(doc, facet, "the facet xs:" + kind + " on a list type");
                }
                continue;
            }
            if (kind == "enumeration") {
                enumeration.push_back(value);
            } else if (kind == "pattern") {
                if (sawPattern)
                    Unsupported(doc, facet, "a second xs:pattern in one restriction");
                sawPattern = true;
                CheckPattern(doc, facet, value);
                type.pattern = value;
            } else if (kind == "length" || kind == "minLength" || kind == "maxLength") {
                int const number = ParseCount(doc, facet, value);
                (kind == "length" ? type.length : kind == "minLength" ? type.minLength : type.maxLength) = number;
            } else if (kind == "minInclusive") {
                type.minInclusive = value;
            } else if (kind == "maxInclusive") {
                type.maxInclusive = value;
            } else if (kind == "minExclusive") {
                type.minExclusive = value;
            } else if (kind == "maxExclusive") {
                type.maxExclusive = value;
            } else if (kind == "whiteSpace") {
                if (value == "preserve")
                    type.whitespace = "WhitespaceRule_Preserve";
                else if (value == "replace")
                    type.whitespace = "WhitespaceRule_Replace";
                else if (value == "collapse")
                    type.whitespace = "WhitespaceRule_Collapse";
                else
                    Fail(doc, facet, "unknown whiteSpace value [" + value + "]");
            } else {
                Unsupported(doc, facet, "the facet xs:" + kind);
            }
        }
        if (!sawBase)
            Fail(doc, node, "xs:restriction without a base type");
        if (!enumeration.empty()) {
            // A restriction's enumeration replaces the base's: a new enum.
            type.enumeration = enumeration;
            type.enumName = m_typeNames[doc.ns].Unique(ToIdentifier(hint));
            type.owner = doc.ns;
            doc.ns->enums.push_back(type);
        }
        return type;
    }

    int ParseCount(Document const& doc, CXmlElement const* node, std::string const& text) const
    {
        if (text.empty() || text.size() > 9 || text.find_first_not_of("0123456789") != std::string::npos)
            Fail(doc, node, "[" + text + "] is not a count the compiler accepts");
        return std::stoi(text);
    }

    // The library compiles a pattern when a value is first checked, and a
    // pattern it refuses there stops the process; refuse it here instead,
    // asking the library's own translation and compilation.
    void CheckPattern(Document const& doc, CXmlElement const* node, std::string const& pattern) const
    {
        std::string const refusal = KdBind::CCompiledPattern::Diagnose(pattern);
        if (!refusal.empty())
            Fail(doc, node, "the pattern [" + pattern + "] is refused by the pattern engine: " + refusal);
    }

    ComplexType* BuildNamedComplex(Declaration const& declaration)
    {
        auto const built = m_complexBuilt.find(declaration.node);
        if (built != m_complexBuilt.end())
            return built->second;
        std::string const name = AttributeOr(declaration.node, "name");
        return BuildComplex(*declaration.doc, declaration.node, name);
    }

    // The type is registered before its content is read, so that a type may
    // contain itself (optionally or repeated).
    ComplexType* BuildComplex(Document& doc, CXmlElement const* node, std::string const& schemaName)
    {
        auto owned = std::make_unique<ComplexType>();
        ComplexType* type = owned.get();
        type->schemaName = schemaName;
        type->elementName = schemaName;
        type->owner = doc.ns;
        type->location = Where(doc, node);
        type->className = m_typeNames[doc.ns].Unique("C" + ToIdentifier(schemaName));
        doc.ns->types.push_back(std::move(owned));
        m_complexBuilt[node] = type;

        type->abstract = AttributeOr(node, "abstract") == "true" || AttributeOr(node, "abstract") == "1";
        m_complexInProgress.insert(type);
        if (AttributeOr(node, "mixed") == "true" || AttributeOr(node, "mixed") == "1")
            Unsupported(doc, node, "mixed content");

        CNameScope properties;
        ReserveBaseNames(properties);
        bool sawGroup = false;
        for (CXmlElement const* child = node->GetFirstElement(); child; child = child->GetNextSiblingElement()) {
            std::string const& kind = child->GetLocalName();
            if (child->GetNamespaceURI() != kXsd)
                Unsupported(doc, child, "a foreign element in xs:complexType");
            if (kind == "annotation")
                continue;
            if (kind == "sequence" || kind == "choice" || kind == "all") {
                if (sawGroup)
                    Fail(doc, child, "a second model group in one complex type");
                sawGroup = true;
                type->group = kind == "sequence" ? GroupKind::Sequence
                              : kind == "choice" ? GroupKind::Choice
                                                 : GroupKind::All;
                ReadGroup(doc, child, *type, properties, true);
            } else if (kind == "attribute") {
                type->attributes.push_back(ReadAttribute(doc, child, properties));
            } else if (kind == "group") {
                if (sawGroup)
                    Fail(doc, child, "a second model group in one complex type");
                sawGroup = true;
                type->particles.push_back(ReadGroupParticle(doc, child, properties));
            } else if (kind == "attributeGroup") {
                ReadAttributeGroup(doc, child, properties, type->attributes);
            } else if (kind == "anyAttribute") {
                type->attributes.push_back(ReadAnyAttribute(doc, child, properties));
            } else if (kind == "simpleContent") {
                if (sawGroup)
                    Fail(doc, child, "simple content next to a model group");
                sawGroup = true;
                ReadSimpleContent(doc, child, *type, properties);
            } else if (kind == "complexContent") {
                if (sawGroup)
                    Fail(doc, child, "complex content next to a model group");
                sawGroup = true;
                ReadComplexContent(doc, child, *type, properties);
            } else {
                Unsupported(doc, child, "xs:" + kind + " in a complex type");
            }
        }
        m_complexInProgress.erase(type);
        CheckAttributeWildcards(*type);
        return type;
    }

    // An extension of a complex type: the class derives from the base's
    // class and adds its own children after the base's, and its attributes.
    void ReadComplexContent(Document& doc, CXmlElement const* node, ComplexType& type, CNameScope& properties)
    {
        if (AttributeOr(node, "mixed") == "true" || AttributeOr(node, "mixed") == "1")
            Unsupported(doc, node, "mixed content");
        for (CXmlElement const* child = node->GetFirstElement(); child; child = child->GetNextSiblingElement()) {
            if (IsXsd(child, "annotation"))
                continue;
            if (IsXsd(child, "restriction"))
                Unsupported(doc, child, "restriction of a complex type");
            if (!IsXsd(child, "extension"))
                Fail(doc, child, "xs:" + child->GetLocalName() + " in xs:complexContent");
            std::string baseName;
            if (!GetAttribute(child, "base", baseName))
                Fail(doc, child, "xs:extension without a base type");
            TypeRef const ref = ResolveType(doc, child, baseName);
            if (ref.untyped)
                Unsupported(doc, child, "an extension of xs:anyType");
            if (!ref.complex)
                Fail(doc, child, "xs:complexContent extends the simple type [" + baseName + "]");
            ComplexType* base = ref.complex;
            if (base->owner != type.owner)
                Unsupported(doc, child, "an extension of a type of another namespace");
            if (m_complexInProgress.count(base))
                Unsupported(doc, child, "an extension of a type that contains it");
            if (base->hasText)
                Unsupported(doc, child, "an extension of a type with simple content");
            type.base = base;
            bool baseHasChildren = false;
            for (ComplexType const* b = base; b; b = b->base) {
                baseHasChildren = baseHasChildren || !b->particles.empty();
                for (Particle const& particle : b->particles)
                    properties.Reserve(particle.property);
                for (Attribute const& attribute : b->attributes)
                    properties.Reserve(attribute.property);
            }
            type.group = base->group;
            for (CXmlElement const* item = child->GetFirstElement(); item; item = item->GetNextSiblingElement()) {
                std::string const& kind = item->GetLocalName();
                if (item->GetNamespaceURI() != kXsd)
                    Unsupported(doc, item, "a foreign element in xs:extension");
                if (kind == "annotation")
                    continue;
                if (kind == "sequence" || kind == "choice" || kind == "all") {
                    GroupKind const own = kind == "sequence" ? GroupKind::Sequence
                                          : kind == "choice" ? GroupKind::Choice
                                                             : GroupKind::All;
                    bool const hasChildren = item->GetFirstElement() != nullptr;
                    if (baseHasChildren && hasChildren &&
                        (own != GroupKind::Sequence || base->group != GroupKind::Sequence))
                        Unsupported(doc, item, "an extension that adds to a content model other than a sequence");
                    if (!baseHasChildren)
                        type.group = own;
                    ReadGroup(doc, item, type, properties, true);
                } else if (kind == "group") {
                    if (baseHasChildren && base->group != GroupKind::Sequence)
                        Unsupported(doc, item, "an extension that adds to a content model other than a sequence");
                    type.particles.push_back(ReadGroupParticle(doc, item, properties));
                } else if (kind == "attribute") {
                    type.attributes.push_back(ReadAttribute(doc, item, properties));
                } else if (kind == "attributeGroup") {
                    ReadAttributeGroup(doc, item, properties, type.attributes);
                } else if (kind == "anyAttribute") {
                    type.attributes.push_back(ReadAnyAttribute(doc, item, properties));
                } else {
                    Unsupported(doc, item, "xs:" + kind + " in xs:extension");
                }
            }
            return;
        }
        Fail(doc, node, "xs:complexContent without xs:extension");
    }

    // Elements of a type that others extend are read through a factory that
    // follows xsi:type; the forms the metadata has no entry for are refused.
    static void CheckSubstitutableElements(ComplexType const& type)
    {
        for (Particle const& particle : type.particles) {
            ComplexType const* target = particle.complex;
            if (!target || particle.grouping)
                continue;
            std::string const where = type.location + ": the element [" + particle.name + "]";
            if (particle.maxOccurs != 1 && !target->derived.empty())
                throw CSchemaError(where + ": a repeating element of a type that others extend is not supported yet");
            bool const required = particle.minOccurs > 0 && type.group != GroupKind::Choice;
            if (required && target->abstract)
                throw CSchemaError(where + ": a required element of an abstract type is not supported yet");
            if (particle.maxOccurs != 1 && target->abstract)
                throw CSchemaError(where + ": a repeating element of an abstract type is not supported yet");
        }
    }

    // An extension of a simple type by attributes: the text becomes a
    // property of the class.
    void ReadSimpleContent(Document& doc, CXmlElement const* node, ComplexType& type, CNameScope& properties)
    {
        for (CXmlElement const* child = node->GetFirstElement(); child; child = child->GetNextSiblingElement()) {
            if (IsXsd(child, "annotation"))
                continue;
            if (!IsXsd(child, "extension"))
                Unsupported(doc, child, "xs:" + child->GetLocalName() + " of simple content");
            std::string base;
            if (!GetAttribute(child, "base", base))
                Fail(doc, child, "xs:extension without a base type");
            TypeRef const ref = ResolveType(doc, child, base);
            if (ref.complex || ref.untyped)
                Unsupported(doc, child, "simple content that extends a complex type");
            if (ref.simple.list)
                Unsupported(doc, child, "simple content of a list type");
            type.hasText = true;
            type.text = ref.simple;
            type.textProperty = properties.Unique("Value");
            for (CXmlElement const* item = child->GetFirstElement(); item; item = item->GetNextSiblingElement()) {
                std::string const& kind = item->GetLocalName();
                if (item->GetNamespaceURI() != kXsd)
                    Unsupported(doc, item, "a foreign element in xs:extension");
                if (kind == "annotation")
                    continue;
                if (kind == "attribute")
                    type.attributes.push_back(ReadAttribute(doc, item, properties));
                else if (kind == "attributeGroup")
                    ReadAttributeGroup(doc, item, properties, type.attributes);
                else if (kind == "anyAttribute")
                    type.attributes.push_back(ReadAnyAttribute(doc, item, properties));
                else
                    Unsupported(doc, item, "xs:" + kind + " in xs:extension");
            }
            return;
        }
        Fail(doc, node, "xs:simpleContent without xs:extension");
    }

    // checkOccurs: the group is the content model of a complex type, whose
    // own occurrence the metadata cannot express; a nested group's
    // occurrence is its particle's.
    void ReadGroup(Document& doc, CXmlElement const* node, ComplexType& type, CNameScope& properties,
                   bool checkOccurs)
    {
        if (checkOccurs &&
            (AttributeOr(node, "minOccurs", "1") != "1" || AttributeOr(node, "maxOccurs", "1") != "1"))
            Unsupported(doc, node, "minOccurs or maxOccurs on the model group of a complex type");
        for (CXmlElement const* child = node->GetFirstElement(); child; child = child->GetNextSiblingElement()) {
            std::string const& kind = child->GetLocalName();
            if (child->GetNamespaceURI() != kXsd)
                Unsupported(doc, child, "a foreign element in a model group");
            if (kind == "annotation")
                continue;
            if (kind == "element")
                type.particles.push_back(ReadParticle(doc, child, type, properties));
            else if (kind == "sequence" || kind == "choice" || kind == "all" || kind == "group")
                type.particles.push_back(ReadGroupParticle(doc, child, properties, &type));
            else if (kind == "any" && type.group == GroupKind::All)
                Fail(doc, child, "xs:any in xs:all");
            else if (kind == "any")
                type.particles.push_back(ReadWildcardParticle(doc, child, properties));
            else
                Unsupported(doc, child, "xs:" + kind + " in a model group");
        }
    }

    // A nested model group or a reference to a named one: a grouping class,
    // held by the owner as a child without a tag.
    Particle ReadGroupParticle(Document& doc, CXmlElement const* node, CNameScope& properties,
                               ComplexType const* owner = nullptr)
    {
        Particle particle;
        particle.minOccurs = ReadOccurs(doc, node, "minOccurs");
        particle.maxOccurs = ReadOccurs(doc, node, "maxOccurs");
        if (particle.maxOccurs != 1)
            Unsupported(doc, node, "a repeating model group");
        if (particle.minOccurs > 1)
            Fail(doc, node, "minOccurs is above maxOccurs");
        particle.grouping = true;
        particle.qualified = true;
        std::string const& kind = node->GetLocalName();
        if (kind == "group") {
            std::string reference;
            if (!GetAttribute(node, "ref", reference))
                Fail(doc, node, "a local xs:group without ref");
            QName const name = ResolveQName(doc, node, reference);
            auto const found = m_groups.find(name);
            if (found == m_groups.end())
                Fail(doc, node, "unknown model group [" + reference + "]");
            particle.complex = BuildNamedGroup(found->second);
            AddDependency(doc.ns, particle.complex->owner);
            particle.name = name.second;
        } else {
            std::string const kindName = ToIdentifier(kind);
            particle.complex = BuildGroupClass(doc, node, (owner ? owner->schemaName : "") + kindName);
            particle.name = particle.complex->schemaName;
            // The owner calls a nested group by its kind: GetChoice().
            particle.property = properties.Unique(kindName);
            return particle;
        }
        particle.property = properties.Unique(ToIdentifier(particle.name));
        return particle;
    }

    ComplexType* BuildNamedGroup(Declaration const& declaration)
    {
        auto const built = m_complexBuilt.find(declaration.node);
        if (built != m_complexBuilt.end())
            return built->second;
        if (!m_groupsInProgress.insert(declaration.node).second)
            Fail(*declaration.doc, declaration.node, "the model group contains itself");
        for (CXmlElement const* child = declaration.node->GetFirstElement(); child;
             child = child->GetNextSiblingElement()) {
            if (IsXsd(child, "annotation"))
                continue;
            if (!IsXsd(child, "sequence") && !IsXsd(child, "choice") && !IsXsd(child, "all"))
                Fail(*declaration.doc, child, "xs:" + child->GetLocalName() + " in a model group definition");
            if (AttributeOr(child, "minOccurs", "1") != "1" || AttributeOr(child, "maxOccurs", "1") != "1")
                Fail(*declaration.doc, child, "minOccurs or maxOccurs in a model group definition");
            ComplexType* type = BuildGroupClass(*declaration.doc, child, AttributeOr(declaration.node, "name"));
            m_complexBuilt[declaration.node] = type;
            m_groupsInProgress.erase(declaration.node);
            return type;
        }
        Fail(*declaration.doc, declaration.node, "a model group definition without a model group");
    }

    ComplexType* BuildGroupClass(Document& doc, CXmlElement const* node, std::string const& schemaName)
    {
        auto owned = std::make_unique<ComplexType>();
        ComplexType* type = owned.get();
        type->schemaName = schemaName;
        type->elementName = schemaName;
        type->owner = doc.ns;
        type->location = Where(doc, node);
        type->isGroup = true;
        type->className = m_typeNames[doc.ns].Unique("C" + ToIdentifier(schemaName));
        std::string const& kind = node->GetLocalName();
        type->group = kind == "sequence" ? GroupKind::Sequence
                      : kind == "choice" ? GroupKind::Choice
                                         : GroupKind::All;
        doc.ns->types.push_back(std::move(owned));
        CNameScope properties;
        ReserveBaseNames(properties);
        ReadGroup(doc, node, *type, properties, false);
        return type;
    }

    static void ReserveBaseNames(CNameScope& properties)
    {
        for (char const* name : {"ElementName", "Namespace", "TargetNamespace", "Base", "ClassInfo",
                                 "ClassElementInfo", "ClassAttributeInfo", "ClassElementInfoCount"})
            properties.Reserve(name);
    }

    int ReadOccurs(Document const& doc, CXmlElement const* node, char const* name) const
    {
        std::string const text = AttributeOr(node, name, "1");
        if (text == "unbounded" && std::string(name) == "maxOccurs")
            return -1;
        return ParseCount(doc, node, text);
    }

    Particle ReadParticle(Document& doc, CXmlElement const* node, ComplexType const& owner, CNameScope& properties)
    {
        std::string value;
        Particle particle;
        std::string reference;
        Declaration global;
        if (GetAttribute(node, "ref", reference)) {
            QName const name = ResolveQName(doc, node, reference);
            auto const found = m_elements.find(name);
            if (found == m_elements.end())
                Fail(doc, node, "unknown element [" + reference + "]");
            global = found->second;
            particle.name = name.second;
        } else if (!GetAttribute(node, "name", particle.name)) {
            Fail(doc, node, "a local xs:element without a name");
        }
        particle.minOccurs = ReadOccurs(doc, node, "minOccurs");
        particle.maxOccurs = ReadOccurs(doc, node, "maxOccurs");
        if (particle.maxOccurs == 0)
            Unsupported(doc, node, "an element with maxOccurs=\"0\"");
        if (particle.maxOccurs != -1 && particle.maxOccurs < particle.minOccurs)
            Fail(doc, node, "maxOccurs is below minOccurs");
        if (AttributeOr(node, "nillable") == "true" || AttributeOr(node, "nillable") == "1")
            Unsupported(doc, node, "a nillable element");
        std::string form;
        particle.qualified = GetAttribute(node, "form", form) ? form == "qualified" : doc.elementsQualified;
        particle.nsOwner = doc.ns;

        TypeRef type;
        if (global.node) {
            // A global element is always in its schema's namespace.
            type = GlobalElementType(global);
            particle.qualified = true;
            particle.nsOwner = global.doc->ns;
            AddDependency(doc.ns, global.doc->ns);
            AddDependency(doc.ns, type.complex ? type.complex->owner : type.simple.owner);
        } else {
            type = ReadTypeOf(doc, node, particle.name, true);
        }
        particle.complex = type.complex;
        particle.simple = type.simple;
        if (type.untyped) {
            // Exactly the element's own namespace: its own target namespace
            // when qualified, none when not.
            particle.untyped = true;
            particle.any.spec = particle.qualified ? "##targetNamespace" : "##local";
            particle.any.target = particle.qualified ? particle.nsOwner->uri : doc.ns->uri;
        }
        if (!particle.complex && !particle.untyped && particle.maxOccurs != 1) {
            if (particle.simple.IsEnum())
                Unsupported(doc, node, "a repeating element of an enumeration type (the value lists have no "
                                       "enumeration facet)");
            if (particle.simple.list)
                Unsupported(doc, node, "a repeating element of a list type");
        }
        if (owner.group == GroupKind::All && particle.maxOccurs != 1)
            Fail(doc, node, "an element of xs:all may occur at most once");
        ReadElementDefault(*(global.node ? global.doc : &doc), global.node ? global.node : node, particle);
        particle.property = properties.Unique(ToIdentifier(particle.name));
        return particle;
    }

    // The library's metadata has no default or fixed values of elements: the
    // class converts the text itself, and gives an empty element the value.
    void ReadElementDefault(Document const& doc, CXmlElement const* declaration, Particle& particle) const
    {
        bool const hasDefault = GetAttribute(declaration, "default", particle.defaultValue);
        std::string fixed;
        particle.fixed = GetAttribute(declaration, "fixed", fixed);
        if (!hasDefault && !particle.fixed)
            return;
        if (hasDefault && particle.fixed)
            Fail(doc, declaration, "an element with both a default and a fixed value");
        if (particle.complex || particle.untyped)
            Unsupported(doc, declaration, "a default or fixed value of an element of a complex type");
        if (particle.simple.list)
            Unsupported(doc, declaration, "a default or fixed value of a list type");
        if (particle.maxOccurs != 1)
            Unsupported(doc, declaration, "a default or fixed value of a repeating element");
        if (particle.fixed)
            particle.defaultValue = fixed;
        particle.hasDefault = true;
        particle.fixedText = CheckDefault(doc, declaration, particle.simple, particle.defaultValue, particle.fixed);
    }

    // processContents says how far the content should be validated. It is
    // kept as it stands, untyped: none of the three validates it.
    Wildcard ReadWildcard(Document const& doc, CXmlElement const* node) const
    {
        std::string value;
        if (GetAttribute(node, "notNamespace", value) || GetAttribute(node, "notQName", value))
            Unsupported(doc, node, "an XML Schema 1.1 wildcard (notNamespace, notQName)");
        std::string const process = AttributeOr(node, "processContents", "strict");
        if (process != "strict" && process != "lax" && process != "skip")
            Fail(doc, node, "unknown processContents value [" + process + "]");
        Wildcard wildcard;
        std::string const refusal = ToWildcard(AttributeOr(node, "namespace", "##any"), doc.ns->uri, wildcard);
        if (!refusal.empty())
            Unsupported(doc, node, refusal);
        return wildcard;
    }

    Particle ReadWildcardParticle(Document& doc, CXmlElement const* node, CNameScope& properties)
    {
        Particle particle;
        particle.name = "AnyElement";  // the library's name for an element of any name
        particle.minOccurs = ReadOccurs(doc, node, "minOccurs");
        particle.maxOccurs = ReadOccurs(doc, node, "maxOccurs");
        if (particle.maxOccurs == 0)
            Unsupported(doc, node, "a wildcard with maxOccurs=\"0\"");
        if (particle.maxOccurs != -1 && particle.maxOccurs < particle.minOccurs)
            Fail(doc, node, "maxOccurs is below minOccurs");
        particle.untyped = true;
        particle.wildcard = true;
        particle.nsOwner = doc.ns;
        particle.any = ReadWildcard(doc, node);
        particle.property = properties.Unique("Any");
        return particle;
    }

    Attribute ReadAnyAttribute(Document const& doc, CXmlElement const* node, CNameScope& properties) const
    {
        Attribute attribute;
        attribute.wildcard = true;
        attribute.nsOwner = doc.ns;
        attribute.any = ReadWildcard(doc, node);
        attribute.property = properties.Unique("AnyAttributes");
        return attribute;
    }

    // The library's attribute wildcard refuses what it does not take, so a
    // class has one, behind every declared attribute.
    static void CheckAttributeWildcards(ComplexType const& type)
    {
        int count = 0;
        for (ComplexType const* t = &type; t; t = t->base)
            for (Attribute const& attribute : t->attributes)
                count += attribute.wildcard;
        if (count > 1)
            throw CSchemaError(type.location + ": more than one xs:anyAttribute (with the base type's) is not "
                                               "supported yet");
    }

    // The type of an element or attribute: its type attribute, or its
    // anonymous type.
    TypeRef ReadTypeOf(Document& doc, CXmlElement const* node, std::string const& name, bool isElement)
    {
        std::string typeName;
        if (GetAttribute(node, "type", typeName))
            return ResolveType(doc, node, typeName);
        for (CXmlElement const* child = node->GetFirstElement(); child; child = child->GetNextSiblingElement()) {
            if (IsXsd(child, "annotation"))
                continue;
            TypeRef result;
            if (IsXsd(child, "simpleType"))
                result.simple = BuildSimple(doc, child, name);
            else if (IsXsd(child, "complexType") && isElement)
                result.complex = BuildComplex(doc, child, name);
            else
                Unsupported(doc, child, "xs:" + child->GetLocalName() + " in xs:" + node->GetLocalName());
            return result;
        }
        if (isElement) {
            TypeRef any;  // an element without a type has any content
            any.untyped = true;
            return any;
        }
        TypeRef text;  // an attribute without a type holds any simple value: text
        return text;
    }

    Attribute ReadAttribute(Document& doc, CXmlElement const* node, CNameScope& properties)
    {
        std::string value;
        if (GetAttribute(node, "ref", value))
            Unsupported(doc, node, "an attribute reference (xs:attribute ref)");
        Attribute attribute;
        if (!GetAttribute(node, "name", attribute.name))
            Fail(doc, node, "a local xs:attribute without a name");
        std::string const use = AttributeOr(node, "use", "optional");
        if (use == "prohibited")
            Unsupported(doc, node, "a prohibited attribute");
        attribute.required = use == "required";
        attribute.hasDefault = GetAttribute(node, "default", attribute.defaultValue);
        if (attribute.hasDefault && attribute.required)
            Fail(doc, node, "a required attribute cannot have a default value");
        if (GetAttribute(node, "fixed", value)) {
            if (attribute.hasDefault)
                Fail(doc, node, "an attribute with both a default and a fixed value");
            attribute.fixed = attribute.hasDefault = true;
            attribute.defaultValue = value;
        }
        std::string form;
        attribute.qualified = GetAttribute(node, "form", form) ? form == "qualified" : doc.attributesQualified;
        attribute.nsOwner = doc.ns;
        TypeRef const type = ReadTypeOf(doc, node, attribute.name, false);
        if (type.complex || type.untyped)
            Fail(doc, node, "the attribute [" + attribute.name + "] has a complex type");
        attribute.simple = type.simple;
        if (attribute.hasDefault && attribute.simple.list)
            Unsupported(doc, node, "a default or fixed value of a list type");
        if (attribute.hasDefault)
            attribute.fixedText = CheckDefault(doc, node, attribute.simple, attribute.defaultValue, attribute.fixed);
        attribute.property = properties.Unique(ToIdentifier(attribute.name));
        return attribute;
    }

    // A new object takes the default value through the library's own
    // conversion; one that does not convert would fail in every constructor.
    // Returns the value's canonical text, as the library writes it: a fixed
    // value is compared in that form.
    std::string CheckDefault(Document const& doc, CXmlElement const* node, SimpleType const& type,
                             std::string const& text, bool fixed) const
    {
        std::string const what = fixed ? "the fixed value [" : "the default value [";
        if (type.IsEnum()) {
            if (std::find(type.enumeration.begin(), type.enumeration.end(), text) == type.enumeration.end())
                Fail(doc, node, what + text + "] is not in the enumeration");
            return text;
        }
        try {
            KdBind::KdVariant value;
            value.FromString(text, static_cast<KdBind::ItemType>(ItemTypeValue(type.itemType)),
                             WhitespaceRuleValue(type.whitespace));
            KdBind::CXmlObjectHelper::CheckRestriction("the default value", value,
                                                       static_cast<KdBind::ItemType>(ItemTypeValue(type.itemType)),
                                                       Restrictions(type));
            return value.ToString();
        } catch (KdBind::CKdException const& e) {
            Fail(doc, node, what + text + "] does not convert or breaks a facet: " + e.GetFullMessage());
        }
    }

    static KdBind::CPrimitiveRestrictions Restrictions(SimpleType const& type)
    {
        return KdBind::CPrimitiveRestrictions(type.pattern, type.minLength, type.maxLength, type.minInclusive,
                                              type.maxInclusive, type.minExclusive, type.maxExclusive, type.length);
    }

    // The type of a global element, built once however often the element is
    // referenced.
    TypeRef GlobalElementType(Declaration const& declaration)
    {
        auto const built = m_globalElementTypes.find(declaration.node);
        if (built != m_globalElementTypes.end())
            return built->second;
        Document& doc = *declaration.doc;
        CXmlElement const* node = declaration.node;
        std::string value;
        std::string const name = AttributeOr(node, "name");
        if (AttributeOr(node, "abstract") == "true" || AttributeOr(node, "abstract") == "1")
            Unsupported(doc, node, "an abstract element");
        if (GetAttribute(node, "substitutionGroup", value))
            Unsupported(doc, node, "a substitution group");
        if (AttributeOr(node, "nillable") == "true" || AttributeOr(node, "nillable") == "1")
            Unsupported(doc, node, "a nillable element");
        if (!m_globalElementsInProgress.insert(node).second)
            Fail(doc, node, "the element contains itself through its anonymous type");
        TypeRef const type = ReadTypeOf(doc, node, name, true);
        // A reference reads the default or fixed value of a simple type.
        if ((type.complex || type.untyped) && (GetAttribute(node, "default", value) || GetAttribute(node, "fixed", value)))
            Unsupported(doc, node, "a default or fixed value of an element of a complex type");
        m_globalElementsInProgress.erase(node);
        m_globalElementTypes[node] = type;
        return type;
    }

    // A global element of a complex type can be a document's root. One of a
    // simple type serves references only.
    void BuildGlobalElement(CXmlElement const* node, Document& doc)
    {
        std::string const name = AttributeOr(node, "name");
        TypeRef const type = GlobalElementType({const_cast<CXmlElement*>(node), &doc});
        if (!type.complex)
            return;
        // A new object of a named type starts out under the name of the
        // first global element of that type.
        if (m_namedByElement.insert(type.complex).second)
            type.complex->elementName = name;
        doc.ns->elements.push_back({name, type.complex});
    }

    // The attributes of an attribute group, as if they stood in its place.
    void ReadAttributeGroup(Document& doc, CXmlElement const* node, CNameScope& properties,
                            std::vector<Attribute>& attributes)
    {
        std::string reference;
        if (!GetAttribute(node, "ref", reference))
            Fail(doc, node, "a local xs:attributeGroup without ref");
        auto const found = m_attributeGroups.find(ResolveQName(doc, node, reference));
        if (found == m_attributeGroups.end())
            Fail(doc, node, "unknown attribute group [" + reference + "]");
        Document& groupDoc = *found->second.doc;
        CXmlElement const* group = found->second.node;
        if (!m_attributeGroupsInProgress.insert(group).second)
            Fail(doc, node, "the attribute group [" + reference + "] contains itself");
        for (CXmlElement const* child = group->GetFirstElement(); child; child = child->GetNextSiblingElement()) {
            if (IsXsd(child, "annotation"))
                continue;
            if (IsXsd(child, "attribute")) {
                attributes.push_back(ReadAttribute(groupDoc, child, properties));
                AddDependency(doc.ns, attributes.back().simple.owner);
                AddDependency(doc.ns, groupDoc.ns);
            } else if (IsXsd(child, "attributeGroup")) {
                ReadAttributeGroup(groupDoc, child, properties, attributes);
                AddDependency(doc.ns, groupDoc.ns);
            } else if (IsXsd(child, "anyAttribute")) {
                attributes.push_back(ReadAnyAttribute(groupDoc, child, properties));
            } else {
                Fail(groupDoc, child, "xs:" + child->GetLocalName() + " in an attribute group");
            }
        }
        m_attributeGroupsInProgress.erase(group);
    }

    std::map<std::string, std::string> const& m_cppNamespaces;
    std::vector<std::string> m_reserved;
    SchemaSet m_set;
    std::vector<std::unique_ptr<Document>> m_documents;  // in the order they were read
    std::set<std::string> m_loaded;
    std::map<QName, Declaration> m_complexTypes, m_simpleTypes, m_elements, m_groups, m_attributeGroups;
    std::map<CXmlElement const*, TypeRef> m_globalElementTypes;
    std::set<CXmlElement const*> m_globalElementsInProgress;
    std::set<CXmlElement const*> m_attributeGroupsInProgress;
    std::map<CXmlElement const*, ComplexType*> m_complexBuilt;
    std::map<CXmlElement const*, SimpleType> m_simpleBuilt;
    std::set<CXmlElement const*> m_simpleInProgress;
    std::set<CXmlElement const*> m_groupsInProgress;
    std::set<ComplexType const*> m_complexInProgress;
    std::set<ComplexType const*> m_namedByElement;
    std::map<NamespaceModel const*, CNameScope> m_typeNames;  // classes and enums of one namespace
    CNameScope m_fileStems;
    CNameScope m_cppNamespaceNames;
};

} // namespace

SchemaSet LoadSchemas(std::vector<std::string> const& files, std::map<std::string, std::string> const& cppNamespaces)
{
    return CLoader(cppNamespaces).Load(files);
}

} // namespace KdXsd
