#pragma once

#include "store/protocol/errorcode.h"
#include "vxtl/enumtext.h"

#include <nlohmann/json_fwd.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace devhost::store {

/// The kinds of calls that a fault can be planned for. Removing a value counts as a set.
enum class Operation { Get, Set, Subscribe, Unsubscribe, Open, All };

inline constexpr auto operationTexts =
    vx::enumTexts<Operation>({{Operation::Get, "get"}, {Operation::Set, "set"}, {Operation::Subscribe, "subscribe"},
        {Operation::Unsubscribe, "unsubscribe"}, {Operation::Open, "open"}, {Operation::All, "all"}});
constexpr vx::EnumTexts textsOf(Operation)
{
    return {"Operation", operationTexts};
}
/// Throws StoreException (InvalidParameter) for a text that is none of them.
Operation parseOperation(std::string_view name);

/// Lets the next `count` calls of a kind fail with a code, for one value or, with an empty name, for all.
struct Fault {
    Operation operation = Operation::All;
    ErrorCode code = ErrorCode::Unknown;
    unsigned count = 1;
    std::string name;

    bool operator==(const Fault&) const = default;
};

/// What a server does to the programs that use it through the client library. Tools are never hit.
struct FaultState {
    std::vector<Fault> faults; ///< the earliest that matches a call is used up first
    bool refuse = false;       ///< every connection is closed, so that calls find the store unreachable
    unsigned delayMs = 0;      ///< pause before each call is carried out

    bool operator==(const FaultState&) const = default;
};

/// {"faults": [{"operation", "code", "count", "name"}], "refuse", "delayMs"}.
nlohmann::json toJson(const FaultState& state);
/// Every member may be missing; throws StoreException (InvalidParameter) on a wrong type or word.
FaultState faultStateFromJson(const nlohmann::json& json);

} // namespace devhost::store
