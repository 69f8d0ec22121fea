// The entry points to and from byte blocks and files. Each arranges a
// stream or a document and hands over to the same walks as ToXml and
// FromXml; compressed and Fast Infoset input is recognised by the document.
#include "kdbind/binding.h"

namespace KdBind {

namespace {

void RefuseZlibForFiles(CompressionType compression)
{
    if (compression == CompressionType_ZLib)
        throw CKdException("ZLIB Compression only available for To Stream methods.");
}

// Runs the text walk of object from the writer on: format, line end,
// declaration, the root, and Close.
void WriteText(CXmlObjectBase const& object, CXmlTextWriter& writer, bool declaration, bool formatted,
               EOLType eol, CXmlSerializationContext const& context)
{
    writer.Open();
    writer.SetFormat(formatted);
    writer.SetEOLType(eol);
    if (declaration)
        writer.WriteStartDocument();
    std::string const targetNamespace = object.GetTargetNamespace();
    CXmlObjectBase::ToXml_Int(&object, &writer, true, targetNamespace.c_str(), context, false);
    writer.Close();
}

// The caller's context reaches both the parser and the walk.
void ReadDocument(CXmlObjectBase* object, CXmlDocument const& document, CXmlSerializationContext const& context)
{
    CXmlElement* root = document.GetDocumentElement();
    if (!root)
        throw CKdValidationException("The document has no document element");
    CXmlObjectBase::FromXml_Int(object, root, root->GetFirstElement(), context);
}

} // namespace

CBinaryData CXmlObjectBase::ToXmlStream(bool declaration, bool formatted, XmlEncoding encoding, EOLType eol,
                                        CXmlSerializationContext const& context, CompressionType compression) const
{
    CTextStream stream(encoding);
    CXmlTextWriter writer(stream);
    WriteText(*this, writer, declaration, formatted, eol, context);
    CBinaryData result = stream.GetEncodedStream();
    if (compression != CompressionType_None)
        CKdZip::CompressData(result, compression);
    return result;
}

// Streaming straight to the file writes as the walk goes, so a failure can
// leave a partial file behind; the in-memory route opens the file only once
// the document is complete. A UTF-16 file that is also compressed gets its
// byte order mark in front of the compressed bytes, as it always has.
void CXmlObjectBase::ToXmlFile(char const* path, bool declaration, bool formatted, XmlEncoding encoding,
                               EOLType eol, CXmlSerializationContext const& context,
                               CompressionType compression) const
{
    RefuseZlibForFiles(compression);
    if (ASYNC_TOXMLFILE && compression == CompressionType_None) {
        CFileTextStream stream(path, encoding);
        CXmlTextWriter writer(stream);
        WriteText(*this, writer, declaration, formatted, eol, context);
        return;
    }
    CBinaryData data = ToXmlStream(declaration, formatted, encoding, eol, context, compression);
    CFileBinaryStream(path, encoding, data).ToFile();
}

// Encoding 0 for the file: a Fast Infoset document has no byte order mark.
void CXmlObjectBase::ToFastInfosetFile(char const* path, FInfoDecl declaration,
                                       CXmlSerializationContext const& context, CompressionType compression) const
{
    RefuseZlibForFiles(compression);
    CBinaryData data = ToFastInfosetStream(declaration, context, compression);
    CFileBinaryStream(path, XmlEncoding_None, data).ToFile();
}

void CXmlObjectBase::FromXmlFile(char const* path, CXmlSerializationContext const& context)
{
    CXmlDocument document(context);
    document.Load(path);
    ReadDocument(this, document, context);
}

void CXmlObjectBase::FromXmlStream(unsigned char* data, unsigned long length,
                                   CXmlSerializationContext const& context)
{
    CXmlDocument document(context);
    document.LoadXmlStream(data, length);
    ReadDocument(this, document, context);
}

void CXmlObjectBase::FromXmlStream(CBinaryData const& data, CXmlSerializationContext const& context)
{
    FromXmlStream(const_cast<unsigned char*>(data.GetData()), data.GetLength(), context);
}

} // namespace KdBind
