#include "vxtl/parsejson.h"

#include <nlohmann/json.hpp>

#include <array>

namespace vx {

namespace {

using nlohmann::json;

/// Takes the parser's events. Text that goes too deep ends the parsing where it does: a value that deep must not come
/// to be, because it could not even be given back.
class Builder {
public:
    bool null() { return add(nullptr); }
    bool boolean(bool value) { return add(value); }
    bool number_integer(json::number_integer_t value) { return add(value); }
    bool number_unsigned(json::number_unsigned_t value) { return add(value); }
    bool number_float(json::number_float_t value, const json::string_t&) { return add(value); }
    bool string(json::string_t& value) { return add(std::move(value)); }
    bool binary(json::binary_t& value) { return add(std::move(value)); }

    bool start_object(std::size_t) { return open(json::value_t::object); }
    bool start_array(std::size_t) { return open(json::value_t::array); }
    bool end_object() { return close(); }
    bool end_array() { return close(); }
    bool key(json::string_t& name)
    {
        m_member = &m_open[m_depth - 1]->get_ref<json::object_t&>()[std::move(name)];
        return true;
    }

    template <typename Error>
    bool parse_error(std::size_t, const std::string&, const Error& error)
    {
        throw error;
    }

    json takeRoot() { return std::move(m_root); }

private:
    template <typename Value>
    bool add(Value&& value)
    {
        place() = std::forward<Value>(value);
        return true;
    }

    bool open(json::value_t type)
    {
        if (m_depth == deepestJson)
            throw json::parse_error::create(101, std::size_t{0}, "nesting is too deep", nullptr);
        json& value = place();
        value = type;
        m_open[m_depth++] = &value;
        return true;
    }

    bool close()
    {
        --m_depth;
        return true;
    }

    /// Where the next value goes. Of several members of one name the last one stays.
    json& place()
    {
        if (m_depth == 0)
            return m_root;
        json& parent = *m_open[m_depth - 1];
        return parent.is_array() ? parent.get_ref<json::array_t&>().emplace_back() : *m_member;
    }

    json m_root;
    std::array<json*, deepestJson> m_open; ///< from the root to where the next value goes; none moves while open
    std::size_t m_depth = 0;
    json* m_member = nullptr;
};

} // namespace

json parseJson(std::string_view text)
{
    Builder builder;
    json::sax_parse(text.begin(), text.end(), &builder);
    return builder.takeRoot();
}

} // namespace vx
