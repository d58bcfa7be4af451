// The test program and, with arguments of its own, the other process of a test:
//   --serve FILE INSTANCE        serves until it is killed; 2 when it cannot
//   --set INSTANCE NAME NUMBER   writes one value through a connection of its own
//   --leave LIBRARY              ends with 7, a handle of the library open and subscribed to "a"

#include "store/client.h"
#include "store/server.h"

#include <cstring>
#include <gmock/gmock.h>
#include <iostream>

#include <windows.h>

using namespace devhost::store;

namespace {

std::wstring wide(const char* text)
{
    return {text, text + std::strlen(text)};
}

int serve(const char* file, const char* instance)
{
    Server server(wide(file), wide(instance));
    server.start();
    for (;;)
        Sleep(INFINITE);
}

int set(const char* instance, const char* name, const char* number)
{
    Client(wide(instance), Role::Application).set(name, Value::parse(number, Type::Int64));
    return 0;
}

template <typename Function>
Function* bind(HMODULE module, const char* name)
{
    return reinterpret_cast<Function*>(reinterpret_cast<void*>(GetProcAddress(module, name)));
}

int leave(const char* path)
{
    using Notification = void(const wchar_t*, int, const void*, void*);
    HMODULE module = LoadLibraryA(path);
    int error = -1;
    const auto handle = bind<unsigned(const wchar_t*, const wchar_t*, const wchar_t*, int*)>(
        module, "QrlMeridia_OpenHandle")(L"", L"", L"", &error);
    Notification* ignore = [](const wchar_t*, int, const void*, void*) {};
    const int code = bind<int(unsigned, const wchar_t*, Notification*, void*)>(module, "QrlMeridia_Subscribe")(
        handle, L"a", ignore, nullptr);
    return error == 0 && code == 0 ? 7 : 1;
}

} // namespace

int main(int argc, char** argv)
{
    try {
        if (argc == 4 && std::strcmp(argv[1], "--serve") == 0)
            return serve(argv[2], argv[3]);
        if (argc == 5 && std::strcmp(argv[1], "--set") == 0)
            return set(argv[2], argv[3], argv[4]);
        if (argc == 3 && std::strcmp(argv[1], "--leave") == 0)
            return leave(argv[2]);
    } catch (const StoreException& exception) {
        std::cerr << exception.what() << std::endl;
        return 2;
    }
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
