#include "multistring.h"

namespace vx::registry::details {

std::vector<std::wstring> splitMultiString(std::wstring_view data)
{
    std::vector<std::wstring> list;
    while (!data.empty()) {
        const auto end = data.find(L'\0');
        list.emplace_back(data.substr(0, end));
        data.remove_prefix(end == std::wstring_view::npos ? data.size() : end + 1);
    }
    for (int i = 0; i < 2 && !list.empty() && list.back().empty(); ++i)
        list.pop_back();
    return list;
}

std::wstring joinMultiString(const std::vector<std::wstring>& list)
{
    std::wstring data;
    for (const std::wstring& text : list)
        data.append(text).push_back(L'\0');
    if (!list.empty())
        data.push_back(L'\0');
    return data;
}

} // namespace vx::registry::details
