// KdVariant storage: tags, payload ownership and copying. The lexical side
// (ToString, FromString) stands in kd_variant_conversions.cpp.
#include <cstring>
#include <initializer_list>

#include "kdbind/binding.h"

namespace KdBind {

namespace {

// How a tag owns its payload: inline kinds need nothing; owned kinds copy
// deeply and delete; counted kinds take and drop a reference.
struct PayloadOwnership {
    void* (*copy)(void* payload);
    void (*release)(void* payload);
};

template <class T>
void* CopyOwned(void* payload) { return new T(*static_cast<T*>(payload)); }

template <class T>
void DeleteOwned(void* payload) { delete static_cast<T*>(payload); }

template <class T>
void* AddReference(void* payload)
{
    static_cast<T*>(payload)->AddRef();
    return payload;
}

template <class T>
void DropReference(void* payload) { static_cast<T*>(payload)->Release(); }

template <class T>
constexpr PayloadOwnership Owned() { return {&CopyOwned<T>, &DeleteOwned<T>}; }

template <class T>
constexpr PayloadOwnership Counted() { return {&AddReference<T>, &DropReference<T>}; }

constexpr PayloadOwnership Inline() { return {nullptr, nullptr}; }

// Indexed by tag. A value class adds its row when it joins the library.
PayloadOwnership const kOwnership[] = {
    Inline(),                       // 0 invalid
    Owned<CBinaryData>(),           // 1 hexBinary
    Owned<CBinaryData>(),           // 2 base64Binary
    Inline(), Inline(), Inline(), Inline(),  // 3-6 i1 i2 i4 i8
    Inline(), Inline(), Inline(), Inline(),  // 7-10 ui1 ui2 ui4 ui8
    Inline(), Inline(),             // 11-12 r4 r8
    Owned<CDateTimeSpan>(),         // 13 duration
    Owned<CDateTime>(), Owned<CDateTime>(),  // 14-15 yearMonth monthDay
    Inline(), Inline(), Inline(),   // 16-18 year month day
    Owned<CDateTime>(), Owned<CDateTime>(), Owned<CDateTime>(),  // 19-21 date datetime time
    Inline(),                       // 22 char
    Owned<std::string>(),           // 23 string
    Inline(),                       // 24 boolean
    Owned<CDecimal>(),              // 25 decimal
    Owned<CBigInteger>(),           // 26 integer
    Counted<CXmlObjectBase>(),      // 27 xmlObject
    Counted<CXmlCollectionBase>(),  // 28 xmlCollection
};

constexpr int kTagCount = static_cast<int>(sizeof(kOwnership) / sizeof(kOwnership[0]));

} // namespace

KdVariant::KdVariant() : m_type(ItemType_invalid) { m_value.ui8 = 0; }

KdVariant::KdVariant(KdVariant const& other) : KdVariant() { *this = other; }

KdVariant::~KdVariant() { Clear(); }

KdVariant& KdVariant::operator=(KdVariant const& other)
{
    Clear();
    if (other.m_type < 0 || other.m_type >= kTagCount)
        throw CKdException("Unknown Type");
    m_type = other.m_type;
    PayloadOwnership const& ownership = kOwnership[m_type];
    if (ownership.copy)
        m_value.pointer = other.m_value.pointer ? ownership.copy(other.m_value.pointer) : nullptr;
    else
        m_value = other.m_value;
    return *this;
}

void KdVariant::Clear()
{
    if (m_type > 0 && m_type < kTagCount && m_value.pointer) {
        if (auto release = kOwnership[m_type].release)
            release(m_value.pointer);
    }
    m_value.ui8 = 0;
    m_type = ItemType_invalid;
}

std::string KdVariant::GetType() const
{
    char const* name = ItemTypeName(m_type);
    if (!name)
        throw CKdException(FormatString("Invalid Type %d", static_cast<int>(m_type)));
    return name;
}

KdVariant::Payload& KdVariant::Reset(ItemType type)
{
    Clear();
    m_type = type;
    return m_value;
}

void KdVariant::SetI1(char value) { Reset(ItemType_i1).i1 = value; }
void KdVariant::SetI2(short value) { Reset(ItemType_i2).i2 = value; }
void KdVariant::SetI4(long value) { Reset(ItemType_i4).i4 = value; }
void KdVariant::SetI8(long long value) { Reset(ItemType_i8).i8 = value; }
void KdVariant::SetUI1(unsigned char value) { Reset(ItemType_ui1).ui1 = value; }
void KdVariant::SetUI2(unsigned short value) { Reset(ItemType_ui2).ui2 = value; }
void KdVariant::SetUI4(unsigned long value) { Reset(ItemType_ui4).ui4 = value; }
void KdVariant::SetUI8(unsigned long long value) { Reset(ItemType_ui8).ui8 = value; }
void KdVariant::SetR4(float value) { Reset(ItemType_r4).r4 = value; }
void KdVariant::SetR8(double value) { Reset(ItemType_r8).r8 = value; }
void KdVariant::SetYear(unsigned short value) { Reset(ItemType_year).ui2 = value; }
void KdVariant::SetMonth(unsigned char value) { Reset(ItemType_month).ui1 = value; }
void KdVariant::SetDay(unsigned char value) { Reset(ItemType_day).ui1 = value; }
void KdVariant::SetChar(char value) { Reset(ItemType_char).i1 = value; }
void KdVariant::SetBoolean(bool value) { Reset(ItemType_boolean).boolean = value; }

void KdVariant::SetHexBinary(CBinaryData const& value)
{
    CBinaryData* copy = new CBinaryData(value);
    Reset(ItemType_hexBinary).binary = copy;
}

void KdVariant::SetBase64Binary(CBinaryData const& value)
{
    CBinaryData* copy = new CBinaryData(value);
    Reset(ItemType_base64Binary).binary = copy;
}

namespace {
// The payload pointer when the tag is one of the kinds that hold it, else null.
template <class T>
T* PayloadOf(ItemType tag, T* payload, std::initializer_list<ItemType> kinds)
{
    for (ItemType kind : kinds)
        if (tag == kind)
            return payload;
    return nullptr;
}
} // namespace

// Both binary kinds hold the same bytes; either getter reads either.
CBinaryData KdVariant::GetHexBinary() const
{
    CBinaryData const* data = PayloadOf(m_type, m_value.binary, {ItemType_hexBinary, ItemType_base64Binary});
    return data ? *data : CBinaryData();
}

CBinaryData KdVariant::GetBase64Binary() const { return GetHexBinary(); }

void KdVariant::SetString(std::string value)
{
    std::string* copy = new std::string(std::move(value));
    Reset(ItemType_string).string = copy;
}

void KdVariant::SetDecimal(CDecimal const& value)
{
    CDecimal* copy = new CDecimal(value);
    Reset(ItemType_decimal).decimal = copy;
}

void KdVariant::SetInteger(CBigInteger const& value)
{
    CBigInteger* copy = new CBigInteger(value);
    Reset(ItemType_integer).integer = copy;
}

CDecimal KdVariant::GetDecimal() const
{
    CDecimal const* value = PayloadOf(m_type, m_value.decimal, {ItemType_decimal});
    return value ? *value : CDecimal();
}

CBigInteger KdVariant::GetInteger() const
{
    CBigInteger const* value = PayloadOf(m_type, m_value.integer, {ItemType_integer});
    return value ? *value : CBigInteger();
}

void KdVariant::SetXmlObject(CXmlObjectBase* value)
{
    if (value)
        value->AddRef();
    Reset(ItemType_xmlObject).object = value;
}

void KdVariant::SetXmlCollection(CXmlCollectionBase* value)
{
    if (value)
        value->AddRef();
    Reset(ItemType_xmlCollection).collection = value;
}

// The duration and the five date kinds hold a copy of their value.
void KdVariant::SetDuration(CDateTimeSpan const& value)
{
    CDateTimeSpan* copy = new CDateTimeSpan(value);
    Reset(ItemType_duration).duration = copy;
}

void KdVariant::SetYearMonth(CDateTime const& value)
{
    CDateTime* copy = new CDateTime(value);
    Reset(ItemType_yearMonth).dateTime = copy;
}

void KdVariant::SetMonthDay(CDateTime const& value)
{
    CDateTime* copy = new CDateTime(value);
    Reset(ItemType_monthDay).dateTime = copy;
}

void KdVariant::SetDate(CDateTime const& value)
{
    CDateTime* copy = new CDateTime(value);
    Reset(ItemType_date).dateTime = copy;
}

void KdVariant::SetDateTime(CDateTime const& value)
{
    CDateTime* copy = new CDateTime(value);
    Reset(ItemType_datetime).dateTime = copy;
}

void KdVariant::SetTime(CDateTime const& value)
{
    CDateTime* copy = new CDateTime(value);
    Reset(ItemType_time).dateTime = copy;
}

CDateTimeSpan KdVariant::GetDuration() const
{
    CDateTimeSpan const* value = PayloadOf(m_type, m_value.duration, {ItemType_duration});
    return value ? *value : CDateTimeSpan();
}

// Any of the five date kinds reads as any other: they hold the same class.
namespace {
CDateTime DateOf(ItemType tag, CDateTime const* payload)
{
    CDateTime const* value = PayloadOf(
        tag, payload, {ItemType_yearMonth, ItemType_monthDay, ItemType_date, ItemType_datetime, ItemType_time});
    return value ? *value : CDateTime();
}
} // namespace

CDateTime KdVariant::GetYearMonth() const { return DateOf(m_type, m_value.dateTime); }
CDateTime KdVariant::GetMonthDay() const { return DateOf(m_type, m_value.dateTime); }
CDateTime KdVariant::GetDate() const { return DateOf(m_type, m_value.dateTime); }
CDateTime KdVariant::GetDateTime() const { return DateOf(m_type, m_value.dateTime); }
CDateTime KdVariant::GetTime() const { return DateOf(m_type, m_value.dateTime); }

CSmartPtr<CXmlObjectBase> KdVariant::GetXmlObject() const
{
    return CSmartPtr<CXmlObjectBase>(PayloadOf(m_type, m_value.object, {ItemType_xmlObject}));
}

CSmartPtr<CXmlCollectionBase> KdVariant::GetXmlCollection() const
{
    return CSmartPtr<CXmlCollectionBase>(PayloadOf(m_type, m_value.collection, {ItemType_xmlCollection}));
}

} // namespace KdBind
