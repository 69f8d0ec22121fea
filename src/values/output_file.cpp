#include "values/output_file.h"

namespace KdBind {

CKdException FileWriteFailure(std::string const& path)
{
    return CKdException(FormatString("Failed to write data to the file [%s]", path.c_str()));
}

FILE* CreateOutputFile(std::string const& path, XmlEncoding encoding)
{
    FILE* file = fopen(path.c_str(), "wt");
    if (!file)
        throw FileWriteFailure(path);
    static unsigned char const kByteOrderMark[2] = {0xFF, 0xFE};
    bool const utf16 = encoding == XmlEncoding_UTF16 || encoding == XmlEncoding_UTF16_NoDecl;
    if (utf16 && fwrite(kByteOrderMark, 1, sizeof kByteOrderMark, file) != sizeof kByteOrderMark) {
        fclose(file);
        throw FileWriteFailure(path);
    }
    return file;
}

} // namespace KdBind
