#include "common/windowsupdates/grouppolicydriver.h"

#include "common/windowsupdates/comobject.h"

#include <prsht.h>

#include <gpedit.h>

#include <bit>

namespace vx::tarn::common {

namespace {

constexpr CLSID CLSID_GroupPolicyObject = {
    0xEA502722, 0xA23D, 0x11D1, {0xA7, 0xD3, 0x00, 0x00, 0xF8, 0x75, 0x71, 0xE3}};
constexpr IID IID_IGroupPolicyObject = {0xEA502723, 0xA23D, 0x11D1, {0xA7, 0xD3, 0x00, 0x00, 0xF8, 0x75, 0x71, 0xE3}};

class PolicyObject : public IPolicyObject {
public:
    explicit PolicyObject(com::ComPtr<IGroupPolicyObject> object) : m_object(std::move(object)) {}

    std::int32_t openLocalMachine() override { return m_object->OpenLocalMachineGPO(GPO_OPEN_LOAD_REGISTRY); }
    std::int32_t save(
        PolicySection section, PolicyChange change, const utils::Guid& extension, const utils::Guid& snapIn) override
    {
        GUID nativeExtension = std::bit_cast<GUID>(extension);
        GUID nativeSnapIn = std::bit_cast<GUID>(snapIn);
        return m_object->Save(
            section == PolicySection::Machine, change == PolicyChange::Add, &nativeExtension, &nativeSnapIn);
    }

private:
    com::ComPtr<IGroupPolicyObject> m_object;
};

} // namespace

std::int32_t GroupPolicyDriver::create(std::unique_ptr<IPolicyObject>& object)
{
    object.reset();
    com::ComPtr<IGroupPolicyObject> native;
    const HRESULT result = createComObject(CLSID_GroupPolicyObject, IID_IGroupPolicyObject, native);
    if (FAILED(result))
        return result;
    if (!native)
        return E_NOINTERFACE;
    object = std::make_unique<PolicyObject>(std::move(native));
    return result;
}

} // namespace vx::tarn::common
