#include "delay-load/bootstrap.h"

#include <map>
#include <set>

using namespace vx::delayload;
using testing::ElementsAre;

namespace {

std::vector<std::uint32_t> askedComponents;

void VX_CDECL recordDependencies(const DependencyContext* context)
{
    askedComponents.push_back(context->component);
}

struct FakeLoader : ILoader {
    Module load(const std::wstring& path) override
    {
        tried.push_back(path);
        return files.contains(path) ? this : nullptr;
    }
    void* findFunction(Module, const char* name) override
    {
        return functions.contains(name) ? reinterpret_cast<void*>(&recordDependencies) : nullptr;
    }
    std::wstring executablePath() override { return L"C:\\Program\\host.exe"; }
    std::wstring systemDirectory() override { return L"C:\\Windows\\system32"; }
    std::optional<std::wstring> readRegistryText(const std::wstring& key, const std::wstring& value) override
    {
        const auto found = registry.find(key + L'|' + value);
        return found == registry.end() ? std::nullopt : std::optional(found->second);
    }

    std::set<std::wstring> files;
    std::set<std::string> functions;
    std::map<std::wstring, std::wstring> registry;
    std::vector<std::wstring> tried;
};

struct BootstrapTest : testing::Test {
    BootstrapTest() { askedComponents.clear(); }

    LoadStatus load(const LoadContext& context, const std::string& name = "a.dll")
    {
        return bootstrap.initialize(
            context, [&](LateBinder& binder) { binder.load(name); }, result);
    }

    std::shared_ptr<FakeLoader> loader = std::make_shared<FakeLoader>();
    Bootstrap bootstrap{loader};
    LoadResult result{LoadStatus::Other, "old", "old"};
};

const std::wstring key100 = L"Software\\Vantorix\\QRL\\Delay Loading\\100|a.dll";
const std::wstring key0 = L"Software\\Lindhaven\\Vantorix\\Delay Loading|a.dll";

} // namespace

TEST_F(BootstrapTest, placesAreTriedInOrder)
{
    loader->registry = {{key100, L"D:\\Other\\b.dll"}, {key0, L"\\\\server\\c.dll"}};
    const std::wstring beside = L"C:\\Program\\a.dll";
    const std::wstring system = L"C:\\Windows\\system32\\a.dll";
    const struct {
        LoadContext context;
        std::vector<std::wstring> tried;
    } rows[] = {
        {{{}, true, 100}, {beside, L"D:\\Other\\b.dll", system}},
        {{{}, false, 100}, {L"D:\\Other\\b.dll", system}},
        {{{}, false, 0}, {L"\\\\server\\c.dll", system}},
        {{{}, false, 1}, {system}},
        {{L"E:\\Own\\", true, 100}, {L"E:\\Own\\a.dll", beside, system}},
        {{L"E:\\Own", false, 100}, {L"E:\\Own\\a.dll", system}},
    };
    for (const auto& row : rows) {
        loader->tried.clear();
        EXPECT_EQ(LoadStatus::ModuleNotFound, load(row.context));
        EXPECT_EQ(row.tried, loader->tried) << row.context.component << row.context.searchExecutableDirectory;
    }
    EXPECT_EQ("a.dll", result.libraryName());
    EXPECT_EQ("", result.functionName());
}

TEST_F(BootstrapTest, registryTextThatIsNoFullPathIsNotTried)
{
    for (const wchar_t* text : {L"", L"evil.dll", L"..\\evil.dll", L"C:evil.dll", L"%TEMP%\\evil.dll"}) {
        loader->tried.clear();
        loader->registry[key100] = text;
        load({{}, false, 100});
        EXPECT_THAT(loader->tried, ElementsAre(L"C:\\Windows\\system32\\a.dll"));
    }
}

TEST_F(BootstrapTest, firstLibraryFoundEndsTheSearchAndLoadsItsDependenciesOnce)
{
    loader->files = {L"C:\\Program\\a.dll", L"D:\\Other\\b.dll"};
    loader->registry[key100] = L"D:\\Other\\b.dll";
    loader->functions = {"VXDelayLoadDependencies"};
    for (int i = 0; i < 2; ++i)
        EXPECT_EQ(LoadStatus::Success, load({{}, true, 100}));
    EXPECT_THAT(loader->tried, ElementsAre(L"C:\\Program\\a.dll"));
    EXPECT_THAT(askedComponents, ElementsAre(100u));
}

TEST_F(BootstrapTest, missingFunctionGivesBothNamesAndLongNamesAreCut)
{
    loader->files = {L"C:\\Program\\a.dll"};
    loader->functions = {"Present"};
    void(VX_CDECL * bound)() = nullptr;
    const std::string missing(2000, 'x');
    const auto initializer = [&](LateBinder& binder) {
        const LateLibrary library = binder.load("a.dll");
        library.bind(bound, "Present");
        library.bind(bound, missing.c_str());
    };
    EXPECT_EQ(LoadStatus::FunctionNotFound, bootstrap.initialize({}, initializer, result));
    EXPECT_EQ("a.dll", result.libraryName());
    EXPECT_EQ(std::string(1024, 'x'), result.functionName());
}

TEST_F(BootstrapTest, badParametersAreTheThirdStatus)
{
    EXPECT_EQ(LoadStatus::Other, load({}, ""));
    EXPECT_EQ(LoadStatus::Other, bootstrap.initialize({}, nullptr, result));
    EXPECT_EQ("", result.libraryName());
}

TEST_F(BootstrapTest, otherExceptionsPassOnAndLeaveTheBootstrapUsable)
{
    EXPECT_THROW(bootstrap.initialize(
                     {}, [](LateBinder&) { throw 1; }, result),
        int);
    EXPECT_EQ("old", result.libraryName());
    EXPECT_EQ(LoadStatus::ModuleNotFound, load({}));
}
