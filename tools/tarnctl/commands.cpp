#include "tarnctl/commands.h"

#include "tarnctl/bundle/bundlecommand.h"
#include "tarnctl/health/healthcommand.h"
#include "tarnctl/log/logcommand.h"
#include "tarnctl/proxycommand.h"
#include "tarnctl/tablescommand.h"
#include "tarnctl/why/whycommand.h"

namespace tarnctl {

const std::vector<AddCommand>& allCommands()
{
    static const std::vector<AddCommand> commands{health::addHealthCommand, why::addWhyCommand, log::addLogCommand,
        addProxyCommand, addTablesCommands, bundle::addBundleCommand};
    return commands;
}

} // namespace tarnctl
