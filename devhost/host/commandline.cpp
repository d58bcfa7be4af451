#include "host/commandline.h"

#include "host/host.h"
#include "host/hostcommands.h"
#include "host/logcommand.h"
#include "host/patchescommand.h"
#include "host/pluginrecord.h"
#include "host/printer.h"
#include "host/queuecommand.h"
#include "host/statuscommand.h"
#include "host/stopsignal.h"
#include "host/storecommands.h"
#include "host/systemtext.h"
#include "store/protocol/errorcode.h"
#include "vxtl/str.h"

#include <CLI/CLI.hpp>
#include <cstdio>
#include <functional>
#include <set>
#include <windows.h>

namespace devhost::host {

namespace {

constexpr auto footer = R"(Exit codes:
  0  done
  1  failed
  2  bad usage
  3  no host of this instance is running, or the store is unreachable
  4  time-out
  5  a host of this instance is already running)";

std::filesystem::path ownFolder()
{
    wchar_t path[MAX_PATH];
    GetModuleFileNameW(nullptr, path, MAX_PATH);
    return std::filesystem::path(path).parent_path();
}

/// The command line's grammar. Parsing picks one action and fills in what it works with; the fields live
/// as long as the actions.
class Grammar {
public:
    Grammar();

    void parse(const std::vector<std::string>& arguments);
    int explain(const CLI::ParseError& error) { return m_app.exit(error); }
    ExitCode perform();

private:
    using Action = std::function<ExitCode(const Context&)>;

    CLI::App* add(const char* name, const char* help, Action action);
    void addRunCommands();
    void addValueCommands();
    void addStoreCommands();
    void addRequestCommands();
    void addDeploymentCommands();
    void addControlCommands();
    void addLogCommand();
    std::filesystem::path storeFile() const;
    ExitCode runHost(const Context& context) const;
    ExitCode workOnQueue(const Context& context) const;

    CLI::App m_app{"tarnhost: a console host for the plug-in tarnhd.dll, with its store.", "tarnhost"};
    Action m_action;
    std::string m_instance = "default";
    bool m_json = false;

