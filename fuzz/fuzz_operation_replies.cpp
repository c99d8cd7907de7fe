// Any bytes as the reply to an operation that asks, which the first byte picks: it succeeds, tells of an unexpected
// response, or leaves with one of the documented exceptions; and what could not be read leaves its output unchanged.
#include "fuzz/input.h"
#include "instrument/kvx2800t.h"
#include "tests/support/driver/operation_table.h"
#include "tests/support/driver/scripted_connection.h"

#include <cstdint>
#include <cstring>
#include <initializer_list>
#include <memory>
#include <stdexcept>
#include <string>
#include <string_view>

namespace
{

using kvxfuzz::require;
using kvxtest::Operation;
using kvxtest::Values;

bool isOneOf(const char* text, std::initializer_list<const char*> texts)
{
    for (const char* each : texts)
        if (std::strcmp(text, each) == 0)
            return true;
    return false;
}

ViStatus runDocumented(const Operation& query, TSRO::InstBase& instrument, Values& outputs)
{
    try {
        return query.run(instrument, outputs);
    } catch (const std::invalid_argument& thrown) {
        require(isOneOf(thrown.what(), {"invalid stod argument", "invalid stoi argument", "invalid stol argument"}) ||
                std::string_view(thrown.what()).starts_with("Visa::parseBool Unknown ret:"));
    } catch (const std::out_of_range& thrown) {
        require(isOneOf(thrown.what(), {"stod argument out of range", "stoi argument out of range",
                                        "stol argument out of range", "invalid vector subscript"}));
    }
    return base::kErrorUnexpectedResponse;
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    if (size == 0)
        return 0;
    const std::string reply(reinterpret_cast<const char*>(data) + 1, size - 1);
    const auto connection = std::make_shared<kvxtest::ScriptedConnection>();
    TSRO::KVX2800T instrument(kvxtest::portOn(connection));
    static const auto queries = kvxtest::queries();
    const Operation& query = queries[data[0] % queries.size()];
    connection->answer(reply);
    Values outputs;
    const ViStatus status = runDocumented(query, instrument, outputs);
    require(status == VI_SUCCESS || status == base::kErrorUnexpectedResponse);
    // Of several outputs those before the one that could not be read are stored.
    require(status == VI_SUCCESS || outputs.back() == query.before.back());
    return 0;
}
