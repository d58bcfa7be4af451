#include "stage.h"

#include "host/directorywatch.h"
#include "ipc/instance.h"

#include <windows.h>

namespace support {

using devhost::store::Type;

Gate::Gate(const std::string& name) : m_name(name + "-" + std::to_string(GetCurrentProcessId())) {}

StageTest::StageTest()
{
    devhost::ipc::exportInstance(instance);
}

void StageTest::installAgent(const std::filesystem::path& where) const
{
    std::filesystem::create_directories(where);
    for (const char* file : {"tarnag.exe", "vx_qrl_meridia_32.dll"})
        std::filesystem::copy_file(
            programFolder() / file, where / file, std::filesystem::copy_options::overwrite_existing);
}

void StageTest::script(const std::vector<json>& runs, json lists) const
{
    lists["runs"] = runs;
    writeFile(agentFolder / "tarnag.script.json", lists.dump());
}

void StageTest::put(const vx::tarn::KeyRow& row, const json& value)
{
    const Type type = devhost::host::typeOfKey(keyOf(row)).value();
    const json plain = type == Type::Object ? json(value.dump()) : value;
    client.set(keyOf(row), Value::fromJson({{"type", vx::toText(type)}, {"value", plain}}));
}

json StageTest::get(const vx::tarn::KeyRow& row)
{
    const auto value = client.get(keyOf(row));
    if (!value)
        return nullptr;
    return value->type() == Type::Object ? json::parse(value->asObject()) : value->toJson().at("value");
}

Texts StageTest::queue()
{
    Texts descriptors;
    for (const json& item : get(settings.installation.deploymentQueue))
        descriptors.push_back(item.at("update_id"));
    return descriptors;
}

void StageTest::putQueue(const Texts& descriptors)
{
    json items = json::array();
    for (const std::string& descriptor : descriptors)
        items.push_back({{"update_id", descriptor}});
    put(settings.installation.deploymentQueue, items);
}

void StageTest::waitFor(
    const std::filesystem::path& changing, const std::string& what, const std::function<bool()>& condition)
{
    std::filesystem::create_directories(changing);
    devhost::host::DirectoryWatch watch(changing);
    const devhost::ipc::Signal never;
    const auto end = std::chrono::steady_clock::now() + deadline / 2;
    while (!condition()) {
        if (std::chrono::steady_clock::now() >= end)
            FAIL() << "never came: " << what;
        watch.wait(never, 250);
    }
}

} // namespace support
