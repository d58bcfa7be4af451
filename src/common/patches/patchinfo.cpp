#include "common/patches/patchinfo.h"

#include "common/patches/updateid.h"

namespace vx::tarn::common {

ListedPatch::ListedPatch(ListedUpdate update)
    : bulletinId(std::move(update.bulletinId)), productName(std::move(update.productName)),
      servicePack(std::move(update.servicePack)), updateName(std::move(update.updateName)),
      severity(static_cast<std::uint16_t>(update.severity)), specifier(std::move(update.patchSpecifier)),
      category(static_cast<std::uint16_t>(update.category))
{}

PatchInfo::PatchInfo(MissingUpdate update)
    : ListedPatch(static_cast<ListedUpdate&&>(update)), endOfLife(std::move(update.endOfLife)),
      vendor(std::move(update.vendor)), userFriendlyUpdateName(std::move(update.userFriendlyUpdateName)),
      cveIds(std::move(update.cveIds)), descriptionUrl(std::move(update.descriptionUrl))
{}

MissingUpdate toMissingUpdate(PatchInfo patch, std::wstring updateId)
{
    MissingUpdate update;
    update.patchSpecifier = std::move(patch.specifier);
    update.updateId = std::move(updateId);
    update.bulletinId = std::move(patch.bulletinId);
    update.productName = std::move(patch.productName);
    update.servicePack = std::move(patch.servicePack);
    update.updateName = std::move(patch.updateName);
    update.endOfLife = std::move(patch.endOfLife);
    update.severity = patch.severity;
    update.category = patch.category;
    update.vendor = std::move(patch.vendor);
    update.userFriendlyUpdateName = std::move(patch.userFriendlyUpdateName);
    update.cveIds = std::move(patch.cveIds);
    update.descriptionUrl = std::move(patch.descriptionUrl);
    return update;
}

MissingUpdate toMissingUpdate(PatchInfo patch)
{
    std::wstring updateId = deriveUpdateId(patch);
    return toMissingUpdate(std::move(patch), std::move(updateId));
}

} // namespace vx::tarn::common
