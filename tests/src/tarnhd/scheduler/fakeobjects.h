#pragma once

#include "vxtl-com/comptr.h"

#include <map>
#include <string>
#include <vector>

struct ITaskDefinition;
struct ITaskFolder;
struct ITaskService;
struct IRegisteredTask;
struct ITriggerCollection;

namespace fake {

/// What the Task Scheduler's objects answer, by the call's name, "ITaskFolder::GetTask": one answer for each call of
/// the name, and behind the last one S_OK, 0 and an empty text. One at a time. Fails the test that leaves references
/// behind.
struct Script {
    Script();
    ~Script();

    std::map<std::string, std::vector<long>> results;
    std::map<std::string, std::vector<long>> numbers;
    std::map<std::string, std::vector<std::wstring>> texts;
    std::string throwing; ///< the first call of this name throws
    /// Those with arguments, in order: "ITrigger::put_Id trigger0".
    std::vector<std::string> calls;

    std::map<std::string, std::size_t> counts;
    int references = 0;
};

/// An object of the interface; there is one of each. Methods that the product does not use end the program.
template <typename Interface>
vx::com::ComPtr<Interface> object();

} // namespace fake
