// The test program and, with arguments of its own, the other process of a test:
//   --serve FILE INSTANCE        serves until it is killed; 2 when it cannot
//   --set INSTANCE NAME NUMBER   writes one value through a connection of its own

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

} // namespace

int main(int argc, char** argv)
{
    try {
        if (argc == 4 && std::strcmp(argv[1], "--serve") == 0)
            return serve(argv[2], argv[3]);
        if (argc == 5 && std::strcmp(argv[1], "--set") == 0)
            return set(argv[2], argv[3], argv[4]);
    } catch (const StoreException& exception) {
        std::cerr << exception.what() << std::endl;
        return 2;
    }
    testing::InitGoogleMock(&argc, argv);
    return RUN_ALL_TESTS();
}
