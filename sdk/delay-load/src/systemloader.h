#pragma once

#include "delay-load/loader.h"

namespace vx::delayload {

/// Windows itself.
class SystemLoader : public ILoader {
public:
    Module load(const std::wstring& path) override;
    Module loadByName(const std::wstring& name) override;
    void* findFunction(Module module, const char* name) override;
    std::wstring executablePath() override;
    std::wstring systemDirectory() override;
    std::optional<std::wstring> readRegistryText(const std::wstring& key, const std::wstring& value) override;
};

} // namespace vx::delayload
