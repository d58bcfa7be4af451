#include "keys/keycatalogue.h"

#include "common/settings/keylist.h"
#include "vxtl/str.h"

#include <algorithm>

namespace devhost::host {

std::optional<store::Type> typeFromName(std::string_view name)
{
    return name == "json" ? store::Type::Object : vx::findText<store::Type>(name);
}

std::optional<store::Type> typeOfKey(std::string_view key)
{
    static const auto rows = vx::tarn::listKeys();
    const auto found = std::ranges::find(rows, vx::str::fromUtf8(key), &vx::tarn::KeyInfo::name);
    return found == rows.end() ? std::nullopt : typeFromName(vx::toText(found->kind->type));
}

std::string keyOf(const vx::tarn::KeyRow& row)
{
    return vx::str::toUtf8(row.key());
}

} // namespace devhost::host
