#include "common/deploymentqueue/ideploymentqueue.h"
#include "common/factory/commonfactory.h"
#include "common/operationinfo/operationinfo.h"
#include "common/patches/patchrecords.h"
#include "common/utils/number.h"
#include "common/utils/timetext.h"
#include "host/commands.h"
#include "host/printer.h"
#include "ipc/instance.h"
#include "keys/keycatalogue.h"
#include "meridia-settings/qrlmeridiaerror.h"
#include "store/client/client.h"
#include "vxtl/parsejson.h"
#include "vxtl/str.h"

#include <algorithm>
#include <nlohmann/json.hpp>

namespace devhost::host {

namespace {

using nlohmann::json;
using vx::str::fromUtf8;
using vx::str::toUtf8;
using namespace vx::tarn::common;

struct QueueOptions {
    bool pop = false;
    std::optional<std::string> push, remove;
};

std::vector<DeploymentItem> readQueue(const Context& context)
{
    const auto value = store::Client(context.instance).get(keyOf(keys::settings.installation.deploymentQueue));
    if (!value)
        return {};
    try {
        return listFromJson<DeploymentItem>(vx::parseJson(value->asObject()));
    } catch (const std::exception& exception) {
        throw CommandError(ExitCode::Failed, std::string("the queue cannot be read: ") + exception.what());
    }
}

bool contains(const std::vector<DeploymentItem>& items, const std::wstring& descriptor)
{
    return std::ranges::find(items, descriptor, &DeploymentItem::descriptor) != items.end();
}

/// Changes go the agent's way: through the store's client library, under the queue's mutex.
std::shared_ptr<IDeploymentQueue> openQueue(const Context& context)
{
    ipc::exportInstance(context.instance);
    try {
        return CommonFactory().createDeploymentQueue();
    } catch (const vx::QrlMeridiaException& exception) {
        throw CommandError(ExitCode::NotRunning, exception.what());
    }
}

/// The moment of queueing; the identifier itself when it is none.
std::string timeOf(const DeploymentItem& item)
{
    try {
        if (const auto text = utils::timeToString(utils::toInt64(item.operationId) / 1000); !text.empty())
            return toUtf8(text);
    } catch (const std::logic_error&) {
        // No number: shown as it stands.
    }
    return toUtf8(item.operationId);
}

ExitCode showQueue(const Context& context)
{
    const auto items = readQueue(context);
    if (items.empty() && !context.printer.isJson())
        context.printer.line("the queue is empty");
    for (const auto& item : items) {
        const bool isKnown = OperationInfo(item.descriptor).scope() != OperationScope::Unknown;
        const auto descriptor = toUtf8(item.descriptor);
        context.printer.result(timeOf(item) + "  " + descriptor + (isKnown ? "" : "  (means no update)"),
            {{"operation_id", toUtf8(item.operationId)}, {"time", timeOf(item)}, {"descriptor", descriptor},
                {"known", isKnown}});
    }
    return ExitCode::Done;
}

ExitCode pushToQueue(const Context& context, const std::string& descriptor)
{
    if (contains(readQueue(context), fromUtf8(descriptor)))
        throw CommandError(ExitCode::Failed, "\"" + descriptor + "\" is in the queue already");
    openQueue(context)->pushBack(fromUtf8(descriptor));
    context.printer.result("queued " + descriptor, {{"queued", descriptor}});
    return ExitCode::Done;
}

ExitCode popQueue(const Context& context)
{
    if (readQueue(context).empty())
        throw CommandError(ExitCode::Failed, "the queue is empty");
    const auto queue = openQueue(context);
    const auto descriptor = toUtf8(queue->getFront());
    queue->pop();
    context.printer.result("took " + descriptor, {{"taken", descriptor}});
    return ExitCode::Done;
}

ExitCode removeFromQueue(const Context& context, const std::string& descriptor)
{
    readQueue(context);
    if (!openQueue(context)->remove(fromUtf8(descriptor)))
        throw CommandError(ExitCode::Failed, "\"" + descriptor + "\" is not in the queue");
    context.printer.result("removed " + descriptor, {{"removed", descriptor}});
    return ExitCode::Done;
}

ExitCode workOnQueue(const Context& context, const QueueOptions& options)
{
    if (options.push)
        return pushToQueue(context, *options.push);
    if (options.remove)
        return removeFromQueue(context, *options.remove);
    return options.pop ? popQueue(context) : showQueue(context);
}

} // namespace

void queueCommands(Commands& commands)
{
    const auto [queue, options] =
        commands.add("queue", "print the deployment queue, or change it as the agent does", workOnQueue);
    auto* pop = queue->add_flag("--pop", options.pop, "take the first item");
    auto* push = queue->add_option("--push", options.push, "add an item, which makes the plug-in start the agent");
    auto* remove = queue->add_option("--remove", options.remove, "take the item with this text");
    push->type_name("TEXT")->excludes(pop);
    remove->type_name("TEXT")->excludes(pop)->excludes(push);
}

} // namespace devhost::host
