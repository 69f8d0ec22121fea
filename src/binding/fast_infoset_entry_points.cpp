// The entry point that writes an object tree as Fast Infoset into memory.
#include "kdbind/binding.h"

namespace KdBind {

CBinaryData CXmlObjectBase::ToFastInfosetStream(FInfoDecl declaration, CXmlSerializationContext const& context,
                                                CompressionType compression) const
{
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
    CBinaryData result = stream.GetBinaryStream();
    if (compression != CompressionType_None)
        CKdZip::CompressData(result, compression);
    return result;
}

} // namespace KdBind
