// kdbind-xsd: turns XML Schemas into classes for the KdBind library.
//
//   kdbind-xsd --output-dir DIR [--main roundtrip] [--namespace URI=Cpp::Name]... [--umbrella NAME]
//              SCHEMA.xsd...
#include <cctype>
#include <cstdio>
#include <clocale>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <map>
#include <string>
#include <vector>

#include "emitter.h"
#include "schema_model.h"

namespace {

int Usage(char const* program)
{
    std::fprintf(stderr,
                 "usage: %s --output-dir DIR [--main roundtrip] [--namespace URI=Cpp::Name]... [--umbrella NAME]\n"
                 "          SCHEMA.xsd...\n"
                 "Writes a header and a source file per target namespace into DIR; with --main roundtrip\n"
                 "also DIR/roundtrip.cpp, a program that reads a document (text or Fast Infoset, compressed\n"
                 "or not) and writes it back: roundtrip [--compact] [--fast-infoset] [--gzip | --zlib] [FILE];\n"
                 "with --umbrella NAME also DIR/NAME.h and DIR/NAME.cpp, which include all the others.\n",
                 program);
    return 2;
}

// A C++ namespace as --namespace may name it: identifiers joined by "::".
bool IsNamespaceName(std::string const& name)
{
    size_t start = 0;
    while (true) {
        size_t const end = name.find("::", start);
        std::string const part = name.substr(start, end == std::string::npos ? std::string::npos : end - start);
        if (part.empty() || std::isdigit(static_cast<unsigned char>(part[0])))
            return false;
        for (char c : part)
            if (!std::isalnum(static_cast<unsigned char>(c)) && c != '_')
                return false;
        if (end == std::string::npos)
            return true;
        start = end + 2;
    }
}

// Leaves a file that already holds the text alone, so that a build that
// generates at build time does not recompile what did not change. The
// umbrella files are written always: a build tool takes them for the outputs
// of the generation and must see them newer than the schemas.
void WriteFile(std::filesystem::path const& path, std::string const& text, bool always = false)
{
    if (!always) {
        std::ifstream existing(path, std::ios::binary);
        if (existing) {
            std::string const old((std::istreambuf_iterator<char>(existing)), std::istreambuf_iterator<char>());
            if (old == text)
                return;
        }
    }
    std::ofstream out(path, std::ios::binary | std::ios::trunc);
    out << text;
    out.close();
    if (!out)
        throw KdXsd::CSchemaError("cannot write [" + path.string() + "]");
}

} // namespace

int main(int argc, char** argv)
{
    // The element tree hands text over in the process's code page. Schema
    // names and values are written into the generated code as UTF-8, the
    // code page of the programs that use non-ASCII text with the library.
    if (!std::setlocale(LC_CTYPE, "C.UTF-8"))
        std::setlocale(LC_CTYPE, "");
    std::string outputDir;
    bool roundtrip = false;
    std::string umbrella;
    std::vector<std::string> schemas;
    std::map<std::string, std::string> cppNamespaces;
    for (int i = 1; i < argc; ++i) {
        std::string const arg = argv[i];
        bool const hasValue = i + 1 < argc;
        if (arg == "--output-dir" && hasValue) {
            outputDir = argv[++i];
        } else if (arg == "--main" && hasValue) {
            if (std::strcmp(argv[++i], "roundtrip") != 0) {
                std::fprintf(stderr, "%s: unknown main program [%s]\n", argv[0], argv[i]);
                return 2;
            }
            roundtrip = true;
        } else if (arg == "--namespace" && hasValue) {
            std::string const mapping = argv[++i];
            auto const equals = mapping.rfind('=');
            if (equals == std::string::npos || !IsNamespaceName(mapping.substr(equals + 1))) {
                std::fprintf(stderr, "%s: [%s] does not map a namespace URI to a C++ namespace\n", argv[0],
                             mapping.c_str());
                return 2;
            }
            cppNamespaces[mapping.substr(0, equals)] = mapping.substr(equals + 1);
        } else if (arg == "--umbrella" && hasValue) {
            umbrella = argv[++i];
        } else if (arg == "--help" || arg == "-h") {
            Usage(argv[0]);
            return 0;
        } else if (!arg.empty() && arg[0] == '-') {
            return Usage(argv[0]);
        } else {
            schemas.push_back(arg);
        }
    }
    if (outputDir.empty() || schemas.empty())
        return Usage(argv[0]);

    try {
        KdXsd::SchemaSet const set = KdXsd::LoadSchemas(schemas, cppNamespaces);
        std::filesystem::create_directories(outputDir);
        std::filesystem::path const dir(outputDir);
        for (auto const& ns : set.namespaces) {
            WriteFile(dir / (ns->fileStem + ".h"), KdXsd::EmitHeader(*ns));
            WriteFile(dir / (ns->fileStem + ".cpp"), KdXsd::EmitSource(*ns));
        }
        if (roundtrip)
            WriteFile(dir / "roundtrip.cpp", KdXsd::EmitRoundtripMain(set));
        if (!umbrella.empty()) {
            WriteFile(dir / (umbrella + ".h"), KdXsd::EmitUmbrella(set, ".h"), true);
            WriteFile(dir / (umbrella + ".cpp"), KdXsd::EmitUmbrella(set, ".cpp"), true);
        }
    } catch (KdXsd::CSchemaError const& e) {
        std::fprintf(stderr, "%s\n", e.what());
        return 1;
    } catch (std::exception const& e) {
        std::fprintf(stderr, "%s: %s\n", argv[0], e.what());
        return 1;
    }
    return 0;
}
