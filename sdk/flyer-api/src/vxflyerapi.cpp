#include "flyer-api/vxflyerapi.h"

#include "flyer-api/flyerdefinition.h"
#include "librarynumbers.h"

#include "logging/logstream.h"
#include "vxtl/scopeexit.h"
#include "vxtl/str.h"

namespace vx::flyers {

namespace {

/// Throws, as the named function, with the first call's code and the text of a second one's.
template <typename Call>
void check(const logging::FunctionName& function, Call call)
{
    const VxFlyerError_enum code = call();
    if (code == VxFlyerError_enum::Success)
        return;
    const wchar_t* const text = errorText(call());
    VX_THROW_FROM(VxFlyerException, function, code, text);
}

std::wstring joinLines(const std::vector<std::wstring>& lines)
{
    std::wstring text;
    for (const std::wstring& line : lines) {
        if (&line != &lines.front())
            text += L"<br/>";
        text += line;
    }
    return text;
}

/// An action for the length of a call; the texts stay the action's.
class LentAction {
public:
    template <typename Action>
    explicit LentAction(const std::optional<Action>& action)
    {
        if (action)
            m_record = {libraryActionType(action->getType()), textOf(action->getFirstArgument()),
                textOf(action->getSecondArgument())};
    }

    const ActionRecord* get() const { return m_record ? &*m_record : nullptr; }

private:
    static const char* textOf(const std::optional<std::string>& text) { return text ? text->c_str() : nullptr; }

    std::optional<ActionRecord> m_record;
};

} // namespace

VxFlyerApi::VxFlyerApi(const LoadLibrary& loadLibrary)
{
    VX_LOG_SCOPE();
    const delayload::LoadResult result = loadLibrary(m_library);
    if (result.status != delayload::LoadStatus::Success)
        VX_THROW(BaseException, L"Failed to load '" + str::toUnicode(result.libraryName()) + L"'. Error code: " +
                                    std::to_wstring(static_cast<std::uint32_t>(result.status)));
}

VxFlyerApi::~VxFlyerApi()
{
    VX_LOG_SCOPE();
}

void VxFlyerApi::showFlyer(const FlyerDefinition& definition, std::uintptr_t argument)
{
    VX_LOG_SCOPE();
    const auto call = [](auto step) { check(vxScopeName, step); };
    const std::int32_t type = libraryFlyerType(definition.type);
    FlyerHandle flyer = nullptr;
    call(
        [&] { return m_library.createFlyer(0, definition.heading.c_str(), definition.message.c_str(), type, &flyer); });
    const ScopeExit closed([&] { m_library.closeFlyer(flyer); });
    if (const std::wstring details = joinLines(definition.details); !definition.details.empty())
        call([&] { return m_library.addDetails(flyer, details.c_str()); });
    for (const DropdownItem& item : definition.dropdownItems) {
        const LentAction action(item.action);
        call([&] { return m_library.addDropdownMenuItem(flyer, item.text.c_str(), action.get(), item.selected); });
    }
    for (const FlyerButton& button : definition.buttons) {
        const LentAction action(button.action);
        call([&] { return m_library.addButton(flyer, button.text.c_str(), action.get(), 0); });
    }
    if (const LentAction action(definition.action); action.get())
        call([&] { return m_library.setAction(flyer, action.get()); });
    call([&] { return m_library.showFlyer(flyer, argument, 0); });
}

} // namespace vx::flyers
