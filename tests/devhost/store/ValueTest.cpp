#include "store/protocol/value.h"
#include "store/protocol/errorcode.h"

#include <nlohmann/json.hpp>

using namespace devhost::store;

TEST(Value, readsTheTextsOfACommandLine)
{
    const struct {
        Type type;
        std::string text;
        bool valid;
    } rows[] = {
        {Type::Boolean, "true", true},
        {Type::Boolean, "yes", false},
        {Type::Int32, "-2147483648", true},
        {Type::Int32, "2147483648", false},
        {Type::Int32, "12 ", false},
        {Type::Int32, "", false},
        {Type::Int64, "9223372036854775807", true},
        {Type::Int64, "9223372036854775808", false},
        {Type::String, "", true},
        {Type::Object, "[1, 2]", true},
        {Type::Object, "[1, 2", false},
    };
    for (const auto& row : rows) {
        SCOPED_TRACE(vx::toText(row.type) + " " + row.text);
        if (!row.valid) {
            EXPECT_THROW(Value::parse(row.text, row.type), StoreException);
            continue;
        }
        const Value value = Value::parse(row.text, row.type);
        EXPECT_EQ(value.type(), row.type);
        EXPECT_EQ(value.text(), row.text);
        EXPECT_EQ(Value::fromJson(value.toJson()), value);
    }
}
