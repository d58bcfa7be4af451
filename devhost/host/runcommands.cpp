#include "host/commands.h"
#include "host/conduct.h"
#include "host/host.h"
#include "host/pluginrecord.h"
#include "host/testmachine.h"
#include "program/program.h"
#include "vxtl/str.h"

#include <map>
#include <set>

namespace devhost::host {

namespace {

struct RunOptions : MachineOptions {
    std::string plugin, store, agentDirectory, misbehaviour;
    Reboots reboots = Reboots::Hold;
    bool noStore = false, untilStop = false, noProfile = false;
    std::uint32_t size = 36;
    std::optional<unsigned> seconds;
};

struct StoreOptions {
    std::string file;
};

std::filesystem::path storeFile(const Context& context, const std::string& named)
{
    return named.empty() ? program::ownFolder() / (L"tarnhost." + context.instance + L".store.json")
                         : std::filesystem::absolute(vx::str::fromUtf8(named));
}

ExitCode runHost(const Context& context, const RunOptions& given)
{
    if (given.reboots == Reboots::Real)
        requireTestMachine(given);
    HostOptions options;
    options.plugin = given.plugin.empty() ? program::ownFolder() / "tarnhd.dll"
                                          : std::filesystem::absolute(vx::str::fromUtf8(given.plugin));
    if (!given.noStore)
        options.store = storeFile(context, given.store);
    if (!given.agentDirectory.empty())
        options.agentDirectory = vx::str::fromUtf8(given.agentDirectory);
    if (given.seconds)
        options.runTime = std::chrono::seconds(*given.seconds);
    options.recordSize = given.size;
    options.provideProfile = !given.noProfile;
    options.reboots = given.reboots;
    options.conduct = given.misbehaviour.empty() ? &goodConduct : &misconduct(given.misbehaviour);
    return Host(context, options).run();
}

ExitCode runStore(const Context& context, const StoreOptions& given)
{
    return serveStore(context, storeFile(context, given.file));
}

void addRun(Commands& commands)
{
    const auto [run, options] =
        commands.add("run", "serve the store and run the plug-in until Ctrl-C or 'tarnhost stop'", runHost);
    run->add_option("--plugin", options.plugin, "the plug-in; tarnhd.dll beside this program without it");
    // Hosts of all ages are to be tried: the plug-in fills in no more than the record's size allows.
    const std::set<std::uint32_t> sizes(PluginRecord::knownSizes.begin(), PluginRecord::knownSizes.end());
    auto* const size = run->add_option("--size", options.size, "size of the plug-in record that the host knows")
                           ->check(CLI::IsMember(sizes))
                           ->capture_default_str();
    run->add_option("--misbehave", options.misbehaviour,
           "break the contract with the plug-in once, as a test of qrl-probe.dll: the check of that name fails")
        ->check(CLI::IsMember(misconductKinds()))
        ->excludes(size);
    auto* file = run->add_option(
        "--store", options.store, "the store's file; tarnhost.INSTANCE.store.json beside this program without it");
    run->add_flag("--no-store", options.noStore, "another process serves the store")->excludes(file);
    run->add_option("--agent-dir", options.agentDirectory, "write the agent's folder to the registry");
    const std::map<std::string, Reboots> reboots{
        {"hold", Reboots::Hold}, {"play", Reboots::Play}, {"real", Reboots::Real}};
    run->add_option("--reboots", options.reboots,
           "what becomes of a reboot that the plug-in asks for: hold it (default), play it as 'tarnhost reboot' does, "
           "or let this computer go down")
        ->transform(CLI::CheckedTransformer(reboots));
    addTestMachine(run, options);
    auto* seconds = run->add_option("--for-seconds", options.seconds, "end after that time");
    run->add_flag("--until-stop", options.untilStop, "end on Ctrl-C or 'tarnhost stop' only, which is the default")
        ->excludes(seconds);
    run->add_flag("!--profile,--no-profile", options.noProfile,
        "whether to give the store a profile, which the plug-in waits for (default: yes)");
}

} // namespace

void runCommands(Commands& commands)
{
    addRun(commands);
    const auto [store, options] = commands.add("store", "serve the store alone, until Ctrl-C", runStore);
    store->add_option("--file", options.file, "the store's file; the same default as that of 'run --store'");
}

} // namespace devhost::host
