#include "textstore.h"

#include "settings-api/exceptions.h"

#include <nlohmann/json.hpp>

using vx::settings::NotFoundException;

nlohmann::json TextStore::getJsonValue(const std::wstring& name)
{
    const auto found = m_texts.find(name);
    if (found == m_texts.end())
        VX_THROW(NotFoundException, name);
    return nlohmann::json::parse(found->second);
}

void TextStore::setJsonValue(const std::wstring& name, const nlohmann::json& value)
{
    m_texts[name] = value.dump();
}

bool TextStore::getBoolValue(const std::wstring& name)
{
    VX_THROW(NotFoundException, name);
}

std::int32_t TextStore::getInt32Value(const std::wstring& name)
{
    VX_THROW(NotFoundException, name);
}

std::int64_t TextStore::getInt64Value(const std::wstring& name)
{
    VX_THROW(NotFoundException, name);
}

double TextStore::getDoubleValue(const std::wstring& name)
{
    VX_THROW(NotFoundException, name);
}

std::wstring TextStore::getStringValue(const std::wstring& name)
{
    VX_THROW(NotFoundException, name);
}
