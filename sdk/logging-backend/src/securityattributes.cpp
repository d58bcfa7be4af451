#include "securityattributes.h"

#include <windows.h>

#include <sddl.h>

namespace VxQrlLogging {

using FileSystem::SecurityAttributesPointer;

namespace {

// Null when the system refuses: the object then gets the default descriptor.
SecurityAttributesPointer make(const char* text)
{
    PSECURITY_DESCRIPTOR descriptor = nullptr;
    if (!ConvertStringSecurityDescriptorToSecurityDescriptorA(text, SDDL_REVISION_1, &descriptor, nullptr))
        return nullptr;
    return SecurityAttributesPointer(new SECURITY_ATTRIBUTES{sizeof(SECURITY_ATTRIBUTES), descriptor, FALSE});
}

} // namespace

void FileSystem::SecurityAttributesDeleter::operator()(SecurityAttributes* attributes) const noexcept
{
    LocalFree(attributes->lpSecurityDescriptor);
    delete attributes;
}

SecurityAttributesPointer inheritingAttributes()
{
    return make("D:(A;OICI;GA;;;SY)(A;OICI;GA;;;BA)(A;OICI;GRGX;;;AU)");
}

SecurityAttributesPointer restrictedAttributes()
{
    return make("D:(A;;GA;;;SY)(A;;GA;;;BA)");
}

} // namespace VxQrlLogging
