// The namespace attribute of xs:any and xs:anyAttribute in the form the
// library's wildcard tests read.
#include <sstream>
#include <vector>

#include "schema_model.h"

namespace KdXsd {

std::string ToWildcard(std::string const& namespaceAttribute, std::string const& targetNamespace, Wildcard& wildcard)
{
    std::vector<std::string> tokens;
    std::istringstream words(namespaceAttribute);
    for (std::string token; words >> token;)
        tokens.push_back(token);
    if (tokens.empty())
        return "an empty namespace list, which allows no element or attribute at all";
    // The library judges the first token of a list only: a list would let
    // in less than the schema allows, or more.
    if (tokens.size() > 1)
        return "a namespace list of more than one entry ([" + namespaceAttribute +
               "]), which the library's wildcard cannot test";
    std::string const& token = tokens.front();
    wildcard.target = targetNamespace;
    if (token == "##any" || token == "##other" || token == "##local" || token == "##targetNamespace") {
        wildcard.spec = token;
    } else if (token.size() > 1 && token[0] == '#' && token[1] == '#') {
        return "the unknown namespace keyword [" + token + "]";
    } else {
        // Exactly this namespace, and not the empty one that the library's
        // literal token lets through as well.
        wildcard.spec = "##targetNamespace";
        wildcard.target = token;
    }
    return std::string();
}

} // namespace KdXsd
