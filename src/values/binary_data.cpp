// CBinaryData: a handle to a counted, copy-on-write holder of bytes. Copies
// share the holder; every change first makes the holder exclusive.
#include <cstring>

#include "kdbind/values.h"
#include "runtime/checked_size.h"

namespace KdBind {

namespace {

// A copied buffer is never smaller than this, so that appending a byte at a
// time does not reallocate on each call.
constexpr unsigned long kMinimumCopyCapacity = 8192;

// Holds the lock for a scope, so that a failure on the way leaves it.
class CScopedLock {
public:
    explicit CScopedLock(CKDCriticalSection& lock) : m_lock(lock) { m_lock.Enter(); }
    ~CScopedLock() { m_lock.Leave(); }
    CScopedLock(CScopedLock const&) = delete;
    CScopedLock& operator=(CScopedLock const&) = delete;

private:
    CKDCriticalSection& m_lock;
};

} // namespace

class CBinaryData::CDataHolder {
public:
    // adopt: take the array (allocated by array new) as it is, capacity equal
    // to length. Otherwise copy it into a buffer of twice its length, at least
    // kMinimumCopyCapacity bytes. The count starts at 1.
    CDataHolder(unsigned char const* data, unsigned long length, bool adopt);
    CDataHolder(CDataHolder const&) = delete;
    CDataHolder& operator=(CDataHolder const&) = delete;

    void AddRef();
    // Drops one reference. detach: the caller takes the buffer, which only
    // the last reference may do; the holder goes, the buffer stays.
    void Release(bool detach);
    unsigned char* GetData() const { return m_data; }
    unsigned long GetLength() const { return m_length; }
    void Append(unsigned char const* data, unsigned long length);
    // This holder if it is not shared; otherwise a private copy, and this
    // holder loses the caller's reference.
    CDataHolder* GetExclusiveCopy();
    // The byte at index, for index up to the length. The byte one past the
    // data is the holder's own when the buffer has no room there (an adopted
    // buffer), so that the index equal to the length never leaves memory.
    unsigned char& At(unsigned long index) { return index < m_capacity ? m_data[index] : m_pastEnd; }

private:
    ~CDataHolder() = default;  // through Release only

