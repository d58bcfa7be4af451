// Any header block is read without a fault, and the same again from a request's text.

#include "common/downloader/httpheaders.h"
#include "input.h"

using namespace vx::tarn::common;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    const auto text = fuzz::text(data, size);
    if (!text)
        return 0;
    const HttpHeaders headers = parseHeaders(*text);
    fuzz::require(parseHeaders(L"HTTP/1.1 200 OK\r\n" + headerText(headers)) == headers, "round trip");
    return 0;
}
