#include "qrl-plugin/hostrecords.h"
#include "qrl-plugin/pluginimpl.h"

#include <gtest/gtest.h>

namespace vx::qrl {
namespace {

/// Calls with the stack pointer moved off its alignment, as hosts built by other compilers may.
std::uint32_t callMisaligned(void* function, const std::uint32_t* arguments, std::uint32_t count, std::uint32_t offset)
{
    std::uint32_t result;
    asm volatile("movl %%esp, %%edi\n\t"
                 "andl $-16, %%esp\n\t"
                 "subl %[offset], %%esp\n"
                 "1:\n\t"
                 "testl %%ecx, %%ecx\n\t"
                 "jz 2f\n\t"
                 "decl %%ecx\n\t"
                 "pushl (%%edx,%%ecx,4)\n\t"
                 "jmp 1b\n"
                 "2:\n\t"
                 "call *%%eax\n\t"
                 "movl %%edi, %%esp"
                 : "=a"(result), "+c"(count), "+d"(arguments)
                 : "a"(function), [offset] "S"(offset)
                 : "edi", "memory", "cc");
    return result;
}

template <typename... Arguments>
std::uint32_t callMisaligned(void* function, std::uint32_t offset, Arguments... arguments)
{
    const std::uint32_t words[] = {std::uint32_t(arguments)...};
    return callMisaligned(function, words, sizeof...(arguments), offset);
}

template <typename Pointer>
std::uint32_t word(Pointer pointer)
{
    return reinterpret_cast<std::uint32_t>(pointer);
}

/// Checks in every call that the compiler's assumption of an aligned stack holds.
struct AlignedPlugin : PluginImpl {
    static void touchAlignedLocal()
    {
        alignas(16) volatile float local[4] = {1, 2, 3, 4};
        auto address = reinterpret_cast<std::uintptr_t>(&local);
        asm volatile("" : "+r"(address)); // or the compiler answers by its assumption
        EXPECT_EQ(address % 16, 0u);
        ++calls;
    }
    void run() override
    {
        touchAlignedLocal();
        pluginAPI& api = *record;
        for (const std::uint32_t offset : {4u, 8u, 12u}) {
            callMisaligned(reinterpret_cast<void*>(api.onPowerEvent), offset, word(&api), 18u, 0u);
            callMisaligned(reinterpret_cast<void*>(api.onSessionChangeEvent), offset, word(&api), 5u, 1u);
            EXPECT_EQ(callMisaligned(reinterpret_cast<void*>(api.pluginStop), offset, word(&api)), 0u);
        }
    }
    void stop() override { touchAlignedLocal(); }
    void onPowerEvent(std::uint32_t type, std::uint32_t) override
    {
        EXPECT_EQ(type, 18u);
        touchAlignedLocal();
    }
    void onSessionChangeEvent(std::uint32_t type, std::uint32_t data) override
    {
        EXPECT_EQ(type, 5u);
        EXPECT_EQ(data, 1u);
        touchAlignedLocal();
    }

    static inline int calls = 0;
    static inline pluginAPI* record = nullptr;
};

void VX_STDCALL ignoreReport(const char*, std::uint32_t) {}

TEST(QRLPluginInitialize, worksOverAMisalignedStack)
{
    registerPluginFactory([] { return std::make_shared<AlignedPlugin>(); });
    hosterAPI host{0, ignoreReport};
    pluginAPI record{};
    record.size = 36;
    AlignedPlugin::record = &record;
    EXPECT_EQ(
        callMisaligned(reinterpret_cast<void*>(&QRLPluginInitialize), 4, word("name"), word(&host), word(&record)), 0u);
    EXPECT_EQ(record.pluginInitialize, &QRLPluginInitialize);
    EXPECT_EQ(callMisaligned(reinterpret_cast<void*>(record.pluginMain), 12, word(&record)), 0u);
    EXPECT_EQ(AlignedPlugin::calls, 1 + 3 * 3);
    EXPECT_EQ(record.pluginContextData, nullptr);
}

TEST(QRLPluginInitialize, sendsTheOldHostsResumeToThePowerEvent)
{
    hosterAPI host{0, ignoreReport};
    pluginAPI record{};
    record.size = 24;
    ASSERT_EQ(QRLPluginInitialize("name", &host, &record), 0u);
    ASSERT_NE(record.onResumeFromLowPowerMode, nullptr);
    callMisaligned(reinterpret_cast<void*>(record.onResumeFromLowPowerMode), 8, word(&record));
    record.pluginMain(&record);
    EXPECT_EQ(record.pluginContextData, nullptr);
}

} // namespace
} // namespace vx::qrl