    unsigned char* m_data;
    unsigned long m_length;
    unsigned long m_capacity;
    long m_refCount;
    // Guards the count and the growth. Not recursive, so nothing called
    // while it is held takes it again.
    CKDCriticalSection m_lock;
    unsigned char m_pastEnd = 0;
};

CBinaryData::CDataHolder::CDataHolder(unsigned char const* data, unsigned long length, bool adopt)
    : m_data(nullptr), m_length(data ? length : 0), m_capacity(0), m_refCount(1)
{
    if (adopt) {
        m_data = const_cast<unsigned char*>(data);
        m_capacity = m_length;
        return;
    }
    unsigned long const doubled = CheckedProduct(m_length, 2UL);
    m_capacity = doubled > kMinimumCopyCapacity ? doubled : kMinimumCopyCapacity;
    m_data = new unsigned char[m_capacity];
    if (m_length)
        memcpy(m_data, data, m_length);
}

void CBinaryData::CDataHolder::AddRef()
{
    CScopedLock lock(m_lock);
    ++m_refCount;
}

void CBinaryData::CDataHolder::Release(bool detach)
{
    long count;
    {
        CScopedLock lock(m_lock);
        count = --m_refCount;
    }
    if (detach) {
        if (count > 0)
            throw CKdException(FormatString("Failed to release data. [RefCount=%d]", static_cast<int>(count)));
        delete this;
        return;
    }
    if (count != 0)
        return;
    delete[] m_data;
    delete this;
}

void CBinaryData::CDataHolder::Append(unsigned char const* data, unsigned long length)
{
    CScopedLock lock(m_lock);
    if (m_refCount > 1)
        throw CKdException(FormatString("Failed to append. [RefCount=%d]", static_cast<int>(m_refCount)));
    unsigned long const newLength = CheckedSum(m_length, length);
    if (newLength > m_capacity) {
        unsigned long const capacity = CheckedProduct(newLength, 2UL);
        unsigned char* const grown = new unsigned char[capacity];
        if (m_length)
            memcpy(grown, m_data, m_length);
        // The new bytes may be this holder's own (a value appended to
        // itself): they are copied before the old array goes.
        if (length)
            memcpy(grown + m_length, data, length);
        delete[] m_data;
        m_data = grown;
        m_capacity = capacity;
    } else if (length) {
        memmove(m_data + m_length, data, length);
    }
    m_length = newLength;
}

CBinaryData::CDataHolder* CBinaryData::CDataHolder::GetExclusiveCopy()
{
    CScopedLock lock(m_lock);
    if (m_refCount <= 1)
        return this;
    CDataHolder* const copy = new CDataHolder(m_data, m_length, false);
    // The caller's reference moves to the copy. Others still hold this
    // holder, so its count stays above zero; the reference is dropped here
    // because the lock is held and Release would take it again.
    --m_refCount;
    return copy;
}

CBinaryData::CBinaryData() : m_holder(nullptr) {}

CBinaryData::CBinaryData(CBinaryData const& other) : m_holder(other.m_holder)
{
    if (m_holder)
        m_holder->AddRef();
}

CBinaryData::CBinaryData(char const* text)
    : m_holder(text ? new CDataHolder(reinterpret_cast<unsigned char const*>(text), strlen(text), false) : nullptr)
{
}

CBinaryData::CBinaryData(unsigned char* data, unsigned long length, bool adopt)
    : m_holder(new CDataHolder(data, length, adopt))
{
}

CBinaryData& CBinaryData::operator=(CBinaryData const& other)
{
    // Referenced before the old holder goes, so that assigning a value to
    // itself (or to a sharer of its holder) keeps the bytes.
    CDataHolder* const holder = other.m_holder;
    if (holder)
        holder->AddRef();
    Clear();
    m_holder = holder;
    return *this;
}

CBinaryData::~CBinaryData() { Clear(); }

void CBinaryData::Clear()
{
    if (m_holder) {
        CDataHolder* const holder = m_holder;
        m_holder = nullptr;
        holder->Release(false);
    }
}

unsigned char const* CBinaryData::GetData() const { return m_holder ? m_holder->GetData() : nullptr; }

unsigned long CBinaryData::GetLength() const { return m_holder ? m_holder->GetLength() : 0; }

// The bound is "above the length": the index equal to the length passes.
unsigned char& CBinaryData::operator[](unsigned long index)
{
    if (!m_holder || index > m_holder->GetLength())
        throw CKdException(FormatString("Index Out of range [%d]", static_cast<int>(index)));
    m_holder = m_holder->GetExclusiveCopy();
    return m_holder->At(index);
}

unsigned char const& CBinaryData::operator[](unsigned long index) const
{
    if (!m_holder || index > m_holder->GetLength())
        throw CKdException(FormatString("Index Out of range [%d]", static_cast<int>(index)));
    return m_holder->At(index);
}

bool CBinaryData::operator==(CBinaryData const& other) const
{
    if (!m_holder || !other.m_holder)
        return !m_holder && !other.m_holder;
    unsigned long const length = m_holder->GetLength();
    if (length != other.m_holder->GetLength())
        return false;
    return length == 0 || memcmp(m_holder->GetData(), other.m_holder->GetData(), length) == 0;
}

bool CBinaryData::operator!=(CBinaryData const& other) const { return !(*this == other); }

void CBinaryData::Append(unsigned char* data, unsigned long length)
{
    if (!data)
        length = 0;
    if (!m_holder) {
        m_holder = new CDataHolder(data, length, false);
        return;
    }
    m_holder = m_holder->GetExclusiveCopy();
    m_holder->Append(data, length);
}

void CBinaryData::Append(CBinaryData const& data)
{
    Append(const_cast<unsigned char*>(data.GetData()), data.GetLength());
}

void CBinaryData::Append(char const* text)
{
    if (text)
        Append(reinterpret_cast<unsigned char*>(const_cast<char*>(text)), strlen(text));
}

void CBinaryData::Append(std::string const& text) { Append(text.c_str()); }

void CBinaryData::Append(char c) { Append(reinterpret_cast<unsigned char*>(&c), 1); }

void CBinaryData::Append(unsigned char c) { Append(&c, 1); }

void CBinaryData::SetBuffer(unsigned char* data, unsigned long length)
{
    Clear();
    m_holder = new CDataHolder(data, length, false);
}

void CBinaryData::SetBuffer(char const* text)
{
    SetBuffer(reinterpret_cast<unsigned char*>(const_cast<char*>(text)), text ? strlen(text) : 0);
}

unsigned char* CBinaryData::ReleaseData()
{
    if (!m_holder)
        return nullptr;
    CDataHolder* const holder = m_holder->GetExclusiveCopy();
    m_holder = nullptr;
    unsigned char* const data = holder->GetData();
    holder->Release(true);
    return data;
}

} // namespace KdBind
