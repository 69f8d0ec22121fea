#include "kdbind/binding.h"

namespace KdBind {

bool ASYNC_TOXMLFILE = false;

void AsyncToXmlFile(bool async) { ASYNC_TOXMLFILE = async; }

CXmlSerializationContext CXmlSerializationContext::m_defaultContext;

namespace {
char const kIgnoreBothPrefix[] =
    "The parser can only ignore additional elements, or ignore the fact that some required ones are missing, "
    "you can not ignore both\n";
}

CXmlSerializationContext::CXmlSerializationContext() = default;

CXmlSerializationContext::CXmlSerializationContext(CXmlSerializationContext const& other) = default;

CXmlSerializationContext::~CXmlSerializationContext() = default;

void CXmlSerializationContext::SetIgnoreUnknownElements(bool value)
{
    if (value && m_ignoreMissingMandatoryElements)
        throw CKdInvalidStateException(std::string(kIgnoreBothPrefix) +
                                       "Set IgnoreMissingMandatoryElements to false before setting "
                                       "IgnoreUnknownElements to true");
    m_ignoreUnknownElements = value;
}

void CXmlSerializationContext::SetIgnoreMissingMandatoryElements(bool value)
{
    if (value && m_ignoreUnknownElements)
        throw CKdInvalidStateException(std::string(kIgnoreBothPrefix) +
                                       "Set IgnoreUnknownElements to false before setting "
                                       "IgnoreMissingMandatoryElements to true");
    m_ignoreMissingMandatoryElements = value;
}

} // namespace KdBind
