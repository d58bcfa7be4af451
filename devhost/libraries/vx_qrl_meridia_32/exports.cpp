// The functions of the library as its callers bind them: cdecl, plain names, wide texts unless the name
// says UTF-8. No exception leaves them: each becomes an error code.

#include "libraries/vx_qrl_meridia_32/library.h"
#include "vxtl/exception.h"
#include "vxtl/str.h"

#include <cstdlib>
#include <cstring>

using namespace devhost::store;

namespace {

template <typename Body>
int errorCodeOf(Body body) noexcept
{
    try {
        body();
        return static_cast<int>(ErrorCode::Success);
    } catch (const StoreException& exception) {
        return static_cast<int>(exception.code());
    } catch (const vx::BaseException&) {
        return static_cast<int>(ErrorCode::InvalidParameter); // a text that is not valid UTF-16
    } catch (...) {
        return static_cast<int>(ErrorCode::Unknown);
    }
}

std::wstring text(const wchar_t* text)
{
    return text ? text : L"";
}

std::string utf8(const wchar_t* wide)
{
    return vx::str::toUtf8(text(wide));
}

Value stored(Handle handle, const wchar_t* name)
{
    const std::string narrowName = utf8(name);
    auto value = Library::instance().client(handle)->get(narrowName);
    if (!value)
        throw StoreException(ErrorCode::NotFound, narrowName);
    return *std::move(value);
}

void store(Handle handle, const wchar_t* name, const Value& value)
{
    Library::instance().client(handle)->set(utf8(name), value);
}

/// Runs a read; on a failure the result is the default. The error may be left out.
template <typename Result, typename Read>
Result read(int* error, Result fallback, Read readValue) noexcept
{
    Result result = fallback;
    const int code = errorCodeOf([&] { result = readValue(); });
    if (error)
        *error = code;
    return result;
}

/// A copy for the caller, freed by QrlMeridia_FreeString; null when memory is short.
template <typename Character>
Character* copyForCaller(const std::basic_string<Character>& text) noexcept
{
    const std::size_t bytes = (text.size() + 1) * sizeof(Character);
    void* copy = std::malloc(bytes);
    if (copy)
        std::memcpy(copy, text.c_str(), bytes);
    return static_cast<Character*>(copy);
}

} // namespace

extern "C" {

int QrlMeridia_DelayLoadInitialize()
{
    return 0;
}

/// The library has no dependencies of its own to bring in.
int VXDelayLoadDependencies(void*)
{
    return 0;
}

/// 0 when it fails. The account and the profile don't choose between stores: there is one per instance.
Handle QrlMeridia_OpenHandle(const wchar_t* profile, const wchar_t* account, const wchar_t* clientName, int* error)
{
    return read<Handle>(
        error, 0, [&] { return Library::instance().open(utf8(profile), utf8(account), utf8(clientName)); });
}

void QrlMeridia_CloseHandle(Handle handle)
{
    errorCodeOf([&] { Library::instance().close(handle); });
}

bool QrlMeridia_GetBool(Handle handle, const wchar_t* name, bool fallback, int* error)
{
    return read(error, fallback, [&] { return stored(handle, name).asBool(); });
}

std::int32_t QrlMeridia_GetInt32(Handle handle, const wchar_t* name, std::int32_t fallback, int* error)
{
    return read(error, fallback, [&] { return stored(handle, name).asInt32(); });
}

std::int64_t QrlMeridia_GetInt64(Handle handle, const wchar_t* name, std::int64_t fallback, int* error)
{
    return read(error, fallback, [&] { return stored(handle, name).asInt64(); });
}

/// Never null but when memory is short; free it in every case.
wchar_t* QrlMeridia_GetString(Handle handle, const wchar_t* name, const wchar_t* fallback, int* error)
{
    return copyForCaller(
        read(error, text(fallback), [&] { return vx::str::fromUtf8(stored(handle, name).asString()); }));
}

/// An empty text on a failure; free it in every case.
char* QrlMeridia_GetObjectAsStringUtf8(Handle handle, const wchar_t* name, int* error)
{
    return copyForCaller(read(error, std::string(), [&] { return stored(handle, name).asObject(); }));
}

void QrlMeridia_FreeString(void* text)
{
    std::free(text);
}

int QrlMeridia_SetBool(Handle handle, const wchar_t* name, bool value)
{
    return errorCodeOf([&] { store(handle, name, Value::fromBool(value)); });
}

int QrlMeridia_SetInt32(Handle handle, const wchar_t* name, std::int32_t value)
{
    return errorCodeOf([&] { store(handle, name, Value::fromInt32(value)); });
}

int QrlMeridia_SetInt64(Handle handle, const wchar_t* name, std::int64_t value)
{
    return errorCodeOf([&] { store(handle, name, Value::fromInt64(value)); });
}

int QrlMeridia_SetString(Handle handle, const wchar_t* name, const wchar_t* value)
{
    if (!value)
        return static_cast<int>(ErrorCode::InvalidParameter);
    return errorCodeOf([&] { store(handle, name, Value::fromString(utf8(value))); });
}

int QrlMeridia_SetObjectFromStringUtf8(Handle handle, const wchar_t* name, const char* value)
{
    if (!value)
        return static_cast<int>(ErrorCode::InvalidParameter);
    return errorCodeOf([&] { store(handle, name, Value::fromObject(value)); });
}

int QrlMeridia_Subscribe(Handle handle, const wchar_t* name, NotificationFunction function, void* userData)
{
    return errorCodeOf([&] { Library::instance().subscribe(handle, text(name), function, userData); });
}

int QrlMeridia_Unsubscribe(Handle handle, const wchar_t* name, NotificationFunction function, void* userData)
{
    return errorCodeOf([&] { Library::instance().unsubscribe(handle, text(name), function, userData); });
}

} // extern "C"
