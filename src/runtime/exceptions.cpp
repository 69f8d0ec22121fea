#include "kdbind/runtime.h"

namespace KdBind {

CKdException::CKdException() : m_inner(nullptr) {}

CKdException::CKdException(std::string message) : m_message(std::move(message)), m_inner(nullptr) {}

CKdException::CKdException(std::string message, CKdException const& inner)
    : m_message(std::move(message)), m_inner(inner.Clone())
{
}

CKdException::CKdException(CKdException const& other)
    : m_message(other.m_message), m_inner(other.m_inner ? other.m_inner->Clone() : nullptr)
{
}

CKdException::~CKdException()
{
    delete m_inner;
    m_inner = nullptr;
}

CKdException* CKdException::Clone() const { return new CKdException(*this); }

CKdException& CKdException::operator=(CKdException const& other)
{
    // Cloning first keeps self-assignment safe; the previous inner is left
    // alone on purpose (assignment replaces the pointer only).
    CKdException* inner = other.m_inner ? other.m_inner->Clone() : nullptr;
    m_message = other.m_message;
    m_inner = inner;
    return *this;
}

std::string CKdException::GetFullMessage() const
{
    std::string text = m_message;
    for (CKdException const* e = m_inner; e; e = e->m_inner) {
        text += '\n';
        text += e->m_message;
    }
    return text;
}

} // namespace KdBind
