// The reading half of `make interop`: documents that an independent encoder
// wrote from the XML texts of a directory must load as those texts do,
// plain and compressed; the library then writes each tree back for the
// other codec to read. Without KDBIND_INTEROP_READ_DIR it has nothing to do.
#include <dirent.h>

#include <cstdlib>
#include <fstream>
#include <iostream>
#include <set>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <kdbind/binding.h>

#include "runtime/test_support.h"
#include "xmlinput/tree_dump.h"

using namespace KdBind;

namespace {

std::vector<std::string> Names(std::string const& directory)
{
    std::vector<std::string> names;
    if (DIR* dir = opendir(directory.c_str())) {
        while (dirent* entry = readdir(dir)) {
            std::string const name = entry->d_name;
            if (name.size() > 4 && name.compare(name.size() - 4, 4, ".xml") == 0)
                names.push_back(name.substr(0, name.size() - 4));
        }
        closedir(dir);
    }
    return names;
}

void WriteElement(CXmlWriter& writer, CXmlElement const* element)
{
    writer.WriteStartElement(element->GetLocalName(), element->GetNamespaceURI());
    for (CXmlAttribute const* attribute : element->GetAttributes())
        writer.WriteAttributeString(attribute->GetLocalName(), attribute->GetNamespaceURI(), attribute->GetValue(),
                                    ItemType_string);
    if (element->GetText().find_first_not_of(" \t\n") != std::string::npos)
        writer.WriteString(element->GetText(), ItemType_string);
    for (CXmlElement const* child = element->GetFirstElement(); child; child = child->GetNextSiblingElement())
        WriteElement(writer, child);
    writer.WriteEndElement();
}

// Every URI of the tree, so that the document element can declare them all,
// as the binding's root does with the prefixes of its context.
void CollectURIs(CXmlElement const* element, std::set<std::string>& uris)
{
    uris.insert(element->GetNamespaceURI());
    for (CXmlAttribute const* attribute : element->GetAttributes())
        uris.insert(attribute->GetNamespaceURI());
    for (CXmlElement const* child = element->GetFirstElement(); child; child = child->GetNextSiblingElement())
        CollectURIs(child, uris);
}

std::string WriteBack(CXmlElement const* root)
{
    std::set<std::string> uris;
    CollectURIs(root, uris);
    uris.erase("");
    CFastInfosetContext context;
    CBinaryStream stream;
    {
        CFastInfosetWriter writer(context, stream);
        writer.Open();
        int prefix = 0;
        for (std::string const& uri : uris)
            writer.AddNamespace("n" + std::to_string(++prefix), uri);
        writer.WriteStartDocument(FInfoDecl_10_Encoding);
        WriteElement(writer, root);
        writer.WriteEndDocument();
        writer.Close();
    }
    return KdBindTest::Bytes(stream.GetBinaryStream());
}

} // namespace

TEST(FastInfosetInteropTest, ForeignDocumentsLoadAsTheirTextAndGoBack)
{
    char const* directory = std::getenv("KDBIND_INTEROP_READ_DIR");
    if (!directory || !*directory)
        GTEST_SKIP() << "only under make interop";
    KdBindTest::LocaleScope utf8("C.UTF-8");
    ASSERT_TRUE(utf8.Available());
    std::vector<std::string> const names = Names(directory);
    ASSERT_FALSE(names.empty());
    for (std::string const& name : names) {
        std::string const base = std::string(directory) + "/" + name;
        CXmlDocument text;
        text.Load((base + ".xml").c_str());
        std::string const expected = KdBindTest::DumpTree(text.GetDocumentElement());
        for (char const* suffix : {".java.finf", ".java.finf.gz"}) {
            CXmlDocument binary;
            try {
                binary.Load((base + suffix).c_str());
            } catch (CKdException const& failure) {
                ADD_FAILURE() << name << suffix << ": " << failure.GetFullMessage();
                continue;
            }
            EXPECT_EQ(KdBindTest::DumpTree(binary.GetDocumentElement()), expected) << name << suffix;
        }
        std::ofstream(base + ".ours.finf", std::ios::binary) << WriteBack(text.GetDocumentElement());
        std::cout << "ok    the library reads java's " << name << ", plain and compressed\n";
    }
}
