#pragma once

#include <exception>
#include <string>
#include <typeinfo>

#include <gtest/gtest.h>

namespace kvxtest
{

/// Whether a call throws exactly `Exception`, no class derived from it, with exactly this text.
template <class Exception, class Call>
testing::AssertionResult throwsExactly(const std::string& text, Call call)
{
    try {
        call();
    } catch (const std::exception& thrown) {
        if (typeid(thrown) != typeid(Exception))
            return testing::AssertionFailure() << "threw " << typeid(thrown).name() << ": " << thrown.what();
        if (thrown.what() != text)
            return testing::AssertionFailure() << "threw with the text \"" << thrown.what() << '"';
        return testing::AssertionSuccess();
    }
    return testing::AssertionFailure() << "threw nothing";
}

inline constexpr const char* kInvalidKey = "invalid map<K, T> key";

} // namespace kvxtest
