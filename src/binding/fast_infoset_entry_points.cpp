// The entry point that writes an object tree as Fast Infoset into memory.
#include "kdbind/binding.h"

namespace KdBind {

CBinaryData CXmlObjectBase::ToFastInfosetStream(FInfoDecl declaration, CXmlSerializationContext const& context,
                                                CompressionType compression) const
{
    if (compression != CompressionType_None)
        throw CKdException("ToFastInfosetStream with compression is not available in this version of the library");
    CBinaryStream stream;
    {
        CFastInfosetWriter writer(context.GetFIContext(), stream);
        writer.Open();
        writer.WriteStartDocument(declaration);
        std::string const targetNamespace = GetTargetNamespace();
        ToXml_Int(&writer, true, targetNamespace.c_str(), context, false);
        writer.WriteEndDocument();
        writer.Close();
    }
    return stream.GetBinaryStream();
}

} // namespace KdBind
