#pragma once

#include "filesystem.h"

namespace VxQrlLogging {

/// For folders: system and administrators everything, signed-in users reading, inherited by what is inside.
FileSystem::SecurityAttributesPointer inheritingAttributes();
/// System and administrators only.
FileSystem::SecurityAttributesPointer restrictedAttributes();

} // namespace VxQrlLogging