    std::string m_plugin, m_store, m_agentDirectory, m_file;
    bool m_noStore = false, m_untilStop = false, m_noProfile = false, m_follow = false, m_pop = false;
    std::uint32_t m_size = 36, m_type = 0, m_data = 0;
    std::optional<unsigned> m_seconds, m_wait, m_lines, m_limit;
    std::optional<std::string> m_push, m_remove;
    std::string m_key, m_text, m_typeName, m_kind, m_faultKey;
    std::vector<std::string> m_keys;
    unsigned m_count = 0, m_faultCount = 1;
    int m_code = 0;
};

Grammar::Grammar()
{
    m_app.footer(footer);
    m_app.add_option("--instance", m_instance, "which host and store; one host runs per instance")
        ->envname("TARNHD_INSTANCE")
        ->capture_default_str();
    m_app.add_flag("--json", m_json, "print one JSON object per line");
    // At least one is asked for by perform: the parser would hide a misspelt one behind that message.
    m_app.require_subcommand(0, 1);
    m_app.fallthrough();
    addRunCommands();
    addRequestCommands();
    addDeploymentCommands();
    addValueCommands();
    addStoreCommands();
    addControlCommands();
    addLogCommand();
}

CLI::App* Grammar::add(const char* name, const char* help, Action action)
{
    auto* command = m_app.add_subcommand(name, help);
    command->footer(footer);
    command->callback([this, action = std::move(action)] { m_action = action; });
    return command;
}

void Grammar::addRunCommands()
{
    auto* run = add("run", "serve the store and run the plug-in until Ctrl-C or 'tarnhost stop'",
        [this](const Context& context) { return runHost(context); });
    run->add_option("--plugin", m_plugin, "the plug-in; tarnhd.dll beside this program without it");
    const std::set<std::uint32_t> sizes(PluginRecord::knownSizes.begin(), PluginRecord::knownSizes.end());
    run->add_option("--size", m_size, "size of the plug-in record that the host knows")
        ->check(CLI::IsMember(sizes))
        ->capture_default_str();
    auto* file = run->add_option(
        "--store", m_store, "the store's file; tarnhost.INSTANCE.store.json beside this program without it");
    run->add_flag("--no-store", m_noStore, "another process serves the store")->excludes(file);
    run->add_option("--agent-dir", m_agentDirectory, "write the agent's folder to the registry");
    auto* seconds = run->add_option("--for-seconds", m_seconds, "end after that time");
    run->add_flag("--until-stop", m_untilStop, "end on Ctrl-C or 'tarnhost stop' only, which is the default")
        ->excludes(seconds);
    run->add_flag("!--profile,--no-profile", m_noProfile,
        "whether to give the store a profile, which the plug-in waits for (default: yes)");

    auto* store = add("store", "serve the store alone, until Ctrl-C",
        [this](const Context& context) { return serveStore(context, storeFile()); });
    store->add_option("--file", m_store, "the store's file; the same default as that of 'run --store'");
}

void Grammar::addValueCommands()
{
    auto* get = add("get", "print a value", [this](const Context& c) { return getValue(c, m_key); });
    get->add_option("KEY", m_key)->required();

    auto* set =
        add("set", "write a value", [this](const Context& c) { return setValue(c, m_key, m_text, m_typeName); });
    set->add_option("KEY", m_key)->required();
    set->add_option("VALUE", m_text)->required();
    set->add_option("--type", m_typeName, "type of a key that is not the product's own")
        ->check(CLI::IsMember({"bool", "int32", "int64", "string", "json"}));

    auto* remove = add("delete", "remove a value", [this](const Context& c) { return deleteValue(c, m_key); });
    remove->add_option("KEY", m_key)->required();

    auto* keys = add("keys", "print all values", [this](const Context& c) { return listValues(c, m_key); });
    keys->add_option("PREFIX", m_key, "only keys that begin with it");

    auto* watch = add(
        "watch", "print changes until Ctrl-C", [this](const Context& c) { return watchValues(c, m_keys, m_count); });
    watch->add_option("KEY", m_keys, "which keys; a closing * stands for any rest; all without it");
    watch->add_option("--count", m_count, "end after that many changes")->check(CLI::PositiveNumber);
}

void Grammar::addStoreCommands()
{
    auto* outage = add("outage", "let the store be unreachable for all programs but tarnhost",
        [this](const Context& c) { return makeOutage(c, m_text); });
    outage->add_option("SECONDS|on|off", m_text)->required();

    auto* fault = add("fault", "let the next calls to the store fail",
        [this](const Context& c) { return planFault(c, m_kind, m_code, m_faultCount, m_faultKey); });
    fault->add_option("KIND", m_kind, "get, set, subscribe, unsubscribe, open, all; clear forgets all plans")
        ->required()
        ->check(CLI::IsMember({"get", "set", "subscribe", "unsubscribe", "open", "all", "clear"}));
    fault->add_option("CODE", m_code, "the error code that the calls end with")->check(CLI::PositiveNumber);
    fault->add_option("--count", m_faultCount, "how many calls")->check(CLI::PositiveNumber)->capture_default_str();
    fault->add_option("--key", m_faultKey, "only calls for this key");
}

void Grammar::addRequestCommands()
{
    constexpr auto waitHelp = "wait that many seconds at most for the acknowledgement";
    auto* scan = add("scan", "request a scan", [this](const Context& c) { return requestScan(c, m_wait); });
    scan->add_option("--wait", m_wait, waitHelp)->check(CLI::Range(1u, 86'400u));

    auto* install = add("install", "request an installation",
        [this](const Context& c) { return requestInstallation(c, m_text, m_wait); });
    install->add_option("TEXT", m_text, "what to install; empty: what the automatic mode says")->required();
    install->add_option("--wait", m_wait, waitHelp)->check(CLI::Range(1u, 86'400u));

    add("enable", "switch the feature on", [](const Context& c) { return enableFeature(c, true); });
    add("disable", "switch the feature off", [](const Context& c) { return enableFeature(c, false); });
}

void Grammar::addDeploymentCommands()
{
    auto* queue = add("queue", "print the deployment queue, or change it as the agent does",
        [this](const Context& c) { return workOnQueue(c); });
    auto* pop = queue->add_flag("--pop", m_pop, "take the first item");
    auto* push = queue->add_option("--push", m_push, "add an item, which makes the plug-in start the agent");
    auto* remove = queue->add_option("--remove", m_remove, "take the item with this text");
    push->type_name("TEXT")->excludes(pop);
    remove->type_name("TEXT")->excludes(pop)->excludes(push);

    auto* patches = add("patches", "print the patches that are to be installed and their states",
        [this](const Context& c) { return m_follow ? followPatches(c, m_limit) : showPatches(c); });
    auto* follow = patches->add_flag("-f,--follow", m_follow, "again each time they have changed, until Ctrl-C");
    patches->add_option("--count", m_limit, "end after that many tables")->needs(follow)->check(CLI::PositiveNumber);
}

void Grammar::addControlCommands()
{
    auto* status = add("status", "an overview of host, plug-in, store and agent",
        [this](const Context& c) { return showStatus(c, m_wait.value_or(0)); });
    status->add_option("--wait", m_wait, "wait that many seconds at most for the host to be up")
        ->check(CLI::Range(1u, 86'400u));
    add("stop", "end the running host and wait for its end", stopHost);
    add("restart", "let the running host stop the plug-in, unload it and load it anew", restartPlugin);
    add("reboot", "let the running host play a reboot: plug-in anew, and the agent finishes what waits for it", reboot);
    add("resume-event", "tell the plug-in that the computer woke up", sendResume);
    auto* session = add("session-event", "tell the plug-in of a session change",
        [this](const Context& c) { return sendSessionEvent(c, m_type, m_data); });
    session->add_option("TYPE", m_type, "number of the change")->required();
    session->add_option("DATA", m_data, "number of the session");
    add("forget-boot", "let the plug-in's next start count as the first since the boot", forgetBootAtom);
}

void Grammar::addLogCommand()
{
    auto* log = add("log", "print the plug-in's log", [this](const Context& c) {
        return showLog(c, vx::str::fromUtf8(m_file), m_follow ? LogMode::Follow : LogMode::Print, m_lines);
    });
    log->add_flag("-f,--follow", m_follow, "go on with new lines until Ctrl-C");
    log->add_option("-n,--lines", m_lines, "begin with the last N lines only");
    log->add_option("--file", m_file, "another log file");
}

void Grammar::parse(const std::vector<std::string>& arguments)
{
    m_app.parse(std::vector<std::string>(arguments.rbegin(), arguments.rend()));
}

ExitCode Grammar::perform()
{
    if (!m_action)
        throw CommandError(ExitCode::BadUsage, "a subcommand is required: see tarnhost --help");
    Printer printer(m_json ? Printer::Form::Json : Printer::Form::Text);
    StopSignal stop;
    return m_action({vx::str::fromUtf8(m_instance), printer, stop});
}

std::filesystem::path Grammar::storeFile() const
{
    if (!m_store.empty())
        return std::filesystem::absolute(vx::str::fromUtf8(m_store));
    return ownFolder() / (L"tarnhost." + vx::str::fromUtf8(m_instance) + L".store.json");
}

ExitCode Grammar::runHost(const Context& context) const
{
    HostOptions options;
    options.plugin =
        m_plugin.empty() ? ownFolder() / "tarnhd.dll" : std::filesystem::absolute(vx::str::fromUtf8(m_plugin));
    if (!m_noStore)
        options.store = storeFile();
    if (!m_agentDirectory.empty())
        options.agentDirectory = vx::str::fromUtf8(m_agentDirectory);
    if (m_seconds)
        options.runTime = std::chrono::seconds(*m_seconds);
    options.recordSize = m_size;
    options.provideProfile = !m_noProfile;
    return Host(context, options).run();
}

ExitCode Grammar::workOnQueue(const Context& context) const
{
    if (m_push)
        return pushToQueue(context, *m_push);
    if (m_remove)
        return removeFromQueue(context, *m_remove);
    return m_pop ? popQueue(context) : showQueue(context);
}

int fail(ExitCode code, const char* line)
{
    std::fprintf(stderr, "tarnhost: %s\n", line);
    return static_cast<int>(code);
}

} // namespace

int runCommandLine(const std::vector<std::string>& arguments)
{
    Grammar grammar;
    try {
        grammar.parse(arguments);
        return static_cast<int>(grammar.perform());
    } catch (const CLI::ParseError& error) {
        return error.get_exit_code() == 0 ? grammar.explain(error) : fail(ExitCode::BadUsage, error.what());
    } catch (const CommandError& error) {
        return fail(error.code(), error.what());
    } catch (const store::StoreException& error) {
        const bool gone = error.code() == store::ErrorCode::Unreachable;
        return fail(gone ? ExitCode::NotRunning : ExitCode::Failed, error.what());
    } catch (const std::exception& exception) {
        return fail(ExitCode::Failed, exception.what());
    }
}

} // namespace devhost::host
