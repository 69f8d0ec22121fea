// CFastInfosetContext: the Fast Infoset options of a run.
#include "kdbind/fastinfoset.h"

namespace KdBind {

namespace {
using Encoding = CFastInfosetContext::EncodedCharacterString;

// The recommended encodings. The unsigned kinds take the next wider signed
// algorithm, and duration shares the date alphabet, which lacks its letters:
// such a value fails at the writer under these settings, and that stays so.
struct SuggestedEncoding {
    ItemType type;
    Encoding::Kind kind;
    unsigned long index;
};
constexpr SuggestedEncoding kSuggested[] = {
    {ItemType_hexBinary, Encoding::Kind_EncodingAlgorithm, 1},
    {ItemType_base64Binary, Encoding::Kind_EncodingAlgorithm, 2},
    {ItemType_i1, Encoding::Kind_EncodingAlgorithm, 3},
    {ItemType_i2, Encoding::Kind_EncodingAlgorithm, 3},
    {ItemType_i4, Encoding::Kind_EncodingAlgorithm, 4},
    {ItemType_i8, Encoding::Kind_EncodingAlgorithm, 5},
    {ItemType_ui1, Encoding::Kind_EncodingAlgorithm, 3},
    {ItemType_ui2, Encoding::Kind_EncodingAlgorithm, 4},
    {ItemType_ui4, Encoding::Kind_EncodingAlgorithm, 5},
    {ItemType_ui8, Encoding::Kind_EncodingAlgorithm, 5},
    {ItemType_r4, Encoding::Kind_EncodingAlgorithm, 7},
    {ItemType_r8, Encoding::Kind_EncodingAlgorithm, 8},
    {ItemType_duration, Encoding::Kind_RestrictedAlphabet, 2},
    {ItemType_yearMonth, Encoding::Kind_RestrictedAlphabet, 2},
    {ItemType_monthDay, Encoding::Kind_RestrictedAlphabet, 2},
    {ItemType_year, Encoding::Kind_RestrictedAlphabet, 2},
    {ItemType_month, Encoding::Kind_RestrictedAlphabet, 2},
    {ItemType_day, Encoding::Kind_RestrictedAlphabet, 2},
    {ItemType_date, Encoding::Kind_RestrictedAlphabet, 2},
    {ItemType_datetime, Encoding::Kind_RestrictedAlphabet, 2},
    {ItemType_time, Encoding::Kind_RestrictedAlphabet, 2},
    {ItemType_boolean, Encoding::Kind_EncodingAlgorithm, 6},
    {ItemType_decimal, Encoding::Kind_RestrictedAlphabet, 1},
    {ItemType_integer, Encoding::Kind_RestrictedAlphabet, 1},
};

void CheckType(unsigned long type)
{
    if (type >= CFastInfosetContext::kEncodingCount)
        throw CKdInvalidParamException(FormatString("Invalid item type [%lu]", type));
}
} // namespace

CFastInfosetContext::CFastInfosetContext() = default;

void CFastInfosetContext::SetSuggestedValues()
{
    for (SuggestedEncoding const& entry : kSuggested)
        m_encodings[entry.type] = Encoding(entry.kind, entry.index);
}

CFastInfosetContext::EncodedCharacterString CFastInfosetContext::GetEncoding(unsigned long type) const
{
    CheckType(type);
    return m_encodings[type];
}

void CFastInfosetContext::SetEncoding(unsigned long type, EncodedCharacterString encoding)
{
    CheckType(type);
    m_encodings[type] = encoding;
}

} // namespace KdBind
