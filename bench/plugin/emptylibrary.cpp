// The floor for the plug-in's size and load time: a library that does nothing but hold threads, streams and JSON.

#include <iostream>
#include <nlohmann/json.hpp>
#include <thread>
#include <windows.h>

extern "C" __declspec(dllexport) int useAll(const char* text)
{
    int result = 0;
    std::thread worker([&] {
        try {
            const auto json = nlohmann::json::parse(text);
            std::cout << json.dump() << std::endl;
            result = static_cast<int>(json.size());
        } catch (const std::exception& e) {
            std::cerr << e.what() << std::endl;
        }
    });
    worker.join();
    return result;
}

BOOL WINAPI DllMain(HINSTANCE, DWORD, void*)
{
    return TRUE;
}
