#pragma once

#include "tests/support/platform/store_texts.h"
#include "tests/support/temporary_folder.h"
#include "tools/store/store_error.h"

#include <filesystem>
#include <string>

namespace kvxtest
{

/// A store with one software module, one hardware asset, one driver session and one logical name, without a fault.
std::string exampleStore();

/// A store with a session of another driver, "Meter", whose module has settings of every type.
std::string settingsStore();

/// The store that is installed as an example.
std::string installedStore();

/// The text with the first `from` replaced; a failure of the test when there is none.
std::string replaced(std::string text, const std::string& from, const std::string& to);

std::string blanks(std::size_t count);

/// What an action complains of; empty when it does not.
template <class Action>
std::string complaint(Action action)
{
    try {
        action();
        return "";
    } catch (const store_tool::StoreError& error) {
        return error.what();
    }
}

/// What an action that complains says can be done about it.
template <class Action>
std::string remedy(Action action)
{
    try {
        action();
        return "";
    } catch (const store_tool::StoreError& error) {
        return error.remedy();
    }
}

std::string readFile(const std::filesystem::path& path);
void writeFile(const std::filesystem::path& path, const std::string& text);

} // namespace kvxtest
