// Reads a catalogue into the generated classes and lists its books.
#include <cstdio>
#include <fstream>
#include <iterator>
#include <string>

#include "kdbind_generated.h"

int main(int argc, char** argv)
{
    if (argc != 2)
        return 2;
    try {
        CSmartPtr<Catalogue::CLibrary> library = new Catalogue::CLibrary();
        std::ifstream file(argv[1], std::ios::binary);
        std::string const text((std::istreambuf_iterator<char>(file)), std::istreambuf_iterator<char>());
        library->FromXml(text.c_str());
        Catalogue::CClassCol<Catalogue::CBook>& books = library->GetBook();
        std::printf("%s has %d books\n", library->GetName().c_str(), books.GetCount());
        for (int i = 0; i < books.GetCount(); ++i)
            std::printf("%s: %s\n", books.GetAt(i)->GetTitle().c_str(),
                        Catalogue::GenreToString(books.GetAt(i)->GetGenre()));
        std::printf("librarian: %s\n", library->GetLibrarian().GetFirst().c_str());
    } catch (KdBind::CKdException const& e) {
        std::fprintf(stderr, "%s\n", e.GetFullMessage().c_str());
        return 1;
    }
    Catalogue::CleanMetaData();
    Catalogue::People::CleanMetaData();
    return 0;
}
