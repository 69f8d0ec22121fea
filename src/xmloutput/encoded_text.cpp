// The text of a stream as bytes in the stream's encoding.
#include "kdbind/xmloutput.h"

namespace KdBind {

namespace {
// Where users of the library are sent when they ask for an encoding that a
// stream cannot give.
constexpr char kSupportAddress[] = "support@kdbind.org";
} // namespace

CBinaryData CTextStream::GetEncodedStream() const
{
    switch (m_encoding) {
    case XmlEncoding_UTF8:
        return CEncoder::LocalCodePageToUtf8Binary(GetText());
    case XmlEncoding_UTF16:
    case XmlEncoding_UTF16_NoDecl:
        // Held as the platform's wide characters, 32 bits each.
        return CEncoder::LocalCodePageToUnicodeBinary(GetText());
    default:
        throw CKdException(std::string("Unknown Encoding, select UTF-8 (contact ") + kSupportAddress +
                           " for support)");
    }
}

} // namespace KdBind
