#include "kdbind/runtime.h"

namespace KdBind {

CKdException::CKdException() : m_inner(nullptr) {}

CKdException::CKdException(std::string message) : m_message(std::move(message)), m_inner(nullptr) {}

namespace {
// Set while CloneChain clones one link: the copy constructor then leaves the
// link's own chain alone, and CloneChain copies it link by link instead.
thread_local bool t_cloningOneLink = false;
} // namespace

CKdException* CKdException::CloneChain(CKdException const* first)
{
    CKdException* head = nullptr;
    CKdException** tail = &head;
    try {
        for (CKdException const* link = first; link; link = link->m_inner) {
            t_cloningOneLink = true;
            *tail = link->Clone();
            t_cloningOneLink = false;
            tail = &(*tail)->m_inner;
        }
    } catch (...) {
        t_cloningOneLink = false;
        delete head;  // and the links behind it
        throw;
    }
    return head;
}

CKdException::CKdException(std::string message, CKdException const& inner)
    : m_message(std::move(message)), m_inner(CloneChain(&inner))
{
}

CKdException::CKdException(std::string message, CKdException&& inner)
    : m_message(std::move(message)), m_inner(nullptr)
{
    // The inner is cloned while it holds no chain, so nothing behind it is
    // copied; the chain then moves over to the clone.
    CKdException* chain = inner.m_inner;
    inner.m_inner = nullptr;
    try {
        m_inner = inner.Clone();
    } catch (...) {
        inner.m_inner = chain;
        throw;
    }
    m_inner->m_inner = chain;
}

CKdException::CKdException(CKdException const& other)
    : m_message(other.m_message), m_inner(t_cloningOneLink ? nullptr : CloneChain(other.m_inner))
{
}

CKdException::~CKdException()
{
    // Link by link, so that a chain as long as a document is deep needs no
    // stack in proportion.
    CKdException* inner = m_inner;
    m_inner = nullptr;
    while (inner) {
        CKdException* next = inner->m_inner;
        inner->m_inner = nullptr;
        delete inner;
        inner = next;
    }
}

CKdException* CKdException::Clone() const { return new CKdException(*this); }

CKdException& CKdException::operator=(CKdException const& other)
{
    // Cloning first keeps self-assignment safe; the previous inner is left
    // alone on purpose (assignment replaces the pointer only).
    CKdException* inner = CloneChain(other.m_inner);
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
