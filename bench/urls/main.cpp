#include "bench/comparison.h"
#include "common/utils/escapeurl.h"
#include "vxtl/str.h"

#include <string>
#include <string_view>

namespace {

constexpr std::wstring_view digits = L"0123456789ABCDEF";

bool isPlain(unsigned char byte)
{
    return (byte >= 'a' && byte <= 'z') || (byte >= 'A' && byte <= 'Z') || (byte >= '0' && byte <= '9') ||
           byte == '-' || byte == '.' || byte == '~' || byte == '_' || byte == '%';
}

/// What stays and what does not, without a look ahead.
std::wstring appendEach(const std::wstring& url)
{
    const std::string bytes = vx::str::toUtf8(url);
    std::wstring result;
    result.reserve(3 * bytes.size());
    for (const unsigned char byte : bytes) {
        if (isPlain(byte)) {
            result += byte;
        } else {
            result += L'%';
            result += digits[byte >> 4];
            result += digits[byte & 0xF];
        }
    }
    return result;
}

std::wstring urlOf(std::size_t size)
{
    std::wstring url = L"https://updates.example.com/packages/";
    while (url.size() < size)
        url += L"Document Reader%20Professional/" + std::to_wstring(url.size()) + L"_x64.cab?language=en&edition=~1";
    return url.substr(0, size);
}

} // namespace

int main()
{
    bench::Comparison table("URLs");
    const std::wstring url = urlOf(2000);
    const auto floor = bench::perCall(2000, [=] { bench::keep(appendEach(url)); });
    const auto ours = bench::perCall(2000, [=] { bench::keep(vx::tarn::common::utils::escapeUrl(url)); });
    table.row("escapeUrl of 2,000 characters", floor, ours, bench::Reach::timeUpTo(1.2));
    return table.exitCode();
}
