#pragma once

#include "tools/visatrace/arguments.h"
#include "tools/visatrace/library_behind.h"
#include "tools/visatrace/trace_file.h"

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <string_view>
#include <type_traits>
#include <unistd.h>

namespace visatrace
{

/// "(vi, buf)" taken apart.
template <std::size_t Count>
constexpr std::array<std::string_view, Count> namesIn(std::string_view list)
{
    std::array<std::string_view, Count> names;
    list = list.substr(1, list.size() - 2);
    for (std::string_view& name : names) {
        name = list.substr(0, list.find(','));
        list.remove_prefix(std::min(list.size(), name.size() + 2));
    }
    return names;
}

template <class T>
Argument argument(const T& value)
{
    if constexpr (std::is_pointer_v<T>)
        return reinterpret_cast<std::uintptr_t>(value);
    else if constexpr (std::is_integral_v<T>)
        return static_cast<Argument>(value);
    else
        return 0;
}

template <class Function>
class Traced;

/// One of VISA's functions: called, it calls the same function of the library behind and writes a line. errno is what
/// the program has left for that library, and then what the library has left for the program.
template <class... Parameters, class Result>
class Traced<Result(Parameters...)>
{
public:
    using Hows = std::array<How, sizeof...(Parameters)>;

    /// `target` is called in the place of `name`, `list` has the names of its parameters in parentheses.
    constexpr Traced(const char* name, const char* target, std::string_view list, const Hows& hows)
        : name_(name), target_(target), names_(namesIn<sizeof...(Parameters)>(list)), hows_(hows)
    {
    }

    Result operator()(Parameters... parameters)
    {
        const int errnoBefore = errno;
        auto* const target = find();
        const std::array<Argument, sizeof...(Parameters)> values{argument(parameters)...};
        const Arguments arguments{names_, hows_, values};
        const std::uint64_t began = microsecondsSinceLoading();
        Line line = begin(began, arguments);

        errno = errnoBefore;
        if constexpr (std::is_void_v<Result>) {
            if (target != nullptr)
                target(parameters...);
            const int errnoAfter = errno;
            if (target == nullptr)
                end(line, began, arguments, absence());
            else
                end(line, began, arguments);
            errno = errnoAfter;
        } else {
            const ViStatus status = target != nullptr ? target(parameters...) : absence();
            const int errnoAfter = errno;
            end(line, began, arguments, status);
            errno = errnoAfter;
            return status;
        }
    }

private:
    using Target = Result (*)(Parameters...);

    Target find()
    {
        void* found = found_.load(std::memory_order_acquire);
        if (found == nullptr) {
            found = functionBehind(target_);
            found_.store(found, std::memory_order_release);
        }
        return reinterpret_cast<Target>(found);
    }

    static ViStatus absence() { return hasLibraryBehind() ? VI_ERROR_NSUP_OPER : VI_ERROR_LIBRARY_NFOUND; }

    Line begin(std::uint64_t began, const Arguments& arguments) const
    {
        Line line;
        line.seconds(began);
        line.text(" [");
        line.number(static_cast<std::uint64_t>(gettid()));
        line.text("] ");
        line.text(name_);
        line.text("(");
        describeGiven(line, arguments);
        line.text(")");
        return line;
    }

    static void end(Line& line, std::uint64_t began, const Arguments& arguments, std::optional<ViStatus> status = {})
    {
        const std::uint64_t ended = microsecondsSinceLoading();
        if (status) {
            line.text(" = ");
            describeStatus(line, *status);
        }
        describeStored(line, arguments, status.value_or(VI_SUCCESS));
        line.text(" <");
        line.seconds(ended - began);
        line.text(">");
        writeLine(line.finish());
    }

    const char* name_;
    const char* target_;
    std::array<std::string_view, sizeof...(Parameters)> names_;
    Hows hows_;
    std::atomic<void*> found_ = nullptr;
};

} // namespace visatrace
