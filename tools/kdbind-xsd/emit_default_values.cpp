#include "emit_default_values.h"

namespace KdXsd {

bool UsesFixedValue(NamespaceModel const& ns)
{
    for (auto const& type : ns.types) {
        for (Particle const& particle : type->particles)
            if (particle.fixed)
                return true;
        for (Attribute const& attribute : type->attributes)
            if (attribute.fixed)
                return true;
    }
    return false;
}

char const* FixedValueCode()
{
    return R"(// A value read or written where the schema fixes one: its canonical text,
// as the library writes it, must be the fixed value's.
inline void CheckFixed(std::string const& text, char const* name, char const* fixed)
{
    if (text != fixed)
        throw KdBind::CKdInvalidValueException(
            KdBind::FormatString("The value [%s] of [%s] differs from its fixed value [%s]", text.c_str(), name,
                                 fixed));
}
)";
}

} // namespace KdXsd
