#include "common/utils/guid.h"

#include <stdexcept>

using namespace vx::tarn::common::utils;

TEST(Guid, readsTextAndWritesItInFull)
{
    const Guid guid{0x01234567, 0x89AB, 0xCDEF, {1, 2, 3, 4, 5, 6, 7, 0xF8}};
    for (const wchar_t* text :
        {L"01234567-89AB-CDEF-0102-0304050607F8", L"1234567-89ab-cdef-0102-0304050607f8 and more"})
        EXPECT_EQ(guidFromString(text), guid);
    EXPECT_EQ(guidToString(guid), L"01234567-89AB-CDEF-0102-0304050607F8");
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
