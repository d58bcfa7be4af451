#include "vxtl/comerror.h"

#include <windows.h>

#include <oaidl.h>

#include <memory>
#include <utility>

namespace vx {

ComError::ComError(long result, IErrorInfo* info) noexcept : m_result(result), m_info(info)
{
    if (m_info)
        m_info->AddRef();
}

ComError& ComError::operator=(const ComError& other) noexcept
{
    ComError copy(other);
    std::swap(m_result, copy.m_result);
    std::swap(m_info, copy.m_info);
    return *this;
}

ComError::~ComError()
{
    if (m_info)
        m_info->Release();
}

std::wstring ComError::message() const
{
    wchar_t* text = nullptr;
    const DWORD length =
        FormatMessageW(FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_IGNORE_INSERTS | FORMAT_MESSAGE_FROM_SYSTEM,
            nullptr, static_cast<DWORD>(m_result), 0x400, reinterpret_cast<wchar_t*>(&text), 0, nullptr);
    if (length == 0)
        return details::unknownComErrorMessage(m_result);
    const std::unique_ptr<wchar_t, decltype(&LocalFree)> owner(text, &LocalFree);
    std::wstring message(text, length);
    if (message.ends_with(L'\n'))
        message.pop_back();
    if (message.size() < length && message.ends_with(L'\r'))
        message.pop_back();
    return message;
}

std::wstring ComError::source() const
{
    BSTR text = nullptr;
    if (!m_info || FAILED(m_info->GetSource(&text)) || !text)
        return {};
    // Asked before there is an owner: the first call of the library may throw.
    const UINT length = SysStringLen(text);
    const std::unique_ptr<wchar_t, decltype(&SysFreeString)> owner(text, &SysFreeString);
    return std::wstring(text, length);
}

} // namespace vx
