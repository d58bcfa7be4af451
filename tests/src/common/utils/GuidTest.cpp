#include "common/guid.h"

#include <gmock/gmock.h>

#include <stdexcept>

namespace vx::tarn::common::utils {
namespace {

TEST(Guid, readsTextAndWritesItInFull)
{
    struct {
        std::wstring text;
        std::wstring written;
    } const rows[] = {
        {L"894D1810-89A9-4363-A8C5-9F429B518809", L"894D1810-89A9-4363-A8C5-9F429B518809"},
        {L"894d1810-89a9-4363-a8c5-9f429b518809", L"894D1810-89A9-4363-A8C5-9F429B518809"},
        {L"1-2-3-0405-060708090A0B", L"00000001-0002-0003-0405-060708090A0B"},
        {L"FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF and more", L"FFFFFFFF-FFFF-FFFF-FFFF-FFFFFFFFFFFF"},
    };
    for (const auto& row : rows)
        EXPECT_EQ(guidToString(guidFromString(row.text)), row.written);
    const Guid guid{0x01234567, 0x89AB, 0xCDEF, {1, 2, 3, 4, 5, 6, 7, 8}};
    EXPECT_EQ(guidToString(guid), L"01234567-89AB-CDEF-0102-030405060708");
    EXPECT_EQ(guidFromString(guidToString(guid)), guid);
}

TEST(Guid, refusesTextThatLacksAField)
{
    for (const wchar_t* text : {L"", L"{894D1810-89A9-4363-A8C5-9F429B518809}", L"894D1810-89A9-4363-A8C5",
             L"894D1810-89A9-4363-A8C5-9F429B5188", L"894D181012-89A9-4363-A8C5-9F429B518809",
             L"G94D1810-89A9-4363-A8C5-9F429B518809", L"894D1810_89A9_4363_A8C5_9F429B518809"})
        EXPECT_THAT([&] { guidFromString(text); },
            testing::ThrowsMessage<std::runtime_error>(testing::StrEq("Bad GUID format")))
            << testing::PrintToString(text);
}

} // namespace
} // namespace vx::tarn::common::utils
