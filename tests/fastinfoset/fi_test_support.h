// Helpers of the Fast Infoset tests: running one sequence of writer calls
// through both writers, and handing the pairs to the interoperability check.
#ifndef KDBIND_TESTS_FASTINFOSET_FI_TEST_SUPPORT_H
#define KDBIND_TESTS_FASTINFOSET_FI_TEST_SUPPORT_H

#include <cstdlib>
#include <fstream>
#include <functional>
#include <string>

#include <kdbind/binding.h>

#include "runtime/test_support.h"

namespace KdBindTest {

using WriterCalls = std::function<void(KdBind::CXmlWriter&)>;

// The whole Fast Infoset document that calls make, header and trailer included.
inline std::string WriteFastInfoset(WriterCalls const& calls, KdBind::CFastInfosetContext const& context = {},
                                    KdBind::FInfoDecl declaration = KdBind::FInfoDecl_None)
{
    KdBind::CBinaryStream stream;
    {
        KdBind::CFastInfosetWriter writer(context, stream);
        writer.Open();
        writer.WriteStartDocument(declaration);
        calls(writer);
        writer.WriteEndDocument();
        writer.Close();
    }
    return Bytes(stream.GetBinaryStream());
}

inline std::string WriteText(WriterCalls const& calls)
{
    KdBind::CTextStream stream;
    KdBind::CXmlTextWriter writer(stream);
    writer.Open();
    writer.SetFormat(false);
    calls(writer);
    writer.Close();
    return stream.GetString();
}

// When KDBIND_INTEROP_DIR names a directory (make interop sets it), keeps
// name.finf and name.xml there for the independent decoder to compare.
inline void ExportForInterop(std::string const& name, std::string const& fastInfoset, std::string const& text)
{
    char const* directory = std::getenv("KDBIND_INTEROP_DIR");
    if (!directory || !*directory)
        return;
    std::ofstream(std::string(directory) + "/" + name + ".finf", std::ios::binary) << fastInfoset;
    std::ofstream(std::string(directory) + "/" + name + ".xml", std::ios::binary) << text;
}

} // namespace KdBindTest

#endif
