// The text entry points of the input path: parse into a document, then walk
// the document element into this object.
#include "kdbind/binding.h"

namespace KdBind {

namespace {
// The returned cursor tells a parent how far a child got; the root has none.
void ReadDocumentElement(CXmlObjectBase* object, CXmlDocument const& document,
                         CXmlSerializationContext const& walkContext)
{
    CXmlElement* root = document.GetDocumentElement();
    if (!root)
        throw CKdValidationException("The document has no document element");
    CXmlObjectBase::FromXml_Int(object, root, root->GetFirstElement(), walkContext);
}
} // namespace

// The narrow form parses under the caller's context but walks under the
// default one, so the walk options have no effect through it. This is
// long-standing behaviour that callers rely on; the wide form and the file
// and stream forms pass the caller's context on.
void CXmlObjectBase::FromXml(char const* xml, CXmlSerializationContext const& context)
{
    CXmlDocument document(context);
    document.LoadXml(xml);
    ReadDocumentElement(this, document, CXmlSerializationContext::m_defaultContext);
}

void CXmlObjectBase::FromXml(wchar_t const* xml, CXmlSerializationContext const& context)
{
    CXmlDocument document(context);
    document.LoadXml(xml);
    ReadDocumentElement(this, document, context);
}

void CXmlObjectBase::FromXmlElement(CXmlElement const* element, CXmlSerializationContext const& context)
{
    if (!element)
        throw CKdInvalidParamException("FromXmlElement needs an element");
    // The walk reads the element and never changes it.
    CXmlElement* readable = const_cast<CXmlElement*>(element);
    FromXml_Int(this, readable, readable->GetFirstElement(), context);
}

} // namespace KdBind
