#include "delay-load/bootstrap.h"

#include <map>
#include <set>

using namespace vx::delayload;
using testing::ElementsAre;

namespace {

struct FakeLoader : ILoader {
    Module load(const std::wstring& path) override
    {
        tried.push_back(path);
        return files.contains(path) ? this : nullptr;
    }
    Module loadByName(const std::wstring& name) override { return load(L"by name " + name); }
    void* findFunction(Module, const char*) override { return nullptr; }
    std::wstring executablePath() override { return executable; }
    std::wstring systemDirectory() override { return system; }
    std::optional<std::wstring> readRegistryText(const std::wstring& key, const std::wstring& value) override
    {
        const auto found = registry.find(key + L'|' + value);
        return found == registry.end() ? std::nullopt : std::optional(found->second);
    }

    std::wstring executable = L"C:\\Program\\host.exe";
    std::wstring system = L"C:\\Windows\\system32";
    std::set<std::wstring> files;
    std::map<std::wstring, std::wstring> registry;
    std::vector<std::wstring> tried;
};

struct BootstrapTest : testing::Test {
    LoadStatus load(const LoadContext& context, const std::string& name = "a.dll")
    {
        loader->tried.clear();
        return bootstrap.initialize(
            context, [&](LateBinder& binder) { binder.load(name); }, result);
    }

    std::shared_ptr<FakeLoader> loader = std::make_shared<FakeLoader>();
    Bootstrap bootstrap{loader};
    LoadResult result{LoadStatus::Other, "old", "old"};
};

} // namespace

TEST_F(BootstrapTest, fullPathsAreTriedInOrder)
{
    const std::wstring key100 = L"Software\\Vantorix\\QRL\\Delay Loading\\100|a.dll";
    const std::wstring key0 = L"Software\\Lindhaven\\Vantorix\\Delay Loading|a.dll";
    loader->registry = {{key100, L"D:\\Other\\b.dll"}, {key0, L"\\\\server\\c.dll"}};
    const std::wstring beside = L"C:\\Program\\a.dll", system = L"C:\\Windows\\system32\\a.dll";
    const std::pair<LoadContext, std::vector<std::wstring>> rows[] = {
        {{{}, true, 100}, {beside, L"D:\\Other\\b.dll", system}},
        {{{}, false, 0}, {L"\\\\server\\c.dll", system}},
        {{{}, false, 1}, {system}},
        {{L"E:\\Own\\", true, 100}, {L"E:\\Own\\a.dll", beside, system}},
        {{L"E:\\Own", false, 100}, {L"E:\\Own\\a.dll", system}},
    };
    for (const auto& [context, tried] : rows) {
        EXPECT_EQ(LoadStatus::ModuleNotFound, load(context));
        EXPECT_EQ(tried, loader->tried) << context.component << context.searchExecutableDirectory;
    }
    EXPECT_EQ("a.dll", result.libraryName());
    const std::pair<std::wstring, std::vector<std::wstring>> texts[] = {{L"", {system}}, {L"..\\evil.dll", {system}},
        {L"/evil.dll", {system}}, {L"C:evil.dll", {system}}, {L"%TEMP%\\evil.dll", {system}},
        {L"D:/Other/b.dll", {L"D:/Other/b.dll", system}}, {L"//server/b.dll", {L"//server/b.dll", system}},
        {L"b.dll", {L"by name b.dll", system}}};
    for (const auto& [text, tried] : texts) {
        loader->registry[key100] = text;
        load({{}, false, 100});
        EXPECT_EQ(tried, loader->tried);
    }
    loader->executable = loader->system = L"";
    load({{}, true, 1});
    EXPECT_THAT(loader->tried, ElementsAre());
}

TEST_F(BootstrapTest, firstLibraryFoundEndsTheSearchAndIsKnownFromThenOn)
{
    loader->files = {L"C:\\Program\\a.dll", L"C:\\Windows\\system32\\a.dll"};
    EXPECT_EQ(LoadStatus::Success, load({{}, true, 100}));
    EXPECT_THAT(loader->tried, ElementsAre(L"C:\\Program\\a.dll"));
    EXPECT_EQ(LoadStatus::Success, load({{}, true, 100}));
    EXPECT_THAT(loader->tried, ElementsAre());
}

TEST_F(BootstrapTest, failuresGiveTheNamesThatTheyHaveCutToTheRecord)
{
    loader->files = {L"C:\\Program\\a.dll"};
    void(VX_CDECL * bound)() = nullptr;
    const std::string missing(2000, 'x');
    const auto initializer = [&](LateBinder& binder) { binder.load("a.dll").bind(bound, missing.c_str()); };
    EXPECT_EQ(LoadStatus::FunctionNotFound, bootstrap.initialize({}, initializer, result));
    EXPECT_EQ("a.dll", result.libraryName());
    EXPECT_EQ(std::string(1024, 'x'), result.functionName());
    EXPECT_EQ(LoadStatus::Other, load({}, ""));
    EXPECT_EQ(LoadStatus::Other, bootstrap.initialize({}, nullptr, result));
    EXPECT_EQ("", result.libraryName() + result.functionName());
}
