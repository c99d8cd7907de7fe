#pragma once

#include <map>
#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace command_line
{

/// What the command line gave a command, by the names of its table: "CHANNELS", "--cycles".
class Arguments
{
public:
    void add(const std::string& name, std::vector<std::string> values) { values_[name] = std::move(values); }

    bool has(const std::string& name) const { return values_.contains(name); }

    /// All values; none when it was not given.
    std::vector<std::string> all(const std::string& name) const
    {
        const auto found = values_.find(name);
        return found == values_.end() ? std::vector<std::string>() : found->second;
    }

    /// The one value.
    std::optional<std::string> one(const std::string& name) const
    {
        const auto found = values_.find(name);
        return found == values_.end() || found->second.empty() ? std::nullopt : std::optional(found->second.front());
    }

private:
    std::map<std::string, std::vector<std::string>> values_;
};

} // namespace command_line
