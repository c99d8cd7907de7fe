#pragma once

#include "tests/support/driver/recorded_error.h"

#include <kvx2800t.hpp>

#include <gtest/gtest.h>

namespace kvxtest
{

/// The code and the text that a call throws as Error.
template <class Call>
RecordedError thrown(Call call)
{
    try {
        call();
    } catch (const kvx2800t::Error& error) {
        return {error.code(), error.text()};
    }
    ADD_FAILURE() << "no error";
    return {};
}

} // namespace kvxtest
