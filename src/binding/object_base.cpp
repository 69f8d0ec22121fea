// CXmlObjectBase: reference counting, the trampolines into the protected
// slots, and the in-memory text entry point ToXml.
#include "kdbind/binding.h"

namespace KdBind {

CXmlObjectBase::CXmlObjectBase() = default;

// A copy is a new object: it starts uncounted, with its own lock.
CXmlObjectBase::CXmlObjectBase(CXmlObjectBase const& other) : IEventSink(other), m_elementName(other.m_elementName) {}

CXmlObjectBase& CXmlObjectBase::operator=(CXmlObjectBase const& other)
{
    m_elementName = other.m_elementName;
    return *this;
}

CXmlObjectBase::~CXmlObjectBase() = default;

void CXmlObjectBase::OnEvent(CXmlObjectBase*, IEventSink::MsgType, void*) {}

long CXmlObjectBase::AddRef()
{
    m_lock.Enter();
    long const count = ++m_refCount;
    m_lock.Leave();
    return count;
}

long CXmlObjectBase::Release()
{
    m_lock.Enter();
    long const count = --m_refCount;
    m_lock.Leave();
    if (count == 0)
        Destroy(this);
    return count;
}

namespace {
// Objects of this thread whose count came to 0 while another object was
// being destroyed, and whether a Destroy is running.
thread_local CXmlObjectBase* t_toDestroy = nullptr;
thread_local bool t_destroying = false;
} // namespace

// Destroying an object releases what it holds, and a chain of objects would
// destroy one link inside the other, a stack frame per link. Instead an
// object released during a destruction waits in a list that the outermost
// Destroy works through, so any tree is freed at a constant depth.
void CXmlObjectBase::Destroy(CXmlObjectBase* object)
{
    if (t_destroying) {
        object->m_nextToDestroy = t_toDestroy;
        t_toDestroy = object;
        return;
    }
    t_destroying = true;
    delete object;
    while (t_toDestroy) {
        CXmlObjectBase* next = t_toDestroy;
        t_toDestroy = next->m_nextToDestroy;
        delete next;
    }
    t_destroying = false;
}

void CXmlObjectBase::AttributesToXml_Int(CXmlWriter*, CXmlSerializationContext const&) const {}

void CXmlObjectBase::AttributesToXml_Int(CXmlObjectBase const* object, CXmlWriter* writer,
                                         CXmlSerializationContext const& context)
{
    object->AttributesToXml_Int(writer, context);
}

void CXmlObjectBase::ToXml_Int(CXmlObjectBase const* object, CXmlWriter* writer, bool root, char const* ns,
                               CXmlSerializationContext const& context, bool isOptional)
{
    object->ToXml_Int(writer, root, ns, context, isOptional);
}

CXmlElement* CXmlObjectBase::FromXml_Int(CXmlObjectBase* object, CXmlElement* parent, CXmlElement* cursor,
                                         CXmlSerializationContext const& context)
{
    return object->FromXml_Int(parent, cursor, context, false);
}

CXmlElement* CXmlObjectBase::FromXml_Int(CXmlObjectBase* object, CXmlElement* parent, CXmlElement* cursor,
                                         CXmlSerializationContext const& context, bool isOptional)
{
    return object->FromXml_Int(parent, cursor, context, isOptional);
}

std::string CXmlObjectBase::ToXml(bool declaration, bool formatted, EOLType eol,
                                  CXmlSerializationContext const& context) const
{
    CTextStream stream;
    CXmlTextWriter writer(stream);
    writer.Open();
    writer.SetFormat(formatted);
    writer.SetEOLType(eol);
    if (declaration)
        writer.WriteStartDocument();
    std::string const targetNamespace = GetTargetNamespace();
    ToXml_Int(&writer, true, targetNamespace.c_str(), context, false);
    writer.Close();
    // Straight from the blocks: the text holds no NUL, so this is GetText's text.
    return stream.GetString();
}

} // namespace KdBind
