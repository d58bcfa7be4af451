#include "common/patches/recordfields.h"

#include "common/utils/jsonnumber.h"
#include "common/utils/jsonvalue.h"
#include "vxtl/str.h"

namespace vx::tarn::common::details {

namespace {

using utils::arrayIn;
using utils::objectIn;
using utils::stringIn;

std::wstring textOf(const json& value)
{
    return str::fromUtf8(stringIn(value));
}

} // namespace

bool read(const json& value, std::wstring& target)
{
    target = textOf(value);
    return true;
}

bool read(const json& value, std::int64_t& target)
{
    target = utils::readInt64(value);
    // An unsigned one beyond the signed range is read as a negative number.
    return value.is_number_integer() && (!value.is_number_unsigned() || target >= 0);
}

bool read(const json& value, std::vector<std::wstring>& target)
{
    const auto& array = arrayIn(value);
    target.reserve(array.size());
    for (const json& element : array)
        target.push_back(textOf(element));
    return true;
}

bool read(const json& value, ValueItem& target)
{
    target = fromText<ValueItem>(stringIn(value));
    return true;
}

bool read(const json& value, InstallationResultItem& target)
{
    target = fromText<InstallationResultItem>(stringIn(value));
    return true;
}

json write(const std::wstring& text)
{
    return str::toUtf8(text);
}

json write(std::int64_t number)
{
    return number;
}

json write(const std::vector<std::wstring>& texts)
{
    json::array_t array;
    array.reserve(texts.size());
    for (const std::wstring& text : texts)
        array.emplace_back(str::toUtf8(text));
    return array;
}

json write(ValueItem value)
{
    return toText(value);
}

json write(InstallationResultItem value)
{
    return toText(value);
}

bool readMembers(const json& value, std::span<const Field> fields, void* record)
{
    const auto& object = objectIn(value);
    bool isAsWritten = object.size() == fields.size();
    auto member = object.begin();
    for (const Field& field : fields) {
        int order = 1;
        while (member != object.end() && (order = member->first.compare(field.key)) < 0)
            ++member;
        if (member == object.end() || order != 0 || member->second.is_null())
            isAsWritten = false;
        else if (!field.read(member->second, record))
            isAsWritten = false;
    }
    return isAsWritten;
}

json writeMembers(std::span<const Field> fields, const void* record)
{
    json::object_t object;
    for (const Field& field : fields)
        object.emplace_hint(object.end(), field.key, field.write(record));
    return object;
}

template <>
bool check<std::wstring>(const json& value)
{
    static_cast<void>(stringIn(value));
    return true;
}

template <>
bool check<std::vector<std::wstring>>(const json& value)
{
    for (const json& element : arrayIn(value))
        static_cast<void>(stringIn(element));
    return true;
}

} // namespace vx::tarn::common::details
