#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <optional>
#include <string_view>

namespace drivekit
{

/// The outputs of the supply: four physical ones, and the series (5) and parallel (6) combination of the first two.
struct OutputChannel
{
    static constexpr std::string_view kName = "OutputChannel";
    static constexpr std::array<std::string_view, 6> kPhysicalNames = {
        "OutputChannel1", "OutputChannel2", "OutputChannel3", "OutputChannel4", "OutputChannel5", "OutputChannel6"};
};

/// One instance of a repeated capability.
template <class Capability>
class PhysicalName
{
public:
    constexpr PhysicalName() = default;
    constexpr explicit PhysicalName(std::string_view text) : text_(text) {}

    constexpr std::string_view text() const { return text_; }

private:
    std::string_view text_;
};

/// A repeated capability (IVI-3.1 section 4.4) and its physical names, in their order. Constant: any thread may read.
template <class Capability>
class RepCapBase
{
public:
    static constexpr std::size_t kCount = Capability::kPhysicalNames.size();

    static constexpr std::string_view name() { return Capability::kName; }

    static constexpr PhysicalName<Capability> physicalName(std::size_t position)
    {
        return PhysicalName<Capability>(Capability::kPhysicalNames[position]);
    }

    /// The position of a physical name, compared byte for byte.
    static constexpr std::optional<std::size_t> position(std::string_view text)
    {
        const auto& names = Capability::kPhysicalNames;
        const auto found = std::find(names.begin(), names.end(), text);
        if (found == names.end())
            return std::nullopt;
        return static_cast<std::size_t>(found - names.begin());
    }
};

/// The instances that a selector names, in its order. None is named twice.
template <class Capability>
class Selection
{
public:
    void add(PhysicalName<Capability> name) { names_[size_++] = name; }

    std::size_t size() const { return size_; }
    const PhysicalName<Capability>* begin() const { return names_.data(); }
    const PhysicalName<Capability>* end() const { return names_.data() + size_; }

private:
    std::array<PhysicalName<Capability>, RepCapBase<Capability>::kCount> names_;
    std::size_t size_ = 0;
};

} // namespace drivekit
