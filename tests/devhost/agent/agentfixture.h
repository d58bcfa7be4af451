#pragma once

#include "childprocess.h"
#include "ipc/instance.h"
#include "store/client/client.h"
#include "store/server/server.h"

#include <gmock/gmock.h>

/// A copy of tarnag.exe in a folder and on an instance of its own, with a store that is not started yet.
struct AgentTest : testing::Test {
    AgentTest()
    {
        for (const char* file : {"tarnag.exe", "vx_qrl_meridia_32.dll"})
            std::filesystem::copy_file(support::programFolder() / file, folder.path() / file);
        devhost::ipc::exportInstance(instance);
    }

    void script(const std::string& text) { support::writeFile(folder.path() / "tarnag.script.json", text); }
    support::ChildProcess start(const std::wstring& arguments = {})
    {
        return {folder.path() / "tarnag.exe", arguments, folder.path()};
    }

    support::TemporaryFolder folder;
    const std::wstring instance = folder.path().filename().wstring();
    devhost::store::Server server{(folder.path() / "store.json").native(), instance};
    devhost::store::Client client{instance};
};
