#include "agent/stepreader.h"

#include "agent/agentscript.h"
#include "agent/flyerreader.h"
#include "agent/scriptmember.h"
#include "vxtl/str.h"

#include <nlohmann/json.hpp>

namespace devhost::agent {

namespace {

using vx::tarn::common::CertStoreProtocol;

std::shared_ptr<const nlohmann::json> keep(const nlohmann::json& value)
{
    return std::make_shared<const nlohmann::json>(value);
}

DownloadStep readDownload(const Member& arguments)
{
    DownloadStep step;
    readMembers(arguments, [&](const std::string& name, const Member& member) {
        if (name == "url")
            step.url = readWideText(member);
        else if (name == "target")
            step.target = readWideText(member);
        else if (name == "headers")
            readMembers(member, [&](const std::string& header, const Member& value) {
                step.headers[vx::str::fromUtf8(header)] = readWideText(value);
            });
        else if (name == "attempts")
            step.attempts = readNumber<std::int32_t>(member);
        else if (name == "waitSeconds")
            step.waitSeconds = readNumber<std::int32_t>(member);
        else if (name == "byManagementServer")
            step.way = readBool(member) ? DownloadStep::Way::ByManagementServer : DownloadStep::Way::AsItStands;
        else
            member.isUnknown();
    });
    if (step.url.empty() || step.target.empty())
        arguments.mustBe("an object with url and target");
    return step;
}

CertStoreProtocol readStore(const Member& member)
{
    const auto name = readText(member);
    for (const auto& [known, store] : {std::pair("MY", CertStoreProtocol::My), {"CA", CertStoreProtocol::Ca},
             {"ROOT", CertStoreProtocol::Root}, {"SPC", CertStoreProtocol::Spc}})
        if (name == known)
            return store;
    member.mustBe("MY, CA, ROOT or SPC");
}

CertificateStep readCertificate(const Member& arguments)
{
    CertificateStep step;
    bool placed = false;
    readMembers(arguments, [&](const std::string& name, const Member& member) {
        if (name == "store") {
            step.store = readStore(member);
            placed = true;
        } else if (name == "file") {
            step.file = readWideText(member);
        } else {
            member.isUnknown();
        }
    });
    if (!placed || step.file.empty())
        arguments.mustBe("an object with store and file");
    return step;
}

AlertStep readAlert(const Member& arguments)
{
    AlertStep step{{}, keep(nullptr)};
    readMembers(arguments, [&](const std::string& name, const Member& member) {
        if (name == "type")
            step.type = readText(member);
        else if (name == "data")
            step.data = keep(member.value);
        else
            member.isUnknown();
    });
    return step;
}

IpcStep readIpc(const Member& arguments)
{
    IpcStep step;
    step.body = keep(nullptr);
    readMembers(arguments, [&](const std::string& name, const Member& member) {
        if (name == "channel")
            step.channel = readText(member);
        else if (name == "type")
            step.type = readNumber<std::uint32_t>(member);
        else if (name == "body")
            step.body = keep(member.value);
        else if (name == "owner")
            step.owner = readNumber<std::uint32_t>(member);
        else
            member.isUnknown();
    });
    if (step.channel.empty())
        arguments.mustBe("an object with channel");
    return step;
}

WinHttpProxyStep readWinHttpProxy(const Member& arguments)
{
    WinHttpProxyStep step;
    readMembers(arguments, [&](const std::string& name, const Member& member) {
        if (name == "proxy")
            step.proxy = readWideText(member);
        else if (name == "bypass")
            step.bypass = readWideText(member);
        else
            member.isUnknown();
    });
    return step;
}

Step readNamed(const std::string& name, const Member& arguments)
{
    if (name == DownloadStep::name)
        return readDownload(arguments);
    if (name == CertificateStep::name)
        return readCertificate(arguments);
    if (name == FlyerStep::name)
        return readFlyer(arguments);
    if (name == AlertStep::name)
        return readAlert(arguments);
    if (name == IpcStep::name)
        return readIpc(arguments);
    if (name == WinHttpProxyStep::name)
        return readWinHttpProxy(arguments);
    arguments.isUnknown();
}

} // namespace

Step readStep(const Member& member)
{
    if (!member.value.is_object())
        return readWord<SystemStep>(member, "a step");
    if (member.value.size() != 1)
        member.mustBe("a word, or an object with one step");
    std::optional<Step> step;
    readMembers(member, [&](const std::string& name, const Member& arguments) { step = readNamed(name, arguments); });
    return *step;
}

} // namespace devhost::agent
