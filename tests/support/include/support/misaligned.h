#pragma once

#include <cstdint>

namespace support {

/// Calls as a host does whose compiler aligns the stack to four bytes only: with the stack pointer `offset` bytes
/// below an aligned one before the arguments go on it. For functions of 32-bit x86, whoever clears their stack.
template <typename Function, typename... Arguments>
std::uint32_t callMisaligned(Function* function, std::uint32_t offset, Arguments... arguments)
{
    const std::uint32_t words[] = {(std::uint32_t)arguments...};
    const std::uint32_t* next = words;
    std::uint32_t count = sizeof...(arguments);
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
                 : "=a"(result), "+c"(count), "+d"(next)
                 : "a"(function), [offset] "S"(offset)
                 : "edi", "memory", "cc");
    return result;
}

/// Fails the test where the compiler's belief in an aligned stack does not hold.
inline void expectAlignedStack()
{
    alignas(16) volatile float local[4] = {1, 2, 3, 4};
    auto address = reinterpret_cast<std::uintptr_t>(&local);
    asm volatile("" : "+r"(address) : : "memory"); // or the compiler answers by its belief
    EXPECT_EQ(address % 16, 0u);
}

} // namespace support
