#include "tarnctl/bundle/registrytext.h"

#include "common/windowsupdates/windowsupdatesplaces.h"
#include "tarnctl/health/gather.h"
#include "vxtl/registry.h"

#include <functional>

namespace tarnctl::bundle {

using vx::registry::RegistryKey;

namespace {

// The log's settings and the late loading's paths stand below the product's key, too.
constexpr const wchar_t* roots[] = {
    L"HKEY_LOCAL_MACHINE\\SOFTWARE\\Vantorix", vx::tarn::common::windowsUpdatesPolicy.key};

std::string utf8(const std::wstring& text)
{
    return vx::str::toUtf8Lossy(text);
}

/// By the first of the types that fits.
std::string valueText(const RegistryKey& key, const std::wstring& name)
{
    const std::function<std::string()> types[] = {
        [&] { return std::to_string(key.getInt32Value(name)); },
        [&] { return std::to_string(key.getInt64Value(name)); },
        [&] { return utf8(key.getStringValue(name)); },
        [&] {
            std::string lines;
            for (const auto& line : key.getMultiStringValue(name))
                lines += (lines.empty() ? "" : ", ") + utf8(line);
            return lines;
        },
        [&] { return std::to_string(key.getBinaryValue(name).size()) + " bytes"; },
    };
    for (const auto& type : types) {
        try {
            return type();
        } catch (const vx::BaseException&) {
            // Of another type.
        }
    }
    return "(can't be read)";
}

void add(std::string& text, const RegistryKey& key, const std::wstring& name)
{
    text += '[' + utf8(name) + "]\n";
    for (const auto& value : key.getValues())
        text += utf8(value) + " = " + valueText(key, value) + '\n';
    for (const auto& child : key.getKeys()) {
        try {
            add(text, *key.openKey(child), name + L'\\' + child);
        } catch (const std::exception& exception) {
            text += '[' + utf8(name + L'\\' + child) + "] " + health::textOf(exception) + '\n';
        }
    }
}

} // namespace

std::string registryText()
{
    const auto registry = vx::registry::createWin32Registry();
    std::string text;
    for (const auto* root : roots) {
        try {
            add(text, *registry->openKey(root), root);
        } catch (const std::exception& exception) {
            text += '[' + utf8(root) + "] " + health::textOf(exception) + '\n';
        }
    }
    return text;
}

} // namespace tarnctl::bundle
