#pragma once

#include "libraries/systemobjects/properties.h"

#include <vector>

namespace devhost::systemobjects {

using ValuesList = std::shared_ptr<std::vector<Values>>;

/// What a definition consists of, each part shared with the objects that were handed out for it.
struct DefinitionParts {
    /// As the scheduler gives it: no triggers, no actions, the usual settings.
    DefinitionParts();
    explicit DefinitionParts(const nlohmann::json& definition);

    nlohmann::json whole() const;

    Values registrationInfo, principal, settings;
    ValuesList triggers, actions;
    Values data; ///< at most one text, "Data"
};

/// What the scheduler says to a definition that is to be registered: S_OK, or which kind of fault it has.
HRESULT checkDefinition(const nlohmann::json& definition);

} // namespace devhost::systemobjects
